// Comparison of strings under a compiled sort order, in one pass over both.
//
// What is equal byte for byte is passed eight bytes at a time. That is sound at a boundary of
// characters, where no weight is held: equal bytes have equal weights, and the next boundary is the
// same in both strings. A byte with weights of its own ends a character, whatever stands before it.
#include <algorithm>
#include <cstddef>
#include <cstring>

#include "checks.h"
#include "sortordr.h"

namespace {

constexpr char trailing_blank = ' ';
constexpr std::ptrdiff_t stride = 8;
// Bounds what is looked at again where the bytes of a stretch begin one character after another.
constexpr std::ptrdiff_t look_ahead = 64;

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

  const char *position() const noexcept { return next_byte; }
  std::ptrdiff_t left() const noexcept { return end - next_byte; }
  void pass(std::ptrdiff_t count) noexcept { next_byte += count; }

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

// How many bytes are the same at the front, in strides and not further than one looks ahead.
std::ptrdiff_t equal_stretch(const char *bytes1, const char *bytes2, std::ptrdiff_t left) noexcept {
  const std::ptrdiff_t limit = std::min(left, look_ahead);
  std::ptrdiff_t same = 0;
  while (limit - same >= stride && std::memcmp(bytes1 + same, bytes2 + same, stride) == 0)
    same += stride;
  return same;
}

// How many bytes of a stretch end with a character, whatever begins behind them: those up to the last
// byte with weights of its own.
std::ptrdiff_t whole_characters(const SO_1CLASS *so, const char *bytes,
                                std::ptrdiff_t count) noexcept {
  while (count > 0 && so->lscs[static_cast<CS_BYTE>(bytes[count - 1])].pst.t == 0)
    --count;
  return count;
}

// Takes bytes from both strings in step while each has weights of its own, from where nothing is held.
// True when `is_decided` says so.
template <class Decide>
bool walk_plain(const SO_1CLASS *so, Text &text1, Text &text2, Decide is_decided) noexcept {
  const char *const bytes1 = text1.position(), *const bytes2 = text2.position();
  const std::ptrdiff_t count = std::min(text1.left(), text2.left());
  std::ptrdiff_t i = 0;
  bool is_plain = true;
  while (is_plain && i < count) {
    if (const std::ptrdiff_t same = equal_stretch(bytes1 + i, bytes2 + i, count - i)) {
      const std::ptrdiff_t passed = whole_characters(so, bytes1 + i, same);
      i += passed;
      is_plain = passed > 0;
      continue;
    }
    for (const std::ptrdiff_t stop = std::min(count, i + stride); i < stop; ++i) {
      const LSC weights1 = so->lscs[static_cast<CS_BYTE>(bytes1[i])];
      const LSC weights2 = so->lscs[static_cast<CS_BYTE>(bytes2[i])];
      is_plain = weights1.pst.t != 0 && weights2.pst.t != 0;
      if (!is_plain)
        break;
      if (is_decided(weights1, weights2))
        return true;
    }
  }
  text1.pass(i);
  text2.pass(i);
  return false;
}

enum class Ended { first, second, neither };

// Takes weights from both strings in step, until one has none or `is_decided` says so.
template <class Decide>
Ended walk(SO_1CLASS *so, Text &text1, Text &text2, Decide is_decided) noexcept {
  for (;;) {
    if (!text1.holds() && !text2.holds() && walk_plain(so, text1, text2, is_decided))
      return Ended::neither;
    LSC weights1, weights2;
    if (!text1.next(so, weights1))
      return Ended::first;
    if (!text2.next(so, weights2))
      return Ended::second;
    if (is_decided(weights1, weights2))
      return Ended::neither;
  }
}

CS_INT sign_of(int difference) noexcept {
  return (difference > 0) - (difference < 0);
}

[[gnu::noinline]] int compare_all(SO_1CLASS *so, char *str1, int len1, char *str2,
                                  int len2) noexcept {
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

// Most comparisons end at the first byte, before there is anything to set up.
int compare(SO_1CLASS *so, char *str1, int len1, char *str2, int len2) noexcept {
  if (len1 > 0 && len2 > 0) {
    const LSC weights1 = so->lscs[static_cast<CS_BYTE>(*str1)];
    const LSC weights2 = so->lscs[static_cast<CS_BYTE>(*str2)];
    if (weights1.pst.t != 0 && weights2.pst.t != 0 && weights1.pst.p != weights2.pst.p)
      return weights1.pst.p - weights2.pst.p;
  }
  return compare_all(so, str1, len1, str2, len2);
}

} // namespace

CS_INT com_ps_dl_sqlhilo(CS_VOID *so, CS_CHAR *str1, CS_INT len1, CS_CHAR *str2,
                         CS_INT len2) noexcept {
  return sign_of(compare(static_cast<SO_1CLASS *>(so), str1, len1, str2, len2));
}

CS_INT com_spec_tord(CS_VOID *so, CS_CHAR *str1, CS_INT len1, CS_CHAR *str2, CS_INT len2) noexcept {
  return sign_of(com__spec_tord(static_cast<SO_1CLASS *>(so), str1, len1, str2, len2));
}

CS_INT com__ps_dl_sqlhilo(SO_1CLASS *so, char *str1, int len1, char *str2, int len2) noexcept {
  return compare(so, str1, len1, str2, len2);
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
