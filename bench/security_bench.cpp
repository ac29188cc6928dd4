// Benchmarks of the password cipher and of the memory scramble, against the same by hand, and of keys
// over the crypto provider, against EVP.
#include <memory>
#include <vector>

#include <benchmark/benchmark.h>

#include "comparison.h"
#include "inputs.h"
#include "security_peers.h"
#include "zrvcomn/comncrypto.h"
#include "zrvcomn/netenc.h"

namespace zrvbench {
namespace {

constexpr size_t salt_size = COM_ENC_SALTLEN;

// Salts and texts side by side; a pass takes them at every eighth byte.
using Bytes = std::shared_ptr<std::vector<CS_BYTE>>;

// Fewer than other operations have: each takes microseconds.
constexpr size_t calls = 1024;

Bytes random_bytes(size_t count) {
  Random random(22);
  auto bytes = std::make_shared<std::vector<CS_BYTE>>(count);
  for (CS_BYTE &byte : *bytes)
    byte = static_cast<CS_BYTE>(random_below(random, 256));
  return bytes;
}

void compare_string_blocks(CS_INT length) {
  const Bytes salts = random_bytes(calls * salt_size), texts = random_bytes(calls * 32);
  compare({"string block",
           "com_initialize_tds_strings",
           std::to_string(length) + " bytes",
           calls,
           [=] {
             CS_BYTE block[COM_ENC_BLOCKLEN];
             CS_INT block_length = 0;
             for (size_t i = 0; i < calls; ++i) {
               com_initialize_tds_strings(nullptr, &(*texts)[i * 32], length,
                                          &(*salts)[i * salt_size], salt_size, block,
                                          &block_length);
               benchmark::DoNotOptimize(block);
             }
           },
           {{"the cipher by hand", 0.6, [=] {
               CS_BYTE block[COM_ENC_BLOCKLEN];
               for (size_t i = 0; i < calls; ++i) {
                 peer_string_block(&(*salts)[i * salt_size], &(*texts)[i * 32],
                                   static_cast<size_t>(length), block);
                 benchmark::DoNotOptimize(block);
               }
             }}}});
}

void compare_responses() {
  const Bytes challenges = random_bytes(calls * COM_ENC_TDSLEN);
  compare({"response",
           "com_uninitialize_tds_text",
           "8 bytes",
           calls,
           [=] {
             CS_BYTE response[COM_ENC_TDSLEN];
             CS_INT length = 0;
             for (size_t i = 0; i < calls; ++i) {
               com_uninitialize_tds_text(nullptr, &(*challenges)[i * COM_ENC_TDSLEN],
                                         COM_ENC_TDSLEN, response, &length);
               benchmark::DoNotOptimize(response);
             }
           },
           {{"the cipher by hand", 0.6, [=] {
               CS_BYTE response[COM_ENC_TDSLEN];
               for (size_t i = 0; i < calls; ++i) {
                 peer_response(&(*challenges)[i * COM_ENC_TDSLEN], response);
                 benchmark::DoNotOptimize(response);
               }
             }}}});
}

void compare_scrambles(size_t length) {
  const Bytes secret = random_bytes(length);
  compare({"memory scramble",
           "com_encrypt_bytes",
           std::to_string(length) + " bytes",
           calls,
           [=] {
             for (size_t i = 0; i < calls; ++i) {
               com_encrypt_bytes(reinterpret_cast<CS_CHAR *>(secret->data()),
                                 static_cast<CS_INT>(length));
               benchmark::ClobberMemory();
             }
           },
           {{"the scramble by hand", 1.0, [=] {
               for (size_t i = 0; i < calls; ++i) {
                 peer_scramble(secret->data(), length, 0x345678);
                 benchmark::ClobberMemory();
               }
             }}}});
}

// ---- keys ----

// The calls whose goal is a ratio near 1 spend nearly all their time in OpenSSL on both sides.
constexpr int pair_bits = 2048;
constexpr size_t pair_size = pair_bits / 8;

// What the passes of keys share, for the whole run.
struct Keys {
  CS_CONTEXT context{};
  COMN_SYMKEY *key = comn_create_symkey(&context);
  COMN_KEYPAIR *pair = comn_keypair_create(&context, pair_bits);
  void *peer_key = peer_aes_new(key->encoded_symkey_buf, key->iv);
  void *peer_pair = peer_rsa_new(pair_bits);

