// The section reader: sections, entries and values of the installation's files.
//
// A line is parsed where it stands in the record. peek() and the cursor `linepos` step through it and
// pass from a line that ends in a backslash to the next one, so nothing else knows about joined lines.
// The first error stays in the input block and puts the cursor at the end of everything: loops then
// end by themselves, and every further call answers with the error.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>

#include "zrvintl.h"

namespace {

constexpr int record_version = 1;
constexpr char line_end = '\0'; // what peek() says behind the last byte: no line has a NUL in it
constexpr char entry_sign = '=';
constexpr size_t longest_line = INTL_LINE_SIZE - 1;

// What stands behind `file`: the descriptor and what was read ahead.
struct Input {
  int descriptor;
  int status;        // 0, or the error at which the file stays
  size_t next, end;  // the bytes that are not used yet
  size_t value_used; // bytes of the record's value that may not be zero
  char bytes[4096];
};

Input &input_of(const INTL_LOCFILE &file) noexcept {
  return *static_cast<Input *>(file.file);
}

bool is_open(const INTL_LOCFILE *file) noexcept {
  return file != nullptr && file->version == record_version && file->file != nullptr;
}

bool is_blank(char byte) noexcept {
  return byte == ' ' || byte == '\t';
}

// Puts the cursor behind the last line, where it stays.
void end_lines(INTL_LOCFILE &file) noexcept {
  file.linelen = file.linepos = 0;
  file.line[0] = line_end;
  file.eof = 1;
}

// Puts the file at an error, unless it is at one already. Always false.
bool fail(INTL_LOCFILE &file, int status) noexcept {
  Input &input = input_of(file);
  if (input.status == 0)
    input.status = status;
  file.end_of_list = file.end_of_section = 1;
  end_lines(file);
  return false;
}

// ---- lines ----

// Reads on behind the bytes that are not used yet. Returns the count of new bytes, 0 at the end of
// the file, negative on failure.
ssize_t refill(Input &input) noexcept {
  std::memmove(input.bytes, input.bytes + input.next, input.end - input.next);
  input.end -= input.next;
  input.next = 0;
  ssize_t count;
  do
    count = read(input.descriptor, input.bytes + input.end, sizeof input.bytes - input.end);
  while (count < 0 && errno == EINTR);
  if (count > 0)
    input.end += static_cast<size_t>(count);
  return count;
}

// The end of the first line in the block, or null.
const char *find_newline(const Input &input) noexcept {
  return static_cast<const char *>(
      std::memchr(input.bytes + input.next, '\n', input.end - input.next));
}

// Reads until the block has a whole line, more than a line can have, or the rest of the file. False
// when reading fails.
bool load_line(Input &input) noexcept {
  // The longest line and the CR of its end are not too much yet.
  while (find_newline(input) == nullptr && input.end - input.next <= longest_line + 1) {
    const ssize_t count = refill(input);
    if (count <= 0)
      return count == 0;
  }
  return true;
}

// Brings the next line into the record. False at the end of the file and after an error.
bool read_line(INTL_LOCFILE &file) noexcept {
  if (file.eof != 0)
    return false;
  Input &input = input_of(file);
  const bool loaded = load_line(input);
  if (loaded && input.next == input.end) {
    end_lines(file);
    return false;
  }
  ++file.linenum;
  if (!loaded)
    return fail(file, ZRVINTL_EREAD);
  const char *const line = input.bytes + input.next;
  const char *const newline = find_newline(input);
  size_t length = newline != nullptr ? static_cast<size_t>(newline - line) : input.end - input.next;
  input.next += length + (newline != nullptr ? 1 : 0);
  if (newline != nullptr && length > 0 && line[length - 1] == '\r')
    --length;
  if (length > longest_line)
    return fail(file, ZRVINTL_ELINE);
  if (std::memchr(line, line_end, length) != nullptr)
    return fail(file, ZRVINTL_ESYNTAX);
  std::memcpy(file.line, line, length);
  file.line[length] = line_end;
  file.linelen = static_cast<int>(length);
  file.linepos = 0;
  return true;
}

// The byte under the cursor where the line may end: a backslash that ends it joins the next line.
[[gnu::noinline]] char peek_at_end(INTL_LOCFILE &file) noexcept {
  while (file.linepos + 1 == file.linelen && file.line[file.linepos] == file.escape)
    if (!read_line(file))
      fail(file, ZRVINTL_ESYNTAX); // there is none
  return file.line[file.linepos];
}

// The byte under the cursor, or line_end.
char peek(INTL_LOCFILE &file) noexcept {
  return file.linepos + 1 < file.linelen ? file.line[file.linepos] : peek_at_end(file);
}

void skip_blanks(INTL_LOCFILE &file) noexcept {
  while (is_blank(peek(file)))
    ++file.linepos;
}

// Goes to the first byte of the next line that is neither blank nor a comment.
bool find_line(INTL_LOCFILE &file) noexcept {
  while (read_line(file)) {
    skip_blanks(file);
    const char first = peek(file);
    if (first != line_end && first != file.comment_char)
      return true;
  }
  return false;
}

// ---- texts ----

// A name or a value on its way into the record. What has no room is counted and not stored.
class Text {
public:
  // `used` bytes of the buffer may not be zero.
  template <size_t size>
  Text(char (&buffer)[size], size_t used) noexcept : bytes(buffer), room(size - 1) {
    std::memset(buffer, 0, used);
  }

