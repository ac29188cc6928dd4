// Key pairs.
#include <utility>

#include "ccl.h"
#include "checks.h"
#include "zrvintl.h"

using namespace comn::ccl;

namespace {

// What keypair_generate makes; what it has not handed over goes with it.
struct Keys {
  CCLAlgParamKeyPair *params = nullptr;
  CCLPrivateKey *private_key = nullptr;
  CCLPublicKey *public_key = nullptr;
  uint8_t *encoded = nullptr;

  Keys() = default;
  ~Keys() {
    comn_free(encoded);
    discard(public_key);
    discard(private_key);
    discard(params);
  }
  Keys(const Keys &) = delete;
  Keys &operator=(const Keys &) = delete;
};

} // namespace

CS_RETCODE keypair_init(CS_CONTEXT *csctx, COMN_KEYPAIR *ckp) noexcept {
  COMN_CHECK_PTR(csctx, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(ckp, COMN_TRACE(CS_FAIL));
  CS_VOID *conn = nullptr;
  if (com_cclcontext_alloc(csctx) != CS_SUCCEED || com_cclconn_alloc(csctx, &conn) != CS_SUCCEED)
    return COMN_TRACE(CS_FAIL);
  ckp->context = static_cast<NETENC_CONTEXT *>(csctx->ctxcclctx);
  ckp->conn = static_cast<NETENC_CONNECTION *>(conn);
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE keypair_generate(CS_CONTEXT *csctx, COMN_KEYPAIR *ckp, CS_INT keylength) noexcept {
  COMN_CHECK_PTR(csctx, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(ckp, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(csctx->ctxcclctx, COMN_TRACE(CS_FAIL));
  if (keylength <= 0)
    return COMN_TRACE(CS_FAIL);
  CCLCryptFactory *const factory = static_cast<NETENC_CONTEXT *>(csctx->ctxcclctx)->factory;
  // Bits of the key, and bytes of the room for its text.
  auto length = static_cast<size_t>(keylength);
  Keys keys;
  if (is_failure(factory->functions->createAlgParamKeyPairRSA(factory, length, &keys.params)) ||
      is_failure(factory->functions->createKeyPair(factory, keys.params, &keys.private_key,
                                                   &keys.public_key)))
    return COMN_TRACE(CS_FAIL);
  keys.encoded = static_cast<uint8_t *>(comn_calloc(length, 1));
  if (keys.encoded == nullptr ||
      is_failure(keys.public_key->functions->exportToBlob(
          keys.public_key, CCLKeyEncodeFormat_Raw_PEM, keys.encoded, &length)))
    return COMN_TRACE(CS_FAIL);
  CCLAlgParamKeyPair *const params = std::exchange(keys.params, nullptr);
  if (is_failure(params->functions->release(params)))
    return COMN_TRACE(CS_FAIL);
  ckp->ccl_privkey = std::exchange(keys.private_key, nullptr);
  ckp->ccl_pubkey = std::exchange(keys.public_key, nullptr);
  ckp->ccl_encoded_pubkey_buf = std::exchange(keys.encoded, nullptr);
  ckp->ccl_encoded_pubkey_buflen = length;
  return COMN_TRACE(CS_SUCCEED);
}

COMN_KEYPAIR *comn_keypair_create(CS_CONTEXT *csctx, CS_INT keylength) noexcept {
  COMN_CHECK_PTR(csctx, nullptr);
  auto *const pair = static_cast<COMN_KEYPAIR *>(comn_calloc(1, sizeof(COMN_KEYPAIR)));
  if (pair == nullptr)
    return nullptr;
  if (keypair_init(csctx, pair) == CS_SUCCEED) {
    if (keypair_generate(csctx, pair, keylength) == CS_SUCCEED)
      return pair;
    com_cclconn_drop(pair->conn);
  }
  comn_free(pair);
  return nullptr;
}

void comn_keypair_delete(COMN_KEYPAIR *ckp) noexcept {
  COMN_CHECK_PTR(ckp);
  COMN_CHECK(is_released(ckp->ccl_pubkey));
  COMN_CHECK(is_released(ckp->ccl_privkey));
  if (com_cclconn_drop(ckp->conn) != CS_SUCCEED)
    return;
  comn_free(ckp->ccl_encoded_pubkey_buf);
  comn_free(ckp);
}

CS_BYTE *comn_keypair_get_public_key(COMN_KEYPAIR *ckp) noexcept {
  COMN_CHECK_PTR(ckp, nullptr);
  return ckp->ccl_encoded_pubkey_buf;
}

CS_UINT comn_keypair_get_public_key_length(COMN_KEYPAIR *ckp) noexcept {
  COMN_CHECK_PTR(ckp, 0);
  return static_cast<CS_UINT>(ckp->ccl_encoded_pubkey_buflen);
}

CS_RETCODE comn_keypair_privkey_decrypt(COMN_KEYPAIR *ckp, CS_BYTE *ciphertext,
                                        CS_UINT ciphertext_len, CS_BYTE *decrypt_buf,
                                        CS_UINT decrypt_buf_len, CS_UINT *decrypted_lenp) noexcept {
  COMN_CHECK_PTR(ckp, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(ckp->conn, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(decrypted_lenp, COMN_TRACE(CS_FAIL));
  CCLDecryptionCtx *const decryption = ckp->conn->decryptionctx;
  size_t length = 0;
  if (is_failure(decryption->functions->init(decryption, ckp->ccl_privkey)) ||
      is_failure(decryption->functions->decrypt(decryption, ciphertext, ciphertext_len, decrypt_buf,
                                                decrypt_buf_len, &length)))
    return CS_FAIL; // deliberately without the trace
  COMN_CHECK(length <= decrypt_buf_len, COMN_TRACE(CS_FAIL));
  *decrypted_lenp = static_cast<CS_UINT>(length);
  return COMN_TRACE(CS_SUCCEED);
}
