// Contexts whose locales have character sets made by hand: a number and an identity, no tables.
#ifndef ZRVTEST_CHARSET_WORLD_H
#define ZRVTEST_CHARSET_WORLD_H

#include <deque>
#include <string>

#include "guarded_buffer.h"
#include "test_context.h"
#include "zrvcomn/charset.h"
#include "zrvcomn/comloc.h"

namespace zrvtest {

// A character set, and a locale that has it in all categories.
struct HandSet {
  explicit HandSet(int csid) {
    attributes.cs_id = static_cast<CS_BYTE>(csid);
    charset.oid = &oid;
    charset.char_attrib = &attributes;
    cache.locchardesc = &charset;
    locale.collateptr = locale.ctypeptr = locale.messageptr = locale.monetaryptr =
        locale.numericptr = locale.timeptr = &cache;
  }
  HandSet(const HandSet &) = delete;
  HandSet &operator=(const HandSet &) = delete;

  CsOID oid{};
  CHAR_ATTRIB attributes{};
  CsCharDesc charset{};
  CsLocCache cache{};
  CS_LOCALE locale{};
};

// What a conversion gave back.
struct Converted {
  CS_RETCODE status;
  std::string text;

  bool operator==(const Converted &) const = default;
};

inline std::ostream &operator<<(std::ostream &out, const Converted &converted) {
  return out << converted.status << ' ' << testing::PrintToString(converted.text);
}

class CharsetWorld {
public:
  CharsetWorld() {
    context.ctxglobals = &globals;
    context.ctxlocale = &iso_1.locale;
    globals.cmg_utf8_charset = &utf8.charset;
  }

  // comn_charset_convert between two sets; nothing behind the result is written.
  Converted convert(HandSet &from, HandSet &to, const std::string &text, size_t room,
                    CS_INT type = CS_LCTYPE_CTYPE) {
    GuardedBuffer source(text.size()), destination(room);
    std::memcpy(source.data(), text.data(), text.size());
    CS_DATAFMT srcfmt = make_format(CS_TYPE_CHAR, static_cast<CS_INT>(text.size()));
    CS_DATAFMT destfmt = make_format(CS_TYPE_CHAR, static_cast<CS_INT>(room));
    srcfmt.locale = &from.locale;
    destfmt.locale = &to.locale;
    CS_INT length = -1;
    const CS_RETCODE status = comn_charset_convert(&context, type, &srcfmt, source.data(), &destfmt,
                                                   destination.data(), &length);
    EXPECT_EQ(source.contents(), text);
    EXPECT_TRUE(length >= 0 && static_cast<size_t>(length) <= room) << length;
    return {status, destination.contents(static_cast<size_t>(length))};
  }

  Converted to_utf8(HandSet &from, const std::string &text, size_t room) {
    GuardedBuffer source(text.size()), destination(room);
    std::memcpy(source.data(), text.data(), text.size());
    CS_DATAFMT srcfmt = make_format(CS_TYPE_VARCHAR, static_cast<CS_INT>(text.size()));
    CS_INT length = -1;
    const CS_RETCODE status =
        comn__convt_to_utf8(&context, 1, &srcfmt, &from.cache, source.data(), destination.data(),
                            static_cast<CS_INT>(room), &length);
    EXPECT_EQ(source.contents(), text);
    return {status, destination.contents(static_cast<size_t>(length))};
  }

  Converted from_utf8(HandSet &to, const std::string &text, size_t room) {
    GuardedBuffer source(text.size()), destination(room);
    std::memcpy(source.data(), text.data(), text.size());
    CS_DATAFMT destfmt = make_format(CS_TYPE_VARCHAR, static_cast<CS_INT>(room));
    CS_INT length = -1;
    const CS_RETCODE status =
        comn__convt_from_utf8(&context, 1, source.data(), static_cast<CS_INT>(text.size()),
                              &destfmt, &to.cache, destination.data(), &length);
    EXPECT_EQ(source.contents(), text);
    return {status, destination.contents(static_cast<size_t>(length))};
  }

  CS_CONTEXT context{};
  CsCtxGlobals globals{};
  // Converters that need no table, and sets that have none.
  HandSet ascii_8{0}, iso_1{1}, utf8{190}, utf16{192}, rcsu{217};
  HandSet decmcs{6}, unknown{19};
};

} // namespace zrvtest

#endif
