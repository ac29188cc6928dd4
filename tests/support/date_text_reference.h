// A second interpreter of dates from text, which follows the rules step by step and has none of the
// library's shapes. Slow and obvious; what the library reads is compared with it.
#ifndef ZRVTEST_DATE_TEXT_REFERENCE_H
#define ZRVTEST_DATE_TEXT_REFERENCE_H

#include <initializer_list>
#include <ostream>
#include <string>
#include <vector>

namespace zrvtest {

// A token as the rules tell it. The text is ASCII; names are those of English.
struct DateToken {
  int kind;
  int length = 0;
  int value = 0;
};

constexpr const char *long_names[] = {"january",   "february", "march",    "april",
                                      "may",       "june",     "july",     "august",
                                      "september", "october",  "november", "december"};

inline std::string lower(std::string text) {
  for (char &c : text)
    if (c >= 'A' && c <= 'Z')
      c = static_cast<char>(c + 32);
  return text;
}

inline bool is_digit(char c) {
  return c >= '0' && c <= '9';
}
inline bool is_letter(char c) {
  return lower(std::string(1, c))[0] >= 'a' && lower(std::string(1, c))[0] <= 'z';
}

// All tokens up to and with the end, or up to and with an error.
inline std::vector<DateToken> slow_tokens(const std::string &text, bool has_names) {
  std::vector<DateToken> tokens;
  size_t i = 0;
  for (;;) {
    while (i < text.size() && text[i] == ' ')
      ++i;
    if (i == text.size()) {
      tokens.push_back({7});
      return tokens;
    }
    const char c = text[i];
    DateToken token{8};
    if (c == '/' || c == '-')
      token = {6}, ++i;
    else if (c == '.')
      token = {6, 0, -1}, ++i;
    else if (c == ',')
      token = {5}, ++i;
    else if (c == ':')
      token = {2}, ++i;
    else if (c == 'T' || c == 't')
      token = {11}, ++i;
    else if (is_digit(c)) {
      std::string digits;
      while (i < text.size() && is_digit(text[i]))
        digits += text[i++];
      static const int kinds[] = {8, 0, 0, 0, 1, 12, 10, 8, 10};
      token.length = static_cast<int>(digits.size());
      token.kind = digits.size() > 8 ? 8 : kinds[digits.size()];
      token.value = token.kind == 8 ? 0 : std::stoi(digits);
    } else if (is_letter(c)) {
      std::string word;
      while (i < text.size() && is_letter(text[i]))
        word += text[i++];
      word = lower(word);
      if (word == "am" || word == "pm")
        token = {3, 0, word == "pm"};
      else if (has_names)
        for (int month = 0; month < 12; ++month)
          if (word == long_names[month] || word == std::string(long_names[month], 3))
            token = {4, 0, month};
    }
    tokens.push_back(token);
    if (token.kind == 8)
      return tokens;
  }
}

struct DateFields {
  int year, month, day, hour, minute, second, millis, fraction, precision;
  bool operator==(const DateFields &) const = default;
};
inline void PrintTo(const DateFields &f, std::ostream *out) {
  *out << f.year << "-" << f.month << "(from 0)-" << f.day << " " << f.hour << ":" << f.minute
       << ":" << f.second << " " << f.millis << "ms " << f.fraction << "/" << f.precision;
}

constexpr int untouched_year = -4711;

struct DateParse {
  int status;
  DateFields fields{untouched_year, 0, 1, 0, 0, 0, 0, 0, 0};
  bool truncated = false;
};

// The steps in their order, with none of the library's shapes.
inline DateParse slow_date_parse(const std::string &text, int partonly, int style, int order,
                                 bool has_names, bool micros) {
  DateParse result;
  DateFields &f = result.fields;
  std::vector<DateToken> t = slow_tokens(text, has_names);
  auto answer = [&](int status) {
    result.status = status;
    return result;
  };
  // 1
  if (t.back().kind == 8 || t.size() > 21)
    return answer(-1);
  const int used = 9;
  auto first = [&](int kind) {
    for (size_t i = 0; t[i].kind != 7; ++i)
      if (t[i].kind == kind)
        return static_cast<int>(i);
    return -1;
  };
  auto all_used = [&] {
    for (size_t i = 0; t[i].kind != 7; ++i)
      if (t[i].kind != used)
        return false;
    return true;
  };
  auto at = [&](int i) -> DateToken & { return t[static_cast<size_t>(i)]; };
  auto ampm = [&](int pm) {
    if (pm == 1) {
      if (f.hour == 0)
        return false;
      if (f.hour < 12)
        f.hour += 12;
      return true;
    }
    if (f.hour > 12)
      return false;
    if (f.hour == 12)
      f.hour = 0;
    return true;
  };
  auto two_digits = [](int year) {
    return year < 0 || year > 99 ? 1 : year < 50 ? 2000 + year : 1900 + year;
  };
  // 3, 4
  const int colon = first(2);
  if (colon > 0) {
    at(colon).kind = used;
    int i = colon - 1;
    if (at(i).kind != 0)
      return answer(-1);
    f.hour = at(i).value, at(i).kind = used;
    i = colon + 1;
    if (at(i).kind != 0)
      return answer(-1);
    f.minute = at(i).value, at(i).kind = used;
    ++i;
    if (at(i).kind == 2) {
      at(i++).kind = used;
      if (at(i).kind != 0)
        return answer(-1);
      f.second = at(i).value, at(i++).kind = used;
    }
    if (at(i).kind == 2) {
      at(i++).kind = used;
      if (at(i).kind != 0)
        return answer(-1);
      f.millis = at(i).value, at(i++).kind = used;
    } else if (at(i).kind == 6 && at(i).value == -1) {
      at(i++).kind = used;
      const int kind = at(i).kind, length = at(i).length;
      int value = at(i).value;
      if (kind != 0 && kind != 10 && kind != 1 && kind != 12)
        return answer(-1);
      at(i++).kind = used;
      value *= length == 1   ? 100000
               : length == 2 ? 10000
               : length == 3 ? 1000
               : length == 4 ? 100
               : length == 5 ? 10
                             : 1;
      if (micros) {
        f.precision = 1000000, f.fraction = value;
      } else {
        if (value % 1000 != 0)
          result.truncated = true;
        int millis = (value + 500) / 1000;
        if (millis == 1000)
          millis = 999;
        if (millis > 999)
          return answer(-1);
        f.millis = millis;
      }
    }
    if (at(i).kind == 3) {
      at(i).kind = used;
      if (!ampm(at(i).value))
        return answer(9);
    }
  } else if (const int mark = first(3); mark > 0) { // 5
    at(mark).kind = used;
    if (at(mark - 1).kind != 0)
      return answer(-1);
    f.hour = at(mark - 1).value, at(mark - 1).kind = used;
    if (!ampm(at(mark).value))
      return answer(9);
  }
  // 7
  if (partonly == 3)
    return answer(all_used() ? 99 : -2);
  // 8
  if (const int iso = first(11); iso >= 0) {
    at(iso).kind = used;
    for (int i = iso; at(i).kind != 7; ++i)
      if (at(i).kind != used)
        return answer(-1);
  }
  auto done = [&] { return answer(partonly == 0 && !all_used() ? -2 : 0); };
  // 9
  if (const int month = first(4); month >= 0) {
    f.month = at(month).value, at(month).kind = used;
    if (month > 0 && at(month - 1).kind == 6) {
      at(month - 1).kind = used;
      if (at(month + 1).kind == 6 || at(month + 1).kind == 5)
        at(month + 1).kind = used;
    } else if (at(month + 1).kind == 5) {
      at(month + 1).kind = used;
    }
    if (const int year = first(1); year >= 0) {
      f.year = at(year).value, at(year).kind = used;
      if (const int day = first(0); day >= 0) {
        f.day = at(day).value, at(day).kind = used;
        if (at(day + 1).kind == 5)
          at(day + 1).kind = used;
      }
      return done();
    }
    const int day = first(0);
    if (day < 0)
      return answer(-1);
    f.day = at(day).value, at(day).kind = used;
    if (at(day + 1).kind == 5)
      at(day + 1).kind = used;
    const int year = first(0);
    if (year < 0)
      return answer(-1);
    f.year = two_digits(at(year).value), at(year).kind = used;
    return f.year == 1 ? answer(1) : done();
  }
  // 10
  if (const int separator = first(6); separator > 0) {
    at(separator).kind = used;
    const int second = first(6);
    if (second < 0)
      return answer(-1);
    at(second).kind = used;
    bool known = false, required = false;
    auto in = [&](std::initializer_list<int> styles) {
      for (int s : styles)
        if (s == style)
          return true;
      return false;
    };
    if (in({0, 9})) {
      if (const int year = first(1); year >= 0) {
        f.year = at(year).value, at(year).kind = used, known = true;
        if (year == 0 && order != 4)
          order = 3;
      }
    } else if (in({1, 10})) {
      order = 1;
    } else if (in({2, 11, 21, 22, 23, 40})) {
      order = 3;
    } else if (in({3, 4, 5})) {
      order = 2;
    } else if (in({101, 110})) {
      order = 1, required = true;
    } else if (in({102, 111, 121, 122, 140})) {
      order = 3, required = true;
    } else if (in({103, 104, 105})) {
      order = 2, required = true;
    } else {
      return answer(-1);
    }
    if (required) {
      const int year = first(1);
      if (year < 0)
        return answer(-1);
      f.year = at(year).value, at(year).kind = used, known = true;
    }
    std::string places;
    switch (order) {
    case 1:
      places = "MDY";
      break;
    case 2:
      places = "DMY";
      break;
    case 3:
      places = "YMD";
      break;
    case 4:
      places = "YDM";
      break;
    case 5:
      places = "MYD";
      break;
    case 6:
      places = "DYM";
      break;
    default:
      return answer(-1);
    }
    for (char place : places) {
      if (place == 'Y' && known)
        continue;
      const int number = first(0);
      if (number < 0)
        return answer(-1);
      at(number).kind = used;
      if (place == 'M')
        f.month = at(number).value - 1;
      else if (place == 'D')
        f.day = at(number).value;
      else if ((f.year = two_digits(at(number).value)) == 1)
        return answer(1);
    }
    return done();
  }
  // 11
  if (const int packed = first(10); packed >= 0) {
    const int value = at(packed).value;
    f.day = value % 100, f.month = value / 100 % 100 - 1, f.year = value / 10000;
    at(packed).kind = used;
    if (at(packed).length == 6 && (f.year = two_digits(f.year)) == 1)
      return answer(1);
    return done();
  }
  // 12
  if (const int year = first(1); year >= 0) {
    f.year = at(year).value, at(year).kind = used;
    return done();
  }
  return answer(all_used() ? 99 : -2);
}

} // namespace zrvtest

#endif
