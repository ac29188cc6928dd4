// Loading and unloading the crypto provider.
#include <cstdlib>
#include <dlfcn.h>
#include <fstream>
#include <iterator>

#include "allocation_probe.h"
#include "check_trap.h"
#include "provider_probe.h"
#include "text_file.h"
#include "zrvcomn/comncrypto.h"

namespace {

using namespace zrvtest;
using Log = std::vector<std::string>;

constexpr const char *unit = "com_glbl.cpp";

using ComGlblTest = CountingProviderTest;

CCLAPI_PROVIDER *load(CS_RETCODE expected = CS_SUCCEED) {
  CS_VOID *table = nullptr;
  EXPECT_EQ(comn_cryptolib_load(&table), expected);
  return static_cast<CCLAPI_PROVIDER *>(table);
}

// The names in their order, as the loader has to ask for them.
#define NAME_TEXT(type, name) #name,
const char *const names[] = {VELCRYPTO_NAMES(NAME_TEXT) "cryptolib_get_f_list"};

// The addresses in the table, in the order of its fields.
std::vector<void *> fields(const CCLAPI_PROVIDER *table) {
  std::vector<void *> all(sizeof *table / sizeof(void *));
  std::memcpy(all.data(), table, sizeof *table);
  return all;
}

TEST_F(ComGlblTest, LoadsInOrder) {
  CCLAPI_PROVIDER *const table = load();
  EXPECT_EQ(probe.name(), "libvelcrypto.so");
  EXPECT_EQ(probe.mode(), 2);
  EXPECT_EQ(take_log(),
            (Log{"set FIPS_140_2_CRYPTO_KERNEL_ACTIVE 0", "list 2 en_US, NCL application, 0",
                 "get_API 0 SEC_KEYCONVERT_1", "get_API 0 VELCCL_1"}));
  EXPECT_EQ(table, cclp);
  EXPECT_STREQ(table->sec_velccl_functions->common.name, "VELCCL_1");
  EXPECT_STREQ(table->sec_keyconvert_functions->common.name, "SEC_KEYCONVERT_1");
  const std::vector<void *> found = fields(table);
  ASSERT_EQ(std::size(names) - 1, 51U);
  ASSERT_EQ(found.size(), 51U + 5);
  for (size_t i = 0; i < 51; ++i)
    EXPECT_EQ(found[i], dlsym(ccl_handle, names[i])) << names[i];
  EXPECT_EQ(table->SSL_set_cipher_suites, nullptr);
  EXPECT_EQ(table->SSL_set_fd, nullptr);
}

TEST_F(ComGlblTest, FieldsStandInTheOrderOfTheNames) {
  EXPECT_EQ(offsetof(CCLAPI_PROVIDER, aux_get_Certificate_n_from_Certificates), 0U);
  EXPECT_EQ(offsetof(CCLAPI_PROVIDER, BIO_free), 2 * sizeof(void *));
  EXPECT_EQ(offsetof(CCLAPI_PROVIDER, velcr_set_property_int), 15 * sizeof(void *));
  EXPECT_EQ(offsetof(CCLAPI_PROVIDER, SSL_write), 50 * sizeof(void *));
  EXPECT_EQ(offsetof(CCLAPI_PROVIDER, cryptolib_f_list), 51 * sizeof(void *));
}

TEST_F(ComGlblTest, ASecondLoadDeliversTheTable) {
  CCLAPI_PROVIDER *const table = load();
  take_log();
  EXPECT_EQ(load(), table);
  EXPECT_EQ(take_log(), Log{});
  EXPECT_EQ(probe.opened(), 1);
}

TEST_F(ComGlblTest, UnloadsInOrder) {
  load();
  take_log();
  void *const library = dlopen(COUNTING_PROVIDER, RTLD_NOW | RTLD_NOLOAD);
  ProviderControl &kept = control();
  EXPECT_EQ(comn_cryptolib_unload(), CS_SUCCEED);
  EXPECT_EQ(kept.log,
            (Log{"release_API VELCCL_1", "release_API SEC_KEYCONVERT_1", "release list"}));
  EXPECT_EQ(kept.live_apis, 0);
  dlclose(library);
  EXPECT_EQ(probe.closed(), 1);
  EXPECT_EQ(cclp, nullptr);
  EXPECT_EQ(comn_cryptolib_unload(), CS_SUCCEED);
  EXPECT_EQ(probe.closed(), 1);
}

TEST_F(ComGlblTest, LoadsAgainBehindAnUnload) {
  load();
  EXPECT_EQ(comn_cryptolib_unload(), CS_SUCCEED);
  load();
  EXPECT_EQ(probe.opened(), 2);
}

TEST_F(ComGlblTest, UnloadChecksTheReleaseOfEachApi) {
  load();
  take_log();
  control().released = 1;
  EXPECT_ASSERTION(unit, CS_FAIL, comn_cryptolib_unload());
  EXPECT_EQ(take_log(), Log{"release_API VELCCL_1"});
  EXPECT_ASSERTION(unit, CS_FAIL, comn_cryptolib_unload());
  EXPECT_EQ(take_log(), Log{"release_API SEC_KEYCONVERT_1"});
  control().released = 0;
}

TEST(ComGlblAloneTest, UnloadOfNothing) {
  EXPECT_EQ(comn_cryptolib_unload(), CS_SUCCEED);
}

TEST(ComGlblAloneTest, ALibraryThatCannotBeOpened) {
  const ProviderProbe probe("");
  const AllocationProbe memory;
  CS_VOID *table = &table;
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(comn_cryptolib_load(&table), CS_FAIL);
    EXPECT_EQ(table, &table);
    EXPECT_EQ(cclp, nullptr);
    EXPECT_EQ(ccl_handle, nullptr);
  }
  EXPECT_EQ(memory.allocations(), 0U);
  EXPECT_EQ(comn_cryptolib_unload(), CS_SUCCEED);
  EXPECT_EQ(probe.closed(), 0);
}

