#include "config_reference.h"

#include <algorithm>
#include <cctype>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <sstream>

#include "zrvcomn/comcfg.h"
#include "zrvcomn/comnlib.h"

namespace zrvtest {

namespace {

// ---- characters ----

struct Character {
  int shown;
  size_t offset, length;
};

// The characters of a file, and whether the last one is cut off.
std::vector<Character> decode(const std::string &bytes, CS_ATTRIB *set, bool &is_cut) {
  std::vector<Character> result;
  const std::string padded = bytes + std::string(16, '\0'); // the width rule may look at two bytes
  is_cut = false;
  for (size_t at = 0; at < bytes.size();) {
    auto *const p = reinterpret_cast<CS_BYTE *>(const_cast<char *>(padded.data() + at));
    const auto width = static_cast<size_t>(comn_char_width(set, p));
    if (at + width > bytes.size()) {
      is_cut = true;
      break;
    }
    CS_BYTE shown = comn_to_ascii(set, p);
    if (comn_isupper(set, p) != 0)
      shown = com_toupper(shown);
    result.push_back({shown != 0 ? shown : 241, at, width});
    at += width;
  }
  return result;
}

// ---- the scanner's rules ----

bool is_blank(int c) {
  return c == 9 || c == 12 || c == 32;
}
bool is_letter(int c) {
  return c < 128 && std::isalpha(c) != 0;
}
bool is_name(int c) {
  return c < 128 && (std::isalnum(c) != 0 || std::ispunct(c) != 0) && c != '=' && c != '[' &&
         c != ']';
}
bool is_value(int c) {
  return !is_blank(c) && c != 13 && c != 10 && c != '"' && c != '=' && c != '[' && c != ']' &&
         c != '\\';
}

// The characters from a place on; beyond the end there is -1.
struct Text {
  const std::vector<Character> &all;
  size_t at;
  int operator[](size_t i) const { return at + i < all.size() ? all[at + i].shown : -1; }
};

// Each rule says how many characters it matches, 0 for none.
struct Rule {
  bool normal, string, line_start;
  CS_INT code;
  std::function<size_t(const Text &)> match;
};

size_t run(const Text &text, size_t from, bool (*belongs)(int)) {
  size_t n = from;
  while (text[n] >= 0 && belongs(text[n]))
    ++n;
  return n;
}

size_t match_newline(const Text &text, size_t from) {
  const size_t n = text[from] == 13 ? from + 1 : from;
  return text[n] == 10 ? n + 1 : 0;
}

const std::vector<Rule> rules = {
    {true, false, true, CFG_BLANK,
     [](const Text &t) {
       size_t n = run(t, 0, is_blank);
       if (t[n] != ';')
         return size_t{0};
       return run(t, n, [](int c) { return c != 10; });
     }},
    {true, false, false, CFG_BLANK, [](const Text &t) { return run(t, 0, is_blank); }},
    {true, false, false, CFG_INCLUDE,
     [](const Text &t) {
       const std::string word = "include";
       for (size_t i = 0; i < word.size(); ++i)
         if (t[i] < 0 || t[i] > 127 || std::tolower(t[i]) != word[i])
           return size_t{0};
       return word.size();
     }},
    {true, false, false, CFG_NEWLINE,
     [](const Text &t) { return match_newline(t, run(t, 0, is_blank)); }},
    {true, false, false, CFG_STRING_START,
     [](const Text &t) { return t[0] == '"' ? size_t{1} : size_t{0}; }},
    {false, true, false, CFG_STRING_VALUE,
     [](const Text &t) {
       size_t n = 0;
       for (;;)
         if (t[n] >= 0 && t[n] != '"' && t[n] != '\\')
           ++n;
         else if (t[n] == '\\' && t[n + 1] >= 0 && t[n + 1] != 10)
           n += 2;
         else
           return n;
     }},
    {true, false, false, CFG_LINE_CONT,
     [](const Text &t) { return t[0] == '\\' ? match_newline(t, 1) : size_t{0}; }},
    {false, true, false, CFG_LINE_CONT,
     [](const Text &t) { return t[0] == '\\' && t[1] == 10 ? size_t{2} : size_t{0}; }},
    {false, true, false, CFG_ESC_QUOTE,
     [](const Text &t) { return t[0] == '"' && t[1] == '"' ? size_t{2} : size_t{0}; }},
    {false, true, false, CFG_STRING_END,
     [](const Text &t) { return t[0] == '"' ? size_t{1} : size_t{0}; }},
    {true, false, false, CFG_IDENT,
     [](const Text &t) { return t[0] >= 0 && is_letter(t[0]) ? run(t, 1, is_name) : size_t{0}; }},
    {true, false, false, CFG_VALUE,
     [](const Text &t) {
       size_t n = 0;
       for (;;)
         if (t[n] >= 0 && is_value(t[n]))
           ++n;
         else if (t[n] == '\\' && t[n + 1] >= 0 && t[n + 1] != 13 && t[n + 1] != 10)
           n += 2;
         else
           return n;
     }},
    {true, false, false, CFG_LBRACKET,
     [](const Text &t) { return t[0] == '[' ? size_t{1} : size_t{0}; }},
    {true, false, false, CFG_RBRACKET,
     [](const Text &t) { return t[0] == ']' ? size_t{1} : size_t{0}; }},
    {true, false, false, CFG_EQUALS,
     [](const Text &t) { return t[0] == '=' ? size_t{1} : size_t{0}; }},
    {true, true, false, CFG_UNKNOWN,
     [](const Text &t) { return t[0] >= 0 && t[0] != 10 ? size_t{1} : size_t{0}; }},
};

// ---- the grammar ----

const char *const grammar = R"(
config: section_list
section_list: section
section_list: section_list section
section_list: section_list error section_list
section: [ sep section_name sep ] begin_section entries
section: sep
begin_section:
section_name: IDENT
section_name: section_name sep IDENT
entries: entry
entries: entries entry
entries: entries error entry
entry: entry_name sep = sep value_list NEWLINE
entry: include_line
entry: sep
include_line: INCLUDE sep = sep entry_name
entry_name: IDENT
value_list: value_item
value_list: value_list value_item
value_item: IDENT
value_item: VALUE
value_item: BLANK
value_item: string
value_item: LINE_CONT
string: STRING_START string_body STRING_END
string: STRING_START STRING_END
string: STRING_START string_body error
string_body: string_piece
string_body: string_body string_piece
string_piece: STRING_VALUE
string_piece: LINE_CONT
string_piece: ESC_QUOTE
sep: BLANK
sep: NEWLINE
sep:
)";

const std::map<CS_INT, std::string> token_names = {
    {CFG_END, "$end"},
    {CFG_INCLUDE, "INCLUDE"},
    {CFG_LINE_CONT, "LINE_CONT"},
    {CFG_EQUALS, "="},
    {CFG_ESC_QUOTE, "ESC_QUOTE"},
    {CFG_IDENT, "IDENT"},
    {CFG_LBRACKET, "["},
    {CFG_NEWLINE, "NEWLINE"},
    {CFG_RBRACKET, "]"},
    {CFG_STRING_VALUE, "STRING_VALUE"},
    {CFG_STRING_END, "STRING_END"},
    {CFG_STRING_START, "STRING_START"},
    {CFG_UNKNOWN, "UNKNOWN"},
    {CFG_VALUE, "VALUE"},
    {CFG_BLANK, "BLANK"},
};

using Symbol = std::string;
using Symbols = std::set<Symbol>;

struct Production {
  Symbol left;
  std::vector<Symbol> right;
};

// The look-ahead tables of the grammar: states are sets of productions with a place in them and what may
// follow; those that agree but for the latter are one.
class Tables {
public:
  Tables() {
    std::istringstream lines(grammar);
    for (std::string line; std::getline(lines, line);) {
      if (line.empty())
        continue;
      Production production;
      production.left = line.substr(0, line.find(':'));
      std::istringstream words(line.substr(line.find(':') + 1));
      for (Symbol word; words >> word;)
        production.right.push_back(word);
      productions.push_back(production);
      parts.insert(production.left);
    }
    find_firsts();
    add_state({{{0, 0}, {"$end"}}});
    for (bool changed = true; changed;) {
      changed = false;
      for (size_t i = 0; i < kernels.size(); ++i)
        changed |= extend(i);
    }
    for (size_t i = 0; i < kernels.size(); ++i)
      fill(i);
  }

