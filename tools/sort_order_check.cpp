// What is wrong with the file of a sort order. The library says whether there is anything; this reads
// along by the same rules to tell where, and why.
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <map>
#include <memory>
#include <optional>
#include <set>

#include "errors.h"
#include "sort_order.h"
#include "visible.h"
#include "zrvcomn/comnlib.h"
#include "zrvcomn/zrvintl.h"

namespace zrvtool {

namespace {

struct SectionFile {
  explicit SectionFile(const std::string &path) {
    if (intl_open(path.c_str(), &file) < 0)
      throw StreamError("cannot open " + in_quotes(path) + ": " + std::strerror(errno));
  }
  ~SectionFile() { intl_close(&file); }
  SectionFile(const SectionFile &) = delete;
  SectionFile &operator=(const SectionFile &) = delete;

  bool find_section() {
    while (const char *const name = intl_nextsection(&file, nullptr))
      if (std::strcmp(name, "sortorder") == 0)
        return true;
    return false;
  }

  INTL_LOCFILE file;
};

// The fault, where it is first seen.
struct Fault {
  std::string text;
};

std::string show(std::string_view bytes) {
  std::string hex, shown;
  for (const char byte : bytes) {
    hex += "\\x";
    append_hex(hex, {&byte, 1});
  }
  append_visible(shown, bytes);
  const bool is_plain =
      std::all_of(bytes.begin(), bytes.end(), [](char byte) { return byte > ' ' && byte < 0x7f; });
  return hex + (is_plain ? " '" + shown + "'" : "");
}

class Explainer {
public:
  explicit Explainer(const std::string &path) : source(path) {}

  // The first fault; none where these rules see none.
  std::optional<std::string> explain() {
    try {
      read();
    } catch (const Fault &fault) {
      return fault.text;
    }
    return std::nullopt;
  }

private:
  [[noreturn]] void fail(const std::string &why) {
    throw Fault{"line " + std::to_string(source.file.linenum) + ": " + why};
  }
  [[noreturn]] void fail_in_value(const std::string &why) {
    fail("'" + key + "', value " + std::to_string(values) + ": " + why);
  }

  bool next_entry() {
    int status = 0;
    const char *const found = intl_nextentry(&source.file, &status);
    if (status < 0)
      fail(intl_errstr(status));
    key = found != nullptr ? found : "";
    values = 0;
    return found != nullptr;
  }

  bool next_value() {
    int status = 0;
    const char *const found = intl_nextvalue(&source.file, &status);
    if (found == nullptr && status < 0)
      fail(intl_errstr(status));
    value = found != nullptr ? found : "";
    values += found != nullptr;
    return found != nullptr;
  }

  void read() {
    int status = 0;
    for (;;) {
      const char *const name = intl_nextsection(&source.file, &status);
      if (status < 0)
        fail(intl_errstr(status));
      if (name == nullptr)
        fail("there is no section 'sortorder'");
      if (std::strcmp(name, "sortorder") == 0)
        break;
    }
    bool has_entry = read_header();
    if (is_binary)
      return;
    for (; has_entry && key == "lig"; has_entry = next_entry())
      read_ligature();
    if (!has_entry)
      fail("the section ends without an entry 'char'");
    int weight = 0;
    for (; has_entry && key != "ignore char" && weight < SO_WEIGHTS; has_entry = next_entry()) {
      if (key == "lig")
        fail("'lig' stands behind the first 'char'");
      if (key != "char")
        fail("'" + key + "' is no entry of a body");
      ++weight;
      read_characters();
    }
    if (has_entry && key == "char")
      leftover = " (the entry of line " + std::to_string(source.file.linenum) +
                 " and what follows is the 256th and is not read)";
    check_bytes();
  }

  // ---- the header ----

  void require_value() {
    if (!next_value())
      fail("'" + key + "' has no value");
  }

  bool truth() {
    require_value();
    if (value != "true" && value != "false")
      fail_in_value("neither 'true' nor 'false'");
    return value == "true";
  }

  void check_name() {
    require_value();
    if (value.size() >= SO_NAME_SIZE - 1)
      fail_in_value("longer than " + std::to_string(SO_NAME_SIZE - 2) + " bytes");
    for (size_t i = 0; i < value.size(); ++i) {
      const auto byte = static_cast<CS_BYTE>(value[i]);
      if (com_isalpha(byte) == 0 && (i == 0 || (com_isdigit(byte) == 0 && byte != '_')))
        fail_in_value("byte " + std::to_string(i + 1) + ", " + show(value.substr(i, 1)) +
                      ", may not stand in a name" + (i == 0 ? " at its beginning" : ""));
    }
    if (value.empty())
      fail_in_value("empty");
  }

