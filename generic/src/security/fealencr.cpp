// The block cipher under its own names.
#include "checks.h"
#include "feal.h"

using namespace comn::feal;

const QOCTET Com__Null4 = {0, 0, 0, 0};

void com__charbuf_alloc(OCTET *a, OCTET *b, OCTET *out) noexcept {
  COMN_CHECK_PTR(a);
  COMN_CHECK_PTR(b);
  COMN_CHECK_PTR(out);
  comn::store(out, round_function(comn::load<uint32_t>(a), b[0], b[1]));
}

void com__charbuf_clean(OCTET *a, OCTET *b, OCTET *out) noexcept {
  COMN_CHECK_PTR(a);
  COMN_CHECK_PTR(b);
  COMN_CHECK_PTR(out);
  comn::store(out, key_function(comn::load<uint32_t>(a), comn::load<uint32_t>(b)));
}

void com__charbuf_activate(OCTET *key, OCTET *subkeys) noexcept {
  COMN_CHECK_PTR(key);
  COMN_CHECK_PTR(subkeys);
  schedule(key, subkeys);
}

void com__charbuf_initialize(OCTET *input, OCTET *output, OCTET *subkeys) noexcept {
  COMN_CHECK_PTR(input);
  COMN_CHECK_PTR(output);
  COMN_CHECK_PTR(subkeys);
  store_block(output, encipher(load_block(input), subkeys));
}

void com__charbuf_uninitialize(OCTET *input, OCTET *output, OCTET *subkeys) noexcept {
  COMN_CHECK_PTR(input);
  COMN_CHECK_PTR(output);
  COMN_CHECK_PTR(subkeys);
  store_block(output, decipher(load_block(input), subkeys));
}
