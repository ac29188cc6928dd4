// What contexts and objects have of the crypto provider, and public-key encryption of a string.
#include "ccl.h"
#include "checks.h"
#include "comerr.h"
#include "zrvintl.h"

using namespace comn::ccl;

namespace {

// Fills the record; false when the provider refuses, and then the record holds what was made so far.
bool fill(NETENC_CONTEXT &record, const SEC_VELCCL_FUNCTIONS &functions) noexcept {
  if (is_failure(functions.create_crypt_factory(&record.factory, 0, 0)))
    return false;
  const CCLCryptFactory_functions &factory = *record.factory->functions;
  return !is_failure(factory.createAlgParamEncryptionByParams(
             record.factory, "RSA", "PKCS_EME_OAEP", &record.encryptionparams)) &&
         !is_failure(factory.createAlgParamCipherByName(record.factory, "AES256;CBC",
                                                        &record.cipherparams));
}

bool fill(NETENC_CONNECTION &record, const NETENC_CONTEXT &context) noexcept {
  const CCLCryptFactory_functions &factory = *context.factory->functions;
  return !is_failure(factory.createEncryptionCtx(context.factory, context.encryptionparams,
                                                 &record.encryptionctx)) &&
         !is_failure(factory.createDecryptionCtx(context.factory, context.encryptionparams,
                                                 &record.decryptionctx));
}

} // namespace

CS_RETCODE com_cclcontext_alloc(CS_CONTEXT *context) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  if (context->ctxcclctx != nullptr)
    return COMN_TRACE(CS_SUCCEED);
  CS_VOID *table = nullptr;
  if (comn_cryptolib_load(&table) != CS_SUCCEED) {
    CsErrParams parameters;
    com_ep_s(&parameters, const_cast<CS_CHAR *>("comn_cryptolib_load()"));
    com__error(context, COM_ERR_LOADLIB, &parameters);
    return COMN_TRACE(CS_FAIL);
  }
  // The table of a load that failed earlier lacks the last list.
  const auto &provider = *static_cast<CCLAPI_PROVIDER *>(table);
  if (provider.sec_velccl_functions == nullptr)
    return COMN_TRACE(CS_FAIL);
  provider.cryptolib_set_memory_callback(comn_malloc, comn_calloc, comn_realloc, comn_free);
  auto *const record = static_cast<NETENC_CONTEXT *>(comn_calloc(1, sizeof(NETENC_CONTEXT)));
  if (record == nullptr)
    return COMN_TRACE(CS_FAIL);
  if (!fill(*record, *provider.sec_velccl_functions)) {
    discard(record->cipherparams);
    discard(record->encryptionparams);
    discard(record->factory);
    comn_free(record);
    return COMN_TRACE(CS_FAIL);
  }
  context->ctxcclctx = record;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com_cclcontext_drop(CS_CONTEXT *context) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  auto *const record = static_cast<NETENC_CONTEXT *>(context->ctxcclctx);
  if (record == nullptr)
    return COMN_TRACE(CS_SUCCEED);
  COMN_CHECK(is_released(record->cipherparams), COMN_TRACE(CS_FAIL));
  COMN_CHECK(is_released(record->encryptionparams), COMN_TRACE(CS_FAIL));
  COMN_CHECK(is_released(record->factory), COMN_TRACE(CS_FAIL));
  comn_free(record);
  context->ctxcclctx = nullptr;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com_cclconn_alloc(CS_CONTEXT *csctx, CS_VOID **cclconn) noexcept {
  COMN_CHECK_PTR(csctx, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(cclconn, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(csctx->ctxcclctx, COMN_TRACE(CS_FAIL));
  auto *const record = static_cast<NETENC_CONNECTION *>(comn_calloc(1, sizeof(NETENC_CONNECTION)));
  if (record == nullptr)
    return COMN_TRACE(CS_FAIL);
  if (!fill(*record, *static_cast<NETENC_CONTEXT *>(csctx->ctxcclctx))) {
    discard(record->encryptionctx);
    comn_free(record);
    return COMN_TRACE(CS_FAIL);
  }
  *cclconn = record;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com_cclconn_drop(CS_VOID *cclconn) noexcept {
  if (cclconn == nullptr)
    return COMN_TRACE(CS_SUCCEED);
  auto *const record = static_cast<NETENC_CONNECTION *>(cclconn);
  COMN_CHECK(is_released(record->decryptionctx), COMN_TRACE(CS_FAIL));
  COMN_CHECK(is_released(record->encryptionctx), COMN_TRACE(CS_FAIL));
  comn_free(record);
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com_encrypt_string(CS_VOID *cclcontext, CS_VOID *cclconn, CS_BYTE *plaintext,
                              CS_INT plaintext_length, CS_BYTE *pubkey, CS_INT pubkeylen,
                              CS_BYTE *encrypt_buf, CS_INT encrypt_buflen,
                              CS_INT *encrypt_len) noexcept {
  COMN_CHECK_PTR(cclcontext, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(cclconn, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(pubkey, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(encrypt_buf, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(encrypt_len, COMN_TRACE(CS_FAIL));
  COMN_CHECK(plaintext != nullptr || plaintext_length == 0, COMN_TRACE(CS_FAIL));
  if (plaintext_length < 0 || pubkeylen < 0 || encrypt_buflen < 0)
    return COMN_TRACE(CS_FAIL);
  CCLCryptFactory *const factory = static_cast<NETENC_CONTEXT *>(cclcontext)->factory;
  CCLEncryptionCtx *const encryption = static_cast<NETENC_CONNECTION *>(cclconn)->encryptionctx;
  const auto capacity = static_cast<size_t>(encrypt_buflen);
  CCLPublicKey *key = nullptr;
  if (is_failure(factory->functions->importPublicKey(factory, pubkey,
                                                     static_cast<size_t>(pubkeylen), &key)))
    return COMN_TRACE(CS_FAIL);
  size_t length = 0;
  if (is_failure(encryption->functions->init(encryption, key)) ||
      is_failure(encryption->functions->encrypt(encryption, plaintext,
                                                static_cast<size_t>(plaintext_length), encrypt_buf,
                                                capacity, &length))) {
    discard(key);
    return COMN_TRACE(CS_FAIL);
  }
  const RC released = key->functions->release(key);
  COMN_CHECK(length <= capacity, COMN_TRACE(CS_FAIL));
  *encrypt_len = static_cast<CS_INT>(length);
  if (is_failure(released))
    return COMN_TRACE(CS_FAIL);
  return COMN_TRACE(CS_SUCCEED);
}
