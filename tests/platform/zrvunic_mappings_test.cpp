// Every code and every character of each set against the converters of the C library and of ICU: equal, or
// a difference that is listed here with its reason.
#include <dlfcn.h>
#include <iconv.h>

#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "test_scale.h"
#include "zrvcomn/zrvunic.h"

namespace {

using Bytes = std::string;
using Text = std::u16string;

Text text_of(char32_t character) {
  if (character < 0x10000)
    return {static_cast<char16_t>(character)};
  return {static_cast<char16_t>(0xD7C0 + (character >> 10)),
          static_cast<char16_t>(0xDC00 + (character & 0x3FF))};
}

// A converter that gives nothing for what has no counterpart.
class Reference {
public:
  virtual ~Reference() = default;
  virtual Text decode(const Bytes &bytes) = 0;
  virtual Bytes encode(const Text &text) = 0;
};

class IconvReference : public Reference {
public:
  explicit IconvReference(const char *set)
      : to(iconv_open("UTF-16LE", set)), from(iconv_open(set, "UTF-16LE")) {}
  ~IconvReference() override {
    if (is_there())
      iconv_close(to), iconv_close(from);
  }
  bool is_there() const { return to != failed && from != failed; }

  Text decode(const Bytes &bytes) override {
    char16_t units[16];
    const size_t size = run(to, bytes.data(), bytes.size(), units, sizeof units);
    return Text(units, size / 2);
  }
  Bytes encode(const Text &text) override {
    char bytes[32];
    const size_t size = run(from, text.data(), 2 * text.size(), bytes, sizeof bytes);
    return Bytes(bytes, size);
  }

private:
  static size_t run(iconv_t converter, const void *source, size_t size, void *dest, size_t room) {
    auto *in = const_cast<char *>(static_cast<const char *>(source));
    auto *out = static_cast<char *>(dest);
    char *const start = out;
    const bool whole = iconv(converter, &in, &size, &out, &room) == 0 && size == 0 &&
                       iconv(converter, nullptr, nullptr, &out, &room) == 0;
    if (!whole)
      iconv(converter, nullptr, nullptr, nullptr, nullptr);
    return whole ? static_cast<size_t>(out - start) : 0;
  }

  const iconv_t failed = reinterpret_cast<iconv_t>(-1);
  iconv_t to;
  iconv_t from;
};

// ICU without its headers: a data model may have the library or not.
class IcuLibrary {
public:
  IcuLibrary() : library(dlopen("libicuuc.so.72", RTLD_NOW)) {
    if (library == nullptr)
      return;
    find(open, "ucnv_open_72");
    find(close, "ucnv_close_72");
    find(to_units, "ucnv_toUChars_72");
    find(from_units, "ucnv_fromUChars_72");
    find(set_to, "ucnv_setToUCallBack_72");
    find(set_from, "ucnv_setFromUCallBack_72");
    stop_to = dlsym(library, "UCNV_TO_U_CALLBACK_STOP_72");
    stop_from = dlsym(library, "UCNV_FROM_U_CALLBACK_STOP_72");
  }
  bool is_there() const { return stop_from != nullptr; }

  void *(*open)(const char *, int *) = nullptr;
  void (*close)(void *) = nullptr;
  int32_t (*to_units)(void *, char16_t *, int32_t, const char *, int32_t, int *) = nullptr;
  int32_t (*from_units)(void *, char *, int32_t, const char16_t *, int32_t, int *) = nullptr;
  void (*set_to)(void *, void *, const void *, void **, const void **, int *) = nullptr;
  void (*set_from)(void *, void *, const void *, void **, const void **, int *) = nullptr;
  void *stop_to = nullptr;
  void *stop_from = nullptr;

private:
  template <typename Function>
  void find(Function &function, const char *name) {
    function = reinterpret_cast<Function>(dlsym(library, name));
  }
  void *library;
};

IcuLibrary &icu() {
  static IcuLibrary library;
  return library;
}

class IcuReference : public Reference {
public:
  explicit IcuReference(const char *set) : converter(icu().open(set, &status)) {
    if (is_there()) {
      icu().set_to(converter, icu().stop_to, nullptr, nullptr, nullptr, &status);
      icu().set_from(converter, icu().stop_from, nullptr, nullptr, nullptr, &status);
    }
  }
  ~IcuReference() override {
    if (converter != nullptr)
      icu().close(converter);
  }
  bool is_there() const { return converter != nullptr && status <= 0; }

