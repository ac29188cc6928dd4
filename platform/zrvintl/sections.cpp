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
constexpr int line_end = -1; // what peek() says behind the last byte
constexpr char entry_sign = '=';
constexpr size_t longest_line = INTL_LINE_SIZE - 1;

// What stands behind `file`: the descriptor and what was read ahead.
struct Input {
  int descriptor;
  int status;       // 0, or the error at which the file stays
  size_t next, end; // the bytes that are not used yet
  char bytes[4096];
};

Input &input_of(const INTL_LOCFILE &file) noexcept {
  return *static_cast<Input *>(file.file);
}

bool is_open(const INTL_LOCFILE *file) noexcept {
  return file != nullptr && file->version == record_version && file->file != nullptr;
}

bool is_blank(int byte) noexcept {
  return byte == ' ' || byte == '\t';
}

// Puts the file at an error, unless it is at one already. Always false.
bool fail(INTL_LOCFILE &file, int status) noexcept {
  Input &input = input_of(file);
  if (input.status == 0)
    input.status = status;
  file.linelen = file.linepos = 0;
  file.end_of_list = file.end_of_section = file.eof = 1;
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

// Brings the next line into the record. False at the end of the file and after an error.
bool read_line(INTL_LOCFILE &file) noexcept {
  if (file.eof != 0)
    return false;
  Input &input = input_of(file);
  const char *newline;
  // A line and the CR of its end are in the block before they are too many.
  while ((newline = static_cast<const char *>(
              std::memchr(input.bytes + input.next, '\n', input.end - input.next))) == nullptr &&
         input.end - input.next <= longest_line + 1) {
    const ssize_t count = refill(input);
    if (count == 0 && input.end == 0) {
      file.linelen = file.linepos = 0;
      file.eof = 1;
      return false;
    }
    if (count < 0) {
      ++file.linenum;
      return fail(file, ZRVINTL_EREAD);
    }
    if (count == 0)
      break;
  }
  ++file.linenum;
  const char *const line = input.bytes + input.next;
  size_t length = newline != nullptr ? static_cast<size_t>(newline - line) : input.end - input.next;
  input.next += length + (newline != nullptr ? 1 : 0);
  if (newline != nullptr && length > 0 && line[length - 1] == '\r')
    --length;
  if (length > longest_line)
    return fail(file, ZRVINTL_ELINE);
  if (std::memchr(line, '\0', length) != nullptr)
    return fail(file, ZRVINTL_ESYNTAX);
  std::memcpy(file.line, line, length);
  file.line[length] = '\0';
  file.linelen = static_cast<int>(length);
  file.linepos = 0;
  return true;
}

// The byte under the cursor, or line_end. A backslash at the end of a line joins the next line.
int peek(INTL_LOCFILE &file) noexcept {
  while (file.linepos + 1 == file.linelen && file.line[file.linepos] == file.escape)
    if (!read_line(file))
      fail(file, ZRVINTL_ESYNTAX); // there is none
  return file.linepos < file.linelen ? static_cast<unsigned char>(file.line[file.linepos])
                                     : line_end;
}

void skip_blanks(INTL_LOCFILE &file) noexcept {
  while (is_blank(peek(file)))
    ++file.linepos;
}

// Goes to the first byte of the next line that is neither blank nor a comment.
bool find_line(INTL_LOCFILE &file) noexcept {
  while (read_line(file)) {
    skip_blanks(file);
    const int first = peek(file);
    if (first != line_end && first != file.comment_char)
      return true;
  }
  return false;
}

// ---- texts ----

// A name or a value on its way into the record. Blanks count when a text byte follows them. What has
// no room is counted and not stored.
class Text {
public:
  template <size_t size>
  explicit Text(char (&buffer)[size]) noexcept : bytes(buffer), room(size - 1) {
    std::memset(buffer, 0, size);
  }

  void add(int byte) noexcept {
    put(byte);
    length = end;
  }
  void add_blank(int byte) noexcept { put(byte); }

  // Takes away the blanks at the end.
  void finish() noexcept {
    if (length < room)
      std::memset(bytes + length, 0, std::min(end, room) - length);
  }
  bool is_empty() const noexcept { return length == 0; }
  bool is_too_long() const noexcept { return length > room; }

private:
  void put(int byte) noexcept {
    if (end < room)
      bytes[end] = static_cast<char>(byte);
    ++end;
  }

  char *bytes;
  size_t room;
  size_t length = 0; // up to the last byte that is not a blank
  size_t end = 0;
};

// Reads a name and the byte that ends it. Backslashes in it are text.
template <size_t size>
bool read_name(INTL_LOCFILE &file, char (&name)[size], char ending) noexcept {
  Text text(name);
  skip_blanks(file);
  for (int byte; (byte = peek(file)) != ending; ++file.linepos) {
    if (byte == line_end)
      return fail(file, ZRVINTL_ESYNTAX);
    if (is_blank(byte))
      text.add_blank(byte);
    else
      text.add(byte);
  }
  ++file.linepos;
  text.finish();
  if (text.is_empty())
    return fail(file, ZRVINTL_ESYNTAX);
  return !text.is_too_long() || fail(file, ZRVINTL_ENAME);
}

int hex_digit(char digit) noexcept {
  if (digit >= '0' && digit <= '9')
    return digit - '0';
  const char lower = static_cast<char>(digit | 0x20);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// Passes a backslash and what belongs to it: \xHH is one byte, anything else stands for itself. The
// line's terminator is no digit, so nothing behind it is looked at.
void read_escape(INTL_LOCFILE &file, Text &text) noexcept {
  const char *const follows = file.line + file.linepos + 1;
  int high, low;
  if (follows[0] == 'x' && (high = hex_digit(follows[1])) >= 0 &&
      (low = hex_digit(follows[2])) >= 0) {
    text.add(high << 4 | low);
    file.linepos += 4;
    return;
  }
  text.add(file.escape);
  text.add(follows[0]);
  file.linepos += 2;
}

// Reads the bytes of a value up to `ending`, or up to the end of the line.
void read_bytes(INTL_LOCFILE &file, Text &text, char ending) noexcept {
  for (int byte; (byte = peek(file)) != ending && byte != line_end;) {
    if (byte == file.escape) {
      read_escape(file, text);
      continue;
    }
    if (is_blank(byte) && file.isquoted == 0)
      text.add_blank(byte);
    else
      text.add(byte);
    ++file.linepos;
  }
}

// Reads the value under the cursor and what separates it from the next one.
bool read_value(INTL_LOCFILE &file) noexcept {
  Text text(file.value);
  skip_blanks(file);
  file.isquoted = peek(file) == file.quote_char;
  if (file.isquoted != 0) {
    ++file.linepos;
    read_bytes(file, text, file.quote_char);
    if (peek(file) == line_end)
      return fail(file, ZRVINTL_ESYNTAX);
    ++file.linepos;
    skip_blanks(file);
  } else {
    read_bytes(file, text, file.list_sep);
  }
  text.finish();
  const int separator = peek(file);
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

// What a call answers: what `read` brought into the record, or null.
template <class Read>
char *answer(INTL_LOCFILE *file, int *status, Read read) noexcept {
  char *const text = is_open(file) ? read(*file) : nullptr;
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
  input->next = input->end = 0;
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
