/*
 * castctx.h - conversions between values that stand as __CONSTANT descriptors (csintrn.h), under one
 * CAST_CONTEXT: comnb_<source>to<destination>.
 *
 * The caller picks the member; there is no matrix. A member computes what its counterpart of the
 * comn_ family does (comnlib.h), and reports by its result alone. docs/bridge.md tells member by
 * member from which rule a result comes.
 *
 * Nothing is checked on entry: every pointer must be valid and src->value and dest->value must hold
 * the types that the member's name says, at any address. dest->type is read by comnb_anytofixed alone.
 */
#ifndef ZRV_CASTCTX_H
#define ZRV_CASTCTX_H

#include "charset.h"
#include "csintrn.h"
#include "cspublic.h"

ZRV_BEGIN_DECLS

/* What conversions are told beside their two values. All is the caller's and only read. */
typedef struct _castcontext {
  CsConvertTbl ctxcvttbl;   /* carried along */
  CS_INT format;            /* bits of CS_DATAFMT.format, and CAST_DFMT_PADHEAD */
  CS_INT style;             /* of dates, from text and to text (datetime.h) */
  CS_INT flags;             /* CAST_ bits below */
  CS_CHAR **months;         /* 12 names; may be null */
  CS_CHAR **shrtmonths;     /* 12 short names; may be null */
  CS_INT dateorder;         /* of day, month and year in text (datetime.h) */
  CHAR_ATTRIB *char_attrib; /* the character set of text; null takes bytes as they are */
  CS_CONV_FUNC cfn;         /* carried along */
} CAST_CONTEXT;

/* A bit of CAST_CONTEXT.format: the blanks of CS_DFMT_PADBLANK go to the head of the value, over what
 * stands there. */
#define CAST_DFMT_PADHEAD 8

/* A bit of CAST_CONTEXT.flags: an exact numeric may lose digits of its fraction, with success. Text is
 * rounded then. */
#define CAST_MAY_DROP_DIGITS 1

/* Codes of __CONSTANT.type whose values comnb_anytofixed tests. */
#define CAST_TYPE_FLT4 59
#define CAST_TYPE_FLT8 62

