// The public forms of the password cipher, and the memory scramble.
#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "any_address.h"
#include "checks.h"
#include "netenc.h"

int seed = 0;
ncl_once_flag com_encrypt_bytes_once_flag = NCL_ONCE_INIT;

namespace {

// What the hexadecimal form begins with.
constexpr char hex_prefix[] = "0x01";
constexpr size_t hex_prefix_length = sizeof hex_prefix - 1;

constexpr size_t scramble_alignment = 64;
constexpr CS_CHAR wipe = 42;

OCTET *octets(char *text) noexcept {
  return reinterpret_cast<OCTET *>(text);
}

// The value of a hexadecimal digit, or a negative number.
int digit_value(char digit) noexcept {
  if (digit >= '0' && digit <= '9')
    return digit - '0';
  if (digit >= 'a' && digit <= 'f')
    return digit - 'a' + 10;
  if (digit >= 'A' && digit <= 'F')
    return digit - 'A' + 10;
  return -1;
}

void set_seed() noexcept {
  std::srand(static_cast<unsigned>(std::time(nullptr)));
  seed = std::rand() >> 8;
}

uint32_t scramble_word(uint32_t word, uint32_t &key, int rotation) noexcept {
  return key = std::rotl(key ^ word, rotation);
}

uint32_t unscramble_word(uint32_t word, uint32_t &key, int rotation) noexcept {
  const uint32_t plain = std::rotr(word, rotation) ^ key;
  key = word;
  return plain;
}

// Runs a chain of words through `step`, which yields the new word and moves the key on. Both
// directions read the rotation of a word off the enciphered word before it.
template <uint32_t (*Step)(uint32_t, uint32_t &, int) noexcept>
void chain(CS_CHAR *bytes, size_t length, int start) noexcept {
  auto key = static_cast<uint32_t>(start);
  size_t at = 0;
  for (; length - at >= sizeof key; at += sizeof key) {
    const auto word = comn::load<uint32_t>(bytes + at);
    comn::store(bytes + at, Step(word, key, static_cast<int>(key & 31)));
  }
  for (; at < length; ++at, key >>= 8)
    bytes[at] = static_cast<CS_CHAR>(bytes[at] ^ static_cast<CS_CHAR>(key));
}

// Works on an aligned copy, which is wiped; without memory for one, on the buffer itself.
template <uint32_t (*Step)(uint32_t, uint32_t &, int) noexcept>
void chain_through_copy(CS_INT length, CS_CHAR *buffer, int start) noexcept {
  const auto size = static_cast<size_t>(length);
  auto *copy = static_cast<CS_CHAR *>(ncl_aligned_alloc(scramble_alignment, size));
  if (copy == nullptr) {
    chain<Step>(buffer, size, start);
    return;
  }
  std::memcpy(copy, buffer, size);
  chain<Step>(copy, size, start);
  std::memcpy(buffer, copy, size);
  com_secure_memset(copy, wipe, size);
  ncl_aligned_free(copy);
}

} // namespace

CS_RETCODE com_initialize_tds_strings(CS_VOID *, CS_BYTE *plaintext, CS_INT plaintext_length,
                                      CS_BYTE *salt, CS_INT saltlen, CS_BYTE *output,
                                      CS_INT *outlen) noexcept {
  COMN_CHECK(plaintext != nullptr || plaintext_length == 0, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(salt, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(output, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(outlen, COMN_TRACE(CS_FAIL));
  if (com__string_initialize(salt, saltlen, plaintext, plaintext_length, output, outlen) !=
      CS_SUCCEED)
    *outlen = 0;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com_uninitialize_tds_text(CS_VOID *, CS_BYTE *challenge, CS_INT, CS_BYTE *response,
                                     CS_INT *response_len) noexcept {
  COMN_CHECK_PTR(challenge, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(response, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(response_len, COMN_TRACE(CS_FAIL));
  com__uninitialize_tds_text(challenge, response);
  *response_len = COM_ENC_TDSLEN;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com_initialize_hex_strings(char *salt, int saltlen, char *plaintext, int plaintextlen,
                                      char *hextext, int *hextextlen) noexcept {
  if (plaintextlen < 1 || plaintextlen > COM_ENC_MAXTEXT)
    return COMN_TRACE(CS_FAIL);
  COMN_CHECK_PTR(salt, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(plaintext, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(hextext, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(hextextlen, COMN_TRACE(CS_FAIL));
  OCTET block[COM_ENC_BLOCKLEN];
  CS_INT blocklen;
  if (com__string_initialize(octets(salt), saltlen, octets(plaintext), plaintextlen, block,
                             &blocklen) != CS_SUCCEED)
    return COMN_TRACE(CS_FAIL);

  char *out = std::copy_n(hex_prefix, hex_prefix_length, hextext);
  for (const OCTET octet : block) {
    *out++ = "0123456789abcdef"[octet >> 4];
    *out++ = "0123456789abcdef"[octet & 15];
  }
  *hextextlen = COM_ENC_HEXLEN;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com_uninitialize_hex_strings(char *salt, int saltlen, char *hextext, int hextextlen,
                                        char *plaintext, int *plaintextlen) noexcept {
  if (hextextlen != COM_ENC_HEXLEN)
    return COMN_TRACE(CS_FAIL);
  COMN_CHECK_PTR(salt, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(hextext, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(plaintext, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(plaintextlen, COMN_TRACE(CS_FAIL));
  if (std::memcmp(hextext, hex_prefix, hex_prefix_length) != 0)
    return COMN_TRACE(CS_FAIL);
  OCTET block[COM_ENC_BLOCKLEN];
  const char *digits = hextext + hex_prefix_length;
  for (OCTET &octet : block) {
    const int high = digit_value(*digits++);
    const int low = digit_value(*digits++);
    if (high < 0 || low < 0)
      return COMN_TRACE(CS_FAIL);
    octet = static_cast<OCTET>(high << 4 | low);
  }
  CS_INT length;
  if (com__string_uninitialize(octets(salt), saltlen, block, COM_ENC_BLOCKLEN, octets(plaintext),
                               &length) != CS_SUCCEED)
    return COMN_TRACE(CS_FAIL);
  *plaintextlen = length;
  return COMN_TRACE(CS_SUCCEED);
}

void com__encrypt_bytes(CS_INT length, CS_CHAR *buffer, int start) noexcept {
  if (length >= 1)
    chain_through_copy<scramble_word>(length, buffer, start);
}

void com__decrypt_bytes(CS_INT length, CS_CHAR *buffer, int start) noexcept {
  if (length >= 1)
    chain_through_copy<unscramble_word>(length, buffer, start);
}

void com_encrypt_bytes(CS_CHAR *plaintext, CS_INT textlen) noexcept {
  if (textlen < 1)
    return;
  COMN_CHECK_PTR(plaintext);
  ncl_call_once(&com_encrypt_bytes_once_flag, set_seed);
  com__encrypt_bytes(textlen, plaintext, seed);
}

// Deliberate: nothing is seeded here, so this undoes only what com_encrypt_bytes of the same
// process did before.
void com_decrypt_bytes(CS_CHAR *enctext, CS_INT textlen) noexcept {
  if (textlen < 1)
    return;
  COMN_CHECK_PTR(enctext);
  com__decrypt_bytes(textlen, enctext, seed);
}