  Text decode(const Bytes &bytes) override {
    char16_t units[16];
    status = 0;
    const int32_t length = icu().to_units(converter, units, 15, bytes.data(),
                                          static_cast<int32_t>(bytes.size()), &status);
    const Text text(units, status <= 0 ? static_cast<size_t>(length) : 0);
    return text == u"\uFFFD" ? Text() : text;
  }
  Bytes encode(const Text &text) override {
    char bytes[32];
    status = 0;
    const int32_t length = icu().from_units(converter, bytes, 31, text.data(),
                                            static_cast<int32_t>(text.size()), &status);
    return Bytes(bytes, status <= 0 ? static_cast<size_t>(length) : 0);
  }

private:
  int status = 0;
  void *converter;
};

class Ours : public Reference {
public:
  explicit Ours(UNICONV_CID cid) {
    EXPECT_EQ(uniconv_HandleGet(cid, &handle), UNICONV_SUCCEED) << cid;
  }
  ~Ours() override { uniconv_HandleFree(handle); }
  bool is_there() const { return handle != nullptr; }

  Text decode(const Bytes &bytes) override {
    UChar16 units[16];
    int length = 0;
    const int code = uniconv_unistrFromS(handle, units, 16,
                                         reinterpret_cast<const UChar8 *>(bytes.c_str()), &length);
    return Text(units, units + (code == UNICONV_SUCCEED ? length - 1 : 0));
  }
  Bytes encode(const Text &text) override {
    UChar8 bytes[32];
    int length = 0;
    const int code = uniconv_unistrToS(handle, bytes, 32,
                                       reinterpret_cast<const UChar16 *>(text.c_str()), &length);
    return Bytes(bytes, bytes + (code == UNICONV_SUCCEED ? length - 1 : 0));
  }

private:
  CVTH handle = nullptr;
};

struct Case {
  UNICONV_CID cid;
  const char *reference; // of the C library, or of ICU
  enum Kind { one_byte, two_bytes, shifted, three_bytes, four_bytes, gb18030 } kind;
};

constexpr Case iconv_cases[] = {
    {0, "ANSI_X3.4-1968", Case::one_byte}, {1, "ISO-8859-1", Case::one_byte},
    {2, "IBM850", Case::one_byte},         {3, "IBM437", Case::one_byte},
    {4, "HP-ROMAN8", Case::one_byte},      {5, "MACINTOSH", Case::one_byte},
    {8, "EUC-JP", Case::two_bytes},        {9, "EUC-TW", Case::four_bytes},
    {10, "GB2312", Case::two_bytes},       {12, "ISO-8859-2", Case::one_byte},
    {13, "ISO-8859-5", Case::one_byte},    {14, "ISO-8859-6", Case::one_byte},
    {15, "ISO-8859-7", Case::one_byte},    {16, "ISO-8859-8", Case::one_byte},
    {17, "ISO-8859-9", Case::one_byte},    {18, "ISO-8859-10", Case::one_byte},
    {19, "ISO-8859-3", Case::one_byte},    {20, "ISO-8859-4", Case::one_byte},
    {21, "ISO-8859-15", Case::one_byte},   {30, "HP-GREEK8", Case::one_byte},
    {31, "HP-TURKISH8", Case::one_byte},   {32, "KOI8-R", Case::one_byte},
    {33, "TIS-620", Case::one_byte},       {34, "BIG5", Case::two_bytes},
    {36, "EUC-KR", Case::two_bytes},       {42, "ISO-8859-13", Case::one_byte},
    {43, "ISO-8859-14", Case::one_byte},   {44, "HP-ROMAN9", Case::one_byte},
    {46, "IBM874", Case::one_byte},        {47, "BIG5-HKSCS", Case::two_bytes},
    {48, "GB18030", Case::gb18030},        {49, "EUC-JP", Case::three_bytes},
    {50, "SHIFT_JIS", Case::two_bytes},    {54, "RK1048", Case::one_byte},
    {737, "CP737", Case::one_byte},        {775, "CP775", Case::one_byte},
    {852, "IBM852", Case::one_byte},       {855, "IBM855", Case::one_byte},
    {856, "IBM856", Case::one_byte},       {857, "IBM857", Case::one_byte},
    {858, "IBM858", Case::one_byte},       {860, "IBM860", Case::one_byte},
    {861, "IBM861", Case::one_byte},       {862, "IBM862", Case::one_byte},
    {863, "IBM863", Case::one_byte},       {864, "IBM864", Case::one_byte},
    {865, "IBM865", Case::one_byte},       {866, "IBM866", Case::one_byte},
    {869, "IBM869", Case::one_byte},       {1250, "CP1250", Case::one_byte},
    {1251, "CP1251", Case::one_byte},      {1252, "CP1252", Case::one_byte},
    {1253, "CP1253", Case::one_byte},      {1254, "CP1254", Case::one_byte},
    {1255, "CP1255", Case::one_byte},      {1256, "CP1256", Case::one_byte},
    {1257, "CP1257", Case::one_byte},      {1258, "CP1258", Case::one_byte},
};

constexpr Case icu_cases[] = {
    {11, "ibm-943_P15A-2003", Case::two_bytes},   {26, "macos-7_3-10.2", Case::one_byte},
    {27, "macos-29-10.2", Case::one_byte},        {28, "macos-6_2-10.4", Case::one_byte},
    {29, "macos-35-10.2", Case::one_byte},        {37, "ibm-37_P100-1995", Case::one_byte},
    {45, "macos-0_2-10.2", Case::one_byte},       {273, "ibm-273_P100-1995", Case::one_byte},
    {277, "ibm-277_P100-1995", Case::one_byte},   {278, "ibm-278_P100-1995", Case::one_byte},
    {280, "ibm-280_P100-1995", Case::one_byte},   {284, "ibm-284_P100-1995", Case::one_byte},
    {285, "ibm-285_P100-1995", Case::one_byte},   {290, "ibm-290_P100-1995", Case::one_byte},
    {297, "ibm-297_P100-1995", Case::one_byte},   {420, "ibm-420_X120-1999", Case::one_byte},
    {424, "ibm-424_P100-1995", Case::one_byte},   {500, "ibm-500_P100-1995", Case::one_byte},
    {870, "ibm-870_P100-1995", Case::one_byte},   {871, "ibm-871_P100-1995", Case::one_byte},
    {874, "windows-874-2000", Case::one_byte},    {875, "ibm-875_P100-1995", Case::one_byte},
    {921, "ibm-921_P100-1995", Case::one_byte},   {923, "ibm-923_P100-1998", Case::one_byte},
    {930, "ibm-930_P120-1999", Case::shifted},    {932, "ibm-942_P12A-1999", Case::two_bytes},
    {933, "ibm-933_P110-1995", Case::shifted},    {935, "ibm-935_P110-1999", Case::shifted},
    {936, "windows-936-2000", Case::two_bytes},   {937, "ibm-937_P110-1999", Case::shifted},
    {939, "ibm-939_P120-1999", Case::shifted},    {949, "windows-949-2000", Case::two_bytes},
    {950, "windows-950-2000", Case::two_bytes},   {954, "ibm-954_P101-2007", Case::three_bytes},
    {1006, "ibm-1006_P100-1995", Case::one_byte}, {1026, "ibm-1026_P100-1995", Case::one_byte},
    {1047, "ibm-1047_P100-1995", Case::one_byte}, {1140, "ibm-1140_P100-1997", Case::one_byte},
    {1141, "ibm-1141_P100-1997", Case::one_byte}, {1142, "ibm-1142_P100-1997", Case::one_byte},
    {1143, "ibm-1143_P100-1997", Case::one_byte}, {1144, "ibm-1144_P100-1997", Case::one_byte},
    {1145, "ibm-1145_P100-1997", Case::one_byte}, {1146, "ibm-1146_P100-1997", Case::one_byte},
    {1147, "ibm-1147_P100-1997", Case::one_byte}, {1148, "ibm-1148_P100-1997", Case::one_byte},
    {1149, "ibm-1149_P100-1997", Case::one_byte}, {5026, "ibm-930_P120-1999", Case::shifted},
    {5035, "ibm-939_P120-1999", Case::shifted},
};

// Calls `visit` with every code that a set could have.
template <typename Visit>
void each_code(Case::Kind kind, Visit &&visit) {
  const auto byte = [](unsigned value) { return static_cast<char>(value); };
  for (unsigned lead = 1; lead < 256; ++lead) {
    if (kind == Case::shifted && (lead == 0x0E || lead == 0x0F))
      continue;
    visit(Bytes{byte(lead)});
    if (kind == Case::one_byte)
      continue;
    for (unsigned trail = 1; trail < 256; ++trail) {
      if (kind == Case::shifted) {
        if (lead >= 0x40 && trail >= 0x40)
          visit(Bytes{0x0E, byte(lead), byte(trail), 0x0F});
        continue;
      }
      if (lead < 0x80)
        continue; // ASCII, whatever follows
      visit(Bytes{byte(lead), byte(trail)});
      if (kind == Case::gb18030 && lead > 0x80 && lead < 0xFF && trail >= '0' && trail <= '9')
        for (unsigned third = 0x81; third < 0xFF; ++third)
          for (unsigned last = '0'; last <= '9'; ++last)
            visit(Bytes{byte(lead), byte(trail), byte(third), byte(last)});
    }
  }
  for (unsigned second = 0xA1; second < 0xFF; ++second)
    for (unsigned third = 0xA1; third < 0xFF; ++third) {
      if (kind == Case::three_bytes)
        visit(Bytes{byte(0x8F), byte(second), byte(third)});
      if (kind == Case::four_bytes)
        for (unsigned plane = 0xA1; plane < 0xB1; ++plane)
          visit(Bytes{byte(0x8E), byte(plane), byte(second), byte(third)});
    }
}

std::string hex(const Bytes &bytes) {
  std::string result;
  char digits[3];
  for (const unsigned char byte : bytes) {
    snprintf(digits, sizeof digits, "%02X", byte);
    result += digits;
  }
  return result;
}

std::string hex(const Text &text) {
  std::string result;
  char digits[8];
  for (const char16_t unit : text) {
    snprintf(digits, sizeof digits, "%sU%04X", result.empty() ? "" : "+",
             static_cast<unsigned>(unit));
    result += digits;
  }
  return result;
}

// A text or a code on which a set and its reference disagree.
struct Difference {
  bool reading;
  std::string subject; // the code that is read, or the character that is written
  std::string ours;
  std::string theirs;

