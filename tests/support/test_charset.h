// Character sets for tests: records over tables built here, and ASCII text spelled in their narrow and
// wide characters.
#ifndef ZRVTEST_TEST_CHARSET_H
#define ZRVTEST_TEST_CHARSET_H

#include <memory>
#include <string>
#include <vector>

#include "zrvcomn/charset.h"

namespace zrvtest {

class TestCharset {
public:
  // One byte a character and a reduction to upper case.
  static TestCharset one_byte() { return TestCharset(1); }

  // Two bytes a character from 0xA1 and 0xA3 on: 0xA3 and an ASCII code with the top bit are its wide
  // form, 0xA1A1 is a wide blank. The reduction is to lower case, or keeps the case.
  static TestCharset double_byte(bool keeps_case = false) {
    TestCharset set(3, keeps_case);
    set.add_double_bytes(keeps_case);
    return set;
  }

  // The same, where a second byte from 0x30 to 0x39 says that four bytes are one character.
  static TestCharset four_byte() {
    TestCharset set = double_byte();
    set.tables->widths[255] = 0xF1;
    return set;
  }

  // UTF-8: digits U+0660 to U+0669, blank U+00A0, currencies U+00A3 and U+00A5, letters U+00C0 to
  // U+00FF, of which U+00C9 and U+00E9 reduce to "e" and the others to nothing; ASCII to lower case.
  static TestCharset utf8() {
    TestCharset set(4);
    set.add_utf8();
    return set;
  }

  CS_ATTRIB *get() { return &record; }

  // The wide form of an ASCII character, empty if it has none here.
  const std::string &wide(char c) const { return wides[static_cast<unsigned char>(c) & 0x7F]; }

  // A text with each character in the form that `choose()` says: wide if true and if there is one.
  template <class Choose>
  std::string spell(const std::string &ascii, Choose choose) const {
    std::string text;
    for (char c : ascii)
      text += !wide(c).empty() && choose() ? wide(c) : std::string(1, c);
    return text;
  }

private:
  struct Tables {
    CS_BYTE widths[256];
    std::vector<CS_NORM_MAP> norms;
    std::vector<CS_TYPE_MAP> types;
  };

  static CS_BYTE reduced(int c, bool keeps_case) {
    return static_cast<CS_BYTE>(c >= 'A' && c <= 'Z' && !keeps_case ? c + 32 : c);
  }

  static CHAR_MAP ascii_type(int c) {
    const bool upper = c >= 'A' && c <= 'Z', lower = c >= 'a' && c <= 'z';
    const bool digit = c >= '0' && c <= '9', space = c == ' ' || (c >= 9 && c <= 13);
    return {static_cast<CS_BYTE>(lower ? c - 32 : c), static_cast<CS_BYTE>(upper ? c + 32 : c),
            static_cast<CS_BYTE>(c == '$' ? CS_LEX_CURRENCY : 0),
            static_cast<CS_BYTE>(upper   ? CS_CTYPE_UPPER
                                 : lower ? CS_CTYPE_LOWER
                                 : digit ? CS_CTYPE_DIGIT
                                 : space ? CS_CTYPE_SPACE
                                         : 0)};
  }

  explicit TestCharset(size_t planes, bool keeps_case = false)
      : tables(std::make_shared<Tables>()), wides(128) {
    tables->norms.resize(planes);
    tables->types.resize(planes);
    for (int c = 0; c < 256; ++c) {
      tables->widths[c] = 0x11;
      if (c >= 128)
        continue;
      tables->types[0].chmap[c] = ascii_type(c);
      tables->norms[0].norm[c] =
          planes == 1 ? tables->types[0].chmap[c].char_upper : reduced(c, keeps_case);
    }
    record.cs_class = planes == 1 ? 1 : 2;
    record.cs_maxcharlen = record.cs_ncharsize = 1;
    record.cs_ntype = record.cs_nnorm = static_cast<CS_BYTE>(planes);
    record.cs_width_map = tables->widths;
    record.cs_norm_map = tables->norms.data();
    record.cs_type_map = tables->types.data();
  }

  void add_lead(int lead, int plane, int length) {
    tables->widths[lead] = static_cast<CS_BYTE>(0x20 | length);
    if (plane != 0) {
      tables->norms[0].norm[lead] = static_cast<CS_BYTE>(plane);
      tables->types[0].chmap[lead] = {static_cast<CS_BYTE>(plane), 0, 0, CS_CTYPE_LEAD};
    }
  }

  // The character of a plane that is the wide form of an ASCII one, unless it has one: its class, and
  // what it reduces to.
  void add_wide(int lead, int plane, int second, char ascii, CS_BYTE norm, CHAR_MAP type) {
    const auto p = static_cast<size_t>(plane);
    tables->norms[p].norm[second] = norm;
    tables->types[p].chmap[second] = type;
    std::string &form = wides[static_cast<unsigned char>(ascii)];
    if (form.empty())
      form = {static_cast<char>(lead), static_cast<char>(second)};
  }

  void add_double_bytes(bool keeps_case) {
    for (int lead = 0xA1; lead < 0xFF; ++lead)
      add_lead(lead, lead == 0xA1 ? 1 : lead == 0xA3 ? 2 : 0, 2);
    add_wide(0xA1, 1, 0xA1, ' ', ' ', {0, 0, 0, CS_CTYPE_SPACE});
    for (int c = 0x21; c < 0x7F; ++c)
      add_wide(0xA3, 2, c | 0x80, static_cast<char>(c), reduced(c, keeps_case), ascii_type(c));
    record.cs_maxcharlen = 2;
  }

  void add_utf8() {
    for (int lead = 0xC2; lead < 0xF5; ++lead)
      add_lead(lead,
               lead == 0xC2   ? 1
               : lead == 0xC3 ? 2
               : lead == 0xD9 ? 3
                              : 0,
               lead < 0xE0   ? 2
               : lead < 0xF0 ? 3
                             : 4);
    add_wide(0xC2, 1, 0xA0, ' ', ' ', {0, 0, 0, CS_CTYPE_SPACE});
    // A currency symbol is known by its class alone.
    for (int sign : {0xA3, 0xA5})
      add_wide(0xC2, 1, sign, '$', 0, {0, 0, CS_LEX_CURRENCY, 0});
    for (int second = 0x80; second < 0xC0; ++second)
      tables->types[2].chmap[second] = {
          0, 0, 0, static_cast<CS_BYTE>(second < 0xA0 ? CS_CTYPE_UPPER : CS_CTYPE_LOWER)};
    tables->norms[2].norm[0x89] = tables->norms[2].norm[0xA9] = 'e';
    for (int digit = 0; digit < 10; ++digit)
      add_wide(0xD9, 3, 0xA0 + digit, static_cast<char>('0' + digit),
               static_cast<CS_BYTE>('0' + digit), {0, 0, 0, CS_CTYPE_DIGIT});
    record.cs_maxcharlen = 4;
  }

  CHAR_ATTRIB record = {};
  std::shared_ptr<Tables> tables;
  std::vector<std::string> wides;
};

} // namespace zrvtest

#endif