  void add(const char *run, size_t count) noexcept {
    put(run, count);
    length = end;
  }

  // Adds bytes of which the blanks at the end count only when a further byte follows.
  void add_trimmed(const char *run, size_t count) noexcept {
    put(run, count);
    size_t blanks = 0;
    while (blanks < count && is_blank(run[count - 1 - blanks]))
      ++blanks;
    if (blanks < count)
      length = end - blanks;
  }

  // Takes away the blanks at the end.
  void finish() noexcept {
    if (length < room)
      std::memset(bytes + length, 0, std::min(end, room) - length);
  }
  size_t used() const noexcept { return std::min(length, room); }
  bool is_empty() const noexcept { return length == 0; }
  bool is_too_long() const noexcept { return length > room; }

private:
  void put(const char *run, size_t count) noexcept {
    if (end < room)
      std::memcpy(bytes + end, run, std::min(count, room - end));
    end += count;
  }

  char *bytes;
  size_t room;
  size_t length = 0; // up to the last byte that is not a blank
  size_t end = 0;
};

int hex_digit(char digit) noexcept {
  if (digit >= '0' && digit <= '9')
    return digit - '0';
  const char lower = static_cast<char>(digit | 0x20);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// Passes a backslash and what belongs to it: \xHH is one byte, anything else stands for itself. The
// line's terminator is no digit, so nothing behind it is looked at.
void read_escape(INTL_LOCFILE &file, Text &text) noexcept {
  const char *const escape = file.line + file.linepos;
  int high, low;
  if (escape[1] == 'x' && (high = hex_digit(escape[2])) >= 0 && (low = hex_digit(escape[3])) >= 0) {
    const char byte = static_cast<char>(high << 4 | low);
    text.add(&byte, 1);
    file.linepos += 4;
  } else {
    text.add(escape, 2);
    file.linepos += 2;
  }
}

enum class Kind { name, plain_value, quoted_value };

// Reads bytes up to `ending`, or up to the end of the line. In a name a backslash is text.
void read_text(INTL_LOCFILE &file, Text &text, char ending, Kind kind) noexcept {
  for (char byte; (byte = peek(file)) != ending && byte != line_end;) {
    if (byte == file.escape && kind != Kind::name) {
      read_escape(file, text);
      continue;
    }
    // A backslash is looked at again: it may end the line.
    const char *const run = file.line + file.linepos;
    const char *const end =
        std::find_if(run + 1, static_cast<const char *>(file.line + file.linelen),
                     [ending, escape = file.escape](char c) { return c == ending || c == escape; });
    const auto count = static_cast<size_t>(end - run);
    if (kind == Kind::quoted_value)
      text.add(run, count);
    else
      text.add_trimmed(run, count);
    file.linepos += static_cast<int>(count);
  }
}

// Reads a name and the byte that ends it.
template <size_t size>
bool read_name(INTL_LOCFILE &file, char (&name)[size], char ending) noexcept {
  Text text(name, size);
  skip_blanks(file);
  read_text(file, text, ending, Kind::name);
  text.finish();
  if (peek(file) == line_end || text.is_empty())
    return fail(file, ZRVINTL_ESYNTAX);
  ++file.linepos;
  return !text.is_too_long() || fail(file, ZRVINTL_ENAME);
}

// Reads the value under the cursor and what separates it from the next one.
bool read_value(INTL_LOCFILE &file) noexcept {
  Text text(file.value, input_of(file).value_used);
  skip_blanks(file);
  file.isquoted = peek(file) == file.quote_char;
  if (file.isquoted != 0) {
    ++file.linepos;
    read_text(file, text, file.quote_char, Kind::quoted_value);
    if (peek(file) == line_end)
      return fail(file, ZRVINTL_ESYNTAX);
    ++file.linepos;
    skip_blanks(file);
  } else {
    read_text(file, text, file.list_sep, Kind::plain_value);
  }
  text.finish();
  input_of(file).value_used = text.used();
  const char separator = peek(file);
  if (separator != file.list_sep && separator != line_end)
    return fail(file, ZRVINTL_ESYNTAX);
  if (text.is_too_long())
    return fail(file, ZRVINTL_EVALUE);
  file.end_of_list = separator == line_end;
  if (separator == file.list_sep)
    ++file.linepos;
  return input_of(file).status == 0;
}

// ---- entries and sections ----

// Goes to the next entry of the section. False at its end, with the cursor on the head of the next
// section or at the end of the file.
bool read_entry(INTL_LOCFILE &file) noexcept {
  while (file.end_of_list == 0)
    read_value(file);
  if (file.end_of_section != 0)
    return false;
  if (!find_line(file) || peek(file) == file.leftsection) {
    file.end_of_section = 1;
    return false;
  }
  if (file.section[0] == '\0')
    return fail(file, ZRVINTL_ESYNTAX); // an entry before any section
  if (!read_name(file, file.entry, entry_sign))
    return false;
  skip_blanks(file);
  file.end_of_list = peek(file) == line_end;
  return input_of(file).status == 0;
}

bool read_section(INTL_LOCFILE &file) noexcept {
  while (read_entry(file)) {
  }
  if (file.eof != 0)
    return false;
  ++file.linepos;
  if (!read_name(file, file.section, file.rightsection))
    return false;
  skip_blanks(file);
  if (peek(file) != line_end)
    return fail(file, ZRVINTL_ESYNTAX);
  file.end_of_section = 0;
  return input_of(file).status == 0;
}

// What a call answers: what `find` brought into the record, or null.
template <class Find>
char *answer(INTL_LOCFILE *file, int *status, Find find) noexcept {
  char *const text = is_open(file) ? find(*file) : nullptr;
  if (status != nullptr)
    *status = is_open(file) ? input_of(*file).status : ZRVINTL_ECLOSED;
  return text;
}

constexpr const char *texts[] = {
    "no error",
    "the file cannot be opened",
    "the file cannot be read",
    "a line of the file is too long",
    "a name in the file is too long",
    "a value in the file is too long",
    "the file has a malformed line",
    "the file is not open",
    "the date section of the file is incomplete",
    "an argument is not valid",
    "the result does not fit",
    "the home directory cannot be found",
};

} // namespace

int intl_open(const char *path, INTL_LOCFILE *ifile) noexcept {
  if (ifile == nullptr)
    return ZRVINTL_ECLOSED;
  std::memset(ifile, 0, sizeof *ifile);
  if (path == nullptr)
    return ZRVINTL_EOPEN;
  auto *const input = static_cast<Input *>(comn_malloc(sizeof(Input)));
  if (input == nullptr)
    return ZRVINTL_EOPEN;
  input->descriptor = open(path, O_RDONLY | O_CLOEXEC);
  if (input->descriptor < 0) {
    comn_free(input);
    return ZRVINTL_EOPEN;
  }
  input->status = 0;
  input->next = input->end = input->value_used = 0;
  ifile->version = record_version;
  ifile->file = input;
  ifile->end_of_list = 1;
  ifile->comment_char = ';';
  ifile->leftsection = '[';
  ifile->rightsection = ']';
  ifile->list_sep = ',';
  ifile->escape = '\\';
  ifile->quote_char = '"';
  return 0;
}

int intl_close(INTL_LOCFILE *ifile) noexcept {
  if (!is_open(ifile))
    return ZRVINTL_ECLOSED;
  Input *const input = &input_of(*ifile);
  const int result = close(input->descriptor);
  comn_free(input);
  ifile->file = nullptr;
  return result == 0 ? 0 : ZRVINTL_EREAD;
}

char *intl_nextsection(INTL_LOCFILE *ifile, int *status) noexcept {
  return answer(ifile, status, [](INTL_LOCFILE &file) noexcept {
    return read_section(file) ? file.section : nullptr;
  });
}

char *intl_nextentry(INTL_LOCFILE *ifile, int *status) noexcept {
  return answer(ifile, status, [](INTL_LOCFILE &file) noexcept {
    return read_entry(file) ? file.entry : nullptr;
  });
}

char *intl_nextvalue(INTL_LOCFILE *ifile, int *status) noexcept {
  char *const value = answer(ifile, status, [](INTL_LOCFILE &file) noexcept {
    return file.end_of_list == 0 && read_value(file) ? file.value : nullptr;
  });
  if (value != nullptr && status != nullptr)
    *status = ifile->end_of_list == 0;
  return value;
}

const char *intl_errstr(int status) noexcept {
  // Negated rather than made positive: the lowest number has no positive one.
  const int negative = status > 0 ? -status : status;
  return negative > -static_cast<int>(std::size(texts)) ? texts[-negative]
                                                        : "an error that is not known";
}
