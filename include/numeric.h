/*
 * numeric.h - exact numerics and money: representation, arithmetic and the conversions beneath
 * comn_numto* and comn_moneyto*.
 *
 * A numeric is a sign byte and a big-endian base-256 magnitude, divided by 10 to the power of its
 * scale (CS_NUMERIC, cstypes.h). Any sign byte but 0 is negative, so two of them are one sign; a zero
 * is never computed with a sign, but one with a sign equals zero and prints without it. Nothing here allocates memory or
 * sends messages, and everything may run in any thread on distinct values.
 */
#ifndef ZRV_NUMERIC_H
#define ZRV_NUMERIC_H

#include "charset.h"
#include "csintrn.h"
#include "cspublic.h"

ZRV_BEGIN_DECLS

/* ---- tables ---- */

/* The bytes of CS_NUMERIC.array that count for a precision of 0 to 77: the sign byte and a
 * magnitude that can hold every number of so many digits. */
extern ZRV_PRIVATE const CS_BYTE Com__Nume_Prec_To_Len[CS_MAX_PREC + 1];

/* By length (sign byte included) minus 2: the most digits that always fit. 255 for the lengths 34
 * to 36, which no value has. */
extern ZRV_PRIVATE const CS_BYTE Com__Nume_Len_To_Prec[35];

/* Row k is 10 to the k as an operand: its length with the sign byte, the sign byte 0, the
 * magnitude, zeroes. A descriptor points at byte 1 of the row. */
extern ZRV_PRIVATE const CS_BYTE Com__Nume_Byte_Power_Array[CS_MAX_PREC + 1][34];

/* ---- arithmetic on values ---- */

/*
 * Each operation computes the precision and scale of its result from those of the operands and
 * stores them: what the result held before is not read, and it may be one of the operands. Let p
 * and s be the precision and scale of an operand and i its integer digits, p - s.
 *
 * add, sub   scale max(s1, s2), precision max(i1, i2) + scale + 1, at most 77.
 * mul        integer digits i = min(i1 + i2 + 1, 77), scale min(s1 + s2, 77), precision
 *            min(i + scale, 77); at that limit the scale gives way to the integer digits.
 * divide     i = min(i1 + s2, 77), scale p1 + s2 + 1 but at least 6 and at most 77, precision and
 *            scale at the limit as for mul. The quotient is truncated toward zero, and what is
 *            dropped is not reported.
 *
 * Returns
 *   CS_SUCCEED
 *   CS_CONV_DOMAIN    an operand has a precision outside 1 to 77 or a scale above 77; the result is
 *                     untouched. (A scale above the precision is allowed.)
 *   CS_CONV_OVERFLOW  the result, or an operand brought to the common scale, has more digits than
 *                     its precision; or digits other than 0 were lost where mul had to reduce the
 *                     scale (the result then holds the truncated value); or divide would need more
 *                     work space than it has; or the rule gives a precision below 1 (the result is
 *                     then untouched)
 *   CS_CONV_SYNTAX    mul would have to drop 78 digits or more
 *   CS_CONV_DIVZERO   the divisor is zero, whatever the dividend is; precision and scale of the
 *                     result are set, unless the rule gives a precision below 1, and its array is
 *                     untouched
 * After the other failures precision and scale of the result are set and its array is not to be
 * used. A null pointer is fatal, CS_FAIL; so is an `operation` other than 0 (add) and 1 (subtract).
 */
ZRV_API CS_RETCODE comn_numadd(CS_NUMERIC *add1p, CS_NUMERIC *add2p, CS_NUMERIC *sump) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_numsub(CS_NUMERIC *minp, CS_NUMERIC *subp, CS_NUMERIC *diffp) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_num_addorsub(CS_NUMERIC *oper1, CS_NUMERIC *oper2, CS_NUMERIC *result,
                                     CS_INT operation) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_nummul(CS_NUMERIC *m1, CS_NUMERIC *m2, CS_NUMERIC *result) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_numdivide(CS_NUMERIC *dividend, CS_NUMERIC *divisor,
                                  CS_NUMERIC *quot) ZRV_NOEXCEPT;

/* Compares two values: -1, 0 or 1. Zeroes are equal whatever their signs. When both have one sign,
 * and the precision of the operand with the smaller scale plus the greater scale exceeds 77, digits
 * beyond the smaller scale are not looked at, so values that differ only there compare equal. A
 * null pointer, or a precision outside 1 to 77, is fatal, 0. */
