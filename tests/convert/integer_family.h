// The members of the integer family as a table, and integers as the bytes and texts of their types.
#ifndef ZRVTEST_INTEGER_FAMILY_H
#define ZRVTEST_INTEGER_FAMILY_H

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ostream>
#include <string>
#include <vector>

#include "conversion.h"

namespace zrvtest {

struct IntegerType {
  const char *name;
  const char *unit; // the source file of its members
  CS_INT code;
  int width; // bytes
  bool is_signed;
};

inline constexpr IntegerType integer_types[] = {
    {"i1", "com_i1.cpp", CS_TYPE_TINYINT, 1, false},
    {"i2", "com_i2.cpp", CS_TYPE_SMALLINT, 2, true},
    {"i4", "com_i4.cpp", CS_TYPE_INT, 4, true},
    {"i8", "com_i8.cpp", CS_TYPE_BIGINT, 8, true},
    {"ui2", "com_ui2.cpp", CS_TYPE_USMALLINT, 2, false},
    {"ui4", "com_ui4.cpp", CS_TYPE_UINT, 4, false},
    {"ui8", "com_ui8.cpp", CS_TYPE_UBIGINT, 8, false},
};

// One member of a family, with the datatype of its destination (one of them for text and binary).
struct IntegerMember {
  const IntegerType *source;
  const char *destination;
  CS_INT destination_code;
  CS_CONV_FUNC function;
};

#define ZRVTEST_INTEGER_MEMBERS(row, source)                                                       \
  {&integer_types[row], "bit", CS_TYPE_BIT, comn_##source##tobit},                                 \
      {&integer_types[row], "i1", CS_TYPE_TINYINT, comn_##source##toi1},                           \
      {&integer_types[row], "i2", CS_TYPE_SMALLINT, comn_##source##toi2},                          \
      {&integer_types[row], "i4", CS_TYPE_INT, comn_##source##toi4},                               \
      {&integer_types[row], "i8", CS_TYPE_BIGINT, comn_##source##toi8},                            \
      {&integer_types[row], "ui2", CS_TYPE_USMALLINT, comn_##source##toui2},                       \
      {&integer_types[row], "ui4", CS_TYPE_UINT, comn_##source##toui4},                            \
      {&integer_types[row], "ui8", CS_TYPE_UBIGINT, comn_##source##toui8},                         \
      {&integer_types[row], "flt4", CS_TYPE_REAL, comn_##source##toflt4},                          \
      {&integer_types[row], "flt8", CS_TYPE_FLOAT, comn_##source##toflt8},                         \
      {&integer_types[row], "money", CS_TYPE_MONEY, comn_##source##tomoney},                       \
      {&integer_types[row], "mny4", CS_TYPE_MONEY4, comn_##source##tomny4},                        \
      {&integer_types[row], "char", CS_TYPE_CHAR, comn_##source##tochar},                          \
      {&integer_types[row], "bin", CS_TYPE_BINARY, comn_##source##tobin},                          \
      {&integer_types[row], "varchar", CS_TYPE_VARCHAR, comn_##source##tovarchar}, {               \
    &integer_types[row], "varbin", CS_TYPE_VARBINARY, comn_##source##tovarbin                      \
  }

inline const std::vector<IntegerMember> integer_members = {
    ZRVTEST_INTEGER_MEMBERS(0, i1),  ZRVTEST_INTEGER_MEMBERS(1, i2),
    ZRVTEST_INTEGER_MEMBERS(2, i4),  ZRVTEST_INTEGER_MEMBERS(3, i8),
    ZRVTEST_INTEGER_MEMBERS(4, ui2), ZRVTEST_INTEGER_MEMBERS(5, ui4),
    ZRVTEST_INTEGER_MEMBERS(6, ui8),
};
#undef ZRVTEST_INTEGER_MEMBERS

inline std::ostream &operator<<(std::ostream &out, const IntegerMember &member) {
  return out << "comn_" << member.source->name << "to" << member.destination;
}

inline const IntegerType &integer_type(const std::string &name) {
  for (const IntegerType &type : integer_types)
    if (name == type.name)
      return type;
  ADD_FAILURE() << "no type " << name;
  return integer_types[0];
}

inline const IntegerMember &integer_member(const std::string &source,
                                           const std::string &destination) {
  for (const IntegerMember &member : integer_members)
    if (source == member.source->name && destination == member.destination)
      return member;
  ADD_FAILURE() << "no member " << source << " to " << destination;
  return integer_members[0];
}

// A conversion by a member, into a destination of `maxlength` bytes where that counts.
inline Conversion make_conversion(const IntegerMember &member, CS_INT maxlength = -1,
                                  CS_INT format = 0) {
  return {member.function, make_format(member.source->code, member.source->width),
          make_format(member.destination_code, maxlength, format)};
}

// The two's complement of a decimal text.
inline uint64_t parse_bits(const std::string &decimal) {
  return decimal[0] == '-' ? static_cast<uint64_t>(std::strtoll(decimal.c_str(), nullptr, 10))
                           : std::strtoull(decimal.c_str(), nullptr, 10);
}

// The value bytes of an integer, least significant first.
inline std::string value_bytes(uint64_t bits, int width) {
  std::string bytes;
  for (int i = 0; i < width; ++i)
    bytes += static_cast<char>(bits >> (8 * i) & 0xFF);
  return bytes;
}

} // namespace zrvtest

#endif
