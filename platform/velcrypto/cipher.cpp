// AES-256 in CBC mode with the padding of PKCS #7.
#include "cipher.h"

#include <climits>

#include <openssl/crypto.h>
#include <openssl/evp.h>

namespace velcrypto {

namespace {

// The lengths of EVP are ints, and encrypting adds up to a block.
constexpr size_t longest_input = INT_MAX - aes_block_size;

class Cipher : public Object<Cipher, CCLCipherCtx> {
public:
  static constexpr char name[] = "CCLCipherCtx";
  static const CCLCipherCtx_functions functions;

  Cipher(EVP_CIPHER_CTX *context, bool is_encryption) noexcept
      : evp(context), encrypts(is_encryption) {}
  ~Cipher() { EVP_CIPHER_CTX_free(evp); } // wipes the key

  RC set_key(const SecretKey &key) noexcept {
    const kernel::ErrorQueue errors;
    has_key = EVP_CipherInit_ex2(evp, kernel::aes(), key.data(), nullptr, encrypts, nullptr) == 1;
    return has_key ? VELCRYPTO_OK : VELCRYPTO_EDATA;
  }

  RC set_iv(const uint8_t *bytes, size_t length) noexcept {
    if (length != sizeof iv)
      return VELCRYPTO_EINVAL;
    std::memcpy(iv, bytes, sizeof iv);
    has_iv = true;
    return VELCRYPTO_OK;
  }

  RC transform(const uint8_t *input, size_t input_length, uint8_t *output, size_t capacity,
               size_t &output_length) noexcept {
    if (!has_key || !has_iv)
      return VELCRYPTO_ESTATE;
    if (input_length > longest_input)
      return VELCRYPTO_EINVAL;
    const kernel::ErrorQueue errors;
    if (EVP_CipherInit_ex2(evp, nullptr, nullptr, iv, -1, nullptr) != 1)
      return VELCRYPTO_EDATA;
    return encrypts ? encrypt(input, input_length, output, capacity, output_length)
                    : decrypt(input, input_length, output, capacity, output_length);
  }

private:
  RC encrypt(const uint8_t *input, size_t input_length, uint8_t *output, size_t capacity,
             size_t &output_length) noexcept {
    if (capacity < (input_length / aes_block_size + 1) * aes_block_size)
      return VELCRYPTO_ESPACE;
    int whole = 0, rest = 0;
    if (EVP_CipherUpdate(evp, output, &whole, input, static_cast<int>(input_length)) != 1 ||
        EVP_CipherFinal_ex(evp, output + whole, &rest) != 1)
      return VELCRYPTO_EDATA;
    output_length = static_cast<size_t>(whole) + static_cast<size_t>(rest);
    return VELCRYPTO_OK;
  }

  // All blocks but the last go straight to their place; the last one, with the padding, waits until
  // it is known to be sound and to fit.
  RC decrypt(const uint8_t *input, size_t input_length, uint8_t *output, size_t capacity,
             size_t &output_length) noexcept {
    if (input_length == 0 || input_length % aes_block_size != 0)
      return VELCRYPTO_EDATA;
    if (capacity < input_length - aes_block_size)
      return VELCRYPTO_ESPACE;
    int whole = 0, rest = 0;
    uint8_t last[aes_block_size];
    RC result = VELCRYPTO_EDATA;
    if (EVP_CipherUpdate(evp, output, &whole, input, static_cast<int>(input_length)) == 1 &&
        EVP_CipherFinal_ex(evp, last, &rest) == 1) {
      const size_t length = static_cast<size_t>(whole) + static_cast<size_t>(rest);
      if (length <= capacity) {
        std::memcpy(output + whole, last, static_cast<size_t>(rest));
        output_length = length;
        result = VELCRYPTO_OK;
      } else {
        result = VELCRYPTO_ESPACE;
      }
    }
    if (result < 0)
      OPENSSL_cleanse(output, static_cast<size_t>(whole));
    OPENSSL_cleanse(last, sizeof last);
    return result;
  }

  EVP_CIPHER_CTX *const evp;
  const bool encrypts;
  bool has_key = false, has_iv = false;
  uint8_t iv[aes_block_size];
};

RC transform_text(CCLCipherCtx *self, const uint8_t *input, size_t input_length, uint8_t *output,
                  size_t capacity, size_t *output_length) noexcept {
  if (self == nullptr || (input == nullptr && input_length != 0) || output == nullptr ||
      output_length == nullptr)
    return VELCRYPTO_EINVAL;
  return Cipher::of(self).transform(input, input_length, output, capacity, *output_length);
}

RC set_cipher_key(CCLCipherCtx *self, CCLSecretKey *key) noexcept {
  if (self == nullptr || key == nullptr)
    return VELCRYPTO_EINVAL;
  return Cipher::of(self).set_key(SecretKey::of(key));
}

RC set_cipher_iv(CCLCipherCtx *self, const uint8_t *iv, size_t length) noexcept {
  if (self == nullptr || iv == nullptr)
    return VELCRYPTO_EINVAL;
  return Cipher::of(self).set_iv(iv, length);
}

constinit const CCLCipherCtx_functions Cipher::functions{VELCRYPTO_COMMON(Cipher), transform_text,
                                                         set_cipher_key, set_cipher_iv};

} // namespace

constinit const CCLAlgParamCipher_functions CipherParams::functions{VELCRYPTO_COMMON(CipherParams)};
constinit const CCLSecretKey_functions SecretKey::functions{VELCRYPTO_COMMON(SecretKey)};

SecretKey::~SecretKey() {
  OPENSSL_cleanse(bytes, sizeof bytes);
}

RC make_cipher(bool encrypts, CCLCipherCtx **context) noexcept {
  EVP_CIPHER_CTX *const evp = EVP_CIPHER_CTX_new();
  if (evp == nullptr)
    return VELCRYPTO_EMEMORY;
  const RC result = deliver(Cipher::make(evp, encrypts), context);
  if (result < 0)
    EVP_CIPHER_CTX_free(evp);
  return result;
}

} // namespace velcrypto