TEST_F(ComGlblTest, WithoutMemoryTheLibraryIsClosed) {
  AllocationProbe memory;
  memory.fail(1);
  CS_VOID *table = &table;
  EXPECT_EQ(comn_cryptolib_load(&table), CS_FAIL);
  EXPECT_EQ(table, &table);
  EXPECT_EQ(memory.last_size(), sizeof(CCLAPI_PROVIDER));
  EXPECT_EQ(probe.closed(), 1);
  EXPECT_EQ(cclp, nullptr);
  EXPECT_EQ(ccl_handle, nullptr);
  EXPECT_EQ(comn_cryptolib_load(&table), CS_SUCCEED);
  EXPECT_EQ(comn_cryptolib_unload(), CS_SUCCEED);
  EXPECT_EQ(memory.live_blocks(), 0U);
}

TEST_F(ComGlblTest, NullIsFatal) {
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn_cryptolib_load(nullptr));
}

// ---- libraries that lack something ----

std::string read_file(const std::string &path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// The provider with one of its names spelled otherwise, which nobody finds then.
std::string without(std::string library, const std::string &name) {
  const std::string entry = '\0' + name + '\0';
  const size_t at = library.find(entry);
  EXPECT_NE(at, std::string::npos) << name;
  library[at + 1] = '_';
  return library;
}

// The asymmetry is deliberate: the load fails, and every later one succeeds with what there is.
TEST(ComGlblAloneTest, EachNameMissing) {
  const std::string library = read_file(COUNTING_PROVIDER);
  for (size_t missing = 0; missing < std::size(names); ++missing) {
    SCOPED_TRACE(names[missing]);
    const TextFile file(without(library, names[missing]));
    const ProviderProbe probe(file.path());
    const AllocationProbe memory;
    CS_VOID *table = &table;
    EXPECT_EQ(comn_cryptolib_load(&table), CS_FAIL);
    EXPECT_EQ(table, &table);
    ASSERT_NE(cclp, nullptr);
    const std::vector<void *> found = fields(cclp);
    for (size_t i = 0; i < found.size(); ++i)
      EXPECT_EQ(found[i] != nullptr, i < missing && i < 51) << i;

    EXPECT_EQ(load(), cclp);
    CS_CONTEXT context{};
    EXPECT_EQ(com_cclcontext_alloc(&context), CS_FAIL);
    EXPECT_EQ(context.ctxcclctx, nullptr);
    EXPECT_EQ(comn_create_symkey(&context), nullptr);
    EXPECT_EQ(probe.closed(), 0);

    EXPECT_EQ(comn_cryptolib_unload(), CS_SUCCEED);
    EXPECT_EQ(probe.opened(), 1);
    EXPECT_EQ(probe.closed(), 1);
    EXPECT_EQ(memory.live_blocks(), 0U);
  }
}

TEST_F(ComGlblTest, EachCallRefused) {
  void *const library = dlopen(COUNTING_PROVIDER, RTLD_NOW);
  auto &kept =
      *reinterpret_cast<decltype(&counting_provider)>(dlsym(library, "counting_provider"))();
  for (int nth = 1; nth <= 4; ++nth) {
    SCOPED_TRACE(nth);
    kept.calls = 0;
    kept.fail_at = nth;
    CS_VOID *table = &table;
    EXPECT_EQ(comn_cryptolib_load(&table), CS_FAIL);
    EXPECT_EQ(table, &table);
    EXPECT_EQ(kept.calls, nth);
    ASSERT_NE(cclp, nullptr);
    EXPECT_EQ(cclp->cryptolib_f_list != nullptr, nth > 2);
    EXPECT_EQ(cclp->sec_keyconvert_functions != nullptr, nth > 3);
    EXPECT_EQ(cclp->sec_velccl_functions, nullptr);

    EXPECT_EQ(load(), cclp);
    CS_CONTEXT context{};
    EXPECT_EQ(com_cclcontext_alloc(&context), CS_FAIL);
    EXPECT_EQ(kept.calls, nth);
    EXPECT_EQ(comn_cryptolib_unload(), CS_SUCCEED);
    EXPECT_EQ(kept.live_apis, 0);
    EXPECT_EQ(kept.live_lists, 0);
  }
  kept.fail_at = 5;
  kept.calls = 0;
  load();
  dlclose(library);
}

// ---- FIPS ----

struct FipsCase {
  const char *variable; // null: not set
  CS_BOOL flag;
  int property;
};

class FipsTest : public CountingProviderTest, public testing::WithParamInterface<FipsCase> {};

TEST_P(FipsTest, Property) {
  if (GetParam().variable != nullptr)
    setenv("ZRVNCL_FIPS_MODE", GetParam().variable, 1);
  comn_set_fipsmode(GetParam().flag);
  load();
  EXPECT_EQ(control().property, GetParam().property);
  comn_set_fipsmode(0);
  unsetenv("ZRVNCL_FIPS_MODE");
}

INSTANTIATE_TEST_SUITE_P(All, FipsTest,
                         testing::Values(FipsCase{nullptr, 0, 0}, FipsCase{nullptr, 1, 1},
                                         FipsCase{"", 0, 0}, FipsCase{"", 1, 1},
                                         FipsCase{"1", 0, 1}, FipsCase{"0", 0, 1},
                                         FipsCase{"0", 1, 1}, FipsCase{"no", 0, 1},
                                         FipsCase{"a longer value", 0, 1}));

TEST(ComGlblAloneTest, TheFlagIsKept) {
  EXPECT_EQ(comn_get_fipsmode(), 0);
  for (const CS_BOOL flag : {1, 0}) {
    comn_set_fipsmode(flag);
    EXPECT_EQ(comn_get_fipsmode(), flag);
    EXPECT_EQ(Com_fipsmode, flag);
  }
}

} // namespace