  bool read_header() {
    std::set<std::string> seen;
    bool has_entry;
    while ((has_entry = next_entry())) {
      if (key == "class") {
        require_value();
        if (value == "\x02")
          fail_in_value("class 2 is reserved and cannot be compiled");
        if (value[0] != 1)
          fail_in_value("neither \\x01 nor \\x02");
      } else if (key == "id") {
        require_value();
        if (value.empty())
          fail_in_value("the number is 0");
      } else if (key == "charset" || key == "name") {
        check_name();
      } else if (key == "menuname") {
        require_value();
      } else if (key == "description") {
        require_value();
        if (value.size() >= SO_DESCRIPT_SIZE - 1)
          fail_in_value("longer than " + std::to_string(SO_DESCRIPT_SIZE - 2) + " bytes");
      } else if (key == "preference") {
        truth();
      } else if (key == "binary") {
        is_binary = truth();
      } else {
        break;
      }
      seen.insert(key);
    }
    for (const char *const required : {"class", "charset", "menuname", "name", "id", "description"})
      if (seen.count(required) == 0)
        fail("the header ends without '" + std::string(required) + "'");
    if (has_entry && key != "lig" && key != "char" && key != "ignore char")
      fail("'" + key + "' is no entry of a sort order");
    if (!has_entry && !is_binary)
      fail("the section ends behind the header, and the order is not by byte");
    return has_entry;
  }

  // ---- ligatures ----

  bool is_ligature(char byte) const { return ligature_lines.count(byte) != 0; }

  void add_element() {
    if (++elements > SMEL_COUNT)
      fail_in_value("the table has room for " + std::to_string(SMEL_COUNT) +
                    " double characters and bytes of ligatures, and this is one more");
  }

  void read_ligature() {
    std::vector<std::string> slots;
    for (;;) {
      if (!next_value())
        fail("'lig' has no closing value, 'after xy' or 'equal xy'");
      const size_t begin = std::min(value.find_first_not_of(' '), value.size());
      const std::string word = value.substr(begin, 6);
      if (word == "after " || word == "equal ")
        return close_ligature(slots.empty(),
                              std::min(value.find_first_not_of(' ', begin + 6), value.size()));
      if (++slot_count > LIG_COUNT)
        fail_in_value("there is room for " + std::to_string(LIG_COUNT) + " ligatures");
      slots.push_back(value);
      read_tied();
    }
  }

  void read_tied() {
    size_t count = 0;
    for (size_t at = 0;;) {
      at = value.find_first_not_of(' ', at);
      if (at == std::string::npos)
        fail_in_value("a byte is missing");
      const char byte = value[at];
      if (is_ligature(byte))
        fail_in_value(show({&byte, 1}) + " is part of the ligature in line " +
                      std::to_string(ligature_lines[byte]));
      if (bases.count(byte) != 0)
        fail_in_value(show({&byte, 1}) + " is what an earlier ligature sorts as");
      if (++count > LIG_BYTES)
        fail_in_value("more than " + std::to_string(LIG_BYTES) + " bytes");
      ligature_lines[byte] = source.file.linenum;
      add_element();
      at = value.find_first_not_of(' ', at + 1);
      if (at == std::string::npos)
        return;
      if (value[at] != '=')
        fail_in_value("byte " + std::to_string(at + 1) + ", " + show(value.substr(at, 1)) +
                      ", where '=' or the end is due");
      ++at;
    }
  }

  void close_ligature(bool is_empty, size_t at) {
    if (is_empty)
      fail_in_value("it closes an entry that names no byte");
    const std::string pair = value.substr(at);
    if (pair.size() != 2)
      fail_in_value("behind the word stand " + std::to_string(pair.size()) +
                    " bytes where two characters are due");
    for (const char byte : pair)
      if (is_ligature(byte))
        fail_in_value(show({&byte, 1}) + " is itself a ligature, of line " +
                      std::to_string(ligature_lines[byte]));
    bases.insert(pair.begin(), pair.end());
  }

  // ---- characters ----

