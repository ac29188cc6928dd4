// Benchmarks of what reads the installation, and of look-ups in it. A pass of the former opens the file,
// reads all of it and lets go of what it has read; the time is that of a file.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include <unistd.h>

#include <benchmark/benchmark.h>

#include "comparison.h"
#include "inputs.h"
#include "intl_peers.h"
#include "zrvcomn/charset.h"
#include "zrvcomn/comloc.h"
#include "zrvcomn/comnlib.h"
#include "zrvcomn/sortordr.h"
#include "zrvcomn/zrvintl.h"

namespace zrvbench {
namespace {

[[noreturn]] void give_up(const char *what) {
  std::fprintf(stderr, "intl_bench: %s\n", what);
  std::exit(1);
}

// Names the home directory in the environment as well: the peer is given a path, so the search for a
// home in the user database and beside the library is no part of what is compared.
std::string identifiers_path() {
  char path[1025];
  if (intl_home(path, sizeof path) < 0)
    give_up("no home directory");
  setenv("ZARVEK", path, 1);
  char file[] = "objectid.dat";
  if (com_path_cfgfile(nullptr, file, path, sizeof path, 0) != CS_SUCCEED)
    give_up("no home directory");
  return path;
}

// A file for the peer, which joins no lines and begins comments with another byte: as many bytes, with
// as many keys and values.
class KeyFile {
public:
  explicit KeyFile(const std::string &source) : name("/tmp/zrvbench_XXXXXX") {
    const int file = mkstemp(name.data());
    if (file < 0)
      give_up("no temporary file");
    close(file);
    std::ifstream in(source, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(in), {}};
    for (size_t at = 0; at < text.size(); ++at) {
      if (text[at] == ';' && (at == 0 || text[at - 1] == '\n'))
        text[at] = '#';
      else if (text.compare(at, 2, "\\\n") == 0)
        text.replace(at, 2, "  ");
    }
    std::ofstream(name, std::ios::binary) << text;
  }
  ~KeyFile() { std::filesystem::remove(name); }
  KeyFile(const KeyFile &) = delete;
  KeyFile &operator=(const KeyFile &) = delete;

  const char *path() const { return name.c_str(); }

private:
  std::string name;
};

void read_sections(const char *path) {
  INTL_LOCFILE file;
  if (intl_open(path, &file) < 0)
    give_up("cannot open an installation file");
  int status;
  while (intl_nextsection(&file, &status) != nullptr)
    while (intl_nextentry(&file, &status) != nullptr)
      while (const char *const value = intl_nextvalue(&file, &status))
        benchmark::DoNotOptimize(value);
  if (status < 0 || intl_close(&file) < 0)
    give_up("cannot read an installation file");
}

void load_identifiers() {
  CS_CONTEXT context{};
  CS_OID_TABLE *table = nullptr;
  if (comn_intl_load_globalid(&context, &table) != CS_SUCCEED)
    give_up("cannot load the identifiers");
  benchmark::DoNotOptimize(table);
  comn_intl_drop_globalid(&context, table);
}

std::vector<Peer> key_file_peer([[maybe_unused]] const std::string &path,
                                [[maybe_unused]] double goal) {
#ifdef ZRVBENCH_WITH_GLIB
  static const KeyFile key_file(path);
  return {{"g_key_file_load_from_file", goal, [] { glib_load_key_file(key_file.path()); }}};
#else
  return {};
#endif
}

// The identifiers, loaded into a context.
struct Loaded {
  Loaded() {
    context.ctxglobals = &globals;
    if (comn_intl_load_globalid(&context, &table) != CS_SUCCEED)
      give_up("cannot load the identifiers");
    globals.ctxoids = table;
  }
  ~Loaded() { comn_intl_drop_globalid(&context, table); }
  Loaded(const Loaded &) = delete;
  Loaded &operator=(const Loaded &) = delete;

  CS_CONTEXT context{};
  CsCtxGlobals globals{};
  CS_OID_TABLE *table = nullptr;
};

// Names of one class, each as often as any other: the canonical ones, or all.
void compare_names(const std::shared_ptr<Loaded> &loaded, CS_INT oidclass, const char *class_name,
                   bool only_canonical) {
  std::vector<std::string> all;
  for (const CsOID *oid = loaded->table->ot_oid[oidclass]; oid != nullptr; oid = oid->oidnext)
    for (const CS_STRING_LIST *name = oid->oidlnames; name != nullptr; name = name->next) {
      all.emplace_back(name->string, static_cast<size_t>(name->len));
      if (only_canonical)
        break;
    }
  constexpr size_t count = 1 << 12;
  Random random(25);
  auto probes = std::make_shared<std::vector<std::string>>(count);
  for (std::string &probe : *probes)
    probe = all[random_below(random, all.size())];
  compare({"identifiers, look-up by name",
           "comn_globalid",
           std::string(class_name) + (only_canonical ? ", canonical names" : ", all names"),
           count,
           [=] {
             for (std::string &probe : *probes) {
               CsOID *found = nullptr;
               CS_INT wanted = oidclass;
               comn_globalid(&loaded->context, COM_NAME_TO_OID, &found, &wanted, CS_UNUSED,
                             probe.data(), static_cast<CS_INT>(probe.size()), nullptr, nullptr);
               benchmark::DoNotOptimize(found);
             }
           },
           {{"bare scan", 1.5, [=] {
               for (const std::string &probe : *probes)
                 benchmark::DoNotOptimize(
                     peer_scan_names(loaded->table->ot_oid[oidclass], probe.data(), probe.size()));
             }}}});
}

// The character set of a name, loaded anew into a context of its own, with a sort order if one is named.
struct LoadedCharset {
  explicit LoadedCharset(std::string name, std::string order = {}) {
    context.ctxglobals = &globals;
    CsLocCache cache{};
    cache.charname = name.data();
    cache.charnamelen = static_cast<CS_INT>(name.size());
    cache.sortname = order.data();
    if (comn__intl_load_charset(&context, &oid, &cache, nullptr, 0) != CS_SUCCEED)
      give_up("cannot load a character set");
    if (!order.empty() &&
        comn__intl_load_sortorder(&context, &order_oid, &cache, nullptr, 0) != CS_SUCCEED)
      give_up("cannot load a sort order");
    set = cache.locchardesc->char_attrib;
  }
  ~LoadedCharset() { com_intl_chardesc_drop(&context); }
  LoadedCharset(const LoadedCharset &) = delete;
  LoadedCharset &operator=(const LoadedCharset &) = delete;