ZRV_API int comn_numcmp(CS_NUMERIC *n1, CS_NUMERIC *n2) ZRV_NOEXCEPT;

/* The length in bytes, sign byte included, of a precision from 1 to 77. Any other is fatal, 0. */
ZRV_API CS_INT comn_num_getlen(CS_INT precision) ZRV_NOEXCEPT;

/* The most digits that always fit a length from 2 to 33 bytes. Any other is fatal, 0. */
ZRV_API CS_INT comn_num_getprec(CS_INT length) ZRV_NOEXCEPT;

/*
 * ---- operations on descriptors ----
 *
 * They work on __CONSTANT (csintrn.h): `len` bytes at `value`, sign byte first, with `prec` and
 * `scale`; the other fields are not read. `len` is what counts, whatever the precision says; a
 * descriptor of length 0 reads as zero.
 *
 * Magnitudes of more than 48 bytes, leading zeroes not counted, are beyond the operations scale,
 * addorsub, mul, div, intmul, intdiv, round, ceilingfloor, and cmp where it brings scales together.
 * No value reaches them. NUME_OVERFLOW; addorsub, round and ceilingfloor leave the result cleared,
 * and cmp answers 0.
 *
 * The results are the NUME_ statuses unless a comment says otherwise. A null pointer is fatal,
 * NUME_OVERFLOW.
 */
#define NUME_OK 0
#define NUME_OVERFLOW 1  /* does not fit, or exceeds the precision */
#define NUME_SYNTAX 2    /* malformed text, or a shift of 78 digits or more */
#define NUME_DIVZERO 3   /* the divisor is zero */
#define NUME_UNDERFLOW 5 /* a conversion to an integer or a double failed at the low end */
#define NUME_TRUNCATED 6 /* digits were dropped, the value is otherwise usable */

/* Bits of the flag of com__exctnume_cmp. */
#define NUME_CMP_SIGNS 1  /* take account of the signs */
#define NUME_CMP_SCALES 2 /* bring both to one scale first */

/* -1, 0 or 1. Without NUME_CMP_SIGNS magnitudes are compared, without NUME_CMP_SCALES the scales do
 * not count. The scales are brought together with the limit that comn_numcmp tells. */
ZRV_PRIVATE int com__exctnume_cmp(__CONSTANT *op1, __CONSTANT *op2, int flag) ZRV_NOEXCEPT;

/* 1 if the magnitude equals a small number, else 0. */
ZRV_PRIVATE int com__exctnume_intcmp(__CONSTANT *val, int i) ZRV_NOEXCEPT;

/* Copies sign and magnitude, right-aligned; precision and scale of outval stay. NUME_OVERFLOW when
 * bytes other than 0 did not fit: the low bytes are copied. */
ZRV_PRIVATE int com__exctnume_copy(__CONSTANT *inval, __CONSTANT *outval) ZRV_NOEXCEPT;

/* Multiplies (or divides, for a negative shift) by a power of ten into outval, or in place when
 * outval is null. `scale` is the shift, not a target; `statflag` has no effect. NUME_OK;
 * NUME_TRUNCATED, the quotient stored; NUME_OVERFLOW when the number does not fit the length, and
 * for a shift down the precision as well; NUME_SYNTAX for 78 digits or more, nothing touched. */
ZRV_PRIVATE int com__exctnume_scale(__CONSTANT *inval, __CONSTANT *outval, int scale,
                                    int statflag) ZRV_NOEXCEPT;

/* 1 if the magnitude is at least 10 to the power `prec`, else 0. */
ZRV_PRIVATE int com__exctnume_checkprecision(__CONSTANT *val) ZRV_NOEXCEPT;

/* Divides all `*lenptr` bytes at `*bufpp` by ten and returns the remainder. When the byte at index
 * 1 has become 0 and the length is at least 3, the view shrinks by its first byte, unless the
 * length is exactly 3 and the last byte 255. */
ZRV_PRIVATE int com__exctnume_divby10(CS_BYTE **bufpp, CS_INT *lenptr) ZRV_NOEXCEPT;

/* Multiplies the magnitude by ten and adds `digit`: 1 on a carry out of the top byte, else 0. */
ZRV_PRIVATE int com__exctnume_mulby10_add(__CONSTANT *numeval, short digit) ZRV_NOEXCEPT;

/* Add and subtract one unit of the least significant byte, signs respected. 0; 1 on overflow, the
 * magnitude wrapped to zero; 2 for a value without magnitude bytes. */
