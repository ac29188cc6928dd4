// What the units of the configuration reader share: messages, the pool, lists.
#ifndef COMN_CONFIG_CONFIG_H
#define COMN_CONFIG_CONFIG_H

#include <algorithm>
#include <cstring>

#include "comcfg.h"
#include "comerr.h"
#include "lmpublic.h"
#include "mmpublic.h"

namespace comn::config {

// The functions that messages name.
inline constexpr char in_init[] = "comn_init_cfg";
inline constexpr char in_get[] = "comn_get_cfg";
inline constexpr char in_drop[] = "comn_drop_cfg";
inline constexpr char in_include[] = "cfg__add_include";

inline CS_CHAR *argument(const char *text) noexcept {
  return const_cast<CS_CHAR *>(text);
}

// A text for a message: NUL-terminated, and cut.
class Shown {
public:
  Shown(const CS_CHAR *bytes, CS_INT length) noexcept {
    const auto shown = static_cast<size_t>(std::clamp(length, 0, CS_INT{sizeof text - 1}));
    if (shown > 0)
      std::memcpy(text, bytes, shown);
    text[shown] = '\0';
  }
  CS_CHAR *get() noexcept { return text; }

private:
  CS_CHAR text[255];
};

// Report a message. Always CS_FAIL, so that a function can end with it.
inline CS_RETCODE report(CS_CONTEXT *ctx, CS_MSGNUM number, const char *first) noexcept {
  CsErrParams ep;
  com_ep_s(&ep, argument(first));
  com__error(ctx, number, &ep);
  return CS_FAIL;
}

inline CS_RETCODE report(CS_CONTEXT *ctx, CS_MSGNUM number, const char *first,
                         CS_CHAR *second) noexcept {
  CsErrParams ep;
  com_ep_ss(&ep, argument(first), second);
  com__error(ctx, number, &ep);
  return CS_FAIL;
}

// Reports the failure of a list.
inline CS_RETCODE report_list(CS_CONTEXT *ctx, CS_RETCODE failure, const char *function) noexcept {
  return failure == CS_MEM_ERROR ? report(ctx, COM_CFGERR_MEMORY, in_init)
                                 : report(ctx, COM_CFGERR_LIST, function);
}

inline CfgData *data_of(const CS_CONFIG *cfg) noexcept {
  return static_cast<CfgData *>(cfg->cfg_chain->cfgc_data);
}

inline CfgParseInfo *parse_of(const CS_CONFIG *cfg) noexcept {
  return data_of(cfg)->parseinfo;
}

inline MM_HANDLE *pool_of(const CS_CONFIG *cfg) noexcept {
  return static_cast<MM_HANDLE *>(data_of(cfg)->mpool);
}

// Cleared memory of the file's pool; null without memory, which a message tells.
inline CS_VOID *allocate(CS_CONFIG *cfg, CS_INT size) noexcept {
  CS_VOID *block = nullptr;
  if (comn_mmalloc(pool_of(cfg), static_cast<CS_UINT>(size), &block) == CS_SUCCEED)
    return block;
  report(cfg->cfg_ctx, COM_CFGERR_MEMORY, in_init);
  return nullptr;
}

template <class Record>
Record *allocate(CS_CONFIG *cfg) noexcept {
  return static_cast<Record *>(allocate(cfg, sizeof(Record)));
}

inline CS_RETCODE list_op(CS_VOID *list, CS_INT operation, CS_VOID *key, CS_INT key_size,
                          CS_VOID *data_in, CS_VOID **data_out) noexcept {
  return lm_list_op(static_cast<LM_HANDLE *>(list), operation, key, key_size, data_in, data_out);
}

// Looks a name up in a table: CS_SUCCEED, LM_NOT_FOUND, or the failure of the list.
template <class Record>
CS_RETCODE find(CS_VOID *table, const CS_CHAR *name, CS_INT length, Record *&found) noexcept {
  CS_VOID *data = nullptr;
  const CS_RETCODE result =
      list_op(table, LM_OP_SEARCH, const_cast<CS_CHAR *>(name), length, nullptr, &data);
  if (result == CS_SUCCEED)
    found = static_cast<Record *>(data);
  return result;
}

} // namespace comn::config

#endif
