// The secure store when its process is killed, its disk is full, a call to the system fails or memory
// runs out: nothing is lost, and no wrong value is ever read.
#include <cerrno>
#include <csignal>
#include <functional>
#include <map>

// A generator of random bytes that fails can only be set with what is deprecated.
#define OPENSSL_SUPPRESS_DEPRECATED
#include <openssl/evp.h>
#include <openssl/rand.h>
#include <sys/wait.h>
#include <unistd.h>

#include "allocation_probe.h"
#include "check_trap.h"
#include "store_client.h"
#include "system_calls.h"

namespace {

using namespace zrvtest;
using std::string;

const string first_key(64, '1'), second_key(64, '2'), third_key(64, '3');

const std::map<string, StoredValue> records = {{"text", {"secret"}},
                                               {"deep/binary", {string("\0\xFF", 2), true}},
                                               {"plain", {"open", false, true}}};

class VelssfsCrash : public StoreTest {
protected:
  // A store with the records under the first key, whatever was there.
  void begin() {
    std::filesystem::remove_all(path);
    ASSERT_EQ(change_key(first_key), RSEC_SSFS_RC_OK);
    for (const auto &[key, value] : records)
      ASSERT_EQ(put(key, value), RSEC_SSFS_RC_OK);
  }

  static void expect_all() {
    StoredValue value;
    for (const auto &[key, expected] : records) {
      string text;
      EXPECT_EQ(get(key, value, &text), RSEC_SSFS_RC_OK) << text;
      EXPECT_EQ(value, expected) << key;
    }
    EXPECT_EQ(list().size(), records.size());
  }

  void expect_only_key(const string &char_key) {
    const string file = read_file(path / "key");
    EXPECT_EQ(file.size(), 16 + 32 + 32U);
    EXPECT_EQ(file.substr(16, 32),
              string(32, static_cast<char>(16 * (char_key[0] - '0') + char_key[0] - '0')));
  }

  std::set<string> files() const {
    std::set<string> names;
    for (const auto &entry : std::filesystem::directory_iterator(path))
      names.insert(entry.path().filename());
    return names;
  }

  // Runs an operation in a process of its own, which is killed at its n-th system call; false when it
  // makes fewer.
  static bool killed_at(size_t nth, const std::function<void()> &operation) {
    const pid_t child = fork();
    if (child == 0) {
      SystemCalls calls;
      calls.kill(nth);
      operation();
      _exit(0);
    }
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    if (WIFSIGNALED(status)) {
      EXPECT_EQ(WTERMSIG(status), SIGKILL);
    } else {
      EXPECT_EQ(status, 0);
    }
    return WIFSIGNALED(status);
  }

