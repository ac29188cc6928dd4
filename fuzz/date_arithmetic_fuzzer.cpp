// Additions, differences, parts and names of any values by any part, and text in any style: no
// input may be undefined, and what is added in whole days or hours comes back as the difference.
#include <cstdint>
#include <cstring>

#include "fuzz_input.h"
#include "zrvcomn/datetime.h"

using zrvfuzz::require;

namespace {

struct Input {
  std::uint8_t part, type;
  std::uint16_t style;
  CS_INT value, firstday;
  CS_DATETIME from, to;
  CS_BIGDATETIME big_from, big_to;
};

void check_ticks(const Input &input, int part) {
  char text[64];
  CS_DATETIME from = input.from, to = input.to;
  com__datepart(part, &from, input.firstday);
  require(com__datename(part, &from, text, com__get_months(), com__get_days()) <= 30);
  require(com__datetochar(&from, text, sizeof text, input.style, com__get_shortmonths()) >= -2);
  CS_DATETIME4 small;
  com__dttodate4(&from, &small);
  CS_BIGDATETIME big;
  com__datetobigdatetime(&from, &big);
  CS_INT difference = 0;
  com__datediff(part, &from, &to, &difference);
  if (part > 13)
    return;
  const bool is_valid =
      com__datea_check_range(&from.dtdays) == 0 && com__timea_check_range(&from.dttime) == 0;
  CS_DATETIME sum = from;
  if (com__date_add(part, input.value, &sum) != 0 || !is_valid)
    return;
  require(com__datea_check_range(&sum.dtdays) == 0 && com__timea_check_range(&sum.dttime) == 0);
  const bool is_exact = part == 4 || part == 5 || part == 6 || part == 2 || part == 0;
  if (is_exact) {
    require(com__datediff(part, &from, &sum, &difference) == 0);
    require(difference == input.value);
  }
}

void check_micros(const Input &input, int part) {
  char text[64];
  CS_BIGDATETIME from = input.big_from, to = input.big_to;
  com__bigdatepart(part, &from, input.firstday);
  require(com__bigdatename(part, &from, text, com__get_months(), com__get_days()) <= 30);
  require(com__bigdatetimetochar(&from, text, sizeof text, input.style, com__get_shortmonths()) >=
          -2);
  require(com__bigtimetochar(&from, text, sizeof text, input.style, com__get_shortmonths()) >= -2);
  CS_DATETIME narrow;
  com__bigdatetimetodate(&from, &narrow);
  CS_DATETIME4 small;
  com__bigdttodate4(&from, &small);
  CS_BIGINT difference = 0;
  require(com__bigdatediff(part, &from, &to, &difference) == 0);
  CS_BIGDATETIME sum = from;
  com__bigdate_add(part, input.value, &sum, input.type);
  sum = from;
  if (com__bigdate_add(part, input.value, &sum, 187) == 0 &&
      com__bigdatetime_check_range(&from) == 0) {
    require(com__bigdatetime_check_range(&sum) == 0);
    const bool is_exact = part == 14 || (part >= 4 && part <= 9) || part == 2 || part == 0;
    if (is_exact) {
      require(com__bigdatediff(part, &from, &sum, &difference) == 0);
      require(difference == input.value);
    }
  }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  Input input{};
  std::memcpy(&input, data, size < sizeof input ? size : sizeof input);
  const int part = input.part % 15;
  check_ticks(input, part);
  check_micros(input, part);
  return 0;
}
