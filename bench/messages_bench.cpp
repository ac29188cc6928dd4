// Benchmarks of messages: lines whose texts are in the cache, and the report to a callback.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "comparison.h"
#include "messages_peers.h"
#include "zrvcomn/charset.h"
#include "zrvcomn/comerr.h"

namespace zrvbench {
namespace {

constexpr size_t calls = 1 << 10;

CS_RETCODE receive(CS_CONTEXT *, CS_CLIENTMSG *message) {
  benchmark::DoNotOptimize(message);
  return CS_SUCCEED;
}

// The shipped messages in English, in UTF-8, all of which are loaded.
struct English {
  English() {
    cache.langname = name;
    cache.langnamelen = sizeof name - 1;
    cache.locchardesc = &charset;
    locale.messageptr = &cache;
    globals.cmg_utf8_charset = &charset;
    context.ctxglobals = &globals;
    context.ctxlocale = &locale;
    context.ctxerrfunc = receive;
    if (comn__intl_load_message(&context, nullptr, &cache) != CS_SUCCEED ||
        com_errinit(&context) != CS_SUCCEED) {
      std::fputs("messages_bench: no messages\n", stderr);
      std::exit(1);
    }
  }

  CS_ERRHAN *handle() { return static_cast<CS_ERRHAN *>(context.ctxcomerrhan); }

  // Gets a text into the cache.
  const char *text(CS_INT section, CS_MSGNUM number) {
    CS_ERRIDX index = {section, number};
    CS_CHAR *found = nullptr;
    com_err_msg(&context, handle(), &index, &found);
    return found;
  }

  CS_INT line(CS_MSGNUM number, CsErrParams &ep) {
    CS_INT length = 0;
    com_notrunc_errmsg(&context, handle(), number, &ep, nullptr, 0, COM_ERRSEC_API, 1, buffer,
                       sizeof buffer, &length);
    benchmark::DoNotOptimize(buffer);
    return length;
  }

  char name[11] = "us_english";
  CsCharDesc charset{};
  CsLocCache cache{};
  CS_LOCALE locale{};
  CsCtxGlobals globals{};
  CS_CONTEXT context{};
  CS_CHAR buffer[1023];
};

English &english() {
  static English made;
  return made;
}

// The text of a number as a format of {fmt}.
std::string format_of(CS_MSGNUM number) {
  std::string format = std::string("{}: {}: {}: ") + english().text(COM_ERRSEC_API, number & 255);
  for (const char *mark : {"%ld", "%s"})
    for (size_t at; (at = format.find(mark)) != std::string::npos;)
      format.replace(at, std::string(mark).size(), "{}");
  return format;
}

template <class Fill, class PeerCall>
void compare_lines(const char *input, CS_MSGNUM number, Fill fill,
                   [[maybe_unused]] PeerCall peer_call) {
  std::vector<Peer> peers;
#ifdef ZRVBENCH_WITH_FMT
  const std::string format = format_of(number);
  const char *const layer = english().text(COM_ERRSEC_LAYER, number >> 24 & 255);
  const char *const origin = english().text(COM_ERRSEC_ORIGIN, number >> 16 & 255);
  peers.push_back({"fmt::format", 0.75, [=] {
                     for (size_t i = 0; i < calls; ++i)
                       benchmark::DoNotOptimize(peer_call(format, layer, origin));
                   }});
#endif
  english().text(COM_ERRSEC_API, number & 255);
  compare({"message line", "com_notrunc_errmsg", input, calls,
           [=] {
             for (size_t i = 0; i < calls; ++i) {
               CsErrParams ep;
               fill(ep);
               benchmark::DoNotOptimize(english().line(number, ep));
             }
           },
           peers});
}

char api[] = "comn_init_cfg", file[] = "/etc/zarvek/config/ncl.cfg", token[] = "]";
CS_INT row = 1234;

} // namespace

void register_comparisons() {
#ifdef ZRVBENCH_WITH_FMT
  const auto none = [](const std::string &format, const char *layer, const char *origin) {
    return fmt_line(format, api, layer, origin);
  };
  const auto one = [](const std::string &format, const char *layer, const char *origin) {
    return fmt_line(format, api, layer, origin, file);
  };
  const auto two = [](const std::string &format, const char *layer, const char *origin) {
    return fmt_line(format, api, layer, origin, row, token);
  };
#else
  const int none = 0, one = 0, two = 0;
#endif
  compare_lines(
      "no parameter", 17040898, [](CsErrParams &ep) { com_ep_s(&ep, api); }, none);
  compare_lines(
      "a string", 17040899, [](CsErrParams &ep) { com_ep_ss(&ep, api, file); }, one);
  compare_lines(
      "a number and a string", 17039368, [](CsErrParams &ep) { com_ep_sds(&ep, api, &row, token); },
      two);
  compare({"message report",
           "com__error",
           "a number and a string",
           calls,
           [] {
             for (size_t i = 0; i < calls; ++i) {
               CsErrParams ep;
               com_ep_sds(&ep, api, &row, token);
               com__error(&english().context, 17039368, &ep);
             }
           },
           {}});
}

} // namespace zrvbench
