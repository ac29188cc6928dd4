// The converters: what callers are told, substitutes, cut text, rooms of every size, shifts, the
// compression scheme, and how tables are read and shared.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "allocation_probe.h"
#include "guarded_buffer.h"
#include "io_probe.h"
#include "test_scale.h"
#include "zrvcomn/zrvintl.h"
#include "zrvcomn/zrvunic.h"

using zrvtest::AllocationProbe;
using zrvtest::GuardedBuffer;
using zrvtest::IoProbe;
using namespace std::string_literals;

namespace {

using Text = std::u16string;

struct Decoded {
  int code;
  Text text;
  bool operator==(const Decoded &) const = default;
};
struct Encoded {
  int code;
  std::string bytes;
  bool operator==(const Encoded &) const = default;
};

void PrintTo(const Decoded &one, std::ostream *out) {
  *out << one.code;
  for (const char16_t unit : one.text)
    *out << " U+" << std::hex << unsigned{unit};
}
void PrintTo(const Encoded &one, std::ostream *out) {
  *out << one.code;
  for (const unsigned char byte : one.bytes)
    *out << " " << std::hex << unsigned{byte};
}

class Zrvunic : public testing::Test {
protected:
  Zrvunic() { setenv("ZARVEK", ZRVTEST_HOME, 1); }
  ~Zrvunic() override { unsetenv("ZARVEK"); }
};

// A converter, and calls of it in buffers that are as long as told.
class Converter {
public:
  explicit Converter(UNICONV_CID cid) {
    EXPECT_EQ(uniconv_HandleGet(cid, &handle), UNICONV_SUCCEED) << cid;
  }
  ~Converter() { EXPECT_EQ(uniconv_HandleFree(handle), UNICONV_SUCCEED); }
  Converter(const Converter &) = delete;
  Converter &operator=(const Converter &) = delete;

  Decoded decode(const std::string &bytes) const { return decode(bytes, 2 * bytes.size()); }
  // `room` without the terminator.
  Decoded decode(const std::string &bytes, size_t room) const {
    GuardedBuffer source(bytes.size() + 3);
    std::memset(source.data(), 0, source.size());
    std::memcpy(source.data(), bytes.data(), bytes.size());
    GuardedBuffer dest(2 * room + 2);
    auto *const units = reinterpret_cast<UChar16 *>(dest.data());
    int length = -7;
    const int code =
        uniconv_unistrFromS(handle, units, static_cast<int>(room) + 1, source.data(), &length);
    EXPECT_GE(length, 1);
    EXPECT_LE(length, static_cast<int>(room) + 1);
    EXPECT_EQ(units[length - 1], 0);
    return {code, Text(units, units + length - 1)};
  }
  Encoded encode(const Text &text) const { return encode(text, 4 * text.size()); }
  Encoded encode(const Text &text, size_t room) const {
    GuardedBuffer source(2 * text.size() + 2);
    std::memcpy(source.data(), text.c_str(), source.size());
    GuardedBuffer dest(room + 1);
    int length = -7;
    const int code = uniconv_unistrToS(handle, dest.data(), static_cast<int>(room) + 1,
                                       reinterpret_cast<const UChar16 *>(source.data()), &length);
    EXPECT_GE(length, 1);
    EXPECT_LE(length, static_cast<int>(room) + 1);
    EXPECT_EQ(dest.data()[length - 1], 0);
    EXPECT_EQ(code == UNICONV_FULL, code != UNICONV_NOFIT && length == static_cast<int>(room) + 1 &&
                                        code != UNICONV_SUCCEED && code != UNICONV_SUBSTITUTED);
    if (code == UNICONV_NOFIT) {
      const auto rest = static_cast<size_t>(length - 1);
      EXPECT_EQ(dest.contents().substr(rest), std::string(room + 1 - rest, '\0'));
    }
    return {code, dest.contents(static_cast<size_t>(length) - 1)};
  }

