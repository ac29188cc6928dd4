// The loading of the secure store's library, against libraries that are whole, lack entry points or
// are not there.
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "allocation_probe.h"
#include "check_trap.h"
#include "temporary_directory.h"
#include "zrvcomn/comerr.h"
#include "zrvcomn/securestore.h"

namespace {

using zrvtest::AllocationProbe;

// What the library asks of the loader, and what it gets instead.
struct Loader {
  struct Opening {
    std::string name;
    int mode;
  };
  std::vector<Opening> openings;
  std::vector<void *> closed;
  const char *replacement = nullptr;
  bool refuses_to_close = false;
};
Loader loader;

constexpr char library_name[] = "libvelssfs.so";

template <class Function>
Function *real(const char *name) {
  // The loader's functions moved into the C library with 2.34.
  for (const char *version : {"GLIBC_2.34", "GLIBC_2.2.5", "GLIBC_2.1", "GLIBC_2.0"})
    if (void *found = dlvsym(RTLD_NEXT, name, version))
      return reinterpret_cast<Function *>(found);
  std::abort();
}

} // namespace

// Stand before those of the C library for everything in this program.
extern "C" void *dlopen(const char *name, int mode) noexcept {
  static auto *const next = real<void *(const char *, int)>("dlopen");
  if (name == nullptr || std::strcmp(name, library_name) != 0)
    return next(name, mode);
  loader.openings.push_back({name, mode});
  return next(loader.replacement != nullptr ? loader.replacement : name, mode);
}

extern "C" int dlclose(void *handle) noexcept {
  static auto *const next = real<int(void *)>("dlclose");
  loader.closed.push_back(handle);
  return loader.refuses_to_close ? -1 : next(handle);
}

namespace {

std::string contents(const std::string &path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

// A working directory for the log, and a context that keeps its messages.
class SecureStore : public testing::Test {
protected:
  SecureStore() : before(std::filesystem::current_path()) {
    std::filesystem::current_path(directory.path);
    loader = Loader{};
    messages.clear();
    context.ctxerrfunc = [](CS_CONTEXT *, CS_CLIENTMSG *message) -> CS_RETCODE {
      messages.push_back(*message);
      return CS_SUCCEED;
    };
  }
  ~SecureStore() override {
    loader.refuses_to_close = false;
    EXPECT_EQ(com_ssfscontext_drop(&context), CS_SUCCEED);
    close_log();
    std::filesystem::current_path(before);
  }

  static void close_log() {
    if (ssfsfile != nullptr && ssfsfile != stdout)
      std::fclose(ssfsfile);
    ssfsfile = nullptr;
  }
  static std::string log() { return contents("secstore.log"); }

  SSFS_CONTEXT *record() { return static_cast<SSFS_CONTEXT *>(context.ctxssfsctx); }
  SSFSAPI_PROVIDER *table() { return record()->ssfsp; }

  // The function pointers of the table, in their order; true where there is one.
  std::vector<bool> filled() {
    std::vector<bool> result;
    void *entries[17];
    std::memcpy(entries, &table()->SharedLibInit, sizeof entries);
    for (void *entry : entries)
      result.push_back(entry != nullptr);
    return result;
  }
  static std::vector<bool> first(size_t count) {
    std::vector<bool> result(17, false);
    std::fill_n(result.begin(), count, true);
    return result;
  }

  void expect_load_message() {
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0].msgnumber, 17040906);
    EXPECT_EQ(std::string(messages[0].msgstring).rfind("comn_ssfslib_load(): ", 0), 0U)
        << messages[0].msgstring;
  }

  zrvtest::TemporaryDirectory directory;
  std::filesystem::path before;
  CS_CONTEXT context{};
  static inline std::vector<CS_CLIENTMSG> messages;
};

