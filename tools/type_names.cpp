// The table of type names, and the reader of type descriptions.
#include "type_names.h"

#include <algorithm>
#include <string_view>

#include "arguments.h"
#include "errors.h"
#include "visible.h"

namespace zrvtool {

namespace {

using enum Layout;

// clang-format off
constexpr std::array<TypeInfo, CS_TYPE_COUNT> types = {{
    {CS_TYPE_CHAR,           "char",           text,      {"character"}},
    {CS_TYPE_BINARY,         "binary",         binary,    {}},
    {CS_TYPE_LONGCHAR,       "longchar",       text,      {}},
    {CS_TYPE_LONGBINARY,     "longbinary",     binary,    {}},
    {CS_TYPE_TEXT,           "text",           text,      {}},
    {CS_TYPE_IMAGE,          "image",          binary,    {}},
    {CS_TYPE_TINYINT,        "tinyint",        integer,   {"i1"}},
    {CS_TYPE_SMALLINT,       "smallint",       integer,   {"i2"}},
    {CS_TYPE_INT,            "int",            integer,   {"integer", "i4"}},
    {CS_TYPE_REAL,           "real",           floating,  {"flt4"}},
    {CS_TYPE_FLOAT,          "float",          floating,  {"double", "flt8"}},
    {CS_TYPE_BIT,            "bit",            integer,   {}},
    {CS_TYPE_DATETIME,       "datetime",       other,     {}},
    {CS_TYPE_DATETIME4,      "datetime4",      other,     {"smalldatetime"}},
    {CS_TYPE_MONEY,          "money",          other,     {}},
    {CS_TYPE_MONEY4,         "money4",         other,     {"smallmoney"}},
    {CS_TYPE_NUMERIC,        "numeric",        exact,     {}},
    {CS_TYPE_DECIMAL,        "decimal",        exact,     {"dec"}},
    {CS_TYPE_VARCHAR,        "varchar",        varchar,   {}},
    {CS_TYPE_VARBINARY,      "varbinary",      varbinary, {}},
    {CS_TYPE_LONG,           "long",           other,     {}},
    {CS_TYPE_SENSITIVITY,    "sensitivity",    text,      {}},
    {CS_TYPE_BOUNDARY,       "boundary",       text,      {}},
    {CS_TYPE_VOID,           "void",           other,     {}},
    {CS_TYPE_USHORT,         "ushort",         integer,   {}},
    {CS_TYPE_UNICHAR,        "unichar",        unitext,   {}},
    {CS_TYPE_BLOB,           "blob",           other,     {}},
    {CS_TYPE_DATE,           "date",           other,     {}},
    {CS_TYPE_TIME,           "time",           other,     {}},
    {CS_TYPE_UNITEXT,        "unitext",        unitext,   {}},
    {CS_TYPE_BIGINT,         "bigint",         integer,   {"i8"}},
    {CS_TYPE_USMALLINT,      "usmallint",      integer,   {"ui2"}},
    {CS_TYPE_UINT,           "uint",           integer,   {"ui4"}},
    {CS_TYPE_UBIGINT,        "ubigint",        integer,   {"ui8"}},
    {CS_TYPE_XML,            "xml",            text,      {}},
    {CS_TYPE_BIGDATETIME,    "bigdatetime",    other,     {}},
    {CS_TYPE_BIGTIME,        "bigtime",        other,     {}},
    {CS_TYPE_TEXTLOCATOR,    "textlocator",    other,     {}},
    {CS_TYPE_IMAGELOCATOR,   "imagelocator",   other,     {}},
    {CS_TYPE_UNITEXTLOCATOR, "unitextlocator", other,     {}},
}};
// clang-format on

constexpr bool index_is_code() {
  for (size_t i = 0; i < types.size(); ++i)
    if (types[i].code != static_cast<CS_INT>(i))
      return false;
  return true;
}
static_assert(index_is_code());

// The precision and scale of a numeric without parentheses, as in the library's default value.
constexpr CS_INT default_precision = 18;
constexpr CS_INT default_scale = 0;

// The longest length that a type takes; the command keeps the bytes in memory.
constexpr CS_INT longest_length = 16 * 1024 * 1024;

constexpr const char *blanks = " \t";

std::string trimmed(std::string_view part) {
  const size_t begin = part.find_first_not_of(blanks);
  if (begin == std::string_view::npos)
    return {};
  return std::string(part.substr(begin, part.find_last_not_of(blanks) - begin + 1));
}

// By its name, an alias or its code.
const TypeInfo *find_type(const std::string &name) {
  for (const TypeInfo &info : types)
    if (name == info.name || name == std::to_string(info.code) ||
        std::any_of(info.aliases.begin(), info.aliases.end(),
                    [&](const char *alias) { return alias && name == alias; }))
      return &info;
  return nullptr;
}

CS_INT parse_number(std::string_view digits, CS_INT low, CS_INT high, const std::string &what) {
  return decimal(what, trimmed(digits), low, high);
}

void parse_parameters(Type &type, std::string_view inside) {
  const std::string name = type.info->name;
  const size_t comma = inside.find(',');
  type.is_bare = false;
  switch (type.layout()) {
  case exact:
    type.precision =
        parse_number(inside.substr(0, comma), CS_MIN_PREC, CS_MAX_PREC, "the precision of " + name);
    type.scale = 0;
    if (comma != std::string_view::npos)
      type.scale = parse_number(inside.substr(comma + 1), CS_MIN_SCALE, CS_MAX_SCALE,
                                "the scale of " + name);
    return;
  case text:
  case binary:
  case unitext:
    type.length = parse_number(inside, 0, longest_length, "the length of " + name);
    return;
  case varchar:
  case varbinary:
    throw UsageError("the type " + name +
                     " takes nothing in parentheses: a record has room for 256 bytes");
  default:
    throw UsageError("the type " + name + " takes nothing in parentheses");
  }
}

} // namespace

const std::array<TypeInfo, CS_TYPE_COUNT> &builtin_types() {
  return types;
}

std::string Type::full_name() const {
  std::string name = info->name;
  if (layout() == exact)
    name += "(" + std::to_string(precision) + "," + std::to_string(scale) + ")";
  else if (length)
    name += "(" + std::to_string(*length) + ")";
  return name;
}

Type parse_type(const std::string &description) {
  const std::string text = lower_case(trimmed(description));
  const size_t open = text.find('(');
  const std::string name = trimmed(std::string_view(text).substr(0, open));
  const TypeInfo *const info = find_type(name);
  if (info == nullptr)
    throw UsageError("there is no type " + in_quotes(name) + suggest(name, all_type_names()));
  Type type{info, std::nullopt, default_precision, default_scale, true};
  if (open != std::string::npos) {
    if (text.back() != ')')
      throw UsageError("the type " + in_quotes(text) + " lacks its closing parenthesis");
    parse_parameters(type, std::string_view(text).substr(open + 1, text.size() - open - 2));
  }
  return type;
}

std::vector<std::string> all_type_names() {
  std::vector<std::string> names;
  for (const TypeInfo &info : types) {
    names.emplace_back(info.name);
    for (const char *alias : info.aliases)
      if (alias != nullptr)
        names.emplace_back(alias);
  }
  return names;
}

} // namespace zrvtool
