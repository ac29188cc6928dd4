// Comparison of strings under a compiled sort order, in one pass over both.
//
// What is equal byte for byte is passed eight bytes at a time. That is sound at a boundary of
// characters, where no weight is held: equal bytes have equal weights, and the next boundary is the
// same in both strings. A byte with weights of its own ends a character, whatever stands before it.
#include <bit>
#include <cstring>

#include "checks.h"
#include "sortordr.h"

namespace {

constexpr char trailing_blank = ' ';
constexpr int stride = 8;

// A string on the way through it.
class Text {
public:
  Text(char *text, int length) noexcept : next_byte(text), end(text + (length > 0 ? length : 0)) {}

  // Hands out the next weights; false when there are none.
  bool next(SO_1CLASS *so, LSC &weights) noexcept {
    if (hold.lsclong != 0) [[unlikely]] {
      weights = hold;
      hold.lsclong = 0;
      return true;
    }
    if (next_byte == end)
      return false;
    weights = so->lscs[static_cast<CS_BYTE>(*next_byte++)];
    if (weights.pst.t == 0) [[unlikely]]
      resolve(so, weights);
    return true;
  }

  // Passes eight bytes that are the same in both strings; false where they are not, or where one of
  // them may end within a character.
  static bool skip_equal(const SO_1CLASS *so, Text &text1, Text &text2) noexcept {
    if (text1.end - text1.next_byte < stride || text2.end - text2.next_byte < stride ||
        (text1.hold.lsclong | text2.hold.lsclong) != 0 ||
        std::memcmp(text1.next_byte, text2.next_byte, stride) != 0 ||
        so->lscs[static_cast<CS_BYTE>(text1.next_byte[stride - 1])].pst.t == 0)
      return false;
    text1.next_byte += stride;
    text2.next_byte += stride;
    return true;
  }

  bool holds() const noexcept { return hold.lsclong != 0; }
  bool has_only_blanks() const noexcept { return is_blank(next_byte, end); }
  // The same, the byte that was read last included.
  bool had_only_blanks() const noexcept { return is_blank(next_byte - 1, end); }

private:
  // Locals, so that the position stays in a register elsewhere.
  void resolve(SO_1CLASS *so, LSC &weights) noexcept {
    char *position = next_byte;
    LSC first, second;
    com__smel_lsc(so->smels, weights.pst.smelist, &position, end, &first, &second);
    next_byte = position;
    weights = first;
    hold = second;
  }

  static bool is_blank(const char *begin, const char *end) noexcept {
    while (begin != end && *begin == trailing_blank)
      ++begin;
    return begin == end;
  }

  char *next_byte;
  char *end;
  LSC hold = {}; // what a ligature left for the next step
};

enum class Ended { first, second, neither };

// Takes weights from both strings in step, until one has none or `is_decided` says so.
template <class Decide>
Ended walk(SO_1CLASS *so, Text &text1, Text &text2, Decide is_decided) noexcept {
  for (;;) {
    while (Text::skip_equal(so, text1, text2)) {
    }
    for (int step = 0; step < stride; ++step) {
      LSC weights1, weights2;
      if (!text1.next(so, weights1))
        return Ended::first;
      if (!text2.next(so, weights2))
        return Ended::second;
      if (is_decided(weights1, weights2))
        return Ended::neither;
    }
  }
}

CS_INT sign_of(int difference) noexcept {
  return (difference > 0) - (difference < 0);
}

} // namespace

CS_INT com_ps_dl_sqlhilo(CS_VOID *so, CS_CHAR *str1, CS_INT len1, CS_CHAR *str2,
                         CS_INT len2) noexcept {
  return sign_of(com__ps_dl_sqlhilo(static_cast<SO_1CLASS *>(so), str1, len1, str2, len2));
}

CS_INT com_spec_tord(CS_VOID *so, CS_CHAR *str1, CS_INT len1, CS_CHAR *str2, CS_INT len2) noexcept {
  return sign_of(com__spec_tord(static_cast<SO_1CLASS *>(so), str1, len1, str2, len2));
}

CS_INT com__ps_dl_sqlhilo(SO_1CLASS *so, char *str1, int len1, char *str2, int len2) noexcept {
  Text text1(str1, len1), text2(str2, len2);
  int primary = 0, secondary = 0;
  const Ended ended = walk(so, text1, text2, [&](LSC weights1, LSC weights2) noexcept {
    if (secondary == 0)
      secondary = weights1.pst.s - weights2.pst.s;
    primary = weights1.pst.p - weights2.pst.p;
    return primary != 0;
  });
  switch (ended) {
  case Ended::first:
    return !text2.holds() && text2.has_only_blanks() ? secondary : -1;
  case Ended::second:
    // What the first string holds does not count, its byte does: a ligature at the end is no blank.
    return text1.had_only_blanks() ? secondary : 1;
  default:
    return primary;
  }
}

CS_INT com__spec_tord(SO_1CLASS *so, char *str1, int len1, char *str2, int len2) noexcept {
  Text text1(str1, len1), text2(str2, len2);
  int tertiary = 0;
  walk(so, text1, text2, [&](LSC weights1, LSC weights2) noexcept {
    tertiary = weights1.pst.t - weights2.pst.t;
    return tertiary != 0;
  });
  return tertiary;
}

CS_VOID com__smel_lsc(SMEL *smels, int smel_1st, char **raw_cur, char *raw_end, LSC *lsc,
                      LSC *hold) noexcept {
  lsc->lsclong = hold->lsclong = 0;
  for (int i = smel_1st;; i = smels[i].next_smel) {
    COMN_CHECK(i >= 0 && i < SMEL_COUNT);
    const SMEL &element = smels[i];
    switch (element.type_smel) {
    case SMEL_DOUBLE:
      if ((raw_end != nullptr && *raw_cur >= raw_end) ||
          static_cast<CS_BYTE>(**raw_cur) != element.smel_types.sm_1type.xtraw)
        break;
      ++*raw_cur;
      *lsc = element.smel_types.sm_1type.lsc1;
      return;
    case SMEL_LIGATURE:
      *lsc = element.smel_types.sm_3type.lsc1;
      *hold = element.smel_types.sm_3type.lsc2;
      return;
    case SMEL_BYTE:
      *lsc = element.smel_types.sm_0type.lsc1;
      return;
    default:
      COMN_CHECK(element.type_smel == SMEL_BYTE);
    }
  }
}
