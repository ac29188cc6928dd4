// Key pairs over the counting provider.
#include "allocation_probe.h"
#include "check_trap.h"
#include "guarded_buffer.h"
#include "provider_probe.h"
#include "traced_exit.h"

namespace {

using namespace zrvtest;
using Log = std::vector<std::string>;

constexpr const char *unit = "keypair.cpp";

const Log creation = {"createEncryptionCtx",          "createDecryptionCtx",
                      "createAlgParamKeyPairRSA 600", "createKeyPair",
                      "exportToBlob 4097 into 600",   "release key pair parameters"};

class KeypairTest : public CountingProviderTest {
protected:
  KeypairTest() {
    EXPECT_EQ(com_cclcontext_alloc(&context), CS_SUCCEED);
    take_log();
  }
  ~KeypairTest() override { EXPECT_EQ(com_cclcontext_drop(&context), CS_SUCCEED); }

  static constexpr int of_context = 3; // objects
  CS_CONTEXT context{};
};

TEST_F(KeypairTest, Creates) {
  AllocationProbe memory;
  COMN_KEYPAIR *const pair = comn_keypair_create(&context, 600);
  ASSERT_NE(pair, nullptr);
  EXPECT_EQ(take_log(), creation);
  EXPECT_EQ(memory.last_size(), 600U); // the key's length in bits is the room in bytes
  EXPECT_EQ(pair->context, context.ctxcclctx);
  EXPECT_EQ(comn_keypair_get_public_key_length(pair), 3U); // of the text, not of the room
  EXPECT_EQ(std::memcmp(comn_keypair_get_public_key(pair), "PEM", 4), 0);
  EXPECT_EQ(control().live_objects, of_context + 4);

  comn_keypair_delete(pair);
  EXPECT_EQ(take_log(), (Log{"release public key", "release private key", "release decryption",
                             "release encryption"}));
  EXPECT_EQ(memory.live_blocks(), 0U);
  EXPECT_EQ(control().live_objects, of_context);
}

TEST_F(KeypairTest, EachCallOfACreationRefused) {
  for (int nth = 1; nth <= 5; ++nth) {
    SCOPED_TRACE(creation[static_cast<size_t>(nth) - 1]);
    const AllocationProbe memory;
    fail(nth);
    EXPECT_EQ(comn_keypair_create(&context, 600), nullptr);
    EXPECT_EQ(control().calls, nth);
    EXPECT_EQ(control().live_objects, of_context);
    EXPECT_EQ(memory.live_blocks(), 0U);
  }
  // Too small a room for the text of the key.
  fail(0);
  EXPECT_EQ(comn_keypair_create(&context, 2), nullptr);
  EXPECT_EQ(control().live_objects, of_context);
}

TEST_F(KeypairTest, TheReleaseOfTheParametersFails) {
  const AllocationProbe memory;
  control().released_by = "key pair parameters";
  control().released = -1;
  EXPECT_EQ(comn_keypair_create(&context, 600), nullptr);
  EXPECT_EQ(control().live_objects, of_context);
  EXPECT_EQ(memory.live_blocks(), 0U);
  control().released = 1; // only what is negative fails here
  COMN_KEYPAIR *const pair = comn_keypair_create(&context, 600);
  ASSERT_NE(pair, nullptr);
  comn_keypair_delete(pair);
}

TEST_F(KeypairTest, EachAllocationFails) {
  COMN_KEYPAIR *pair = nullptr;
  EXPECT_EQ(fail_each_allocation([] {},
                                 [&] {
                                   pair = comn_keypair_create(&context, 600);
                                   return pair == nullptr;
                                 },
                                 [&] { comn_keypair_delete(pair); }),
            6U);
  EXPECT_EQ(control().live_objects, of_context);
}

TEST_F(KeypairTest, LengthsThatCannotBe) {
  for (const CS_INT length : {0, -1, INT32_MIN}) {
    EXPECT_EQ(comn_keypair_create(&context, length), nullptr);
    EXPECT_EQ(control().live_objects, of_context);
  }
}

TEST_F(KeypairTest, GeneratingNeedsARecord) {
  CS_CONTEXT bare{};
  COMN_KEYPAIR pair{};
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, keypair_generate(&bare, &pair, 600));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, keypair_generate(nullptr, &pair, 600));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, keypair_generate(&context, nullptr, 600));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, keypair_init(nullptr, &pair));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, keypair_init(&context, nullptr));
  EXPECT_EQ(take_log(), Log{});
}

