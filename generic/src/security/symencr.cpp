// Symmetric keys.
#include <cstring>

#include "ccl.h"
#include "checks.h"
#include "zrvintl.h"

using namespace comn::ccl;

namespace {

bool draw(COMN_SYMKEY &key, CS_BYTE *bytes, size_t length) noexcept {
  CCLCryptFactory *const factory = key.context->factory;
  return !is_failure(factory->functions->rndGet(factory, bytes, length));
}

bool set_provider_key(COMN_SYMKEY &key, const CS_BYTE *bytes, size_t length) noexcept {
  CCLCryptFactory *const factory = key.context->factory;
  return !is_failure(factory->functions->createSecretKeyByBlob(
      factory, bytes, length, key.context->cipherparams, &key.ccl_symkey));
}

bool give_key_to_cipher(COMN_SYMKEY &key) noexcept {
  return !is_failure(key.cipherctx->functions->setKey(key.cipherctx, key.ccl_symkey));
}

bool create(COMN_SYMKEY &key) noexcept {
  CCLCryptFactory *const factory = key.context->factory;
  if (is_failure(factory->functions->createCipherCtxEncryption(factory, key.context->cipherparams,
                                                               &key.cipherctx)))
    return false;
  key.encoded_symkey_buflen = sizeof key.encoded_symkey_buf;
  if (!draw(key, key.encoded_symkey_buf, key.encoded_symkey_buflen) ||
      !set_provider_key(key, key.encoded_symkey_buf, key.encoded_symkey_buflen) ||
      !give_key_to_cipher(key))
    return false;
  key.ivlen = sizeof key.iv;
  return comn_symkey_generate_iv(&key, key.iv) == CS_SUCCEED &&
         comn_symkey_set_iv(&key, key.iv) == CS_SUCCEED;
}

bool load(COMN_SYMKEY &key, const CS_BYTE *bytes, size_t length) noexcept {
  CCLCryptFactory *const factory = key.context->factory;
  if (is_failure(factory->functions->createCipherCtxDecryption(factory, key.context->cipherparams,
                                                               &key.cipherctx)) ||
      !set_provider_key(key, bytes, length))
    return false;
  std::memcpy(key.encoded_symkey_buf, bytes, length);
  key.encoded_symkey_buflen = length;
  return give_key_to_cipher(key);
}

// A key that `fill` makes something of, or null.
template <class Fill>
COMN_SYMKEY *make(CS_CONTEXT *csctx, Fill fill) noexcept {
  auto *const key = static_cast<COMN_SYMKEY *>(comn_calloc(1, sizeof(COMN_SYMKEY)));
  if (key == nullptr)
    return nullptr;
  if (symkey_init(csctx, key) == CS_SUCCEED && fill(*key))
    return key;
  // What the provider has made so far is deliberately left: a provider that failed in the middle of
  // this is not called again.
  com_secure_memset(key, 0, sizeof *key);
  comn_free(key);
  return nullptr;
}

// Runs the cipher over a text; false when the provider refuses.
bool transform(COMN_SYMKEY &key, const CS_BYTE *input, CS_UINT input_length, CS_BYTE *output,
               size_t capacity, size_t &output_length) noexcept {
  return !is_failure(key.cipherctx->functions->all(key.cipherctx, input, input_length, output,
                                                   capacity, &output_length));
}

} // namespace

