// A context whose locales have character sets made by hand, for conversions of text.
#ifndef ZRVTEST_TEXT_WORLD_H
#define ZRVTEST_TEXT_WORLD_H

#include <string>

#include "conversion.h"
#include "test_charset.h"
#include "zrvcomn/charset.h"
#include "zrvcomn/comloc.h"
#include "zrvcomn/comnlib.h"
#include "zrvcomn/datetime.h"

namespace zrvtest {

// A character set, and a locale that has it in all categories.
struct TextSet {
  TextSet(TestCharset set, int csid) : tables(std::move(set)) {
    tables.get()->cs_id = static_cast<CS_BYTE>(csid);
    init(tables.get());
  }
  // The built-in set.
  TextSet() : tables(TestCharset::one_byte()) { init(com_get_charattrib()); }
  TextSet(const TextSet &) = delete;
  TextSet &operator=(const TextSet &) = delete;

  std::string wide(const std::string &ascii) const {
    return tables.spell(ascii, [] { return true; });
  }

  TestCharset tables;
  CsOID oid{};
  CsCharDesc charset{};
  CsLocCache cache{};
  CS_DATEINFO dates{};
  CS_LOCALE locale{};

private:
  void init(CHAR_ATTRIB *attributes) {
    charset.oid = &oid;
    charset.char_attrib = attributes;
    cache.locchardesc = &charset;
    cache.locdateinfo = &dates;
    for (int month = 0; month < 12; ++month) {
      dates.months[month] = reinterpret_cast<CS_BYTE *>(com__get_months()[month]);
      dates.shortmonths[month] = reinterpret_cast<CS_BYTE *>(com__get_shortmonths()[month]);
    }
    dates.locdateorder_id = com__get_date_order_id();
    locale.collateptr = locale.ctypeptr = locale.messageptr = locale.monetaryptr =
        locale.numericptr = locale.timeptr = &cache;
  }
};

// The family of a source of text.
enum TextFamily { chars, varchars };
inline constexpr TextFamily text_families[] = {chars, varchars};
inline const char *const text_units[] = {"com_char.cpp", "com_varchar.cpp"};

struct TextMember {
  const char *destination;
  CS_INT code;
  CS_CONV_FUNC function[2]; // by family
  size_t width;             // of a fixed type, else of the record, else 0
};

#define ZRVTEST_TEXT_MEMBER(destination, code, width)                                              \
  { #destination, code, {comn_charto##destination, comn_varcharto##destination }, width }

// What came of a conversion.
struct FromText {
  CS_RETCODE status;
  CS_INT destlen;
  std::string bytes; // the whole destination

  template <class T>
  T value() const {
    T result{};
    std::memcpy(&result, bytes.data(), std::min(sizeof result, bytes.size()));
    return result;
  }
  bool is_untouched() const { return bytes.find_first_not_of('\xA5') == std::string::npos; }
};

class TextWorld {
public:
  TextWorld() {
    context.ctxglobals = &globals;
    context.ctxlocale = &iso_1.locale;
    globals.cmg_utf8_charset = &utf8.charset;
    globals.cmg_utf8_ctypeptr = &utf8.cache;
  }

  // The source stands alone, with poison behind it; of a record the format says nothing of the length.
  FromText convert(TextFamily family, const TextMember &member, const std::string &text,
                   CS_DATAFMT destfmt, size_t room, TextSet *set = nullptr,
                   CS_INT source_format = 0) {
    const auto length = static_cast<CS_INT>(text.size());
    std::string source = text;
    CS_DATAFMT srcfmt = make_format(CS_TYPE_CHAR, length, source_format);
    if (family == varchars) {
      const auto stored = static_cast<CS_SMALLINT>(length);
      source.insert(0, reinterpret_cast<const char *>(&stored), sizeof stored);
      source.resize(sizeof(CS_VARCHAR), '\xEE');
      srcfmt.datatype = CS_TYPE_VARCHAR;
      srcfmt.maxlength = sizeof(CS_VARCHAR::str);
    }
    srcfmt.locale = set != nullptr ? &set->locale : nullptr;
    GuardedBuffer from(source.size(), 1), dest(room, 1);
    std::memcpy(from.data(), source.data(), source.size());
    CS_INT destlen = Conversion::untouched_length;
    const CS_RETCODE status =
        member.function[family](&context, &srcfmt, from.data(), &destfmt, dest.data(), &destlen);
    EXPECT_EQ(from.contents(), source) << "the source was written";
    return {status, destlen, dest.contents()};
  }

  FromText to_fixed(TextFamily family, const TextMember &member, const std::string &text,
                    TextSet *set = nullptr) {
    return convert(family, member, text, make_format(member.code, -1), member.width, set);
  }

  CS_CONTEXT context{};
  CsCtxGlobals globals{};
  TextSet iso_1;
  TextSet utf8{TestCharset::utf8(), 190};
  TextSet two_bytes{TestCharset::double_byte(true), 140};
  TextSet four_bytes{TestCharset::four_byte(), 173};
};

} // namespace zrvtest

#endif
