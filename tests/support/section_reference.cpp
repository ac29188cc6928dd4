#include "section_reference.h"

#include <optional>

#include "zrvcomn/zrvintl.h"

namespace zrvtest {

namespace {

using std::string;
using std::string_view;

struct Failure {
  int status, line;
};

string_view trimmed(string_view text) {
  const size_t first = text.find_first_not_of(" \t");
  if (first == text.npos)
    return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

// A byte of a value, or what cannot be read instead of it.
struct Token {
  string bytes;
  bool is_text; // it came from an escape: it ends nothing, and no blank of it is taken away
  int line;
  int status; // negative: the file is at an error here
};

bool is_byte(const Token &token, char byte) {
  return !token.is_text && token.bytes == string_view(&byte, 1);
}
bool is_blank(const Token &token) {
  return is_byte(token, ' ') || is_byte(token, '\t');
}

class Slow {
public:
  explicit Slow(string_view whole) : text(whole) {}

  std::vector<SectionEvent> run() {
    Failure end = {0, 0};
    if (const auto failed = read_all())
      end = *failed;
    events.push_back({SectionEvent::end, "", end.status, end.line});
    return events;
  }

private:
  using Result = std::optional<Failure>;

  // The next line of the file, or a failure, or neither at the end.
  Result next_line(std::optional<string_view> &line) {
    line.reset();
    if (text.empty())
      return {};
    ++number;
    const size_t newline = text.find('\n');
    string_view found = text.substr(0, newline);
    text.remove_prefix(newline == text.npos ? text.size() : newline + 1);
    if (newline != text.npos && found.ends_with('\r'))
      found.remove_suffix(1);
    if (found.size() > 1023)
      return Failure{ZRVINTL_ELINE, number};
    if (found.find('\0') != found.npos)
      return Failure{ZRVINTL_ESYNTAX, number};
    line = found;
    return {};
  }

  // The line that must follow one that ends in a backslash.
  Result joined_line(string_view &line) {
    std::optional<string_view> found;
    if (const Result failed = next_line(found))
      return failed;
    if (!found)
      return Failure{ZRVINTL_ESYNTAX, number};
    line = *found;
    return {};
  }

  Result read_all() {
    bool has_section = false;
    for (std::optional<string_view> found;;) {
      if (const Result failed = next_line(found))
        return failed;
      if (!found)
        return {};
      string_view line = *found;
      // Lines of blanks that join the next one stand for nothing.
      while (!line.empty() && line.back() == '\\' && trimmed(line) == "\\")
        if (const Result failed = joined_line(line))
          return failed;
      line = line.substr(std::min(line.find_first_not_of(" \t"), line.size()));
      if (line.empty() || line[0] == ';')
        continue;
      if (line[0] == '[') {
        if (const Result failed = read_section(line.substr(1)))
          return failed;
        has_section = true;
      } else if (!has_section) {
        return Failure{ZRVINTL_ESYNTAX, number};
      } else if (const Result failed = read_entry(line)) {
        return failed;
      }
    }
  }

  // A name up to `ending`; `line` becomes what follows it.
  Result read_name(string_view &line, char ending, string &name) {
    size_t place;
    while ((place = line.find(ending)) == line.npos) {
      if (!line.ends_with('\\'))
        return Failure{ZRVINTL_ESYNTAX, number};
      name += line.substr(0, line.size() - 1);
      if (const Result failed = joined_line(line))
        return failed;
    }
    name += line.substr(0, place);
    line.remove_prefix(place + 1);
    name = string(trimmed(name));
    if (name.empty())
      return Failure{ZRVINTL_ESYNTAX, number};
    if (name.size() > 63)
      return Failure{ZRVINTL_ENAME, number};
    return {};
  }

  Result read_section(string_view line) {
    string name;
    if (const Result failed = read_name(line, ']', name))
      return failed;
    while (!line.empty() && line.back() == '\\' && trimmed(line) == "\\")
      if (const Result failed = joined_line(line))
        return failed;
    if (!trimmed(line).empty())
      return Failure{ZRVINTL_ESYNTAX, number};
    events.push_back({SectionEvent::section, name, 0, 0});
    return {};
  }

  // The values' part of an entry as tokens, all joined lines of it.
  std::vector<Token> tokens_of(string_view line) {
    std::vector<Token> tokens;
    for (;;) {
      const size_t run =
          line.size() - std::min(line.size(), line.find_last_not_of('\\') + 1); // at the end
      const bool joins = run % 2 == 1;
      if (joins)
        line.remove_suffix(1);
      while (!line.empty()) {
        size_t length = line[0] == '\\' ? 2 : 1;
        string bytes(line.substr(0, length));
        if (line.size() >= 4 && bytes == "\\x" && std::isxdigit(line[2] & 255) != 0 &&
            std::isxdigit(line[3] & 255) != 0) {
          length = 4;
          bytes = string(1, static_cast<char>(std::stoi(string(line.substr(2, 2)), nullptr, 16)));
        }
        tokens.push_back({bytes, length > 1, number, 0});
        line.remove_prefix(length);
      }
      if (!joins)
        return tokens;
      if (const Result failed = joined_line(line)) {
        tokens.push_back({"", true, failed->line, failed->status});
        return tokens;
      }
    }
  }

  Result read_entry(string_view line) {
    string key;
    if (const Result failed = read_name(line, '=', key))
      return failed;
    const std::vector<Token> tokens = tokens_of(line);
    // An error among the blanks behind the sign is seen before the key is told.
    size_t next = 0;
    while (next < tokens.size() && is_blank(tokens[next]))
      ++next;
    if (next < tokens.size() && tokens[next].status < 0)
      return Failure{tokens[next].status, tokens[next].line};
    events.push_back({SectionEvent::entry, key, 0, 0});
    for (bool more = next < tokens.size(); more;)
      if (const Result failed = read_value(tokens, next, more))
        return failed;
    return {};
  }

  // The value that begins at token `next`; `more` says whether another one follows.
  Result read_value(const std::vector<Token> &tokens, size_t &next, bool &more) {
    const auto here = [&]() -> const Token & {
      static const Token none = {"", true, 0, 0};
      return next < tokens.size() ? tokens[next] : none;
    };
    const auto failure = [&](int status) {
      if (here().status < 0)
        return Failure{here().status, here().line};
      return Failure{status, next < tokens.size() ? here().line : number};
    };
    while (is_blank(here()))
      ++next;
    const bool quoted = is_byte(here(), '"');
    const char ending = quoted ? '"' : ',';
    if (quoted)
      ++next;
    string bytes;
    size_t kept = 0;
    for (; next < tokens.size() && here().status == 0 && !is_byte(here(), ending); ++next) {
      bytes += here().bytes;
      if (quoted || !is_blank(here()))
        kept = bytes.size();
    }
    bytes.resize(kept);
    if (quoted) {
      if (!is_byte(here(), '"'))
        return failure(ZRVINTL_ESYNTAX);
      ++next;
      while (is_blank(here()))
        ++next;
    }
    more = is_byte(here(), ',');
    if (next < tokens.size() && !more)
      return failure(ZRVINTL_ESYNTAX);
    if (bytes.size() > 1024)
      return failure(ZRVINTL_EVALUE);
    if (more)
      ++next;
    while (bytes.ends_with('\0'))
      bytes.pop_back();
    events.push_back({SectionEvent::value, bytes, more, 0});
    return {};
  }

  string_view text;
  int number = 0;
  std::vector<SectionEvent> events;
};

} // namespace

std::vector<SectionEvent> read_sections_slowly(string_view text) {
  return Slow(text).run();
}

} // namespace zrvtest
