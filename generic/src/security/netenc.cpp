// The password cipher: the working key table, salted blocks, string blocks and the response to a
// challenge.
//
// The subkeys of every key are kept once the table is built, 32 KB that all contexts of the process
// share: running the key schedule nine times for each block took most of the time.
#include <algorithm>
#include <cstdint>

#include "checks.h"
#include "ennkeys.h"
#include "feal.h"

using namespace comn::feal;

OCTET Com__Netkey[256][33];
ncl_once_flag com_init_text_mem_once_flag = NCL_ONCE_INIT;

namespace {

constexpr int table_rows = 256;
constexpr int stored_row_size = 32;
constexpr int keys_per_row = stored_row_size / key_size;

// Rows 0 and 1 are the seeds of the build; the keys follow.
constexpr int first_key_row = 2;
constexpr int key_rows = table_rows - first_key_row;

// Row 0 is stored with this added to each byte.
constexpr int first_row_offset = 87;

// A string block is four cipher blocks, its text padded with this and wiped with that.
constexpr int padded_size = keys_per_row * block_size;
constexpr OCTET padding = 0x5C;
constexpr CS_CHAR wipe = 42;

OCTET subkeys[key_rows][keys_per_row][subkeys_size];

constexpr bool is_block(CS_INT block) noexcept {
  return block >= 0 && block < keys_per_row;
}

void make_ready() noexcept {
  ncl_call_once(&com_init_text_mem_once_flag, com_init_text_mem);
}

const OCTET *first_subkeys(const OCTET *salt, CS_INT block) noexcept {
  // A salt byte of 254 or 255 wraps to the first two rows.
  const int index = salt[0] < key_rows ? salt[0] : salt[0] - key_rows;
  return subkeys[index][block];
}

const OCTET *chain_subkeys(const OCTET *salt, int k, CS_INT block) noexcept {
  return subkeys[(salt[k] + k) * 3 % key_rows][block];
}

// Never zero, since one bit is always set, so the other branch of each step below is never taken.
constexpr int step_mask(const OCTET *salt, int k) noexcept {
  return 1 << (7 - k) | salt[k];
}

} // namespace

void com_init_text_mem() noexcept {
  for (int i = 0; i < stored_row_size; ++i)
    Com__Netkey[0][i] = static_cast<OCTET>(own_Com__Enkeys[0][i] - first_row_offset);
  for (int at = 0; at < stored_row_size; at += key_size) {
    OCTET row_subkeys[subkeys_size];
    schedule(own_Com__Enkeys[0] + at, row_subkeys);
    store_block(Com__Netkey[1] + at, decipher(load_block(own_Com__Enkeys[1] + at), row_subkeys));
  }
  for (int row = first_key_row; row < table_rows; ++row) {
    for (int i = 0; i < stored_row_size; ++i)
      Com__Netkey[row][i] = own_Com__Enkeys[row][i] ^ own_Com__Enkeys[row - 1][i];
    for (int key = 0; key < keys_per_row; ++key)
      schedule(Com__Netkey[row] + key * key_size, subkeys[row - first_key_row][key]);
  }
}

// The index is not checked, so the address is computed where nothing can overflow.
OCTET *comb_get_Netkey(CS_INT index) noexcept {
  return reinterpret_cast<OCTET *>(reinterpret_cast<uintptr_t>(Com__Netkey) +
                                   static_cast<uintptr_t>(index) * sizeof Com__Netkey[0]);
}

void com__localization_convert(OCTET *input, OCTET *output, OCTET salt) noexcept {
  COMN_CHECK_PTR(input);
  COMN_CHECK_PTR(output);
  OCTET before = salt;
  for (int i = 0; i < block_size; ++i)
    before = output[i] = input[i] ^ before;
}

void com__localization_reconvert(OCTET *input, OCTET *output, OCTET salt) noexcept {
  COMN_CHECK_PTR(input);
  COMN_CHECK_PTR(output);
  OCTET before = salt;
  for (int i = 0; i < block_size; ++i) {
    const OCTET octet = input[i];
    output[i] = octet ^ before;
    before = octet;
  }
}

