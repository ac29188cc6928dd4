#include "sort_order_reference.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <set>

#include "text_file.h"
#include "zrvcomn/comnlib.h"
#include "zrvcomn/zrvintl.h"

namespace zrvtest {

namespace {

// What ends the compilation of a file that is wrong.
struct Refused {
  CS_RETCODE result;
  int reader_status = 0;
};

[[noreturn]] void refuse() {
  throw Refused{CS_FAIL};
}

// A file as the library's reader hands it out.
class Cursor {
public:
  explicit Cursor(std::string_view bytes) : text(bytes) {
    if (intl_open(text.path(), &file) != 0)
      std::abort();
  }
  ~Cursor() { intl_close(&file); }
  Cursor(const Cursor &) = delete;
  Cursor &operator=(const Cursor &) = delete;

  std::optional<std::string> section() { return answer(intl_nextsection); }
  std::optional<std::string> entry() { return answer(intl_nextentry); }
  std::optional<std::string> value() { return answer(intl_nextvalue); }

private:
  // Up to its first NUL, which is where every text ends.
  std::optional<std::string> answer(char *(*next)(INTL_LOCFILE *, int *)) {
    int status = 0;
    if (const char *const found = next(&file, &status))
      return found;
    if (status < 0)
      throw Refused{COM_INTL_ERROR, status};
    return std::nullopt;
  }

  TextFile text;
  INTL_LOCFILE file;
};

struct Slot {
  std::string bytes;
  char first = 0, second = 0;
  bool is_after = false;
};

class Compiler {
public:
  Compiler(std::string_view file, SlowOrder &result) : cursor(file), order(result) {}

  void compile() {
    std::optional<std::string> section;
    do
      section = cursor.section();
    while (section && *section != "sortorder");
    if (!section)
      refuse();
    read_header();
    if (order.header.class_ == 2)
      refuse();
    if (order.header.isbin != 0)
      return;
    while (key == "lig") {
      read_ligature();
      key = cursor.entry();
      if (!key)
        refuse();
    }
    for (int p = 1; p <= 255 && key && *key != "ignore char"; ++p) {
      if (*key != "char")
        refuse();
      read_characters(p);
      key = cursor.entry();
    }
    place_ligatures();
    make_table();
  }

private:
  // ---- the header ----

  std::string required_value() {
    const auto value = cursor.value();
    if (!value)
      refuse();
    return *value;
  }

  int byte() {
    const std::string value = required_value();
    return value.empty() ? 0 : static_cast<unsigned char>(value[0]);
  }

  int truth() {
    const std::string text = required_value();
    if (text != "true" && text != "false")
      refuse();
    return text == "true";
  }

  void name(char *field) {
    const std::string text = required_value();
    if (text.empty() || text.size() >= 30 || com_isalpha(static_cast<CS_BYTE>(text[0])) == 0)
      refuse();
    for (const char c : text) {
      const auto code = static_cast<CS_BYTE>(c);
      if (com_isalpha(code) == 0 && com_isdigit(code) == 0 && c != '_')
        refuse();
    }
    std::strcpy(field, text.c_str());
  }

  void read_header() {
    S_DESCRIPT &header = order.header;
    header.preference = 1;
    std::set<std::string> seen;
    while ((key = cursor.entry())) {
      if (*key == "class") {
        header.class_ = byte();
        if (header.class_ != 1 && header.class_ != 2)
          refuse();
      } else if (*key == "id") {
        header.id = byte();
        if (header.id == 0)
          refuse();
      } else if (*key == "charset") {
        name(header.charset);
      } else if (*key == "name") {
        name(header.name);
      } else if (*key == "menuname") {
        required_value();
      } else if (*key == "description") {
        const std::string text = required_value();
        if (text.size() >= 255)
          refuse();
        std::strcpy(header.descript, text.c_str());
      } else if (*key == "preference") {
        header.preference = truth();
      } else if (*key == "binary") {
        header.isbin = truth();
      } else {
        break;
      }
      seen.insert(*key);
    }
    for (const char *const required : {"class", "charset", "menuname", "name", "id", "description"})
      if (seen.count(required) == 0)
        refuse();
    if (!key) {
      if (header.isbin == 0)
        refuse();
      return;
    }
    const std::set<std::string> legal =
        header.class_ == 1
            ? std::set<std::string>{"lig", "char", "ignore char"}
            : std::set<std::string>{"not_found",   "lig",         "char",       "alphabet",
                                    "row",         "row-low",     "row-high",   "plane",
                                    "group",       "ignore char", "ignore row", "ignore plane",
                                    "ignore group"};
    if (legal.count(*key) == 0)
      refuse();
  }