  std::string row() const { return subject + (reading ? " > " : " < ") + ours + " / " + theirs; }
};

std::vector<Difference> compare(Reference &ours, Reference &theirs, Case::Kind kind) {
  std::vector<Difference> found;
  size_t step = 0;
  each_code(kind, [&](const Bytes &code) {
    if (zrvtest::sanitized && kind != Case::one_byte && step++ % 7 != 0)
      return;
    // The first byte may be a whole character already.
    if (kind != Case::shifted && code.size() > 1 && !ours.decode(code.substr(0, 1)).empty())
      return;
    const Text one = ours.decode(code);
    const Text other = theirs.decode(code);
    if (one != other)
      found.push_back({true, hex(code), hex(one), hex(other)});
  });
  for (char32_t character = 1; character <= 0x10FFFF;
       character += zrvtest::sanitized && character > 0x3000 ? 97 : 1) {
    if (character >= 0xD800 && character < 0xE000)
      continue;
    const Text text = text_of(character);
    const Bytes one = ours.encode(text);
    const Bytes other = theirs.encode(text);
    if (one != other)
      found.push_back({false, hex(text), hex(one), hex(other)});
  }
  return found;
}

// Differences that are meant, each with the set it belongs to.
constexpr struct {
  UNICONV_CID cid;
  const char *row;
} meant[] = {
    // ASCII stands at its own place, and what a reference has there has none.
    {50, "5C > U005C / U00A5"},
    {50, "7E > U007E / U203E"},
    {50, "U00A5 <  / 5C"},
    {50, "U203E <  / 7E"},
    {856, "1A > U001A / U001C"},
    {856, "1C > U001C / U007F"},
    {856, "7F > U007F / U001A"},
    {856, "U001A < 1A / 7F"},
    {856, "U001C < 1C / 1A"},
    {856, "U007F < 7F / 1C"},
    {864, "25 > U0025 / U066A"},
    {864, "U0025 < 25 / "},
    {864, "U066A <  / 25"},
    {11, "1A > U001A / U001C"},
    {11, "1C > U001C / U007F"},
    {11, "7F > U007F / U001A"},
    {11, "U001A < 1A / 7F"},
    {11, "U001C < 1C / 1A"},
    {11, "U007F < 7F / 1C"},
    {932, "1A > U001A / U001C"},
    {932, "1C > U001C / U007F"},
    {932, "7F > U007F / U001A"},
    {932, "U001A < 1A / 7F"},
    {932, "U001C < 1C / 1A"},
    {932, "U007F < 7F / 1C"},
    // No fallbacks: characters that are merely like one of the set.
    {36, "U20A9 <  / A3DC"},
    {49, "U00A5 <  / 5C"},
    {49, "U203E <  / 7E"},
    {50, "UFFE0 <  / 8191"},
    {50, "UFFE1 <  / 8192"},
    {50, "UFFE2 <  / 81CA"},
    {856, "U2302 <  / 7F"},
    {856, "UFFE8 <  / B3"},
    {856, "UFFED <  / FE"},
    {1258, "U0340 <  / CC"},
    {1258, "U0341 <  / EC"},
    // No fallbacks from the private area either.
    {11, "UF86F <  / 8782"},
    {28, "UF8A0 <  / 9C"},
    {930, "UF86F <  / 0E446E0F"},
    {932, "UF86F <  / FA59"},
    {939, "UF86F <  / 0E446E0F"},
    {954, "UF86F <  / 8FF3B8"},
    {5026, "UF86F <  / 0E446E0F"},
    {5035, "UF86F <  / 0E446E0F"},
};

// The same where there are many of a kind.
bool is_meant_kind(UNICONV_CID cid, const Difference &one) {
  switch (cid) {
  case 8: // no single shifts, and no control characters above 0x80
    return one.reading ? one.subject < "A1" && one.ours.empty()
                       : one.theirs < "A1" && one.ours.empty();
  case 856: // the C library writes the pictures of control characters as those
    return !one.reading && one.ours.empty() && one.theirs.size() == 2 && one.theirs < "20";
  case 1255:
  case 1258: // the C library takes composed characters apart; one character is one code here
    return !one.reading && one.ours.empty() && one.theirs.size() >= 4;
  default:
    return false;
  }
}

void check(const Case &one, Reference &theirs) {
  SCOPED_TRACE(one.reference);
  Ours ours(one.cid);
  if (!ours.is_there())
    return;
  std::set<std::string> expected;
  for (const auto &[cid, row] : meant)
    if (cid == one.cid)
      expected.insert(row);
  bool has_kind = false;
  for (const Difference &difference : compare(ours, theirs, one.kind)) {
    if (expected.erase(difference.row()) > 0)
      continue;
    const bool of_kind = is_meant_kind(one.cid, difference);
    has_kind |= of_kind;
    EXPECT_TRUE(of_kind) << "{" << one.cid << ", \"" << difference.row() << "\"},";
  }
  if (zrvtest::sanitized) // most was left out
    return;
  for (const std::string &row : expected)
    ADD_FAILURE() << "no longer so: " << row;
  EXPECT_EQ(has_kind, is_meant_kind(one.cid, {true, "80", "", ""}) ||
                          is_meant_kind(one.cid, {false, "", "", "10"}) ||
                          is_meant_kind(one.cid, {false, "", "", "41DE"}));
}

class ZrvunicMappings : public testing::Test {
protected:
  ZrvunicMappings() { setenv("ZARVEK", ZRVTEST_HOME, 1); }
  ~ZrvunicMappings() override { unsetenv("ZARVEK"); }
};

TEST_F(ZrvunicMappings, agree_with_the_c_library) {
  for (const Case &one : iconv_cases) {
    IconvReference theirs(one.reference);
    ASSERT_TRUE(theirs.is_there()) << one.reference;
    check(one, theirs);
  }
}

TEST_F(ZrvunicMappings, agree_with_icu) {
  if (!icu().is_there())
    GTEST_SKIP() << "no ICU 72 for this data model";
  for (const Case &one : icu_cases) {
    IcuReference theirs(one.reference);
    ASSERT_TRUE(theirs.is_there()) << one.reference;
    check(one, theirs);
  }
}

} // namespace