  // What a state does with a token: nothing, or a state to go to, or a production to reduce.
  std::optional<size_t> shift(size_t state, const Symbol &symbol) const {
    const auto found = gotos[state].find(symbol);
    return found != gotos[state].end() ? std::optional(found->second) : std::nullopt;
  }
  std::optional<size_t> reduce(size_t state, const Symbol &token) const {
    const auto found = reductions[state].find(token);
    return found != reductions[state].end() ? std::optional(found->second) : std::nullopt;
  }
  // A state in which one production is reduced whatever follows.
  std::optional<size_t> reduce_always(size_t state) const { return only_reductions[state]; }

  std::vector<Production> productions;

private:
  using Place = std::pair<size_t, size_t>; // production, symbols before the place
  using Items = std::map<Place, Symbols>;

  void find_firsts() {
    for (bool changed = true; changed;) {
      changed = false;
      for (const Production &p : productions) {
        Symbols first = first_of(p.right, 0, {""});
        const size_t before = firsts[p.left].size();
        firsts[p.left].merge(first);
        changed |= firsts[p.left].size() != before;
      }
    }
  }

  // What can begin the symbols from a place on; `behind` when all of them can be nothing.
  Symbols first_of(const std::vector<Symbol> &symbols, size_t from, const Symbols &behind) {
    Symbols result;
    for (size_t i = from; i < symbols.size(); ++i) {
      if (!parts.contains(symbols[i])) {
        result.insert(symbols[i]);
        return result;
      }
      const Symbols &first = firsts[symbols[i]];
      result.insert(first.begin(), first.end());
      if (result.erase("") == 0)
        return result;
    }
    result.insert(behind.begin(), behind.end());
    return result;
  }

