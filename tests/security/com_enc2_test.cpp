// The records of contexts and objects, and public-key encryption of a string, over the counting
// provider.
#include "../messages/message_fixture.h"
#include "allocation_probe.h"
#include "check_trap.h"
#include "guarded_buffer.h"
#include "provider_probe.h"
#include "zrvcomn/zrvintl.h"

namespace {

using namespace zrvtest;
using Log = std::vector<std::string>;

constexpr const char *unit = "com_enc2.cpp";

class ComEnc2Test : public CountingProviderTest {
protected:
  ComEnc2Test() {
    CS_VOID *table = nullptr;
    EXPECT_EQ(comn_cryptolib_load(&table), CS_SUCCEED);
    take_log();
  }
  ~ComEnc2Test() override { EXPECT_EQ(com_cclcontext_drop(&context), CS_SUCCEED); }

  void give_record() {
    EXPECT_EQ(com_cclcontext_alloc(&context), CS_SUCCEED);
    take_log();
  }
  NETENC_CONTEXT *record() { return static_cast<NETENC_CONTEXT *>(context.ctxcclctx); }

  CS_CONTEXT context{};
};

const Log context_calls = {"memory", "create_crypt_factory 0 0",
                           "createAlgParamEncryptionByParams RSA PKCS_EME_OAEP",
                           "createAlgParamCipherByName AES256;CBC"};
const Log context_releases = {"release cipher parameters", "release encryption parameters",
                              "release factory"};

// ---- contexts ----

TEST_F(ComEnc2Test, ContextRecord) {
  EXPECT_EQ(com_cclcontext_alloc(&context), CS_SUCCEED);
  EXPECT_EQ(take_log(), context_calls);
  EXPECT_EQ(control().allocate, comn_malloc);
  EXPECT_EQ(control().allocate_cleared, comn_calloc);
  EXPECT_EQ(control().resize, comn_realloc);
  EXPECT_EQ(control().release, comn_free);
  EXPECT_EQ(control().live_objects, 3);

  NETENC_CONTEXT *const first = record();
  EXPECT_EQ(com_cclcontext_alloc(&context), CS_SUCCEED);
  EXPECT_EQ(record(), first);
  EXPECT_EQ(take_log(), Log{});

  EXPECT_EQ(com_cclcontext_drop(&context), CS_SUCCEED);
  EXPECT_EQ(take_log(), context_releases);
  EXPECT_EQ(context.ctxcclctx, nullptr);
  EXPECT_EQ(com_cclcontext_drop(&context), CS_SUCCEED);
  EXPECT_EQ(take_log(), Log{});
}

TEST_F(ComEnc2Test, TwoContexts) {
  CS_CONTEXT other{};
  give_record();
  EXPECT_EQ(com_cclcontext_alloc(&other), CS_SUCCEED);
  EXPECT_NE(other.ctxcclctx, context.ctxcclctx);
  EXPECT_EQ(control().live_objects, 6);
  EXPECT_EQ(com_cclcontext_drop(&other), CS_SUCCEED);
  EXPECT_EQ(control().live_objects, 3);
  EXPECT_NE(record(), nullptr);
  EXPECT_EQ(probe.opened(), 1);
}

TEST_F(ComEnc2Test, EachCallOfAContextRefused) {
  for (int nth = 1; nth <= 3; ++nth) {
    const AllocationProbe memory;
    fail(nth);
    EXPECT_EQ(com_cclcontext_alloc(&context), CS_FAIL);
    EXPECT_EQ(control().calls, nth);
    EXPECT_EQ(context.ctxcclctx, nullptr);
    EXPECT_EQ(control().live_objects, 0);
    EXPECT_EQ(memory.live_blocks(), 0U);
  }
  fail(4);
  EXPECT_EQ(com_cclcontext_alloc(&context), CS_SUCCEED);
  fail(0);
}

TEST_F(ComEnc2Test, ContextWithoutMemory) {
  AllocationProbe memory;
  memory.fail(1);
  EXPECT_EQ(com_cclcontext_alloc(&context), CS_FAIL);
  EXPECT_EQ(context.ctxcclctx, nullptr);
  EXPECT_EQ(take_log(), Log{"memory"});
}

TEST_F(ComEnc2Test, DropsOfContextsAreChecked) {
  const char *const kinds[] = {"cipher parameters", "encryption parameters", "factory"};
  for (size_t failing = 0; failing < 3; ++failing) {
    SCOPED_TRACE(kinds[failing]);
    give_record();
    // What the failing drop releases is released again by the one that succeeds.
    record()->cipherparams->functions->addRef(record()->cipherparams);
    if (failing > 0)
      record()->encryptionparams->functions->addRef(record()->encryptionparams);
    if (failing > 1)
      record()->factory->functions->addRef(record()->factory);
    control().released_by = kinds[failing];
    control().released = failing == 1 ? -1 : 1;
    EXPECT_ASSERTION(unit, CS_FAIL, com_cclcontext_drop(&context));
    EXPECT_EQ(take_log(), Log(context_releases.begin(),
                              context_releases.begin() + static_cast<long>(failing) + 1));
    control().released = 0;
    EXPECT_EQ(com_cclcontext_drop(&context), CS_SUCCEED);
    EXPECT_EQ(control().live_objects, 0);
  }
}

TEST_F(ComEnc2Test, NullContextsAreFatal) {
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com_cclcontext_alloc(nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com_cclcontext_drop(nullptr));
}

// ---- the message ----

CS_CLIENTMSG last_message;
int message_count;

CS_RETCODE keep_message(CS_CONTEXT *, CS_CLIENTMSG *message) {
  last_message = *message;
  ++message_count;
  return CS_SUCCEED;
}

using ComEnc2MessageTest = Messages;

TEST_F(ComEnc2MessageTest, AFailedLoadIsReported) {
  const ProviderProbe probe("");
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  message_count = 0;
  EXPECT_EQ(com_cclcontext_alloc(&context), CS_FAIL);
  EXPECT_EQ(message_count, 0); // there is no callback: the failure stands by itself
  context.ctxerrfunc = keep_message;
  EXPECT_EQ(com_cclcontext_alloc(&context), CS_FAIL);
  EXPECT_EQ(message_count, 1);
  EXPECT_EQ(last_message.msgnumber, 17040906);
  EXPECT_EQ(last_message.severity, 6);
  EXPECT_EQ(std::string(last_message.msgstring, 22), "comn_cryptolib_load():");
  EXPECT_EQ(context.ctxcclctx, nullptr);
  // Every try reports, as each one looks for the library.
  EXPECT_EQ(com_cclcontext_alloc(&context), CS_FAIL);
  EXPECT_EQ(message_count, 2);
  context.ctxerrfunc = nullptr;
}

// The load behind a failed one succeeds with a table that is not whole, so nothing is reported.
TEST_F(ComEnc2MessageTest, ATableThatIsNotWholeIsNotReported) {
  const ProviderProbe probe(COUNTING_PROVIDER);
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  context.ctxerrfunc = keep_message;
  message_count = 0;
  CCLAPI_PROVIDER empty{};
  cclp = &empty;
  EXPECT_EQ(com_cclcontext_alloc(&context), CS_FAIL);
  EXPECT_EQ(message_count, 0);
  cclp = nullptr;
  context.ctxerrfunc = nullptr;
}

// ---- connections ----

TEST_F(ComEnc2Test, Connections) {
  give_record();
  CS_VOID *connection = nullptr;
  EXPECT_EQ(com_cclconn_alloc(&context, &connection), CS_SUCCEED);
  EXPECT_EQ(take_log(), (Log{"createEncryptionCtx", "createDecryptionCtx"}));
  EXPECT_EQ(com_cclconn_drop(connection), CS_SUCCEED);
  EXPECT_EQ(take_log(), (Log{"release decryption", "release encryption"}));
  EXPECT_EQ(com_cclconn_drop(nullptr), CS_SUCCEED);
}

TEST_F(ComEnc2Test, EachCallOfAConnectionRefused) {
  give_record();
  for (int nth = 1; nth <= 2; ++nth) {
    const AllocationProbe memory;
    fail(nth);
    CS_VOID *connection = &connection;
    EXPECT_EQ(com_cclconn_alloc(&context, &connection), CS_FAIL);
    EXPECT_EQ(connection, &connection);
    EXPECT_EQ(control().calls, nth);
    EXPECT_EQ(control().live_objects, 3);
    EXPECT_EQ(memory.live_blocks(), 0U);
  }
  AllocationProbe memory;
  memory.fail(1);
  CS_VOID *connection = nullptr;
  EXPECT_EQ(com_cclconn_alloc(&context, &connection), CS_FAIL);
}

TEST_F(ComEnc2Test, DropsOfConnectionsAreChecked) {
  give_record();
  for (const bool is_second : {false, true}) {
    CS_VOID *connection = nullptr;
    ASSERT_EQ(com_cclconn_alloc(&context, &connection), CS_SUCCEED);
    take_log();
    auto *const pair = static_cast<NETENC_CONNECTION *>(connection);
    pair->decryptionctx->functions->addRef(pair->decryptionctx);
    if (is_second)
      pair->encryptionctx->functions->addRef(pair->encryptionctx);
    control().released_by = is_second ? "encryption" : "decryption";
    control().released = 1;
    EXPECT_ASSERTION(unit, CS_FAIL, com_cclconn_drop(connection));
    EXPECT_EQ(take_log().size(), is_second ? 2U : 1U);
    control().released = 0;
    EXPECT_EQ(com_cclconn_drop(connection), CS_SUCCEED);
    EXPECT_EQ(control().live_objects, 3);
  }
}

TEST_F(ComEnc2Test, WhatConnectionsNeed) {
  CS_VOID *connection = nullptr;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com_cclconn_alloc(&context, &connection));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com_cclconn_alloc(nullptr, &connection));
  give_record();
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com_cclconn_alloc(&context, nullptr));
}

