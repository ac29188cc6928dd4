// Reads the table of a set: data/generate_unicode_tables.py tells the form of the file. A file is believed
// in nothing: what does not hold together makes it damaged.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstring>
#include <initializer_list>
#include <new>

#include "tables.h"
#include "zrvintl.h"

namespace zrvunic {

namespace {

constexpr uint8_t magic[8] = {'z', 'r', 'v', 'u', 'n', 'i', 'c', 1};
constexpr size_t head_size = 24;
constexpr size_t largest_file = 1 << 22;
constexpr size_t most_nodes = 2048;
constexpr size_t most_pairs = 64;
constexpr size_t most_codes = 1 << 18;
constexpr uint32_t first_pair = last_character + 1;
constexpr size_t page_limit = (last_character >> 8) + 1;

// ---- the file ----

struct File {
  uint8_t *data = nullptr;
  size_t size = 0;
};

bool read_all(int descriptor, uint8_t *data, size_t size) noexcept {
  for (size_t done = 0; done < size;) {
    const ssize_t count = read(descriptor, data + done, size - done);
    if (count < 0 && errno == EINTR)
      continue;
    if (count <= 0)
      return false;
    done += static_cast<size_t>(count);
  }
  return true;
}

int read_open(int descriptor, File &file) noexcept {
  struct stat facts;
  if (fstat(descriptor, &facts) != 0 || !S_ISREG(facts.st_mode))
    return UNICONV_ENOTABLE;
  if (facts.st_size < static_cast<off_t>(head_size) ||
      facts.st_size > static_cast<off_t>(largest_file))
    return UNICONV_EDAMAGED;
  file.size = static_cast<size_t>(facts.st_size);
  file.data = static_cast<uint8_t *>(comn_malloc(file.size));
  if (file.data == nullptr)
    return UNICONV_ENOMEM;
  return read_all(descriptor, file.data, file.size) ? UNICONV_SUCCEED : UNICONV_ENOTABLE;
}

int read_file(const char *path, File &file) noexcept {
  // A pipe that somebody put there must not be waited for.
  const int descriptor = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (descriptor < 0)
    return UNICONV_ENOTABLE;
  const int code = read_open(descriptor, file);
  return close(descriptor) == 0 ? code : UNICONV_ENOTABLE;
}

template <typename Number>
Number number_at(const uint8_t *at) noexcept {
  Number number;
  std::memcpy(&number, at, sizeof number);
  return number;
}

// Whether the head belongs to the set and the body is as it was written.
bool is_sound(const File &file, const Set &set) noexcept {
  const auto size = number_at<uint32_t>(file.data + 8);
  const auto cid = number_at<uint32_t>(file.data + 12);
  if (std::memcmp(file.data, magic, sizeof magic) != 0 || size != file.size || size % 8 != 0 ||
      cid != static_cast<uint32_t>(set.cid))
    return false;
  uint64_t check = static_cast<uint64_t>(size) << 32 | cid;
  for (size_t at = head_size; at < size; at += 8) {
    check = (check ^ number_at<uint64_t>(file.data + at)) * 0x9E3779B97F4A7C15;
    check ^= check >> 32;
  }
  return check == number_at<uint64_t>(file.data + 16);
}

// ---- its body ----

class Body {
public:
  Body(const uint8_t *first, const uint8_t *last) noexcept : at(first), end(last) {}

