#include "counting_provider.h"

#include <cstring>

#include "velcrypto_exports.h"

namespace {

zrvtest::ProviderControl control;

constexpr RC failure = -77;
constexpr uint8_t mask = 0x5A;

// Writes a call down; false when it is to fail.
bool step(const std::string &what) {
  control.log.push_back(what);
  return ++control.calls != control.fail_at;
}

std::string hex(const uint8_t *bytes, size_t length) {
  static constexpr char digits[] = "0123456789abcdef";
  std::string text;
  for (size_t i = 0; i < length; ++i)
    (text += digits[bytes[i] >> 4]) += digits[bytes[i] & 15];
  return text;
}

// ---- objects ----

// The one kind of object behind every interface: the list of functions, a name, a count.
template <class Interface>
struct Counted : Interface {
  const char *name;
  int references;
};

template <class Interface>
RC query_interface(Interface *, const char *, void **) {
  return failure;
}
template <class Interface>
RC add_ref(Interface *self) {
  ++static_cast<Counted<Interface> *>(self)->references;
  return 0;
}
template <class Interface>
RC release(Interface *self) {
  auto *const object = static_cast<Counted<Interface> *>(self);
  const std::string name = object->name;
  control.log.push_back("release " + name);
  if (--object->references == 0) {
    --control.live_objects;
    delete object;
  }
  return control.released_by.empty() || control.released_by == name ? control.released : 0;
}
template <class Interface>
RC set_property(Interface *, const char *, const void *, size_t) {
  return failure;
}
template <class Interface>
RC get_property(Interface *, const char *, void *, size_t *) {
  return failure;
}

#define COMMON(type)                                                                               \
  query_interface<type>, add_ref<type>, release<type>, set_property<type>, get_property<type>

template <class Interface, class Functions>
RC make(const std::string &what, const char *name, const Functions &functions, Interface **where) {
  if (!step(what))
    return failure;
  *where = new Counted<Interface>{{&functions}, name, 1};
  ++control.live_objects;
  return 0;
}

// The exclusive or, and the length that the test wants to see.
RC transform(const std::string &what, const uint8_t *input, size_t input_length, uint8_t *output,
             size_t capacity, size_t *output_length) {
  control.first_capacity = *output_length;
  if (!step(what + " " + std::to_string(input_length) + " into " + std::to_string(capacity)))
    return failure;
  if (input_length > capacity)
    return failure;
  for (size_t i = 0; i < input_length; ++i)
    output[i] = input[i] ^ mask;
  *output_length = control.excess == 0 ? input_length : capacity + control.excess;
  return 0;
}

RC all(CCLCipherCtx *, const uint8_t *input, size_t input_length, uint8_t *output, size_t capacity,
       size_t *output_length) {
  return transform("all", input, input_length, output, capacity, output_length);
}
RC set_key(CCLCipherCtx *, CCLSecretKey *key) {
  return step(std::string("setKey ") + static_cast<Counted<CCLSecretKey> *>(key)->name) ? 0
                                                                                        : failure;
}
RC set_iv(CCLCipherCtx *, const uint8_t *iv, size_t length) {
  return step("setIV " + hex(iv, length)) ? 0 : failure;
}
RC export_to_blob(CCLPublicKey *, CCLKeyEncodeFormat format, uint8_t *buffer, size_t *length) {
  if (!step("exportToBlob " + std::to_string(format) + " into " + std::to_string(*length)))
    return failure;
  static constexpr char text[] = "PEM";
  if (*length < 3)
    return failure;
  std::memcpy(buffer, text, 3);
  *length = 3;
  return 0;
}
RC init_encryption(CCLEncryptionCtx *, CCLPublicKey *) {
  return step("init encryption") ? 0 : failure;
}
RC encrypt(CCLEncryptionCtx *, const uint8_t *input, size_t input_length, uint8_t *output,
           size_t capacity, size_t *output_length) {
  return transform("encrypt", input, input_length, output, capacity, output_length);
}
RC init_decryption(CCLDecryptionCtx *, CCLPrivateKey *) {
  return step("init decryption") ? 0 : failure;
}
RC decrypt(CCLDecryptionCtx *, const uint8_t *input, size_t input_length, uint8_t *output,
           size_t capacity, size_t *output_length) {
  return transform("decrypt", input, input_length, output, capacity, output_length);
}

constexpr CCLAlgParamCipher_functions cipher_params_functions{COMMON(CCLAlgParamCipher)};
constexpr CCLAlgParamEncryption_functions encryption_params_functions{
    COMMON(CCLAlgParamEncryption)};
constexpr CCLAlgParamKeyPair_functions key_pair_params_functions{COMMON(CCLAlgParamKeyPair)};
constexpr CCLSecretKey_functions secret_key_functions{COMMON(CCLSecretKey)};
constexpr CCLPrivateKey_functions private_key_functions{COMMON(CCLPrivateKey)};
constexpr CCLPublicKey_functions public_key_functions{COMMON(CCLPublicKey), export_to_blob};
constexpr CCLCipherCtx_functions cipher_functions{COMMON(CCLCipherCtx), all, set_key, set_iv};
constexpr CCLEncryptionCtx_functions encryption_functions{COMMON(CCLEncryptionCtx), init_encryption,
                                                          encrypt};
constexpr CCLDecryptionCtx_functions decryption_functions{COMMON(CCLDecryptionCtx), init_decryption,
                                                          decrypt};

// ---- the factory ----

RC cipher_params(CCLCryptFactory *, const char *name, CCLAlgParamCipher **params) {
  return make(std::string("createAlgParamCipherByName ") + name, "cipher parameters",
              cipher_params_functions, params);
}
RC encryption_params(CCLCryptFactory *, const char *algorithm, const char *padding,
                     CCLAlgParamEncryption **params) {
  return make(std::string("createAlgParamEncryptionByParams ") + algorithm + " " + padding,
              "encryption parameters", encryption_params_functions, params);
}
RC cipher_encryption(CCLCryptFactory *, CCLAlgParamCipher *, CCLCipherCtx **context) {
  return make("createCipherCtxEncryption", "cipher", cipher_functions, context);
}
RC cipher_decryption(CCLCryptFactory *, CCLAlgParamCipher *, CCLCipherCtx **context) {
  return make("createCipherCtxDecryption", "cipher", cipher_functions, context);
}
RC secret_key(CCLCryptFactory *, const uint8_t *bytes, size_t length, CCLAlgParamCipher *,
              CCLSecretKey **key) {
  return make("createSecretKeyByBlob " + hex(bytes, length), "secret key", secret_key_functions,
              key);
}
RC key_pair_params(CCLCryptFactory *, size_t bits, CCLAlgParamKeyPair **params) {
  return make("createAlgParamKeyPairRSA " + std::to_string(bits), "key pair parameters",
              key_pair_params_functions, params);
}
RC key_pair(CCLCryptFactory *, CCLAlgParamKeyPair *, CCLPrivateKey **private_key,
            CCLPublicKey **public_key) {
  if (const RC result = make("createKeyPair", "private key", private_key_functions, private_key);
      result < 0)
    return result;
  *public_key = new Counted<CCLPublicKey>{{&public_key_functions}, "public key", 1};
  ++control.live_objects;
  return 0;
}
RC public_key(CCLCryptFactory *, const uint8_t *bytes, size_t length, CCLPublicKey **key) {
  return make("importPublicKey " + hex(bytes, length), "public key", public_key_functions, key);
}
RC encryption(CCLCryptFactory *, CCLAlgParamEncryption *, CCLEncryptionCtx **context) {
  return make("createEncryptionCtx", "encryption", encryption_functions, context);
}
RC decryption(CCLCryptFactory *, CCLAlgParamEncryption *, CCLDecryptionCtx **context) {
  return make("createDecryptionCtx", "decryption", decryption_functions, context);
}
// Bytes that count on, so that a test can tell them.
RC random(CCLCryptFactory *, uint8_t *bytes, size_t length) {
  if (!step("rndGet " + std::to_string(length)))
    return failure;
  for (size_t i = 0; i < length; ++i)
    bytes[i] = static_cast<uint8_t>(length + i);
  return 0;
}

constexpr CCLCryptFactory_functions factory_functions{COMMON(CCLCryptFactory),
                                                      cipher_params,
                                                      encryption_params,
                                                      cipher_encryption,
                                                      cipher_decryption,
                                                      secret_key,
                                                      key_pair_params,
                                                      key_pair,
                                                      public_key,
                                                      encryption,
                                                      decryption,
                                                      random};

// ---- lists ----

RC create_factory(CCLCryptFactory **factory, unsigned zero, unsigned other_zero) {
  return make("create_crypt_factory " + std::to_string(zero) + " " + std::to_string(other_zero),
              "factory", factory_functions, factory);
}

constexpr SEC_VELCCL_FUNCTIONS factories{{"VELCCL_1", 1}, nullptr, nullptr,
                                         create_factory,  nullptr, nullptr};
constexpr SEC_KEYCONVERT_FUNCTIONS key_conversions{{"SEC_KEYCONVERT_1", 1}};

RC get_api(unsigned zero, const char *name, void **api) {
  if (!step("get_API " + std::to_string(zero) + " " + name))
    return failure;
  ++control.live_apis;
  if (std::strcmp(name, "VELCCL_1") == 0)
    *api = const_cast<SEC_VELCCL_FUNCTIONS *>(&factories);
  else
    *api = const_cast<SEC_KEYCONVERT_FUNCTIONS *>(&key_conversions);
  return 0;
}

RC release_api(void **api) {
  control.log.push_back(std::string("release_API ") + static_cast<API_COMMON *>(*api)->name);
  --control.live_apis;
  *api = nullptr;
  return control.released_by.empty() ? control.released : 0;
}

RC release_list(CRYPTOLIB_F_LIST *) {
  control.log.push_back("release list");
  --control.live_lists;
  return 0;
}

constexpr CRYPTOLIB_F_LIST list_of_functions{release_list, nullptr, get_api, release_api, nullptr,
                                             nullptr,      nullptr, nullptr, nullptr,     nullptr};

} // namespace

