// What the parser adds to a file's data.
#include "comcfg.h"
#include "config.h"

using namespace comn::config;

namespace {

CS_INT length_of(const CfgTok *text) noexcept {
  CS_INT length = 0;
  for (; text != nullptr; text = text->catted)
    length += text->buflen;
  return length;
}

const CS_CHAR *bytes_of(const CS_CONFIG *cfg, const CfgTok *token) noexcept {
  return parse_of(cfg)->buffer + token->offset;
}

// A text in the pool, a byte at least. False without memory.
bool copy_text(CS_CONFIG *cfg, const CfgTok *text, CS_CHAR *&copy, CS_INT &length) noexcept {
  length = length_of(text);
  copy = static_cast<CS_CHAR *>(allocate(cfg, std::max(length, 1)));
  if (copy == nullptr)
    return false;
  CS_CHAR *to = copy;
  for (; text != nullptr; text = text->catted) {
    std::memcpy(to, bytes_of(cfg, text), static_cast<size_t>(text->buflen));
    to += text->buflen;
  }
  return true;
}

CS_RETCODE make_list(CS_CONFIG *cfg, CS_INT kind, const char *name, CS_VOID *&list) noexcept {
  LM_HANDLE *made = nullptr;
  const CS_RETCODE result = lm_list_alloc(static_cast<LM_CONTEXT *>(data_of(cfg)->lmctx), kind,
                                          argument(name), CS_LEN_NULLTERM, &made);
  list = made;
  return result == CS_SUCCEED ? CS_SUCCEED : report_list(cfg->cfg_ctx, result, in_init);
}

CS_RETCODE insert(CS_CONFIG *cfg, CS_VOID *table, CS_CHAR *key, CS_INT length,
                  CS_VOID *record) noexcept {
  const CS_RETCODE result = list_op(table, LM_OP_INSERT, key, length, record, nullptr);
  return result == CS_SUCCEED ? CS_SUCCEED : report_list(cfg->cfg_ctx, result, in_init);
}

CS_RETCODE append(CS_CONFIG *cfg, CS_VOID *list, CS_VOID *record) noexcept {
  return insert(cfg, list, nullptr, LM_OP_LAST, record);
}

// A new entry of the section that is read; null, with a message, when it cannot be made.
CfgEntry *make_entry(CS_CONFIG *cfg, const CfgTok *name) noexcept {
  auto *const entry = allocate<CfgEntry>(cfg);
  if (entry != nullptr && copy_text(cfg, name, entry->entryname, entry->entrynamelen) &&
      make_list(cfg, LM_DLINK, "values", entry->values) == CS_SUCCEED &&
      insert(cfg, parse_of(cfg)->cursect->entries, entry->entryname, entry->entrynamelen, entry) ==
          CS_SUCCEED)
    return entry;
  return nullptr;
}

CS_RETCODE drop_entry(CS_VOID *item) noexcept {
  return lm_list_drop(static_cast<LM_HANDLE *>(static_cast<CfgEntry *>(item)->values),
                      LM_DROP_FORCE);
}

// Releases the lists of a section; its bytes stay in the pool.
void drop_section(const CfgSection *section) noexcept {
  CS_RETCODE (*drop)(CS_VOID *) noexcept = drop_entry;
  lm_list_drop(static_cast<LM_HANDLE *>(section->includes), LM_DROP_FORCE);
  list_op(section->entries, LM_OP_APPLY, nullptr, CS_UNUSED, &drop, nullptr);
  lm_list_drop(static_cast<LM_HANDLE *>(section->entries), LM_DROP_FORCE);
}

} // namespace

CS_RETCODE cfg__add_section(CS_CONFIG *cfg, const CfgTok *name) noexcept {
  CfgParseInfo *const info = parse_of(cfg);
  auto *const section = allocate<CfgSection>(cfg);
  if (section == nullptr || !copy_text(cfg, name, section->sectname, section->sectnamelen) ||
      make_list(cfg, LM_CHASH, "entries", section->entries) != CS_SUCCEED ||
      make_list(cfg, LM_DLINK, "includes", section->includes) != CS_SUCCEED ||
      insert(cfg, data_of(cfg)->sections, section->sectname, section->sectnamelen, section) !=
          CS_SUCCEED)
    return CS_FAIL;
  info->cursect = section;
  info->section_ok = 1;
  return CS_SUCCEED;
}

CS_RETCODE cfg__add_entry(CS_CONFIG *cfg, const CfgTok *name, const CfgTok *value) noexcept {
  CfgEntry *entry = nullptr;
  const CS_RETCODE result =
      find(parse_of(cfg)->cursect->entries, bytes_of(cfg, name), name->buflen, entry);
  if (result == LM_NOT_FOUND)
    entry = make_entry(cfg, name);
  else if (result != CS_SUCCEED)
    return report(cfg->cfg_ctx, COM_CFGERR_LIST, in_init);
  if (entry == nullptr)
    return CS_FAIL;
  auto *const record = allocate<CfgValue>(cfg);
  if (record == nullptr || !copy_text(cfg, value, record->value, record->valuelen))
    return CS_FAIL;
  return append(cfg, entry->values, record);
}

CS_RETCODE cfg__add_include(CS_CONFIG *cfg, const CfgTok *name) noexcept {
  CfgParseInfo *const info = parse_of(cfg);
  CfgSection *included = nullptr;
  const CS_RETCODE result =
      find(data_of(cfg)->sections, bytes_of(cfg, name), name->buflen, included);
  if (result != CS_SUCCEED && result != LM_NOT_FOUND)
    return report(cfg->cfg_ctx, COM_CFGERR_LIST, in_init);
  if (result == LM_NOT_FOUND || included == info->cursect) {
    report(cfg->cfg_ctx, COM_CFGERR_INCLUDE, in_include,
           Shown(bytes_of(cfg, name), name->buflen).get());
    info->section_ok = 0;
    return CS_SUCCEED;
  }
  auto *const include = allocate<CfgInclude>(cfg);
  if (include == nullptr || !copy_text(cfg, name, include->sectname, include->sectnamelen))
    return CS_FAIL;
  return append(cfg, info->cursect->includes, include);
}

CS_RETCODE cfg__check_section(CS_CONFIG *cfg) noexcept {
  CfgParseInfo *const info = parse_of(cfg);
  CfgSection *const section = info->cursect;
  info->cursect = nullptr;
  if (info->section_ok == 1)
    return CS_SUCCEED;
  if (list_op(data_of(cfg)->sections, LM_OP_DELETE, section->sectname, section->sectnamelen,
              nullptr, nullptr) != CS_SUCCEED)
    return report(cfg->cfg_ctx, COM_CFGERR_LIST, in_init);
  drop_section(section);
  return CS_SUCCEED;
}
