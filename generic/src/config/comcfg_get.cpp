// Looks values up, through the sections that a section includes.
//
// A walk is a chain of cursors: one for each section from the one that was asked for to the one that
// has the value, each the parent of the next. While an included section is looked through, and those
// that it includes, all of them hang together, and nothing recurses: a file may nest its sections as
// deep as it likes.
#include "checks.h"
#include "comcfg.h"
#include "config.h"

using namespace comn::config;

namespace {

struct Name {
  const CS_CHAR *text;
  CS_INT length;
};

Name counted(const CS_CHAR *text, CS_INT length) noexcept {
  if (length == CS_LEN_NULLTERM)
    length = static_cast<CS_INT>(strnlen(text, INT32_MAX));
  return {text, length};
}

class Walk {
public:
  // Goes on at `start`, or begins anew where it is null; `keep` tells whether the caller gets a cursor.
  Walk(CS_CONFIG *handle, CfgNext *start, bool keep) noexcept
      : cfg(handle), at(start), base(start), keeps(keep) {
    for (const CfgNext *cursor = start; cursor != nullptr; cursor = cursor->parent)
      ++depth;
  }

  // The first value of an entry. As comn_get_cfg, for all but the value itself; after a failure and at
  // the end there are no cursors left.
  CS_RETCODE begin(Name section, Name entry) noexcept {
    if (!push())
      return CS_FAIL;
    base = at;
    CS_RETCODE result = enter(section, entry);
    if (result == CS_END_DATA)
      result = walk_includes(entry);
    return finish(result);
  }

  // The next value of the entry at which the cursor stands.
  CS_RETCODE next() noexcept {
    const Name entry = {at->entry->entryname, at->entry->entrynamelen};
    return finish(take(LM_OP_NEXT, at->entry->values, at->value) ? CS_SUCCEED
                                                                 : walk_includes(entry));
  }

  CfgNext *cursor() const noexcept { return keeps ? at : nullptr; }
  const CfgValue *value() const noexcept { return found; }

private:
  // Adds a cursor below the last one. False without memory.
  bool push() noexcept {
    // A look-up without a cursor has its first section, where most end, without the pool.
    CfgNext *const made = keeps || at != nullptr ? allocate<CfgNext>(cfg) : &local;
    if (made == nullptr)
      return false;
    made->parent = at;
    at = made;
    ++depth;
    return true;
  }

  // Releases the last cursor.
  void pop() noexcept {
    CfgNext *const dropped = at;
    at = dropped->parent;
    --depth;
    if (dropped != &local)
      comn_mmfree(pool_of(cfg), dropped);
  }

  // Moves the cursor in a list and gets the record there. False at the end.
  template <class Record>
  bool take(CS_INT operation, CS_VOID *list, Record *&record) noexcept {
    CS_VOID *data = nullptr;
    if (list_op(list, operation, &at->key, CS_UNUSED, nullptr, &data) != CS_SUCCEED ||
        data == nullptr)
      return false;
    record = static_cast<Record *>(data);
    return true;
  }

  // Looks for the section, or for the one that answers in its place.
  CS_RETCODE find_section(Name name) noexcept {
    CS_RETCODE result = LM_NOT_FOUND;
    if (name.length >= 0)
      result = find(data_of(cfg)->sections, name.text, name.length, at->section);
    if (result == LM_NOT_FOUND && name.length > 0) {
      constexpr char instead[] = COM_CFG_DEFAULT;
      result = find(data_of(cfg)->sections, instead, sizeof instead - 1, at->section);
      if (result == LM_NOT_FOUND)
        report(cfg->cfg_ctx, COM_CFGERR_SECTION, in_get, Shown(name.text, name.length).get());
    }
    if (result == CS_SUCCEED || result == LM_NOT_FOUND)
      return result;
    return report(cfg->cfg_ctx, COM_CFGERR_LIST, in_get);
  }

  // Puts the last cursor on the first value in a section: CS_SUCCEED, or CS_END_DATA when the section has
  // no such entry.
  CS_RETCODE enter(Name section, Name entry) noexcept {
    if (find_section(section) != CS_SUCCEED)
      return CS_FAIL;
    const CS_RETCODE result = entry.length >= 0
                                  ? find(at->section->entries, entry.text, entry.length, at->entry)
                                  : CS_RETCODE{LM_NOT_FOUND};
    if (result == LM_NOT_FOUND)
      return CS_END_DATA;
    if (result != CS_SUCCEED)
      return report(cfg->cfg_ctx, COM_CFGERR_LIST, in_get);
    return take(LM_OP_FIRST, at->entry->values, at->value) ? CS_SUCCEED : CS_END_DATA;
  }

