// Arguments put into the text of a message.
#include <cstdarg>
#include <cstring>

#include "zrvintl.h"

namespace {

constexpr int longest_number = 20; // the digits of 2 to the 63rd and a sign

// One argument as it will be shown.
struct Argument {
  const char *text;
  size_t length;
  char digits[longest_number];

  void set(const char *string) noexcept {
    text = string;
    length = std::strlen(string);
  }

  void set(long number) noexcept {
    char *first = digits + longest_number;
    // Negated as unsigned: the lowest number has no positive one.
    auto rest = static_cast<unsigned long>(number);
    if (number < 0)
      rest = 0 - rest;
    do
      *--first = static_cast<char>('0' + rest % 10);
    while ((rest /= 10) != 0);
    if (number < 0)
      *--first = '-';
    text = first;
    length = static_cast<size_t>(digits + longest_number - first);
  }
};

// The bytes of the conversion behind a percent sign ("s", "d" or "ld"), or 0.
int conversion_length(const char *text) noexcept {
  if (*text == 's' || *text == 'd')
    return 1;
  return text[0] == 'l' && text[1] == 'd' ? 2 : 0;
}

// Fetches the arguments that a format tells of. Returns their number, or negative.
int fetch(Argument (&arguments)[INTL_MAX_ARGUMENTS], const char *format, va_list &list) noexcept {
  int count = 0;
  for (const char *at = format; (at = std::strchr(at, '%')) != nullptr;) {
    ++at;
    const int length = conversion_length(at);
    if (length == 0 || count == INTL_MAX_ARGUMENTS)
      return ZRVINTL_EINVAL;
    if (*at == 's') {
      const char *const string = va_arg(list, const char *);
      if (string == nullptr)
        return ZRVINTL_EINVAL;
      arguments[count].set(string);
    } else {
      arguments[count].set(*at == 'l' ? va_arg(list, long) : long{va_arg(list, int)});
    }
    ++count;
    at += length;
  }
  return count;
}

// A result on its way into a buffer; empty in the end where a part of it had no room.
class Result {
public:
  Result(char *buffer, int size) noexcept : bytes(buffer), room(static_cast<size_t>(size) - 1) {}

  void add(const char *text, size_t count) noexcept {
    if (count <= room - used) {
      std::memcpy(bytes + used, text, count);
      used += count;
    } else {
      fits = false;
    }
  }

  int finish() noexcept {
    if (!fits)
      used = 0;
    bytes[used] = '\0';
    return fits ? static_cast<int>(used) : ZRVINTL_ESIZE;
  }

private:
  char *bytes;
  size_t room, used = 0;
  bool fits = true;
};

// What stands for the mark at a percent sign, and how many bytes the mark has.
struct Mark {
  const char *text;
  size_t length;
  int bytes;
};

Mark read_mark(const char *percent, const Argument *arguments, int count, int &next) noexcept {
  const char first = percent[1];
  if (first == '%')
    return {percent, 1, 2};
  int number, bytes;
  if (first >= '1' && first <= '9' && percent[2] == '!') {
    number = first - '1';
    bytes = 3;
  } else {
    const int length = conversion_length(percent + 1);
    number = length != 0 ? next : count;
    bytes = 1 + length;
  }
  if (number >= count)
    return {percent, 1, 1};
  if (first == 's' || first == 'd' || first == 'l')
    ++next;
  return {arguments[number].text, arguments[number].length, bytes};
}

int build(char *buffer, int size, const char *text, const Argument *arguments, int count) noexcept {
  Result result(buffer, size);
  int next = 0;
  const char *at = text;
  while (const char *const percent = std::strchr(at, '%')) {
    result.add(at, static_cast<size_t>(percent - at));
    const Mark mark = read_mark(percent, arguments, count, next);
    result.add(mark.text, mark.length);
    at = percent + mark.bytes;
  }
  result.add(at, std::strlen(at));
  return result.finish();
}

} // namespace

int intl_strbuild(int zero, char *buffer, int size, const char *text, const char *format,
                  ...) noexcept {
  if (buffer == nullptr || size < 1)
    return ZRVINTL_EINVAL;
  buffer[0] = '\0';
  if (zero != 0 || text == nullptr || format == nullptr)
    return ZRVINTL_EINVAL;
  Argument arguments[INTL_MAX_ARGUMENTS];
  va_list list;
  va_start(list, format);
  const int count = fetch(arguments, format, list);
  va_end(list);
  return count < 0 ? count : build(buffer, size, text, arguments, count);
}