  CVTH handle = nullptr;
};

constexpr UNICONV_CID all_sets[] = {
    -5,   -4,   -1,   0,    1,    2,    3,    4,    5,    8,    9,    10,   11,   12,   13,   14,
    15,   16,   17,   18,   19,   20,   21,   26,   27,   28,   29,   30,   31,   32,   33,   34,
    36,   37,   41,   42,   43,   44,   45,   46,   47,   48,   49,   50,   54,   273,  277,  278,
    280,  284,  285,  290,  297,  420,  424,  500,  737,  775,  850,  852,  855,  856,  857,  858,
    860,  861,  862,  863,  864,  865,  866,  869,  870,  871,  874,  875,  921,  923,  930,  932,
    933,  935,  936,  937,  939,  949,  950,  954,  1006, 1026, 1047, 1140, 1141, 1142, 1143, 1144,
    1145, 1146, 1147, 1148, 1149, 1250, 1251, 1252, 1253, 1254, 1255, 1256, 1257, 1258, 5026, 5035};

// ---- handles ----

TEST_F(Zrvunic, every_set_has_a_converter) {
  for (const UNICONV_CID cid : all_sets)
    if (cid != 850) {
      SCOPED_TRACE(cid);
      Converter converter(cid);
    }
}

TEST_F(Zrvunic, unknown_sets_have_none) {
  for (const UNICONV_CID cid : {-2, UNICONV_CID_NONE, -6, 6, 7, 850, 3000, 3003, 99999}) {
    CVTH handle = reinterpret_cast<CVTH>(&handle);
    EXPECT_EQ(uniconv_HandleGet(cid, &handle), UNICONV_ENOCONV) << cid;
    EXPECT_EQ(handle, nullptr);
  }
  EXPECT_EQ(uniconv_HandleGet(1, nullptr), UNICONV_EINVAL);
  EXPECT_EQ(uniconv_HandleFree(nullptr), UNICONV_SUCCEED);
}

TEST_F(Zrvunic, defaults_of_a_request) {
  I18NUNI_REQUEST request{7, 7, 7};
  i18nuni_RequestSetDefaults(&request);
  EXPECT_EQ(request.cacheInMemory, 1);
  EXPECT_EQ(request.cacheIndexOnly, 0);
  EXPECT_EQ(request.useCurrentDir, I18NUNI_DIR_HOME);
  i18nuni_RequestSetDefaults(nullptr);
}

TEST_F(Zrvunic, null_arguments) {
  Converter converter(1);
  UChar16 units[4] = {9, 9, 9, 9};
  UChar8 bytes[4] = {9, 9, 9, 9};
  const UChar8 text[] = "a";
  const UChar16 unicode[] = {'a', 0};
  int length = 5;
  EXPECT_EQ(uniconv_unistrFromS(nullptr, units, 4, text, &length), UNICONV_EINVAL);
  EXPECT_EQ(length, 0);
  length = 5;
  EXPECT_EQ(uniconv_unistrFromS(converter.handle, nullptr, 4, text, &length), UNICONV_EINVAL);
  EXPECT_EQ(uniconv_unistrFromS(converter.handle, units, 0, text, &length), UNICONV_EINVAL);
  EXPECT_EQ(uniconv_unistrFromS(converter.handle, units, 4, nullptr, &length), UNICONV_EINVAL);
  EXPECT_EQ(length, 0);
  EXPECT_EQ(units[0], 9);
  EXPECT_EQ(uniconv_unistrFromS(converter.handle, units, 4, text, nullptr), UNICONV_SUCCEED);
  length = 5;
  EXPECT_EQ(uniconv_unistrToS(nullptr, bytes, 4, unicode, &length), UNICONV_EINVAL);
  EXPECT_EQ(length, 0);
  EXPECT_EQ(uniconv_unistrToS(converter.handle, nullptr, 4, unicode, &length), UNICONV_EINVAL);
  EXPECT_EQ(uniconv_unistrToS(converter.handle, bytes, 0, unicode, &length), UNICONV_EINVAL);
  EXPECT_EQ(uniconv_unistrToS(converter.handle, bytes, 4, nullptr, &length), UNICONV_EINVAL);
  EXPECT_EQ(bytes[0], 9);
  EXPECT_EQ(uniconv_unistrToS(converter.handle, bytes, 4, unicode, nullptr), UNICONV_SUCCEED);
  EXPECT_EQ(uniutf8_unistrFromUTF8(nullptr, 4, text, &length), UNIUTF8_EINVAL);
  EXPECT_EQ(uniutf8_unistrFromUTF8(units, 0, text, &length), UNIUTF8_EINVAL);
  EXPECT_EQ(uniutf8_unistrFromUTF8(units, 4, nullptr, &length), UNIUTF8_EINVAL);
  EXPECT_EQ(uniutf8_unistrToUTF8(nullptr, 4, unicode, &length), UNIUTF8_EINVAL);
  EXPECT_EQ(uniutf8_unistrToUTF8(bytes, 0, unicode, &length), UNIUTF8_EINVAL);
  EXPECT_EQ(uniutf8_unistrToUTF8(bytes, 4, nullptr, &length), UNIUTF8_EINVAL);
}

TEST_F(Zrvunic, the_path_of_the_tables) {
  const std::string path = ZRVTEST_HOME "/charsets/unicode";
  Text wide(path.begin(), path.end());
  I18NUNI_REQUEST request;
  i18nuni_RequestSetDefaults(&request);
  request.useCurrentDir = I18NUNI_DIR_PATH;
  const auto get = [&](const Text &where, UNICONV_CID cid) {
    CVTH handle = nullptr;
    const int code = uniconv_HandleGetU(
        cid, &request, reinterpret_cast<const UChar16 *>(where.c_str()), 0, &handle);
    EXPECT_EQ(handle != nullptr, code == UNICONV_SUCCEED);
    uniconv_HandleFree(handle);
    return code;
  };
  EXPECT_EQ(get(wide, 2), UNICONV_SUCCEED);
  EXPECT_EQ(get(wide + u"/", 2), UNICONV_SUCCEED);
  EXPECT_EQ(get(wide + u"x", 2), UNICONV_ENOTABLE);
  EXPECT_EQ(get(u"", 2), UNICONV_ENOTABLE);
  EXPECT_EQ(get(Text(4001, u'x'), 2), UNICONV_ENOTABLE);
  EXPECT_EQ(get(u"nowhere", 1), UNICONV_SUCCEED); // needs no table
  EXPECT_EQ(get(u"nowhere", 6), UNICONV_ENOCONV);
  EXPECT_EQ(get(u"\uFFFD", 2), UNICONV_SUCCEED); // the home directory
  request.useCurrentDir = I18NUNI_DIR_CURRENT;
  EXPECT_EQ(get(wide, 2), UNICONV_ENOTABLE);
  request.useCurrentDir = I18NUNI_DIR_HOME;
  EXPECT_EQ(get(u"nowhere", 2), UNICONV_SUCCEED);
  request.useCurrentDir = 3;
  EXPECT_EQ(get(wide, 2), UNICONV_EINVAL);
  request.useCurrentDir = I18NUNI_DIR_PATH;
  CVTH handle = nullptr;
  EXPECT_EQ(uniconv_HandleGetU(2, &request, nullptr, 0, &handle), UNICONV_EINVAL);
  EXPECT_EQ(uniconv_HandleGetU(2, &request, nullptr, 1, &handle), UNICONV_EINVAL);
  EXPECT_EQ(uniconv_HandleGetU(2, &request, nullptr, 0, nullptr), UNICONV_EINVAL);
  EXPECT_EQ(uniconv_HandleGetU(2, nullptr, nullptr, 0, &handle), UNICONV_SUCCEED);
  uniconv_HandleFree(handle);
  setenv("ZARVEK", "/nowhere", 1);
  EXPECT_EQ(uniconv_HandleGet(2, &handle), UNICONV_ENOTABLE);
}

// ---- tables ----

TEST_F(Zrvunic, a_table_is_read_once_and_shared) {
  IoProbe io;
  AllocationProbe memory;
  {
    Converter first(50);
    const size_t calls = io.calls();
    EXPECT_EQ(io.reads(), 1U);
    EXPECT_EQ(io.open_files(), 0U);
    EXPECT_EQ(memory.live_blocks(), 3U); // the converter, the table and its directory
    setenv("ZARVEK", "/nowhere", 1);
    Converter second(50);
    EXPECT_EQ(io.calls(), calls);
    EXPECT_EQ(memory.live_blocks(), 4U);
  }
  EXPECT_EQ(memory.live_blocks(), 0U);
  setenv("ZARVEK", ZRVTEST_HOME, 1);
  Converter again(50);
  EXPECT_EQ(io.reads(), 2U);
}

TEST_F(Zrvunic, a_table_is_shared_whichever_way_names_its_directory) {
  const std::string path = ZRVTEST_HOME "/charsets/unicode";
  const Text home(path.begin(), path.end());
  I18NUNI_REQUEST request;
  i18nuni_RequestSetDefaults(&request);
  request.useCurrentDir = I18NUNI_DIR_PATH;
  const auto get = [&](const Text &where) {
    CVTH handle = nullptr;
    EXPECT_EQ(uniconv_HandleGetU(50, &request, reinterpret_cast<const UChar16 *>(where.c_str()), 0,
                                 &handle),
              UNICONV_SUCCEED);
    return handle;
  };
  IoProbe io;
  AllocationProbe memory;
  {
    Converter first(50);
    const CVTH second = get(home);
    EXPECT_EQ(io.reads(), 1U);
    const CVTH elsewhere = get(home + u"/."); // by its name another directory
    EXPECT_EQ(io.reads(), 2U);
    uniconv_HandleFree(elsewhere);
    uniconv_HandleFree(second);
  }
  EXPECT_EQ(memory.live_blocks(), 0U);
  {
    const CVTH first = get(home);
    EXPECT_EQ(io.reads(), 3U);
    Converter second(50);
    EXPECT_EQ(io.reads(), 3U);
    uniconv_HandleFree(first);
    setenv("ZARVEK", "/nowhere", 1);
    Converter third(50); // of the home directory since the second
    EXPECT_EQ(io.reads(), 3U);
  }
  EXPECT_EQ(memory.live_blocks(), 0U);
}

TEST_F(Zrvunic, every_allocation_fails_in_turn) {
  for (const UNICONV_CID cid : {0, 2, 50, 48, 930, -5}) {
    SCOPED_TRACE(cid);
    CVTH handle = nullptr;
    const size_t failed = zrvtest::fail_each_allocation(
        [] {},
        [&] {
          const int code = uniconv_HandleGet(cid, &handle);
          EXPECT_TRUE(code == UNICONV_SUCCEED || code == UNICONV_ENOMEM) << code;
          return code != UNICONV_SUCCEED;
        },
        [&] { uniconv_HandleFree(handle); });
    EXPECT_EQ(failed, cid > 0 ? 8U : 2U);
  }
}

TEST_F(Zrvunic, every_call_of_a_file_fails_in_turn) {
  AllocationProbe memory;
  EXPECT_EQ(zrvtest::fail_each_io([&] {
              CVTH handle = nullptr;
              const int code = uniconv_HandleGet(50, &handle);
              EXPECT_TRUE(code == UNICONV_SUCCEED || code == UNICONV_ENOTABLE) << code;
              uniconv_HandleFree(handle);
              return code != UNICONV_SUCCEED;
            }),
            3U);
  EXPECT_EQ(memory.live_blocks(), 0U);
}

TEST_F(Zrvunic, short_and_interrupted_reads_go_on) {
  IoProbe io;
  io.limit_reads(100);
  { Converter converter(50); }
  EXPECT_GT(io.reads(), 100U);
  CVTH handle = nullptr;
  io.fail(3, EINTR);
  EXPECT_EQ(uniconv_HandleGet(50, &handle), UNICONV_SUCCEED);
  EXPECT_EQ(io.failures(), 1U);
  uniconv_HandleFree(handle);
}

// Tables that a test writes into a directory of its own.
class Damaged : public Zrvunic {
protected:
  Damaged() {
    EXPECT_NE(mkdtemp(directory.data()), nullptr);
    i18nuni_RequestSetDefaults(&request);
    request.useCurrentDir = I18NUNI_DIR_PATH;
  }
  ~Damaged() override {
    for (const char *name : {"sjis", "cp850", "cp930", "gb18030", "big5hk"})
      unlink(file(name).c_str());
    rmdir(directory.c_str());
  }

