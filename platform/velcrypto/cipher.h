// AES-256 in CBC mode: parameters, keys, ciphers in one direction.
#ifndef VELCRYPTO_CIPHER_H
#define VELCRYPTO_CIPHER_H

#include "object.h"

namespace velcrypto {

constexpr size_t aes_key_size = 32;
constexpr size_t aes_block_size = 16;

class CipherParams : public Object<CipherParams, CCLAlgParamCipher> {
public:
  static constexpr char name[] = "CCLAlgParamCipher";
  static const CCLAlgParamCipher_functions functions;
};

class SecretKey : public Object<SecretKey, CCLSecretKey> {
public:
  static constexpr char name[] = "CCLSecretKey";
  static const CCLSecretKey_functions functions;

  explicit SecretKey(const uint8_t *key) noexcept { std::memcpy(bytes, key, sizeof bytes); }
  ~SecretKey();

  const uint8_t *data() const noexcept { return bytes; }

private:
  uint8_t bytes[aes_key_size];
};

// A new cipher, or what went wrong.
RC make_cipher(bool encrypts, CCLCipherCtx **context) noexcept;

} // namespace velcrypto

#endif