  // ---- ligatures ----

  bool is_ligature(char c) const {
    return std::any_of(slots.begin(), slots.end(),
                       [c](const Slot &slot) { return slot.bytes.find(c) != std::string::npos; });
  }

  // How often ligatures that sort after it have this base, of the first `count` slots.
  int followers(char base, size_t count) const {
    int result = 0;
    for (size_t i = 0; i < count; ++i)
      if (slots[i].is_after)
        result += (slots[i].first == base) + (slots[i].second == base);
    return result;
  }

  void read_ligature() {
    const size_t before = slots.size();
    for (;;) {
      const auto value = cursor.value();
      if (!value)
        refuse();
      const std::string text = *value;
      const size_t begin = std::min(text.find_first_not_of(' '), text.size());
      const std::string word = text.substr(begin, 6);
      if (word != "after " && word != "equal ") {
        read_slot(text, before);
        continue;
      }
      const size_t bases = text.find_first_not_of(' ', begin + 6);
      if (slots.size() == before || bases == std::string::npos || text.size() != bases + 2 ||
          is_ligature(text[bases]) || is_ligature(text[bases + 1]))
        refuse();
      for (size_t i = before; i < slots.size(); ++i) {
        slots[i].first = text[bases];
        slots[i].second = text[bases + 1];
        slots[i].is_after = word == "after ";
      }
      return;
    }
  }

  // One byte, blanks, "=", blanks, one byte ...
  void read_slot(const std::string &text, size_t closed) {
    if (slots.size() == 50)
      refuse();
    slots.emplace_back();
    for (size_t at = 0;;) {
      at = text.find_first_not_of(' ', at);
      if (at == std::string::npos)
        refuse();
      const char c = text[at];
      if (is_ligature(c) || slots.back().bytes.size() == 10)
        refuse();
      for (size_t i = 0; i < closed; ++i)
        if (slots[i].first == c || slots[i].second == c)
          refuse();
      slots.back().bytes += c;
      at = text.find_first_not_of(' ', at + 1);
      if (at == std::string::npos)
        return;
      if (text[at] != '=')
        refuse();
      ++at;
    }
  }

  void place_ligatures() {
    for (size_t i = 0; i < slots.size(); ++i) {
      const Slot &slot = slots[i];
      for (size_t n = 0; n < slot.bytes.size(); ++n) {
        if (doubles.size() + order.ligatures.size() == 64)
          refuse();
        const auto weigh = [&](char base) {
          const auto found = order.characters.find(std::string(1, base));
          SlowWeight weight = {0, 0, 0};
          if (found != order.characters.end())
            weight = found->second;
          weight.s += followers(base, i) + (slot.is_after ? 1 : 0);
          weight.t = static_cast<int>(n) + 1;
          if (weight.s > 255)
            refuse();
          return weight;
        };
        order.ligatures[slot.bytes[n]] = {weigh(slot.first), weigh(slot.second)};
        ligature_bytes += slot.bytes[n];
      }
    }
  }

  // ---- characters ----