void com__char_initialize(OCTET *input, OCTET *salt, OCTET *output, CS_INT block) noexcept {
  COMN_CHECK_PTR(input);
  COMN_CHECK_PTR(salt);
  COMN_CHECK_PTR(output);
  COMN_CHECK(is_block(block));
  make_ready();
  Halves running = encipher(load_block(input), first_subkeys(salt, block));
  for (int k = 0; k < COM_ENC_SALTLEN; ++k) {
    if (step_mask(salt, k) != 0) {
      running = encipher(running, chain_subkeys(salt, k, block));
    } else {
      OCTET octets[block_size];
      store_block(octets, running);
      com__localization_convert(octets, octets, salt[k]);
      running = load_block(octets);
    }
  }
  store_block(output, running);
}

void com__char_uninitialize(OCTET *input, OCTET *salt, OCTET *output, CS_INT block) noexcept {
  COMN_CHECK_PTR(input);
  COMN_CHECK_PTR(salt);
  COMN_CHECK_PTR(output);
  COMN_CHECK(is_block(block));
  make_ready();
  Halves running = load_block(input);
  for (int k = COM_ENC_SALTLEN - 1; k >= 0; --k) {
    if (step_mask(salt, k) != 0) {
      running = decipher(running, chain_subkeys(salt, k, block));
    } else {
      OCTET octets[block_size];
      store_block(octets, running);
      com__localization_reconvert(octets, octets, salt[k]);
      running = load_block(octets);
    }
  }
  store_block(output, decipher(running, first_subkeys(salt, block)));
}

void com__pad(OCTET *salt, OCTET *text, CS_INT length, OCTET *padded) noexcept {
  std::fill_n(padded, padded_size, padding);
  for (CS_INT i = 0; i < length; ++i)
    padded[(salt[0] + i) % padded_size] = text[i];
}

void com__trunc(OCTET *salt, OCTET *padded, CS_INT length, OCTET *text) noexcept {
  for (CS_INT i = 0; i < length; ++i)
    text[i] = padded[(salt[0] + i) % padded_size];
}

CS_RETCODE com__string_initialize(OCTET *salt, CS_INT saltlen, OCTET *text, CS_INT length,
                                  OCTET *output, CS_INT *outlen) noexcept {
  if (saltlen != COM_ENC_SALTLEN || length < 0)
    return CS_FAIL;
  length = std::min<CS_INT>(length, COM_ENC_MAXTEXT);
  OCTET padded[padded_size];
  com__pad(salt, text, length, padded);
  for (CS_INT block = 0; block < keys_per_row; ++block)
    com__char_initialize(padded + block * block_size, salt, output + block * block_size, block);
  com_secure_memset(padded, wipe, sizeof padded);
  output[padded_size] = static_cast<OCTET>(length);
  *outlen = COM_ENC_BLOCKLEN;
  return CS_SUCCEED;
}

CS_RETCODE com__string_uninitialize(OCTET *salt, CS_INT saltlen, OCTET *input, CS_INT length,
                                    OCTET *text, CS_INT *textlen) noexcept {
  // A block that names a longer text was not made by this cipher, and has no room to go to.
  if (saltlen != COM_ENC_SALTLEN || length != COM_ENC_BLOCKLEN ||
      input[padded_size] > COM_ENC_MAXTEXT)
    return CS_FAIL;
  OCTET padded[padded_size];
  for (CS_INT block = 0; block < keys_per_row; ++block)
    com__char_uninitialize(input + block * block_size, salt, padded + block * block_size, block);
  *textlen = input[padded_size];
  com__trunc(salt, padded, *textlen, text);
  com_secure_memset(padded, wipe, sizeof padded);
  return CS_SUCCEED;
}

void com__uninitialize_tds_text(OCTET *challenge, OCTET *response) noexcept {
  OCTET row = 0;
  for (int i = 0; i < COM_ENC_TDSLEN; ++i)
    row ^= challenge[i];
  com__char_initialize(challenge, Com__Netkey[row], response, 0);
}
