// The arithmetic that the operations on values and those on descriptors share.
#ifndef COMN_EXACT_NUMEMATH_H
#define COMN_EXACT_NUMEMATH_H

#include <algorithm>

#include "number.h"

namespace comn::exact {

// One operand: a magnitude that belongs to the caller, trimmed, and what describes it.
struct View {
  const Limb *limbs;
  int size;
  int precision, scale;
  bool negative;
};

// -1, 0 or 1. See comn_numcmp for what is not looked at.
int compare_scaled(const View &a, const View &b) noexcept;

inline int compare_magnitudes(const View &a, const View &b) noexcept {
  const int order = compare(a.limbs, a.size, b.limbs, b.size);
  return (order > 0) - (order < 0);
}

// The answer from the order of two magnitudes and the signs. Different signs decide before the
// scales are brought together, so digits that this would drop count there, also next to a zero with
// a sign.
inline int compare_signed(const View &a, const View &b, bool align) noexcept {
  if (a.negative != b.negative)
    return a.size == 0 && b.size == 0 ? 0 : a.negative ? -1 : 1;
  const int order = align && a.scale != b.scale ? compare_scaled(a, b) : compare_magnitudes(a, b);
  return a.negative ? -order : order;
}

// The quotient of a and b in units of its own scale, truncated. NUME_OVERFLOW for scales more than
// 77 digits apart, and beyond the work space of a division byte by byte: the scaled operand with
// one byte more, the quotient with one byte more than the dividend, and a remainder of the
// divisor's length, 132 bytes in all. `a_len` and `b_len` are the operands' lengths with the sign.
int divide_scaled(Number &quotient, Number &remainder, const View &a, int a_len, const View &b,
                  int b_len, int quotient_scale) noexcept;

} // namespace comn::exact

#endif
