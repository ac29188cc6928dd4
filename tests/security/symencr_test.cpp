// Symmetric keys over the counting provider.
#include <numeric>

#include "allocation_probe.h"
#include "check_trap.h"
#include "guarded_buffer.h"
#include "provider_probe.h"
#include "zrvcomn/zrvintl.h"

extern "C" {
[[gnu::weak]] void __lsan_disable();
[[gnu::weak]] void __lsan_enable();
}

namespace {

using namespace zrvtest;
using Log = std::vector<std::string>;

constexpr const char *unit = "symencr.cpp";

// What is allocated while one of these lives may be left behind.
class DeliberateLeaks {
public:
  DeliberateLeaks() {
    if (__lsan_disable != nullptr)
      __lsan_disable();
  }
  ~DeliberateLeaks() {
    if (__lsan_enable != nullptr)
      __lsan_enable();
  }
  DeliberateLeaks(const DeliberateLeaks &) = delete;
  DeliberateLeaks &operator=(const DeliberateLeaks &) = delete;
};

// What the counting provider draws for 32 and for 16 bytes.
const std::string drawn_key = "202122232425262728292a2b2c2d2e2f303132333435363738393a3b3c3d3e3f";
const std::string drawn_iv = "101112131415161718191a1b1c1d1e1f";

const Log creation = {"createEncryptionCtx",
                      "createDecryptionCtx",
                      "createCipherCtxEncryption",
                      "rndGet 32",
                      "createSecretKeyByBlob " + drawn_key,
                      "setKey secret key",
                      "rndGet 16",
                      "setIV " + drawn_iv};

class SymencrTest : public CountingProviderTest {
protected:
  SymencrTest() {
    EXPECT_EQ(com_cclcontext_alloc(&context), CS_SUCCEED);
    take_log();
    std::iota(key_bytes, key_bytes + sizeof key_bytes, static_cast<CS_BYTE>(32));
  }
  ~SymencrTest() override { EXPECT_EQ(com_cclcontext_drop(&context), CS_SUCCEED); }

  // Gives back what a creation that failed deliberately leaves to the provider: to keep the books of
  // the tests.
  void forget(int objects) { control().live_objects -= objects; }