ZRV_PRIVATE int com__exctnume_inc(__CONSTANT *numeptr) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__exctnume_dec(__CONSTANT *numeptr) ZRV_NOEXCEPT;

/* 1 if every magnitude byte is 255, so that an increment would carry out, else 0. */
ZRV_PRIVATE int com__exctnume_needsbyte(__CONSTANT *numeptr) ZRV_NOEXCEPT;

/*
 * Adds (opn 0) or subtracts (opn 1) two values of one scale and shifts the result from op1's scale
 * to its own. NUME_OK; NUME_OVERFLOW with the result cleared when the magnitude does not fit, or as
 * it is when it exceeds the result's precision; the status of the shift, which leaves the sum as it
 * was before unless digits were dropped.
 */
ZRV_PRIVATE int com__exctnume_addorsub(__CONSTANT *op1, __CONSTANT *op2, __CONSTANT *result,
                                       int opn) ZRV_NOEXCEPT;

/* Multiplies, and shifts the product to the scale of the result. The statuses of the product (at
 * most 32 bytes when the result's precision is below that of both operands together), of the shift,
 * and NUME_OVERFLOW beyond the result's precision. */
ZRV_PRIVATE int com__exctnume_mul(__CONSTANT *op1, __CONSTANT *op2, __CONSTANT *res) ZRV_NOEXCEPT;

/*
 * Divides; the quotient comes at the scale of `quot`, truncated.
 *
 * remdr  in,out  may be null. Its length becomes 0 for a remainder of zero, else that of the
 *                remainder with a byte in front. If its value is not null and its length was
 *                enough on entry, the remainder is stored there; otherwise its value becomes null
 *
 * NUME_OK; NUME_DIVZERO; NUME_OVERFLOW when the quotient does not fit the length or the precision,
 * when the scales are more than 77 digits apart, and when the work space of 132 bytes is exceeded.
 */
ZRV_PRIVATE int com__exctnume_div(__CONSTANT *op1, __CONSTANT *op2, __CONSTANT *quot,
                                  __CONSTANT *remdr) ZRV_NOEXCEPT;

/* Rounds to `scale` digits (-77 to 77) half away from zero, looking at one digit only. The result
 * has len, prec and scale from the caller and keeps the operand's scale: the dropped digits become
 * zeroes. */
ZRV_PRIVATE void com__exctnume_round(__CONSTANT *op, CS_INT scale, __CONSTANT *result) ZRV_NOEXCEPT;

/* The ceiling (type not 0) or floor of a value. The result takes len and prec of the operand and
 * scale 0; its value must have room for op's length. */
ZRV_PRIVATE void com__exctnume_ceilingfloor(__CONSTANT *op, __CONSTANT *result,
                                            int type) ZRV_NOEXCEPT;

/* On magnitudes; scales and precisions do not count. intadd and intsub (a not below b) leave the
 * result's sign byte alone; intmul sets it. NUME_OK, or NUME_OVERFLOW with the low bytes stored. */
ZRV_PRIVATE int com__exctnume_intadd(__CONSTANT *a, __CONSTANT *b, __CONSTANT *r) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__exctnume_intsub(__CONSTANT *a, __CONSTANT *b, __CONSTANT *r) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__exctnume_intmul(__CONSTANT *a, __CONSTANT *b, __CONSTANT *r) ZRV_NOEXCEPT;

/*
 * Divides magnitudes.
 *
 * q  in,out  in: len bytes of work space at value. Out: the quotient, a view of that space without
 *            leading zeroes but with one byte kept in front for the sign (unless the quotient fills
 *            the space from its first byte); length 0 for a quotient of zero
 * r  out     the remainder, a view of the same space, or of `a` when the quotient is zero; length 0
 *            for a remainder of zero. A view has a byte in front for the sign, except the one-byte
 *            remainder of a one-byte divisor; with a quotient of zero it is the byte that `a` has
 *            there, a zero or, without leading zeroes, its sign
 *
 * NUME_OK, NUME_DIVZERO, or NUME_OVERFLOW, nothing written, when the work space is shorter than the
 * dividend's magnitude (leading zeroes not counted) and one byte.
 */
ZRV_PRIVATE int com__exctnume_intdiv(__CONSTANT *a, __CONSTANT *b, __CONSTANT *q,
                                     __CONSTANT *r) ZRV_NOEXCEPT;