  CS_CONTEXT context{};
  CsCtxGlobals globals{};
  CsOID oid{}, order_oid{};
  CHAR_ATTRIB *set = nullptr;
};

// One question about each byte of a text in a set with one byte for each character; null asks the
// built-in set.
template <class Question, class Bare>
void compare_question(const char *member, const char *input, CS_ATTRIB *set, Question question,
                      Bare bare) {
  constexpr size_t count = 1 << 12;
  Random random(53);
  auto text = std::make_shared<std::vector<CS_BYTE>>(count);
  for (CS_BYTE &byte : *text)
    byte = static_cast<CS_BYTE>(random_below(random, 256));
  compare({"question about a character",
           member,
           input,
           count,
           [=] {
             for (CS_BYTE &byte : *text)
               benchmark::DoNotOptimize(question(set, &byte));
           },
           {{"bare table read", 1.2, [=] {
               for (const CS_BYTE &byte : *text)
                 benchmark::DoNotOptimize(bare(&byte));
             }}}});
}

void compare_questions() {
  static const LoadedCharset cp850("cp850");
  const auto bits = [](const CS_BYTE *p) { return peer_table_bits(ISO_1_type_map->chmap, p); };
  const auto lower = [](const CS_BYTE *p) { return peer_table_lower(ISO_1_type_map->chmap, p); };
  const auto width = [](const CS_BYTE *p) {
    static const std::vector<CS_BYTE> ones(256, 0x11);
    return peer_table_width(ones.data(), p);
  };
  for (CS_ATTRIB *const set : {static_cast<CS_ATTRIB *>(nullptr), cp850.set}) {
    const char *const input = set == nullptr ? "built-in set" : "cp850";
    compare_question("comn_isalpha", input, set, comn_isalpha, bits);
    compare_question("comn_isspace", input, set, comn_isspace, bits);
    compare_question("comn_get_lex", input, set, comn_get_lex, lower);
    compare_question("comn_to_ascii", input, set, comn_to_ascii, lower);
    compare_question("comn_char_width", input, set, comn_char_width, width);
    compare_question("comn_disp_width", input, set, comn_disp_width, width);
  }
}

std::string path_of(std::string set, const char *file, const char *extension) {
  char path[1025];
  std::string name = file, suffix = extension;
  if (com_path_charfile(nullptr, set.data(), name.data(), suffix.empty() ? nullptr : suffix.data(),
                        path, sizeof path) != CS_SUCCEED)
    give_up("no home directory");
  return path;
}

// Loading and releasing, beside what reading the values of the same files takes.
void compare_loading(const std::string &set) {
  const std::string loc = path_of(set, "charset.loc", "");
  compare({"load a character set",
           "comn__intl_load_charset",
           set,
           1,
           [set] { benchmark::DoNotOptimize(LoadedCharset(set).set); },
           {{"section reader", 0, [loc] { read_sections(loc.c_str()); }}}});
}

// The same with the set's order by letters, as a locale of a single-byte set has it.
void compare_loading_with_order(const std::string &set) {
  const std::string loc = path_of(set, "charset.loc", ""), srt = path_of(set, "dictionary", "srt");
  compare({"load a character set with its order",
           "comn__intl_load_sortorder",
           set + ", dictionary",
           1,
           [set] { benchmark::DoNotOptimize(LoadedCharset(set, "dictionary").set); },
           {{"section reader", 0, [loc, srt] {
               read_sections(loc.c_str());
               read_sections(srt.c_str());
             }}}});
}

} // namespace

void register_comparisons() {
  static const std::string path = identifiers_path();
  compare({"section reader, a file", "intl_nextvalue", "objectid.dat", 1,
           [] { read_sections(path.c_str()); }, key_file_peer(path, 0)});
  compare({"load identifiers, a file", "comn_intl_load_globalid", "objectid.dat", 1,
           load_identifiers, key_file_peer(path, 1.0)});
  const auto loaded = std::make_shared<Loaded>();
  for (const bool only_canonical : {true, false}) {
    compare_names(loaded, COM_OID_CHARSET, "character sets", only_canonical);
    compare_names(loaded, COM_OID_NATLANG, "languages", only_canonical);
  }
  compare_questions();
  for (const char *const name : {"cp850", "sjis", "utf8"})
    compare_loading(name);
  for (const char *const name : {"iso_1", "cp850"})
    compare_loading_with_order(name);
}

} // namespace zrvbench
