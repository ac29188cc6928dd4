#include "config_file.h"

#include <algorithm>
#include <cstring>

#include "errors.h"
#include "zrvcomn/comnlib.h"
#include "zrvcomn/lmpublic.h"
#include "zrvcomn/zrvintl.h"

namespace zrvtool {

namespace {

constexpr CS_INT context_version = 16001;

// The one that is asked: the context of a message has no place for it.
ConfigFile *asked = nullptr;

std::string text_of(const CS_CHAR *bytes, CS_INT length) {
  return {bytes, static_cast<size_t>(length)};
}

// The text of a message's line, behind what the line begins with.
std::string text_behind(const std::string &line, const std::string &path) {
  const std::string separator = ": ";
  size_t at = line.starts_with(path + separator) ? path.size() : line.find(separator);
  for (int part = 0; part < 2 && at != std::string::npos; ++part)
    at = line.find(separator, at + separator.size());
  return at != std::string::npos ? line.substr(at + separator.size()) : line;
}

std::vector<CS_VOID *> *collected;

CS_RETCODE collect(CS_VOID *item) {
  collected->push_back(item);
  return CS_SUCCEED;
}

// All that is in a list.
template <class Record>
std::vector<const Record *> items(CS_VOID *list) {
  std::vector<CS_VOID *> found;
  collected = &found;
  CS_PRINT_FUNC function = collect;
  lm_list_op(static_cast<LM_HANDLE *>(list), LM_OP_APPLY, nullptr, CS_UNUSED, &function, nullptr);
  std::vector<const Record *> result;
  for (CS_VOID *item : found)
    result.push_back(static_cast<const Record *>(item));
  return result;
}

const CfgData &data_of(const CS_CONFIG *handle) {
  return *static_cast<const CfgData *>(handle->cfg_chain->cfgc_data);
}

} // namespace

// While a file is parsed it is the newest one of the process, and its newest token is where the fault is.
CS_RETCODE ConfigFile::note(CS_CONTEXT *, CS_CLIENTMSG *message) {
  Fault fault{text_behind(text_of(message->msgstring, message->msgstringlen), asked->name), -1, 0};
  const CS_CFGCHAIN *const chain = Application_global.ag_cfgchain;
  const auto *const data =
      chain != nullptr ? static_cast<const CfgData *>(chain->cfgc_data) : nullptr;
  if (const CfgParseInfo *const info = data != nullptr ? data->parseinfo : nullptr;
      info != nullptr && info->line > 0) {
    fault.line = info->line;
    const bool is_cut = static_cast<CS_MSGNUM>(message->msgnumber) == COM_CFGERR_CHAR;
    const bool has_token = info->lasttok != nullptr && !is_cut;
    fault.offset = info->dropped + (has_token ? info->lasttok->offset : info->buflen);
  }
  asked->faults.push_back(fault);
  return CS_SUCCEED;
}

ConfigFile::ConfigFile(const std::string &path) : name(path) {
  CS_CONTEXT *const context = started.get();
  if (name.empty()) {
    CS_CHAR file[] = "ncl.cfg", buffer[1025] = "";
    if (com_path_cfgfile(context, file, buffer, sizeof buffer, 0) != CS_SUCCEED)
      throw StreamError("the path of ncl.cfg cannot be built (zrvcomn config paths tells more)");
    name = buffer;
  }
  context->ctxversion = context_version;
  context->ctxmalloc = [](CS_CONTEXT *, CS_UINT size) -> CS_VOID * { return comn_malloc(size); };
  context->ctxfree = [](CS_CONTEXT *, CS_VOID *block) -> CS_RETCODE {
    comn_free(block);
    return CS_SUCCEED;
  };
  context->ctxerrfunc = note;
  asked = this;
  comn_init_cfg(context, name.data(), static_cast<CS_INT>(name.size()), &handle);
}

ConfigFile::~ConfigFile() {
  if (handle != nullptr)
    comn_drop_cfg(handle, COM_CFG_DROP_NORMAL);
}

std::vector<std::string> ConfigFile::get(const std::string &section, const std::string &entry,
                                         CS_RETCODE &status) {
  std::vector<std::string> values;
  std::string buffer(256, '\0');
  CS_VOID *next = nullptr;
  for (;;) {
    CS_INT length = 0;
    status = comn_get_cfg(handle, const_cast<CS_CHAR *>(section.data()),
                          static_cast<CS_INT>(section.size()), const_cast<CS_CHAR *>(entry.data()),
                          static_cast<CS_INT>(entry.size()), &next, buffer.data(),
                          static_cast<CS_INT>(buffer.size()), &length);
    if (status == CS_SUCCEED) {
      values.push_back(buffer.substr(0, static_cast<size_t>(length)));
    } else if (status == CS_CONV_TRUNCATED) {
      // With room for it the walk begins anew.
      comn_nextdrop_cfg(handle, next);
      next = nullptr;
      values.clear();
      buffer.resize(static_cast<size_t>(length));
    } else {
      return values;
    }
  }
}

std::vector<std::string> ConfigFile::sections() const {
  std::vector<std::string> names;
  for (const auto *section : items<CfgSection>(data_of(handle).sections))
    names.push_back(text_of(section->sectname, section->sectnamelen));
  std::sort(names.begin(), names.end());
  // Of sections with one name only the last counts.
  names.erase(std::unique(names.begin(), names.end()), names.end());
  return names;
}

std::optional<std::vector<NamedValues>> ConfigFile::entries(const std::string &section) const {
  CS_VOID *found = nullptr;
  if (lm_list_op(static_cast<LM_HANDLE *>(data_of(handle).sections), LM_OP_SEARCH,
                 const_cast<char *>(section.data()), static_cast<CS_INT>(section.size()), nullptr,
                 &found) != CS_SUCCEED)
    return std::nullopt;
  const auto *const record = static_cast<const CfgSection *>(found);
  std::vector<NamedValues> result;
  for (const auto *entry : items<CfgEntry>(record->entries)) {
    NamedValues named{text_of(entry->entryname, entry->entrynamelen), {}};
    for (const auto *value : items<CfgValue>(entry->values))
      named.values.push_back(text_of(value->value, value->valuelen));
    result.push_back(named);
  }
  std::sort(result.begin(), result.end(),
            [](const NamedValues &a, const NamedValues &b) { return a.name < b.name; });
  NamedValues included{"include", {}};
  for (const auto *include : items<CfgInclude>(record->includes))
    included.values.push_back(text_of(include->sectname, include->sectnamelen));
  if (!included.values.empty())
    result.insert(result.begin(), included);
  return result;
}

} // namespace zrvtool
