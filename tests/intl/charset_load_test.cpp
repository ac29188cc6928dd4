// The loader of charset.loc: forms of the file, failures of each kind, what is left behind.
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "allocation_probe.h"
#include "check_trap.h"
#include "guarded_buffer.h"
#include "io_probe.h"
#include "test_scale.h"
#include "traced_exit.h"
#include "zrvcomn/charset.h"
#include "zrvcomn/comnlib.h"
#include "zrvcomn/sortordr.h"
#include "zrvcomn/zrvintl.h"

namespace {

using namespace zrvtest;
namespace fs = std::filesystem;

constexpr const char *unit = "charset_load.cpp";

using Image = std::vector<CS_BYTE>;

std::string hex(CS_BYTE byte) {
  constexpr char digits[] = "0123456789abcdef";
  return {digits[byte >> 4], digits[byte & 15]};
}

// An image as "definition" lines of `step` digits.
std::string lines_of(const Image &image, size_t step = 128) {
  std::string digits, text;
  for (const CS_BYTE byte : image)
    digits += hex(byte);
  for (size_t at = 0; at < digits.size(); at += step)
    text += "definition = " + digits.substr(at, step) + "\n";
  return text;
}

// A number of a header as the bytes of a value.
std::string raw(unsigned long long number, int bytes) {
  std::string text;
  while (--bytes >= 0)
    text += "\\x" + hex(static_cast<CS_BYTE>(number >> 8 * bytes));
  return text;
}

// Bytes that differ from their neighbours, so that one in the wrong place is seen.
Image pattern(size_t size, unsigned seed) {
  Image image(size);
  for (size_t i = 0; i < size; ++i)
    image[i] = static_cast<CS_BYTE>((i * 7 + i / 256 * 13 + seed) & 0x7F);
  return image;
}

struct Class1 {
  Image types = pattern(1028, 1);
  Image sounds = pattern(257, 2);
  std::string size = raw(1285, 4);

  std::string text(size_t step = 128) const {
    return "[charset]\nclass = \\x01\nname = test_1\nid = \\xC8\nstatus = \\x12\\x34\n"
           "description = \"what it is, in words\"\nimage_size = " +
           size + "\n" + lines_of(types, step) + lines_of(sounds, step);
  }
};

struct Class2 {
  CS_BYTE type_planes = 2, norm_planes = 2, sound_planes = 1;
  Image widths = pattern(256, 3);
  Image norms = pattern(512, 4);
  Image types = pattern(2048, 5);
  Image sounds = pattern(256, 6);
  std::string size = raw(44 + 256 + 512 + 2048 + 256, 4);
  // Sizes as the header tells them; those of the tables unless they are set.
  unsigned width_size = 256, norm_size = 512, type_size = 2048, sound_size = 256;

  Image header() const {
    Image image = {0x55, 0x66, 2, 4, 3, type_planes, norm_planes, sound_planes, 9, 8, 7, 6};
    // The offsets lead nowhere: the order of the file gives the tables.
    for (const unsigned number :
         {0xDEADBEEFU, width_size, 0xFFFFFFFFU, norm_size, 0U, type_size, 0x12345678U, sound_size})
      for (int shift = 24; shift >= 0; shift -= 8)
        image.push_back(static_cast<CS_BYTE>(number >> shift));
    return image;
  }
  std::string text(size_t step = 128) const {
    return "[charset]\nimage_size = " + size + "\nclass = \\x02\nname = \"test 2\"\nid = \\x07\n" +
           lines_of(header(), step) + lines_of(widths, step) + lines_of(norms, step) +
           lines_of(types, step) + lines_of(sounds, step);
  }
};

// A home directory of the test with one character set, a context, a cache and an identity.
class CharsetLoad : public testing::Test {
protected:
  CharsetLoad() {
    char path[] = "/tmp/zrvtest-XXXXXX";
    EXPECT_NE(mkdtemp(path), nullptr);
    home = path;
    fs::create_directories(home / "charsets" / "test");
    setenv("ZARVEK", home.c_str(), 1);
    context.ctxglobals = &globals;
    cache.charname = charname;
    cache.charnamelen = 4;
  }
  ~CharsetLoad() override {
    EXPECT_EQ(com_intl_chardesc_drop(&context), CS_SUCCEED);
    EXPECT_EQ(probe.live_blocks(), 0U);
    EXPECT_EQ(open_descriptors(), descriptors);
    unsetenv("ZARVEK");
    fs::remove_all(home);
  }

  fs::path file() const { return home / "charsets" / "test" / "charset.loc"; }
  void write(const std::string &text) const { std::ofstream(file(), std::ios::binary) << text; }

