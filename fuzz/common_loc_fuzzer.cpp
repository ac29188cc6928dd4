// Any bytes as common.loc: a cache gets whole date tables, which are found again and can be copied, or a told
// status and nothing else.
#include <cstring>

#include "fuzz_home.h"
#include "fuzz_input.h"
#include "zrvcomn/charset.h"
#include "zrvcomn/comerr.h"
#include "zrvcomn/comloc.h"
#include "zrvcomn/zrvintl.h"

namespace {

using zrvfuzz::require;

template <size_t count>
void check_names(CS_BYTE *const (&names)[count], const CS_INT (&lengths)[count], size_t longest) {
  for (size_t i = 0; i < count; ++i) {
    require(names[i] != nullptr && static_cast<size_t>(lengths[i]) <= longest);
    require(std::strlen(reinterpret_cast<const char *>(names[i])) ==
            static_cast<size_t>(lengths[i]));
  }
}

void check_table(const CS_DATEINFO &table) {
  check_names(table.months, table.mon_len, 20);
  check_names(table.shortmonths, table.shrtmon_len, 9);
  check_names(table.days, table.day_len, 30);
  require(table.firstday >= 1 && table.firstday <= 7);
  require(table.is12hour == 0 || table.is12hour == 1);
  require(strnlen(table.dateorder, sizeof table.dateorder) < sizeof table.dateorder);
  require(table.locdateorder_id >= 1 && table.locdateorder_id <= 6);
  require(table.convertfmt == com__map_dateorder_id_to_fmt(table.locdateorder_id));
  require(table.bdtconvertfmt == -1);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  static const zrvfuzz::Home home("locales/message/x/common.loc");
  home.write(data, size);
  CsOID language{};
  CS_MESSAGE message{};
  message.lang_oid = &language;
  CsCharDesc charset{};
  char name[] = "x";
  CsLocCache cache{};
  cache.langname = name;
  cache.langnamelen = sizeof name - 1;
  cache.locchardesc = &charset;
  cache.locmessage = &message;
  CsCtxGlobals globals{};
  CS_CONTEXT context{};
  context.ctxglobals = &globals;
  const CS_RETCODE result = comn__read_common(&context, &cache, nullptr, 0);
  require(result == CS_SUCCEED || result == CS_FAIL || result == COM_INTL_ERROR);
  require((context.ctxintlerr < 0) == (result == COM_INTL_ERROR));
  require(globals.cmg_datetime == cache.locdateinfo);
  require((cache.locdateinfo != nullptr) == (result == CS_SUCCEED));
  if (result == CS_SUCCEED) {
    check_table(*cache.locdateinfo);
    require(comn__scan_cache_dt(&context, &language) == cache.locdateinfo);
    auto *const copy = static_cast<CS_DATEINFO *>(comn_malloc(sizeof(CS_DATEINFO)));
    require(comn__copy_dtinfo(cache.locdateinfo, copy) == CS_SUCCEED);
    check_table(*copy);
    // By what they hold, not by the language.
    CS_DATEINFO original = *cache.locdateinfo;
    original.id = copy->id = nullptr;
    require(comn__cmp_dtinfo(&original, copy));
    comn__free_dtinfo(copy);
  }
  return comn_intl_dt_drop(&context) != CS_SUCCEED;
}