zrvtest::ProviderControl *counting_provider() {
  return &control;
}

RC velcr_set_property_int(const char *name, int value) {
  control.property = value;
  return step(std::string("set ") + name + " " + std::to_string(value)) ? 0 : failure;
}

void cryptolib_set_memory_callback(void *(*allocate)(size_t),
                                   void *(*allocate_cleared)(size_t, size_t),
                                   void *(*resize)(void *, size_t), void (*release_block)(void *)) {
  control.log.push_back("memory");
  control.allocate = allocate;
  control.allocate_cleared = allocate_cleared;
  control.resize = resize;
  control.release = release_block;
}

RC cryptolib_get_f_list(unsigned version, const char *language, CRYPTOLIB_F_LIST **list,
                        unsigned *granted, const char *application, unsigned flags) {
  if (!step("list " + std::to_string(version) + " " + language + ", " + application + ", " +
            std::to_string(flags)))
    return failure;
  ++control.live_lists;
  *list = const_cast<CRYPTOLIB_F_LIST *>(&list_of_functions);
  *granted = version;
  return 0;
}

#define DEFINE_VELCRYPTO_CALL(name)                                                                \
  RC name() {                                                                                      \
    return failure;                                                                                \
  }
#define DEFINE_VELCRYPTO_MAKER(name)                                                               \
  void *name() {                                                                                   \
    return nullptr;                                                                                \
  }
#define DEFINE_VELCRYPTO_LIFE(name)                                                                \
  RC name() {                                                                                      \
    return 0;                                                                                      \
  }
#define DEFINE_VELCRYPTO_SET_MEMORY(name)
#define DEFINE_VELCRYPTO_SET_PROPERTY(name)
#define DEFINE(type, name) DEFINE_##type(name)
VELCRYPTO_NAMES(DEFINE)