/*
 * ---- conversions beneath comn_numto* and comn_*tonum ----
 *
 * `dest` points at a sign byte, not at a CS_NUMERIC, and `destlen` bytes from there belong to the
 * caller; they are all written. `*precision` and `*scale` are in and out. A `destlen` below 2, and
 * one above 36 where it chooses the precision, is NUME_OVERFLOW, nothing written.
 */

/*
 * Single-byte text to numeric.
 *
 * text       in      len bytes: blanks and one sign, digits with a point, an exponent, white space.
 *                    If they hold an "e" or "E", a NUL must follow somewhere: the exponent ends
 *                    there, not at len
 * dest       in,out  the destination; see automatic precision
 * destlen    in,out  its length; 0 means 33
 * precision  in,out  1 to 77, or anything else for automatic precision
 * scale      in,out  0 to 77, or above for automatic scale
 * flag       in      1 allows digits to be dropped, with rounding on the first of them
 *
 * NUME_OK; NUME_SYNTAX, also for a negative length and for a shift of 78 digits or more;
 * NUME_TRUNCATED when a digit would have to be dropped and flag is not 1; NUME_OVERFLOW.
 *
 * The scan stops at the first dropped fraction digit: what follows is not looked at. White space
 * after an exponent is allowed only behind two characters of it ("1e55 " and "1e+5" parse, "1e5 "
 * does not).
 *
 * Automatic scale: the fraction digits written, the one that ends the scan because the destination
 * has no room for it among them, so that such a value is a tenth of what the text says. With an
 * exponent as well the fraction digits win and the exponent is lost ("1.5e1" is the digits 15 at
 * scale 1); without fraction digits a positive exponent multiplies, and a negative one is stored as
 * a byte ("5e-2" gives scale 254). Automatic precision: the digits written, leading zeroes aside,
 * but never below what the value has; `*dest` moves forward and `*destlen` becomes the length of
 * that precision, so that the value ends where the buffer does. NUME_OVERFLOW above 77 digits, or
 * when that length does not fit.
 */
ZRV_PRIVATE int com__subchartoexctnume(CS_CHAR *text, CS_INT len, CS_BYTE **dest, CS_INT *destlen,
                                       CS_BYTE *precision, CS_BYTE *scale,
                                       CS_INT flag) ZRV_NOEXCEPT;

/* Numeric to text, right-aligned in destlen bytes, no NUL: the index of the first character, or -1
 * when there is no room (nothing is written then). The fraction always has `scale` digits, and a
 * zero stands before a point that would come first. 80 characters hold every value. */
ZRV_PRIVATE int com__subexctnumetochar(__CONSTANT *srcconst, CS_CHAR *dest,
                                       CS_INT destlen) ZRV_NOEXCEPT;

/* The closest double. NUME_OVERFLOW, nothing stored, for a magnitude above 32 bytes or a scale
 * above 77, which no valid value has. A length of 0 stores nothing and is NUME_OK. */
ZRV_PRIVATE int com__subexctnumetoflt8(__CONSTANT *numeval, CS_FLOAT *dest) ZRV_NOEXCEPT;

/* The 17 significant digits of a double, rounded to the scale. NUME_OK, NUME_OVERFLOW, or
 * NUME_SYNTAX (not a number, infinite, or 78 or more digits away). Automatic precision is the most
 * that destlen holds, at scale 0. */
ZRV_PRIVATE int com__doubletoexctnume(CS_FLOAT value, CS_BYTE *dest, CS_INT destlen,
                                      CS_BYTE *precision, CS_BYTE *scale) ZRV_NOEXCEPT;

/* Integers to numeric. NUME_OK; NUME_SYNTAX for a scale above 77; NUME_OVERFLOW, which leaves the
 * value where it only exceeds the precision, the value before the shift where that has no room, and
 * its low bytes where not even that has; without the sign in the last two cases, as for NUME_SYNTAX.
 * Automatic precision (0 or above 77) is the most that destlen holds, at scale 0. */
ZRV_PRIVATE int com__longtoexctnume(CS_INT value, CS_BYTE *dest, CS_INT destlen, CS_BYTE *precision,
                                    CS_BYTE *scale) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__ulongtoexctnume(CS_UINT value, CS_BYTE *dest, CS_INT destlen,
                                     CS_BYTE *precision, CS_BYTE *scale) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__longlongtoexctnume(CS_BIGINT value, CS_BYTE *dest, CS_INT destlen,
                                        CS_BYTE *precision, CS_BYTE *scale) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__ulonglongtoexctnume(CS_UBIGINT value, CS_BYTE *dest, CS_INT destlen,
                                         CS_BYTE *precision, CS_BYTE *scale) ZRV_NOEXCEPT;