  // 0 once the body has failed.
  uint32_t number() noexcept {
    uint64_t number = 0;
    for (unsigned shift = 0; shift < 35; shift += 7) {
      if (at == end)
        break;
      const uint8_t byte = *at++;
      number |= static_cast<uint64_t>(byte & 0x7F) << shift;
      if (byte < 0x80) {
        if (number > UINT32_MAX)
          break;
        return static_cast<uint32_t>(number);
      }
    }
    failed = true;
    return 0;
  }
  int64_t signed_number() noexcept {
    const uint32_t bits = number();
    return (bits & 1) != 0 ? -static_cast<int64_t>(bits >> 1) - 1 : bits >> 1;
  }
  // Nothing but NULs is left.
  bool at_end() const noexcept {
    for (const uint8_t *rest = at; rest < end; ++rest)
      if (*rest != 0)
        return false;
    return true;
  }
  bool failed = false;

private:
  const uint8_t *at;
  const uint8_t *end;
};

// A code and what it means: a character, or first_pair and the index of a pair.
struct Code {
  unsigned width;
  uint32_t code;
  uint32_t value;
  bool read_only;
};

// Codes of a width end before that number.
uint64_t code_limit(Form form, unsigned width) noexcept {
  return form == Form::gb18030 && width == 4 ? linear_basic : uint64_t{1} << (8 * width);
}

// Reads the runs of one width; false when they make no sense.
template <typename Take>
bool read_group(Body &body, Form form, unsigned width, size_t pairs, Take &&take) noexcept {
  const uint64_t limit = code_limit(form, width);
  uint64_t code = 0;
  int64_t value = 0;
  for (uint32_t gap = 0; (gap = body.number()) != 0;) {
    code += gap - 1;
    const uint32_t head = body.number();
    const bool follows = (head & 1) != 0;
    for (uint32_t left = head >> 2; left > 0; --left, ++code, ++value) {
      if (!follows || left == head >> 2)
        value += body.signed_number();
      if (body.failed || code >= limit || value < 1 ||
          value >= static_cast<int64_t>(first_pair + pairs) ||
          is_surrogate(static_cast<uint32_t>(value)))
        return false;
      if (!take(Code{width, static_cast<uint32_t>(code), static_cast<uint32_t>(value),
                     (head & 2) != 0}))
        return false;
    }
  }
  return !body.failed;
}

// Gives `pair` each pair and `take` each code, which stop the reading by answering false. Whether all of
// it makes sense as a table of that form.
template <typename TakePair, typename Take>
bool read_body(const File &file, Form form, TakePair &&pair, Take &&take) noexcept {
  Body body(file.data + head_size, file.data + file.size);
  if (body.number() != static_cast<uint32_t>(form))
    return false;
  const size_t pairs = body.number();
  if (pairs > most_pairs || (pairs > 0 && form != Form::multi_byte))
    return false;
  for (size_t index = 0; index < pairs; ++index) {
    const uint32_t first = body.number();
    const uint32_t second = body.number();
    if (!pair(first, second))
      return false;
  }
  unsigned before = 0;
  for (unsigned width = 0; (width = body.number()) != 0; before = width) {
    if (width <= before || width > 4 || (width > 1 && form == Form::one_byte) ||
        (width > 2 && form == Form::shifted) || (width == 3 && form == Form::gb18030) ||
        !read_group(body, form, width, pairs, take))
      return false;
  }
  return !body.failed && body.at_end();
}

// Pages of the characters that occur: which ones, and how many, with the empty one.
struct Pages {
  uint16_t page_of[page_limit]{};
  size_t count = 1;
  size_t limit = 256; // the basic plane has pages always

  void add(uint32_t character) noexcept {
    uint16_t &page = page_of[character >> 8];
    if (page == 0)
      page = static_cast<uint16_t>(count++);
    if (character >> 8 >= limit)
      limit = (character >> 8) + 1;
  }
};

// Room for `count` elements behind what a block has already.
template <typename Element>
size_t reserve(size_t &size, size_t count) noexcept {
  const size_t at = (size + alignof(uint64_t) - 1) / alignof(uint64_t) * alignof(uint64_t);
  size = at + count * sizeof(Element);
  return at;
}
template <typename Element>
Element *element_at(void *block, size_t offset) noexcept {
  return reinterpret_cast<Element *>(static_cast<char *>(block) + offset);
}

// Bytes below 0x80 are ASCII when all of them are; the NUL is no character of a table.
template <typename At>
bool is_ascii(At &&at) noexcept {
  for (unsigned byte = 1; byte < 0x80; ++byte)
    if (at(byte) != byte)
      return false;
  return true;
}

// ---- one-byte sets ----

Table *make_one_byte(const File &file, const Set &set, int *code) noexcept {
  const auto no_pair = [](uint32_t, uint32_t) { return false; };
  Pages pages;
  *code = UNICONV_EDAMAGED;
  if (!read_body(file, set.form, no_pair, [&](const Code &one) {
        if (one.code == 0 || one.value > 0xFFFF)
          return false;
        pages.add(one.value);
        return true;
      }))
    return nullptr;
  size_t size = sizeof(OneByteTable);
  const size_t pages_at = reserve<uint8_t[256]>(size, pages.count);
  void *const block = comn_calloc(1, size);
  if (block == nullptr) {
    *code = UNICONV_ENOMEM;
    return nullptr;
  }
  auto *const table = new (block) OneByteTable;
  table->pages = element_at<uint8_t[256]>(block, pages_at);
  for (size_t high = 0; high < 256; ++high)
    table->page_of[high] = static_cast<uint8_t>(pages.page_of[high]);
  for (UChar16 &unit : table->to_unicode)
    unit = replacement;
  if (!read_body(file, set.form, no_pair, [&](const Code &one) {
        table->to_unicode[one.code] = static_cast<UChar16>(one.value);
        uint8_t &byte = table->pages[table->page_of[one.value >> 8]][one.value & 0xFF];
        if (one.read_only)
          return true;
        if (byte != 0)
          return false;
        byte = static_cast<uint8_t>(one.code);
        return true;
      })) {
    comn_free(block);
    return nullptr;
  }
  table->ascii = is_ascii([&](unsigned byte) { return table->to_unicode[byte]; }) &&
                 is_ascii([&](unsigned unit) { return table->pages[table->page_of[0]][unit]; });
  *code = UNICONV_SUCCEED;
  return table;
}

// ---- the others ----

// How many nodes the codes take at most: one wherever the leading bytes change.
struct Nodes {
  size_t count = 2; // those for the first byte
  unsigned width = 0;
  uint32_t before = 0;