  bool next_include() noexcept {
    if (at->include != nullptr)
      return take(LM_OP_NEXT, at->section->includes, at->include);
    at->key = nullptr;
    return take(LM_OP_FIRST, at->section->includes, at->include);
  }

  // Takes up the next section that has the entry, going down includes first.
  CS_RETCODE walk_includes(Name entry) noexcept {
    while (at != nullptr) {
      if (!next_include()) {
        const bool leaves_base = at == base;
        pop();
        if (leaves_base)
          base = at;
        continue;
      }
      // An earlier section of the same name can be included by one that the later one includes.
      const Name include = {at->include->sectname, at->include->sectnamelen};
      if (depth == count_sections() || !push())
        return CS_FAIL;
      const CS_RETCODE result = enter(include, entry);
      if (result == CS_SUCCEED)
        return CS_SUCCEED;
      if (result != CS_END_DATA)
        pop();
    }
    return CS_END_DATA;
  }

  CS_INT count_sections() const noexcept {
    CS_INT count = 0;
    lm_list_prop(static_cast<LM_HANDLE *>(data_of(cfg)->sections), LM_ACTION_GET,
                 LM_HDL_HANDLE_LOAD, &count, CS_UNUSED, nullptr);
    return count;
  }

  CS_RETCODE finish(CS_RETCODE result) noexcept {
    found = result == CS_SUCCEED ? at->value : nullptr;
    if (result != CS_SUCCEED || !keeps) {
      while (at != nullptr)
        pop();
    } else if (at != base) {
      // Deliberate: the cursors in between, and with them their other includes, are passed over when the
      // walk comes back. They stay in the pool.
      at->parent = base;
      base->child = at;
    }
    return result;
  }

  CS_CONFIG *cfg;
  CfgNext *at;   // the last cursor
  CfgNext *base; // the one that was the last when the call began, or what is left above it
  bool keeps;
  CS_INT depth = 0;
  CfgNext local = {};
  const CfgValue *found = nullptr;
};

CS_RETCODE deliver(const CfgValue *value, CS_CHAR *buffer, CS_INT buflen, CS_INT *outlen) noexcept {
  const CS_INT copied = std::clamp(buflen, 0, value->valuelen);
  if (outlen != nullptr)
    *outlen = value->valuelen;
  std::memcpy(buffer, value->value, static_cast<size_t>(copied));
  if (copied < buflen)
    buffer[copied] = '\0';
  return copied == value->valuelen ? CS_SUCCEED : CS_CONV_TRUNCATED;
}

} // namespace

CS_RETCODE comn_get_cfg(CS_CONFIG *cfg, CS_CHAR *section, CS_INT sectionlen, CS_CHAR *entry,
                        CS_INT entrylen, CS_VOID **next, CS_CHAR *value, CS_INT valuelen,
                        CS_INT *outlen) noexcept {
  COMN_CHECK_PTR(cfg, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(value, COMN_TRACE(CS_FAIL));
  if (sectionlen != 0)
    COMN_CHECK_PTR(section, COMN_TRACE(CS_FAIL));
  if (entrylen != 0)
    COMN_CHECK_PTR(entry, COMN_TRACE(CS_FAIL));
  if (cfg->cfg_chain == nullptr) {
    if (next != nullptr)
      *next = nullptr;
    return COMN_TRACE(CS_FAIL);
  }
  auto *const start = next != nullptr ? static_cast<CfgNext *>(*next) : nullptr;
  Walk walk(cfg, start, next != nullptr);
  const CS_RETCODE result =
      start != nullptr ? walk.next()
                       : walk.begin(counted(section, sectionlen), counted(entry, entrylen));
  if (next != nullptr)
    *next = walk.cursor();
  if (result != CS_SUCCEED)
    return COMN_TRACE(result);
  return COMN_TRACE(deliver(walk.value(), value, valuelen, outlen));
}

CS_RETCODE comn_nextdrop_cfg(CS_CONFIG *cfg, CS_VOID *next) noexcept {
  COMN_CHECK_PTR(cfg, COMN_TRACE(CS_FAIL));
  if (next == nullptr)
    return COMN_TRACE(CS_SUCCEED);
  if (cfg->cfg_chain == nullptr)
    return COMN_TRACE(CS_FAIL);
  auto *cursor = static_cast<CfgNext *>(next);
  while (cursor->parent != nullptr)
    cursor = cursor->parent;
  while (cursor != nullptr) {
    CfgNext *const child = cursor->child;
    comn_mmfree(pool_of(cfg), cursor);
    cursor = child;
  }
  return COMN_TRACE(CS_SUCCEED);
}
