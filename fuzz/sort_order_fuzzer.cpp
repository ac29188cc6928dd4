// Any bytes as the file of a sort order: the library and the slow compiler of the tests agree on the
// status and on every byte of the table.
#include <cstring>
#include <string_view>

#include "fuzz_input.h"
#include "sort_order_reference.h"
#include "text_file.h"
#include "zrvcomn/comnlib.h"
#include "zrvcomn/zrvintl.h"

namespace {

using zrvfuzz::require;

// What loading does behind the opening of the file.
CS_RETCODE compile(CS_CONTEXT *context, const char *path, CsSortDesc *order) {
  INTL_LOCFILE file;
  require(intl_open(path, &file) == 0);
  int status = 0;
  const char *section;
  do
    section = intl_nextsection(&file, &status);
  while (section != nullptr && std::strcmp(section, "sortorder") != 0);
  CS_CHAR *key = nullptr;
  CS_RETCODE result = CS_FAIL;
  if (section != nullptr)
    result = comn__get_sort_description(context, &file, order->char_sort_descript, &key);
  else if (status < 0)
    result = COM_INTL_ERROR;
  if (result == CS_SUCCEED)
    result = order->char_sort_descript->class_ == 1 ? comn__build_class1(context, &file, key, order)
                                                    : CS_FAIL;
  require(intl_close(&file) == 0);
  return result;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  const std::string_view text(reinterpret_cast<const char *>(data), size);
  const zrvtest::SlowOrder slow = zrvtest::compile_slowly(text);
  const zrvtest::TextFile file(text);
  CS_CONTEXT context{};
  S_DESCRIPT header{};
  CsSortDesc order{};
  order.char_sort_descript = &header;
  const CS_RETCODE result = compile(&context, file.path(), &order);
  require(result == slow.result);
  const auto *const table = static_cast<const SO_1CLASS *>(order.char_sort_class);
  if (result == CS_SUCCEED) {
    require(std::memcmp(&header, &slow.header, sizeof header) == 0);
    require((table == nullptr) == (header.isbin != 0));
    require(table == nullptr || std::memcmp(table, &slow.table, sizeof slow.table) == 0);
  }
  comn_free(order.char_sort_class);
  return 0;
}
