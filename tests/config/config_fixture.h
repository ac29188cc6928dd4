// A context that opens configuration files, its messages, and what a file was read as.
#ifndef ZRVTEST_CONFIG_FIXTURE_H
#define ZRVTEST_CONFIG_FIXTURE_H

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "config_reference.h"
#include "message_fixture.h"
#include "test_charset.h"
#include "text_file.h"
#include "zrvcomn/comcfg.h"
#include "zrvcomn/lmpriv.h"
#include "zrvcomn/mmpriv.h"
#include "zrvcomn/zrvintl.h"

namespace zrvtest {

// Texts that show their parameters alone.
const std::string config_messages = "[comdefaults]\n1 = 00000, a\n2 = 00000, b\n3 = 00000, c\n"
                                    "4 = 00000, d\n"
                                    "[comlayer]\n1 = 00000, L\n[comorigin]\n4 = 00000, O\n"
                                    "[comapierror]\n1 = 00000, list\n2 = 00000, memory\n"
                                    "3 = 00000, \"<%s>\"\n4 = 00000, handle\n5 = 00000, \"<%s>\"\n"
                                    "6 = 00000, cut\n7 = 00000, \"<%s>\"\n"
                                    "8 = 00000, \"%ld <%s>\"\n9 = 00000, forced\n";

class Config : public Messages {
protected:
  static constexpr CS_CHAR *no_section = nullptr;

  Config() {
    write(config_messages);
    EXPECT_EQ(com_errinit(&context), CS_SUCCEED);
    context.ctxversion = 1600;
    context.ctxmalloc = [](CS_CONTEXT *, CS_UINT size) -> CS_VOID * { return comn_malloc(size); };
    context.ctxfree = [](CS_CONTEXT *, CS_VOID *block) -> CS_RETCODE {
      comn_free(block);
      return CS_SUCCEED;
    };
    context.ctxerrfunc = [](CS_CONTEXT *, CS_CLIENTMSG *message) -> CS_RETCODE {
      reported().push_back(describe(*message));
      return CS_SUCCEED;
    };
    ctype.locchardesc = &ctype_charset;
    ctype_charset.char_attrib = com_get_charattrib();
    locale.ctypeptr = &ctype;
    reported().clear();
    forget_process();
  }
  ~Config() override { forget_process(); }

  // The process-wide record as before its first use.
  static void forget_process() {
    std::memset(static_cast<void *>(&Application_global), 0, sizeof Application_global);
  }

  void set_charset(CS_ATTRIB *set) { ctype_charset.char_attrib = set; }

  // Each message as "number first-parameter: the others".
  static std::vector<std::string> &reported() {
    static std::vector<std::string> messages;
    return messages;
  }
  static std::vector<std::string> take_reported() { return std::exchange(reported(), {}); }

  static std::string describe(const CS_CLIENTMSG &message) {
    std::string text(message.msgstring, static_cast<size_t>(message.msgstringlen));
    const std::string parts = ": L: O: ";
    if (const size_t at = text.find(parts); at != std::string::npos)
      text.replace(at, parts.size(), ": ");
    return std::to_string(message.msgnumber) + " " + text;
  }

  // Keeps messages from loading texts, whose memory stays with the locale.
  void do_without_texts() { EXPECT_EQ(com_errdrop(&context), CS_SUCCEED); }

  // The numbers of the messages, each once.
  static std::set<std::string> take_numbers() {
    std::set<std::string> numbers;
    for (const std::string &message : take_reported())
      numbers.insert(message.substr(0, message.find(' ')));
    return numbers;
  }

  CS_CONFIG *open_path(const std::string &path) {
    CS_CONFIG *cfg = nullptr;
    const CS_RETCODE result =
        comn_init_cfg(&context, text(path.c_str()), static_cast<CS_INT>(path.size()), &cfg);
    EXPECT_EQ(result == CS_SUCCEED, cfg != nullptr);
    return cfg;
  }

  // A handle on a file of these bytes, which may go once it is read; null on failure.
  CS_CONFIG *open(const std::string &bytes) {
    const TextFile file(bytes);
    name = file.path();
    return open_path(name);
  }

  static void drop(CS_CONFIG *cfg) {
    EXPECT_EQ(comn_drop_cfg(cfg, COM_CFG_DROP_NORMAL), CS_SUCCEED);
  }

