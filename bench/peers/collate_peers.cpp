#include "collate_peers.h"

#ifdef ZRVBENCH_WITH_ICU
#include <unicode/ucol.h>
#endif

namespace {

bool next_weights(SO_1CLASS *so, char *&at, char *end, LSC &hold, LSC &weights) {
  if (hold.lsclong != 0) {
    weights = hold;
    hold.lsclong = 0;
    return true;
  }
  if (at == end)
    return false;
  weights = so->lscs[static_cast<unsigned char>(*at++)];
  if (weights.pst.t == 0) {
    char *position = at;
    LSC first, second;
    com__smel_lsc(so->smels, weights.pst.smelist, &position, end, &first, &second);
    at = position;
    weights = first;
    hold = second;
  }
  return true;
}

bool is_blank(const char *at, const char *end) {
  while (at != end && *at == ' ')
    ++at;
  return at == end;
}

int sign_of(int value) {
  return (value > 0) - (value < 0);
}

} // namespace

int zrvbench::peer_compare_weights(SO_1CLASS *so, char *str1, int len1, char *str2, int len2) {
  char *const end1 = str1 + len1, *const end2 = str2 + len2;
  LSC hold1 = {}, hold2 = {}, weights1, weights2;
  int secondary = 0;
  while (next_weights(so, str1, end1, hold1, weights1)) {
    if (!next_weights(so, str2, end2, hold2, weights2))
      return is_blank(str1 - 1, end1) ? sign_of(secondary) : 1;
    if (weights1.pst.p != weights2.pst.p)
      return sign_of(weights1.pst.p - weights2.pst.p);
    if (secondary == 0)
      secondary = weights1.pst.s - weights2.pst.s;
  }
  return hold2.lsclong == 0 && is_blank(str2, end2) ? sign_of(secondary) : -1;
}

#ifdef ZRVBENCH_WITH_ICU
int zrvbench::icu_compare(const char16_t *str1, const char16_t *str2, int length) {
  static UCollator *const collator = [] {
    UErrorCode status = U_ZERO_ERROR;
    UCollator *const opened = ucol_open("", &status);
    ucol_setStrength(opened, UCOL_SECONDARY);
    return opened;
  }();
  return ucol_strcoll(collator, str1, length, str2, length);
}
#endif
