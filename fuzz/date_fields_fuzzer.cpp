// The make functions and the layout engines on records of any fields. A date and a time that can be
// made crack into the fields that they were made from; no text passes its room.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "fuzz_input.h"
#include "zrvcomn/datetime.h"

using zrvfuzz::require;

namespace {

void check_date(CS_DATEREC fields) {
  CS_DATETIME value{};
  CS_BIGDATETIME big = 0;
  const int status = com__datemake(&value, &fields);
  require(com__bigdatemake(&big, &fields) == status);
  require(status >= 0 && status <= COM_DATE_BADDAY);
  if (status != 0)
    return;
  CS_DATEREC cracked{}, big_cracked{};
  com__datecrack(&value, &cracked);
  com__bigdatecrack(&big, &big_cracked);
  require(std::memcmp(&cracked, &big_cracked, sizeof cracked) == 0);
  require(cracked.dateyear == fields.dateyear && cracked.datemonth == fields.datemonth &&
          cracked.datedmonth == fields.datedmonth);
}

void check_time(CS_DATEREC fields) {
  CS_DATETIME value{};
  CS_BIGTIME big = 0;
  com__timemake(&value, &fields);
  const int status = com__bigtimemake(&big, &fields);
  CS_BIGDATETIME both = 0;
  com_bigdatetimemake(&both, &fields);
  const bool is_negative = fields.datehour < 0 || fields.dateminute < 0 || fields.datesecond < 0 ||
                           fields.datemsecond < 0 || fields.datesecfrac < 0;
  if (status != 0 || is_negative)
    return;
  require(com__timea_check_range(&value.dttime) == 0 && com__bigtime_check_range(&big) == 0);
  CS_DATEREC cracked{}, big_cracked{};
  com__timecrack(&value, &cracked);
  com__bigtimecrack(&big, &big_cracked);
  for (const CS_DATEREC *record : {&cracked, &big_cracked})
    require(record->datehour == fields.datehour && record->dateminute == fields.dateminute &&
            record->datesecond == fields.datesecond);
}

// The text in so much room against the text without a limit, which never passes 40 bytes.
void check_text(CS_DATEREC fields, CS_INT style, size_t room) {
  for (const auto engine : {com__daterectochar, com__timerectochar})
    for (const CS_INT secprec : {300, 1000000}) {
      char whole[64];
      const CS_INT full = engine(&fields, whole, -1, style, com__get_shortmonths(), secprec);
      require(full == -1 || full == -2 || (full > 0 && full <= 40));
      // A heap block of exactly the room, for the sanitizers.
      std::vector<char> text(room + 1, '~');
      char *const start = text.data() + 1;
      const CS_INT length =
          engine(&fields, start, static_cast<CS_INT>(room), style, com__get_shortmonths(), secprec);
      const bool fits = full <= static_cast<CS_INT>(room);
      require(length == (fits ? full : 0));
      const size_t shown = full < 0 ? 0 : std::min(room, static_cast<size_t>(full));
      require(std::memcmp(start, whole, shown) == 0);
      require(std::all_of(text.begin() + 1 + static_cast<std::ptrdiff_t>(shown), text.end(),
                          [](char rest) { return rest == '~'; }));
    }
}

// Months outside the year, and days inside the month, stay.
void check_month(CS_DATEREC fields) {
  const CS_DATEREC before = fields;
  monthcheck(&fields);
  require(fields.datedmonth <= before.datedmonth);
  require(fields.datedmonth == before.datedmonth || fields.datedmonth >= 28);
  fields.datedmonth = before.datedmonth;
  require(std::memcmp(&fields, &before, sizeof fields) == 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  CS_DATEREC fields{};
  if (size < 2)
    return 0;
  std::memcpy(&fields, data + 2, std::min(size - 2, sizeof fields));
  check_date(fields);
  check_time(fields);
  check_text(fields, data[0], data[1] % 48);
  check_month(fields);
  return 0;
}