  static constexpr int of_context = 3; // objects
  CS_CONTEXT context{};
  CS_BYTE key_bytes[33];
};

TEST_F(SymencrTest, Creates) {
  const AllocationProbe memory;
  COMN_SYMKEY *const key = comn_create_symkey(&context);
  ASSERT_NE(key, nullptr);
  EXPECT_EQ(take_log(), creation);
  EXPECT_EQ(key->context, context.ctxcclctx);
  EXPECT_EQ(key->encoded_symkey_buflen, 32U);
  EXPECT_EQ(key->ivlen, 16U);
  EXPECT_EQ(std::memcmp(key->encoded_symkey_buf, key_bytes, 32), 0);
  EXPECT_EQ(key->iv[0], 0x10);
  EXPECT_EQ(key->iv[15], 0x1F);
  EXPECT_EQ(control().live_objects, of_context + 4);

  EXPECT_EQ(comn_drop_symkey(key), CS_SUCCEED);
  EXPECT_EQ(take_log(), (Log{"release secret key", "release cipher", "release decryption",
                             "release encryption"}));
  EXPECT_EQ(control().live_objects, of_context);
  EXPECT_EQ(memory.live_blocks(), 0U);
  // Deliberate: the bytes of the key are not wiped.
  EXPECT_EQ(memory.last_released().size(), sizeof(COMN_SYMKEY));
  EXPECT_NE(memory.last_released().find(std::string(reinterpret_cast<char *>(key_bytes), 32)),
            std::string::npos);
}

TEST_F(SymencrTest, Loads) {
  COMN_SYMKEY *const key = comn_load_symkey(&context, key_bytes, 32);
  ASSERT_NE(key, nullptr);
  EXPECT_EQ(take_log(),
            (Log{"createEncryptionCtx", "createDecryptionCtx", "createCipherCtxDecryption",
                 "createSecretKeyByBlob " + drawn_key, "setKey secret key"}));
  EXPECT_EQ(key->encoded_symkey_buflen, 32U);
  EXPECT_EQ(key->ivlen, 0U);
  GuardedBuffer iv(16);
  EXPECT_ASSERTION(unit, CS_FAIL, comn_symkey_get_iv(key, iv.data()));
  EXPECT_TRUE(iv.is_untouched());
  EXPECT_EQ(comn_drop_symkey(key), CS_SUCCEED);
}

// The provider decides which lengths there are; this one takes any.
TEST_F(SymencrTest, LoadsKeysOfOtherLengths) {
  for (const CS_INT length : {0, 1, 16, 31, 32}) {
    COMN_SYMKEY *const key = comn_load_symkey(&context, key_bytes, length);
    ASSERT_NE(key, nullptr) << length;
    GuardedBuffer copy(static_cast<size_t>(length));
    CS_INT copied = -1;
    EXPECT_EQ(comn_get_symkey(key, copy.data(), &copied), CS_SUCCEED);
    EXPECT_EQ(copied, length);
    EXPECT_EQ(copy.contents(),
              std::string(reinterpret_cast<char *>(key_bytes), static_cast<size_t>(length)));
    EXPECT_EQ(comn_drop_symkey(key), CS_SUCCEED);
  }
  const AllocationProbe memory;
  take_log();
  for (const CS_INT length : {-1, 33, INT32_MAX, INT32_MIN})
    EXPECT_EQ(comn_load_symkey(&context, key_bytes, length), nullptr) << length;
  EXPECT_EQ(take_log(), Log{});
  EXPECT_EQ(memory.allocations(), 0U);
}

// Deliberate: what the provider made before it failed is not released. The record is, and is wiped.
TEST_F(SymencrTest, EachCallOfACreationRefused) {
  const DeliberateLeaks leaks;
  const int objects_behind[] = {0, 0, 2, 3, 3, 4, 4, 4};
  for (int nth = 1; nth <= 8; ++nth) {
    SCOPED_TRACE(creation[static_cast<size_t>(nth) - 1]);
    const AllocationProbe memory;
    fail(nth);
    EXPECT_EQ(comn_create_symkey(&context), nullptr);
    EXPECT_EQ(control().calls, nth);
    EXPECT_EQ(control().live_objects, of_context + objects_behind[nth - 1]);
    forget(objects_behind[nth - 1]);
    EXPECT_EQ(memory.live_blocks(), nth > 2 ? 1U : 0U); // the connection, which is the provider's
    EXPECT_EQ(memory.last_released(), std::string(sizeof(COMN_SYMKEY), '\0'));
  }
  fail(9);
  COMN_SYMKEY *const key = comn_create_symkey(&context);
  EXPECT_NE(key, nullptr);
  EXPECT_EQ(comn_drop_symkey(key), CS_SUCCEED);
}

TEST_F(SymencrTest, EachCallOfALoadRefused) {
  const DeliberateLeaks leaks;
  const int objects_behind[] = {0, 0, 2, 3, 4};
  for (int nth = 1; nth <= 5; ++nth) {
    SCOPED_TRACE(nth);
    const AllocationProbe memory;
    fail(nth);
    EXPECT_EQ(comn_load_symkey(&context, key_bytes, 32), nullptr);
    EXPECT_EQ(control().calls, nth);
    EXPECT_EQ(control().live_objects, of_context + objects_behind[nth - 1]);
    forget(objects_behind[nth - 1]);
    EXPECT_EQ(memory.last_released(), std::string(sizeof(COMN_SYMKEY), '\0'));
  }
  fail(6);
  COMN_SYMKEY *const key = comn_load_symkey(&context, key_bytes, 32);
  EXPECT_NE(key, nullptr);
  EXPECT_EQ(comn_drop_symkey(key), CS_SUCCEED);
}

TEST_F(SymencrTest, EachAllocationFails) {
  COMN_SYMKEY *key = nullptr;
  const auto cleanup = [&] {
    EXPECT_EQ(comn_drop_symkey(std::exchange(key, nullptr)), CS_SUCCEED);
  };
  EXPECT_EQ(fail_each_allocation([] {},
                                 [&] {
                                   key = comn_create_symkey(&context);
                                   return key == nullptr;
                                 },
                                 cleanup),
            4U);
  EXPECT_EQ(fail_each_allocation([] {},
                                 [&] {
                                   key = comn_load_symkey(&context, key_bytes, 32);
                                   return key == nullptr;
                                 },
                                 cleanup),
            4U);
}

TEST_F(SymencrTest, AKeyGivesItsContextARecord) {
  CS_CONTEXT fresh{};
  COMN_SYMKEY *const key = comn_create_symkey(&fresh);
  ASSERT_NE(key, nullptr);
  EXPECT_NE(fresh.ctxcclctx, nullptr);
  EXPECT_EQ(comn_drop_symkey(key), CS_SUCCEED);
  EXPECT_NE(fresh.ctxcclctx, nullptr);
  EXPECT_EQ(com_cclcontext_drop(&fresh), CS_SUCCEED);
}

TEST_F(SymencrTest, DropsAreChecked) {
  EXPECT_EQ(comn_drop_symkey(nullptr), CS_SUCCEED);
  COMN_SYMKEY *const key = comn_create_symkey(&context);
  ASSERT_NE(key, nullptr);
  for (const bool is_second : {false, true}) {
    key->ccl_symkey->functions->addRef(key->ccl_symkey);
    if (is_second)
      key->cipherctx->functions->addRef(key->cipherctx);
    take_log();
    control().released = 1;
    control().released_by = is_second ? "cipher" : "secret key";
    EXPECT_ASSERTION(unit, CS_FAIL, comn_drop_symkey(key));
    EXPECT_EQ(take_log().size(), is_second ? 2U : 1U);
    control().released = 0;
  }
  EXPECT_EQ(comn_drop_symkey(key), CS_SUCCEED);
}

class OneKeyTest : public SymencrTest {
protected:
  OneKeyTest() : key(comn_create_symkey(&context)) { take_log(); }
  ~OneKeyTest() override { EXPECT_EQ(comn_drop_symkey(key), CS_SUCCEED); }

