// The debug stream: where it goes, and the two printers.
#include <climits>
#include <cstdarg>
#include <cstdint>
#include <cstring>

#include "checks.h"
#include "debug_stream.h"

FILE *Com_fp = nullptr;

namespace {

// A conversion specification of the debug format, from its "%" to its letter.
class Specification {
public:
  // Reads what stands behind a "%" and moves `format` past it.
  explicit Specification(const CS_CHAR *&format) noexcept {
    append('%');
    while (*format != '\0') {
      const CS_CHAR c = *format++;
      append(c);
      if (std::strchr("cdlsxX", c) == nullptr) {
        // With no more than these fprintf reaches for no argument but the word.
        well_formed = well_formed && std::strchr("-+ #.0123456789h", c) != nullptr;
        narrow = narrow || c == 'h';
        continue;
      }
      letter = c;
      if (c == 'l') {
        if (*format == 'd' || *format == 'x')
          append(*format++);
        else
          append('d');
      }
      break;
    }
    // Only an integer has a narrow form.
    if (narrow && std::strchr("dxX", letter) == nullptr)
      well_formed = false;
    if (length == sizeof text)
      well_formed = false;
    else
      text[length] = '\0';
  }

  void print(FILE *stream, const intptr_t *&words) const noexcept {
    if (!well_formed || words == nullptr) {
      print_illegal(stream);
      return;
    }
    switch (letter) {
    case 'd':
    case 'x':
    case 'X':
    case 'c':
      std::fprintf(stream, text, static_cast<int>(*words++));
      break;
    case 'l':
      std::fprintf(stream, text, static_cast<long>(*words++));
      break;
    case 's': {
      const auto *string = reinterpret_cast<const char *>(*words++);
      std::fprintf(stream, text, string != nullptr ? string : "(null)");
      break;
    }
    default:
      print_illegal(stream);
    }
  }

private:
  static void print_illegal(FILE *stream) noexcept {
    std::fputs("illegal format specification\n", stream);
  }

  void append(CS_CHAR c) noexcept {
    if (length < sizeof text)
      text[length++] = c;
  }

  CS_CHAR text[32];
  size_t length = 0;
  CS_CHAR letter = '\0';
  bool narrow = false;
  bool well_formed = true;
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
      Specification(format).print(stream, words);
    }
  }
  std::fflush(stream);
  return COMN_TRACE(CS_SUCCEED);
}
