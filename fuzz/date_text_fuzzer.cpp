// Text to dates in four character sets, against an interpreter that follows the rules step by step. Of
// the input, the first four bytes are the set and whether names are known, what is wanted and in which
// precision, the style and the order; each other one is an ASCII character, in its wide form where its
// top bit is set. The same bytes are then a text as they stand, for all entry points.
#include <cstdint>
#include <string>

#include "date_text_reference.h"
#include "fuzz_input.h"
#include "test_charset.h"
#include "zrvcomn/datetime.h"

using zrvfuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  constexpr size_t head = 4;
  if (size < head || size > 1024)
    return 0;
  zrvtest::TestCharset sets[] = {zrvtest::TestCharset::one_byte(),
                                 zrvtest::TestCharset::double_byte(),
                                 zrvtest::TestCharset::four_byte(), zrvtest::TestCharset::utf8()};
  zrvtest::TestCharset &set = sets[data[0] % 4];
  const bool has_names = (data[0] & 4) == 0, micros = (data[1] & 4) != 0;
  const int partonly = data[1] % 4, style = data[2], order = data[3] % 8;
  CS_CHAR **const names = has_names ? com__get_months() : nullptr;
  CS_CHAR **const short_names = has_names ? com__get_shortmonths() : nullptr;

  std::string ascii;
  for (size_t i = head; i < size; ++i)
    ascii += static_cast<char>(data[i] & 0x7F);
  size_t next = head - 1;
  const zrvfuzz::ExactText text(set.spell(ascii, [&] { return (data[++next] & 0x80) != 0; }));
  CS_DATEREC fields;
  fields.dateyear = zrvtest::untouched_year;
  CS_BOOL truncated;
  const int status = xdaterecfromchar(&fields, text.data(), text.size(), partonly, style, order,
                                      names, short_names, set.get(),
                                      micros ? CS_TYPE_BIGDATETIME : CS_TYPE_DATETIME, &truncated);
  const zrvtest::DateParse expected =
      zrvtest::slow_date_parse(ascii, partonly, style, order, has_names, micros);
  require(status == expected.status);
  if (status == 0 || status == DT_NO_DATE) {
    const zrvtest::DateFields got = {fields.dateyear,    fields.datemonth,   fields.datedmonth,
                                     fields.datehour,    fields.dateminute,  fields.datesecond,
                                     fields.datemsecond, fields.datesecfrac, fields.datesecprec};
    require(got == expected.fields && (truncated == 1) == expected.truncated);
  }

  const zrvfuzz::ExactText raw(
      std::string(reinterpret_cast<const char *>(data) + head, size - head));
  const auto read = [&](auto entry, auto value) {
    return entry(&value, raw.data(), raw.size(), style, order, names, short_names, set.get(),
                 nullptr);
  };
  const int results[] = {read(com__datefromchar_mb, CS_DATETIME{}),
                         read(com__date4fromchar_mb, CS_DATETIME4{}),
                         read(com__bigdatetimefromchar_mb, CS_BIGDATETIME{}),
                         read(com__dateafromchar_mb, CS_DATE{}),
                         read(com__timeafromchar_mb, CS_TIME{}),
                         read(com__bigtimefromchar_mb, CS_BIGTIME{}),
                         read(com__timefromchar_mb, CS_DATETIME{})};
  for (const int result : results)
    require(result >= DT_LEFTOVER && result <= 9);
  return 0;
}