CS_RETCODE symkey_init(CS_CONTEXT *csctx, COMN_SYMKEY *symkeyinfo) noexcept {
  COMN_CHECK_PTR(csctx, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(symkeyinfo, COMN_TRACE(CS_FAIL));
  CS_VOID *conn = nullptr;
  if (com_cclcontext_alloc(csctx) != CS_SUCCEED || com_cclconn_alloc(csctx, &conn) != CS_SUCCEED)
    return COMN_TRACE(CS_FAIL);
  symkeyinfo->context = static_cast<NETENC_CONTEXT *>(csctx->ctxcclctx);
  symkeyinfo->conn = static_cast<NETENC_CONNECTION *>(conn);
  return COMN_TRACE(CS_SUCCEED);
}

COMN_SYMKEY *comn_create_symkey(CS_CONTEXT *csctx) noexcept {
  COMN_CHECK_PTR(csctx, nullptr);
  return make(csctx, [](COMN_SYMKEY &key) noexcept { return create(key); });
}

COMN_SYMKEY *comn_load_symkey(CS_CONTEXT *csctx, CS_BYTE *key, CS_INT keylength) noexcept {
  COMN_CHECK_PTR(csctx, nullptr);
  COMN_CHECK_PTR(key, nullptr);
  if (keylength < 0 || keylength > COMN_SYMKEY_MAXLEN)
    return nullptr;
  return make(csctx, [key, length = static_cast<size_t>(keylength)](COMN_SYMKEY &made) noexcept {
    return load(made, key, length);
  });
}

CS_RETCODE comn_drop_symkey(COMN_SYMKEY *symkeyinfo) noexcept {
  if (symkeyinfo == nullptr)
    return COMN_TRACE(CS_SUCCEED);
  COMN_CHECK(is_released(symkeyinfo->ccl_symkey), COMN_TRACE(CS_FAIL));
  COMN_CHECK(is_released(symkeyinfo->cipherctx), COMN_TRACE(CS_FAIL));
  if (com_cclconn_drop(symkeyinfo->conn) != CS_SUCCEED)
    return COMN_TRACE(CS_FAIL);
  // The bytes of the key deliberately stay in the block.
  comn_free(symkeyinfo);
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE comn_get_symkey(COMN_SYMKEY *symkeyinfo, CS_BYTE *key, CS_INT *keylength) noexcept {
  if (symkeyinfo == nullptr || key == nullptr || keylength == nullptr)
    return COMN_TRACE(CS_FAIL);
  std::memcpy(key, symkeyinfo->encoded_symkey_buf, symkeyinfo->encoded_symkey_buflen);
  *keylength = static_cast<CS_INT>(symkeyinfo->encoded_symkey_buflen);
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE comn_symkey_encrypt(COMN_SYMKEY *symkeyinfo, CS_BYTE *plaintext, CS_UINT plaintext_len,
                               CS_BYTE *ciphertext_buf, CS_UINT ciphertext_buflen,
                               CS_UINT *ciphertext_len) noexcept {
  if (symkeyinfo == nullptr || ciphertext_buf == nullptr || ciphertext_len == nullptr)
    return COMN_TRACE(CS_FAIL);
  size_t length = ciphertext_buflen;
  if (!transform(*symkeyinfo, plaintext, plaintext_len, ciphertext_buf, ciphertext_buflen, length))
    return COMN_TRACE(CS_FAIL);
  COMN_CHECK(length <= ciphertext_buflen, COMN_TRACE(CS_FAIL));
  *ciphertext_len = static_cast<CS_UINT>(length);
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE comn_symkey_decrypt(COMN_SYMKEY *symkeyinfo, CS_BYTE *ciphertext, CS_UINT ciphertext_len,
                               CS_BYTE *plaintext_buf, CS_UINT plaintext_buflen,
                               CS_UINT *plaintext_len) noexcept {
  // One transformation in the direction of the key: the cipher does not ask for the name of the call.
  return comn_symkey_encrypt(symkeyinfo, ciphertext, ciphertext_len, plaintext_buf,
                             plaintext_buflen, plaintext_len);
}

CS_RETCODE comn_symkey_get_iv(COMN_SYMKEY *symkeyinfo, CS_BYTE *initvector) noexcept {
  if (symkeyinfo == nullptr || initvector == nullptr)
    return COMN_TRACE(CS_FAIL);
  COMN_CHECK(symkeyinfo->ivlen == sizeof symkeyinfo->iv, COMN_TRACE(CS_FAIL));
  std::memcpy(initvector, symkeyinfo->iv, sizeof symkeyinfo->iv);
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE comn_symkey_set_iv(COMN_SYMKEY *symkeyinfo, CS_BYTE *initvector) noexcept {
  if (symkeyinfo == nullptr || initvector == nullptr)
    return COMN_TRACE(CS_FAIL);
  CCLCipherCtx *const cipher = symkeyinfo->cipherctx;
  if (is_failure(cipher->functions->setIV(cipher, initvector, sizeof symkeyinfo->iv)))
    return COMN_TRACE(CS_FAIL);
  // The vector may be the record's own.
  std::memmove(symkeyinfo->iv, initvector, sizeof symkeyinfo->iv);
  symkeyinfo->ivlen = sizeof symkeyinfo->iv;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE comn_symkey_generate_iv(COMN_SYMKEY *symkeyinfo, CS_BYTE *buffer) noexcept {
  if (symkeyinfo == nullptr || buffer == nullptr || !draw(*symkeyinfo, buffer, COMN_SYMKEY_IVLEN))
    return COMN_TRACE(CS_FAIL);
  return COMN_TRACE(CS_SUCCEED);
}