TEST_F(SecureStore, LoadsTheFirstFiveEntryPoints) {
  EXPECT_EQ(com_ssfscontext_alloc(&context), CS_SUCCEED);
  ASSERT_NE(table(), nullptr);
  EXPECT_NE(table()->handle, nullptr);
  EXPECT_EQ(filled(), first(5));
  EXPECT_EQ(table()->SharedLibInit, &RSecSSFsSharedLibInit);
  EXPECT_EQ(table()->SetConfiguration, &RSecSSFsSetConfiguration);
  EXPECT_EQ(table()->GetRecordAPIGet, &RSecSSFsGetRecordAPIGet);
  EXPECT_EQ(table()->GetRecord, &RSecSSFsGetRecord);
  EXPECT_EQ(table()->GetRecordAPIRelease, &RSecSSFsGetRecordAPIRelease);
  ASSERT_EQ(loader.openings.size(), 1U);
  EXPECT_EQ(loader.openings[0].mode, 2);
  EXPECT_TRUE(messages.empty());
  EXPECT_FALSE(std::filesystem::exists("secstore.log"));
}

TEST_F(SecureStore, ASecondCallDoesNotReopen) {
  EXPECT_EQ(com_ssfscontext_alloc(&context), CS_SUCCEED);
  SSFS_CONTEXT *const first_record = record();
  SSFSAPI_PROVIDER *const first_table = table();
  EXPECT_EQ(com_ssfscontext_alloc(&context), CS_SUCCEED);
  EXPECT_EQ(comn_ssfslib_load(&context), CS_SUCCEED);
  EXPECT_EQ(record(), first_record);
  EXPECT_EQ(table(), first_table);
  EXPECT_EQ(loader.openings.size(), 1U);
}

TEST_F(SecureStore, EachContextHasATableOfItsOwn) {
  CS_CONTEXT other{};
  EXPECT_EQ(com_ssfscontext_alloc(&context), CS_SUCCEED);
  EXPECT_EQ(com_ssfscontext_alloc(&other), CS_SUCCEED);
  EXPECT_EQ(loader.openings.size(), 2U);
  EXPECT_NE(static_cast<SSFS_CONTEXT *>(other.ctxssfsctx)->ssfsp, table());
  EXPECT_EQ(com_ssfscontext_drop(&other), CS_SUCCEED);
  EXPECT_EQ(other.ctxssfsctx, nullptr);
  RSecSSFsGetRecordAPI *block = nullptr;
  EXPECT_EQ(table()->GetRecordAPIGet(&block), RSEC_SSFS_RC_OK);
  EXPECT_EQ(table()->GetRecordAPIRelease(&block), RSEC_SSFS_RC_OK);
}