/* The integer part. NUME_OK; NUME_OVERFLOW with the largest value stored (or nothing, as for
 * com__subexctnumetoflt8); NUME_UNDERFLOW with the smallest one stored, which for the unsigned form
 * is 0 and any negative value but zero. A length of 0 stores nothing and is NUME_OK. */
ZRV_PRIVATE int com__subexctnumetolonglong(__CONSTANT *numeval, CS_BIGINT *dest) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__subexctnumetoulonglong(__CONSTANT *numeval, CS_UBIGINT *dest) ZRV_NOEXCEPT;

/* Numeric to money, rounded to four decimals. The sense is the reverse of the other functions: 1 is
 * success, 0 is overflow, nothing stored. */
ZRV_PRIVATE int com__exctnumetomny8(__CONSTANT *numeval, CS_MONEY *dest) ZRV_NOEXCEPT;

/* Money to numeric, rounded to the scale. NUME_OK or NUME_OVERFLOW. Automatic precision is the most
 * that destlen holds; a scale above 77 becomes 0. `flag` has no effect. */
ZRV_PRIVATE int com__mny8toexctnume(CS_MONEY *mp, CS_BYTE *dest, CS_INT destlen, CS_BYTE *precision,
                                    CS_BYTE *scale, int flag) ZRV_NOEXCEPT;

/*
 * ---- money ----
 *
 * CS_MONEY and CS_MONEY4 (cstypes.h) are counts of ten-thousandths, so they have four decimals:
 * -922337203685477.5808 to 922337203685477.5807, and -214748.3648 to 214748.3647. Values may stand
 * at any address, and a result may be one of the operands.
 */

/* The multiplier that turns a value with 0 to 4 decimals into ten-thousandths. */
extern ZRV_PRIVATE const CS_INT scalebuf[5];

/*
 * Public operations return CS_SUCCEED, or
 *   CS_CONV_OVERFLOW  the result does not fit; add, sub, mul and divide leave zero
 *   CS_CONV_DIVZERO   the divisor is zero; zero is left
 * and the internal ones NUME_OK, NUME_OVERFLOW or NUME_DIVZERO for the same. A null pointer is fatal:
 * CS_FAIL, and NUME_OVERFLOW.
 *
 * copy      copies mp1 to mp2; cannot fail.
 * minus     negates; the smallest value is an overflow, which leaves it in a CS_MONEY and leaves a
 *           CS_MONEY4 untouched.
 * inc       adds a ten-thousandth; the largest value becomes the smallest one, an overflow.
 * dec       takes one away, but not where the low word of the count is 0: there it takes away 2 to
 *           the 32 of them. The smallest value becomes mnyhigh 0x7FFFFFFF, mnylow 0, an overflow.
 * mul       rounds to the fourth decimal, half away from zero.
 * divide    truncates toward zero at the fourth decimal.
 * scale     magnitude times mpier plus add, the sign restored; with an mpier of 0 the count is add
 *           itself. When the magnitude, or the product before the addition, reaches 2 to the 63, the
 *           value is untouched, an overflow.
 * rem       is not supported: writes nothing, NUME_OVERFLOW.
 */
ZRV_API CS_RETCODE comn_mnycopy(CS_MONEY *mp1, CS_MONEY *mp2) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_mnyminus(CS_MONEY *imp, CS_MONEY *omp) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_mnyinc(CS_MONEY *mp) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_mnydec(CS_MONEY *mp) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_mnyadd(CS_MONEY *add1p, CS_MONEY *add2p, CS_MONEY *sump) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_mnysub(CS_MONEY *minp, CS_MONEY *subp, CS_MONEY *difp) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_mnymul(CS_MONEY *m1, CS_MONEY *m2, CS_MONEY *m3) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_mnydivide(CS_MONEY *m1, CS_MONEY *m2, CS_MONEY *m3) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_mnyscale(CS_MONEY *mp, CS_UINT mpier, CS_INT add) ZRV_NOEXCEPT;

/* The same of CS_MONEY4. */
ZRV_API CS_RETCODE comn_mny4copy(CS_MONEY4 *mp1, CS_MONEY4 *mp2) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_mny4minus(CS_MONEY4 *imp, CS_MONEY4 *omp) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_mny4add(CS_MONEY4 *add1p, CS_MONEY4 *add2p, CS_MONEY4 *sump) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_mny4sub(CS_MONEY4 *minp, CS_MONEY4 *subp, CS_MONEY4 *difp) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_mny4mul(CS_MONEY4 *m1, CS_MONEY4 *m2, CS_MONEY4 *m3) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_mny4divide(CS_MONEY4 *m1, CS_MONEY4 *m2, CS_MONEY4 *m3) ZRV_NOEXCEPT;