  COMN_SYMKEY *const key;
  CS_BYTE text[3] = {1, 2, 3};
  GuardedBuffer out{16};
  CS_UINT length = 77;
};

// Both run the one transformation that the key has.
using Transformation = CS_RETCODE (*)(COMN_SYMKEY *, CS_BYTE *, CS_UINT, CS_BYTE *, CS_UINT,
                                      CS_UINT *);
constexpr Transformation transformations[] = {comn_symkey_encrypt, comn_symkey_decrypt};

TEST_F(OneKeyTest, Transforms) {
  for (const Transformation transform : transformations) {
    length = 77;
    EXPECT_EQ(transform(key, text, 3, out.data(), 9, &length), CS_SUCCEED);
    EXPECT_EQ(length, 3U);
    EXPECT_EQ(out.contents(3), "\x5B\x58\x59");
    EXPECT_EQ(take_log(), Log{"all 3 into 9"});
    EXPECT_EQ(control().first_capacity, 9U);
    EXPECT_EQ(transform(key, text, 3, out.data(), 3, &length), CS_SUCCEED);
    take_log();
  }
}

TEST_F(OneKeyTest, WhatTransformationsRefuse) {
  for (const Transformation transform : transformations) {
    EXPECT_EQ(transform(nullptr, text, 3, out.data(), 16, &length), CS_FAIL);
    EXPECT_EQ(transform(key, text, 3, nullptr, 16, &length), CS_FAIL);
    EXPECT_EQ(transform(key, text, 3, out.data(), 16, nullptr), CS_FAIL);
    EXPECT_EQ(take_log(), Log{});
    fail(1);
    EXPECT_EQ(transform(key, text, 3, out.data(), 16, &length), CS_FAIL);
    control().excess = 1;
    EXPECT_ASSERTION(unit, CS_FAIL, transform(key, text, 3, out.data(), 16, &length));
    control().excess = 0;
    EXPECT_EQ(length, 77U);
    take_log();
  }
}

TEST_F(OneKeyTest, Vectors) {
  CS_BYTE iv[16];
  std::iota(iv, iv + 16, static_cast<CS_BYTE>(0xA0));
  EXPECT_EQ(comn_symkey_set_iv(key, iv), CS_SUCCEED);
  EXPECT_EQ(take_log(), Log{"setIV a0a1a2a3a4a5a6a7a8a9aaabacadaeaf"});
  GuardedBuffer copy(16);
  EXPECT_EQ(comn_symkey_get_iv(key, copy.data()), CS_SUCCEED);
  EXPECT_EQ(std::memcmp(copy.data(), iv, 16), 0);

  // Drawing one sets nothing.
  EXPECT_EQ(comn_symkey_generate_iv(key, copy.data()), CS_SUCCEED);
  EXPECT_EQ(take_log(), Log{"rndGet 16"});
  EXPECT_EQ(copy.data()[0], 0x10);
  EXPECT_EQ(key->iv[0], 0xA0);

  fail(1);
  CS_BYTE other[16] = {};
  EXPECT_EQ(comn_symkey_set_iv(key, other), CS_FAIL);
  EXPECT_EQ(key->iv[0], 0xA0);
  fail(1);
  EXPECT_EQ(comn_symkey_generate_iv(key, other), CS_FAIL);
  EXPECT_EQ(comn_symkey_set_iv(key, nullptr), CS_FAIL);
  EXPECT_EQ(comn_symkey_set_iv(nullptr, iv), CS_FAIL);
  EXPECT_EQ(comn_symkey_generate_iv(key, nullptr), CS_FAIL);
  EXPECT_EQ(comn_symkey_generate_iv(nullptr, iv), CS_FAIL);
  EXPECT_EQ(comn_symkey_get_iv(key, nullptr), CS_FAIL);
  EXPECT_EQ(comn_symkey_get_iv(nullptr, iv), CS_FAIL);

  // A loaded key has one as soon as it is set.
  COMN_SYMKEY *const loaded = comn_load_symkey(&context, key_bytes, 32);
  EXPECT_EQ(comn_symkey_set_iv(loaded, iv), CS_SUCCEED);
  EXPECT_EQ(comn_symkey_get_iv(loaded, copy.data()), CS_SUCCEED);
  EXPECT_EQ(comn_drop_symkey(loaded), CS_SUCCEED);
}

TEST_F(OneKeyTest, WhatGettingTheKeyRefuses) {
  CS_INT key_length = -1;
  EXPECT_EQ(comn_get_symkey(nullptr, out.data(), &key_length), CS_FAIL);
  EXPECT_EQ(comn_get_symkey(key, nullptr, &key_length), CS_FAIL);
  EXPECT_EQ(comn_get_symkey(key, out.data(), nullptr), CS_FAIL);
  EXPECT_EQ(key_length, -1);
  EXPECT_TRUE(out.is_untouched());
}

TEST_F(SymencrTest, NullPointersAreFatal) {
  COMN_SYMKEY *const none = nullptr;
  COMN_SYMKEY record{};
  EXPECT_NULL_POINTER_CHECK(unit, none, comn_create_symkey(nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, none, comn_load_symkey(nullptr, key_bytes, 32));
  EXPECT_NULL_POINTER_CHECK(unit, none, comn_load_symkey(&context, nullptr, 32));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, symkey_init(nullptr, &record));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, symkey_init(&context, nullptr));
}

} // namespace
