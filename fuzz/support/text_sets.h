// A context whose formats may ask for one of four character sets, made by hand.
#ifndef ZRVFUZZ_TEXT_SETS_H
#define ZRVFUZZ_TEXT_SETS_H

#include "test_charset.h"
#include "zrvcomn/charset.h"
#include "zrvcomn/comloc.h"

namespace zrvfuzz {

// A character set, and a locale that has it.
struct TextSet {
  TextSet(zrvtest::TestCharset set, int csid) : tables(std::move(set)) {
    tables.get()->cs_id = static_cast<CS_BYTE>(csid);
    charset.oid = &oid;
    charset.char_attrib = tables.get();
    cache.locchardesc = &charset;
    locale.ctypeptr = &cache;
  }
  TextSet(const TextSet &) = delete;
  TextSet &operator=(const TextSet &) = delete;

  zrvtest::TestCharset tables;
  CsOID oid{};
  CsCharDesc charset{};
  CsLocCache cache{};
  CS_LOCALE locale{};
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

inline CS_DATAFMT make_format(CS_INT type, CS_INT maxlength, CS_INT format, TextSet &set) {
  CS_DATAFMT result{};
  result.datatype = type;
  result.maxlength = maxlength;
  result.format = format;
  result.locale = &set.locale;
  return result;
}

} // namespace zrvfuzz

#endif