  bool add(const Code &one) noexcept {
    const bool first = one.width != width;
    for (unsigned kept = 1; kept < one.width; ++kept) {
      const unsigned shift = 8 * kept;
      count += first || one.code >> shift != before >> shift;
    }
    width = one.width;
    before = one.code;
    return count <= most_nodes;
  }
};

// Puts the codes of a file into a table whose parts have their room.
class Filler {
public:
  Filler(MultiByteTable &filled, Form of) noexcept : table(filled), form(of) {}

  bool pair(uint32_t first, uint32_t second) noexcept {
    table.pairs[table.pair_count++] = {first, second, 0, 0};
    return true;
  }
  bool code(const Code &one) noexcept {
    if (form == Form::gb18030 && one.width == 4) {
      table.linear[one.code] = static_cast<UChar16>(one.value);
      return one.value <= 0xFFFF && (one.read_only || encode(one.value, four_byte_code(one.code)));
    }
    // A NUL ends the text, the bytes 0E and 0F shift, and a code must tell its width by itself.
    if (form == Form::shifted && one.width == 1 && (one.code == 0x0E || one.code == 0x0F))
      return false;
    if (has_nul(one) || (one.width == 4 && one.code < 0x80000000))
      return false;
    uint32_t node = form == Form::shifted && one.width == 2 ? 1 : 0;
    for (unsigned left = one.width - 1; left > 0; --left) {
      uint32_t &next = table.nodes[node][one.code >> (8 * left) & 0xFF];
      if (next == 0)
        next = entry::node | used++;
      if ((next & entry::node) == 0)
        return false;
      node = next & ~entry::node;
    }
    uint32_t &leaf = table.nodes[node][one.code & 0xFF];
    if (leaf != 0)
      return false;
    const bool is_pair = one.value >= first_pair;
    leaf = is_pair ? entry::pair | (one.value - first_pair) : one.value;
    trails[one.width][one.code & 0xFF] = true;
    width_of[node] = static_cast<uint8_t>(one.width);
    if (one.read_only)
      return true;
    return is_pair ? take(table.pairs[one.value - first_pair].code, one.code)
                   : encode(one.value, one.code);
  }
  // What is left to do when all codes are there.
  bool finish() noexcept {
    // Bytes that end characters elsewhere end unassigned ones here.
    for (uint32_t node = 0; node < used; ++node)
      for (unsigned byte = 0; width_of[node] > 1 && byte < 256; ++byte)
        if (table.nodes[node][byte] == 0 && trails[width_of[node]][byte])
          table.nodes[node][byte] = entry::unassigned;
    if (form == Form::gb18030 && !add_four_bytes())
      return false;
    // Each of them leads to the first pair that its character begins.
    for (size_t index = table.pair_count; index-- > 0;) {
      Pair &pair = table.pairs[index];
      uint32_t &code = page_entry(pair.first);
      if (pair.code == 0 || pair.second == 0)
        return false;
      if ((code & 0xFF000000) == entry::begins_pair)
        pair.alone = table.pairs[code & ~entry::begins_pair].alone;
      else
        pair.alone = code;
      code = entry::begins_pair | static_cast<uint32_t>(index);
    }
    table.ascii = is_ascii([&](unsigned byte) { return table.nodes[0][byte]; }) &&
                  is_ascii([&](unsigned unit) { return table.pages[table.page_of[0]][unit]; });
    return true;
  }

private:
  static bool has_nul(const Code &one) noexcept {
    for (unsigned at = 0; at < one.width; ++at)
      if ((one.code >> (8 * at) & 0xFF) == 0)
        return true;
    return false;
  }
  uint32_t &page_entry(uint32_t character) noexcept {
    return table.pages[table.page_of[character >> 8]][character & 0xFF];
  }
  static bool take(uint32_t &place, uint32_t code) noexcept {
    if (place != 0)
      return false;
    place = code;
    return true;
  }
  bool encode(uint32_t character, uint32_t code) noexcept {
    return take(page_entry(character), code);
  }
  // Where a digit stands second, two more bytes follow.
  bool add_four_bytes() noexcept {
    for (unsigned lead = 0x81; lead < 0xFF; ++lead) {
      uint32_t &next = table.nodes[0][lead];
      if (next == 0)
        next = entry::node | used++;
      for (unsigned digit = '0'; digit <= '9'; ++digit)
        if ((next & entry::node) == 0 ||
            !take(table.nodes[next & ~entry::node][digit], entry::four_byte))
          return false;
    }
    return true;
  }

