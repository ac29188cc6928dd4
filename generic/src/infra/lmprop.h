// How property values go in and out, for lists and contexts alike.
#ifndef COMN_INFRA_LMPROP_H
#define COMN_INFRA_LMPROP_H

#include "checks.h"
#include "lmlist.h"

namespace comn::list {

// Stores an integer or a pointer at the caller's place. Either counts as 4 bytes.
template <class T>
CS_RETCODE deliver_value(T value, CS_VOID *buffer, CS_INT *outlen) noexcept {
  COMN_CHECK_PTR(buffer, CS_FAIL);
  std::memcpy(buffer, &value, sizeof value);
  if (outlen != nullptr)
    *outlen = 4;
  return CS_SUCCEED;
}

// The properties that can only be read insist on a length that says so.
template <class T>
CS_RETCODE deliver_fixed(T value, CS_VOID *buffer, CS_INT buflen, CS_INT *outlen) noexcept {
  COMN_CHECK(buflen == CS_UNUSED, CS_FAIL);
  return deliver_value(value, buffer, outlen);
}

// Delivers the name of a list with one terminator, whether or not it was given with one.
inline CS_RETCODE deliver_name(const LM_HDLPROP *prop, CS_VOID *buffer, CS_INT buflen,
                               CS_INT *outlen) noexcept {
  CS_CHAR *const name = prop != nullptr ? prop->handle_name : nullptr;
  CS_INT length = name != nullptr ? prop->length : 0;
  if (length > 0 && name[length - 1] == '\0')
    --length;
  return lm__api_prop_cpbytes(name, length, 1, buffer, buflen, outlen);
}

// The value at the caller's place, or another one for null.
template <class T>
T value_or(const CS_VOID *buffer, T otherwise) noexcept {
  T value = otherwise;
  if (buffer != nullptr)
    std::memcpy(&value, buffer, sizeof value);
  return value;
}

} // namespace comn::list

#endif