  Items closure(Items items) {
    for (bool changed = true; changed;) {
      changed = false;
      for (const auto &[place, follow] : Items(items)) {
        const auto &right = productions[place.first].right;
        if (place.second == right.size() || !parts.contains(right[place.second]))
          continue;
        const Symbols next = first_of(right, place.second + 1, follow);
        for (size_t i = 0; i < productions.size(); ++i)
          if (productions[i].left == right[place.second]) {
            Symbols &known = items[{i, 0}];
            const size_t before = known.size();
            const bool is_new = before == 0;
            known.insert(next.begin(), next.end());
            changed |= is_new || known.size() != before;
          }
      }
    }
    return items;
  }

  // The state of a kernel, which is made or told of new followers; whether anything changed.
  std::pair<size_t, bool> add_state(const Items &kernel) {
    for (size_t i = 0; i < kernels.size(); ++i) {
      if (!std::equal(kernels[i].begin(), kernels[i].end(), kernel.begin(), kernel.end(),
                      [](const auto &a, const auto &b) { return a.first == b.first; }))
        continue;
      bool changed = false;
      for (const auto &[place, follow] : kernel) {
        Symbols &known = kernels[i][place];
        const size_t before = known.size();
        known.insert(follow.begin(), follow.end());
        changed |= known.size() != before;
      }
      return {i, changed};
    }
    kernels.push_back(kernel);
    return {kernels.size() - 1, true};
  }

  bool extend(size_t state) {
    std::map<Symbol, Items> next;
    for (const auto &[place, follow] : closure(kernels[state])) {
      const auto &right = productions[place.first].right;
      if (place.second < right.size())
        next[right[place.second]][{place.first, place.second + 1}] = follow;
    }
    gotos.resize(std::max(gotos.size(), state + 1));
    bool changed = false;
    for (const auto &[symbol, kernel] : next) {
      const auto [target, is_changed] = add_state(kernel);
      gotos[state][symbol] = target;
      changed |= is_changed;
    }
    return changed;
  }