  void read_characters(int p) {
    int s = 0;
    std::optional<char> last;
    while (const auto value = cursor.value()) {
      const std::string text = *value;
      if (text.empty())
        refuse();
      has_accents = has_accents || s > 1;
      const size_t length = text.size() == 1 || text[1] == '=' || text[1] == ' ' ? 1 : 2;
      int room = 1;
      size_t at = 0;
      for (int t = 1;; ++t) {
        const std::string character = text.substr(std::min(at, text.size()), length);
        at += length;
        if (character.size() != length || is_ligature(character[0]))
          refuse();
        last = character[0];
        if (length == 2 &&
            (character[1] == '=' || character[1] == ' ' || is_ligature(character[1])))
          refuse();
        if (s > 255 || t > 255 || !order.characters.emplace(character, SlowWeight{p, s, t}).second)
          refuse();
        if (length == 2) {
          if (doubles.size() == 64)
            refuse();
          doubles.push_back(character);
        } else {
          room += followers(character[0], slots.size());
          if (s == 0 && t == 1)
            firsts[p] = character[0];
        }
        has_preference = has_preference || (t >= 2 && order.header.preference != 0);
        if (at >= text.size() || text[at] != '=')
          break;
        has_ties = true;
        ++at;
      }
      if (at < text.size() && text[at] != ' ')
        refuse();
      s += room;
    }
    if (last)
      last_char = *last;
  }

  // ---- the table ----

  LSC final_weights(const SlowWeight &weight) const {
    const auto next = firsts.upper_bound(weight.p);
    LSC result;
    result.pst.p = static_cast<CS_BYTE>(weight.p);
    result.pst.s = static_cast<CS_BYTE>(weight.s);
    result.pst.t = static_cast<CS_BYTE>(weight.t);
    result.pst.smelist = static_cast<CS_BYTE>(next != firsts.end() ? next->second : 0);
    return result;
  }

  SMEL &add_element(int type) {
    if (order.table.nsmels == 64)
      refuse();
    SMEL &element = order.table.smels[order.table.nsmels++];
    element.type_smel = static_cast<CS_BYTE>(type);
    element.noxtraw = type == 1;
    return element;
  }

  void make_table() {
    SO_1CLASS &table = order.table;
    for (SMEL &element : table.smels)
      element.next_smel = 255;
    const bool expands = !doubles.empty() || !slots.empty();
    const bool ligature_ties = std::any_of(slots.begin(), slots.end(),
                                           [](const Slot &slot) { return slot.bytes.size() > 1; });
    table.stat1 = static_cast<CS_BYTE>((has_preference ? 4
                                        : has_accents  ? 2
                                                       : 1) |
                                       (has_ties || ligature_ties ? 8 : 0) | (expands ? 16 : 0) |
                                       (slots.empty() ? 0 : 32));
    table.last_char = static_cast<CS_BYTE>(last_char);
    order.characters[std::string(1, '\0')] = {0, 0, 1};

    std::map<char, std::vector<int>> lists; // by first byte, in the order of the file
    for (const std::string &character : doubles) {
      lists[character[0]].push_back(table.nsmels);
      SMEL &element = add_element(1);
      element.smel_types.sm_1type.xtraw = static_cast<CS_BYTE>(character[1]);
      element.smel_types.sm_1type.lsc1 = final_weights(order.characters.at(character));
    }
    for (const char byte : ligature_bytes) {
      lists[byte].push_back(table.nsmels);
      const auto &[first, second] = order.ligatures.at(byte);
      SMEL &element = add_element(3);
      element.smel_types.sm_3type.lsc1 = final_weights(first);
      element.smel_types.sm_3type.lsc2 = final_weights(second);
    }
    for (int code = 0; code < 256; ++code) {
      const char byte = static_cast<char>(code);
      const auto own = order.characters.find(std::string(1, byte));
      auto list = lists[byte];
      std::reverse(list.begin(), list.end());
      const bool has_own = own != order.characters.end() && own->second.t != 0;
      if (!has_own && order.ligatures.count(byte) == 0)
        refuse();
      if (has_own && list.empty()) {
        table.lscs[code] = final_weights(own->second);
        continue;
      }
      if (has_own) {
        list.push_back(table.nsmels);
        add_element(0).smel_types.sm_0type.lsc1 = final_weights(own->second);
      }
      table.lscs[code].pst.smelist = static_cast<CS_BYTE>(list[0]);
      for (size_t i = 1; i < list.size(); ++i)
        table.smels[list[i - 1]].next_smel = static_cast<CS_BYTE>(list[i]);
    }
  }

