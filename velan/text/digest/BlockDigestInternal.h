// What MD5 and SHA-1 share: cutting the input into 64-byte blocks, and the padding at the end.
#ifndef VELAN_TEXT_DIGEST_BLOCK_DIGEST_INTERNAL_H
#define VELAN_TEXT_DIGEST_BLOCK_DIGEST_INTERNAL_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace velan {

/// Feeds bytes; `transform(state, blocks, count)` takes whole blocks. The context keeps what does not fill one.
template <typename Context, typename Transform>
void updateDigest(Context& context, const void* bytes, size_t length, Transform transform) {
  if (!bytes || length == 0) return;
  const auto* next = static_cast<const uint8_t*>(bytes);
  const size_t held = context.length % sizeof context.block;
  context.length += length;
  if (held > 0) {
    const size_t count = std::min(length, sizeof context.block - held);
    std::memcpy(context.block + held, next, count);
    if (held + count < sizeof context.block) return;
    transform(context.state, context.block, 1);
    next += count;
    length -= count;
  }
  const size_t blocks = length / sizeof context.block;
  if (blocks > 0) transform(context.state, next, blocks);
  const size_t whole = blocks * sizeof context.block;
  std::memcpy(context.block, next + whole, length - whole);
}

/// Ends the message: a set bit, zero bits, and the length in bits as eight bytes that `storeLength(bytes, bits)`
/// writes.
template <typename Context, typename Transform, typename StoreLength>
void padDigest(Context& context, Transform transform, StoreLength storeLength) {
  size_t held = context.length % sizeof context.block;
  context.block[held++] = 0x80;
  if (held > sizeof context.block - 8) {
    std::memset(context.block + held, 0, sizeof context.block - held);
    transform(context.state, context.block, 1);
    held = 0;
  }
  std::memset(context.block + held, 0, sizeof context.block - 8 - held);
  storeLength(context.block + sizeof context.block - 8, context.length * 8);
  transform(context.state, context.block, 1);
}

/// Overwrites with zeros in a way that the compiler does not remove.
template <typename Context>
void clearDigest(Context& context) {
  std::memset(&context, 0, sizeof context);
  __asm__ volatile("" : : "r"(&context) : "memory");
}

}  // namespace velan

#endif  // VELAN_TEXT_DIGEST_BLOCK_DIGEST_INTERNAL_H
