// The table of identifiers as its units see it.
#ifndef COMN_INTL_OID_TABLE_H
#define COMN_INTL_OID_TABLE_H

#include <cstring>

#include "comloc.h"
#include "table.h"

COMN_DECLARE_TABLE(Com__classmap);
COMN_DECLARE_TABLE(Com__dup_classmap);

namespace comn {

// The identifier of a name in a class, as comn_globalid finds it.
CS_RETCODE identify(CS_CONTEXT *context, CS_INT oidclass, const CS_CHAR *name, CS_INT length,
                    CsOID **oid) noexcept;

inline bool is_oid_class(CS_INT oidclass) noexcept {
  return oidclass >= 0 && oidclass < COM_OID_CLASS_COUNT;
}

// The bytes of an encoding or of a name: neither has a terminator, and either may be empty.
template <class Byte>
struct ByteSpan {
  const Byte *bytes;
  CS_INT length;
};

// What stands side by side differs at the end, if anywhere, so the last byte is looked at first.
template <class Byte>
bool operator==(ByteSpan<Byte> a, ByteSpan<Byte> b) noexcept {
  if (a.length != b.length)
    return false;
  return a.length <= 0 || (a.bytes[a.length - 1] == b.bytes[a.length - 1] &&
                           std::memcmp(a.bytes, b.bytes, static_cast<size_t>(a.length)) == 0);
}

// A record without bytes has no encoding, whatever its length says.
inline ByteSpan<CS_BYTE> encoding_of(const CsOID &oid) noexcept {
  return {oid.oidber, oid.oidber != nullptr ? oid.oidberlen : 0};
}

} // namespace comn

#endif
