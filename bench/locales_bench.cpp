// Benchmarks of locales: the start of a context from an installation, and names that are loaded already.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "comparison.h"
#include "inputs.h"
#include "locales_peers.h"
#include "zrvcomn/charset.h"
#include "zrvcomn/comerr.h"
#include "zrvcomn/comloc.h"
#include "zrvcomn/comnlib.h"
#include "zrvcomn/sortordr.h"

namespace zrvbench {
namespace {

// The steps of a start, in their order.
enum Step { identifiers, fixed_set, locale, conversions, messages };

void must(CS_RETCODE result, const char *what) {
  if (result == CS_SUCCEED)
    return;
  std::fprintf(stderr, "locales_bench: %s: %d\n", what, static_cast<int>(result));
  std::exit(1);
}

// A context that is started up to a step, as the layers above do it, and ended.
class Client {
public:
  explicit Client(Step last) {
    context.ctxglobals = &globals;
    CS_OID_TABLE *table = nullptr;
    must(comn_intl_load_globalid(&context, &table), "identifiers");
    globals.ctxoids = table;
    if (last >= fixed_set)
      must(comn_intl_init(&context, nullptr, 0), "fixed set");
    if (last >= locale) {
      CS_CHAR name[256];
      must(com_intl_envloc(&context, CS_LCTYPE_ALL, name, sizeof name), "environment");
      CS_VOID *const cache = load(name, std::strlen(name));
      first = {cache, cache, cache, cache, cache, cache, nullptr, nullptr};
      context.ctxlocale = &first;
    }
    if (last >= conversions) {
      must(com_conv_init(&context), "conversions");
      must(com_null_init(&context), "default values");
    }
    if (last >= messages)
      must(com_errinit(&context), "messages");
  }
  ~Client() {
    com_errdrop(&context);
    com_null_free(&context);
    com_conv_free(&context);
    comn_loc_drop_all(&context);
    com_intl_loccache_drop(&context);
    com_intl_chardesc_drop(&context);
    comn_intl_dt_drop(&context);
    comn_intl_mon_drop(&context);
    comn_intl_num_drop(&context);
    comn_intl_drop_mnemdb(&context);
    comn_intl_message_drop(&context);
    comn_lm_exit(&context);
    comn_intl_drop_globalid(&context, static_cast<CS_OID_TABLE *>(globals.ctxoids));
  }
  Client(const Client &) = delete;
  Client &operator=(const Client &) = delete;

  CS_VOID *load(const char *name, size_t length) {
    CS_VOID *cache = nullptr;
    must(comn_intl_load(&context, const_cast<CS_CHAR *>(name), static_cast<CS_INT>(length), &cache,
                        nullptr, 0),
         name);
    return cache;
  }

private:
  CS_CONTEXT context{};
  CsCtxGlobals globals{};
  CS_LOCALE first{};
};

// Each row is a start up to a step, and the end behind it: what a step takes is what the row has more than
// the one before. The files are in the cache of the system.
void compare_starts() {
  constexpr const char *inputs[] = {"identifiers", "up to the fixed set",
                                    "up to the default locale", "up to conversions",
                                    "whole, up to messages"};
  for (const Step last : {identifiers, fixed_set, locale, conversions, messages})
    compare({"start and end of a context",
             "start and end of a context",
             inputs[last],
             1,
             [last] {
               Client client(last);
               benchmark::DoNotOptimize(client);
             },
             {}});
}

// Names of locales, each as often as any other, all of them loaded.
void compare_loaded(std::vector<std::string> names) {
  constexpr size_t count = 1 << 12;
  const auto client = std::make_shared<Client>(locale);
  NameMap map;
  for (const std::string &name : names)
    map[name] = client->load(name.data(), name.size());
  Random random(14);
  auto probes = std::make_shared<std::vector<std::string>>(count);
  for (std::string &probe : *probes)
    probe = names[random_below(random, names.size())];
  compare({"find a loaded locale",
           "comn_intl_load",
           std::to_string(names.size()) + (names.size() == 1 ? " locale" : " locales"),
           count,
           [=] {
             for (const std::string &probe : *probes)
               benchmark::DoNotOptimize(client->load(probe.data(), probe.size()));
           },
           {{"std::map", 2.0, [=] {
               for (const std::string &probe : *probes)
                 benchmark::DoNotOptimize(peer_find(map, probe.data(), probe.size()));
             }}}});
}

} // namespace

void register_comparisons() {
  for (const char *const variable : {"LC_ALL", "LANG"})
    unsetenv(variable);
  compare_starts();
  compare_loaded({"default"});
  compare_loaded({"default", "C", "en_US.UTF-8", "de_DE.UTF-8"});
  compare_loaded({"default", "C", "en_US.UTF-8", "en_GB.UTF-8", "de_DE.UTF-8", "fr_FR.UTF-8",
                  "es_ES.UTF-8", "it_IT.UTF-8", "pt_BR.UTF-8", "nl_NL.UTF-8", "sv_SE.UTF-8",
                  "pl_PL.UTF-8", "ru_RU.UTF-8", "tr_TR.UTF-8", "ja_JP.UTF-8", "ko_KR.UTF-8"});
}

} // namespace zrvbench
