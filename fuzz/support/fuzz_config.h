// Configuration files for fuzzers: a context that opens them, and files of given bytes.
#ifndef ZRVFUZZ_FUZZ_CONFIG_H
#define ZRVFUZZ_FUZZ_CONFIG_H

#include <cstring>

#include "fuzz_home.h"
#include "fuzz_input.h"
#include "text_sets.h"
#include "zrvcomn/comcfg.h"
#include "zrvcomn/comnlib.h"
#include "zrvcomn/zrvintl.h"

namespace zrvfuzz {

class ConfigWorld {
public:
  ConfigWorld() : home("config/ncl.cfg") {
    context.ctxlocale = &set.locale;
    context.ctxversion = 1600;
    context.ctxmalloc = [](CS_CONTEXT *, CS_UINT size) -> CS_VOID * { return comn_malloc(size); };
    context.ctxerrfunc = [](CS_CONTEXT *, CS_CLIENTMSG *message) -> CS_RETCODE {
      ++count();
      return message->msgstringlen > 0 ? CS_SUCCEED : CS_FAIL;
    };
  }

  // The messages that have come up.
  static size_t &count() {
    static size_t messages;
    return messages;
  }

  void set_charset(CS_ATTRIB *attributes) { set.charset.char_attrib = attributes; }

  void write(const uint8_t *data, size_t size) { home.write(data, size); }

  // A handle on the file, or null. A file that is on the chain is shared when `is_first`.
  CS_CONFIG *open(bool is_first) {
    if (is_first)
      Application_global.ag_accesscnt = 0;
    CS_CONFIG *cfg = nullptr;
    const CS_RETCODE result = comn_init_cfg(&context, nullptr, CS_UNUSED, &cfg);
    require((result == CS_SUCCEED || result == CS_FAIL) &&
            (cfg != nullptr) == (result == CS_SUCCEED));
    return cfg;
  }

private:
  Home home;
  SetLocale set{com_get_charattrib()};
  CS_CONTEXT context{};
};

} // namespace zrvfuzz

#endif