// Deliberate: the record is in its place before the library is loaded, so the second call succeeds.
TEST_F(SecureStore, WithoutTheLibraryTheSecondCallSucceeds) {
  loader.replacement = "./no-such-library.so";
  EXPECT_EQ(com_ssfscontext_alloc(&context), CS_FAIL);
  expect_load_message();
  const std::string first_log = log();
  std::string line(1, '\0');
  int number = 0, end = 0;
  ASSERT_EQ(std::sscanf(first_log.c_str(), "(comn_ssfslib_load line %d): %n", &number, &end), 1);
  EXPECT_GE(number, 100);
  EXPECT_EQ(first_log.substr(static_cast<size_t>(end)), "DLOPEN of libvelssfs.so library failed\n");
  struct stat status;
  ASSERT_EQ(stat("secstore.log", &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0600U);

  ASSERT_NE(record(), nullptr);
  ASSERT_NE(table(), nullptr);
  EXPECT_EQ(table()->handle, nullptr);
  EXPECT_EQ(filled(), first(0));
  EXPECT_EQ(com_ssfscontext_alloc(&context), CS_SUCCEED);
  EXPECT_EQ(comn_ssfslib_load(&context), CS_SUCCEED);
  EXPECT_EQ(loader.openings.size(), 1U);
  EXPECT_EQ(messages.size(), 1U);
  EXPECT_EQ(log(), first_log);
  // Nothing was opened, so nothing is closed.
  EXPECT_EQ(com_ssfscontext_drop(&context), CS_SUCCEED);
  EXPECT_EQ(context.ctxssfsctx, nullptr);
  EXPECT_TRUE(loader.closed.empty());
}

TEST_F(SecureStore, WithoutACallbackTheFailureStandsByItself) {
  loader.replacement = "./no-such-library.so";
  context.ctxerrfunc = nullptr;
  EXPECT_EQ(com_ssfscontext_alloc(&context), CS_FAIL);
  EXPECT_NE(record(), nullptr);
}

TEST_F(SecureStore, WhatWasFoundBeforeAMissingEntryPointStays) {
  const char *const partial[] = {PARTIAL_STORES};
  for (size_t count = 0; count < std::size(partial); ++count) {
    loader = Loader{};
    messages.clear();
    loader.replacement = partial[count];
    EXPECT_EQ(com_ssfscontext_alloc(&context), CS_FAIL) << count;
    expect_load_message();
    ASSERT_NE(table(), nullptr) << count;
    void *const handle = table()->handle;
    ASSERT_NE(handle, nullptr) << count;
    EXPECT_EQ(filled(), first(count));
    EXPECT_EQ(com_ssfscontext_alloc(&context), CS_SUCCEED) << count;
    EXPECT_EQ(filled(), first(count));
    EXPECT_TRUE(loader.closed.empty()) << count; // open until the drop
    EXPECT_EQ(com_ssfscontext_drop(&context), CS_SUCCEED) << count;
    EXPECT_EQ(loader.closed, std::vector<void *>{handle}) << count;
  }
  EXPECT_FALSE(std::filesystem::exists("secstore.log"));
}

TEST_F(SecureStore, WithoutMemoryForTheRecordNothingHappens) {
  AllocationProbe probe;
  probe.fail(1);
  EXPECT_EQ(com_ssfscontext_alloc(&context), CS_FAIL);
  EXPECT_EQ(context.ctxssfsctx, nullptr);
  EXPECT_TRUE(messages.empty());
  EXPECT_TRUE(loader.openings.empty());
  EXPECT_FALSE(std::filesystem::exists("secstore.log"));
  EXPECT_EQ(probe.live_blocks(), 0U);
}

TEST_F(SecureStore, WithoutMemoryForTheTableTheNextCallStillSucceeds) {
  AllocationProbe probe;
  probe.fail(2);
  EXPECT_EQ(com_ssfscontext_alloc(&context), CS_FAIL);
  expect_load_message();
  EXPECT_NE(log().find("): Allocation of SSFSAPI_PROVIDER failed\n"), std::string::npos) << log();
  ASSERT_NE(record(), nullptr);
  EXPECT_EQ(table(), nullptr);
  EXPECT_EQ(com_ssfscontext_alloc(&context), CS_SUCCEED);
  EXPECT_EQ(table(), nullptr);
  EXPECT_EQ(comn_ssfslib_unload(&context), CS_SUCCEED);
  // Loading by itself makes up for it.
  EXPECT_EQ(comn_ssfslib_load(&context), CS_SUCCEED);
  EXPECT_EQ(filled(), first(5));
  EXPECT_EQ(com_ssfscontext_drop(&context), CS_SUCCEED);
  EXPECT_EQ(probe.live_blocks(), 0U);
}

TEST_F(SecureStore, DropReleasesAll) {
  AllocationProbe probe;
  EXPECT_EQ(com_ssfscontext_drop(&context), CS_SUCCEED);
  EXPECT_EQ(com_ssfscontext_alloc(&context), CS_SUCCEED);
  void *const handle = table()->handle;
  EXPECT_EQ(com_ssfscontext_drop(&context), CS_SUCCEED);
  EXPECT_EQ(context.ctxssfsctx, nullptr);
  EXPECT_EQ(loader.closed, std::vector<void *>{handle});
  EXPECT_EQ(probe.live_blocks(), 0U);
  EXPECT_EQ(com_ssfscontext_drop(&context), CS_SUCCEED);
  EXPECT_EQ(loader.closed.size(), 1U);
}

// Deliberate: the record, which is to be released next, goes on pointing to the table.
TEST_F(SecureStore, UnloadDoesNotClearTheRecord) {
  EXPECT_EQ(com_ssfscontext_alloc(&context), CS_SUCCEED);
  const SSFSAPI_PROVIDER *const old_table = table();
  AllocationProbe probe;
  EXPECT_EQ(comn_ssfslib_unload(&context), CS_SUCCEED);
  EXPECT_EQ(table(), old_table);
  record()->ssfsp = nullptr;
  EXPECT_EQ(loader.closed.size(), 1U);
}

TEST_F(SecureStore, ALibraryThatCannotBeClosedKeepsTheRecord) {
  EXPECT_EQ(com_ssfscontext_alloc(&context), CS_SUCCEED);
  loader.refuses_to_close = true;
  EXPECT_EQ(comn_ssfslib_unload(&context), CS_FAIL);
  EXPECT_EQ(com_ssfscontext_drop(&context), CS_FAIL);
  ASSERT_NE(record(), nullptr);
  EXPECT_EQ(filled(), first(5));
  loader.refuses_to_close = false;
  EXPECT_EQ(com_ssfscontext_drop(&context), CS_SUCCEED);
}

TEST_F(SecureStore, WithoutARecord) {
  EXPECT_EQ(comn_ssfslib_load(&context), CS_FAIL);
  EXPECT_EQ(comn_ssfslib_unload(&context), CS_SUCCEED);
  EXPECT_TRUE(loader.openings.empty());
  EXPECT_TRUE(loader.closed.empty());
}

TEST_F(SecureStore, NullContexts) {
  const char file[] = "comsecurestore.cpp";
  EXPECT_NULL_POINTER_CHECK(file, CS_RETCODE{CS_FAIL}, com_ssfscontext_alloc(nullptr));
  EXPECT_NULL_POINTER_CHECK(file, CS_RETCODE{CS_FAIL}, com_ssfscontext_drop(nullptr));
  EXPECT_NULL_POINTER_CHECK(file, CS_RETCODE{CS_FAIL}, comn_ssfslib_load(nullptr));
  EXPECT_NULL_POINTER_CHECK(file, CS_RETCODE{CS_FAIL}, comn_ssfslib_unload(nullptr));
  EXPECT_NULL_POINTER_CHECK(file, 0, (com_ssfsdbg(nullptr), 0));
}

CS_CHAR *text(const char *constant) {
  return const_cast<CS_CHAR *>(constant);
}

TEST_F(SecureStore, TheLogStartsAnewAndIsWrittenAtOnce) {
  std::ofstream("secstore.log") << "what an older process wrote, which is long";
  com_ssfsdbg(text("%s %3i|"), "seven", 7);
  EXPECT_EQ(fcntl(fileno(ssfsfile), F_GETFD), FD_CLOEXEC); // no other program gets it
  EXPECT_EQ(log(), "seven   7|");
  com_ssfsdbg(text("%s"), "eight\n");
  EXPECT_EQ(log(), "seven   7|eight\n");
  // The file stays the one of the first line, wherever the process goes.
  std::filesystem::create_directory("elsewhere");
  std::filesystem::current_path("elsewhere");
  com_ssfsdbg(text("%%\n"));
  std::filesystem::current_path("..");
  EXPECT_EQ(log(), "seven   7|eight\n%\n");
  EXPECT_FALSE(std::filesystem::exists("elsewhere/secstore.log"));
}

TEST_F(SecureStore, ALogThatCannotBeOpenedGoesToStandardOutput) {
  std::filesystem::create_directory("secstore.log");
  const std::string printed = zrvtest::capture_stdout([] { com_ssfsdbg(text("line %d\n"), 1); });
  EXPECT_EQ(printed, "line 1\n");
  EXPECT_EQ(ssfsfile, stdout);
  // And stays there.
  std::filesystem::remove("secstore.log");
  EXPECT_EQ(zrvtest::capture_stdout([] { com_ssfsdbg(text("line %d\n"), 2); }), "line 2\n");
  EXPECT_FALSE(std::filesystem::exists("secstore.log"));
}

TEST(SecureStoreRecords, Layout) {
  constexpr size_t word = sizeof(void *);
  EXPECT_EQ(sizeof(SSFSAPI_PROVIDER), 18 * word);
  EXPECT_EQ(offsetof(SSFSAPI_PROVIDER, handle), 0U);
  EXPECT_EQ(offsetof(SSFSAPI_PROVIDER, SharedLibInit), word);
  EXPECT_EQ(offsetof(SSFSAPI_PROVIDER, SetConfiguration), 2 * word);
  EXPECT_EQ(offsetof(SSFSAPI_PROVIDER, GetRecordAPIGet), 3 * word);
  EXPECT_EQ(offsetof(SSFSAPI_PROVIDER, GetRecord), 4 * word);
  EXPECT_EQ(offsetof(SSFSAPI_PROVIDER, GetRecordAPIRelease), 5 * word);
  EXPECT_EQ(offsetof(SSFSAPI_PROVIDER, PutRecordAPIGet), 6 * word);
  EXPECT_EQ(offsetof(SSFSAPI_PROVIDER, PutRecord), 7 * word);
  EXPECT_EQ(offsetof(SSFSAPI_PROVIDER, PutRecordAPIRelease), 8 * word);
  EXPECT_EQ(offsetof(SSFSAPI_PROVIDER, ListRecordKeysAPIGet), 9 * word);
  EXPECT_EQ(offsetof(SSFSAPI_PROVIDER, ListRecordKeys), 10 * word);
  EXPECT_EQ(offsetof(SSFSAPI_PROVIDER, ListRecordKeysAPIRelease), 11 * word);
  EXPECT_EQ(offsetof(SSFSAPI_PROVIDER, GenerateCharKeyAPIGet), 12 * word);
  EXPECT_EQ(offsetof(SSFSAPI_PROVIDER, GenerateCharKey), 13 * word);
  EXPECT_EQ(offsetof(SSFSAPI_PROVIDER, GenerateCharKeyAPIRelease), 14 * word);
  EXPECT_EQ(offsetof(SSFSAPI_PROVIDER, ChangeKeyAPIGet), 15 * word);
  EXPECT_EQ(offsetof(SSFSAPI_PROVIDER, ChangeKey), 16 * word);
  EXPECT_EQ(offsetof(SSFSAPI_PROVIDER, ChangeKeyAPIRelease), 17 * word);
  EXPECT_EQ(sizeof(SSFS_CONTEXT), word);
}

TEST(SecureStoreRecords, Codes) {
  EXPECT_EQ(RSEC_SSFS_RC_OK, 0);
  EXPECT_EQ(RSEC_SSFS_RC_RECORD_NOT_FOUND, 1);
  EXPECT_EQ(RSEC_SSFS_RC_VALUE_TOO_LONG, 2);
  EXPECT_EQ(RSEC_SSFS_RC_CONCURRENT_UPDATE, 3);
  EXPECT_EQ(RSEC_SSFS_RC_RECORD_KEY_FORMAT, -1);
  EXPECT_EQ(RSEC_SSFS_RC_ENVIRONMENT, -2);
  EXPECT_EQ(RSEC_SSFS_RC_NO_WRITE_PERMISSION, -3);
  EXPECT_EQ(RSEC_SSFS_RC_UTF8_CONVERSION, -4);
  EXPECT_EQ(RSEC_SSFS_RC_INCORRECT_KEY, -5);
  EXPECT_EQ(RSEC_SSFS_RC_FILE_CORRUPTION, -6);
  EXPECT_EQ(RSEC_SSFS_RC_RSECSSFX_USAGE, -7);
  EXPECT_EQ(RSEC_SSFS_RC_SEE_TRACE_FILE, -8);
  EXPECT_EQ(RSEC_SSFS_RC_LOW_MEMORY, -9);
}

} // namespace
