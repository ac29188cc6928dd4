// The conversions for callers without a context as a table: every name that the sources and destinations
// of the family give, found in the library by that name, with one way to call them all.
#ifndef ZRVTEST_LEGACY_MEMBERS_H
#define ZRVTEST_LEGACY_MEMBERS_H

#include <string>
#include <vector>

#include "zrvcomn/charset.h"
#include "zrvcomn/comnlib.h"

namespace zrvtest {

// What the longer signatures take behind the destination.
struct LegacyOptions {
  CS_INT precision = 18, scale = 4;
  char *fltfmt = nullptr;
  char **months = nullptr, **shortmonths = nullptr;
  CS_INT style = 9;
  int dateorder_id = -1;
  CS_ATTRIB *chatr = nullptr;
};

struct LegacyMember {
  std::string source, destination;
  bool multi_byte = false, styled = false;

  // "date2char" is the one member that is not spelled with "to".
  std::string name() const {
    return std::string(multi_byte ? "com_mb_" : "com_") + source +
           (spelled_with_digit ? "2" : "to") + destination + (styled ? "_ex" : "");
  }
  bool spelled_with_digit = false;

  bool is_from_text() const { return source == "char" || source == "varychar"; }
  bool is_from_binary() const { return source == "bin" || source == "varybin"; }
  bool is_from_date() const { return source == "date" || source == "date4"; }
  bool is_from_record() const { return source == "varychar" || source == "varybin"; }
  bool is_to_text() const {
    return destination == "char" || destination == "string" || destination == "ntbstring" ||
           destination == "varychar";
  }
  bool is_to_bytes() const {
    return destination == "binary" || destination == "bin" || destination == "varybin";
  }
  bool is_to_date() const {
    return destination == "datetime" || destination == "date" || destination == "date4";
  }
  bool is_to_record() const { return destination == "varychar" || destination == "varybin"; }
  // Of a destination of one width, else 0.
  CS_INT width() const { return width_of(destination); }
  // Of a source of one width, else 0.
  CS_INT source_width() const { return source == "date" ? 8 : width_of(source); }

  CS_INT operator()(const void *from, CS_INT srclen, void *to, CS_INT destlen,
                    const LegacyOptions &with = {}) const {
    auto *const src = static_cast<CS_BYTE *>(const_cast<void *>(from));
    auto *const dest = static_cast<CS_BYTE *>(to);
    const auto call = [&](auto... extra) {
      using Function = CS_INT (*)(CS_BYTE *, CS_INT, CS_BYTE *, CS_INT, decltype(extra)...);
      return reinterpret_cast<Function>(address())(src, srclen, dest, destlen, extra...);
    };
    if (destination == "num")
      return multi_byte ? call(with.precision, with.scale, with.chatr)
                        : call(with.precision, with.scale);
    if (is_from_text() && is_to_date())
      return multi_byte ? call(with.months, with.shortmonths, with.dateorder_id, with.chatr)
                        : call(with.months, with.shortmonths, with.dateorder_id);
    if (multi_byte)
      return call(with.chatr);
    if (is_to_text() && (source == "flt4" || source == "flt8"))
      return call(with.fltfmt);
    if (is_to_text() && is_from_date())
      return styled ? call(with.shortmonths, with.style) : call(with.shortmonths);
    return call();
  }

  void *address() const { return com_dlsym(const_cast<char *>(name().c_str())); }

private:
  static CS_INT width_of(const std::string &type) {
    if (type == "i1" || type == "bit")
      return 1;
    if (type == "i2")
      return 2;
    if (type == "i4" || type == "flt4" || type == "mny4" || type == "date4")
      return 4;
    if (type == "num")
      return 35;
    return type == "flt8" || type == "money" || type == "mny" || type == "datetime" ||
                   type == "date"
               ? 8
               : 0;
  }
};

// Every member, second spellings included.
inline std::vector<LegacyMember> legacy_members() {
  using Words = std::vector<std::string>;
  const Words all_text = {"char", "string", "ntbstring", "varychar"};
  const Words bytes = {"binary", "bin", "varybin"};
  const Words numbers = {"i1", "i2", "i4", "bit", "flt4", "flt8", "num"};
  const Words monies = {"money", "mny", "mny4"};
  const Words dates = {"datetime", "date", "date4"};
  const Words in_sets = {"i1",    "i2",   "i4",  "flt4",     "flt8",
                         "money", "mny4", "num", "datetime", "date4"};
  std::vector<LegacyMember> members;
  const auto add = [&](const std::string &source, const std::vector<Words> &groups) {
    for (const Words &group : groups)
      for (const std::string &destination : group)
        members.push_back({source, destination});
  };
  for (const char *source : {"i1", "i2", "i4", "flt4", "flt8", "money", "mny4", "num"})
    add(source, {numbers, monies, bytes, all_text});
  add("bit", {numbers, bytes, all_text});
  for (const char *source : {"char", "varychar", "bin", "varybin"})
    add(source, {numbers, monies, dates, bytes, all_text});
  for (const char *source : {"date", "date4"})
    add(source, {dates, bytes, all_text});
  add("any", {{"binary", "varybin"}});
  for (const char *source : {"char", "varychar"})
    for (const std::string &destination : in_sets)
      members.push_back({source, destination, true});
  for (const std::string &destination : all_text)
    members.push_back({"date", destination, false, true});
  for (const bool styled : {false, true})
    members.push_back({"date", "char", false, styled, true});
  return members;
}

inline LegacyMember legacy_member(const std::string &source, const std::string &destination,
                                  bool multi_byte = false) {
  return {source, destination, multi_byte};
}

} // namespace zrvtest

#endif
