// The date section of a language's common.loc.
#include <algorithm>
#include <cstring>
#include <iterator>

#include "zrvintl.h"

namespace {

// A text that must fit whole.
template <size_t size>
int take(const char *value, char (&text)[size]) noexcept {
  return intl_strlcpy(text, value, size) < size ? 0 : ZRVINTL_EVALUE;
}

int take_first_day(const char *value, int &day) noexcept {
  if (value[0] < '1' || value[0] > '7' || value[1] != '\0')
    return ZRVINTL_EDATE;
  day = value[0] - '0';
  return 0;
}

int take_clock(const char *value, int &is12hour) noexcept {
  is12hour = std::strcmp(value, "true") == 0;
  return is12hour != 0 || std::strcmp(value, "false") == 0 ? 0 : ZRVINTL_EDATE;
}

// What a key of the section has: how many values, and where each goes.
struct Key {
  const char *name;
  int count;
  int (*take)(intl_dateinfo &info, int index, const char *value);
};

constexpr Key keys[] = {
    {"months", 12,
     [](intl_dateinfo &info, int i, const char *value) { return take(value, info.months[i]); }},
    {"shortmonths", 12,
     [](intl_dateinfo &info, int i, const char *value) {
       return take(value, info.shortmonths[i]);
     }},
    {"days", 7,
     [](intl_dateinfo &info, int i, const char *value) { return take(value, info.days[i]); }},
    {"firstday", 1,
     [](intl_dateinfo &info, int, const char *value) {
       return take_first_day(value, info.firstday);
     }},
    {"dateorder", 1,
     [](intl_dateinfo &info, int, const char *value) { return take(value, info.dateorder); }},
    {"is12hour", 1,
     [](intl_dateinfo &info, int, const char *value) { return take_clock(value, info.is12hour); }},
};
constexpr unsigned all_keys = (1U << std::size(keys)) - 1;

// Reads the values of an entry, exactly as many as its key has.
int read_values(INTL_LOCFILE *file, const Key &key, intl_dateinfo &info) noexcept {
  int count = 0, status = 0;
  while (const char *const value = intl_nextvalue(file, &status)) {
    if (count == key.count)
      return ZRVINTL_EDATE;
    const int taken = key.take(info, count++, value);
    if (taken != 0)
      return taken;
  }
  return status != 0 ? status : count == key.count ? 0 : ZRVINTL_EDATE;
}

} // namespace

int intl_datetime(INTL_LOCFILE *ifile, intl_dateinfo *dateinfo) noexcept {
  if (dateinfo == nullptr)
    return ZRVINTL_EINVAL;
  unsigned seen = 0;
  int status = 0;
  while (const char *const name = intl_nextentry(ifile, &status)) {
    const Key *const key = std::find_if(std::begin(keys), std::end(keys), [name](const Key &row) {
      return std::strcmp(name, row.name) == 0;
    });
    if (key == std::end(keys))
      continue;
    const int read = read_values(ifile, *key, *dateinfo);
    if (read != 0)
      return read;
    seen |= 1U << (key - keys);
  }
  if (status != 0)
    return status;
  return seen == all_keys ? 0 : ZRVINTL_EDATE;
}