// ---- encrypting a string ----

class EncryptStringTest : public ComEnc2Test {
protected:
  EncryptStringTest() {
    give_record();
    EXPECT_EQ(com_cclconn_alloc(&context, &connection), CS_SUCCEED);
    take_log();
  }
  ~EncryptStringTest() override { EXPECT_EQ(com_cclconn_drop(connection), CS_SUCCEED); }

  CS_RETCODE encrypt(CS_INT room = 8) {
    return com_encrypt_string(context.ctxcclctx, connection, text, 3, key, 2, out.data(), room,
                              &length);
  }

  CS_VOID *connection = nullptr;
  CS_BYTE text[3] = {1, 2, 3}, key[2] = {0xAB, 0xCD};
  GuardedBuffer out{8};
  CS_INT length = -5;
};

TEST_F(EncryptStringTest, Encrypts) {
  EXPECT_EQ(encrypt(), CS_SUCCEED);
  EXPECT_EQ(length, 3);
  EXPECT_EQ(out.contents(3), "\x5B\x58\x59");
  EXPECT_EQ(take_log(), (Log{"importPublicKey abcd", "init encryption", "encrypt 3 into 8",
                             "release public key"}));
  EXPECT_EQ(
      com_encrypt_string(context.ctxcclctx, connection, nullptr, 0, key, 2, out.data(), 0, &length),
      CS_SUCCEED);
  EXPECT_EQ(length, 0);
}

