// RSA: parameters, key pairs, encryption and decryption with OAEP.
#ifndef VELCRYPTO_RSA_H
#define VELCRYPTO_RSA_H

#include "object.h"

namespace velcrypto {

// In bits: what OpenSSL makes at least and uses at most.
constexpr size_t smallest_rsa_key = 512;
constexpr size_t largest_rsa_key = 16384;

class KeyPairParams : public Object<KeyPairParams, CCLAlgParamKeyPair> {
public:
  static constexpr char name[] = "CCLAlgParamKeyPair";
  static const CCLAlgParamKeyPair_functions functions;

  explicit KeyPairParams(size_t key_bits) noexcept : bits(key_bits) {}

  const size_t bits;
};

class EncryptionParams : public Object<EncryptionParams, CCLAlgParamEncryption> {
public:
  static constexpr char name[] = "CCLAlgParamEncryption";
  static const CCLAlgParamEncryption_functions functions;
};

RC make_key_pair(const KeyPairParams &params, CCLPrivateKey **private_key,
                 CCLPublicKey **public_key) noexcept;
RC import_public_key(const uint8_t *bytes, size_t length, CCLPublicKey **key) noexcept;
RC make_encryption(CCLEncryptionCtx **context) noexcept;
RC make_decryption(CCLDecryptionCtx **context) noexcept;

} // namespace velcrypto

#endif
