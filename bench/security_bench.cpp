// Benchmarks of the password cipher and of the memory scramble, against the same by hand.
#include <memory>
#include <vector>

#include <benchmark/benchmark.h>

#include "comparison.h"
#include "inputs.h"
#include "security_peers.h"
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

} // namespace

void register_comparisons() {
  compare_string_blocks(30);
  compare_string_blocks(8);
  compare_responses();
  compare_scrambles(16);
  compare_scrambles(256);
}

} // namespace zrvbench
