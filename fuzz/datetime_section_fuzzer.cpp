// Any bytes as common.loc: the date section is taken whole, with all its texts ended and its numbers in
// bounds, or refused with a told status.
#include <cstring>
#include <string_view>

#include "fuzz_input.h"
#include "text_file.h"
#include "zrvcomn/zrvintl.h"

namespace {

using zrvfuzz::require;

template <size_t count, size_t size>
void check_texts(const char (&texts)[count][size]) {
  for (const auto &text : texts)
    require(strnlen(text, size) < size);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  const zrvtest::TextFile file(std::string_view(reinterpret_cast<const char *>(data), size));
  INTL_LOCFILE reader;
  require(intl_open(file.path(), &reader) == 0);
  int status = 0;
  while (const char *const section = intl_nextsection(&reader, &status)) {
    if (std::strcmp(section, "datetime") != 0)
      continue;
    intl_dateinfo *const info = new intl_dateinfo; // watched at its end
    status = intl_datetime(&reader, info);
    if (status == 0) {
      check_texts(info->months);
      check_texts(info->shortmonths);
      check_texts(info->days);
      require(info->firstday >= 1 && info->firstday <= 7);
      require(strnlen(info->dateorder, 4) < 4);
      require(info->is12hour == 0 || info->is12hour == 1);
    }
    delete info;
    break;
  }
  require(status <= 0 && status >= ZRVINTL_EDATE);
  return intl_close(&reader);
}
