// Benchmarks of configuration files: loading and releasing a file, look-ups.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

#include <benchmark/benchmark.h>

#include "comparison.h"
#include "config_peers.h"
#include "zrvcomn/charset.h"
#include "zrvcomn/comcfg.h"
#include "zrvcomn/comloc.h"
#include "zrvcomn/zrvintl.h"

namespace zrvbench {
namespace {

struct World {
  World() {
    charset.char_attrib = com_get_charattrib();
    cache.locchardesc = &charset;
    locale.ctypeptr = &cache;
    context.ctxlocale = &locale;
    context.ctxversion = 1600;
    context.ctxmalloc = [](CS_CONTEXT *, CS_UINT size) -> CS_VOID * { return comn_malloc(size); };
  }

  CS_CONFIG *open(std::string &path) {
    CS_CONFIG *cfg = nullptr;
    if (comn_init_cfg(&context, path.data(), static_cast<CS_INT>(path.size()), &cfg) !=
        CS_SUCCEED) {
      std::fputs("config_bench: the file does not load\n", stderr);
      std::exit(1);
    }
    return cfg;
  }

  CsCharDesc charset{};
  CsLocCache cache{};
  CS_LOCALE locale{};
  CS_CONTEXT context{};
};

World &world() {
  static World made;
  return made;
}

// The path of a file of these bytes, which lasts as long as the process.
std::string make_file(const std::string &bytes) {
  const int file = memfd_create("config", MFD_CLOEXEC);
  if (write(file, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()))
    std::exit(1);
  return "/proc/self/fd/" + std::to_string(file);
}

std::string make_sections(size_t sections, size_t entries) {
  std::string bytes;
  for (size_t section = 0; section < sections; ++section) {
    bytes += "[section" + std::to_string(section) + "]\n";
    for (size_t entry = 0; entry < entries; ++entry)
      bytes += "entry" + std::to_string(entry) + " = value " + std::to_string(entry) + "\n";
  }
  return bytes;
}

void compare_loading(const char *input, size_t sections, size_t entries) {
  const std::string bytes = make_sections(sections, entries);
  std::vector<Peer> peers;
#ifdef ZRVBENCH_WITH_GLIB
  peers.push_back({"g_key_file_load_from_data", 1.0, [bytes] {
                     void *const file = glib_load(bytes.data(), bytes.size());
                     benchmark::DoNotOptimize(file);
                     glib_drop(file);
                   }});
#endif
  compare({"load and release a file", "comn_init_cfg", input, sections * entries,
           [path = make_file(bytes)]() mutable {
             CS_CONFIG *const cfg = world().open(path);
             benchmark::DoNotOptimize(cfg);
             comn_drop_cfg(cfg, COM_CFG_DROP_NORMAL);
           },
           peers});
}

void compare_lookups(const char *input, size_t sections, size_t entries) {
  const std::string bytes = make_sections(sections, entries);
  std::string path = make_file(bytes);
  CS_CONFIG *const cfg = world().open(path);
  std::vector<std::pair<std::string, std::string>> names;
  for (size_t i = 0; i < 1024; ++i)
    names.emplace_back("section" + std::to_string(i * 7 % sections),
                       "entry" + std::to_string(i * 11 % entries));
  std::vector<Peer> peers;
#ifdef ZRVBENCH_WITH_GLIB
  void *const file = glib_load(bytes.data(), bytes.size());
  peers.push_back({"g_key_file_get_string", 0.8, [names, file] {
                     for (const auto &[section, entry] : names)
                       benchmark::DoNotOptimize(glib_get(file, section.c_str(), entry.c_str()));
                   }});
#endif
  compare({"look a value up", "comn_get_cfg", input, names.size(),
           [names, cfg]() mutable {
             char value[64];
             CS_INT length = 0;
             for (auto &[section, entry] : names) {
               comn_get_cfg(cfg, section.data(), CS_LEN_NULLTERM, entry.data(), CS_LEN_NULLTERM,
                            nullptr, value, sizeof value, &length);
               benchmark::DoNotOptimize(value);
             }
           },
           peers});
}

} // namespace

void register_comparisons() {
  compare_loading("1 section of 1,000 entries", 1, 1000);
  compare_loading("100 sections of 10 entries", 100, 10);
  compare_lookups("10 sections of 10 entries", 10, 10);
}

} // namespace zrvbench