TEST_F(EncryptStringTest, EachCallRefused) {
  for (int nth = 1; nth <= 3; ++nth) {
    fail(nth);
    EXPECT_EQ(encrypt(), CS_FAIL);
    EXPECT_EQ(control().calls, nth);
    EXPECT_EQ(length, -5);
    EXPECT_TRUE(out.is_untouched());
    EXPECT_EQ(control().live_objects, 5);
  }
}

TEST_F(EncryptStringTest, AFailedReleaseOfTheKey) {
  control().released = -1;
  EXPECT_EQ(encrypt(), CS_FAIL);
  EXPECT_EQ(length, 3);
  control().released = 1; // only what is negative fails here
  EXPECT_EQ(encrypt(), CS_SUCCEED);
  control().released = 0;
}

TEST_F(EncryptStringTest, ALengthBeyondTheRoomIsFatal) {
  control().excess = 1;
  EXPECT_ASSERTION(unit, CS_FAIL, encrypt());
  EXPECT_EQ(length, -5);
  EXPECT_EQ(control().live_objects, 5);
  control().excess = 0;
  EXPECT_EQ(encrypt(3), CS_SUCCEED); // as long as the room
  EXPECT_EQ(length, 3);
}

TEST_F(EncryptStringTest, NegativeLengths) {
  CS_VOID *const record = context.ctxcclctx;
  EXPECT_EQ(com_encrypt_string(record, connection, text, -1, key, 2, out.data(), 8, &length),
            CS_FAIL);
  EXPECT_EQ(com_encrypt_string(record, connection, text, 3, key, -1, out.data(), 8, &length),
            CS_FAIL);
  EXPECT_EQ(com_encrypt_string(record, connection, text, 3, key, 2, out.data(), -1, &length),
            CS_FAIL);
  EXPECT_EQ(take_log(), Log{});
  EXPECT_EQ(length, -5);
}

TEST_F(EncryptStringTest, NullPointersAreFatal) {
  CS_VOID *const record = context.ctxcclctx;
  CS_BYTE *const buffer = out.data();
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL, com_encrypt_string(nullptr, connection, text, 3, key, 2, buffer, 8, &length));
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL, com_encrypt_string(record, nullptr, text, 3, key, 2, buffer, 8, &length));
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL,
      com_encrypt_string(record, connection, text, 3, nullptr, 2, buffer, 8, &length));
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL, com_encrypt_string(record, connection, text, 3, key, 2, nullptr, 8, &length));
  EXPECT_NULL_POINTER_CHECK(
      unit, CS_FAIL, com_encrypt_string(record, connection, text, 3, key, 2, buffer, 8, nullptr));
  EXPECT_ASSERTION(unit, CS_FAIL,
                   com_encrypt_string(record, connection, nullptr, 3, key, 2, buffer, 8, &length));
}

} // namespace
