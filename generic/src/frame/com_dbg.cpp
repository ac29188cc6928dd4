// The debug stream: where it goes, and the two printers.
#include <climits>
#include <cstdarg>
#include <cstdint>
#include <cstring>

#include "checks.h"
#include "debug_stream.h"

FILE *Com_fp = nullptr;

namespace {

bool is_one_of(CS_CHAR c, const char *characters) noexcept {
  return c != '\0' && std::strchr(characters, c) != nullptr;
}

// A conversion specification of the debug format: flags, width, precision and length up to a
// letter. What else stands there, above all what would make fprintf reach for other arguments than
// one word ("*", "$", "n"), is passed over.
class Specification {
public:
  // Reads what stands behind a "%" and moves `format` past it.
  explicit Specification(const CS_CHAR *&format) noexcept {
    while (*format != '\0' && letter == '\0')
      read(*format++);
    if (letter == 'l') {
      letter = *format == 'x' ? 'x' : 'd';
      length = long_length;
      if (is_one_of(*format, "dx"))
        ++format;
    }
  }

  bool is_complete() const noexcept { return letter != '\0'; }

  void print(FILE *stream, intptr_t word) const noexcept {
    CS_CHAR text[16];
    if (letter == 's') {
      const auto *string = reinterpret_cast<const char *>(word);
      std::fprintf(stream, compose(text, ""), width, precision, string ? string : "(null)");
    } else if (letter == 'c') {
      std::fprintf(stream, compose(text, ""), width, precision, static_cast<int>(word));
    } else {
      std::fprintf(stream, compose(text, "j"), width, precision, integer(word));
    }
  }

private:
  static constexpr CS_CHAR long_length = 'l';

  void read(CS_CHAR c) noexcept {
    if (is_one_of(c, "cdlsxX")) {
      letter = c;
    } else if (is_one_of(c, "-+ #'") || (c == '0' && width == 0 && precision < 0)) {
      if (std::strchr(flags, c) == nullptr)
        flags[std::strlen(flags)] = c;
    } else if (c == '.') {
      precision = 0;
    } else if (is_one_of(c, "0123456789")) {
      append_digit(precision < 0 ? width : precision, c - '0');
    } else if (is_one_of(c, "hzjt")) {
      halvings = c == 'h' ? halvings + 1 : 0;
      length = c;
    }
  }

  static void append_digit(int &number, int digit) noexcept {
    number = number > (INT_MAX - digit) / 10 ? INT_MAX : number * 10 + digit;
  }

  const CS_CHAR *compose(CS_CHAR (&text)[16], const char *modifier) const noexcept {
    std::snprintf(text, sizeof text, "%%%s*.*%s%c", flags, modifier, letter);
    return text;
  }

  // The integer that a word is: of its lower half, fourth or eighth for h and hh, of an int without
  // a length, of all of it for any other.
  intmax_t integer(intptr_t word) const noexcept {
    const int used = length == 'h' ? (halvings == 1 ? 16 : 8) : length != '\0' ? word_bits : 32;
    const int unused = 64 - used;
    const uint64_t shifted = static_cast<uint64_t>(word) << unused;
    return letter == 'd' ? static_cast<int64_t>(shifted) >> unused
                         : static_cast<int64_t>(shifted >> unused);
  }

  static constexpr int word_bits = 8 * sizeof(intptr_t);

  CS_CHAR flags[7] = {}; // each of the six at most once
  int width = 0;
  int precision = -1; // negative for none
  CS_CHAR length = '\0';
  int halvings = 0; // how many h there are
  CS_CHAR letter = '\0';
};

} // namespace

CS_RETCODE comn_debug_setfile(CS_CONTEXT *, CS_CHAR *filename, CS_INT filenlen) noexcept {
  FILE *file = nullptr;
  if (filename != nullptr && filenlen != 0) {
    CS_CHAR path[PATH_MAX];
    const size_t limit = filenlen < 0 ? sizeof path : static_cast<size_t>(filenlen);
    const size_t length = strnlen(filename, limit);
    if (length >= sizeof path)
      return COMN_TRACE(CS_FAIL);
    std::memcpy(path, filename, length);
    path[length] = '\0';
    file = std::fopen(path, "ae");
    if (file == nullptr)
      return COMN_TRACE(CS_FAIL);
  }
  if (Com_fp != nullptr)
    std::fclose(Com_fp);
  Com_fp = file;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE comn_debug_print(const char *fmtstr, ...) noexcept {
  COMN_CHECK_PTR(fmtstr, COMN_TRACE(CS_FAIL));
  FILE *stream = comn::debug_stream();
  va_list arguments;
  va_start(arguments, fmtstr);
  std::vfprintf(stream, fmtstr, arguments);
  va_end(arguments);
  std::fflush(stream);
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE comn_debug_vprint(CS_CHAR *fmtstr, CS_VOID *ap) noexcept {
  COMN_CHECK_PTR(fmtstr, COMN_TRACE(CS_FAIL));
  FILE *stream = comn::debug_stream();
  const auto *words = static_cast<const intptr_t *>(ap);
  for (const CS_CHAR *format = fmtstr; *format != '\0';) {
    const CS_CHAR c = *format++;
    if (c != '%') {
      std::fputc(c, stream);
    } else if (*format == '%') {
      std::fputc('%', stream);
      ++format;
    } else {
      const Specification specification(format);
      if (specification.is_complete() && words != nullptr)
        specification.print(stream, *words++);
      else
        std::fputs("illegal format specification\n", stream);
    }
  }
  std::fflush(stream);
  return COMN_TRACE(CS_SUCCEED);
}
