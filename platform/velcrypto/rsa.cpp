// RSA with OAEP over EVP.
#include "rsa.h"

#include <openssl/crypto.h>
#include <openssl/decoder.h>
#include <openssl/encoder.h>
#include <openssl/evp.h>
#include <openssl/rsa.h>

namespace velcrypto {

namespace {

// Owns one reference of a key of EVP's.
template <class Derived, class Interface>
class Key : public Object<Derived, Interface> {
public:
  explicit Key(EVP_PKEY *key) noexcept : evp(key) {}
  ~Key() { EVP_PKEY_free(evp); } // wipes what is private

  EVP_PKEY *const evp;
};

class PrivateKey : public Key<PrivateKey, CCLPrivateKey> {
public:
  static constexpr char name[] = "CCLPrivateKey";
  static const CCLPrivateKey_functions functions;
  using Key::Key;
};

class PublicKey : public Key<PublicKey, CCLPublicKey> {
public:
  static constexpr char name[] = "CCLPublicKey";
  static const CCLPublicKey_functions functions;
  using Key::Key;
};

// What encryption and decryption share: a context of EVP for the key that was set last.
template <class Derived, class Interface>
class Work : public Object<Derived, Interface> {
public:
  ~Work() { EVP_PKEY_CTX_free(evp); }

protected:
  RC start(EVP_PKEY *key, int (*init)(EVP_PKEY_CTX *)) noexcept {
    const kernel::ErrorQueue errors;
    EVP_PKEY_CTX *const fresh = EVP_PKEY_CTX_new_from_pkey(kernel::context(), key, nullptr);
    if (fresh == nullptr || init(fresh) != 1 ||
        EVP_PKEY_CTX_set_rsa_padding(fresh, RSA_PKCS1_OAEP_PADDING) != 1) {
      EVP_PKEY_CTX_free(fresh);
      return VELCRYPTO_EDATA;
    }
    EVP_PKEY_CTX_free(evp);
    evp = fresh;
    return VELCRYPTO_OK;
  }

  size_t key_size() const noexcept {
    return static_cast<size_t>(EVP_PKEY_get_size(EVP_PKEY_CTX_get0_pkey(evp)));
  }

  EVP_PKEY_CTX *evp = nullptr;
};

class Encryption : public Work<Encryption, CCLEncryptionCtx> {
public:
  static constexpr char name[] = "CCLEncryptionCtx";
  static const CCLEncryptionCtx_functions functions;

  RC init(const PublicKey &key) noexcept { return start(key.evp, EVP_PKEY_encrypt_init); }

  RC encrypt(const uint8_t *input, size_t input_length, uint8_t *output, size_t capacity,
             size_t &output_length) noexcept {
    if (evp == nullptr)
      return VELCRYPTO_ESTATE;
    // EVP does not look at the room.
    if (capacity < key_size())
      return VELCRYPTO_ESPACE;
    const kernel::ErrorQueue errors;
    size_t length = capacity;
    if (EVP_PKEY_encrypt(evp, output, &length, input, input_length) != 1)
      return VELCRYPTO_EDATA;
    output_length = length;
    return VELCRYPTO_OK;
  }
};

class Decryption : public Work<Decryption, CCLDecryptionCtx> {
public:
  static constexpr char name[] = "CCLDecryptionCtx";
  static const CCLDecryptionCtx_functions functions;

  RC init(const PrivateKey &key) noexcept { return start(key.evp, EVP_PKEY_decrypt_init); }

