// The arithmetic that the operations on values and those on descriptors share.
#ifndef COMN_EXACT_NUMEMATH_H
#define COMN_EXACT_NUMEMATH_H

#include "number.h"

namespace comn::exact {

// The sum of two operands of one scale; true when it is negative. Uses up the operands.
bool add(Number &sum, Operand &a, Operand &b) noexcept;

// The product of two operands, shifted to the scale of its field: NUME_OK, NUME_TRUNCATED, or, with
// the product not shifted, NUME_OVERFLOW when it does not fit (as wide as the field where that has
// the digits of both operands, else as wide as the longest value) and NUME_SYNTAX.
int multiply(Number &product, const Operand &a, const Operand &b, const Field &field,
             int scale) noexcept;

// The quotient of two operands in units of its own scale, truncated, and the remainder: NUME_OK,
// NUME_DIVZERO, or NUME_OVERFLOW for scales more than 77 digits apart and beyond the work space of a
// division byte by byte: the scaled operand with one byte more, the quotient with one byte more than
// the dividend, and a remainder of the divisor's length, 132 bytes in all. Uses up the operands.
int divide(Number &quotient, Number &remainder, Operand &a, Operand &b, int scale) noexcept;

} // namespace comn::exact

#endif
