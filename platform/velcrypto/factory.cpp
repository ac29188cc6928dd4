// The factory: looks at the arguments, and leaves the work to the objects.
#include "factory.h"

#include <openssl/rand.h>

#include "cipher.h"
#include "rsa.h"

namespace velcrypto {

namespace {

// In bits: random bytes serve as keys of AES-256.
constexpr unsigned random_strength = 256;

class Factory : public Object<Factory, CCLCryptFactory> {
public:
  static constexpr char name[] = "CCLCryptFactory";
  static const CCLCryptFactory_functions functions;
};

// True when all pointers are there.
template <class... Pointers>
bool are_given(const Pointers *...pointers) noexcept {
  return (... && (pointers != nullptr));
}

RC cipher_params_by_name(CCLCryptFactory *self, const char *name,
                         CCLAlgParamCipher **params) noexcept {
  if (!are_given(self, name, params))
    return VELCRYPTO_EINVAL;
  if (std::strcmp(name, "AES256;CBC") != 0)
    return VELCRYPTO_EUNSUPPORTED;
  return deliver(CipherParams::make(), params);
}

RC encryption_params(CCLCryptFactory *self, const char *algorithm, const char *padding,
                     CCLAlgParamEncryption **params) noexcept {
  if (!are_given(self, algorithm, padding, params))
    return VELCRYPTO_EINVAL;
  if (std::strcmp(algorithm, "RSA") != 0 || std::strcmp(padding, "PKCS_EME_OAEP") != 0)
    return VELCRYPTO_EUNSUPPORTED;
  return deliver(EncryptionParams::make(), params);
}

template <bool Encrypts>
RC cipher(CCLCryptFactory *self, CCLAlgParamCipher *params, CCLCipherCtx **context) noexcept {
  if (!are_given(self, params, context))
    return VELCRYPTO_EINVAL;
  return make_cipher(Encrypts, context);
}

RC secret_key(CCLCryptFactory *self, const uint8_t *bytes, size_t length, CCLAlgParamCipher *params,
              CCLSecretKey **key) noexcept {
  if (!are_given(self, bytes, params, key) || length != aes_key_size)
    return VELCRYPTO_EINVAL;
  return deliver(SecretKey::make(bytes), key);
}

RC key_pair_params(CCLCryptFactory *self, size_t bits, CCLAlgParamKeyPair **params) noexcept {
  if (!are_given(self, params) || bits < smallest_rsa_key || bits > largest_rsa_key)
    return VELCRYPTO_EINVAL;
  return deliver(KeyPairParams::make(bits), params);
}

RC key_pair(CCLCryptFactory *self, CCLAlgParamKeyPair *params, CCLPrivateKey **private_key,
            CCLPublicKey **public_key) noexcept {
  if (!are_given(self, params, private_key, public_key))
    return VELCRYPTO_EINVAL;
  return make_key_pair(KeyPairParams::of(params), private_key, public_key);
}

RC public_key(CCLCryptFactory *self, const uint8_t *bytes, size_t length,
              CCLPublicKey **key) noexcept {
  if (!are_given(self, bytes, key))
    return VELCRYPTO_EINVAL;
  return import_public_key(bytes, length, key);
}

RC encryption(CCLCryptFactory *self, CCLAlgParamEncryption *params,
              CCLEncryptionCtx **context) noexcept {
  if (!are_given(self, params, context))
    return VELCRYPTO_EINVAL;
  return make_encryption(context);
}

RC decryption(CCLCryptFactory *self, CCLAlgParamEncryption *params,
              CCLDecryptionCtx **context) noexcept {
  if (!are_given(self, params, context))
    return VELCRYPTO_EINVAL;
  return make_decryption(context);
}

RC random(CCLCryptFactory *self, uint8_t *bytes, size_t length) noexcept {
  if (!are_given(self, bytes))
    return VELCRYPTO_EINVAL;
  const kernel::ErrorQueue errors;
  return RAND_priv_bytes_ex(kernel::context(), bytes, length, random_strength) == 1
             ? VELCRYPTO_OK
             : VELCRYPTO_EKERNEL;
}

constinit const CCLCryptFactory_functions Factory::functions{VELCRYPTO_COMMON(Factory),
                                                             cipher_params_by_name,
                                                             encryption_params,
                                                             cipher<true>,
                                                             cipher<false>,
                                                             secret_key,
                                                             key_pair_params,
                                                             key_pair,
                                                             public_key,
                                                             encryption,
                                                             decryption,
                                                             random};

} // namespace

RC make_factory(CCLCryptFactory **factory) noexcept {
  return deliver(Factory::make(), factory);
}

} // namespace velcrypto
