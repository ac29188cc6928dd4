// Encodes dotted identifiers as BER OBJECT IDENTIFIERs.
#include <algorithm>
#include <climits>
#include <cstring>

#include "checks.h"
#include "comloc.h"
#include "leading_integer.h"
#include "zrvintl.h"

namespace {

constexpr CS_BYTE tag_object_identifier = 6;
constexpr CS_BYTE tag_two_length_octets = 0x81;

// Content behind its first byte: the most that leaves room for tag, two length octets and that byte,
// and the most for which one length octet is used. Deliberate: a single octet could tell three bytes
// more, but peers compare encodings byte for byte.
constexpr size_t content_max = COM_OID_BER_SIZE - 4;
constexpr size_t short_form_max = 123;

// A dotted text, arc by arc.
class Arcs {
public:
  Arcs(const CS_CHAR *dotted, size_t length) noexcept : at(dotted), end(dotted + length) {}

  // Several points count as one.
  bool next(CS_UINT &arc) noexcept {
    while (at < end && *at == '.')
      ++at;
    if (at == end)
      return false;
    arc = to_arc(comn::leading_integer(at, end));
    while (at < end && *at != '.')
      ++at;
    return true;
  }

private:
  // As strtoul has it where a long has 32 bits.
  static CS_UINT to_arc(comn::LeadingInteger integer) noexcept {
    if (integer.magnitude > UINT_MAX)
      return UINT_MAX;
    const auto arc = static_cast<CS_UINT>(integer.magnitude);
    return integer.is_negative ? 0 - arc : arc;
  }

  const CS_CHAR *at, *const end;
};

// The content of an encoding behind its first byte.
struct Content {
  CS_BYTE bytes[content_max];
  size_t length = 0;

  // Adds the digits of an arc in base 128, the highest first; all but the last have bit 7 set.
  bool add(CS_UINT arc) noexcept {
    size_t further = 0;
    while (arc >> 7 * further > 0x7F)
      ++further;
    if (length + further >= content_max)
      return false;
    for (; further > 0; --further)
      bytes[length++] = static_cast<CS_BYTE>((arc >> 7 * further & 0x7F) | 0x80);
    bytes[length++] = static_cast<CS_BYTE>(arc & 0x7F);
    return true;
  }
};

} // namespace

CS_RETCODE comn__encode_oid(CS_CONTEXT *, CS_CHAR *objectid, CS_INT idlen,
                            CsOID *lcl_oid) noexcept {
  COMN_CHECK_PTR(objectid, CS_FAIL);
  COMN_CHECK_PTR(lcl_oid, CS_FAIL);
  COMN_CHECK(idlen >= 0, CS_FAIL);
  Arcs arcs(objectid, strnlen(objectid, static_cast<size_t>(idlen)));
  CS_UINT first = 0, second = 0;
  if (!arcs.next(first) || !arcs.next(second))
    return CS_FAIL;
  Content content;
  for (CS_UINT arc = 0; arcs.next(arc);)
    if (!content.add(arc))
      return CS_FAIL;

  auto *const ber = static_cast<CS_BYTE *>(comn_calloc(COM_OID_BER_SIZE, 1));
  if (ber == nullptr)
    return CS_MEM_ERROR;
  CS_BYTE *end = ber;
  *end++ = tag_object_identifier;
  if (content.length > short_form_max)
    *end++ = tag_two_length_octets;
  *end++ = static_cast<CS_BYTE>(content.length + 1);
  *end++ = static_cast<CS_BYTE>(first * 40 + second);
  end = std::copy_n(content.bytes, content.length, end);
  lcl_oid->oidber = ber;
  lcl_oid->oidberlen = static_cast<CS_INT>(end - ber);
  return CS_SUCCEED;
}
