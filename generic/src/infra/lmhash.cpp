// The hash functions of the list manager.
#include "lmhash.h"

#include "checks.h"

using namespace comn::list;

CS_RETCODE lm___api_key_to_uint(CS_CHAR *key, CS_INT key_size, CS_UINT *output) noexcept {
  COMN_CHECK_PTR(output, COMN_TRACE(CS_FAIL));
  COMN_CHECK(key_size >= 0, COMN_TRACE(CS_FAIL));
  if (key_size > 0)
    COMN_CHECK_PTR(key, COMN_TRACE(CS_FAIL));
  *output = hash_of(key, static_cast<size_t>(key_size));
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE lm__api_key_to_hash(CS_CHAR *key, CS_INT key_size, CS_INT range,
                               CS_UINT *output) noexcept {
  COMN_CHECK_PTR(output, COMN_TRACE(CS_FAIL));
  if (range <= 0) {
    *output = 0;
    return COMN_TRACE(CS_FAIL);
  }
  CS_UINT hash = 0;
  if (lm___api_key_to_uint(key, key_size, &hash) != CS_SUCCEED)
    return COMN_TRACE(CS_FAIL);
  *output = hash % static_cast<CS_UINT>(range);
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE lm__api_key_to_hash2(CS_CHAR *key, CS_INT key_size, CS_INT range,
                                CS_UINT *output) noexcept {
  COMN_CHECK_PTR(output, COMN_TRACE(CS_FAIL));
  if (range <= 0) {
    *output = 0;
    return COMN_TRACE(CS_FAIL);
  }
  COMN_CHECK(range != 1, COMN_TRACE(CS_FAIL));
  CS_UINT hash = 0;
  if (lm___api_key_to_uint(key, key_size, &hash) != CS_SUCCEED)
    return COMN_TRACE(CS_FAIL);
  *output = hash * 7 % (static_cast<CS_UINT>(range) - 1) + 1;
  return COMN_TRACE(CS_SUCCEED);
}
