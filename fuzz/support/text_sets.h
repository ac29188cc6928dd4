// Formats and locales of character sets that are made by hand, and a context whose formats may ask for one
// of four.
#ifndef ZRVFUZZ_TEXT_SETS_H
#define ZRVFUZZ_TEXT_SETS_H

#include "test_charset.h"
#include "zrvcomn/charset.h"
#include "zrvcomn/comloc.h"

namespace zrvfuzz {

// A locale that has a character set.
struct SetLocale {
  explicit SetLocale(CS_ATTRIB *attributes) {
    charset.oid = &oid;
    charset.char_attrib = attributes;
    cache.locchardesc = &charset;
    locale.ctypeptr = &cache;
  }
  SetLocale(const SetLocale &) = delete;
  SetLocale &operator=(const SetLocale &) = delete;

  CsOID oid{};
  CsCharDesc charset{};
  CsLocCache cache{};
  CS_LOCALE locale{};
};

// The same with the tables of the set.
struct TextSet : SetLocale {
  explicit TextSet(zrvtest::TestCharset set, int csid = 0)
      : SetLocale(nullptr), tables(std::move(set)) {
    tables.get()->cs_id = static_cast<CS_BYTE>(csid);
    charset.char_attrib = tables.get();
  }

  zrvtest::TestCharset tables;
};

struct TextSets {
  TextSets() {
    context.ctxlocale = &one_byte.locale;
    context.ctxglobals = &globals;
    globals.cmg_utf8_charset = &utf8.charset;
  }
  TextSet &operator[](unsigned choice) {
    TextSet *const sets[] = {&one_byte, &two_bytes, &four_bytes, &utf8};
    return *sets[choice % 4];
  }

  TextSet one_byte{zrvtest::TestCharset::one_byte(), 1};
  TextSet two_bytes{zrvtest::TestCharset::double_byte(true), 140};
  TextSet four_bytes{zrvtest::TestCharset::four_byte(), 173};
  TextSet utf8{zrvtest::TestCharset::utf8(), 190};
  CsCtxGlobals globals{};
  CS_CONTEXT context{};
};

inline CS_DATAFMT make_format(CS_INT type, size_t maxlength, CS_INT format = 0,
                              SetLocale *set = nullptr) {
  CS_DATAFMT result{};
  result.datatype = type;
  result.maxlength = static_cast<CS_INT>(maxlength);
  result.format = format;
  result.locale = set != nullptr ? &set->locale : nullptr;
  return result;
}

} // namespace zrvfuzz

#endif