  void fill(size_t state) {
    std::map<Symbol, size_t> reductions_here;
    std::set<size_t> kinds;
    bool shifts = false;
    for (const auto &[place, follow] : closure(kernels[state])) {
      const auto &right = productions[place.first].right;
      if (place.second < right.size()) {
        shifts |= !parts.contains(right[place.second]);
        continue;
      }
      kinds.insert(place.first);
      for (const Symbol &token : follow)
        if (!gotos[state].contains(token))                 // a token that can be taken is taken
          reductions_here.try_emplace(token, place.first); // else the earlier production
    }
    reductions.push_back(reductions_here);
    only_reductions.push_back(!shifts && kinds.size() == 1 ? std::optional(*kinds.begin())
                                                           : std::nullopt);
  }

  Symbols parts;
  std::map<Symbol, Symbols> firsts;
  std::vector<Items> kernels;
  std::vector<std::map<Symbol, size_t>> gotos, reductions;
  std::vector<std::optional<size_t>> only_reductions;
};

// ---- the parser ----

class Reader {
public:
  Reader(const std::string &text, CS_ATTRIB *set) : bytes(text), tokens(scan_config(text, set)) {}

  ConfigFile read() {
    file.loaded = parse();
    if (!file.loaded)
      file.sections.clear();
    for (ConfigSection &section : file.sections)
      std::sort(section.entries.begin(), section.entries.end());
    return file;
  }

private:
  struct Entry {
    size_t state;
    std::string text;
  };

  bool parse() {
    static const Tables tables;
    stack = {{0, ""}, {*tables.shift(0, "section_list"), ""}};
    int errors = 0;
    for (;;) {
      std::optional<size_t> production = tables.reduce_always(stack.back().state);
      const ConfigToken &token = tokens[next];
      const Symbol name = token_names.at(token.code);
      if (!production) {
        newest = next;
        if (const auto state = tables.shift(stack.back().state, name)) {
          if (!push({*state, bytes.substr(token.offset, text_length(token))}))
            return false;
          errors -= errors > 0;
          next += next + 1 < tokens.size();
          continue;
        }
        production = tables.reduce(stack.back().state, name);
      }
      if (production) {
        if (*production == 0)
          return true;
        const Production &p = tables.productions[*production];
        const std::string text = act(*production, p);
        stack.resize(stack.size() - p.right.size());
        if (!push({*tables.shift(stack.back().state, p.left), text}))
          return false;
        continue;
      }
      if (errors == 3) {
        if (token.code == CFG_END)
          return false;
        ++next;
        continue;
      }
      if (errors == 0)
        report();
      errors = 3;
      while (!tables.shift(stack.back().state, "error")) {
        stack.pop_back();
        if (stack.empty())
          return false;
      }
      // The section in which the error was is off the stack.
      if (stack.size() < open_section) {
        file.sections.pop_back();
        open_section = 0;
      }
      if (!push({*tables.shift(stack.back().state, "error"), ""}))
        return false;
    }
  }

  static size_t text_length(const ConfigToken &token) {
    return token.code == CFG_ESC_QUOTE ? token.first_length : token.length;
  }

  bool push(Entry entry) {
    if (stack.size() == 500) {
      report();
      return false;
    }
    stack.push_back(std::move(entry));
    return true;
  }

  void report() {
    const ConfigToken &token = tokens[newest];
    std::string text = bytes.substr(token.offset, std::min(token.length, size_t{254}));
    file.messages.push_back({COM_CFGERR_SYNTAX, token.line, text.c_str()});
  }