  CS_RETCODE load() {
    cache.locchardesc = nullptr;
    context.ctxintlerr = 0;
    return comn__intl_load_charset(&context, &oid, &cache, nullptr, 0);
  }
  CS_RETCODE load(const std::string &text) {
    write(text);
    return load();
  }
  // A file that must not be loaded.
  void refuse(const std::string &text, const std::string &what, CS_RETCODE result = CS_FAIL,
              int reader_status = 0) {
    EXPECT_EQ(load(text), result) << what;
    EXPECT_EQ(context.ctxintlerr, reader_status) << what;
    EXPECT_EQ(cache.locchardesc, nullptr) << what;
    EXPECT_EQ(globals.cmg_chardesc, nullptr) << what;
    EXPECT_EQ(probe.live_blocks(), 0U) << what;
    EXPECT_EQ(open_descriptors(), descriptors) << what;
  }
  void accept(const std::string &text, const std::string &what) {
    EXPECT_EQ(load(text), CS_SUCCEED) << what;
    EXPECT_NE(cache.locchardesc, nullptr) << what;
    drop();
  }
  void drop() { EXPECT_EQ(com_intl_chardesc_drop(&context), CS_SUCCEED); }

  const CHAR_ATTRIB &loaded() const { return *cache.locchardesc->char_attrib; }

