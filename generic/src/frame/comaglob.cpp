// The process-wide, reference-counted record in which the sibling libraries have their slots.
#include <cstring>

#include "checks.h"
#include "comcfg.h"
#include "zrvintl.h"

CsAppGlobal Application_global;

CS_RETCODE com_appglobal_alloc(CsAppGlobal **appglobal, CS_THREAD *thread, CS_INT flags) noexcept {
  COMN_CHECK_PTR(appglobal, COMN_TRACE(CS_FAIL));
  CsAppGlobal *record = &Application_global;
  if ((flags & COM_APPGLOBAL_STATIC) == 0) {
    record = static_cast<CsAppGlobal *>(comn_malloc(sizeof *record));
    if (record == nullptr)
      return COMN_TRACE(CS_MEM_ERROR);
    std::memset(record, 0, sizeof *record);
  }
  COMN_CHECK(record->ag_accesscnt >= 0, COMN_TRACE(CS_FAIL));

  // Deliberate: every access but the first loses the head of the configuration chain. The
  // configuration reader relies on it.
  if (record->ag_accesscnt == 0)
    record->ag_ctxthread = thread;
  else
    record->ag_cfgchain = nullptr;
  ++record->ag_accesscnt;
  *appglobal = record;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com_appglobal_drop(CsAppGlobal *appglobal, CS_INT flags) noexcept {
  COMN_CHECK_PTR(appglobal, COMN_TRACE(CS_FAIL));
  const bool is_static = (flags & COM_APPGLOBAL_STATIC) != 0;
  --appglobal->ag_accesscnt;
  COMN_CHECK(appglobal->ag_accesscnt >= 0, COMN_TRACE(CS_FAIL));
  COMN_CHECK(!is_static || appglobal == &Application_global, COMN_TRACE(CS_FAIL));
  if (appglobal->ag_accesscnt > 0)
    return COMN_TRACE(CS_SUCCEED);

  for (const CS_INT subscribers : appglobal->ag_subscribers)
    COMN_CHECK(subscribers == 0, COMN_TRACE(CS_FAIL));
  if (appglobal->ag_cfgchain != nullptr)
    comn_globdrop_cfg(appglobal->ag_cfgchain);
  std::memset(appglobal, 0, sizeof *appglobal);
  if (appglobal != &Application_global)
    comn_free(appglobal);
  return COMN_TRACE(CS_SUCCEED);
}
