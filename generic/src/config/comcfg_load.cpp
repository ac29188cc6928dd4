// Loads a configuration file, and releases what was read from it.
#include "comcfg.h"
#include "config.h"
#include "lmpriv.h"
#include "zrvintl.h"

using namespace comn::config;

namespace {

constexpr CS_INT first_buffer = 1024;

// ---- the pool ----

CS_RETCODE no_lock(MM_HANDLE *, CS_VOID *) noexcept {
  return CS_SUCCEED;
}

CS_VOID *get_region(MM_HANDLE *, CS_VOID *, CS_UINT size) noexcept {
  return comn_malloc(size);
}

void put_region(MM_HANDLE *, CS_VOID *, CS_VOID *region) noexcept {
  comn_free(region);
}

template <class Function>
void set_function(MM_HANDLE *pool, CS_INT property, Function *function) noexcept {
  comn_mmproperty(pool, MM_ACTION_SET, property, reinterpret_cast<CS_VOID *>(function), CS_UNUSED,
                  nullptr);
}

CS_RETCODE make_pool(CfgData *data) noexcept {
  CS_INT overhead = 0;
  comn_mmproperty(nullptr, MM_ACTION_GET, MM_PROP_OVERHEAD, &overhead, CS_UNUSED, nullptr);
  data->mpoolhead = comn_malloc(static_cast<size_t>(overhead));
  if (data->mpoolhead == nullptr)
    return CS_MEM_ERROR;
  auto *pool = static_cast<MM_HANDLE *>(data->mpoolhead);
  const CS_RETCODE result = comn_mmmanage(nullptr, 0, &pool);
  if (result != CS_SUCCEED)
    return result;
  data->mpool = pool;
  comn_mmproperty(pool, MM_ACTION_SET, MM_PROP_LOCKARG, data->mm_mtx, CS_UNUSED, nullptr);
  set_function(pool, MM_PROP_UNLOCK, no_lock);
  set_function(pool, MM_PROP_LOCK, no_lock);
  set_function(pool, MM_PROP_SBREAK, get_region);
  set_function(pool, MM_PROP_UNSBREAK, put_region);
  return CS_SUCCEED;
}

// ---- the data ----

// The file's name, with a terminator, from cleared memory.
CS_RETCODE copy_name(CS_CONFIG *cfg, const CS_CHAR *name, CS_INT namelen) noexcept {
  CfgData *const data = data_of(cfg);
  CS_VOID *copy = nullptr;
  const CS_RETCODE result = comn_mmalloc(pool_of(cfg), static_cast<CS_UINT>(namelen) + 1, &copy);
  if (result != CS_SUCCEED)
    return result;
  data->cfgname = static_cast<CS_CHAR *>(std::memcpy(copy, name, static_cast<size_t>(namelen)));
  data->cfgnamelen = namelen;
  return CS_SUCCEED;
}

CS_RETCODE make_lists(CS_CONFIG *cfg) noexcept {
  CfgData *const data = data_of(cfg);
  // Files are open to older contexts than lists are; those get the first version of lists.
  const CS_INT version = std::max(cfg->cfg_ctx->ctxversion, CS_INT{LM_MIN_VERSION});
  LM_CONTEXT *lists = nullptr;
  CS_RETCODE result = lm_initlm(version, data->cfgname, data->cfgnamelen, &lists);
  if (result != CS_SUCCEED)
    return CS_MEM_ERROR; // it has no other reason
  data->lmctx = lists;
  LM_HANDLE *sections = nullptr;
  result = lm_list_alloc(lists, LM_CHASH, argument("sections"), CS_LEN_NULLTERM, &sections);
  data->sections = sections;
  return result;
}

CS_RETCODE make_data(CS_CONFIG *cfg, const CS_CHAR *name, CS_INT namelen) noexcept {
  CfgData *const data = data_of(cfg);
  CS_RETCODE result = make_pool(data);
  if (result == CS_SUCCEED)
    result = copy_name(cfg, name, namelen);
  if (result == CS_SUCCEED)
    result = make_lists(cfg);
  return result == CS_SUCCEED ? CS_SUCCEED : report_list(cfg->cfg_ctx, result, in_init);
}

CS_RETCODE parse_file(CS_CONFIG *cfg) noexcept {
  CS_RETCODE result = cfg__init_parse(cfg);
  if (result == CS_SUCCEED)
    result = cfg__parse(cfg);
  // What stands in half a file may say something else than the whole.
  if (result == CS_SUCCEED && parse_of(cfg)->damaged != 0)
    result = CS_FAIL;
  cfg__clean_parse(cfg);
  return result;
}

} // namespace

CS_RETCODE cfg___load_config(CS_CONFIG *cfg, CS_CHAR *name, CS_INT namelen) noexcept {
  CS_CFGCHAIN *const chain = cfg->cfg_chain;
  chain->cfgc_data = comn_calloc(1, sizeof(CfgData));
  if (chain->cfgc_data == nullptr)
    return report(cfg->cfg_ctx, COM_CFGERR_MEMORY, in_init);
  if (make_data(cfg, name, namelen) == CS_SUCCEED && parse_file(cfg) == CS_SUCCEED)
    return CS_SUCCEED;
  cfg___drop_data(data_of(cfg));
  chain->cfgc_data = nullptr;
  return CS_FAIL;
}

CS_RETCODE cfg___drop_data(CfgData *data) noexcept {
  if (data == nullptr)
    return CS_SUCCEED;
  // The context takes all lists along, the newest first, which is how it finds them without a search.
  if (data->lmctx != nullptr)
    lm_exit(static_cast<LM_CONTEXT *>(data->lmctx), LM_EXIT_FORCE);
  if (data->mpool != nullptr)
    comn_mmdrop(static_cast<MM_HANDLE *>(data->mpool), MM_DROP_FORCE);
  comn_free(data->mpoolhead);
  comn_free(data);
  return CS_SUCCEED;
}

CS_RETCODE cfg__init_parse(CS_CONFIG *cfg) noexcept {
  auto *const info = allocate<CfgParseInfo>(cfg);
  if (info == nullptr)
    return CS_FAIL;
  CfgData *const data = data_of(cfg);
  data->parseinfo = info;
  info->iocs = intl_iocsfopen(data->cfgname, INTL_IOCS_READ);
  if (info->iocs == nullptr)
    return report(cfg->cfg_ctx, COM_CFGERR_OPEN, in_init, data->cfgname);
  info->line = 1;
  info->buffer = static_cast<CS_CHAR *>(allocate(cfg, first_buffer));
  if (info->buffer == nullptr)
    return CS_FAIL;
  info->maxbuflen = first_buffer;
  info->attr = com_intl_charattr(cfg->cfg_ctx, nullptr);
  return CS_SUCCEED;
}

void cfg__clean_parse(CS_CONFIG *cfg) noexcept {
  CfgData *const data = data_of(cfg);
  CfgParseInfo *const info = data->parseinfo;
  if (info == nullptr)
    return;
  data->parseinfo = nullptr;
  if (info->iocs != nullptr)
    intl_iocsfclose(info->iocs);
  for (CfgTok *list : {info->lasttok, info->sparetoks})
    while (list != nullptr) {
      CfgTok *const token = list;
      list = list->next;
      comn_mmfree(pool_of(cfg), token);
    }
  if (info->buffer != nullptr)
    comn_mmfree(pool_of(cfg), info->buffer);
  comn_mmfree(pool_of(cfg), info);
}
