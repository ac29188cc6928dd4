// zrvcomn store: the records of the secure store, through the library's own loading. Values never come
// from the arguments, which any process can read.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <dlfcn.h>
#include <memory>
#include <unistd.h>

#include <CLI/CLI.hpp>

#include <nlohmann/json.hpp>

#include "arguments.h"
#include "listing.h"
#include "output.h"
#include "secret.h"
#include "subcommand.h"
#include "visible.h"
#include "zrvcomn/comerr.h"
#include "zrvcomn/securestore.h"

namespace {

using namespace zrvtool;

struct Options {
  std::string action, key, directory;
  bool unencrypted = false, binary = false, from_input = false, json = false;
  std::vector<std::string> rest;
};

// The store as a context has it. The entry points that the library does not look up are looked up here,
// in the library that it opened.
class Store {
public:
  explicit Store(const std::string &directory) {
    context.ctxerrfunc = [](CS_CONTEXT *, CS_CLIENTMSG *message) -> CS_RETCODE {
      std::fprintf(stderr, "zrvcomn store: %.*s\n", static_cast<int>(message->msgstringlen),
                   message->msgstring);
      return CS_SUCCEED;
    };
    if (com_ssfscontext_alloc(&context) != CS_SUCCEED) {
      com_ssfscontext_drop(&context);
      throw StreamError("the secure store cannot be loaded");
    }
    if (table().SetConfiguration(directory.c_str()) != RSEC_SSFS_RC_OK) {
      com_ssfscontext_drop(&context);
      throw UsageError("the path of the directory is too long");
    }
  }
  ~Store() { com_ssfscontext_drop(&context); }
  Store(const Store &) = delete;
  Store &operator=(const Store &) = delete;

  const SSFSAPI_PROVIDER &table() const {
    return *static_cast<SSFS_CONTEXT *>(context.ctxssfsctx)->ssfsp;
  }

  template <class Function>
  Function *find(Function *, const char *name) const {
    auto *const found = reinterpret_cast<Function *>(dlsym(table().handle, name));
    if (found == nullptr)
      throw StreamError(std::string("the secure store has no ") + name);
    return found;
  }

private:
  CS_CONTEXT context{};
};

// A block for an operation, released at the end.
template <class Api>
class Block {
public:
  using Make = RSEC_SSFS_RC(Api **);
  using Call = RSEC_SSFS_RC(Api *);

  Block(Make *make, Call *the_call, Make *the_release) : call(the_call), release(the_release) {
    if (make(&api) != RSEC_SSFS_RC_OK)
      throw std::bad_alloc();
  }
  // Of an operation whose functions have its name.
  Block(const Store &store, const std::string &name)
      : Block(store.find<Make>(nullptr, (name + "APIGet").c_str()),
              store.find<Call>(nullptr, name.c_str()),
              store.find<Make>(nullptr, (name + "APIRelease").c_str())) {}
  ~Block() { release(&api); }
  Block(const Block &) = delete;
  Block &operator=(const Block &) = delete;

  Api *operator->() { return api; }
  // Throws StreamError with what the store says.
  void run() {
    if (call(api) != RSEC_SSFS_RC_OK) {
      std::string text;
      append_visible(text, api->out_pProcessingInfo->pErrorText);
      throw StreamError(text);
    }
  }

private:
  Api *api = nullptr;
  Call *call;
  Make *release;
};

// All of standard input, in a block that does not move and is wiped.
class Everything {
public:
  Everything() {
    for (ssize_t got = 1; got != 0 && used < capacity;) {
      got = read(STDIN_FILENO, bytes.data() + used, capacity - used);
      if (got < 0 && errno != EINTR)
        throw StreamError(std::string("cannot read standard input: ") + std::strerror(errno));
      used += static_cast<size_t>(std::max<ssize_t>(got, 0));
    }
  }

