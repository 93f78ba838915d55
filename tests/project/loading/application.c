// What an application may have of its own under the library's names, with other types and other results.
#include <stddef.h>

int calls = 0;

unsigned CRC32(const void* bytes, size_t length);
void isc_sha1_init(void* context);
void isc_sha1_update(void* context, const void* bytes, size_t length);
void isc_sha1_final(void* context, void* digest);

unsigned CRC32(const void* bytes, size_t length) { return ++calls, bytes ? (unsigned)length : 0; }
void isc_sha1_init(void* context) { calls += context != NULL; }
void isc_sha1_update(void* context, const void* bytes, size_t length) { calls += context && bytes && length; }
void isc_sha1_final(void* context, void* digest) { calls += context && digest; }