  std::string file(const std::string &set) const { return directory + "/" + set + ".bin"; }
  static std::string shipped(const std::string &set) {
    std::ifstream in(ZRVTEST_HOME "/charsets/unicode/" + set + ".bin", std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
  int load(const std::string &set, UNICONV_CID cid, const std::string &contents) {
    std::ofstream(file(set), std::ios::binary) << contents;
    return load(cid);
  }
  int load(UNICONV_CID cid) {
    const Text path(directory.begin(), directory.end());
    CVTH handle = nullptr;
    const int code = uniconv_HandleGetU(
        cid, &request, reinterpret_cast<const UChar16 *>(path.c_str()), 0, &handle);
    uniconv_HandleFree(handle);
    return code;
  }
  // Makes the check sum right again.
  static std::string resealed(std::string table) {
    const auto put = [&](size_t at, uint64_t value, size_t bytes) {
      std::memcpy(&table[at], &value, bytes);
    };
    put(8, table.size(), 4);
    uint32_t cid = 0;
    std::memcpy(&cid, &table[12], 4);
    uint64_t check = static_cast<uint64_t>(table.size()) << 32 | cid;
    for (size_t at = 24; at + 8 <= table.size(); at += 8) {
      uint64_t word = 0;
      std::memcpy(&word, &table[at], 8);
      check = (check ^ word) * 0x9E3779B97F4A7C15;
      check ^= check >> 32;
    }
    put(16, check, 8);
    return table;
  }
  // A whole table with that body.
  static std::string table(UNICONV_CID cid, std::string body) {
    body.resize((body.size() + 7) / 8 * 8);
    std::string whole = "zrvunic\x01"s + std::string(16, '\0') + body;
    std::memcpy(&whole[12], &cid, 4);
    return resealed(whole);
  }

  std::string directory = "/tmp/zrvtest-XXXXXX";
  I18NUNI_REQUEST request;
};

TEST_F(Damaged, cut_tables_are_refused) {
  const std::string whole = shipped("cp850");
  EXPECT_EQ(load("cp850", 2, whole), UNICONV_SUCCEED);
  for (size_t size = 0; size < whole.size(); ++size)
    EXPECT_EQ(load("cp850", 2, whole.substr(0, size)), UNICONV_EDAMAGED) << size;
  EXPECT_EQ(load("cp850", 2, whole + std::string(8, '\0')), UNICONV_EDAMAGED);
}

TEST_F(Damaged, changed_tables_are_refused) {
  AllocationProbe memory;
  const std::string whole = shipped("cp850");
  for (size_t at = 0; at < whole.size(); ++at)
    for (const int bit : {1, 0x80}) {
      std::string changed = whole;
      changed[at] = static_cast<char>(changed[at] ^ bit);
      EXPECT_EQ(load("cp850", 2, changed), UNICONV_EDAMAGED) << at;
    }
  EXPECT_EQ(load("sjis", 50, whole), UNICONV_EDAMAGED); // of another set
  EXPECT_EQ(memory.live_blocks(), 0U);
}

TEST_F(Damaged, files_that_are_none) {
  EXPECT_EQ(load("sjis", 50, ""), UNICONV_EDAMAGED);
  EXPECT_EQ(load("sjis", 50, std::string(5 << 20, 'x')), UNICONV_EDAMAGED);
  unlink(file("sjis").c_str());
  ASSERT_EQ(mkdir(file("sjis").c_str(), 0700), 0);
  EXPECT_EQ(load(50), UNICONV_ENOTABLE);
  rmdir(file("sjis").c_str());
  // Nobody writes to the pipe, and nobody waits for that.
  ASSERT_EQ(mkfifo(file("sjis").c_str(), 0600), 0);
  EXPECT_EQ(load(50), UNICONV_ENOTABLE);
}

// What a body must not say although its check sum is right. The first byte is the form; 0x0 pairs; then
// widths with their runs.
TEST_F(Damaged, bodies_that_make_no_sense_are_refused) {
  const auto one_byte = [&](const std::string &body) { return load("cp850", 2, table(2, body)); };
  const auto multi_byte = [&](const std::string &body) {
    return load("sjis", 50, table(50, body));
  };
  const auto shifted = [&](const std::string &body) {
    return load("cp930", 930, table(930, body));
  };
  const auto gb18030 = [&](const std::string &body) {
    return load("gb18030", 48, table(48, body));
  };
  // The codes 01 to 03 for U+0001 to U+0003.
  EXPECT_EQ(one_byte("\0\0\1\2\x0D\2\0\0"s), UNICONV_SUCCEED);
  EXPECT_EQ(one_byte("\0\0\0"s), UNICONV_SUCCEED);
  EXPECT_EQ(one_byte("\1\0\1\2\x0D\2\0\0"s), UNICONV_EDAMAGED);           // another form
  EXPECT_EQ(one_byte("\0\1\1\1\1\2\x0D\2\0\0"s), UNICONV_EDAMAGED);       // a pair
  EXPECT_EQ(one_byte("\0\0\1\1\x0D\2\0\0"s), UNICONV_EDAMAGED);           // the code 00
  EXPECT_EQ(one_byte("\0\0\1\2\x0D\0\0\0"s), UNICONV_EDAMAGED);           // U+0000
  EXPECT_EQ(one_byte("\0\0\1\2\x0D\1\0\0"s), UNICONV_EDAMAGED);           // U-0001
  EXPECT_EQ(one_byte("\0\0\2\2\x0D\2\0\0"s), UNICONV_EDAMAGED);           // two bytes
  EXPECT_EQ(one_byte("\0\0\1\2\x0D\2\0\0\0\0\0\0\1"s), UNICONV_EDAMAGED); // more behind the end
  EXPECT_EQ(one_byte("\0\0\1\2\x0D\2\2\5\5\0\0"s), UNICONV_EDAMAGED);     // U+0001 twice
  EXPECT_EQ(one_byte("\0\0\1\2\x0D\2\2\7\5\0\0"s), UNICONV_SUCCEED);      // once only read
  EXPECT_EQ(one_byte("\0\0\1\x81\2\5\2\0\0"s), UNICONV_EDAMAGED);         // the code 100
  EXPECT_EQ(one_byte("\0\0\1\x80\2\5\2\0\0"s), UNICONV_SUCCEED);          // the code FF
  EXPECT_EQ(one_byte("\0\0\1\2\5\xFF\xFF\x07\0\0"s), UNICONV_EDAMAGED);   // a negative one
  EXPECT_EQ(one_byte("\0\0\1\2\5\x80\x80\x08\0\0"s), UNICONV_EDAMAGED);   // U+10000
  EXPECT_EQ(one_byte("\0\0\1\2\5\x80\xE0\x06\0\0"s), UNICONV_EDAMAGED);   // U+D800
  EXPECT_EQ(one_byte("\0\0\1\2\5\xFE\xDF\x06\0\0"s), UNICONV_SUCCEED);    // U+D7FF
  EXPECT_EQ(one_byte("\0\0\1\xFF\xFF\xFF\xFF\xFF\xFF\1"s), UNICONV_EDAMAGED);
  EXPECT_EQ(one_byte("\0\0\1\2\xFF\xFF\xFF\xFF"s), UNICONV_EDAMAGED); // ends in a number
  EXPECT_EQ(one_byte(""s), UNICONV_EDAMAGED);
  EXPECT_EQ(multi_byte("\1\0\1\2\5\2\0\2\x82\x83\2\5\4\0\0"s), UNICONV_SUCCEED);  // 01, 8181
  EXPECT_EQ(multi_byte("\1\0\2\x82\x83\2\5\2\0\1\2\5\2\0\0"s), UNICONV_EDAMAGED); // falling widths
  EXPECT_EQ(multi_byte("\1\0\2\x82\x83\2\5\2\0\2\2\5\2\0\0"s), UNICONV_EDAMAGED); // the same again
  EXPECT_EQ(multi_byte("\1\0\5\2\5\2\0\0"s), UNICONV_EDAMAGED);                   // five bytes
  EXPECT_EQ(multi_byte("\1\0\2\2\5\2\0\0"s), UNICONV_EDAMAGED);                   // 0001
  EXPECT_EQ(multi_byte("\1\0\2\x81\x82\2\5\2\0\0"s), UNICONV_EDAMAGED);           // 8100
  EXPECT_EQ(multi_byte("\1\0\3\xA2\x81\xBC\4\5\2\0\0"s), UNICONV_EDAMAGED);       // 8F00A1
  EXPECT_EQ(multi_byte("\1\0\4\xA2\xC3\x82\xF8\x8\5\2\0\0"s), UNICONV_EDAMAGED);  // 8F00A1A1
  EXPECT_EQ(multi_byte("\1\0\4\xA2\x81\x84\xFD\x8\5\2\0\0"s), UNICONV_EDAMAGED);  // 8FA100A1
  EXPECT_EQ(multi_byte("\1\0\4\xA2\xC3\x86\xFD\x8\5\2\0\0"s), UNICONV_SUCCEED);   // 8FA1A1A1
  EXPECT_EQ(multi_byte("\1\0\4\xA2\xC3\x86\xFD\7\5\2\0\0"s), UNICONV_EDAMAGED);   // 7FA1A1A1
  EXPECT_EQ(multi_byte("\1\0\1\x82\1\5\2\0\2\x82\x83\2\5\2\0\0"s), UNICONV_EDAMAGED); // 81, 8181
  EXPECT_EQ(multi_byte("\1\0\2\x82\x83\2\5\2\0\3\x82\x83\x86\4\5\2\0\0"s), UNICONV_EDAMAGED);
  EXPECT_EQ(multi_byte("\1\1\x41\x42\0\0"s), UNICONV_EDAMAGED); // a pair without a code
  EXPECT_EQ(multi_byte("\1\1\x41\x42\1\2\5\x80\x80\x88\1\0\0"s), UNICONV_SUCCEED);
  EXPECT_EQ(multi_byte("\1\1\x41\x42\1\2\5\x82\x80\x88\1\0\0"s), UNICONV_EDAMAGED); // the next one
  EXPECT_EQ(multi_byte("\1\1\0\x42\1\2\5\x80\x80\x88\1\0\0"s), UNICONV_EDAMAGED);
  EXPECT_EQ(multi_byte("\1\1\x41\0\1\2\5\x80\x80\x88\1\0\0"s), UNICONV_EDAMAGED);
  EXPECT_EQ(multi_byte("\1\x41"s), UNICONV_EDAMAGED);           // 65 pairs
  EXPECT_EQ(multi_byte("\1\0\4\2\5\2\0\0"s), UNICONV_EDAMAGED); // 00000001
  // A run of a billion codes.
  EXPECT_EQ(multi_byte("\1\0\4\x82\x83\x86\x8C\x8\xFD\xFF\xFF\xFF\xF\2\0\0"s), UNICONV_EDAMAGED);
  EXPECT_EQ(shifted("\2\0\1\2\5\2\0\2\xC2\x83\1\5\4\0\0"s), UNICONV_SUCCEED); // 01, 4141
  EXPECT_EQ(shifted("\2\0\1\x0F\5\2\0\0"s), UNICONV_EDAMAGED);                // 0E
  EXPECT_EQ(shifted("\2\0\1\x10\5\2\0\0"s), UNICONV_EDAMAGED);                // 0F
  EXPECT_EQ(shifted("\2\0\3\x82\x83\x86\4\5\2\0\0"s), UNICONV_EDAMAGED);
  EXPECT_EQ(gb18030("\3\0\4\1\5\2\0\0"s), UNICONV_SUCCEED);          // 81308130
  EXPECT_EQ(gb18030("\3\0\4\xFC\xB3\2\5\2\0\0"s), UNICONV_SUCCEED);  // the last one
  EXPECT_EQ(gb18030("\3\0\4\xFD\xB3\2\5\2\0\0"s), UNICONV_EDAMAGED); // and behind it
  EXPECT_EQ(gb18030("\3\0\3\x82\x83\x86\4\5\2\0\0"s), UNICONV_EDAMAGED);
  EXPECT_EQ(gb18030("\3\0\1\x82\1\5\2\0\0"s), UNICONV_EDAMAGED);     // 81 alone
  EXPECT_EQ(gb18030("\3\0\2\xB1\x82\2\5\2\0\0"s), UNICONV_EDAMAGED); // 8130 alone
}

// Any change behind a right check sum: a table or a refusal, and no crash of what is then converted.
TEST_F(Damaged, changed_bodies_never_crash) {
  std::mt19937_64 random(17);
  const std::pair<const char *, UNICONV_CID> sets[] = {
      {"sjis", 50}, {"cp850", 2}, {"cp930", 930}, {"big5hk", 47}, {"gb18030", 48}};
  const Text path(directory.begin(), directory.end());
  for (int round = 0; round < (zrvtest::sanitized ? 60 : 300); ++round) {
    const auto &[name, cid] = sets[random() % std::size(sets)];
    std::string changed = shipped(name);
    for (auto count = 1 + random() % 3; count > 0; --count)
      changed[static_cast<size_t>(24 + random() % (changed.size() - 24))] =
          static_cast<char>(random());
    std::ofstream(file(name), std::ios::binary) << resealed(changed);
    CVTH handle = nullptr;
    const int code = uniconv_HandleGetU(
        cid, &request, reinterpret_cast<const UChar16 *>(path.c_str()), 0, &handle);
    if (code != UNICONV_SUCCEED) {
      EXPECT_EQ(code, UNICONV_EDAMAGED);
      continue;
    }
    GuardedBuffer bytes(201);
    for (UChar8 *byte = bytes.data(); byte < bytes.data() + 200; ++byte)
      *byte = static_cast<UChar8>(1 + random() % 255);
    bytes.data()[200] = 0;
    UChar16 units[401];
    UChar8 back[801];
    EXPECT_LE(uniconv_unistrFromS(handle, units, 401, bytes.data(), nullptr), UNICONV_SUCCEED);
    uniconv_unistrToS(handle, back, 801, units, nullptr);
    uniconv_HandleFree(handle);
  }
}

// ---- substitutes ----

TEST_F(Zrvunic, what_a_set_lacks_is_substituted) {
  Converter iso_1(1);
  EXPECT_EQ(iso_1.encode(u"aÿ"), (Encoded{UNICONV_SUCCEED, "a\xFF"}));
  EXPECT_EQ(iso_1.encode(u"a€b"), (Encoded{UNICONV_SUBSTITUTED, "a?b"}));
  EXPECT_EQ(iso_1.encode(u"\U0001F600."), (Encoded{UNICONV_SUBSTITUTED, "?."}));
  EXPECT_EQ(iso_1.encode(u"\xD800"), (Encoded{UNICONV_SUBSTITUTED, "?"}));
  EXPECT_EQ(iso_1.encode(u"\xDC00\xD800z"), (Encoded{UNICONV_SUBSTITUTED, "??z"}));
  EXPECT_EQ(uniconv_SetSubstituteChar(iso_1.handle, 0x1A), UNICONV_SUCCEED);
  EXPECT_EQ(uniconv_SetDBCSSubstituteChar(iso_1.handle, 0x8181), UNICONV_SUCCEED);
  EXPECT_EQ(iso_1.encode(u"€"), (Encoded{UNICONV_SUBSTITUTED, "\x1A"}));
  EXPECT_EQ(uniconv_SetSubstituteChar(iso_1.handle, 0), UNICONV_EINVAL);
  EXPECT_EQ(uniconv_SetSubstituteChar(nullptr, 'x'), UNICONV_EINVAL);
  EXPECT_EQ(uniconv_SetDBCSSubstituteChar(iso_1.handle, 0x3F), UNICONV_EINVAL);
  EXPECT_EQ(uniconv_SetDBCSSubstituteChar(iso_1.handle, 0x3F00), UNICONV_EINVAL);
  EXPECT_EQ(uniconv_SetDBCSSubstituteChar(nullptr, 0x3F3F), UNICONV_EINVAL);
  EXPECT_EQ(iso_1.encode(u"€"), (Encoded{UNICONV_SUBSTITUTED, "\x1A"}));

  Converter ascii(0);
  EXPECT_EQ(ascii.encode(u"\x7F\x80"), (Encoded{UNICONV_SUBSTITUTED, "\x7F?"}));
  EXPECT_EQ(ascii.decode("\x7F\x80"), (Decoded{UNICONV_SUBSTITUTED, u"\x7F\uFFFD"}));

  Converter sjis(50);
  EXPECT_EQ(sjis.encode(u"あÿĀ"), (Encoded{UNICONV_SUBSTITUTED, "\x82\xA0???"}));
  EXPECT_EQ(uniconv_SetSubstituteChar(sjis.handle, '_'), UNICONV_SUCCEED);
  EXPECT_EQ(uniconv_SetDBCSSubstituteChar(sjis.handle, 0x81AC), UNICONV_SUCCEED);
  EXPECT_EQ(sjis.encode(u"ÿĀ\U0001F600"), (Encoded{UNICONV_SUBSTITUTED, "_\x81\xAC\x81\xAC"}));

  Converter cp037(37); // a question mark of its own
  EXPECT_EQ(cp037.encode(u"€?"), (Encoded{UNICONV_SUBSTITUTED, "\x6F\x6F"}));
}

TEST_F(Zrvunic, unpaired_surrogates_have_no_form_in_unicode_either) {
  for (const auto &[cid, one] : {std::pair{UNICONV_CID_UTF8, "a?b"s},
                                 {UNICONV_CID_RCSU, "a?b"s},
                                 {UNICONV_CID_UTF16, "a\0?\0b\0"s},
                                 {48, "a?"
                                      "?b"s}}) {
    SCOPED_TRACE(cid);
    Converter converter(cid);
    for (const Text &text : {Text(u"a\xD800\x62"), Text(u"a\xDFFF\x62")})
      EXPECT_EQ(converter.encode(text), (Encoded{UNICONV_SUBSTITUTED, one}));
  }
  Converter utf8(UNICONV_CID_UTF8);
  EXPECT_EQ(uniconv_SetSubstituteChar(utf8.handle, 0xBF), UNICONV_SUCCEED);
  EXPECT_EQ(utf8.encode(u"\xD800"), (Encoded{UNICONV_SUBSTITUTED, "\xC2\xBF"}));
  Converter utf16(UNICONV_CID_UTF16);
  EXPECT_EQ(utf16.decode("\x00\xD8z\0"s), (Decoded{UNICONV_SUBSTITUTED, u"\uFFFDz"}));
  EXPECT_EQ(utf16.decode("\x00\xDC"s), (Decoded{UNICONV_SUBSTITUTED, u"\uFFFD"}));
  EXPECT_EQ(utf16.decode("\x3D\xD8\x00\xDE"s), (Decoded{UNICONV_SUCCEED, u"\U0001F600"}));
}

// ---- malformed and cut text ----

TEST_F(Zrvunic, malformed_text) {
  const auto replaced = [](UNICONV_CID cid, const std::string &bytes, const Text &text) {
    SCOPED_TRACE(cid);
    EXPECT_EQ(Converter(cid).decode(bytes), (Decoded{UNICONV_SUBSTITUTED, text}));
  };
  replaced(50, "\x82 x", u"\uFFFD x"); // no second byte: it is read again
  replaced(50, "\xA0\xFDx", u"\uFFFD\uFFFDx");
  replaced(50, "\x81\xADx", u"\uFFFDx"); // the form of a character, and none
  replaced(49, "\x8F\xA2 ", u"\uFFFD ");
  replaced(49, "\x8F\xA1\xA1.", u"\uFFFD\u3000.");
  replaced(9, "\x8E\xA2\xA1 ", u"\uFFFD ");
  replaced(48, "\x81\x30\x81 ",
           u"\uFFFD"
           u"0\uFFFD ");
  replaced(48, "\x81\x30 1",
           u"\uFFFD"
           u"0 1");
  replaced(48, "\x80\xFF", u"\uFFFD\uFFFD");
  replaced(48, "\x84\x31\xA5\x30", u"\uFFFD"); // behind the basic plane
  replaced(48, "\xE3\x32\x9A\x36", u"\uFFFD"); // behind U+10FFFF
  replaced(UNICONV_CID_UTF8, "\x80\xC0\xAFx", u"\uFFFD\uFFFD\uFFFDx");
  replaced(UNICONV_CID_UTF8, "\xE0\x80\x80", u"\uFFFD\uFFFD\uFFFD");
  replaced(UNICONV_CID_UTF8, "\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD");
  replaced(UNICONV_CID_UTF8, "\xF0\x9F\x98 \xF4\x90.", u"\uFFFD \uFFFD\uFFFD.");
  replaced(UNICONV_CID_UTF8, "\xC3(\xF5\xFF", u"\uFFFD(\uFFFD\uFFFD");
}

TEST_F(Zrvunic, cut_text_is_read_up_to_the_last_whole_character) {
  const auto cut = [](UNICONV_CID cid, const std::string &bytes, const Text &text) {
    SCOPED_TRACE(cid);
    EXPECT_EQ(Converter(cid).decode(bytes), (Decoded{UNICONV_PARTIAL, text}));
  };
  cut(50, "a\x82", u"a");
  cut(50, "\x82\xA0\x82", u"あ");
  cut(49, "a\x8F", u"a");
  cut(49, "a\x8F\xB0", u"a");
  cut(9, "a\x8E\xA2\xA1", u"a");
  cut(48, "a\x81", u"a");
  cut(48, "a\x81\x30", u"a");
  cut(48, "a\x81\x30\x81", u"a");
  cut(930, "\x0E\x44", u"");
  cut(UNICONV_CID_UTF8, "a\xE3\x81", u"a");
  cut(UNICONV_CID_UTF8, "a\xF0\x9F\x98", u"a");
  cut(UNICONV_CID_UTF16, "a\0\x3D\xD8"s, u"a");
  cut(UNICONV_CID_RCSU, "a\x0E", u"a");
  cut(UNICONV_CID_RCSU, "a\x03", u"a");
  cut(UNICONV_CID_RCSU, "a\x18", u"a");
  cut(UNICONV_CID_RCSU, "\x0F\xD8\x3D", u"");
}

// ---- rooms ----

// Whole characters, as many as fit, in every room from none to enough.
TEST_F(Zrvunic, every_room_for_every_set) {
  const Text sample = u"Aé漢あ한Ω\U00010400\U0001F600ﾊe\u0304\u00CA\u0304日z";
  for (const UNICONV_CID cid : all_sets) {
    if (cid == 850)
      continue;
    SCOPED_TRACE(cid);
    Converter converter(cid);
    int factor = 0;
    EXPECT_EQ(uniconv_GetExpansionFactor(converter.handle, &factor), UNICONV_SUCCEED);
    const Encoded whole = converter.encode(sample, sample.size() * static_cast<size_t>(factor));
    ASSERT_TRUE(whole.code == UNICONV_SUCCEED || whole.code == UNICONV_SUBSTITUTED);
    size_t before = 0;
    for (size_t room = 0; room < whole.bytes.size(); ++room) {
      const Encoded some = converter.encode(sample, room);
      EXPECT_EQ(some.code, some.bytes.size() == room ? UNICONV_FULL : UNICONV_NOFIT) << room;
      EXPECT_GE(some.bytes.size(), before);
      before = some.bytes.size();
      // It is the head of the whole text, and no character is cut.
      const Text read = converter.decode(whole.bytes).text;
      const Decoded again = converter.decode(some.bytes);
      EXPECT_NE(again.code, UNICONV_PARTIAL) << room;
      EXPECT_EQ(again.text, read.substr(0, again.text.size())) << room;
    }
    EXPECT_EQ(converter.encode(sample, whole.bytes.size()), whole);
    const Decoded read = converter.decode(whole.bytes);
    for (size_t room = 0; room < read.text.size(); ++room) {
      const Decoded some = converter.decode(whole.bytes, room);
      EXPECT_EQ(some.code, UNICONV_PARTIAL) << room;
      EXPECT_GE(some.text.size() + 1, room);
      EXPECT_EQ(some.text, read.text.substr(0, some.text.size()));
      EXPECT_FALSE(!some.text.empty() && (some.text.back() & 0xFC00) == 0xD800);
    }
    EXPECT_EQ(converter.decode(whole.bytes, read.text.size()), read);
  }
}

// Long runs of ASCII with something else at each place, in rooms that end before and behind it.
TEST_F(Zrvunic, ascii_runs) {
  for (const UNICONV_CID cid : {0, 1, 3, 50, 48, UNICONV_CID_UTF8}) {
    SCOPED_TRACE(cid);
    Converter converter(cid);
    for (size_t at = 0; at < 40; ++at) {
      Text text(40, u'x');
      for (size_t i = 0; i < text.size(); ++i)
        text[i] = static_cast<char16_t>('A' + i);
      const std::string plain(text.begin(), text.end());
      EXPECT_EQ(converter.encode(text.substr(at)), (Encoded{UNICONV_SUCCEED, plain.substr(at)}));
      EXPECT_EQ(converter.decode(plain.substr(at)), (Decoded{UNICONV_SUCCEED, text.substr(at)}));
      for (size_t room = 0; room < 40; ++room) {
        EXPECT_EQ(converter.encode(text, room), (Encoded{UNICONV_FULL, plain.substr(0, room)}));
        EXPECT_EQ(converter.decode(plain, room), (Decoded{UNICONV_PARTIAL, text.substr(0, room)}));
      }
      text[at] = u'\u0416'; // in none of the first four
      const Encoded mixed = converter.encode(text);
      EXPECT_EQ(mixed.bytes.substr(0, at), plain.substr(0, at));
      EXPECT_EQ(mixed.bytes.substr(mixed.bytes.size() - (39 - at)), plain.substr(at + 1));
      if (mixed.code == UNICONV_SUCCEED) {
        EXPECT_EQ(converter.decode(mixed.bytes), (Decoded{UNICONV_SUCCEED, text}));
      }
    }
  }
}

// ---- shifts ----

TEST_F(Zrvunic, shifts) {
  Converter cp939(939);
  EXPECT_EQ(cp939.encode(u"a"), (Encoded{UNICONV_SUCCEED, "\x81"}));
  EXPECT_EQ(cp939.encode(u"あ"), (Encoded{UNICONV_SUCCEED, "\x0E\x44\x81\x0F"}));
  EXPECT_EQ(cp939.encode(u"aああa"),
            (Encoded{UNICONV_SUCCEED, "\x81\x0E\x44\x81\x44\x81\x0F\x81"}));
  EXPECT_EQ(cp939.decode("\x81\x0E\x44\x81\x44\x81\x0F\x81"),
            (Decoded{UNICONV_SUCCEED, u"aああa"}));
  EXPECT_EQ(cp939.decode("\x0E\x44\x81"), (Decoded{UNICONV_SUCCEED, u"あ"})); // no shift back
  EXPECT_EQ(cp939.decode("\x0F\x0E\x0E\x0F\x81"), (Decoded{UNICONV_SUCCEED, u"a"}));
  EXPECT_EQ(cp939.decode("\x0E\x15\x44\x15\x44\x81"),
            (Decoded{UNICONV_SUBSTITUTED, u"\uFFFD\uFFFD\uFFFDあ"}));
  EXPECT_EQ(cp939.decode("\x0E\x45\x40\x44\x81"), (Decoded{UNICONV_SUBSTITUTED, u"\uFFFDあ"}));
  // Each substitute in its own state.
  EXPECT_EQ(cp939.encode(u"あ\u00FFあ\u0E01"),
            (Encoded{UNICONV_SUBSTITUTED, "\x0E\x44\x81\x0F\x6F\x0E\x44\x81\xFE\xFE\x0F"}));
  // The room for the shift back is kept.
  EXPECT_EQ(cp939.encode(u"ああ", 3), (Encoded{UNICONV_NOFIT, ""}));
  EXPECT_EQ(cp939.encode(u"ああ", 4), (Encoded{UNICONV_FULL, "\x0E\x44\x81\x0F"}));
  EXPECT_EQ(cp939.encode(u"ああ", 5), (Encoded{UNICONV_NOFIT, "\x0E\x44\x81\x0F"}));
  EXPECT_EQ(cp939.encode(u"ああ", 6), (Encoded{UNICONV_SUCCEED, "\x0E\x44\x81\x44\x81\x0F"}));
  EXPECT_EQ(cp939.encode(u"あa", 4), (Encoded{UNICONV_FULL, "\x0E\x44\x81\x0F"}));
  EXPECT_EQ(cp939.encode(u"あa", 5), (Encoded{UNICONV_SUCCEED, "\x0E\x44\x81\x0F\x81"}));
}

// ---- pairs of characters, and the four-byte set ----

TEST_F(Zrvunic, a_code_for_two_characters) {
  Converter big5hk(47);
  EXPECT_EQ(big5hk.decode("\x88\x62\x88\x66"), (Decoded{UNICONV_SUCCEED, u"\u00CA\u0304\u00CA"}));
  EXPECT_EQ(big5hk.encode(u"\u00CA\u0304\u00CA\u030C\u00EA\u0304\u00EA\u030C\u00CA\u00CAx"),
            (Encoded{UNICONV_SUCCEED, "\x88\x62\x88\x64\x88\xA3\x88\xA5\x88\x66\x88\x66x"}));
  EXPECT_EQ(big5hk.encode(u"\u00CA"), (Encoded{UNICONV_SUCCEED, "\x88\x66"}));
}

TEST_F(Zrvunic, all_of_unicode_there_and_back) {
  Converter gb18030(48);
  EXPECT_EQ(gb18030.encode(u"\u0080\uFFFF\U00010000\U0010FFFF"),
            (Encoded{UNICONV_SUCCEED,
                     "\x81\x30\x81\x30\x84\x31\xA4\x39\x90\x30\x81\x30\xE3\x32\x9A\x35"}));
  // The places in the private area that characters of the set had before Unicode got them.
  const Text moved = u"\uE78D\uE78E\uE78F\uE790\uE791\uE792\uE793\uE794\uE795\uE796\uE816\uE817"
                     u"\uE818\uE81E\uE826\uE82B\uE82C\uE831\uE832\uE83B\uE843\uE854\uE855\uE864";
  for (const char16_t one : moved)
    EXPECT_EQ(gb18030.encode(Text(1, one)), (Encoded{UNICONV_SUBSTITUTED, "??"}));
  Text all;
  for (char32_t character = 1; character < 0x110000; ++character)
    if ((character < 0xD800 || character > 0xDFFF) &&
        (character > 0xFFFF || moved.find(static_cast<char16_t>(character)) == Text::npos)) {
      if (character > 0xFFFF)
        all += static_cast<char16_t>(0xD7C0 + (character >> 10));
      all += static_cast<char16_t>(character > 0xFFFF ? 0xDC00 + (character & 0x3FF) : character);
    }
  for (const UNICONV_CID cid : {48, UNICONV_CID_UTF8, UNICONV_CID_UTF16, UNICONV_CID_RCSU}) {
    SCOPED_TRACE(cid);
    Converter converter(cid);
    const Encoded bytes = converter.encode(all);
    EXPECT_EQ(bytes.code, UNICONV_SUCCEED);
    const Decoded back = converter.decode(bytes.bytes, all.size());
    EXPECT_EQ(back.code, UNICONV_SUCCEED);
    EXPECT_TRUE(back.text == all);
  }
}

// ---- the compression scheme ----

TEST_F(Zrvunic, rcsu) {
  Converter rcsu(UNICONV_CID_RCSU);
  const auto same = [&](const Text &text, const std::string &bytes) {
    EXPECT_EQ(rcsu.encode(text), (Encoded{UNICONV_SUCCEED, bytes}));
    EXPECT_EQ(rcsu.decode(bytes), (Decoded{UNICONV_SUCCEED, text}));
  };
  same(u"\u00D6l flie\u00DFt", "\xD6l flie\xDFt");
  same(u"\u041C\u043E\u0441\u043A\u0432\u0430", "\x12\x9C\xBE\xC1\xBA\xB2\xB0");
  same(u"\u4E00", "\x0E\x4E\x00"s);
  same(u"\u4E00\u4E8Ca", "\x0F\x4E\x00\x4E\x8C\xE0"
                         "a"s);
  same(u"\x01\t\x7F", "\x01\x01\t\x7F");
  same(u"\U00010000", "\x0B\x00\x00\x80"s);
  same(u"\u2014x", "\x05\x14x"); // a static window
  same(u"\uE000\uE001", "\x18\x68\x80\x81");
  // What others may write.
  const auto read = [&](const std::string &bytes, int code, const Text &text) {
    EXPECT_EQ(rcsu.decode(bytes), (Decoded{code, text}));
  };
  read("\x18\xF9\xC0\x19\xFF\x80\x11\x81", UNICONV_SUCCEED, u"\u0100\uFF60\uFF61");
  read("\x04\x81\x07\x01", UNICONV_SUCCEED, u"\u0601\u2101");
  read("\x0F\xE8\x08\x80z", UNICONV_SUCCEED, u"\u0400z");
  read("\x0F\xF0\xE0\x01\x4E\x01", UNICONV_SUCCEED, u"\uE001\u4E01");
  read("\x0F\xF1\x00\x08\x80"s, UNICONV_SUCCEED, u"\U00010400");
  read("\x0F\xD8\x3D\xDE\x00\x4E\x01"s, UNICONV_SUCCEED, u"\U0001F600\u4E01");
  read("\x0E\xD8\x3D\x0E\xDE\x01", UNICONV_SUCCEED, u"\U0001F601");
  read("\x0Cx", UNICONV_SUBSTITUTED, u"\uFFFDx");
  read("\x18\xA8x", UNICONV_SUBSTITUTED, u"\uFFFDx");
  read("\x18\xF8x", UNICONV_SUBSTITUTED, u"\uFFFDx");
  read("\x0F\xF2\x4E\x01", UNICONV_SUBSTITUTED, u"\uFFFD\u4E01");
  read("\x0E\xD8\x3Dx", UNICONV_SUBSTITUTED, u"\uFFFDx");
  read("\x0E\xDC\x01x", UNICONV_SUBSTITUTED, u"\uFFFDx");
  read("a\0b"s, UNICONV_SUCCEED, u"a");
}

// ---- growth ----

TEST_F(Zrvunic, expansion) {
  const auto growth = [](UNICONV_CID from, UNICONV_CID to) {
    int expansion = -1;
    EXPECT_EQ(uniconv_GetExpansion(from, to, &expansion), UNICONV_SUCCEED);
    return expansion;
  };
  EXPECT_EQ(growth(1, 1), 1);
  EXPECT_EQ(growth(1, 2), 1);
  EXPECT_EQ(growth(1, UNICONV_CID_UTF8), 3);
  EXPECT_EQ(growth(1, UNICONV_CID_UTF16), 2);
  EXPECT_EQ(growth(UNICONV_CID_UTF16, UNICONV_CID_UTF8), 2);
  EXPECT_EQ(growth(UNICONV_CID_UTF16, 1), 1);
  EXPECT_EQ(growth(UNICONV_CID_RCSU, UNICONV_CID_UTF8), 4);
  EXPECT_EQ(growth(UNICONV_CID_UTF8, 930), 4);
  EXPECT_EQ(growth(50, 49), 3);
  int expansion = -1;
  EXPECT_EQ(uniconv_GetExpansion(1, 6, &expansion), UNICONV_ENOCONV);
  EXPECT_EQ(uniconv_GetExpansion(UNICONV_CID_NONE, 1, &expansion), UNICONV_ENOCONV);
  EXPECT_EQ(expansion, -1);
  EXPECT_EQ(uniconv_GetExpansion(1, 2, nullptr), UNICONV_EINVAL);
  EXPECT_EQ(uniconv_GetExpansionFactor(nullptr, &expansion), UNICONV_EINVAL);
  Converter iso_1(1);
  EXPECT_EQ(uniconv_GetExpansionFactor(iso_1.handle, nullptr), UNICONV_EINVAL);
}

// Random bytes of one set, turned into another: never longer than told.
TEST_F(Zrvunic, no_text_grows_more_than_told) {
  std::mt19937_64 random(3);
  for (const UNICONV_CID from : {1, 50, 49, 9, 930, 48, UNICONV_CID_UTF8, UNICONV_CID_RCSU})
    for (const UNICONV_CID to : {1, 50, 49, 9, 930, 48, UNICONV_CID_UTF8, UNICONV_CID_RCSU}) {
      SCOPED_TRACE(from);
      SCOPED_TRACE(to);
      if (from == to)
        continue;
      Converter source(from);
      Converter target(to);
      int expansion = 0;
      ASSERT_EQ(uniconv_GetExpansion(from, to, &expansion), UNICONV_SUCCEED);
      for (int round = 0; round < 300; ++round) {
        std::string bytes(static_cast<size_t>(random() % 12), '\0');
        for (char &byte : bytes)
          byte = static_cast<char>(1 + random() % 255);
        const Text text = source.decode(bytes).text;
        const size_t room = bytes.size() * static_cast<size_t>(expansion);
        const int code = target.encode(text, room).code;
        EXPECT_TRUE(code == UNICONV_SUCCEED || code == UNICONV_SUBSTITUTED);
      }
    }
}

// ---- UTF-8 ----

TEST_F(Zrvunic, utf8_functions) {
  UChar16 units[16];
  UChar8 bytes[16];
  int used = -1;
  const auto from = [&](const char *text, int size) {
    std::fill(std::begin(units), std::end(units), UChar16{0xAAAA});
    return uniutf8_unistrFromUTF8(units, size, reinterpret_cast<const UChar8 *>(text), &used);
  };
  const auto to = [&](const char16_t *text, int size) {
    std::fill(std::begin(bytes), std::end(bytes), UChar8{0xAA});
    return uniutf8_unistrToUTF8(bytes, size, reinterpret_cast<const UChar16 *>(text), &used);
  };
  EXPECT_EQ(from("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", 16), 5);
  EXPECT_EQ(used, 10);
  EXPECT_EQ(Text(units, units + 6), u"aé€\U0001F600\0"s);
  EXPECT_EQ(from("", 1), 0);
  EXPECT_EQ(units[0], 0);
  EXPECT_EQ(from("a\xF0\x9F\x98\x80", 3), UNIUTF8_FULL); // room for one half of it
  EXPECT_EQ(used, 1);
  EXPECT_EQ(Text(units, units + 4), u"a\0\0\xAAAA"s);
  EXPECT_EQ(from("ab", 2), UNIUTF8_FULL);
  EXPECT_EQ(used, 1);
  for (const char *bad :
       {"a\x80", "a\xC3", "a\xC3(", "a\xC0\x80", "a\xE0\x9F\xBF", "a\xED\xA0\x80",
        "a\xF0\x8F\xBF\xBF", "a\xF4\x90\x80\x80", "a\xF8", "a\xE2\x82", "a\xFF"}) {
    EXPECT_EQ(from(bad, 16), UNIUTF8_ILLEGAL) << bad;
    EXPECT_EQ(used, 1);
    EXPECT_EQ(units[1], 0);
  }
  EXPECT_EQ(to(u"aé€\U0001F600", 16), 10);
  EXPECT_EQ(used, 5);
  EXPECT_STREQ(reinterpret_cast<char *>(bytes), "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
  EXPECT_EQ(to(u"a€", 4), UNIUTF8_FULL);
  EXPECT_EQ(used, 1);
  EXPECT_EQ(std::string(bytes, bytes + 5), "a\0\0\0\xAA"s);
  EXPECT_EQ(to(u"a€", 5), 4);
  for (const char16_t *bad : {u"a\xD800", u"a\xD800x", u"a\xDC00\xD800", u"a\xDC00"}) {
    EXPECT_EQ(to(bad, 16), UNIUTF8_ILLEGAL);
    EXPECT_EQ(used, 1);
    EXPECT_EQ(bytes[1], 0);
  }
  EXPECT_EQ(uniutf8_unistrToUTF8(bytes, 16, units, nullptr), 1);
  EXPECT_EQ(uniutf8_unistrFromUTF8(units, 16, bytes, nullptr), 1);
}

} // namespace