/*
 * Every member:
 *
 * context  in      see above
 * src      in      `len` bytes at `value`; of fixed types `len` is not looked at. A numeric has
 *                  `prec` and `scale`, and the sign byte and magnitude of its precision at `value`:
 *                  not more of `len` counts than that, and where `len` is less, no more than `len`
 * dest     in,out  `maxlen` is the capacity at `value` where that can be short, and becomes or bounds
 *                  `len`, the length of the result. A numeric has the wanted `prec` and `scale`
 *
 * Returns CS_SUCCEED or a CS_CONV_ status; `len` is set in either case unless something else stands
 * here. A status of a service that no member knows is fatal, CS_CONV_OVERFLOW.
 *
 * to fixed types  `len` is the width, `maxlen` is not looked at. As from the same source in comnlib.h, the
 *                 nearest value stored out of range. Deliberate: between integers, both ends of the range
 *                 are CS_CONV_OVERFLOW; there is no CS_CONV_UNDERFLOW.
 * to num          `len` is `maxlen`. CS_CONV_BADPRECISION (not 1 to 77), CS_CONV_BADSCALE (above 77),
 *                 and CS_CONV_OVERFLOW if the capacity is below the length of the precision, all with
 *                 nothing written; CS_CONV_OVERFLOW beyond the precision, and the value is not to be
 *                 used. CS_CONV_TRUNCATED when digits of a fraction are lost, unless flags have
 *                 CAST_MAY_DROP_DIGITS; of text the value is not to be used then.
 * numbers to char whole or not at all: without room `len` is `maxlen`, nothing is written, and the
 *                 result is CS_CONV_OVERFLOW, also when only a terminator that `format` asks for lacks
 *                 room. Money has dest->prec decimals, two for 0 and four at most. Then padding.
 * to varchar      the same bytes as to char, never padded or terminated; varying text has no header here
 * from num        CS_CONV_DOMAIN for a precision outside 1 to 77 or a scale above 77
 * from bit        CS_CONV_DOMAIN for another value than 0 and 1, with nothing written, `len` neither; to
 *                 money too
 * from char and varchar
 *                 Text in the set `char_attrib`. The two differ where their counterparts do. To integers
 *                 and bit `len` is the width whatever the result, to num `maxlen`; to all other types it
 *                 is 0 after CS_CONV_SYNTAX. To dates the text is read in the order, the style and with
 *                 the names of the context. To text it is cut at a character, CS_CONV_TRUNCATED; char
 *                 to char obeys CS_DFMT_ESCQUOTE, and loses its last byte to the NUL of
 *                 CS_DFMT_NULLTERM when it fills the capacity, CS_CONV_TRUNCATED.
 * dates to char   laid out at once in the capacity, in the style of the context. CS_CONV_TRUNCATED: the
 *                 text was cut, `len` is `maxlen`. CS_CONV_DATEBUFFER: an unknown style,
 *                 CS_CONV_SYNTAX: a name is missing, both with `len` 0. Then padding.
 * between dates   as in comnlib.h
 *
 * hexadecimal, of the bits of a 32-bit or 64-bit integer:
 * to hex          the last byte of the capacity becomes NUL; in front of it the digits, upper case,
 *                 filled up with "0" on the left; `len` is `maxlen`. CS_CONV_OVERFLOW: the low digits
 *                 fill the capacity and more are left. CS_CONV_SYNTAX: a capacity below 2 or a null
 *                 dest->value; nothing is written.
 * from hex        digits of either case behind "0x" or nothing, white space around them; no digits are 0.
 *                 CS_CONV_SYNTAX: more than 255 bytes or another character, the value left alone.
 *                 CS_CONV_OVERFLOW: more bits than the type has, its largest value stored. Deliberate:
 *                 comnb_hextoui8 is comnb_hextoi8, whose largest value is that of i8.
 *
 * raw:
 * anytovar        copies what fits: CS_CONV_TRUNCATED when that is less than src->len
 * anytofixed      the same, then pads with comnb__padbin what is not cut. With a dest->type of
 *                 CAST_TYPE_FLT4 or CAST_TYPE_FLT8, a result that holds the whole type and is infinite or
 *                 not a number is CS_CONV_DOMAIN, in place.
 * bintobit        1 if the first byte is not 0
 * bintonum        up to 33 bytes of the capacity as they stand. CS_CONV_TRUNCATED, CS_CONV_UNDERFLOW: the
 *                 source is longer or shorter than that. The shape is tested as for num.
 * bin to dates    the bytes as they stand; the statuses of comn_bintofixed, and CS_CONV_DOMAIN with `len`
 *                 0 for a datea or timea out of range
 */
#define ZRV_CAST_NUMBERS(MEMBER, source)                                                           \
  MEMBER(source, bit)                                                                              \
  MEMBER(source, i1)                                                                               \
  MEMBER(source, i2)                                                                               \
  MEMBER(source, i4)                                                                               \
  MEMBER(source, i8)                                                                               \
  MEMBER(source, ui2)                                                                              \
  MEMBER(source, ui4)                                                                              \
  MEMBER(source, ui8)                                                                              \
  MEMBER(source, flt4)                                                                             \
  MEMBER(source, flt8)                                                                             \
  MEMBER(source, num)                                                                              \
  MEMBER(source, mny4)                                                                             \
  MEMBER(source, money)                                                                            \
  MEMBER(source, char)                                                                             \
  MEMBER(source, varchar)

/* clang-format off */