  Cursor cursor;
  SlowOrder &order;
  std::optional<std::string> key; // the entry that stands next
  std::vector<Slot> slots;
  std::string ligature_bytes;
  std::vector<std::string> doubles;
  std::map<int, char> firsts; // the first character of each weight that has one
  bool has_accents = false, has_preference = false, has_ties = false;
  char last_char = 0;
};

// A weight of a string, and how far the string is read with it.
struct Spelled {
  SlowWeight weight;
  size_t end;
  bool is_held;
};

std::vector<Spelled> spell_out(const SlowOrder &order, std::string_view text) {
  std::vector<Spelled> result;
  for (size_t at = 0; at < text.size();) {
    const auto both = order.characters.find(std::string(text.substr(at, 2)));
    const auto ligature = order.ligatures.find(text[at]);
    if (both != order.characters.end() && both->first.size() == 2) {
      at += 2;
      result.push_back({both->second, at, false});
    } else if (ligature != order.ligatures.end()) {
      ++at;
      result.push_back({ligature->second.first, at, false});
      result.push_back({ligature->second.second, at, true});
    } else {
      result.push_back({order.characters.at(std::string(1, text[at])), at + 1, false});
      ++at;
    }
  }
  return result;
}

bool is_blank(std::string_view text) {
  return text.find_first_not_of(' ') == std::string_view::npos;
}

} // namespace

SlowOrder compile_slowly(std::string_view file) {
  SlowOrder order{};
  order.result = CS_SUCCEED;
  try {
    Compiler(file, order).compile();
  } catch (const Refused &refused) {
    order.result = refused.result;
    order.reader_status = refused.reader_status;
  }
  return order;
}

int compare_slowly(const SlowOrder &order, std::string_view str1, std::string_view str2) {
  const auto weights1 = spell_out(order, str1), weights2 = spell_out(order, str2);
  const size_t common = std::min(weights1.size(), weights2.size());
  int secondary = 0;
  for (size_t i = 0; i < common; ++i) {
    const SlowWeight &weight1 = weights1[i].weight, &weight2 = weights2[i].weight;
    if (weight1.p != weight2.p)
      return weight1.p - weight2.p;
    if (secondary == 0)
      secondary = weight1.s - weight2.s;
  }
  if (weights1.size() > common)
    return is_blank(str1.substr(weights1[common].end - 1)) ? secondary : 1;
  if (weights2.size() > common && weights2[common].is_held)
    return -1;
  return is_blank(str2.substr(common > 0 ? weights2[common - 1].end : 0)) ? secondary : -1;
}

int compare_ties_slowly(const SlowOrder &order, std::string_view str1, std::string_view str2) {
  const auto weights1 = spell_out(order, str1), weights2 = spell_out(order, str2);
  for (size_t i = 0; i < std::min(weights1.size(), weights2.size()); ++i)
    if (weights1[i].weight.t != weights2[i].weight.t)
      return weights1[i].weight.t - weights2[i].weight.t;
  return 0;
}

// ---- files ----

const char *const sort_order_entries = "class = \\x01\n"
                                       "id = \\x33\n"
                                       "name = order\n"
                                       "menuname = \"An order\"\n"
                                       "charset = iso_1\n"
                                       "description = \"For a test\"\n";
const char *const sort_order_header = "[sortorder]\n"
                                      "class = \\x01\n"
                                      "id = \\x33\n"
                                      "name = order\n"
                                      "menuname = \"An order\"\n"
                                      "charset = iso_1\n"
                                      "description = \"For a test\"\n";

std::string spell(char byte) {
  constexpr const char *digits = "0123456789abcdef";
  const auto code = static_cast<unsigned char>(byte);
  return {'\\', 'x', digits[code >> 4], digits[code & 15]};
}

std::string spell(std::string_view bytes) {
  std::string result;
  for (const char byte : bytes)
    result += spell(byte);
  return result;
}

std::string entries_of_bytes(int first, int last) {
  std::string result;
  for (int code = first; code <= last; ++code)
    result += "char = " + spell(static_cast<char>(code)) + "\n";
  return result;
}

namespace {

// A group, its characters tied.
std::string spell_tied(const std::vector<std::string> &characters) {
  std::string result;
  for (const std::string &character : characters)
    result += (result.empty() ? "" : "=") + spell(character);
  return result;
}

} // namespace

std::string make_sort_order(const std::function<size_t(size_t)> &pick) {
  const auto one_in = [&](size_t n) { return pick(n) == 0; };
  std::string bytes;
  for (int code = 1; code < 256; ++code)
    bytes += static_cast<char>(code);
  for (size_t i = bytes.size() - 1; i > 0; --i)
    std::swap(bytes[i], bytes[pick(i + 1)]);

  std::string file = sort_order_header;
  if (one_in(3))
    file += one_in(2) ? "preference = true\n" : "preference = false\n";

  // Ligatures come off the end of the bytes, their characters from the front. A blank and "=" can be
  // no bytes of them.
  const size_t entries = one_in(3) ? 0 : pick(12);
  for (size_t i = 0; i < entries; ++i) {
    file += "lig = ";
    for (size_t value = pick(3) + 1; value > 0; --value) {
      for (size_t tied = one_in(2) ? 1 : pick(4) + 1; tied > 0; --tied) {
        while (bytes.back() == ' ')
          bytes.insert(bytes.begin(), bytes.back()), bytes.pop_back();
        file += spell(bytes.back()) + (tied > 1 ? one_in(2) ? "=" : " = " : ",");
        bytes.pop_back();
      }
    }
    file += one_in(2) ? "after " : "equal ";
    const auto base = [&] {
      const char byte = bytes[pick(8)];
      return byte == ' ' ? bytes[9] : byte;
    };
    file += spell(base()) + spell(base()) + "\n";
  }

  // Characters: each byte once, and pairs of them.
  std::vector<std::string> characters;
  for (const char byte : bytes)
    characters.emplace_back(1, byte);
  for (size_t i = one_in(3) ? 0 : pick(30); i > 0; --i) {
    const char second = bytes[pick(bytes.size())];
    if (second != ' ' && second != '=')
      characters.insert(characters.begin() + static_cast<std::ptrdiff_t>(pick(characters.size())),
                        std::string{bytes[pick(one_in(2) ? bytes.size() : 10)], second});
  }
  for (size_t at = 0; at < characters.size();) {
    file += "char = ";
    for (size_t values = one_in(2) ? 1 : pick(5) + 1; values > 0 && at < characters.size();
         --values) {
      std::vector<std::string> group;
      const size_t length = characters[at].size();
      for (size_t tied = one_in(2) ? 1 : pick(5) + 1;
           tied > 0 && at < characters.size() && characters[at].size() == length; --tied)
        group.push_back(characters[at++]);
      file += (file.back() == ' ' ? "" : ", ") + spell_tied(group);
      if (one_in(20))
        file += " and more";
    }
    file += "\n";
  }
  if (one_in(3))
    file += "ignore char = whatever\nnothing = else\n";

  // A mistake: a byte of the file that is another one.
  if (one_in(8))
    file[pick(file.size())] = static_cast<char>(pick(256));
  return file;
}

} // namespace zrvtest
