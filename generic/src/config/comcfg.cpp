// Handles on configuration files, and the chain of the files that are open.
#include "comcfg.h"

#include <cstdio>

#include "checks.h"
#include "config.h"
#include "zrvintl.h"

using namespace comn::config;

namespace {

struct Name {
  CS_CHAR *text;
  CS_INT length;
};

// ---- the chain ----

CS_CFGCHAIN *find_file(CS_CFGCHAIN *chain, Name name) noexcept {
  for (; chain != nullptr; chain = chain->next) {
    const auto *const data = static_cast<const CfgData *>(chain->cfgc_data);
    if (data->cfgnamelen == name.length &&
        std::memcmp(data->cfgname, name.text, static_cast<size_t>(name.length)) == 0)
      return chain;
  }
  return nullptr;
}

CS_CFGCHAIN *push_file(CsAppGlobal *global) noexcept {
  auto *const chain = static_cast<CS_CFGCHAIN *>(comn_calloc(1, sizeof(CS_CFGCHAIN)));
  if (chain == nullptr)
    return nullptr;
  chain->next = global->ag_cfgchain;
  if (chain->next != nullptr)
    chain->next->prev = chain;
  global->ag_cfgchain = chain;
  return chain;
}

// Takes a record off its chain, which the process-wide record may have lost, and releases it.
void drop_file(CS_CFGCHAIN *chain) noexcept {
  if (Application_global.ag_cfgchain == chain)
    Application_global.ag_cfgchain = chain->next;
  if (chain->prev != nullptr)
    chain->prev->next = chain->next;
  if (chain->next != nullptr)
    chain->next->prev = chain->prev;
  cfg___drop_data(static_cast<CfgData *>(chain->cfgc_data));
  comn_free(chain);
}

// ---- the ring of handles ----

void link_handle(CS_CFGCHAIN *chain, CS_CONFIG *cfg) noexcept {
  CS_CONFIG *const newest = chain->cfgc_handles;
  cfg->next = newest != nullptr ? newest : cfg;
  cfg->prev = newest != nullptr ? newest->prev : cfg;
  cfg->next->prev = cfg->prev->next = cfg;
  cfg->cfg_chain = chain;
  chain->cfgc_handles = cfg;
  ++chain->cfgc_refcount;
}

void unlink_handle(CS_CONFIG *cfg) noexcept {
  CS_CFGCHAIN *const chain = cfg->cfg_chain;
  cfg->prev->next = cfg->next;
  cfg->next->prev = cfg->prev;
  if (chain->cfgc_handles == cfg)
    chain->cfgc_handles = cfg->next != cfg ? cfg->next : nullptr;
  --chain->cfgc_refcount;
}

// Parts all handles from their file.
void release_handles(CS_CFGCHAIN *chain) noexcept {
  while (CS_CONFIG *const cfg = chain->cfgc_handles) {
    unlink_handle(cfg);
    cfg->next = cfg->prev = nullptr;
    cfg->cfg_chain = nullptr;
  }
}

// ---- opening ----

constexpr int path_size = COM_CFG_MAXNAME + 1;

// The path of the default file.
CS_RETCODE default_name(CS_CHAR (&path)[path_size], Name &name) noexcept {
  CS_CHAR *const home = com_getenv(argument("ZARVEK"));
  COMN_CHECK(home != nullptr, CS_FAIL);
  const int length =
      std::snprintf(path, sizeof path, "%s%s%s%s%s", home, "/", "config", "/", "ncl.cfg");
  comn_free(home);
  name = {path, length};
  return CS_SUCCEED;
}

CS_RETCODE find_name(CS_CHAR (&path)[path_size], Name &name) noexcept {
  if (name.length == CS_UNUSED)
    return default_name(path, name);
  const bool is_terminated = name.length == CS_LEN_NULLTERM;
  if (!is_terminated && name.length < 1)
    return CS_FAIL;
  COMN_CHECK_PTR(name.text, CS_FAIL);
  if (is_terminated)
    name.length = static_cast<CS_INT>(strnlen(name.text, INT32_MAX));
  return CS_SUCCEED;
}

// A handle on a file, which is loaded if it is new.
CS_RETCODE open_file(CS_CONTEXT *ctx, CsAppGlobal *global, Name name, CS_CONFIG **cfg) noexcept {
  CS_CFGCHAIN *chain = find_file(global->ag_cfgchain, name);
  const bool is_new = chain == nullptr;
  if (is_new && (chain = push_file(global)) == nullptr)
    return report(ctx, COM_CFGERR_MEMORY, in_init);
  auto *const handle = static_cast<CS_CONFIG *>(ctx->ctxmalloc(ctx, sizeof(CS_CONFIG)));
  if (handle != nullptr) {
    *handle = {};
    handle->cfg_ctx = ctx;
    link_handle(chain, handle);
    if (!is_new || cfg___load_config(handle, name.text, name.length) == CS_SUCCEED) {
      *cfg = handle;
      return CS_SUCCEED;
    }
    comn_free(handle);
  }
  if (is_new)
    drop_file(chain);
  return CS_FAIL;
}

} // namespace

