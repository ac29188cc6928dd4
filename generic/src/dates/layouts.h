// The layouts of date and time text by style number: one readable row for each style, compiled to
// field codes.
//
// Two engines share the table, one for values with a date, one for times alone. In a row, these
// stand for fields, and every other character for itself:
//
//   Mon     the short month name      dd _d   the day, padded with a zero or a blank
//   mm      the month                 yy      the last two digits of the year
//   yyyy    the year                  _yyy    the year, padded with blanks
//   hh      the hour of 24            _h      the hour of 12, padded with a blank
//   mi ss   minutes, seconds          mmm     milliseconds
//   ffffff  microseconds              AM      the word for the half of the day
#ifndef COMN_DATES_LAYOUTS_H
#define COMN_DATES_LAYOUTS_H

#include <cstdint>
#include <string_view>

#include "cspublic.h"
#include "table.h"

namespace comn::layouts {

struct Row {
  CS_INT style;
  const char *date;
  const char *time;
};

constexpr const char *same = nullptr; // the layout of the date engine
constexpr const char *none = "";      // there is no date to show: a text of one NUL byte

// Days and months of the time engine stand the other way round in styles 21, 22, 121 and 122, and
// its years are padded with blanks in 100 and 109: deliberate, callers see it.
constexpr Row rows[] = {
    // clang-format off
    {  0, "Mon _d yyyy _h:miAM",            "_h:miAM"},
    {  1, "mm/dd/yy",                       none},
    {  2, "yy.mm.dd",                       none},
    {  3, "dd/mm/yy",                       none},
    {  4, "dd.mm.yy",                       none},
    {  5, "dd-mm-yy",                       none},
    {  6, "dd Mon yy",                      none},
    {  7, "Mon dd, yy",                     none},
    {  8, "hh:mi:ss",                       same},
    {  9, "Mon _d yyyy _h:mi:ss:mmmAM",     "_h:mi:ss:mmmAM"},
    { 10, "mm-dd-yy",                       none},
    { 11, "yy/mm/dd",                       none},
    { 12, "yymmdd",                         none},
    { 13, "yy/dd/mm",                       none},
    { 14, "mm/yy/dd",                       none},
    { 15, "dd/yy/mm",                       none},
    { 16, "Mon _d yyyy hh:mi:ss",           same},
    { 17, "_h:miAM",                        same},
    { 18, "hh:mi",                          same},
    { 19, "_h:mi:ss:mmmAM",                 same},
    { 20, "hh:mi:ss:mmm",                   same},
    { 21, "yy/mm/dd hh:mi:ss",              "yy/dd/mm hh:mi:ss"},
    { 22, "yy/mm/dd _h:miAM",               "yy/dd/mm _h:miAM"},
    { 23, "yyyy-mm-ddThh:mi:ss",            same},
    { 36, "_h:mi:ss.ffffffAM",              same},
    { 37, "hh:mi:ss.ffffff",                same},
    { 38, "Mon _d yy _h:mi:ss.ffffffAM",    same},
    { 39, "Mon _d yy hh:mi:ss.ffffff",      same},
    { 40, "yy-mm-dd hh:mi:ss.ffffff",       same},

    {100, "Mon _d yyyy _h:miAM",            "Mon _d _yyy _h:miAM"},
    {101, "mm/dd/yyyy",                     none},
    {102, "yyyy.mm.dd",                     none},
    {103, "dd/mm/yyyy",                     none},
    {104, "dd.mm.yyyy",                     none},
    {105, "dd-mm-yyyy",                     none},
    {106, "dd Mon yyyy",                    none},
    {107, "Mon dd, yyyy",                   none},
    {108, "hh:mi:ss",                       same},
    {109, "Mon _d yyyy _h:mi:ss:mmmAM",     "Mon _d _yyy _h:mi:ss:mmmAM"},
    {110, "mm-dd-yyyy",                     none},
    {111, "yyyy/mm/dd",                     none},
    {112, "yyyymmdd",                       none},
    {113, "yyyy/dd/mm",                     none},
    {114, "mm/yyyy/dd",                     none},
    {115, "dd/yyyy/mm",                     none},
    {116, "Mon _d yyyy hh:mi:ss",           same},
    {117, "_h:miAM",                        same},
    {118, "hh:mi",                          same},
    {121, "yyyy/mm/dd hh:mi:ss",            "yyyy/dd/mm hh:mi:ss"},
    {122, "yyyy/mm/dd _h:miAM",             "yyyy/dd/mm _h:miAM"},
    {136, "_h:mi:ss.ffffffAM",              same},
    {137, "hh:mi:ss.ffffff",                same},
    {138, "Mon _d yyyy _h:mi:ss.ffffffAM",  same},
    {139, "Mon _d yyyy hh:mi:ss.ffffff",    same},
    {140, "yyyy-mm-dd hh:mi:ss.ffffff",     same},
    {141, "Mon _d yyyy _h:mi:ss.ffffffAM",  "_h:mi:ss.ffffffAM"},
    // clang-format on
};

constexpr CS_INT style_count = 142;

// A CS_DATE alone, in styles 0 and 9.
constexpr const char *date_only = "Mon _d yyyy";

enum Field : uint8_t {
  literal,
  month_name,
  day,
  day_blank,
  month,
  year_of_century,
  year,
  year_blank,
  hour,
  hour_of_half,
  minute,
  second,
  millis,
  micros,
  half_of_day,
};

// A field and the character behind it; without one, 0. A literal is only that character.
struct Code {
  Field field;
  char behind;
};

constexpr size_t max_codes = 8;
constexpr CS_INT max_name_length = 9;

struct Layout {
  uint8_t count;      // of codes; 0 for a style that does not exist
  uint8_t max_length; // of the text, in bytes
  bool has_name;
  Code codes[max_codes];
};

struct Token {
  std::string_view text;
  Field field;
  uint8_t length; // at most, as it prints
};

// A token that begins like another one stands before it.
constexpr Token tokens[] = {
    {"Mon", month_name, max_name_length},
    {"dd", day, 2},
    {"_d", day_blank, 2},
    {"mmm", millis, 3},
    {"mm", month, 2},
    {"mi", minute, 2},
    {"yyyy", year, 4},
    {"yy", year_of_century, 2},
    {"_yyy", year_blank, 4},
    {"hh", hour, 2},
    {"_h", hour_of_half, 2},
    {"ss", second, 2},
    {"ffffff", micros, 6},
    {"AM", half_of_day, 2},
};

consteval Layout compile(std::string_view text) {
  Layout layout{};
  if (text.empty()) {
    layout.count = layout.max_length = 1;
    return layout; // the literal NUL
  }
  bool may_append = false; // a character to the code before
  while (!text.empty()) {
    const Token *found = nullptr;
    for (const Token &token : tokens)
      if (found == nullptr && text.starts_with(token.text))
        found = &token;
    if (found != nullptr) {
      layout.codes[layout.count++] = {found->field, '\0'};
      layout.has_name |= found->field == month_name;
      layout.max_length = static_cast<uint8_t>(layout.max_length + found->length);
      text.remove_prefix(found->text.size());
      may_append = true;
      continue;
    }
    if (may_append)
      layout.codes[layout.count - 1].behind = text.front();
    else
      layout.codes[layout.count++] = {literal, text.front()};
    ++layout.max_length;
    text.remove_prefix(1);
    may_append = false;
  }
  return layout;
}

using LayoutTable = Table<Layout, style_count>;

consteval LayoutTable compile_all(bool is_time_engine) {
  LayoutTable table{};
  for (const Row &row : rows)
    table[static_cast<size_t>(row.style)] =
        compile(is_time_engine && row.time != same ? row.time : row.date);
  return table;
}

inline constexpr LayoutTable date_layouts = compile_all(false);
inline constexpr LayoutTable time_layouts = compile_all(true);
inline constexpr Layout date_only_layout = compile(date_only);

// Null for a style that does not exist.
inline const Layout *find_layout(const LayoutTable &table, CS_INT style) noexcept {
  if (style < 0 || style >= style_count)
    return nullptr;
  const Layout &layout = table[static_cast<size_t>(style)];
  return layout.count != 0 ? &layout : nullptr;
}

} // namespace comn::layouts

#endif