  MultiByteTable &table;
  Form form;
  uint32_t used = 2;
  bool trails[5][256]{};
  uint8_t width_of[most_nodes + 128]{};
};

Table *make_multi_byte(const File &file, const Set &set, int *code) noexcept {
  *code = UNICONV_EDAMAGED;
  Pages pages;
  Nodes nodes;
  size_t pairs = 0;
  size_t codes = 0;
  if (!read_body(
          file, set.form,
          [&](uint32_t first, uint32_t second) {
            if (first == 0 || first > 0xFFFF || second > 0xFFFF || is_surrogate(first) ||
                is_surrogate(second))
              return false;
            pages.add(first);
            ++pairs;
            return true;
          },
          [&](const Code &one) {
            if (one.value < first_pair)
              pages.add(one.value);
            const bool counted = set.form == Form::gb18030 && one.width == 4;
            return ++codes <= most_codes && (counted || nodes.add(one));
          }))
    return nullptr;
  if (set.form == Form::gb18030)
    nodes.count += 126;
  size_t size = sizeof(MultiByteTable);
  const size_t nodes_at = reserve<uint32_t[256]>(size, nodes.count);
  const size_t pages_at = reserve<uint32_t[256]>(size, pages.count);
  const size_t page_of_at = reserve<uint16_t>(size, pages.limit);
  const size_t pairs_at = reserve<Pair>(size, pairs);
  const size_t linear_at = reserve<UChar16>(size, set.form == Form::gb18030 ? linear_basic : 0);
  void *const block = comn_calloc(1, size);
  if (block == nullptr) {
    *code = UNICONV_ENOMEM;
    return nullptr;
  }
  auto *const table = new (block) MultiByteTable;
  table->nodes = element_at<uint32_t[256]>(block, nodes_at);
  table->pages = element_at<uint32_t[256]>(block, pages_at);
  table->page_limit = pages.limit;
  auto *const page_of = element_at<uint16_t>(block, page_of_at);
  std::memcpy(page_of, pages.page_of, pages.limit * sizeof *page_of);
  table->page_of = page_of;
  table->pairs = element_at<Pair>(block, pairs_at);
  table->linear = element_at<UChar16>(block, linear_at);
  Filler filler(*table, set.form);
  if (!read_body(
          file, set.form,
          [&](uint32_t first, uint32_t second) { return filler.pair(first, second); },
          [&](const Code &one) { return filler.code(one); }) ||
      !filler.finish()) {
    comn_free(block);
    return nullptr;
  }
  *code = UNICONV_SUCCEED;
  return table;
}

// The path of a set's file; false when it does not fit.
bool path_of(const Set &set, const char *directory, char *path, size_t size) noexcept {
  const size_t length = std::strlen(directory);
  const char *const slash = length > 0 && directory[length - 1] != '/' ? "/" : "";
  size_t needed = intl_strlcpy(path, directory, size);
  for (const char *part : {slash, set.file, ".bin"})
    if (needed < size)
      needed = intl_strlcat(path, part, size);
  return needed < size;
}

} // namespace

Table *load_table(const Set &set, const char *directory, int *code) noexcept {
  char path[PATH_MAX];
  File file;
  *code = path_of(set, directory, path, sizeof path) ? read_file(path, file) : UNICONV_ENOTABLE;
  Table *table = nullptr;
  if (*code == UNICONV_SUCCEED) {
    if (!is_sound(file, set))
      *code = UNICONV_EDAMAGED;
    else
      table = set.form == Form::one_byte ? make_one_byte(file, set, code)
                                         : make_multi_byte(file, set, code);
  }
  comn_free(file.data);
  if (table != nullptr)
    table->set = &set;
  return table;
}

} // namespace zrvunic