/* The internal ones. */
ZRV_PRIVATE int com__mnycopy(CS_MONEY *mp1, CS_MONEY *mp2) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__mnyminus(CS_MONEY *imp, CS_MONEY *omp) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__mnyinc(CS_MONEY *mp) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__mnydec(CS_MONEY *mp) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__mnyadd(CS_MONEY *add1p, CS_MONEY *add2p, CS_MONEY *sump) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__mnysub(CS_MONEY *minp, CS_MONEY *subp, CS_MONEY *difp) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__mnymul(CS_MONEY *m1, CS_MONEY *m2, CS_MONEY *m3) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__mnydiv(CS_MONEY *m1, CS_MONEY *m2, CS_MONEY *m3) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__mnyrem(CS_MONEY *m1, CS_MONEY *m2, CS_MONEY *m3) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__mnyscale(CS_MONEY *mp, CS_UINT mpier, CS_INT add) ZRV_NOEXCEPT;

/* The internal ones of CS_MONEY4. */
ZRV_PRIVATE int com__mnyminus4(CS_MONEY4 *imp, CS_MONEY4 *omp) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__mnyadd4(CS_MONEY4 *add1p, CS_MONEY4 *add2p, CS_MONEY4 *sump) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__mnysub4(CS_MONEY4 *minp, CS_MONEY4 *subp, CS_MONEY4 *difp) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__mnymul4(CS_MONEY4 *m1, CS_MONEY4 *m2, CS_MONEY4 *m3) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__mnydiv4(CS_MONEY4 *m1, CS_MONEY4 *m2, CS_MONEY4 *m3) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__mnyrem4(CS_MONEY4 *m1, CS_MONEY4 *m2, CS_MONEY4 *m3) ZRV_NOEXCEPT;

/* Compare: -1, 0 or 1. A null pointer is fatal, 0. */
ZRV_API int comn_mnycmp(CS_MONEY *m1, CS_MONEY *m2) ZRV_NOEXCEPT;
ZRV_API int comn_mny4cmp(CS_MONEY4 *m1, CS_MONEY4 *m2) ZRV_NOEXCEPT;

/* Set a value to zero, CS_SUCCEED, and to the limits. A null pointer is fatal. */
ZRV_API CS_RETCODE comn_mnyzero(CS_MONEY *mnyptr) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_mny4zero(CS_MONEY4 *mnyptr) ZRV_NOEXCEPT;
ZRV_API void comn_mnymaxpos(CS_MONEY *mp) ZRV_NOEXCEPT;
ZRV_API void comn_mnymaxneg(CS_MONEY *mp) ZRV_NOEXCEPT;
ZRV_PRIVATE void com__maxposmny(CS_MONEY *mp) ZRV_NOEXCEPT;
ZRV_PRIVATE void com__maxnegmny(CS_MONEY *mp) ZRV_NOEXCEPT;

/* Divides a value in place, toward zero, and returns the remainder of its magnitude, which is never
 * negative. The low 16 bits of dvsr are the divisor; where they are 0, nothing changes and the
 * result is 0. A null pointer is fatal, 0. */
ZRV_API int comn_mnydown(CS_MONEY *mp, CS_INT dvsr) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__mnydown(CS_MONEY *mp, CS_INT dvsr) ZRV_NOEXCEPT;

/*
 * Take a value apart digit by digit. init replaces it by its magnitude without its last `trim`
 * digits, rounded by the last of them that goes, and returns -1 for a negative value, 0 for others;
 * the smallest value, untrimmed, stays what it is. ndigit then stores the last digit in `*value` as a
 * character and removes it; it returns 1 while digits remain, and 0 with the first digit of the
 * number. A null pointer is fatal, 0.
 */
ZRV_API int comn_mnyinit(CS_MONEY *mp, CS_INT trim) ZRV_NOEXCEPT;
ZRV_API int comn_mnyndigit(CS_MONEY *mp, CS_CHAR *value) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__mnyinit(CS_MONEY *mp, CS_INT trim) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__mnyndigit(CS_MONEY *mp, CS_CHAR *value) ZRV_NOEXCEPT;