CS_RETCODE comn_init_cfg(CS_CONTEXT *ctx, CS_CHAR *configname, CS_INT confignamelen,
                         CS_CONFIG **cfg) noexcept {
  COMN_CHECK_PTR(ctx, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(cfg, COMN_TRACE(CS_FAIL));
  COMN_CHECK(ctx->ctxversion >= COM_CFG_MIN_CTXVERSION, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(ctx->ctxmalloc, COMN_TRACE(CS_FAIL));
  CS_CHAR path[path_size];
  Name name = {configname, confignamelen};
  const CS_RETCODE named = find_name(path, name);
  if (named != CS_SUCCEED)
    return COMN_TRACE(named);
  if (name.length > COM_CFG_MAXNAME)
    return COMN_TRACE(report(ctx, COM_CFGERR_NAME, in_init, Shown(name.text, name.length).get()));
  // Deliberate: nobody gives this subscription back, and any but the first clears the chain, so the
  // look-up finds a file only when this is the first subscription of the process.
  CsAppGlobal *global = nullptr;
  const CS_RETCODE subscribed = com_appglobal_alloc(&global, ctx->ctxthread, COM_APPGLOBAL_STATIC);
  if (subscribed != CS_SUCCEED)
    return COMN_TRACE(subscribed);
  return COMN_TRACE(open_file(ctx, global, name, cfg));
}

CS_RETCODE comn_drop_cfg(CS_CONFIG *cfg, CS_INT option) noexcept {
  COMN_CHECK_PTR(cfg, COMN_TRACE(CS_FAIL));
  COMN_CHECK(option == COM_CFG_DROP_NORMAL || option == COM_CFG_DROP_FORCE, COMN_TRACE(CS_FAIL));
  CS_CFGCHAIN *const chain = cfg->cfg_chain;
  if (chain == nullptr) {
    report(cfg->cfg_ctx, COM_CFGERR_HANDLE, in_drop);
    comn_free(cfg);
    return COMN_TRACE(CS_FAIL);
  }
  unlink_handle(cfg);
  if (option == COM_CFG_DROP_FORCE && chain->cfgc_refcount > 0) {
    report(cfg->cfg_ctx, COM_CFGERR_FORCED, in_drop);
    release_handles(chain);
  }
  if (chain->cfgc_refcount == 0)
    drop_file(chain);
  // Deliberate: not through ctxfree.
  comn_free(cfg);
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE comn_globdrop_cfg(CS_VOID *cfgchain) noexcept {
  auto *chain = static_cast<CS_CFGCHAIN *>(cfgchain);
  while (chain != nullptr) {
    CS_CFGCHAIN *const next = chain->next;
    release_handles(chain);
    drop_file(chain);
    chain = next;
  }
  return COMN_TRACE(CS_SUCCEED);
}