  void read_characters() {
    while (next_value()) {
      if (value.empty())
        fail_in_value("empty");
      const size_t length = value.size() == 1 || value[1] == '=' || value[1] == ' ' ? 1 : 2;
      for (size_t at = 0;; ++at) {
        const std::string character = value.substr(std::min(at, value.size()), length);
        if (character.empty())
          fail_in_value("a character is missing behind '='");
        if (character.size() < length ||
            (length == 2 && (character[1] == '=' || character[1] == ' ')))
          fail_in_value("byte " + std::to_string(at + 1) + ", " + show(character.substr(0, 1)) +
                        ", is one byte in a value of double characters");
        for (const char byte : character)
          if (is_ligature(byte))
            fail_in_value(show({&byte, 1}) + " is a ligature, of line " +
                          std::to_string(ligature_lines[byte]));
        const auto [earlier, is_new] = lines.emplace(character, source.file.linenum);
        if (!is_new)
          fail_in_value(show(character) + " is listed already, in line " +
                        std::to_string(earlier->second));
        if (length == 2)
          add_element();
        at += length;
        if (at >= value.size() || value[at] == ' ')
          break;
        if (value[at] != '=')
          fail_in_value("byte " + std::to_string(at + 1) + ", " + show(value.substr(at, 1)) +
                        ", where '=', a blank or the end is due");
      }
    }
  }

  // That every byte has weights, and what the bytes that begin double characters take.
  void check_bytes() {
    std::set<char> firsts;
    for (const auto &[character, line] : lines)
      if (character.size() == 2)
        firsts.insert(character[0]);
    std::string missing;
    size_t count = 0;
    for (int code = 1; code < 256; ++code) {
      const char byte = static_cast<char>(code);
      if (lines.count(std::string(1, byte)) != 0 || is_ligature(byte))
        continue;
      if (++count <= 8)
        missing += (missing.empty() ? "" : ", ") + show({&byte, 1});
    }
    if (count > 0)
      fail("at the end " + std::to_string(count) + (count == 1 ? " byte is" : " bytes are") +
           " not listed: " + missing + (count > 8 ? " ..." : "") + leftover);
    if (elements + static_cast<int>(firsts.size()) > SMEL_COUNT)
      fail("at the end double characters, the bytes that begin them and ligatures take " +
           std::to_string(elements + static_cast<int>(firsts.size())) + " elements of " +
           std::to_string(SMEL_COUNT));
  }

  SectionFile source;
  std::string key, value, leftover;
  int values = 0, slot_count = 0, elements = 0;
  bool is_binary = false;
  std::map<char, int> ligature_lines;
  std::map<std::string, int> lines; // where each character is listed
  std::set<char> bases;
};

// Owns what the library's steps make of a file.
struct Compiled {
  ~Compiled() { comn_free(order.char_sort_class); }
  CS_CONTEXT context{};
  S_DESCRIPT header{};
  CsSortDesc order{};
};

std::string counted(size_t count, const char *what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string summary(const S_DESCRIPT &header, const SO_1CLASS *table) {
  std::string text = "sort order " + std::string(header.name) + " of " + header.charset +
                     ", number " + std::to_string(header.id) + ": ";
  if (table == nullptr)
    return text + "by byte";
  std::set<int> weights;
  for (const LSC &own : table->lscs)
    if (own.pst.t != 0)
      weights.insert(own.pst.p);
  size_t types[8] = {};
  for (int i = 0; i < table->nsmels; ++i)
    ++types[table->smels[i].type_smel % 8];
  for (int i = 0; i < table->nsmels; ++i)
    if (table->smels[i].type_smel == SMEL_DOUBLE)
      weights.insert(table->smels[i].smel_types.sm_1type.lsc1.pst.p);
    else if (table->smels[i].type_smel == SMEL_BYTE)
      weights.insert(table->smels[i].smel_types.sm_0type.lsc1.pst.p);
  return text + counted(weights.size() - 1, "weight") + ", " +
         counted(types[SMEL_DOUBLE], "double character") + ", " +
         counted(types[SMEL_LIGATURE], "ligature");
}

} // namespace

SortOrderReport check_sort_order(const std::string &path) {
  Compiled compiled;
  compiled.order.char_sort_descript = &compiled.header;
  CS_RETCODE result = CS_FAIL;
  {
    SectionFile source(path);
    CS_CHAR *key = nullptr;
    if (source.find_section())
      result = comn__get_sort_description(&compiled.context, &source.file, &compiled.header, &key);
    if (result == CS_SUCCEED)
      result = compiled.header.class_ == 1
                   ? comn__build_class1(&compiled.context, &source.file, key, &compiled.order)
                   : CS_FAIL;
  }
  if (result == CS_MEM_ERROR)
    throw std::bad_alloc();
  if (result == CS_SUCCEED)
    return {true, summary(compiled.header,
                          static_cast<const SO_1CLASS *>(compiled.order.char_sort_class))};
  const std::optional<std::string> fault = Explainer(path).explain();
  return {false, fault.value_or("the library refuses the file, and why is not known")};
}

} // namespace zrvtool