/* Divide the count of num by a word, toward zero: by mnylow of `den`, whatever its mnyhigh, and by
 * the low 16 bits of den. Nothing is reported: a divisor of zero gives a quotient of zero. A null
 * pointer is fatal. */
ZRV_API void comn_mnyxdiv(CS_MONEY *num, CS_MONEY *den, CS_MONEY *res) ZRV_NOEXCEPT;
ZRV_PRIVATE void comn__mny16div(CS_MONEY *num, CS_INT den, CS_MONEY *res) ZRV_NOEXCEPT;

/* Shifts the count right, keeping its sign, by one bit for each significant bit of the magnitude of
 * `value`: 5 shifts by 3. NUME_OK; a null pointer is fatal, NUME_OVERFLOW. */
ZRV_PRIVATE int com__mnyshift(CS_MONEY *m1, CS_INT value) ZRV_NOEXCEPT;

/* ---- money from and to text, integers and doubles ---- */

/*
 * Text to money. In front of the number stand one sign, one currency symbol (CS_LEX_CURRENCY) and
 * blanks, each at most once but for the blanks, in any order; behind it white space alone. The number
 * is digits with a point; its first comma follows none to three digits, or seven, and each later one
 * three, also in the fraction. Fewer than three digits between the last comma and the point, or the
 * end, are refused. The fifth decimal alone rounds, half away from zero. Nothing, or nothing but
 * blanks, is zero.
 *
 * mp, m4p  out  the value; after a failure of com__mnyfromchar_mb the digits that had been read, as a
 *               count; com__mny4fromchar_mb writes the nearest value when the number is a CS_MONEY,
 *               and nothing after another failure
 * icp      in   the text
 * ilen     in   its length in bytes; below 1 the text is empty
 * style    in   no effect
 * chatr    in   its character set; null for the built-in one
 *
 * NUME_OK; NUME_OVERFLOW; NUME_SYNTAX. Another null pointer is fatal, NUME_OVERFLOW.
 */
ZRV_PRIVATE int com__mnyfromchar_mb(CS_MONEY *mp, CS_CHAR *icp, CS_INT ilen, CS_INT style,
                                    CS_ATTRIB *chatr) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__mny4fromchar_mb(CS_MONEY4 *m4p, CS_CHAR *icp, CS_INT ilen, CS_INT style,
                                     CS_ATTRIB *chatr) ZRV_NOEXCEPT;

/*
 * Money to text, right-aligned in `len` bytes at cp, no NUL: a pointer to the first character, or
 * null when there is no room (nothing is written then). 25 bytes hold every value.
 *
 * style  in  the low byte: 1 for a comma before each three digits of the whole number, any other for
 *            none; the bits above it: the decimals, 4 for more than 4 and 2 for 0
 *
 * Dropped decimals round half away from zero, by the last of them alone; a negative value keeps its
 * sign when nothing else is left of it. With commas, the byte before a number of three, six or more
 * such digits becomes a blank, if it is one of the `len`. A null pointer is fatal, null.
 */
ZRV_PRIVATE CS_CHAR *com__mnytochar(CS_MONEY *mp, CS_CHAR *cp, CS_INT len,
                                    CS_INT style) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_CHAR *com__mny4tochar(CS_MONEY4 *m4p, CS_CHAR *cp, CS_INT len,
                                     CS_INT style) ZRV_NOEXCEPT;

/* The same for applications. com_precmnytochar has the decimals on their own: `prec` is put above the low
 * byte of `style`, into whatever stands there. */
ZRV_API CS_CHAR *com_cvtmnytochar(CS_MONEY *mp, CS_CHAR *cp, CS_INT len, CS_INT style) ZRV_NOEXCEPT;
ZRV_API CS_CHAR *com_cvtmny4tochar(CS_MONEY4 *m4p, CS_CHAR *cp, CS_INT len,
                                   CS_INT style) ZRV_NOEXCEPT;
ZRV_API CS_CHAR *com_precmnytochar(CS_MONEY *mp, CS_CHAR *cp, CS_INT len, CS_INT style,
                                   CS_INT prec) ZRV_NOEXCEPT;

/* Between the sizes. com__mnytomny4 returns 4, or -1 with the nearest value. A null pointer is fatal,
 * -1. */
ZRV_PRIVATE void com__mny4tomny(CS_MONEY4 *m4p, CS_MONEY *mp) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_INT com__mnytomny4(CS_MONEY *mp, CS_MONEY4 *m4p) ZRV_NOEXCEPT;