  // The first value of an entry, or "status n".
  static std::string get(CS_CONFIG *cfg, const std::string &section, const std::string &entry) {
    char value[4096];
    CS_INT length = -1;
    const CS_RETCODE result = comn_get_cfg(
        cfg, text(section.c_str()), static_cast<CS_INT>(section.size()), text(entry.c_str()),
        static_cast<CS_INT>(entry.size()), nullptr, value, sizeof value, &length);
    return result == CS_SUCCEED ? std::string(value, static_cast<size_t>(length))
                                : "status " + std::to_string(result);
  }

  // All values of an entry, with the status that ends the walk unless it is CS_END_DATA.
  static std::vector<std::string> walk(CS_CONFIG *cfg, const std::string &section,
                                       const std::string &entry) {
    std::vector<std::string> values;
    CS_VOID *next = nullptr;
    for (;;) {
      char value[4096];
      CS_INT length = -1;
      const CS_RETCODE result = comn_get_cfg(
          cfg, text(section.c_str()), static_cast<CS_INT>(section.size()), text(entry.c_str()),
          static_cast<CS_INT>(entry.size()), &next, value, sizeof value, &length);
      if (result == CS_SUCCEED) {
        EXPECT_NE(next, nullptr);
        values.emplace_back(value, static_cast<size_t>(length));
        continue;
      }
      EXPECT_EQ(next, nullptr);
      if (result != CS_END_DATA)
        values.push_back("status " + std::to_string(result));
      return values;
    }
  }

  // ---- what a file was read as ----

  template <class Record>
  static std::vector<const Record *> records(CS_VOID *list) {
    std::vector<const Record *> result;
    const auto *const handle = static_cast<const LM_HANDLE *>(list);
    const auto add = [&](const DLinkNode *node) {
      for (; node != nullptr; node = node->next)
        result.push_back(static_cast<const Record *>(node->data));
    };
    if (handle->hdlprop->list_type == LM_DLINK) {
      add(static_cast<const DLinkInfo *>(handle->list_state)->head);
    } else {
      const auto *const info = static_cast<const CHashInfo *>(handle->list_state);
      for (CS_INT i = 0; i < info->table_size; ++i)
        add(info->table[i]);
    }
    return result;
  }

  static std::string bytes(const CS_CHAR *from, CS_INT length) {
    return {from, static_cast<size_t>(length)};
  }

  static ConfigSection describe(const CfgSection &section) {
    ConfigSection result{bytes(section.sectname, section.sectnamelen), {}, {}};
    for (const CfgEntry *entry : records<CfgEntry>(section.entries)) {
      std::vector<std::string> values;
      for (const CfgValue *value : records<CfgValue>(entry->values))
        values.push_back(bytes(value->value, value->valuelen));
      result.entries.emplace_back(bytes(entry->entryname, entry->entrynamelen), values);
    }
    for (const CfgInclude *include : records<CfgInclude>(section.includes))
      result.includes.push_back(bytes(include->sectname, include->sectnamelen));
    std::sort(result.entries.begin(), result.entries.end());
    return result;
  }

  static CfgData *data(CS_CONFIG *cfg) { return static_cast<CfgData *>(cfg->cfg_chain->cfgc_data); }

  // All sections, in an order of their own.
  static std::vector<ConfigSection> sections(CS_CONFIG *cfg) {
    std::vector<ConfigSection> result;
    for (const CfgSection *section : records<CfgSection>(data(cfg)->sections))
      result.push_back(describe(*section));
    std::sort(result.begin(), result.end());
    return result;
  }

  // What reading a file gives: "name{entry=<value><value> +include} ..." and the messages, each behind
  // "!" without the name of the file; "failed" when it cannot be loaded.
  std::string read(const std::string &file) {
    CS_CONFIG *const cfg = open(file);
    std::string result = cfg != nullptr ? "" : "failed";
    for (const ConfigSection &section :
         cfg != nullptr ? sections(cfg) : std::vector<ConfigSection>()) {
      result += (result.empty() ? "" : " ") + section.name + "{";
      std::string separator;
      for (const auto &[entry, values] : section.entries) {
        result += std::exchange(separator, " ") + entry + "=";
        for (const std::string &value : values)
          result += "<" + value + ">";
      }
      for (const std::string &include : section.includes)
        result += std::exchange(separator, " ") + "+" + include;
      result += "}";
    }
    for (std::string message : take_reported()) {
      if (const size_t at = message.find(name); at != std::string::npos)
        message.erase(at, name.size() + 2);
      result += (result.empty() ? "!" : " !") + message;
    }
    if (cfg != nullptr)
      drop(cfg);
    return result;
  }

  CsCharDesc ctype_charset{};
  CsLocCache ctype{};
  std::string name; // of the file that was opened last
};

} // namespace zrvtest

#endif
