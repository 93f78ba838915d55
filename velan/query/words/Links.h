// Addresses in running text, as a reader would click on them.
#ifndef VELAN_QUERY_WORDS_LINKS_H
#define VELAN_QUERY_WORDS_LINKS_H

#include "velan/base/String.h"

namespace velan {

/// `getLinkRangeAtIndex:`: the address that the unit at `index` belongs to, or an absent range. An address is
/// - "scheme://…" with any scheme, or "mailto:…" and its like ("tel:", "sms:", "sip:", "sips:", "xmpp:", "urn:",
///   "magnet:", "news:", "geo:");
/// - a host that begins with "www." and what follows it;
/// - a mail address: a name, "@" and a host with a dot.
/// It ends before white space, quotation marks, angle brackets and East Asian punctuation. Closing punctuation is not
/// part of it, nor is a closing bracket that has no opening one in the address. Letters outside ASCII may be part of
/// it.
VELAN_EXPORT Range getLinkRangeAtIndex(const String& string, int64_t index);

}  // namespace velan

#endif  // VELAN_QUERY_WORDS_LINKS_H
