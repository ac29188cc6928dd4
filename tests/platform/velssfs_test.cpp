// The secure store: what goes in comes out, and what was not put in never does.
#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <random>
#include <set>

#include <pwd.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "allocation_probe.h"
#include "check_trap.h"
#include "store_client.h"

namespace {

using namespace zrvtest;
using std::string;

using Names = std::vector<string>;

mode_t mode_of(const std::filesystem::path &path) {
  struct stat status {};
  EXPECT_EQ(lstat(path.c_str(), &status), 0) << path;
  return status.st_mode & 07777;
}

// Takes from root the right to write everywhere, as long as it lives.
class AsAnybody {
public:
  // The directory is then the process's own.
  explicit AsAnybody(const std::filesystem::path &directory) {
    if (was_root)
      is_anybody =
          chown(directory.c_str(), nobody, static_cast<gid_t>(-1)) == 0 && seteuid(nobody) == 0;
  }
  ~AsAnybody() {
    if (was_root) {
      EXPECT_EQ(seteuid(0), 0);
      // The search for leaks at the end reads the process as a debugger does, which the change forbids.
      prctl(PR_SET_DUMPABLE, 1);
    }
  }
  AsAnybody(const AsAnybody &) = delete;
  AsAnybody &operator=(const AsAnybody &) = delete;

