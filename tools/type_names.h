// The datatypes as a user names them: "int", "char(12)", "numeric(10,2)".
#ifndef ZRVTOOL_TYPE_NAMES_H
#define ZRVTOOL_TYPE_NAMES_H

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "zrvcomn/cspublic.h"

namespace zrvtool {

// How the bytes of a type are laid out, as far as the command reads and shows them itself.
enum class Layout {
  text,      // the bytes of a text
  binary,    // any bytes
  varchar,   // a CS_VARCHAR record
  varbinary, // a CS_VARBINARY record
  integer,   // an integer of the width of the type
  floating,  // CS_REAL or CS_FLOAT
  exact,     // a CS_NUMERIC record, which takes a precision and a scale
  unitext,   // 16-bit text
  other,
};

struct TypeInfo {
  CS_INT code;
  const char *name;
  Layout layout;
  std::array<const char *, 2> aliases; // null where there is none
};

// The built-in types; the index is the code.
const std::array<TypeInfo, CS_TYPE_COUNT> &builtin_types();

// A type with what stands in its parentheses.
struct Type {
  const TypeInfo *info;
  std::optional<CS_INT> length; // bytes
  CS_INT precision;
  CS_INT scale;
  bool is_bare; // nothing stood in parentheses

  CS_INT code() const { return info->code; }
  Layout layout() const { return info->layout; }
  // "int", or "numeric(18,0)".
  std::string full_name() const;
};

// By name, alias or code. Throws UsageError, which says what is wrong. Case does not count.
Type parse_type(const std::string &text);

// The names and aliases of all types.
std::vector<std::string> all_type_names();

} // namespace zrvtool

#endif