  size_t descriptors = open_descriptors();
  fs::path home;
  AllocationProbe probe;
  CS_CONTEXT context{};
  CsCtxGlobals globals{};
  CsLocCache cache{};
  CsOID oid{};
  char charname[5] = "test";
};

void expect_table(const void *table, const Image &image, const char *what) {
  ASSERT_NE(table, nullptr) << what;
  EXPECT_EQ(std::memcmp(table, image.data(), image.size()), 0) << what;
}

// ---- what is loaded ----

TEST_F(CharsetLoad, Class1) {
  const Class1 set;
  ASSERT_EQ(load(set.text()), CS_SUCCEED);
  const CsCharDesc &desc = *cache.locchardesc;
  EXPECT_EQ(desc.oid, &oid);
  EXPECT_EQ(desc.sort_order, nullptr);
  EXPECT_EQ(desc.conv_config, nullptr);
  EXPECT_EQ(desc.charnext, nullptr);
  EXPECT_EQ(globals.cmg_chardesc, &desc);
  EXPECT_EQ(loaded().cs_class, 1);
  EXPECT_EQ(loaded().cs_id, 0xC8);
  EXPECT_EQ(loaded().cs_status, 0x1234);
  EXPECT_STREQ(loaded().cs_name, "test_1");
  EXPECT_EQ(loaded().cs_namelen, 6);
  EXPECT_EQ(loaded().cs_maxcharlen, 1);
  EXPECT_EQ(loaded().cs_ncharsize, 1);
  EXPECT_EQ(loaded().cs_nnorm, 0);
  EXPECT_EQ(loaded().cs_ntype, 1);
  EXPECT_EQ(loaded().cs_nsoundex, 1);
  EXPECT_EQ(loaded().cs_width_map, nullptr);
  EXPECT_EQ(loaded().cs_norm_map, nullptr);
  expect_table(loaded().cs_type_map, set.types, "types");
  expect_table(loaded().cs_soundex, set.sounds, "sounds");
}

TEST_F(CharsetLoad, Class2) {
  const Class2 set;
  ASSERT_EQ(load(set.text()), CS_SUCCEED);
  EXPECT_EQ(loaded().cs_class, 2);
  EXPECT_EQ(loaded().cs_id, 7);
  EXPECT_EQ(loaded().cs_status, 0); // of the entry "status" alone, not of the header
  EXPECT_STREQ(loaded().cs_name, "test 2");
  EXPECT_EQ(loaded().cs_namelen, 6);
  EXPECT_EQ(loaded().cs_maxcharlen, 4);
  EXPECT_EQ(loaded().cs_ncharsize, 3);
  EXPECT_EQ(loaded().cs_nnorm, 2);
  EXPECT_EQ(loaded().cs_ntype, 2);
  EXPECT_EQ(loaded().cs_nsoundex, 1);
  expect_table(loaded().cs_width_map, set.widths, "widths");
  expect_table(loaded().cs_norm_map, set.norms, "norms");
  expect_table(loaded().cs_type_map, set.types, "types");
  expect_table(loaded().cs_soundex, set.sounds, "sounds");
}

TEST_F(CharsetLoad, Class2WithoutTheMapsThatMayBeMissing) {
  Class2 set;
  set.widths.clear();
  set.width_size = 0;
  ASSERT_EQ(load(set.text()), CS_SUCCEED);
  EXPECT_EQ(loaded().cs_width_map, nullptr);
  EXPECT_NE(loaded().cs_norm_map, nullptr);
  drop();
  set.norms.clear();
  set.norm_size = 0;
  ASSERT_EQ(load(set.text()), CS_SUCCEED);
  EXPECT_EQ(loaded().cs_width_map, nullptr);
  EXPECT_EQ(loaded().cs_norm_map, nullptr);
  expect_table(loaded().cs_type_map, set.types, "types");
}

// Tables that are shorter than a look-up reaches have zeros behind, and planes that a file names and
// does not have are empty.
TEST_F(CharsetLoad, ShortTablesAreFilledUp) {
  Class2 set;
  set.type_planes = 1;
  set.types = Image(1024);
  for (size_t c = 0; c < 256; ++c)
    set.types[4 * c] = static_cast<CS_BYTE>(c), set.types[4 * c + 3] = 0x80;
  set.type_size = 1024;
  set.norm_planes = 0;
  set.norms = Image(1, 200);
  set.norm_size = 1;
  set.widths = Image(1, 0x12);
  set.width_size = 1;
  ASSERT_EQ(load(set.text()), CS_SUCCEED);
  CS_ATTRIB *const ca = cache.locchardesc->char_attrib;
  for (int first = 0; first < 256; ++first)
    for (const int second : {0, 1, 254, 255}) {
      CS_BYTE character[] = {static_cast<CS_BYTE>(first), static_cast<CS_BYTE>(second)};
      EXPECT_EQ(comn_isalpha(ca, character), 0);
      EXPECT_EQ(comn_get_lex(ca, character), 0);
      EXPECT_EQ(comn_to_ascii(ca, character), 0);
      EXPECT_EQ(comn_char_width(ca, character), first == 0 ? 2 : 1);
    }
  drop();
  Class1 one;
  one.types[3] = 0x80;
  one.types[0] = 255;
  ASSERT_EQ(load(one.text()), CS_SUCCEED);
  CS_BYTE character[] = {0, 255};
  EXPECT_EQ(comn_isalpha(cache.locchardesc->char_attrib, character), 0);
}

// A set keeps the planes of its file and those that its first plane names, up to the last one named.
TEST_F(CharsetLoad, KeepsThePlanesInUse) {
  constexpr size_t records = sizeof(CsCharDesc) + sizeof(CHAR_ATTRIB);
  Class1 set;
  ASSERT_EQ(load(set.text()), CS_SUCCEED);
  EXPECT_EQ(probe.live_bytes(), records + 1028 + 257);
  drop();
  for (const size_t entry : {0U, 1U, 255U})
    for (const size_t plane : {0U, 1U, 254U, 255U}) {
      set.types = pattern(1028, 1);
      set.types[4 * entry] = static_cast<CS_BYTE>(plane);
      set.types[4 * entry + 3] = 0x80;
      ASSERT_EQ(load(set.text()), CS_SUCCEED);
      const size_t planes = std::max<size_t>(1028, 1024 * (plane + 1));
      EXPECT_EQ(probe.live_bytes(), records + planes + 257) << entry << " " << plane;
      expect_table(loaded().cs_type_map, set.types, "types");
      drop();
    }
  // The spare entry behind the plane names none.
  set.types = pattern(1028, 1);
  set.types[1024] = 255;
  set.types[1027] = 0x80;
  ASSERT_EQ(load(set.text()), CS_SUCCEED);
  EXPECT_EQ(probe.live_bytes(), records + 1028 + 257);
  drop();
  // All of the file's planes, named or not.
  const Class2 two;
  ASSERT_EQ(load(two.text()), CS_SUCCEED);
  EXPECT_EQ(probe.live_bytes(), records + 256 + 256 * sizeof(CS_NORM_MAP) + 2048 + 256);
}

// Entries in any order, other sections before, lines of any length that an odd number of digits may
// have, capitals, further values of a line, whatever follows the images.
TEST_F(CharsetLoad, FormsOfTheFile) {
  const Class1 one;
  const Class2 two;
  for (const size_t step : {1U, 2U, 3U, 127U, 1000U}) {
    ASSERT_EQ(load(one.text(step)), CS_SUCCEED) << step;
    expect_table(loaded().cs_type_map, one.types, "types");
    expect_table(loaded().cs_soundex, one.sounds, "sounds");
    drop();
    ASSERT_EQ(load(two.text(step)), CS_SUCCEED) << step;
    expect_table(loaded().cs_norm_map, two.norms, "norms");
    expect_table(loaded().cs_soundex, two.sounds, "sounds");
    drop();
  }
}

TEST_F(CharsetLoad, Variants) {
  const Class1 one;
  accept("[other]\nclass = \\x09\nnonsense = x\n[Charset]\n" + one.text(), "other sections");
  accept(one.text() + "anything = x\n[charset]\nno = x\n", "what follows is not looked at");
  accept(one.text() + "malformed\n", "not even that");
  accept("[charset]\nimage_size = " + raw(1285, 4) + "\nclass = \\x01, more\n" +
             lines_of(one.types) + lines_of(one.sounds),
         "the least");
  std::string text = one.text();
  for (size_t at = text.find("definition"); (at = text.find('\n', at)) != std::string::npos;) {
    text.insert(at, ", more, values");
    at += 15;
  }
  accept(text, "further values");
  std::string upper = one.text();
  const size_t images = upper.find("definition");
  for (size_t at = images; at < upper.size(); ++at)
    if (upper[at] >= 'a' && upper[at] <= 'f' && at > upper.rfind('=', at) &&
        upper.rfind('=', at) > upper.rfind('\n', at))
      upper[at] = static_cast<char>(upper[at] - 32);
  ASSERT_EQ(load(upper), CS_SUCCEED);
  expect_table(loaded().cs_type_map, one.types, "capitals");
  drop();
  text = one.text();
  text.insert(images, "definition = \"\"\n");
  accept(text, "an empty line of digits");
  text = one.text();
  text.replace(text.find("\\x01"), 4, "\\x02");
  text.insert(images, "class = \\x01\n");
  accept(text, "the last word on the class counts");
}

TEST_F(CharsetLoad, NamesOfAllLengths) {
  const Class1 one;
  for (const size_t length : {0U, 1U, 29U}) {
    std::string text = one.text();
    text.replace(text.find("test_1"), 6, "\"" + std::string(length, 'n') + "\"");
    ASSERT_EQ(load(text), CS_SUCCEED) << length;
    EXPECT_EQ(loaded().cs_name, std::string(length, 'n'));
    EXPECT_EQ(loaded().cs_namelen, static_cast<int>(length));
    drop();
  }
  for (const size_t length : {30U, 31U, 200U}) {
    std::string text = one.text();
    text.replace(text.find("test_1"), 6, std::string(length, 'n'));
    refuse(text, std::to_string(length));
  }
}

// ---- sizes ----

TEST_F(CharsetLoad, ImageSizeOfClass1) {
  Class1 set;
  for (const unsigned long long size : {0ULL, 1ULL, 1284ULL, 1286ULL, 1324ULL, 0x01000505ULL}) {
    set.size = raw(size, 4);
    refuse(set.text(), std::to_string(size));
  }
  set.size = raw(1285, 4);
  accept(set.text(), "1285");
}

// One type plane and one sound plane are the least: 1,324 bytes. What more the number says is not
// compared with anything, and it has no sign.
TEST_F(CharsetLoad, ImageSizeOfClass2) {
  Class2 set;
  for (const unsigned long long size : {0ULL, 44ULL, 1285ULL, 1323ULL}) {
    set.size = raw(size, 4);
    refuse(set.text(), std::to_string(size));
  }
  for (const unsigned long long size :
       {1324ULL, 3116ULL, 0x7FFFFFFFULL, 0x80000000ULL, 0xFFFFFFFFULL}) {
    set.size = raw(size, 4);
    accept(set.text(), std::to_string(size));
  }
}

TEST_F(CharsetLoad, PlaneCountsOfClass2) {
  const Class2 good;
  struct {
    CS_BYTE types, sounds;
    unsigned type_size, sound_size;
    bool is_right;
  } const rows[] = {
      {2, 1, 2048, 256, true},        {1, 1, 2048, 256, false}, {3, 1, 2048, 256, false},
      {2, 1, 0, 256, false},          {0, 1, 0, 256, false},    {2, 1, 2047, 256, false},
      {2, 1, 2049, 256, false},       {2, 0, 2048, 256, false}, {2, 2, 2048, 256, false},
      {2, 1, 2048, 0, false},         {2, 0, 2048, 0, false},   {2, 1, 2048, 255, false},
      {2, 1, 0x80000800, 256, false},
  };
  for (const auto &row : rows) {
    Class2 set;
    set.type_planes = row.types;
    set.sound_planes = row.sounds;
    set.type_size = row.type_size;
    set.sound_size = row.sound_size;
    const std::string what = std::to_string(row.types) + " " + std::to_string(row.type_size) + " " +
                             std::to_string(row.sounds) + " " + std::to_string(row.sound_size);
    if (row.is_right)
      accept(set.text(), what);
    else
      refuse(set.text(), what);
  }
  // As many as a byte counts.
  Class2 most;
  most.type_planes = most.sound_planes = most.norm_planes = 255;
  most.types = pattern(255 * 1024, 1);
  most.type_size = 255 * 1024;
  most.sounds = pattern(255 * 256, 2);
  most.sound_size = 255 * 256;
  most.norms = pattern(256 * 256, 3);
  most.norm_size = 256 * 256;
  ASSERT_EQ(load(most.text(1000)), CS_SUCCEED);
  expect_table(loaded().cs_type_map, most.types, "types");
  expect_table(loaded().cs_norm_map, most.norms, "norms");
  expect_table(loaded().cs_soundex, most.sounds, "sounds");
  drop();
  // A map that no look-up can use to its end.
  most.norm_size = 256 * 256 + 1;
  refuse(most.text(1000), "norm");
  Class2 wide;
  wide.widths = pattern(257, 1);
  wide.width_size = 257;
  refuse(wide.text(), "width");
  wide.width_size = 0xFFFFFFFF;
  refuse(wide.text(), "width");
}

// ---- failures ----

std::string without(std::string text, const std::string &key) {
  const size_t at = text.find("\n" + key) + 1;
  return text.erase(at, text.find('\n', at) + 1 - at);
}
std::string with(std::string text, const std::string &from, const std::string &to) {
  return text.replace(text.find(from), from.size(), to);
}

TEST_F(CharsetLoad, Refusals) {
  const Class1 one;
  const std::string good = one.text();
  const size_t images = good.find("definition");
  accept(good, "the file that all others differ from");
  refuse("", "an empty file");
  refuse("[other]\n", "no section");
  refuse("[charset]\n", "no entry");
  refuse(good.substr(0, images), "no image");
  refuse(without(good, "class"), "no class");
  refuse(without(Class2().text(), "class"), "no class, and the image of class 2");
  refuse(without(good, "image_size"), "no size");
  refuse(good.substr(0, images) + "other = x\n" + good.substr(images), "an unknown key");
  refuse(good.substr(0, images) + "other = " + raw(1285, 4) + "\n" + good.substr(images),
         "an unknown key with a size");
  refuse(good.substr(0, images) + "Class = \\x01\n" + good.substr(images), "another case");
  for (const char *const number : {"\\x00", "\\x03", "\\x81", "1", "\"\"", "\\x00\\x01"})
    refuse(with(good, "class = \\x01", std::string("class = ") + number), number);
  for (const char *const entry : {"class", "name", "description", "id", "status", "image_size"})
    refuse("[charset]\n" + std::string(entry) + " =\n" + good.substr(10), entry);
  for (const char *const moved : {"class = \\x01\n", "image_size = \\x00\\x00\\x05\\x05\n"})
    refuse(without(good, std::string(moved).substr(0, 5)) + moved, "an entry behind the images");
}

TEST_F(CharsetLoad, RefusedImages) {
  const Class1 one;
  const std::string good = one.text();
  const size_t first = good.find("definition = ") + 13;
  for (const char *const digits :
       {"0x", "0X", "g0", "  ", "-1", "+1", "/0", ":0", "@0", "G0", "`0", "0\xE9"})
    refuse(std::string(good).replace(first, 2, digits), digits);
  refuse(std::string(good).replace(first, 2,
                                   "\\x00"
                                   "0"),
         "a NUL");
  refuse(with(good, "definition = ", "definition = 0"), "a digit more in the middle");
  refuse(std::string(good).erase(first, 1), "a digit less");
  std::string text = good;
  text.insert(text.size() - 1, "00");
  refuse(text, "a byte more at the end");
  text = good;
  refuse(text.erase(text.size() - 3, 2), "a byte less at the end");
  // The second image does not begin in the line in which the first one ends.
  Image both = one.types;
  both.insert(both.end(), one.sounds.begin(), one.sounds.end());
  refuse(good.substr(0, good.find("definition")) + lines_of(both), "one run of lines");
  refuse(with(good, "\ndefinition", "\nname = x\ndefinition =\ndefinition"),
         "a line without a value");
  const size_t second = good.find("definition", first);
  refuse(std::string(good).insert(second, "name = x\n"), "another key inside an image");
  refuse(std::string(good).insert(second, "definition =\n"), "no value inside an image");
  refuse(std::string(good).insert(second, "[charset]\n"), "another section inside an image");
}

TEST_F(CharsetLoad, FailuresOfTheReader) {
  const std::string good = Class1().text();
  const size_t second = good.find("definition", good.find("definition") + 1);
  for (const size_t at : {size_t{0}, size_t{10}, good.find("definition"), second, good.size()}) {
    if (at == good.size())
      accept(good + "malformed\n", "behind the images");
    else
      refuse(std::string(good).insert(at, "malformed\n"), "malformed", COM_INTL_ERROR,
             ZRVINTL_ESYNTAX);
  }
  refuse(std::string(good).insert(second, "x = " + std::string(1100, '0') + "\n"), "a long line",
         COM_INTL_ERROR, ZRVINTL_ELINE);
  for (const char *const entry :
       {"class", "name", "description", "id", "status", "image_size", "definition"})
    refuse("[charset]\nclass = \\x01\nimage_size = \\x00\\x00\\x05\\x05\n" + std::string(entry) +
               " = \"open\n",
           entry, COM_INTL_ERROR, ZRVINTL_ESYNTAX);
  refuse("[other\n", "an open section name", COM_INTL_ERROR, ZRVINTL_ESYNTAX);
}

TEST_F(CharsetLoad, WithoutTheFile) {
  CS_CHAR path[1100] = "";
  EXPECT_EQ(comn__intl_load_charset(&context, &oid, &cache, path, sizeof path), COM_LOCFILE_ERROR);
  EXPECT_EQ(context.ctxintlerr, ZRVINTL_EOPEN);
  EXPECT_EQ(path, file().string());
  EXPECT_EQ(cache.locchardesc, nullptr);
  EXPECT_EQ(globals.cmg_chardesc, nullptr);
  setenv("ZARVEK", ("/" + std::string(1020, 'h')).c_str(), 1);
  EXPECT_EQ(load(), CS_FAIL);
  EXPECT_EQ(cache.locchardesc, nullptr);
}

TEST_F(CharsetLoad, TellsTheFile) {
  write(Class1().text());
  GuardedBuffer path(file().string().size() + 1);
  EXPECT_EQ(comn__intl_load_charset(&context, &oid, &cache, path.text(),
                                    static_cast<CS_INT>(path.size())),
            CS_SUCCEED);
  EXPECT_EQ(path.text(), file().string());
}

// Whatever is lost at the end, the file is refused: up to the last digit it is incomplete.
TEST_F(CharsetLoad, TruncatedAtEveryByte) {
  Class2 set;
  set.types = pattern(1024, 1);
  set.type_planes = 1;
  set.type_size = 1024;
  for (const std::string &text : {Class1().text(1000), set.text(1000)})
    for (size_t length = 0; length + 1 < text.size(); length += sanitized ? 37 : 1) {
      const CS_RETCODE result = load(text.substr(0, length));
      ASSERT_TRUE(result == CS_FAIL || result == COM_INTL_ERROR) << length;
      ASSERT_EQ(probe.live_blocks(), 0U) << length;
      ASSERT_EQ(globals.cmg_chardesc, nullptr) << length;
    }
  accept(Class1().text().substr(0, Class1().text().size() - 1),
         "only the end of the line is missing");
}

// Each byte replaced: a told result, and nothing left behind when it is a failure.
TEST_F(CharsetLoad, EachByteChanged) {
  for (const std::string &text : {Class1().text(1000), Class2().text(1000)})
    for (size_t at = 0; at < text.size(); at += at < 400 ? 1 : sanitized ? 97 : 7) {
      std::string changed = text;
      changed[at] = static_cast<char>(changed[at] ^ (1 << at % 8));
      const CS_RETCODE result = load(changed);
      ASSERT_TRUE(result == CS_SUCCEED || result == CS_FAIL || result == COM_INTL_ERROR) << at;
      ASSERT_EQ(cache.locchardesc != nullptr, result == CS_SUCCEED) << at;
      drop();
      ASSERT_EQ(probe.live_blocks(), 0U) << at;
    }
}

TEST_F(CharsetLoad, EachAllocationFailed) {
  Class1 naming;
  naming.types[0] = 255;
  naming.types[3] = 0x80;
  // The descriptor, the reader's block, the record, and two tables or four; a type map of which a
  // plane is named and missing is taken twice.
  for (const auto &[text, blocks] : {std::pair{Class1().text(), 5}, std::pair{Class2().text(), 7},
                                     std::pair{naming.text(), 6}}) {
    write(text);
    const size_t failed = fail_each_allocation(
        [] {},
        [&] {
          const CS_RETCODE result = load();
          EXPECT_TRUE(result == CS_SUCCEED || result == CS_MEM_ERROR || result == COM_LOCFILE_ERROR)
              << result;
          EXPECT_EQ(cache.locchardesc == nullptr, result != CS_SUCCEED);
          EXPECT_EQ(globals.cmg_chardesc == nullptr, result != CS_SUCCEED);
          return result != CS_SUCCEED;
        },
        [&] { drop(); });
    EXPECT_EQ(failed, 2U * static_cast<size_t>(blocks));
  }
}

TEST_F(CharsetLoad, EachInputFailed) {
  write(Class1().text());
  const size_t failed = fail_each_io([&] {
    drop();
    const CS_RETCODE result = load();
    EXPECT_TRUE(result == CS_SUCCEED || result == COM_INTL_ERROR || result == COM_LOCFILE_ERROR)
        << result;
    EXPECT_EQ(context.ctxintlerr < 0, result != CS_SUCCEED);
    EXPECT_EQ(globals.cmg_chardesc == nullptr, result != CS_SUCCEED);
    return result != CS_SUCCEED;
  });
  EXPECT_GE(failed, 3U); // an open, a read, a close
}

// ---- the list ----

TEST_F(CharsetLoad, ASetIsLoadedOnce) {
  ASSERT_EQ(load(Class1().text()), CS_SUCCEED);
  CsCharDesc *const first = cache.locchardesc;
  fs::remove(file());
  ASSERT_EQ(load(), CS_SUCCEED); // by its identity, without the file
  EXPECT_EQ(cache.locchardesc, first);
  CsOID other{};
  EXPECT_EQ(comn__intl_load_charset(&context, &other, &cache, nullptr, 0), COM_LOCFILE_ERROR);
  EXPECT_EQ(cache.locchardesc, nullptr);
  EXPECT_EQ(globals.cmg_chardesc, first);
  write(Class2().text());
  ASSERT_EQ(comn__intl_load_charset(&context, &other, &cache, nullptr, 0), CS_SUCCEED);
  EXPECT_EQ(globals.cmg_chardesc, cache.locchardesc); // the latest one first
  EXPECT_EQ(cache.locchardesc->charnext, first);
  EXPECT_EQ(first->charnext, nullptr);
  EXPECT_EQ(comn__intl_load_charset(&context, &oid, &cache, nullptr, 0), CS_SUCCEED);
  EXPECT_EQ(cache.locchardesc, first);
  drop();
  EXPECT_EQ(globals.cmg_chardesc, nullptr);
  drop(); // of an empty list
}

// ---- the sort order that comes along ----

class CharsetLoadWithOrder : public CharsetLoad {
protected:
  CharsetLoadWithOrder() {
    order_name.string = sortname;
    order_name.len = 6;
    order.oidlnames = &order_name;
    order.oidnumlnames = 1;
    table.ot_oid[COM_OID_COLLATE] = &order;
    globals.ctxoids = &table;
    context.ctxlocale = &locale;
    cache.sortname = sortname;
    cache.sortnamelen = 6;
    write(Class1().text());
    write_order("binary = true\n");
  }
  void write_order(const std::string &more) const {
    std::ofstream(home / "charsets" / "test" / "binary.srt")
        << "[sortorder]\nclass = \\x01\ncharset = test\nmenuname = m\nname = binary\nid = \\x32\n"
           "description = d\n"
        << more;
  }

