// Asks the library about every pair.
#include "charset_matrix.h"

#include <algorithm>

#include <nlohmann/json.hpp>

#include "charset_names.h"
#include "zrvcomn/charset.h"
#include "zrvcomn/comfou.h"

namespace zrvtool {

namespace {

// A locale of which the table's engine sees the number of the set.
struct SetLocale {
  explicit SetLocale(int number) {
    attributes.cs_id = static_cast<CS_BYTE>(number);
    charset.char_attrib = &attributes;
    cache.locchardesc = &charset;
    locale.ctypeptr = &cache;
  }

  CHAR_ATTRIB attributes{};
  CsCharDesc charset{};
  CsLocCache cache{};
  CS_LOCALE locale{};
};

CS_INT table_type(const CharsetName &from, const CharsetName &to) {
  SetLocale source(from.number), destination(to.number);
  CS_CONTEXT context{};
  CS_DATAFMT srcfmt{}, destfmt{};
  srcfmt.locale = &source.locale;
  destfmt.locale = &destination.locale;
  CS_INT type = COM_FOU_NONE;
  com_intl_will_xlate(&context, &srcfmt, &destfmt, &type);
  return type;
}

char mark_of(const CharsetName &from, const CharsetName &to) {
  const CS_INT type = table_type(from, to);
  if (type == COM_FOU_COPY)
    return '=';
  const bool has_converters =
      from.converter != UNICONV_CID_NONE && to.converter != UNICONV_CID_NONE;
  if (type == COM_FOU_MAP)
    return has_converters ? 'b' : 't';
  if (has_converters)
    return 'u';
  return type == COM_FOU_ASCII ? 'a' : '.';
}

struct Engines {
  char mark;
  const char *words;
  std::vector<std::string> names;
};

const Engines engines[] = {
    {'=', "the same set", {"copy"}},
    {'b', "through Unicode, and by table", {"unicode", "table"}},
    {'t', "by table", {"table"}},
    {'u', "through Unicode", {"unicode"}},
    {'a', "by table, ASCII alone", {"table-ascii"}},
    {'.', "not at all", {}},
};

const Engines &engines_of(const CharsetName &from, const CharsetName &to) {
  const char mark = mark_of(from, to);
  return *std::find_if(std::begin(engines), std::end(engines),
                       [mark](const Engines &one) { return one.mark == mark; });
}

} // namespace

void append_charset_matrix(std::string &out, const std::string &only, const Listing &listing) {
  const std::vector<CharsetName> sets = charset_names();
  const std::vector<CharsetName> rows =
      only.empty() ? sets : std::vector<CharsetName>{find_charset(only)};
  constexpr size_t name_width = 11;
  for (const CharsetName &from : rows) {
    if (only.empty() && !listing.is_for_programs())
      out += from.name + std::string(name_width - std::min(name_width - 1, from.name.size()), ' ');
    for (const CharsetName &to : sets) {
      const Engines &found = engines_of(from, to);
      if (listing.is_for_programs()) {
        const nlohmann::ordered_json object = {
            {"from", from.name}, {"to", to.name}, {"engines", found.names}};
        listing.add(out, object);
      } else if (only.empty()) {
        out += found.mark;
      } else {
        out += to.name + std::string(name_width - std::min(name_width - 1, to.name.size()), ' ') +
               found.words + "\n";
      }
    }
    if (only.empty() && !listing.is_for_programs())
      out += "\n";
  }
}

} // namespace zrvtool