  // What a reduction does, and the text of its result.
  std::string act(size_t number, const Production &p) {
    const size_t first = stack.size() - p.right.size();
    const auto text = [&](size_t i) { return stack[first + i].text; };
    if (p.left == "begin_section") {
      file.sections.push_back({stack[stack.size() - 3].text, {}, {}});
      ok = true;
      open_section = stack.size();
    } else if (p.left == "section" && p.right.size() > 1) {
      open_section = 0;
      if (!ok)
        file.sections.pop_back();
    } else if (p.left == "entries" && p.right.size() == 3) {
      ok = false;
    } else if (p.left == "entry" && p.right.size() == 6) {
      add_value(text(0), text(4));
    } else if (p.left == "include_line") {
      add_include(text(4));
    } else if (p.left == "string") {
      if (p.right.back() == "error") {
        ok = false;
        next += next + 1 < tokens.size();
        return "";
      }
      return p.right.size() == 3 ? text(1) : "";
    } else if (p.right == std::vector<Symbol>{"LINE_CONT"}) {
      return "";
    } else {
      std::string joined;
      for (size_t i = 0; i < p.right.size(); ++i)
        joined += text(i);
      return joined;
    }
    static_cast<void>(number);
    return "";
  }

  void add_value(const std::string &name, const std::string &value) {
    auto &entries = file.sections.back().entries;
    auto found = std::find_if(entries.begin(), entries.end(),
                              [&](const auto &entry) { return entry.first == name; });
    if (found == entries.end())
      found = entries.insert(entries.end(), {name, {}});
    found->second.push_back(value);
  }

  void add_include(const std::string &name) {
    const auto found = std::find_if(file.sections.rbegin(), file.sections.rend(),
                                    [&](const auto &section) { return section.name == name; });
    if (found == file.sections.rend() || found == file.sections.rbegin()) {
      file.messages.push_back({COM_CFGERR_INCLUDE, 0, name.substr(0, 254).c_str()});
      ok = false;
    } else {
      file.sections.back().includes.push_back(name);
    }
  }

  const std::string &bytes;
  std::vector<ConfigToken> tokens;
  size_t next = 0, newest = 0; // to be taken; that was looked at
  std::vector<Entry> stack;
  bool ok = false;
  size_t open_section = 0; // entries on the stack when the section that is read began
  ConfigFile file;
};

} // namespace

std::vector<ConfigToken> scan_config(const std::string &bytes, CS_ATTRIB *set) {
  bool is_cut;
  const std::vector<Character> characters = decode(bytes, set, is_cut);
  std::vector<ConfigToken> tokens;
  bool in_string = false, line_start = true;
  CS_INT line = 1;
  size_t at = 0;
  const auto add = [&](CS_INT code, size_t count) {
    const size_t offset = at < characters.size() ? characters[at].offset
                          : characters.empty()
                              ? 0
                              : characters.back().offset + characters.back().length;
    size_t length = 0;
    CS_INT newlines = 0;
    for (size_t i = at; i < at + count; ++i) {
      length += characters[i].length;
      newlines += characters[i].shown == 10;
    }
    // Behind the end of a line the scanner does not look further, so it is still on that line.
    const bool ends_line = code == CFG_NEWLINE || code == CFG_LINE_CONT;
    tokens.push_back({code, offset, length, count > 0 ? characters[at].length : 0,
                      ends_line ? line : line + newlines});
    line += newlines;
    at += count;
    line_start = ends_line;
  };
  while (at < characters.size()) {
    size_t longest = 0;
    const Rule *best = nullptr;
    for (const Rule &rule : rules) {
      if (!(in_string ? rule.string : rule.normal) || (rule.line_start && !line_start))
        continue;
      const size_t length = rule.match({characters, at});
      if (length > longest) {
        longest = length;
        best = &rule;
      }
    }
    add(best->code, longest);
    if (best->code == CFG_STRING_START || best->code == CFG_STRING_END)
      in_string = best->code == CFG_STRING_START;
  }
  if (!in_string && !tokens.empty() && tokens.back().code != CFG_NEWLINE)
    add(CFG_NEWLINE, 0);
  add(CFG_END, 0);
  return tokens;
}

ConfigFile read_config(const std::string &bytes, CS_ATTRIB *set) {
  bool is_cut;
  decode(bytes, set, is_cut);
  ConfigFile file = Reader(bytes, set).read();
  if (is_cut)
    file.messages.push_back({COM_CFGERR_CHAR, 0, ""});
  return file;
}

} // namespace zrvtest