/* All members, a line for each source: MEMBER(source, destination). */
#define ZRV_CAST_MEMBERS(MEMBER) \
  ZRV_CAST_NUMBERS(MEMBER, i1) \
  ZRV_CAST_NUMBERS(MEMBER, i2) \
  ZRV_CAST_NUMBERS(MEMBER, i4) \
  ZRV_CAST_NUMBERS(MEMBER, i8) \
  ZRV_CAST_NUMBERS(MEMBER, ui2) \
  ZRV_CAST_NUMBERS(MEMBER, ui4) \
  ZRV_CAST_NUMBERS(MEMBER, ui8) \
  ZRV_CAST_NUMBERS(MEMBER, flt4) \
  ZRV_CAST_NUMBERS(MEMBER, flt8) \
  ZRV_CAST_NUMBERS(MEMBER, bit) \
  ZRV_CAST_NUMBERS(MEMBER, mny4) \
  ZRV_CAST_NUMBERS(MEMBER, money) \
  ZRV_CAST_NUMBERS(MEMBER, num) \
  ZRV_CAST_NUMBERS(MEMBER, char) \
  MEMBER(char, date4) MEMBER(char, datetime) MEMBER(char, bigdatetime) MEMBER(char, datea) MEMBER(char, timea) MEMBER(char, bigtime) \
  ZRV_CAST_NUMBERS(MEMBER, varchar) \
  MEMBER(varchar, date4) MEMBER(varchar, datetime) \
  MEMBER(date, date) MEMBER(date, date4) MEMBER(date, datea) MEMBER(date, timea) MEMBER(date, bigdatetime) MEMBER(date, bigtime) MEMBER(date, char) MEMBER(date, varchar) \
  MEMBER(date4, date) MEMBER(date4, date4) MEMBER(date4, datea) MEMBER(date4, timea) MEMBER(date4, bigdatetime) MEMBER(date4, bigtime) MEMBER(date4, char) MEMBER(date4, varchar) \
  MEMBER(datea, date) MEMBER(datea, date4) MEMBER(datea, datea) MEMBER(datea, bigdatetime) MEMBER(datea, char) \
  MEMBER(timea, date) MEMBER(timea, date4) MEMBER(timea, timea) MEMBER(timea, bigdatetime) MEMBER(timea, bigtime) MEMBER(timea, char) \
  MEMBER(bigdatetime, char) MEMBER(bigdatetime, varchar) \
  MEMBER(bigdate, time4) MEMBER(bigdate, date) MEMBER(bigdate, datea) MEMBER(bigdate, timea) MEMBER(bigdate, bigdate) MEMBER(bigdate, bigtime) \
  MEMBER(bigtime, char) MEMBER(bigtime, bigdatetime) MEMBER(bigtime, date4) MEMBER(bigtime, date) MEMBER(bigtime, timea) MEMBER(bigtime, bigtime) \
  MEMBER(i4, hex) MEMBER(i8, hex) MEMBER(ui4, hex) MEMBER(ui8, hex) \
  MEMBER(hex, i4) MEMBER(hex, i8) MEMBER(hex, ui4) MEMBER(hex, ui8) \
  MEMBER(any, fixed) MEMBER(any, var) \
  MEMBER(bin, bit) MEMBER(bin, num) MEMBER(bin, date) MEMBER(bin, datea) MEMBER(bin, timea) MEMBER(bin, bigdatetime) MEMBER(bin, bigtime)

/* clang-format on */

#define ZRV_CAST(source, destination)                                                              \
  ZRV_API CS_RETCODE comnb_##source##to##destination(CAST_CONTEXT *context, __CONSTANT *src,       \
                                                     __CONSTANT *dest) ZRV_NOEXCEPT;
ZRV_CAST_MEMBERS(ZRV_CAST)
#undef ZRV_CAST

/*
 * Padding: the end of a text or binary result, of which dest->len bytes stand at dest->value.
 *
 * comnb__padchar  in this order: CS_CONV_OVERFLOW, nothing written, when maxlen is below `len`, or equal
 *                 to it with CS_DFMT_NULLTERM. CS_DFMT_PADNULL: CS_CONV_PADCONFLICT with CS_DFMT_PADBLANK,
 *                 else the rest becomes NUL and `len` maxlen. CS_DFMT_PADBLANK: CS_CONV_PADCONFLICT with
 *                 both CAST_DFMT_PADHEAD and CS_DFMT_NULLTERM; else as many blanks as there is room for
 *                 behind the value, at its end or, with CAST_DFMT_PADHEAD, over its head; with
 *                 CS_DFMT_NULLTERM the last byte becomes NUL; `len` is maxlen. CS_DFMT_NULLTERM alone:
 *                 a NUL, which `len` counts. CS_SUCCEED.
 * comnb__padbin   the rest becomes NUL with CS_DFMT_PADNULL, else blanks with CS_DFMT_PADBLANK, and `len`
 *                 maxlen; without either bit nothing happens. CS_SUCCEED always.
 */
ZRV_PRIVATE CS_RETCODE comnb__padchar(CAST_CONTEXT *context, __CONSTANT *dest) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE comnb__padbin(CAST_CONTEXT *context, __CONSTANT *dest) ZRV_NOEXCEPT;

/* Conversion between character sets under a CAST_CONTEXT, which has one set alone: there is none. A call
 * is fatal, CS_CONV_OVERFLOW. */
ZRV_PRIVATE CS_RETCODE comb__intl_xlate(CAST_CONTEXT *context, __CONSTANT *src,
                                        __CONSTANT *dest) ZRV_NOEXCEPT;

ZRV_END_DECLS

#endif