  CS_STRING_LIST order_name{};
  CsOID order{};
  CS_OID_TABLE table{};
  CS_LOCALE locale{};
  char sortname[7] = "binary";
};

TEST_F(CharsetLoadWithOrder, LoadsIt) {
  CS_CHAR path[300] = "";
  ASSERT_EQ(comn__intl_load_charset(&context, &oid, &cache, path, sizeof path), CS_SUCCEED);
  ASSERT_NE(cache.locchardesc, nullptr);
  ASSERT_NE(cache.locchardesc->sort_order, nullptr);
  EXPECT_EQ(cache.locchardesc->sort_order->oid, &order);
  EXPECT_EQ(cache.locsortorder, cache.locchardesc->sort_order);
  EXPECT_EQ(path, (home / "charsets" / "test" / "binary.srt").string());
}

TEST_F(CharsetLoadWithOrder, OnlyWithALocaleAndAName) {
  context.ctxlocale = nullptr;
  ASSERT_EQ(load(), CS_SUCCEED);
  EXPECT_EQ(cache.locchardesc->sort_order, nullptr);
  drop();
  context.ctxlocale = &locale;
  cache.sortname = nullptr;
  ASSERT_EQ(load(), CS_SUCCEED);
  EXPECT_EQ(cache.locchardesc->sort_order, nullptr);
  EXPECT_EQ(cache.locsortorder, nullptr);
}

TEST_F(CharsetLoadWithOrder, ItsFailureIsOne) {
  write_order("preference = perhaps\n");
  EXPECT_EQ(load(), CS_FAIL);
  EXPECT_EQ(cache.locchardesc, nullptr);
  EXPECT_EQ(globals.cmg_chardesc, nullptr);
  EXPECT_EQ(probe.live_blocks(), 0U);
  fs::remove(home / "charsets" / "test" / "binary.srt");
  EXPECT_EQ(load(), COM_LOCFILE_ERROR);
  table.ot_oid[COM_OID_COLLATE] = nullptr; // no such order
  write_order("binary = true\n");
  EXPECT_EQ(load(), CS_FAIL);
  EXPECT_EQ(cache.locchardesc, nullptr);
  EXPECT_EQ(globals.cmg_chardesc, nullptr);
  EXPECT_EQ(probe.live_blocks(), 0U);
}

// The orders of a set go with it, all of the chain.
TEST_F(CharsetLoadWithOrder, AreDroppedWithTheSet) {
  ASSERT_EQ(load(), CS_SUCCEED);
  CsOID another{};
  ASSERT_EQ(comn__intl_load_sortorder(&context, &another, &cache, nullptr, 0), CS_SUCCEED);
  EXPECT_NE(cache.locchardesc->sort_order->sortnext, nullptr);
  EXPECT_GT(probe.live_blocks(), 5U);
  drop();
  EXPECT_EQ(probe.live_blocks(), 0U);
}

// ---- the steps ----

TEST_F(CharsetLoad, AnImageAtHandAndOneToCome) {
  write("[charset]\ndefinition = 0102\ndefinition = 03\ndefinition = 0\ndefinition = 40506\n");
  INTL_LOCFILE reader;
  ASSERT_EQ(intl_open(file().c_str(), &reader), 0);
  ASSERT_NE(intl_nextsection(&reader, nullptr), nullptr);
  ASSERT_NE(intl_nextentry(&reader, nullptr), nullptr);
  GuardedBuffer image(3), second(2);
  EXPECT_EQ(comn__get_image(&context, &reader, 1, image.data(), 3), CS_SUCCEED);
  EXPECT_EQ(image.contents(), "\x01\x02\x03");
  EXPECT_EQ(comn__get_image(&context, &reader, 0, second.data(), 0), CS_SUCCEED); // reads nothing
  EXPECT_TRUE(second.is_untouched());
  EXPECT_EQ(comn__get_image(&context, &reader, 0, second.data(), 2),
            CS_FAIL); // the line overruns it
  EXPECT_EQ(intl_close(&reader), 0);
  EXPECT_ASSERTION(unit, CS_FAIL, comn__get_image(&context, &reader, 0, second.data(), -1));
}

TEST_F(CharsetLoad, RefusesNullPointers) {
  write(Class1().text());
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            comn__intl_load_charset(nullptr, &oid, &cache, nullptr, 0));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            comn__intl_load_charset(&context, nullptr, &cache, nullptr, 0));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            comn__intl_load_charset(&context, &oid, nullptr, nullptr, 0));
  CsLocCache nameless{};
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            comn__intl_load_charset(&context, &oid, &nameless, nullptr, 0));
  CS_CONTEXT bare{};
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            comn__intl_load_charset(&bare, &oid, &cache, nullptr, 0));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com_intl_chardesc_drop(nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com_intl_chardesc_drop(&bare));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__chardesc_drop(nullptr));
  INTL_LOCFILE reader{};
  CS_BYTE byte = 0;
  CsCharDesc desc{};
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__get_image(nullptr, &reader, 0, &byte, 1));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__get_image(&context, nullptr, 0, &byte, 1));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__get_image(&context, &reader, 0, nullptr, 1));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__load_charset1(&context, &reader, 1285, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__load_charset2(&context, &reader, 1324, nullptr));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__get_charset(nullptr, &cache, &desc, nullptr, 0));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__get_charset(&context, nullptr, &desc, nullptr, 0));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            comn__get_charset(&context, &cache, nullptr, nullptr, 0));
  EXPECT_EQ(globals.cmg_chardesc, nullptr);
}

TEST_F(CharsetLoad, IsTraced) {
  write(Class1().text());
  EXPECT_EQ(exit_of(CS_SUCCEED, [&] { return load(); }), "(CS_SUCCEED) file charset_load.cpp");
  EXPECT_EQ(exit_of(CS_SUCCEED, [&] { return com_intl_chardesc_drop(&context); }),
            "(CS_SUCCEED) file charset_load.cpp");
}

} // namespace