  Keys() = default;
  ~Keys() {
    peer_rsa_free(peer_pair);
    peer_aes_free(peer_key);
    comn_keypair_delete(pair);
    comn_drop_symkey(key);
    com_cclcontext_drop(&context);
  }
  Keys(const Keys &) = delete;
  Keys &operator=(const Keys &) = delete;

  size_t encrypt(const std::vector<CS_BYTE> &text, std::vector<CS_BYTE> &out) {
    CS_INT length = 0;
    com_encrypt_string(context.ctxcclctx, pair->conn, const_cast<CS_BYTE *>(text.data()),
                       static_cast<CS_INT>(text.size()), comn_keypair_get_public_key(pair),
                       static_cast<CS_INT>(comn_keypair_get_public_key_length(pair)), out.data(),
                       static_cast<CS_INT>(out.size()), &length);
    return static_cast<size_t>(length);
  }
  const char *pem() const {
    return reinterpret_cast<const char *>(comn_keypair_get_public_key(pair));
  }
};

void compare_aes(const std::shared_ptr<Keys> &keys, size_t length, double goal) {
  const Bytes text = random_bytes(length), out = random_bytes(length + COMN_SYMKEY_IVLEN);
  const size_t texts = (size_t{1} << 20) / length;
  compare({"AES-256-CBC",
           "comn_symkey_encrypt",
           std::to_string(length) + " bytes",
           texts,
           [=] {
             CS_UINT used = 0;
             for (size_t i = 0; i < texts; ++i) {
               comn_symkey_encrypt(keys->key, text->data(), static_cast<CS_UINT>(length),
                                   out->data(), static_cast<CS_UINT>(out->size()), &used);
               benchmark::DoNotOptimize(used);
             }
           },
           {{"EVP, context kept", goal, [=] {
               for (size_t i = 0; i < texts; ++i)
                 benchmark::DoNotOptimize(peer_aes_encrypt(keys->peer_key, keys->key->iv,
                                                           text->data(), length, out->data()));
             }}}});
}

void compare_oaep(const std::shared_ptr<Keys> &keys) {
  constexpr size_t texts = 8;
  const Bytes text = random_bytes(30), out = random_bytes(pair_size);
  compare({"RSA-OAEP encryption",
           "com_encrypt_string",
           "2048 bits, 30 bytes",
           texts,
           [=] {
             for (size_t i = 0; i < texts; ++i)
               benchmark::DoNotOptimize(keys->encrypt(*text, *out));
           },
           {{"EVP, key from PEM", 1.05, [=] {
               for (size_t i = 0; i < texts; ++i)
                 benchmark::DoNotOptimize(
                     peer_rsa_encrypt(keys->pem(), comn_keypair_get_public_key_length(keys->pair),
                                      text->data(), text->size(), out->data(), out->size()));
             }}}});

  const Bytes cipher = random_bytes(pair_size), peer_cipher = random_bytes(pair_size);
  keys->encrypt(*text, *cipher);
  char pem[pair_bits];
  const size_t pem_length = peer_rsa_public(keys->peer_pair, pem, sizeof pem);
  peer_rsa_encrypt(pem, pem_length, text->data(), text->size(), peer_cipher->data(),
                   peer_cipher->size());
  compare({"RSA-OAEP decryption",
           "comn_keypair_privkey_decrypt",
           "2048 bits, 30 bytes",
           texts,
           [=] {
             CS_UINT used = 0;
             for (size_t i = 0; i < texts; ++i) {
               comn_keypair_privkey_decrypt(keys->pair, cipher->data(), pair_size, out->data(),
                                            pair_size, &used);
               benchmark::DoNotOptimize(used);
             }
           },
           {{"EVP", 1.05, [=] {
               for (size_t i = 0; i < texts; ++i)
                 benchmark::DoNotOptimize(peer_rsa_decrypt(keys->peer_pair, peer_cipher->data(),
                                                           pair_size, out->data(), pair_size));
             }}}});
}

} // namespace

void register_comparisons() {
  compare_string_blocks(30);
  compare_string_blocks(8);
  compare_responses();
  compare_scrambles(16);
  compare_scrambles(256);
  const auto keys = std::make_shared<Keys>();
  compare_aes(keys, 1024, 1.15);
  compare_aes(keys, 65536, 1.03);
  compare_oaep(keys);
}

} // namespace zrvbench