/* Money to integers, rounded half away from zero. NUME_OK; NUME_OVERFLOW with the nearest integer,
 * but with nothing stored for a negative value that goes to an unsigned one. The integer may stand at
 * any address. A null pointer is fatal, NUME_OVERFLOW. */
ZRV_PRIVATE int com__mnytoint(CS_MONEY *mp, CS_INT *ip) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__mnytoint8(CS_MONEY *mp, CS_BIGINT *ip) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__mnytouint(CS_MONEY *mp, CS_UINT *ip) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__mnytouint8(CS_MONEY *mp, CS_UBIGINT *ip) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__mny4toint(CS_MONEY4 *m4p, CS_INT *ip) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__mny4toint8(CS_MONEY4 *m4p, CS_BIGINT *ip) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__mny4touint(CS_MONEY4 *m4p, CS_UINT *ip) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__mny4touint8(CS_MONEY4 *m4p, CS_UBIGINT *ip) ZRV_NOEXCEPT;

/* Integers to money. NUME_OK; NUME_OVERFLOW, which leaves the integer (at most 2 to the 63, less one)
 * as the count of a CS_MONEY, and the nearest value in a CS_MONEY4. A null pointer is fatal,
 * NUME_OVERFLOW. */
ZRV_PRIVATE int com__inttomny(CS_MONEY *mp, CS_INT *ip) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__int8tomny(CS_MONEY *mp, CS_BIGINT *ip) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__uinttomny(CS_MONEY *mp, CS_UINT *ip) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__uint8tomny(CS_MONEY *mp, CS_UBIGINT *ip) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__inttomny4(CS_MONEY4 *m4p, CS_INT *ip) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__int8tomny4(CS_MONEY4 *m4p, CS_BIGINT *ip) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__uinttomny4(CS_MONEY4 *m4p, CS_UINT *ip) ZRV_NOEXCEPT;
ZRV_PRIVATE int com__uint8tomny4(CS_MONEY4 *m4p, CS_UBIGINT *ip) ZRV_NOEXCEPT;

/*
 * Doubles and singles to money, rounded half away from zero.
 *
 * src      in   the number, at any address; null for zero
 * srclen   in   0 for zero; otherwise not looked at
 * dest     out  the value, at any address; after a failure zero, but the nearest value for a number
 *               that is a CS_MONEY and no CS_MONEY4
 * destlen  in   not looked at
 * style    in   no effect
 *
 * Return the length of the value, or -1 when it does not fit or is not a number. A null dest is
 * fatal, -1.
 */
ZRV_PRIVATE CS_INT com__flt8tomny(CS_VOID *src, CS_INT srclen, CS_VOID *dest, CS_INT destlen,
                                  CS_INT style) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_INT com__flt4tomny(CS_VOID *src, CS_INT srclen, CS_VOID *dest, CS_INT destlen,
                                  CS_INT style) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_INT com__flt8tomny4(CS_VOID *src, CS_INT srclen, CS_VOID *dest,
                                   CS_INT style) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_INT com__flt4tomny4(CS_VOID *src, CS_INT srclen, CS_VOID *dest,
                                   CS_INT style) ZRV_NOEXCEPT;

/* Money to doubles and singles: the two words apart, each as a double, and their sum; a CS_MONEY4 is
 * divided by 10000. Lengths and style are not looked at. Return the length of the number. A null
 * pointer is fatal, -1. */
ZRV_PRIVATE CS_INT com__mnytoflt8(CS_VOID *src, CS_INT srclen, CS_VOID *dest, CS_INT destlen,
                                  CS_INT style) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_INT com__mnytoflt4(CS_VOID *src, CS_INT srclen, CS_VOID *dest, CS_INT destlen,
                                  CS_INT style) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_INT com__mny4toflt8(CS_VOID *src, CS_VOID *dest) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_INT com__mny4toflt4(CS_VOID *src, CS_VOID *dest) ZRV_NOEXCEPT;

/* A sign, digits, and whatever follows them. errno: EINVAL, result 0, when no digit comes; ERANGE
 * with the largest or smallest value. zrvatoll takes "-" and then also "+", which wins ("-+5" is
 * 5); zrvatoull takes "+", and "-" is ERANGE, result 0. A null pointer is fatal, 0. */
ZRV_API CS_BIGINT zrvatoll(CS_CHAR *text) ZRV_NOEXCEPT;
ZRV_API CS_UBIGINT zrvatoull(CS_CHAR *text) ZRV_NOEXCEPT;

ZRV_END_DECLS

#endif