  // By way of a buffer that holds whatever a key can yield, since EVP wants room for a whole block.
  RC decrypt(const uint8_t *input, size_t input_length, uint8_t *output, size_t capacity,
             size_t &output_length) noexcept {
    if (evp == nullptr)
      return VELCRYPTO_ESTATE;
    // OpenSSL takes a text without its leading zeros too.
    if (input_length != key_size())
      return VELCRYPTO_EDATA;
    const kernel::ErrorQueue errors;
    uint8_t plain[largest_rsa_key / 8];
    size_t length = sizeof plain;
    RC result = VELCRYPTO_EDATA;
    if (EVP_PKEY_decrypt(evp, plain, &length, input, input_length) == 1) {
      if (length <= capacity) {
        std::memcpy(output, plain, length);
        output_length = length;
        result = VELCRYPTO_OK;
      } else {
        result = VELCRYPTO_ESPACE;
      }
    }
    OPENSSL_cleanse(plain, key_size());
    return result;
  }
};

// How OpenSSL calls the formats of public keys.
struct Encoding {
  const char *form, *structure;
};

bool find_encoding(CCLKeyEncodeFormat format, Encoding &encoding) noexcept {
  switch (format) {
  case CCLKeyEncodeFormat_Raw:
    encoding = {"DER", "pkcs1"};
    return true;
  case CCLKeyEncodeFormat_KeyInfo:
    encoding = {"DER", "SubjectPublicKeyInfo"};
    return true;
  case CCLKeyEncodeFormat_Raw_PEM:
    encoding = {"PEM", "pkcs1"};
    return true;
  case CCLKeyEncodeFormat_KeyInfo_PEM:
    encoding = {"PEM", "SubjectPublicKeyInfo"};
    return true;
  default:
    return false;
  }
}

RC export_to_blob(CCLPublicKey *self, CCLKeyEncodeFormat format, uint8_t *buffer,
                  size_t *length) noexcept {
  if (self == nullptr || buffer == nullptr || length == nullptr)
    return VELCRYPTO_EINVAL;
  Encoding encoding;
  if (!find_encoding(format, encoding))
    return VELCRYPTO_EUNSUPPORTED;
  const kernel::ErrorQueue errors;
  OSSL_ENCODER_CTX *const encoder = OSSL_ENCODER_CTX_new_for_pkey(
      PublicKey::of(self).evp, EVP_PKEY_PUBLIC_KEY, encoding.form, encoding.structure, nullptr);
  if (encoder == nullptr)
    return VELCRYPTO_EMEMORY;
  unsigned char *blob = nullptr;
  size_t size = 0;
  RC result = VELCRYPTO_EDATA;
  if (OSSL_ENCODER_to_data(encoder, &blob, &size) == 1) {
    if (size <= *length) {
      std::memcpy(buffer, blob, size);
      *length = size;
      result = VELCRYPTO_OK;
    } else {
      result = VELCRYPTO_ESPACE;
    }
  }
  OPENSSL_free(blob);
  OSSL_ENCODER_CTX_free(encoder);
  return result;
}

RC init_encryption(CCLEncryptionCtx *self, CCLPublicKey *key) noexcept {
  if (self == nullptr || key == nullptr)
    return VELCRYPTO_EINVAL;
  return Encryption::of(self).init(PublicKey::of(key));
}

RC encrypt_text(CCLEncryptionCtx *self, const uint8_t *input, size_t input_length, uint8_t *output,
                size_t capacity, size_t *output_length) noexcept {
  if (self == nullptr || (input == nullptr && input_length != 0) || output == nullptr ||
      output_length == nullptr)
    return VELCRYPTO_EINVAL;
  return Encryption::of(self).encrypt(input, input_length, output, capacity, *output_length);
}

RC init_decryption(CCLDecryptionCtx *self, CCLPrivateKey *key) noexcept {
  if (self == nullptr || key == nullptr)
    return VELCRYPTO_EINVAL;
  return Decryption::of(self).init(PrivateKey::of(key));
}

RC decrypt_text(CCLDecryptionCtx *self, const uint8_t *input, size_t input_length, uint8_t *output,
                size_t capacity, size_t *output_length) noexcept {
  if (self == nullptr || input == nullptr || output == nullptr || output_length == nullptr)
    return VELCRYPTO_EINVAL;
  return Decryption::of(self).decrypt(input, input_length, output, capacity, *output_length);
}

constinit const CCLPrivateKey_functions PrivateKey::functions{VELCRYPTO_COMMON(PrivateKey)};
constinit const CCLPublicKey_functions PublicKey::functions{VELCRYPTO_COMMON(PublicKey),
                                                            export_to_blob};
constinit const CCLEncryptionCtx_functions Encryption::functions{VELCRYPTO_COMMON(Encryption),
                                                                 init_encryption, encrypt_text};
constinit const CCLDecryptionCtx_functions Decryption::functions{VELCRYPTO_COMMON(Decryption),
                                                                 init_decryption, decrypt_text};

// A new pair of EVP's, or null.
EVP_PKEY *generate(size_t bits) noexcept {
  EVP_PKEY *pair = nullptr;
  EVP_PKEY_CTX *const context = EVP_PKEY_CTX_new_from_name(kernel::context(), "RSA", nullptr);
  if (context != nullptr && EVP_PKEY_keygen_init(context) == 1 &&
      EVP_PKEY_CTX_set_rsa_keygen_bits(context, static_cast<int>(bits)) == 1)
    EVP_PKEY_generate(context, &pair);
  EVP_PKEY_CTX_free(context);
  return pair;
}

// What asks for a pass phrase gets none: nobody is to be prompted.
int no_passphrase(char *, int, int, void *) {
  return -1;
}

} // namespace

constinit const CCLAlgParamKeyPair_functions KeyPairParams::functions{
    VELCRYPTO_COMMON(KeyPairParams)};
constinit const CCLAlgParamEncryption_functions EncryptionParams::functions{
    VELCRYPTO_COMMON(EncryptionParams)};

RC make_key_pair(const KeyPairParams &params, CCLPrivateKey **private_key,
                 CCLPublicKey **public_key) noexcept {
  const kernel::ErrorQueue errors;
  EVP_PKEY *const pair = generate(params.bits);
  if (pair == nullptr)
    return VELCRYPTO_EDATA;
  PrivateKey *const secret = PrivateKey::make(pair);
  if (secret == nullptr) {
    EVP_PKEY_free(pair);
    return VELCRYPTO_EMEMORY;
  }
  PublicKey *const open = PublicKey::make(pair);
  if (open == nullptr) {
    PrivateKey::release(secret);
    return VELCRYPTO_EMEMORY;
  }
  EVP_PKEY_up_ref(pair);
  *private_key = secret;
  *public_key = open;
  return VELCRYPTO_OK;
}

RC import_public_key(const uint8_t *bytes, size_t length, CCLPublicKey **key) noexcept {
  const kernel::ErrorQueue errors;
  EVP_PKEY *imported = nullptr;
  OSSL_DECODER_CTX *const decoder = OSSL_DECODER_CTX_new_for_pkey(
      &imported, nullptr, nullptr, "RSA", EVP_PKEY_PUBLIC_KEY, kernel::context(), nullptr);
  if (decoder == nullptr)
    return VELCRYPTO_EMEMORY;
  const unsigned char *data = bytes;
  size_t left = length;
  const bool is_decoded =
      OSSL_DECODER_CTX_set_pem_password_cb(decoder, no_passphrase, nullptr) == 1 &&
      OSSL_DECODER_from_data(decoder, &data, &left) == 1;
  OSSL_DECODER_CTX_free(decoder);
  RC result = VELCRYPTO_EDATA;
  if (is_decoded) {
    const auto bits = static_cast<size_t>(EVP_PKEY_get_bits(imported));
    if (bits >= smallest_rsa_key && bits <= largest_rsa_key)
      result = deliver(PublicKey::make(imported), key);
  }
  if (result < 0)
    EVP_PKEY_free(imported);
  return result;
}

RC make_encryption(CCLEncryptionCtx **context) noexcept {
  return deliver(Encryption::make(), context);
}

RC make_decryption(CCLDecryptionCtx **context) noexcept {
  return deliver(Decryption::make(), context);
}

} // namespace velcrypto