  // LF or CR LF.
  void drop_line_end() {
    const auto ends_in = [this](char byte) { return used > 0 && bytes.data()[used - 1] == byte; };
    if (!ends_in('\n'))
      return;
    --used;
    if (ends_in('\r'))
      --used;
  }
  // Terminated. More than any value has is read, so that one that is too long is told from one that fits.
  char *text() {
    bytes.data()[used] = '\0';
    return bytes.data();
  }
  size_t size() const { return used; }

private:
  static constexpr size_t capacity = VELSSFS_MAX_VALUE + 8;
  SecretBuffer bytes{capacity + 1};
  size_t used = 0;
};

int put(const Store &store, const Options &options) {
  Block<RSecSSFsPutRecordAPI> block(store, "RSecSSFsPutRecord");
  block->in_pKey = options.key.c_str();
  block->in_storePlaintext = options.unencrypted;
  block->in_isBinary = options.binary;
  if (isatty(STDIN_FILENO)) {
    if (options.binary)
      throw UsageError("a binary value does not come from a terminal");
    Secret line;
    read_line(line, "value");
    if (!line.append('\0'))
      throw StreamError("the value is too long");
    block->in_pValue = line.data();
    block.run();
    return exit_success;
  }
  Everything input;
  if (options.binary) {
    block->in_pValueX = reinterpret_cast<const VEL_RAW *>(input.text());
    block->in_pValueXLen = input.size();
  } else {
    input.drop_line_end();
    block->in_pValue = input.text();
    if (std::strlen(block->in_pValue) != input.size())
      throw StreamError("the value has a NUL byte: it is binary (--binary)");
  }
  block.run();
  return exit_success;
}

int get(const Store &store, const Options &options) {
  const SSFSAPI_PROVIDER &table = store.table();
  Block<RSecSSFsGetRecordAPI> block(table.GetRecordAPIGet, table.GetRecord,
                                    table.GetRecordAPIRelease);
  block->in_pKey = options.key.c_str();
  block.run();
  write_secret({reinterpret_cast<const char *>(block->out_pValueX), block->out_pValueXLen},
               block->out_isBinary == 0);
  return exit_success;
}

int list(const Store &store, const Options &options) {
  Block<RSecSSFsListRecordKeysAPI> block(store, "RSecSSFsListRecordKeys");
  block->in_pKeyPrefix = options.key.c_str();
  block.run();
  Writer out(STDOUT_FILENO);
  for (size_t i = 0; i < block->out_listSize; ++i) {
    const std::string key = block->out_pRecords[i].pKey;
    out.text += (options.json ? json_text({{"key", key}}) : key) + "\n";
    out.settle();
  }
  out.flush();
  return exit_success;
}

int remove(const Store &store, const Options &options) {
  Block<RSecSSFsPutRecordAPI> block(store, "RSecSSFsPutRecord");
  block->in_pKey = options.key.c_str();
  block.run();
  return exit_success;
}

int rekey(const Store &store, const Options &options) {
  Block<RSecSSFsChangeKeyAPI> change(store, "RSecSSFsChangeKey");
  Secret line;
  if (options.from_input) {
    read_line(line, "master key");
    if (!line.append('\0'))
      throw StreamError("the master key is too long");
    change->in_pCharKey = line.data();
    change.run();
    return exit_success;
  }
  Block<RSecSSFsGenerateCharKeyAPI> generated(store, "RSecSSFsGenerateCharKey");
  generated.run();
  change->in_pCharKey = generated->out_pCharKey;
  change.run();
  return exit_success;
}

struct Action {
  const char *name;
  int (*run)(const Store &, const Options &);
  bool needs_key;
};
constexpr Action actions[] = {{"put", put, true},
                              {"get", get, true},
                              {"list", list, false},
                              {"delete", remove, true},
                              {"rekey", rekey, false}};

Words action_names() {
  Words names;
  for (const Action &action : actions)
    names.emplace_back(action.name);
  return names;
}

void check(const Action &action, const Options &options) {
  const std::string_view name = action.name;
  const auto only_with = [name](bool is_given, const char *option, std::string_view owner) {
    if (is_given && name != owner)
      throw UsageError(std::string(option) + " goes with " + std::string(owner));
  };
  if (action.needs_key && options.key.empty())
    throw UsageError("the key of a record is needed");
  if (name == "rekey" && !options.key.empty())
    throw UsageError("a master key comes from standard input, never from the arguments");
  if (!options.rest.empty())
    throw UsageError("values come from standard input, never from the arguments");
  only_with(options.unencrypted, "--unencrypted", "put");
  only_with(options.binary, "--binary", "put");
  only_with(options.json, "--json", "list");
  only_with(options.from_input, "--from-input", "rekey");
}

Subcommand::Run add(CLI::App &app) {
  const auto options = std::make_shared<Options>();
  add_choice(app, "action", options->action, "ACTION", action_names(),
             "put, get, list, delete or rekey")
      ->required();
  app.add_option("key", options->key, "The key of the record; list: what the keys begin with")
      ->type_name("KEY");
  app.add_option("rest", options->rest)->group(""); // taken, so that it is not repeated
  app.add_option("--directory", options->directory,
                 "The directory of the store (zrvcomn/secstore in the user's state directory)")
      ->type_name("DIRECTORY");
  app.add_flag("--unencrypted", options->unencrypted, "put: leave the value legible in its file");
  app.add_flag("--binary", options->binary, "put: the value is all of standard input, any bytes");
  app.add_flag("--from-input", options->from_input,
               "rekey: read the new master key, 64 hexadecimal digits, from standard input");
  app.add_flag("--json", options->json, "list: Print one JSON object for each key");
  app.footer("put reads the value from standard input, without the end of its last line. On a\n"
             "terminal it asks for one line and does not show it. rekey makes a new master key\n"
             "and encrypts every record anew; it can be broken off and repeated.\n"
             "\nExamples:\n"
             "  zrvcomn store put app/password\n"
             "  zrvcomn store put --binary app/certificate <certificate.der\n"
             "  zrvcomn store get app/password\n"
             "  zrvcomn store list app/\n"
             "\nExit codes: 0 done, 1 no such record, or the store says why not, 2 wrong usage.");
  return [options](const std::vector<std::string> &more) {
    options->rest.insert(options->rest.end(), more.begin(), more.end());
    for (const Action &action : actions)
      if (options->action == action.name) {
        check(action, *options);
        return action.run(Store(options->directory), *options);
      }
    return static_cast<int>(exit_usage);
  };
}

const Subcommand store("store", "Keep secrets in the secure store", add);

} // namespace
