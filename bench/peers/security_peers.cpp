#include "security_peers.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include <openssl/decoder.h>
#include <openssl/encoder.h>
#include <openssl/evp.h>
#include <openssl/rsa.h>

#include "long_hand_cipher.h"
#include "zrvcomn/netenc.h"

namespace {

using zrvtest::LongHandCipher;

const LongHandCipher &cipher() {
  static const LongHandCipher the_cipher(Com__Enkeys);
  return the_cipher;
}

LongHandCipher::Block eight_bytes(const unsigned char *bytes) {
  LongHandCipher::Block block;
  std::copy_n(bytes, block.size(), block.begin());
  return block;
}

} // namespace

void peer_string_block(const unsigned char *salt, const unsigned char *text, size_t length,
                       unsigned char *block) {
  const LongHandCipher::Bytes made =
      cipher().string_block(eight_bytes(salt), LongHandCipher::Bytes(text, text + length));
  std::copy(made.begin(), made.end(), block);
}

void peer_response(const unsigned char *challenge, unsigned char *response) {
  const LongHandCipher::Block made = cipher().response(eight_bytes(challenge));
  std::copy(made.begin(), made.end(), response);
}

void peer_scramble(unsigned char *bytes, size_t length, unsigned key) {
  void *const copy = std::aligned_alloc(64, (length + 63) / 64 * 64);
  if (copy == nullptr)
    return;
  const std::vector<unsigned char> made =
      zrvtest::scramble_by_hand(std::vector<unsigned char>(bytes, bytes + length), key);
  std::memcpy(copy, made.data(), length);
  std::memcpy(bytes, copy, length);
  std::memset(copy, 42, length);
  asm volatile("" : : "r"(copy) : "memory"); // or the block would not be wiped
  std::free(copy);
}

void *peer_aes_new(const unsigned char *key, const unsigned char *iv) {
  EVP_CIPHER_CTX *const context = EVP_CIPHER_CTX_new();
  EVP_EncryptInit_ex(context, EVP_aes_256_cbc(), nullptr, key, iv);
  return context;
}

size_t peer_aes_encrypt(void *cipher, const unsigned char *iv, const unsigned char *text,
                        size_t length, unsigned char *out) {
  auto *const context = static_cast<EVP_CIPHER_CTX *>(cipher);
  int whole = 0, rest = 0;
  if (EVP_EncryptInit_ex(context, nullptr, nullptr, nullptr, iv) != 1 ||
      EVP_EncryptUpdate(context, out, &whole, text, static_cast<int>(length)) != 1 ||
      EVP_EncryptFinal_ex(context, out + whole, &rest) != 1)
    std::abort();
  return static_cast<size_t>(whole) + static_cast<size_t>(rest);
}

void peer_aes_free(void *cipher) {
  EVP_CIPHER_CTX_free(static_cast<EVP_CIPHER_CTX *>(cipher));
}

void *peer_rsa_new(int bits) {
  return EVP_RSA_gen(static_cast<size_t>(bits));
}

size_t peer_rsa_public(void *pair, char *pem, size_t room) {
  OSSL_ENCODER_CTX *const encoder = OSSL_ENCODER_CTX_new_for_pkey(
      static_cast<EVP_PKEY *>(pair), EVP_PKEY_PUBLIC_KEY, "PEM", "pkcs1", nullptr);
  auto *out = reinterpret_cast<unsigned char *>(pem);
  size_t left = room;
  if (OSSL_ENCODER_to_data(encoder, &out, &left) != 1)
    std::abort();
  OSSL_ENCODER_CTX_free(encoder);
  return room - left;
}

size_t peer_rsa_encrypt(const char *pem, size_t pem_length, const unsigned char *text,
                        size_t length, unsigned char *out, size_t room) {
  EVP_PKEY *key = nullptr;
  OSSL_DECODER_CTX *const decoder = OSSL_DECODER_CTX_new_for_pkey(
      &key, nullptr, nullptr, "RSA", EVP_PKEY_PUBLIC_KEY, nullptr, nullptr);
  auto *data = reinterpret_cast<const unsigned char *>(pem);
  EVP_PKEY_CTX *context = nullptr;
  if (OSSL_DECODER_from_data(decoder, &data, &pem_length) != 1 ||
      (context = EVP_PKEY_CTX_new(key, nullptr)) == nullptr ||
      EVP_PKEY_encrypt_init(context) != 1 ||
      EVP_PKEY_CTX_set_rsa_padding(context, RSA_PKCS1_OAEP_PADDING) != 1 ||
      EVP_PKEY_encrypt(context, out, &room, text, length) != 1)
    std::abort();
  EVP_PKEY_CTX_free(context);
  OSSL_DECODER_CTX_free(decoder);
  EVP_PKEY_free(key);
  return room;
}

size_t peer_rsa_decrypt(void *pair, const unsigned char *cipher, size_t length, unsigned char *out,
                        size_t room) {
  EVP_PKEY_CTX *const context = EVP_PKEY_CTX_new(static_cast<EVP_PKEY *>(pair), nullptr);
  if (EVP_PKEY_decrypt_init(context) != 1 ||
      EVP_PKEY_CTX_set_rsa_padding(context, RSA_PKCS1_OAEP_PADDING) != 1 ||
      EVP_PKEY_decrypt(context, out, &room, cipher, length) != 1)
    std::abort();
  EVP_PKEY_CTX_free(context);
  return room;
}

void peer_rsa_free(void *pair) {
  EVP_PKEY_free(static_cast<EVP_PKEY *>(pair));
}