  // Runs an operation in a process of its own, which is killed at each of its system calls in turn,
  // and looks at what is left each time. Returns the number of calls.
  [[nodiscard]] static size_t kill_at_each_call(const std::function<void()> &setup,
                                                const std::function<void()> &operation,
                                                const std::function<void()> &check) {
    for (size_t nth = 1;; ++nth) {
      setup();
      const bool was_killed = killed_at(nth, operation);
      SCOPED_TRACE("killed at call " + std::to_string(nth));
      check();
      if (!was_killed || testing::Test::HasFailure())
        return nth - 1;
    }
  }
};

TEST_F(VelssfsCrash, AChangeOfTheKeyThatIsKilledLosesNothing) {
  const size_t calls = kill_at_each_call([&] { begin(); }, [] { change_key(second_key); },
                                         [&] {
                                           expect_all();
                                           // Writing goes on, and the next change completes this one.
                                           EXPECT_EQ(put("text", "secret"), RSEC_SSFS_RC_OK);
                                           expect_all();
                                           EXPECT_EQ(change_key(third_key), RSEC_SSFS_RC_OK);
                                           expect_all();
                                           expect_only_key(third_key);
                                           EXPECT_EQ(files().count("replacement"), 0U);
                                         });
  EXPECT_GT(calls, 60U);
}

// The same once more for the change that completes another.
TEST_F(VelssfsCrash, AChangeThatCompletesAnotherIsKilled) {
  // One that is killed as soon as the key file has both keys.
  size_t last_call = 0;
  const auto both_keys = [&] { return read_file(path / "key").size() == 16 + 64 + 32; };
  do {
    begin();
    killed_at(++last_call, [] { change_key(second_key); });
  } while (!both_keys());
  const auto break_off = [&] {
    begin();
    killed_at(last_call, [] { change_key(second_key); });
    ASSERT_TRUE(both_keys());
  };
  const size_t calls = kill_at_each_call(
      break_off, [] { change_key(third_key); },
      [&] {
        expect_all();
        EXPECT_EQ(change_key(second_key), RSEC_SSFS_RC_OK);
        expect_all();
        expect_only_key(second_key);
      });
  EXPECT_GT(calls, 100U);
}

TEST_F(VelssfsCrash, AWriteThatIsKilledLeavesTheOldValueOrTheNew) {
  bool was_old = false, was_new = false;
  const size_t calls =
      kill_at_each_call([&] { begin(); }, [] { put("text", "another secret"); },
                        [&] {
                          StoredValue value;
                          EXPECT_EQ(get("text", value), RSEC_SSFS_RC_OK);
                          was_old |= value.bytes == "secret";
                          was_new |= value.bytes == "another secret";
                          EXPECT_TRUE(value.bytes == "secret" || value.bytes == "another secret");
                          EXPECT_EQ(list().size(), records.size());
                          EXPECT_EQ(put("text", "secret"), RSEC_SSFS_RC_OK);
                          expect_all();
                        });
  EXPECT_TRUE(was_old && was_new);
  EXPECT_GT(calls, 10U);
}

TEST_F(VelssfsCrash, TheFirstWriteThatIsKilledLeavesNoStoreOrAGoodOne) {
  bool was_none = false, was_good = false;
  const size_t calls = kill_at_each_call(
      [&] { std::filesystem::remove_all(path.parent_path()); }, [] { put("text", "secret"); },
      [&] {
        StoredValue value;
        const RSEC_SSFS_RC code = get("text", value);
        was_none |= code == RSEC_SSFS_RC_RECORD_NOT_FOUND;
        was_good |= code == RSEC_SSFS_RC_OK;
        EXPECT_TRUE(code == RSEC_SSFS_RC_RECORD_NOT_FOUND ||
                    (code == RSEC_SSFS_RC_OK && value.bytes == "secret"));
        EXPECT_EQ(put("text", "later"), RSEC_SSFS_RC_OK);
        EXPECT_EQ(get("text"), RSEC_SSFS_RC_OK);
      });
  EXPECT_TRUE(was_none && was_good);
  EXPECT_GT(calls, 10U);
}

TEST_F(VelssfsCrash, ARemovalThatIsKilled) {
  bool was_there = false, was_gone = false;
  const size_t calls = kill_at_each_call([&] { begin(); }, [] { zrvtest::remove("text"); },
                                         [&] {
                                           const RSEC_SSFS_RC code = get("text");
                                           was_there |= code == RSEC_SSFS_RC_OK;
                                           was_gone |= code == RSEC_SSFS_RC_RECORD_NOT_FOUND;
                                           EXPECT_TRUE(code == RSEC_SSFS_RC_OK ||
                                                       code == RSEC_SSFS_RC_RECORD_NOT_FOUND);
                                           EXPECT_EQ(put("text", "secret"), RSEC_SSFS_RC_OK);
                                           expect_all();
                                         });
  EXPECT_TRUE(was_there && was_gone);
  EXPECT_GT(calls, 5U);
}

// ---- calls that fail ----

// Fails each system call of an operation in turn. What the caller sees must agree with the code: `check`
// is told whether the operation said that it was done. Returns the number of calls.
[[nodiscard]] size_t fail_each_call(int error, const std::function<void()> &setup,
                                    const std::function<RSEC_SSFS_RC()> &operation,
                                    const std::function<void(bool)> &check) {
  for (size_t nth = 1;; ++nth) {
    setup();
    const size_t open_before = open_descriptors();
    RSEC_SSFS_RC code;
    bool has_failed;
    string name;
    AllocationProbe memory;
    {
      SystemCalls calls;
      calls.fail(nth, error);
      code = operation();
      has_failed = calls.failures() > 0;
      name = calls.last_failed();
    }
    SCOPED_TRACE("call " + std::to_string(nth) + ", " + name);
    EXPECT_EQ(open_descriptors(), open_before);
    EXPECT_EQ(memory.live_blocks(), 0U);
    // Nothing depends on closing what was only read, nor on making a directory that is there.
    if (!has_failed) {
      EXPECT_EQ(code, RSEC_SSFS_RC_OK);
    } else if (name != "close" && name != "mkdir") {
      EXPECT_TRUE(code == RSEC_SSFS_RC_ENVIRONMENT || code == RSEC_SSFS_RC_NO_WRITE_PERMISSION)
          << code;
    }
    check(code == RSEC_SSFS_RC_OK);
    if (!has_failed || testing::Test::HasFailure())
      return nth - 1;
  }
}

TEST_F(VelssfsCrash, EveryCallOfAChangeFails) {
  for (const int error : {ENOSPC, EIO, EACCES})
    EXPECT_GT(fail_each_call(
                  error, [&] { begin(); }, [] { return change_key(second_key); },
                  [&](bool is_done) {
                    expect_all();
                    if (is_done)
                      expect_only_key(second_key);
                    EXPECT_EQ(change_key(second_key), RSEC_SSFS_RC_OK);
                    expect_only_key(second_key);
                    expect_all();
                    EXPECT_EQ(files().count("replacement"), 0U);
                  }),
              60U);
}

TEST_F(VelssfsCrash, EveryCallOfAWriteFails) {
  const size_t calls = fail_each_call(
      ENOSPC, [&] { begin(); }, [] { return put("text", "another secret"); },
      [&](bool is_done) {
        StoredValue value;
        EXPECT_EQ(get("text", value), RSEC_SSFS_RC_OK);
        if (is_done)
          EXPECT_EQ(value.bytes, "another secret");
        else
          EXPECT_TRUE(value.bytes == "secret" || value.bytes == "another secret");
        EXPECT_EQ(files().count("replacement"), 0U);
        EXPECT_EQ(put("text", "secret"), RSEC_SSFS_RC_OK);
        expect_all();
      });
  EXPECT_GT(calls, 10U);
}

TEST_F(VelssfsCrash, EveryCallOfTheFirstWriteFails) {
  const size_t calls = fail_each_call(
      EIO, [&] { std::filesystem::remove_all(path.parent_path()); },
      [] { return put("text", "secret"); },
      [&](bool is_done) {
        StoredValue value;
        const RSEC_SSFS_RC code = get("text", value);
        if (is_done || code != RSEC_SSFS_RC_RECORD_NOT_FOUND) {
          EXPECT_EQ(code, RSEC_SSFS_RC_OK);
          EXPECT_EQ(value.bytes, "secret");
        }
        EXPECT_EQ(put("text", "secret"), RSEC_SSFS_RC_OK);
      });
  EXPECT_GT(calls, 10U);
}

TEST_F(VelssfsCrash, EveryCallOfAReadFails) {
  begin();
  StoredValue value;
  EXPECT_GT(fail_each_call(
                EIO, [] {}, [&] { return get("text", value); },
                [&](bool is_done) {
                  if (is_done) {
                    EXPECT_EQ(value.bytes, "secret");
                  }
                }),
            5U);
  std::vector<string> keys;
  EXPECT_GT(fail_each_call(
                EIO, [] {}, [&] { return list("", keys); },
                [&](bool is_done) { EXPECT_EQ(keys.size(), is_done ? 3U : 0U); }),
            5U);
  EXPECT_GT(fail_each_call(
                EIO, [&] { begin(); }, [] { return zrvtest::remove("text"); },
                [](bool is_done) {
                  if (is_done) {
                    EXPECT_EQ(get("text"), RSEC_SSFS_RC_RECORD_NOT_FOUND);
                  }
                }),
            5U);
}

TEST_F(VelssfsCrash, AFullDiskSaysSo) {
  begin();
  string text;
  {
    SystemCalls calls;
    calls.fail_all("write", ENOSPC);
    EXPECT_EQ(put("text", "another secret", &text), RSEC_SSFS_RC_ENVIRONMENT);
    EXPECT_EQ(text, file_of("text").string() + ": No space left on device");
    EXPECT_EQ(change_key(second_key, &text), RSEC_SSFS_RC_ENVIRONMENT);
    EXPECT_EQ(text, (path / "key").string() + ": No space left on device");
  }
  expect_all();
  expect_only_key(first_key);
}

TEST_F(VelssfsCrash, CodesOfFailedCalls) {
  begin();
  string text;
  for (const int error : {EACCES, EPERM, EROFS}) {
    SystemCalls calls;
    calls.fail_all("write", error);
    EXPECT_EQ(put("text", "x", &text), RSEC_SSFS_RC_NO_WRITE_PERMISSION);
  }
  EXPECT_EQ(text, file_of("text").string() + ": Read-only file system");
  StoredValue value;
  SystemCalls calls;
  calls.fail_all("read", ENOMEM);
  EXPECT_EQ(get("text", value, &text), RSEC_SSFS_RC_LOW_MEMORY);
  EXPECT_EQ(text, "there is no memory");
  calls.fail_all("read", EACCES);
  EXPECT_EQ(get("text", value, &text), RSEC_SSFS_RC_ENVIRONMENT);
  EXPECT_EQ(text, file_of("text").string() + ": Permission denied");
}

// Signals and short counts are no failures.
TEST_F(VelssfsCrash, InterruptedAndShortCalls) {
  begin();
  for (size_t nth = 1;; ++nth) {
    SystemCalls calls;
    calls.limit(7);
    calls.fail(nth, EINTR);
    StoredValue value;
    const RSEC_SSFS_RC code = put("text", "secret");
    const string name = calls.last_failed();
    const bool has_failed = calls.failures() > 0;
    calls.fail(0, 0);
    if (name == "openat" || name == "read" || name == "write" || name == "flock" || name.empty() ||
        name == "close" || name == "close of what was written") {
      EXPECT_EQ(code, RSEC_SSFS_RC_OK) << name;
    }
    EXPECT_EQ(get("text", value), RSEC_SSFS_RC_OK);
    EXPECT_EQ(value.bytes, "secret");
    if (!has_failed)
      break;
  }
}

// What must have reached the disk before what: the directory after each change of the key file, each
// file before it is renamed.
TEST_F(VelssfsCrash, FilesAreSynchronised) {
  begin();
  SystemCalls calls;
  EXPECT_EQ(put("text", "another secret"), RSEC_SSFS_RC_OK);
  EXPECT_EQ(calls.calls("fsync"), 2U); // the record, the directory
  EXPECT_EQ(calls.calls("renameat"), 1U);
  EXPECT_EQ(zrvtest::remove("text"), RSEC_SSFS_RC_OK);
  EXPECT_EQ(calls.calls("fsync"), 3U);
  EXPECT_EQ(put("text", "secret"), RSEC_SSFS_RC_OK);
  EXPECT_EQ(calls.calls("fsync"), 5U);
  EXPECT_EQ(change_key(second_key), RSEC_SSFS_RC_OK);
  // Twice the key file and the directory, three records and the directory.
  EXPECT_EQ(calls.calls("fsync"), 5U + 4 + 3 + 1);
  EXPECT_EQ(calls.calls("renameat"), 2U + 2 + 3);
}

// So does the directory of a new store, and each one above it that is made.
TEST_F(VelssfsCrash, ANewStoreIsSynchronisedInTheDirectoryAbove) {
  constexpr size_t first_write = 4; // the key, the directory, the record, the directory
  {
    SystemCalls calls;
    EXPECT_EQ(put("text", "secret"), RSEC_SSFS_RC_OK);
    EXPECT_EQ(calls.calls("fsync"), 2 + first_write);
  }
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(above.path);
  for (const char *relative : {"store", "other/store"}) {
    ASSERT_EQ(RSecSSFsSetConfiguration(relative), RSEC_SSFS_RC_OK);
    SystemCalls calls;
    EXPECT_EQ(put("text", "secret"), RSEC_SSFS_RC_OK);
    EXPECT_EQ(calls.calls("fsync"), (relative[0] == 's' ? 1 : 2) + first_write);
  }
  std::filesystem::current_path(before);
  // Directly below the root of the file system.
  if (geteuid() != 0)
    return;
  std::filesystem::remove_all(above.path / "other" / "store");
  const pid_t child = fork();
  if (child == 0) {
    bool is_done = chroot((above.path / "other").c_str()) == 0 && chdir("/") == 0 &&
                   RSecSSFsSetConfiguration("/store") == RSEC_SSFS_RC_OK;
    SystemCalls calls;
    is_done = is_done && put("text", "secret") == RSEC_SSFS_RC_OK;
    _exit(is_done && calls.calls("fsync") == 1 + first_write ? 0 : 1);
  }
  int status = -1;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
}

// What may not last is not left for the next write to take for granted.
TEST_F(VelssfsCrash, ADirectoryThatIsNotSynchronisedIsNotMade) {
  {
    SystemCalls calls;
    calls.fail_all("fsync", EIO);
    string text;
    EXPECT_EQ(put("text", "secret", &text), RSEC_SSFS_RC_ENVIRONMENT);
    EXPECT_EQ(text, path.string() + ": Input/output error");
  }
  EXPECT_FALSE(std::filesystem::exists(path.parent_path()));
  EXPECT_EQ(put("text", "secret"), RSEC_SSFS_RC_OK);
}

// ---- the cipher ----

// A block whose cipher could not be had is as good as new when there is one again.
TEST_F(VelssfsCrash, ACipherThatComesBack) {
  begin();
  string foreign = read_file(file_of("plain"));
  foreign[16] = static_cast<char>(foreign[16] ^ 1); // where the master key is named
  write_file(file_of("plain"), foreign);
  GetBlock block;
  StoredValue value;
  // It reads the master key, and has no use for the cipher.
  EXPECT_EQ(get(block, "plain", value), RSEC_SSFS_RC_FILE_CORRUPTION);
  ASSERT_EQ(EVP_set_default_properties(nullptr, "provider=none"), 1);
  EXPECT_EQ(get(block, "text", value), RSEC_SSFS_RC_LOW_MEMORY);
  ASSERT_EQ(EVP_set_default_properties(nullptr, ""), 1);
  EXPECT_EQ(get(block, "text", value), RSEC_SSFS_RC_OK);
  EXPECT_EQ(value.bytes, "secret");
}

TEST_F(VelssfsCrash, WithoutRandomBytesNothingIsWritten) {
  begin();
  RAND_METHOD none{};
  none.bytes = [](unsigned char *, int) { return 0; };
  ASSERT_EQ(RAND_set_rand_method(&none), 1);
  string text;
  EXPECT_EQ(put("text", "another secret", &text), RSEC_SSFS_RC_ENVIRONMENT);
  EXPECT_EQ(text, "there are no random bytes");
  ASSERT_EQ(RAND_set_rand_method(nullptr), 1);
  expect_all();
}

// ---- memory ----

TEST_F(VelssfsCrash, EveryAllocationFails) {
  begin();
  StoredValue value;
  const auto nothing = [] {};
  // A block that cannot be had is told by the call that makes it, so the blocks stand before.
  GetBlock getter;
  EXPECT_GT(fail_each_allocation(
                nothing, [&] { return get(getter, "text", value) == RSEC_SSFS_RC_LOW_MEMORY; },
                [&] { get(getter, "missing", value); }),
            0U);
  PutBlock putter;
  putter->in_pKey = "text";
  putter->in_pValue = "secret";
  EXPECT_GT(fail_each_allocation(
                nothing, [&] { return RSecSSFsPutRecord(putter.get()) == RSEC_SSFS_RC_LOW_MEMORY; },
                nothing),
            0U);
  ListBlock lister;
  EXPECT_GT(fail_each_allocation(
                nothing,
                [&] { return RSecSSFsListRecordKeys(lister.get()) == RSEC_SSFS_RC_LOW_MEMORY; },
                [&] {
                  lister->in_pKeyPrefix = "nothing";
                  RSecSSFsListRecordKeys(lister.get());
                  lister->in_pKeyPrefix = nullptr;
                }),
            0U);
  ChangeBlock changer;
  bool is_second = false;
  EXPECT_GT(fail_each_allocation([&] { is_second = !is_second; },
                                 [&] {
                                   changer->in_pCharKey =
                                       is_second ? second_key.c_str() : first_key.c_str();
                                   return RSecSSFsChangeKey(changer.get()) ==
                                          RSEC_SSFS_RC_LOW_MEMORY;
                                 },
                                 nothing),
            5U);
  expect_all();
}

// What is released held values and keys, and is wiped.
TEST_F(VelssfsCrash, ValuesAreWiped) {
  begin();
  AllocationProbe probe;
  GetBlock block;
  StoredValue value;
  EXPECT_EQ(get(block, "text", value), RSEC_SSFS_RC_OK);
  EXPECT_EQ(get(block, "missing", value), RSEC_SSFS_RC_RECORD_NOT_FOUND);
  EXPECT_FALSE(probe.last_released().empty());
  EXPECT_EQ(probe.last_released().find_first_not_of('\0'), string::npos);
}

} // namespace