  explicit operator bool() const { return is_anybody; }

private:
  static constexpr uid_t nobody = 65534;
  const bool was_root = geteuid() == 0;
  bool is_anybody = !was_root;
};

class Velssfs : public StoreTest {};

TEST_F(Velssfs, TheCipherIsThere) {
  EXPECT_EQ(RSecSSFsSharedLibInit(), RSEC_SSFS_RC_OK);
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(Velssfs, WhatIsPutCanBeGot) {
  const StoredValue values[] = {
      {"secret"},
      {""},
      {"\xC3\xA4\xE2\x82\xAC\xF0\x9F\x94\x91"},
      {"plain text", false, true},
      {"", true},
      {string("\0\xFF\0", 3), true},
      {string("\0", 1), true, true},
      {"", false, true},
  };
  for (const StoredValue &value : values) {
    EXPECT_EQ(put("app/password", value), RSEC_SSFS_RC_OK);
    StoredValue found;
    EXPECT_EQ(get("app/password", found), RSEC_SSFS_RC_OK);
    EXPECT_EQ(found, value);
  }
  EXPECT_EQ(list(), Names{"app/password"});
}

TEST_F(Velssfs, AMissingStoreIsEmptyAndStaysMissing) {
  EXPECT_EQ(get("a"), RSEC_SSFS_RC_RECORD_NOT_FOUND);
  EXPECT_EQ(zrvtest::remove("a"), RSEC_SSFS_RC_RECORD_NOT_FOUND);
  EXPECT_EQ(list(), Names{});
  EXPECT_FALSE(std::filesystem::exists(above.path / "state"));
}

TEST_F(Velssfs, FilesAreTheOwnersAlone) {
  const mode_t before = umask(0);
  EXPECT_EQ(put("a/b", "value"), RSEC_SSFS_RC_OK);
  umask(0777);
  EXPECT_EQ(put("c", "value"), RSEC_SSFS_RC_OK);
  umask(before);
  EXPECT_EQ(mode_of(above.path / "state"), 0700U);
  EXPECT_EQ(mode_of(path), 0700U);
  std::set<string> names;
  for (const auto &entry : std::filesystem::directory_iterator(path)) {
    names.insert(entry.path().filename());
    EXPECT_EQ(mode_of(entry.path()), 0600U) << entry.path();
  }
  EXPECT_EQ(names, (std::set<string>{"a+b.rec", "c.rec", "key", "lock"}));
}

TEST_F(Velssfs, OnlyPlainValuesCanBeReadInTheFile) {
  EXPECT_EQ(put("hidden", "correct horse"), RSEC_SSFS_RC_OK);
  EXPECT_EQ(put("open", {"battery staple", false, true}), RSEC_SSFS_RC_OK);
  EXPECT_EQ(read_file(file_of("hidden")).find("horse"), string::npos);
  EXPECT_NE(read_file(file_of("open")).find("battery staple"), string::npos);
  // The same value never looks the same twice.
  const string once = read_file(file_of("hidden"));
  EXPECT_EQ(put("hidden", "correct horse"), RSEC_SSFS_RC_OK);
  EXPECT_NE(read_file(file_of("hidden")).substr(48), once.substr(48));
  EXPECT_EQ(once.size(), 48 + 6 + 13 + 16U);
}

TEST_F(Velssfs, Removing) {
  EXPECT_EQ(put("a", "1"), RSEC_SSFS_RC_OK);
  EXPECT_EQ(put("b", "2"), RSEC_SSFS_RC_OK);
  EXPECT_EQ(zrvtest::remove("a"), RSEC_SSFS_RC_OK);
  EXPECT_EQ(get("a"), RSEC_SSFS_RC_RECORD_NOT_FOUND);
  EXPECT_EQ(zrvtest::remove("a"), RSEC_SSFS_RC_RECORD_NOT_FOUND);
  EXPECT_EQ(list(), Names{"b"});
}

// ---- what callers give ----

TEST_F(Velssfs, FormOfKeys) {
  const string longest(200, 'k');
  for (const string &key : {string("a"), string("_"), string("9"), string("a/b/c"),
                            string("A.b-C_d"), string("DB/HOST.1"), string("_a/_b"), longest})
    EXPECT_EQ(put(key, key.c_str()), RSEC_SSFS_RC_OK) << key;
  EXPECT_EQ(list().size(), 8U);
  for (const string &key :
       {string(""),    string("/"),        string("/a"),   string("a/"),   string("a//b"),
        string("."),   string(".."),       string("../a"), string("a/.."), string("a/.b"),
        string("-a"),  string("a/-b"),     string("a b"),  string("a+b"),  string("a\\b"),
        string("a\n"), string("\xC3\xA4"), string("a:b"),  string("a@b"),  string("a[b"),
        string("a`b"), string("a{b"),      longest + "k"}) {
    string text;
    EXPECT_EQ(put(key, "x", &text), RSEC_SSFS_RC_RECORD_KEY_FORMAT) << key;
    EXPECT_EQ(text, "this is no key of a record");
    EXPECT_EQ(get(key), RSEC_SSFS_RC_RECORD_KEY_FORMAT) << key;
    EXPECT_EQ(zrvtest::remove(key), RSEC_SSFS_RC_RECORD_KEY_FORMAT) << key;
  }
  GetBlock block;
  EXPECT_EQ(RSecSSFsGetRecord(block.get()), RSEC_SSFS_RC_RECORD_KEY_FORMAT);
  EXPECT_EQ(list().size(), 8U);
}

TEST_F(Velssfs, TextMustBeUtf8) {
  for (const char *good :
       {"\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80",
        "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF", "\xE1\x80\x80\xF1\x80\x80\x80z"})
    EXPECT_EQ(put("a", good), RSEC_SSFS_RC_OK) << good;
  EXPECT_EQ(put("a", "kept"), RSEC_SSFS_RC_OK);
  for (const char *bad :
       {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xC2", "\xC2z", "\xC2\xC2", "\xE0\x9F\xBF",
        "\xE0\xA0", "\xE1\x80z", "\xED\xA0\x80", "\xED\xBF\xBF", "\xF0\x8F\xBF\xBF", "\xF0\x90\x80",
        "\xF1\x80\x80z", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF", "a\xFE"}) {
    EXPECT_EQ(put("a", bad), RSEC_SSFS_RC_UTF8_CONVERSION) << bad;
    EXPECT_EQ(put("b", {bad, true}), RSEC_SSFS_RC_OK) << bad;
  }
  StoredValue value;
  EXPECT_EQ(get("a", value), RSEC_SSFS_RC_OK);
  EXPECT_EQ(value.bytes, "kept");
}

TEST_F(Velssfs, LengthOfValues) {
  for (const bool is_binary : {false, true}) {
    StoredValue value{string(VELSSFS_MAX_VALUE, 'v'), is_binary}, found;
    EXPECT_EQ(put("a", value), RSEC_SSFS_RC_OK);
    EXPECT_EQ(get("a", found), RSEC_SSFS_RC_OK);
    EXPECT_EQ(found, value);
    string text;
    EXPECT_EQ(put("a", {value.bytes + "v", is_binary}, &text), RSEC_SSFS_RC_VALUE_TOO_LONG);
    EXPECT_EQ(text, "a value has at most 1048576 bytes");
    EXPECT_EQ(get("a", found), RSEC_SSFS_RC_OK);
    EXPECT_EQ(found, value);
  }
  PutBlock block;
  block->in_pKey = "a";
  block->in_isBinary = 1;
  const VEL_RAW byte = 0;
  block->in_pValueX = &byte;
  block->in_pValueXLen = SIZE_MAX; // is not read
  EXPECT_EQ(RSecSSFsPutRecord(block.get()), RSEC_SSFS_RC_VALUE_TOO_LONG);
}

TEST_F(Velssfs, NullValues) {
  EXPECT_EQ(put("a", "kept"), RSEC_SSFS_RC_OK);
  PutBlock block;
  block->in_pKey = "a";
  // No text but bytes: the caller forgot to say that the value is binary, and it is not removed.
  const VEL_RAW byte = 7;
  block->in_pValueX = &byte;
  block->in_pValueXLen = 1;
  EXPECT_EQ(RSecSSFsPutRecord(block.get()), RSEC_SSFS_RC_RSECSSFX_USAGE);
  block->in_isBinary = 1;
  block->in_pValueX = nullptr;
  EXPECT_EQ(RSecSSFsPutRecord(block.get()), RSEC_SSFS_RC_RSECSSFX_USAGE);
  EXPECT_NE(block->out_pProcessingInfo->pErrorText[0], '\0');
  StoredValue value;
  EXPECT_EQ(get("a", value), RSEC_SSFS_RC_OK);
  EXPECT_EQ(value.bytes, "kept");
  // Binary and empty needs no bytes.
  block->in_pValueXLen = 0;
  EXPECT_EQ(RSecSSFsPutRecord(block.get()), RSEC_SSFS_RC_OK);
  EXPECT_EQ(get("a", value), RSEC_SSFS_RC_OK);
  EXPECT_EQ(value, (StoredValue{"", true}));
}

template <class Api>
void check_blocks(RSEC_SSFS_RC (*make)(Api **), RSEC_SSFS_RC (*call)(Api *),
                  RSEC_SSFS_RC (*drop)(Api **)) {
  EXPECT_EQ(make(nullptr), RSEC_SSFS_RC_RSECSSFX_USAGE);
  EXPECT_EQ(drop(nullptr), RSEC_SSFS_RC_RSECSSFX_USAGE);
  EXPECT_EQ(call(nullptr), RSEC_SSFS_RC_RSECSSFX_USAGE);
  Api *api = nullptr;
  EXPECT_EQ(drop(&api), RSEC_SSFS_RC_OK);
  Api stray{}, copy{};
  api = &stray;
  EXPECT_EQ(call(api), RSEC_SSFS_RC_RSECSSFX_USAGE);
  EXPECT_EQ(drop(&api), RSEC_SSFS_RC_RSECSSFX_USAGE);
  EXPECT_EQ(api, &stray);
  EXPECT_EQ(stray.out_pProcessingInfo, nullptr);

  EXPECT_EQ(make(&api), RSEC_SSFS_RC_OK);
  copy = *api; // a copy is no block
  EXPECT_EQ(copy.out_pProcessingInfo, nullptr);
  EXPECT_EQ(call(&copy), RSEC_SSFS_RC_RSECSSFX_USAGE);
  EXPECT_EQ(drop(&api), RSEC_SSFS_RC_OK);
  EXPECT_EQ(api, nullptr);

  AllocationProbe probe;
  probe.fail(1);
  api = &stray;
  EXPECT_EQ(make(&api), RSEC_SSFS_RC_LOW_MEMORY);
  EXPECT_EQ(api, nullptr);
  EXPECT_EQ(make(&api), RSEC_SSFS_RC_OK);
  EXPECT_EQ(drop(&api), RSEC_SSFS_RC_OK);
  EXPECT_EQ(probe.live_blocks(), 0U);
  // A block is wiped whole.
  EXPECT_EQ(probe.last_released().find_first_not_of('\0'), string::npos);
}

TEST_F(Velssfs, Blocks) {
  check_blocks(RSecSSFsGetRecordAPIGet, RSecSSFsGetRecord, RSecSSFsGetRecordAPIRelease);
  check_blocks(RSecSSFsPutRecordAPIGet, RSecSSFsPutRecord, RSecSSFsPutRecordAPIRelease);
  check_blocks(RSecSSFsListRecordKeysAPIGet, RSecSSFsListRecordKeys,
               RSecSSFsListRecordKeysAPIRelease);
  check_blocks(RSecSSFsGenerateCharKeyAPIGet, RSecSSFsGenerateCharKey,
               RSecSSFsGenerateCharKeyAPIRelease);
  check_blocks(RSecSSFsChangeKeyAPIGet, RSecSSFsChangeKey, RSecSSFsChangeKeyAPIRelease);
}

// ---- lists ----

TEST_F(Velssfs, ListsByPrefixInTheOrderOfBytes) {
  for (const char *key : {"b", "a/x", "a", "a.b", "a/y", "B", "ab"})
    EXPECT_EQ(put(key, "v"), RSEC_SSFS_RC_OK);
  EXPECT_EQ(list(), (Names{"B", "a", "a.b", "a/x", "a/y", "ab", "b"}));
  EXPECT_EQ(list(""), list());
  EXPECT_EQ(list("a"), (Names{"a", "a.b", "a/x", "a/y", "ab"}));
  EXPECT_EQ(list("a/"), (Names{"a/x", "a/y"}));
  EXPECT_EQ(list("a/y"), Names{"a/y"});
  EXPECT_EQ(list("a/y/"), Names{});
  EXPECT_EQ(list("A"), Names{});
  Names keys;
  for (const char *no_prefix : {"a b", "+", "\xC3\xA4", "a\n"})
    EXPECT_EQ(list(no_prefix, keys), RSEC_SSFS_RC_RECORD_KEY_FORMAT) << no_prefix;
}

TEST_F(Velssfs, OtherFilesAreNoRecords) {
  EXPECT_EQ(put("a", "v"), RSEC_SSFS_RC_OK);
  for (const string &name : {string(".rec"), string("a b.rec"), string("b.re"), string("b.REC"),
                             string("b.rec~"), string("+b.rec"), string("b+.rec"), string(".b.rec"),
                             string("key.bak"), string(201, 'k') + ".rec"})
    write_file(path / name, "x");
  EXPECT_EQ(list(), Names{"a"});
  EXPECT_EQ(change_key(generate_key()), RSEC_SSFS_RC_OK);
}

// As in a store that was brought here without it.
TEST_F(Velssfs, ListsWithoutTheFileOfTheLock) {
  EXPECT_EQ(put("a", "v"), RSEC_SSFS_RC_OK);
  std::filesystem::remove(path / "lock");
  EXPECT_EQ(list(), Names{"a"});
  EXPECT_FALSE(std::filesystem::exists(path / "lock"));
}

// ---- the directory ----

TEST(VelssfsDirectory, DefaultsInTheStateDirectory) {
  TemporaryDirectory home;
  const char *const old_home = std::getenv("HOME");
  const string home_before = old_home != nullptr ? old_home : "";
  const string state = home.path / "state", user = home.path / "user";
  EXPECT_EQ(RSecSSFsSetConfiguration(""), RSEC_SSFS_RC_OK);
  setenv("HOME", user.c_str(), 1);
  setenv("XDG_STATE_HOME", state.c_str(), 1);
  EXPECT_EQ(put("a", "in state"), RSEC_SSFS_RC_OK);
  EXPECT_TRUE(std::filesystem::exists(state + "/zrvcomn/secstore/a.rec"));
  // One that is relative does not count.
  setenv("XDG_STATE_HOME", "state", 1);
  EXPECT_EQ(get("a"), RSEC_SSFS_RC_RECORD_NOT_FOUND);
  EXPECT_EQ(put("b", "in home"), RSEC_SSFS_RC_OK);
  EXPECT_TRUE(std::filesystem::exists(user + "/.local/state/zrvcomn/secstore/b.rec"));
  unsetenv("XDG_STATE_HOME");
  EXPECT_EQ(get("b"), RSEC_SSFS_RC_OK);

  // What was configured comes first, and holds for blocks that are made afterwards.
  GetBlock earlier;
  const string own = home.path / "own";
  EXPECT_EQ(RSecSSFsSetConfiguration(own.c_str()), RSEC_SSFS_RC_OK);
  EXPECT_EQ(put("c", "own"), RSEC_SSFS_RC_OK);
  EXPECT_TRUE(std::filesystem::exists(own + "/c.rec"));
  StoredValue value;
  EXPECT_EQ(get(earlier, "c", value), RSEC_SSFS_RC_RECORD_NOT_FOUND);
  EXPECT_EQ(get(earlier, "b", value), RSEC_SSFS_RC_OK);
  EXPECT_EQ(RSecSSFsSetConfiguration(nullptr), RSEC_SSFS_RC_OK);
  EXPECT_EQ(get("c"), RSEC_SSFS_RC_RECORD_NOT_FOUND);

  // An environment that names a directory which is too long.
  const string too_long = "/" + string(VELSSFS_MAX_DIRECTORY, 'd');
  setenv("XDG_STATE_HOME", too_long.c_str(), 1);
  string text;
  EXPECT_EQ(put("a", "x", &text), RSEC_SSFS_RC_ENVIRONMENT);
  EXPECT_EQ(text, "there is no home directory for the store");
  EXPECT_EQ(get("a"), RSEC_SSFS_RC_ENVIRONMENT);
  Names keys;
  EXPECT_EQ(list("", keys), RSEC_SSFS_RC_ENVIRONMENT);
  EXPECT_EQ(zrvtest::remove("a"), RSEC_SSFS_RC_ENVIRONMENT);
  EXPECT_EQ(change_key(generate_key()), RSEC_SSFS_RC_ENVIRONMENT);
  unsetenv("XDG_STATE_HOME");
  setenv("HOME", home_before.c_str(), 1);
}

TEST_F(Velssfs, APathThatIsTooLongIsRefused) {
  EXPECT_EQ(put("a", "v"), RSEC_SSFS_RC_OK);
  EXPECT_EQ(RSecSSFsSetConfiguration(string(VELSSFS_MAX_DIRECTORY + 1, 'd').c_str()),
            RSEC_SSFS_RC_ENVIRONMENT);
  EXPECT_EQ(get("a"), RSEC_SSFS_RC_OK); // nothing changed
  // The longest is taken as it is; it is one name, which no file system has.
  EXPECT_EQ(RSecSSFsSetConfiguration(string(VELSSFS_MAX_DIRECTORY, 'd').c_str()), RSEC_SSFS_RC_OK);
  string text;
  EXPECT_EQ(put("a", "v", &text), RSEC_SSFS_RC_ENVIRONMENT);
  EXPECT_NE(text.find(": File name too long"), string::npos);
  StoredValue value;
  EXPECT_EQ(get(string(200, 'k'), value, &text), RSEC_SSFS_RC_ENVIRONMENT);
  EXPECT_NE(text.find(".rec: File name too long"), string::npos);
  // Steps that are there, in the longest path of all.
  string deep = path;
  while (deep.size() < VELSSFS_MAX_DIRECTORY - 201)
    deep += "/" + string(200, 'd');
  deep += "/" + string(VELSSFS_MAX_DIRECTORY - deep.size() - 1, 'e');
  ASSERT_EQ(RSecSSFsSetConfiguration(deep.c_str()), RSEC_SSFS_RC_OK);
  EXPECT_EQ(put(string(200, 'k'), "v"), RSEC_SSFS_RC_OK);
  EXPECT_EQ(get(string(200, 'k')), RSEC_SSFS_RC_OK);
  EXPECT_EQ(list(), Names{string(200, 'k')});
}

TEST_F(Velssfs, SlashesBehindTheDirectoryAreDropped) {
  ASSERT_EQ(RSecSSFsSetConfiguration((path.string() + "//").c_str()), RSEC_SSFS_RC_OK);
  EXPECT_EQ(put("a", "v"), RSEC_SSFS_RC_OK);
  string text;
  EXPECT_EQ(zrvtest::remove("b", &text), RSEC_SSFS_RC_RECORD_NOT_FOUND);
  EXPECT_EQ(text, file_of("b").string() + ": there is no such record");
  ASSERT_EQ(RSecSSFsSetConfiguration("//"), RSEC_SSFS_RC_OK);
  EXPECT_EQ(zrvtest::remove("b", &text), RSEC_SSFS_RC_RECORD_NOT_FOUND);
  EXPECT_EQ(text, "//b.rec: there is no such record");
}

TEST_F(Velssfs, ADirectoryThatIsNone) {
  write_file(above.path / "state", "a file");
  string text;
  EXPECT_EQ(put("a", "v", &text), RSEC_SSFS_RC_ENVIRONMENT);
  EXPECT_EQ(text, path.string() + ": Not a directory");
  EXPECT_EQ(get("a"), RSEC_SSFS_RC_ENVIRONMENT);
}

TEST_F(Velssfs, ADirectoryThatCannotBeWrittenTo) {
  const AsAnybody anybody(above.path);
  if (!anybody)
    GTEST_SKIP() << "this root cannot be anybody else";
  EXPECT_EQ(put("a", "v"), RSEC_SSFS_RC_OK);
  std::filesystem::permissions(path, std::filesystem::perms(0500));
  EXPECT_EQ(put("a", "w"), RSEC_SSFS_RC_NO_WRITE_PERMISSION);
  EXPECT_EQ(zrvtest::remove("a"), RSEC_SSFS_RC_NO_WRITE_PERMISSION);
  EXPECT_EQ(change_key(generate_key()), RSEC_SSFS_RC_NO_WRITE_PERMISSION);
  EXPECT_EQ(get("a"), RSEC_SSFS_RC_OK);
  EXPECT_EQ(list(), Names{"a"});
  std::filesystem::permissions(path, std::filesystem::perms(0700));
}

// Whoever may make a store in a directory need not be able to read that directory.
TEST_F(Velssfs, ADirectoryAboveThatCannotBeRead) {
  const AsAnybody anybody(above.path);
  if (!anybody)
    GTEST_SKIP() << "this root cannot be anybody else";
  std::filesystem::permissions(above.path, std::filesystem::perms(0300));
  EXPECT_EQ(put("a", "v"), RSEC_SSFS_RC_OK);
  EXPECT_EQ(get("a"), RSEC_SSFS_RC_OK);
  std::filesystem::permissions(above.path, std::filesystem::perms(0700));
}

// ---- damage ----

TEST_F(Velssfs, EveryByteOfARecordCounts) {
  for (const StoredValue &value :
       {StoredValue{"secret"}, {string("\0\1\2", 3), true}, {"plain", false, true}, {""}}) {
    EXPECT_EQ(put("a/b", value), RSEC_SSFS_RC_OK);
    const string good = read_file(file_of("a/b"));
    GetBlock block; // its keys are kept from call to call
    StoredValue found;
    for (size_t at = 0; at < good.size(); ++at)
      for (const int change : {0x01, 0x80, 0xFF}) {
        string bad = good;
        bad[at] = static_cast<char>(bad[at] ^ change);
        write_file(file_of("a/b"), bad);
        string text;
        EXPECT_EQ(get(block, "a/b", found, &text), RSEC_SSFS_RC_FILE_CORRUPTION) << at;
        EXPECT_EQ(text.rfind(file_of("a/b").string() + ": it is ", 0), 0U) << text;
      }
    for (size_t length = 0; length < good.size(); ++length) {
      write_file(file_of("a/b"), good.substr(0, length));
      EXPECT_EQ(get(block, "a/b", found), RSEC_SSFS_RC_FILE_CORRUPTION) << length;
    }
    write_file(file_of("a/b"), good + '\0');
    EXPECT_EQ(get(block, "a/b", found), RSEC_SSFS_RC_FILE_CORRUPTION);
    write_file(file_of("a/b"), good);
    EXPECT_EQ(get(block, "a/b", found), RSEC_SSFS_RC_OK);
    EXPECT_EQ(found, value);
  }
}

TEST_F(Velssfs, EveryByteOfTheKeyFileCounts) {
  EXPECT_EQ(put("a", "secret"), RSEC_SSFS_RC_OK);
  const string good = read_file(path / "key");
  EXPECT_EQ(good.size(), 16 + 32 + 32U);
  for (size_t at = 0; at <= good.size(); ++at)
    for (const bool is_cut : {false, true}) {
      if (!is_cut && at == good.size())
        continue;
      string bad = is_cut ? good.substr(0, at) : good;
      if (is_cut && at == good.size())
        bad += '\0';
      else if (!is_cut)
        bad[at] = static_cast<char>(bad[at] ^ 0x10);
      write_file(path / "key", bad);
      EXPECT_EQ(get("a"), RSEC_SSFS_RC_FILE_CORRUPTION) << at;
      EXPECT_EQ(put("b", "x"), RSEC_SSFS_RC_FILE_CORRUPTION) << at;
      EXPECT_EQ(change_key(string(64, '1')), RSEC_SSFS_RC_FILE_CORRUPTION) << at;
    }
  string text;
  StoredValue value;
  EXPECT_EQ(get("a", value, &text), RSEC_SSFS_RC_FILE_CORRUPTION);
  EXPECT_EQ(text, (path / "key").string() + ": it is damaged");
  write_file(path / "key", string(100000, 'k'));
  EXPECT_EQ(get("a", value, &text), RSEC_SSFS_RC_FILE_CORRUPTION);
  EXPECT_EQ(text, (path / "key").string() + ": this is no key file");
  write_file(path / "key", good);
  EXPECT_EQ(get("a"), RSEC_SSFS_RC_OK);
  EXPECT_EQ(list(), Names{"a"});
}

TEST_F(Velssfs, FilesInOneAnothersPlace) {
  EXPECT_EQ(put("a", "of a"), RSEC_SSFS_RC_OK);
  EXPECT_EQ(put("b", "of b"), RSEC_SSFS_RC_OK);
  const string a = read_file(file_of("a")), b = read_file(file_of("b")),
               key = read_file(path / "key");
  write_file(file_of("a"), b);
  write_file(file_of("b"), a);
  EXPECT_EQ(get("a"), RSEC_SSFS_RC_FILE_CORRUPTION);
  EXPECT_EQ(get("b"), RSEC_SSFS_RC_FILE_CORRUPTION);
  write_file(path / "key", a);
  EXPECT_EQ(get("a"), RSEC_SSFS_RC_FILE_CORRUPTION);
  write_file(path / "key", key);
  write_file(file_of("a"), key);
  EXPECT_EQ(get("a"), RSEC_SSFS_RC_FILE_CORRUPTION);
  write_file(file_of("a"), a);
  EXPECT_EQ(get("a"), RSEC_SSFS_RC_OK);

  // From another store: the record, and the key.
  const std::filesystem::path other = above.path / "other";
  EXPECT_EQ(RSecSSFsSetConfiguration(other.c_str()), RSEC_SSFS_RC_OK);
  EXPECT_EQ(put("a", "elsewhere"), RSEC_SSFS_RC_OK);
  EXPECT_EQ(RSecSSFsSetConfiguration(path.c_str()), RSEC_SSFS_RC_OK);
  write_file(file_of("a"), read_file(other / "a.rec"));
  string text;
  StoredValue value;
  EXPECT_EQ(get("a", value, &text), RSEC_SSFS_RC_FILE_CORRUPTION);
  EXPECT_EQ(text,
            file_of("a").string() + ": it is under a master key that the store does not have");
  // The store has its key: what does not open under it is damaged, and no other key is asked for.
  write_file(file_of("b"), b);
  EXPECT_EQ(change_key(generate_key(), &text), RSEC_SSFS_RC_FILE_CORRUPTION);
  EXPECT_EQ(text,
            file_of("a").string() + ": it is under a master key that the store does not have");
  EXPECT_EQ(read_file(path / "key"), key);
  write_file(file_of("a"), a);
  write_file(path / "key", read_file(other / "key"));
  EXPECT_EQ(get("a"), RSEC_SSFS_RC_FILE_CORRUPTION);
}

TEST_F(Velssfs, WhatIsNoFile) {
  EXPECT_EQ(put("a", "v"), RSEC_SSFS_RC_OK);
  std::filesystem::create_directory(file_of("directory"));
  ASSERT_EQ(mkfifo(file_of("pipe").c_str(), 0600), 0);
  ASSERT_EQ(mknod(file_of("socket").c_str(), S_IFSOCK | 0600, 0), 0);
  string text;
  StoredValue value;
  for (const char *key : {"directory", "pipe", "socket"}) {
    EXPECT_EQ(get(key, value, &text), RSEC_SSFS_RC_FILE_CORRUPTION);
    EXPECT_EQ(text, file_of(key).string() + ": this is no record");
  }
  EXPECT_EQ(put("pipe", "a record"), RSEC_SSFS_RC_OK);
  EXPECT_EQ(get("pipe"), RSEC_SSFS_RC_OK);
  EXPECT_EQ(put("directory", "a record"), RSEC_SSFS_RC_ENVIRONMENT);
  EXPECT_FALSE(std::filesystem::exists(path / "replacement"));
}

// A file that is far too long is not even read.
TEST_F(Velssfs, AFileBeyondTheLongestRecord) {
  EXPECT_EQ(put("a", "v"), RSEC_SSFS_RC_OK);
  std::filesystem::resize_file(file_of("a"), uintmax_t{1} << 32);
  AllocationProbe probe;
  EXPECT_EQ(get("a"), RSEC_SSFS_RC_FILE_CORRUPTION);
  EXPECT_LT(probe.last_size(), 100000U);
}

TEST_F(Velssfs, ADamagedRecordCanBeListedRemovedAndWritten) {
  EXPECT_EQ(put("a", "v"), RSEC_SSFS_RC_OK);
  EXPECT_EQ(put("b", "v"), RSEC_SSFS_RC_OK);
  write_file(file_of("a"), "nonsense");
  write_file(file_of("b"), "nonsense");
  EXPECT_EQ(list(), (Names{"a", "b"}));
  EXPECT_EQ(put("a", "new"), RSEC_SSFS_RC_OK);
  EXPECT_EQ(zrvtest::remove("b"), RSEC_SSFS_RC_OK);
  EXPECT_EQ(get("a"), RSEC_SSFS_RC_OK);
}

// ---- the key file ----

TEST_F(Velssfs, AKeyFileThatOthersMayUseIsRefused) {
  EXPECT_EQ(put("a", "v"), RSEC_SSFS_RC_OK);
  for (const unsigned mode : {0640U, 0604U, 0601U, 0660U, 0620U, 0610U}) {
    ASSERT_EQ(chmod((path / "key").c_str(), mode), 0);
    string text;
    StoredValue value;
    EXPECT_EQ(get("a", value, &text), RSEC_SSFS_RC_ENVIRONMENT);
    EXPECT_NE(text.find("/key: the mode 6"), string::npos) << text;
    EXPECT_EQ(put("b", "v"), RSEC_SSFS_RC_ENVIRONMENT);
    EXPECT_EQ(change_key(generate_key()), RSEC_SSFS_RC_ENVIRONMENT);
  }
  ASSERT_EQ(chmod((path / "key").c_str(), 0400), 0);
  EXPECT_EQ(get("a"), RSEC_SSFS_RC_OK);
  EXPECT_EQ(list(), Names{"a"});
}

TEST_F(Velssfs, ALostKeyIsNotReplaced) {
  const string char_key = generate_key();
  EXPECT_EQ(change_key(char_key), RSEC_SSFS_RC_OK); // makes the store
  EXPECT_EQ(put("a", "v"), RSEC_SSFS_RC_OK);
  const string key = read_file(path / "key");
  std::filesystem::remove(path / "key");
  string text;
  StoredValue value;
  EXPECT_EQ(get("a", value, &text), RSEC_SSFS_RC_ENVIRONMENT);
  EXPECT_EQ(text, (path / "key").string() + ": the key file is missing");
  EXPECT_EQ(put("a", "w"), RSEC_SSFS_RC_ENVIRONMENT);
  EXPECT_EQ(put("b", "w", &text), RSEC_SSFS_RC_ENVIRONMENT);
  EXPECT_EQ(text, (path / "key").string() + ": the key file is missing");
  EXPECT_FALSE(std::filesystem::exists(path / "key"));
  // Only the key itself brings it back.
  EXPECT_EQ(change_key(generate_key(), &text), RSEC_SSFS_RC_INCORRECT_KEY);
  EXPECT_EQ(text, file_of("a").string() + ": the record is under another master key");
  EXPECT_FALSE(std::filesystem::exists(path / "key"));
  EXPECT_EQ(change_key(char_key), RSEC_SSFS_RC_OK);
  EXPECT_EQ(read_file(path / "key"), key);
  EXPECT_EQ(get("a"), RSEC_SSFS_RC_OK);
}

TEST_F(Velssfs, GeneratedKeys) {
  const string one = generate_key(), other = generate_key();
  EXPECT_EQ(one.size(), 64U);
  EXPECT_EQ(one.find_first_not_of("0123456789abcdef"), string::npos);
  EXPECT_NE(one, other);
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(Velssfs, FormOfMasterKeys) {
  EXPECT_EQ(put("a", "v"), RSEC_SSFS_RC_OK);
  const string before = read_file(path / "key");
  const string digits(62, '0');
  for (const string &bad :
       {string(), digits, digits + "0", digits + "000", digits + "0g", digits + "g0", digits + "0/",
        digits + "0:", digits + "0@", digits + "0`", digits + "0G", digits + " 0"}) {
    string text;
    EXPECT_EQ(change_key(bad, &text), RSEC_SSFS_RC_INCORRECT_KEY) << bad;
    EXPECT_EQ(text, "a master key is 64 hexadecimal digits");
  }
  ChangeBlock block;
  EXPECT_EQ(RSecSSFsChangeKey(block.get()), RSEC_SSFS_RC_INCORRECT_KEY);
  EXPECT_EQ(read_file(path / "key"), before);
  // Of either case, and what is in the file is the key itself.
  EXPECT_EQ(change_key(digits + "aF"), RSEC_SSFS_RC_OK);
  EXPECT_EQ(read_file(path / "key").substr(16, 32), string(31, '\0') + '\xAF');
}

TEST_F(Velssfs, ChangingTheKeyKeepsEveryRecord) {
  const std::map<string, StoredValue> records = {{"text", {"secret"}},
                                                 {"binary", {string("\0\xFF", 2), true}},
                                                 {"plain", {"p", false, true}},
                                                 {"bin/plain", {string("\0", 1), true, true}},
                                                 {"empty", {""}}};
  for (const auto &[key, value] : records)
    EXPECT_EQ(put(key, value), RSEC_SSFS_RC_OK);
  GetBlock reader; // holds the old key
  StoredValue value;
  EXPECT_EQ(get(reader, "text", value), RSEC_SSFS_RC_OK);
  const string before = read_file(file_of("text"));
  const string old_key = read_file(path / "key").substr(16, 32);
  const string char_key = generate_key();
  EXPECT_EQ(change_key(char_key), RSEC_SSFS_RC_OK);
  EXPECT_EQ(read_file(path / "key").find(old_key), string::npos);
  EXPECT_EQ(read_file(path / "key").size(), 16 + 32 + 32U);
  for (const auto &[key, expected] : records) {
    EXPECT_EQ(get(reader, key, value), RSEC_SSFS_RC_OK) << key;
    EXPECT_EQ(value, expected) << key;
  }
  // What was written under the old key is of no use any more.
  write_file(file_of("text"), before);
  EXPECT_EQ(get("text"), RSEC_SSFS_RC_FILE_CORRUPTION);
  EXPECT_EQ(put("text", "secret"), RSEC_SSFS_RC_OK);
  // The same key again changes nothing.
  const string file = read_file(file_of("binary")), key_file = read_file(path / "key");
  EXPECT_EQ(change_key(char_key), RSEC_SSFS_RC_OK);
  EXPECT_EQ(read_file(file_of("binary")), file);
  EXPECT_EQ(read_file(path / "key"), key_file);
}

TEST_F(Velssfs, ADamagedRecordStopsAChangeBeforeItBegins) {
  for (const char *key : {"a", "b", "c"})
    EXPECT_EQ(put(key, key), RSEC_SSFS_RC_OK);
  const string key = read_file(path / "key"), a = read_file(file_of("a"));
  const string b = read_file(file_of("b"));
  write_file(file_of("b"), b.substr(0, b.size() - 1));
  string text;
  EXPECT_EQ(change_key(generate_key(), &text), RSEC_SSFS_RC_FILE_CORRUPTION);
  EXPECT_EQ(text, file_of("b").string() + ": it is damaged, or belongs elsewhere");
  EXPECT_EQ(read_file(path / "key"), key);
  EXPECT_EQ(read_file(file_of("a")), a);
  write_file(file_of("b"), b);
  EXPECT_EQ(change_key(generate_key()), RSEC_SSFS_RC_OK);
}

// ---- several at once ----

TEST_F(Velssfs, AWriterWaitsForTheLock) {
  EXPECT_EQ(put("a", "v"), RSEC_SSFS_RC_OK);
  const int lock = open((path / "lock").c_str(), O_RDWR | O_CLOEXEC);
  ASSERT_GE(lock, 0);
  ASSERT_EQ(flock(lock, LOCK_EX), 0);
  string text;
  for (int wait : {-1, 0, 30}) {
    EXPECT_EQ(change_key(generate_key(), &text, &wait), RSEC_SSFS_RC_CONCURRENT_UPDATE);
    EXPECT_EQ(text, path.string() + ": another process is at work there");
  }
  // Who reads a record does not ask for the lock.
  EXPECT_EQ(get("a"), RSEC_SSFS_RC_OK);
  const pid_t other = fork();
  if (other == 0) {
    usleep(200000);
    flock(lock, LOCK_UN);
    _exit(0);
  }
  EXPECT_EQ(put("a", "w"), RSEC_SSFS_RC_OK); // waits for the other process
  int status = -1;
  EXPECT_EQ(waitpid(other, &status, 0), other);
  EXPECT_EQ(status, 0);
  close(lock);
}

// Two processes write the same records and change the key while a third reads and lists.
TEST_F(Velssfs, TwoWritersAndAReader) {
  constexpr int rounds = 150;
  constexpr size_t enough_reads = 300;
  const Names keys = {"a", "b", "c/d"};
  for (const string &key : keys)
    ASSERT_EQ(put(key, string(1000, '0').c_str()), RSEC_SSFS_RC_OK);
  // The writers go on until the reader has seen enough, whoever the machine lets run.
  using Flag = std::atomic<bool>;
  void *const shared =
      mmap(nullptr, sizeof(Flag), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(shared, MAP_FAILED);
  const auto end_writers = [](Flag *flag) {
    *flag = true;
    munmap(flag, sizeof *flag);
  };
  const std::unique_ptr<Flag, decltype(end_writers)> is_enough(new (shared) Flag(false),
                                                               end_writers);
  std::vector<pid_t> writers;
  for (const char mark : {'1', '2'}) {
    const pid_t writer = fork();
    if (writer == 0) {
      bool is_good = true;
      for (int round = 0; round < rounds || !*is_enough; ++round) {
        const string &key = keys[static_cast<size_t>(round) % keys.size()];
        is_good &= put(key, string(1000, mark).c_str()) == RSEC_SSFS_RC_OK;
        if (round % 10 == 5)
          is_good &= change_key(generate_key()) == RSEC_SSFS_RC_OK;
      }
      _exit(is_good && !testing::Test::HasFailure() ? 0 : 1);
    }
    writers.push_back(writer);
  }
  GetBlock reader;
  size_t reads = 0;
  for (size_t running = writers.size(); running > 0;) {
    for (const string &key : keys) {
      StoredValue value;
      ASSERT_EQ(get(reader, key, value), RSEC_SSFS_RC_OK)
          << reader->out_pProcessingInfo->pErrorText;
      ASSERT_EQ(value.bytes.size(), 1000U);
      ASSERT_EQ(value.bytes, string(1000, value.bytes[0])); // never a mixture
      ++reads;
    }
    ASSERT_EQ(list(), keys);
    if (reads >= enough_reads)
      *is_enough = true;
    int status = 0;
    if (waitpid(-1, &status, WNOHANG) > 0) {
      EXPECT_EQ(status, 0);
      --running;
    }
  }
  EXPECT_GE(reads, enough_reads);
  EXPECT_EQ(get("a"), RSEC_SSFS_RC_OK);
}

// ---- long sequences ----

TEST_F(Velssfs, RandomOperationsAgreeWithAMap) {
  const char *const given = std::getenv("ZRVTEST_SEED");
  const unsigned seed = given != nullptr ? static_cast<unsigned>(std::strtoul(given, nullptr, 10))
                                         : std::random_device()();
  SCOPED_TRACE("ZRVTEST_SEED=" + std::to_string(seed));
  std::mt19937 random(seed);
  const auto below = [&](size_t count) { return static_cast<size_t>(random()) % count; };
  std::map<string, StoredValue> model;
  GetBlock reader;
  const auto any_key = [&] {
    string key = string(1, "abAB_9"[below(6)]);
    for (size_t more = below(3); more > 0; --more)
      key += string(below(2) == 0 ? "/" : "") + "xyz"[below(3)] + (below(4) == 0 ? "." : "");
    return key;
  };
  for (int step = 0; step < 10000 && !HasFailure(); ++step) {
    const string key = any_key();
    switch (below(10)) {
    case 0:
    case 1:
    case 2: {
      StoredValue value{string(below(8) == 0 ? below(5000) : below(40), 'v'), below(2) == 0,
                        below(4) == 0};
      for (char &byte : value.bytes)
        byte = static_cast<char>(value.is_binary ? below(256) : 1 + below(127));
      ASSERT_EQ(put(key, value), RSEC_SSFS_RC_OK) << step;
      model[key] = value;
      break;
    }
    case 3:
      ASSERT_EQ(zrvtest::remove(key),
                model.erase(key) > 0 ? RSEC_SSFS_RC_OK : RSEC_SSFS_RC_RECORD_NOT_FOUND)
          << step;
      break;
    case 4: {
      const string prefix = key.substr(0, below(key.size() + 1));
      Names expected;
      for (const auto &[name, value] : model)
        if (name.rfind(prefix, 0) == 0)
          expected.push_back(name);
      ASSERT_EQ(list(prefix.c_str()), expected) << step;
      break;
    }
    case 5:
      if (below(50) == 0) {
        ASSERT_EQ(change_key(generate_key()), RSEC_SSFS_RC_OK) << step;
      }
      break;
    default: {
      StoredValue value;
      const auto found = model.find(key);
      ASSERT_EQ(get(reader, key, value),
                found != model.end() ? RSEC_SSFS_RC_OK : RSEC_SSFS_RC_RECORD_NOT_FOUND)
          << step;
      if (found != model.end()) {
        ASSERT_EQ(value, found->second) << step;
      }
    }
    }
  }
}

} // namespace