class OnePairTest : public KeypairTest {
protected:
  OnePairTest() : pair(comn_keypair_create(&context, 600)) { take_log(); }
  ~OnePairTest() override { comn_keypair_delete(pair); }

  CS_RETCODE decrypt(CS_UINT room = 8) {
    return comn_keypair_privkey_decrypt(pair, text, 3, out.data(), room, &length);
  }

  COMN_KEYPAIR *const pair;
  CS_BYTE text[3] = {1, 2, 3};
  GuardedBuffer out{8};
  CS_UINT length = 77;
};

TEST_F(OnePairTest, Decrypts) {
  EXPECT_EQ(decrypt(), CS_SUCCEED);
  EXPECT_EQ(length, 3U);
  EXPECT_EQ(out.contents(3), "\x5B\x58\x59");
  EXPECT_EQ(take_log(), (Log{"init decryption", "decrypt 3 into 8"}));
  EXPECT_EQ(control().first_capacity, 0U); // the length starts at 0
  EXPECT_EQ(decrypt(3), CS_SUCCEED);
}

// Deliberate: these failures, and no others, do not pass through the trace.
TEST_F(OnePairTest, RefusalsAreNotTraced) {
  for (int nth = 1; nth <= 2; ++nth) {
    const std::string traced = trace_of(CS_FAIL, [&] {
      fail(nth);
      return decrypt();
    });
    EXPECT_EQ(traced, "");
    EXPECT_EQ(control().calls, nth);
    EXPECT_EQ(length, 77U);
    EXPECT_TRUE(out.is_untouched());
  }
  fail(0);
  EXPECT_EQ(exit_of(CS_SUCCEED, [&] { return decrypt(); }), "(CS_SUCCEED) file keypair.cpp");
}

TEST_F(OnePairTest, ALengthBeyondTheRoomIsFatal) {
  control().excess = 1;
  EXPECT_ASSERTION(unit, CS_FAIL, decrypt());
  EXPECT_EQ(length, 77U);
}

TEST_F(OnePairTest, NullPointersAreFatal) {
  CS_BYTE *const no_bytes = nullptr;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            comn_keypair_privkey_decrypt(nullptr, text, 3, out.data(), 8, &length));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            comn_keypair_privkey_decrypt(pair, text, 3, out.data(), 8, nullptr));
  COMN_KEYPAIR without_connection = *pair;
  without_connection.conn = nullptr;
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL,
      comn_keypair_privkey_decrypt(&without_connection, text, 3, out.data(), 8, &length));
  EXPECT_NULL_POINTER_CHECK(unit, no_bytes, comn_keypair_get_public_key(nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, 0U, comn_keypair_get_public_key_length(nullptr));
  COMN_KEYPAIR *const none = nullptr;
  EXPECT_NULL_POINTER_CHECK(unit, none, comn_keypair_create(nullptr, 600));
  EXPECT_TRUE(is_null_pointer_report(catch_check([] { comn_keypair_delete(nullptr); }), unit));
}

TEST_F(OnePairTest, DeletesAreChecked) {
  for (const bool is_second : {false, true}) {
    pair->ccl_pubkey->functions->addRef(pair->ccl_pubkey);
    if (is_second)
      pair->ccl_privkey->functions->addRef(pair->ccl_privkey);
    take_log();
    control().released = 1;
    control().released_by = is_second ? "private key" : "public key";
    EXPECT_TRUE(is_assertion_report(catch_check([&] { comn_keypair_delete(pair); }), unit));
    EXPECT_EQ(take_log().size(), is_second ? 2U : 1U);
    control().released = 0;
  }
}

} // namespace
