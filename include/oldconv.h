/*
 * oldconv.h - conversions for callers without a context, from before the conversion matrix.
 *
 * A member com_XtoY converts between plain buffers and reports by a length or a small negative number;
 * docs/legacy.md has the table of what exists and from which rule each result comes. Callers test these
 * numbers, so they stay as they are.
 *
 * src      in   the value, at any address; may be null
 * srclen   in   its length in bytes. 0 is a null value; otherwise only text and binary are measured by
 *               it, and a negative length of those is an empty value
 * dest     out  the result, at any address. A null pointer is fatal, 0
 * destlen  in   the capacity in bytes of text and binary; not looked at for types of one width, whose
 *               bytes must be there
 *
 * Returns the length of the value without its padding, its terminator and its header; 0 when src is null
 * or srclen 0 (then nothing was written), and for an empty value; or a COM_OLD_ number. After a failure
 * `dest` may be written in part: a number out of range leaves the nearest value as in the matrix, a text
 * that was cut what had room.
 *
 * The shapes of text destinations:
 *
 *   char       destlen bytes, filled up with blanks. A destlen of -1 is no limit, and nothing is filled
 *   string     the same in destlen - 1 bytes, and a NUL. A destlen below 1 is no limit
 *   ntbstring  the text without trailing blanks and a NUL, destlen bytes at most; no limit likewise
 *   varychar   a CS_SMALLINT length at any address and up to destlen bytes of text. A destlen of -1 is
 *              no limit but for the 32767 that the length can say
 *
 * Binary destinations: `binary` (`bin`) is filled up with zeroes to destlen, and a destlen of 0 or less
 * is no limit; `varybin` is a header and bytes as in varychar. The sources varychar and varybin are such
 * records: a length of 0 or less in the header is a null value as well. Where two spellings are listed
 * they are one function.
 */
#ifndef ZRV_OLDCONV_H
#define ZRV_OLDCONV_H

#include "cspublic.h"

struct char_attrib;
struct cs_type_map;

ZRV_BEGIN_DECLS

#define COM_OLD_OVERFLOW (-1)     /* out of range, or a destination too short */
#define COM_OLD_UNDERFLOW (-2)    /* below the range */
#define COM_OLD_SYNTAX (-3)       /* text that is none of the kind */
#define COM_OLD_NULLCUT (-5)      /* a null value longer than the destination */
#define COM_OLD_DOMAIN (-6)       /* a source that is no value of its type */
#define COM_OLD_BADPRECISION (-7) /* outside 1 to 77 */
#define COM_OLD_BADSCALE (-8)     /* above 77; from num and in com_setnumnull below 0 too */

/*
 * ---- signatures ----
 *
 * precision, scale     in  the shape of a numeric, as comn_i4tonum and its like take them; `dest` has 35
 *                          bytes. What the matrix calls CS_CONV_TRUNCATED comes back as that code
 * fltfmt               in  a printf format with one conversion of a double and no `*` but that of the
 *                          precision, which is 17 then; null for the text of comn_flt8tochar, but with
 *                          the sign of a negative zero. Any other format counts as "%.17g"
 * months, shortmonths  in  12 names each; null for the English ones
 * dateorder_id         in  the order of com__datefromchar_mb; negative for the built-in one
 * style                in  the layout of com__datetochar; without one it is 9
 * chatr                in  the character set of the text; null for the built-in one
 */
#define ZRV_OLD_ARGUMENTS CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen
#define ZRV_OLD(name) ZRV_API CS_INT name(ZRV_OLD_ARGUMENTS) ZRV_NOEXCEPT
#define ZRV_OLD_NUM(name)                                                                          \
  ZRV_API CS_INT name(ZRV_OLD_ARGUMENTS, CS_INT precision, CS_INT scale) ZRV_NOEXCEPT
#define ZRV_OLD_FLOATTEXT(name) ZRV_API CS_INT name(ZRV_OLD_ARGUMENTS, char *fltfmt) ZRV_NOEXCEPT
#define ZRV_OLD_DATETEXT(name)                                                                     \
  ZRV_API CS_INT name(ZRV_OLD_ARGUMENTS, char **shortmonths) ZRV_NOEXCEPT
#define ZRV_OLD_DATETEXT_EX(name)                                                                  \
  ZRV_API CS_INT name(ZRV_OLD_ARGUMENTS, char **shortmonths, CS_INT style) ZRV_NOEXCEPT
#define ZRV_OLD_TEXTDATE(name)                                                                     \
  ZRV_API CS_INT name(ZRV_OLD_ARGUMENTS, char **months, char **shortmonths, int dateorder_id)      \
      ZRV_NOEXCEPT
#define ZRV_OLD_MB(name)                                                                           \
  ZRV_API CS_INT name(ZRV_OLD_ARGUMENTS, struct char_attrib *chatr) ZRV_NOEXCEPT
#define ZRV_OLD_MB_NUM(name)                                                                       \
  ZRV_API CS_INT name(ZRV_OLD_ARGUMENTS, CS_INT precision, CS_INT scale,                           \
                      struct char_attrib *chatr) ZRV_NOEXCEPT
#define ZRV_OLD_MB_TEXTDATE(name)                                                                  \
  ZRV_API CS_INT name(ZRV_OLD_ARGUMENTS, char **months, char **shortmonths, int dateorder_id,      \
                      struct char_attrib *chatr) ZRV_NOEXCEPT

/* ---- destinations that several sources share ---- */

#define ZRV_OLD_TO_INTEGERS(source)                                                                \
  ZRV_OLD(com_##source##toi1);                                                                     \
  ZRV_OLD(com_##source##toi2);                                                                     \
  ZRV_OLD(com_##source##toi4);                                                                     \
  ZRV_OLD(com_##source##tobit)
#define ZRV_OLD_TO_FLOATS(source)                                                                  \
  ZRV_OLD(com_##source##toflt4);                                                                   \
  ZRV_OLD(com_##source##toflt8)
#define ZRV_OLD_TO_MONEY(source)                                                                   \
  ZRV_OLD(com_##source##tomoney);                                                                  \
  ZRV_OLD(com_##source##tomny);                                                                    \
  ZRV_OLD(com_##source##tomny4)
#define ZRV_OLD_TO_DATES(source, signature)                                                        \
  signature(com_##source##todatetime);                                                             \
  signature(com_##source##todate);                                                                 \
  signature(com_##source##todate4)
#define ZRV_OLD_TO_TEXT(source, signature)                                                         \
  signature(com_##source##tochar);                                                                 \
  signature(com_##source##tostring);                                                               \
  signature(com_##source##tontbstring);                                                            \
  signature(com_##source##tovarychar)
#define ZRV_OLD_TO_BYTES(source)                                                                   \
  ZRV_OLD(com_##source##tobinary);                                                                 \
  ZRV_OLD(com_##source##tobin);                                                                    \
  ZRV_OLD(com_##source##tovarybin)
#define ZRV_OLD_TO_MB(source)                                                                      \
  ZRV_OLD_MB(com_mb_##source##toi1);                                                               \
  ZRV_OLD_MB(com_mb_##source##toi2);                                                               \
  ZRV_OLD_MB(com_mb_##source##toi4);                                                               \
  ZRV_OLD_MB(com_mb_##source##toflt4);                                                             \
  ZRV_OLD_MB(com_mb_##source##toflt8);                                                             \
  ZRV_OLD_MB(com_mb_##source##tomoney);                                                            \
  ZRV_OLD_MB(com_mb_##source##tomny4);                                                             \
  ZRV_OLD_MB_NUM(com_mb_##source##tonum);                                                          \
  ZRV_OLD_MB_TEXTDATE(com_mb_##source##todatetime);                                                \
  ZRV_OLD_MB_TEXTDATE(com_mb_##source##todate4)

/* ---- what each kind of source converts to ---- */

#define ZRV_OLD_TO_NUMBERS(source)                                                                 \
  ZRV_OLD_TO_INTEGERS(source);                                                                     \
  ZRV_OLD_TO_FLOATS(source);                                                                       \
  ZRV_OLD_NUM(com_##source##tonum)
#define ZRV_OLD_FROM_NUMBER(source, text_signature)                                                \
  ZRV_OLD_TO_NUMBERS(source);                                                                      \
  ZRV_OLD_TO_MONEY(source);                                                                        \
  ZRV_OLD_TO_BYTES(source);                                                                        \
  ZRV_OLD_TO_TEXT(source, text_signature)
#define ZRV_OLD_FROM_BIT(source)                                                                   \
  ZRV_OLD_TO_NUMBERS(source);                                                                      \
  ZRV_OLD_TO_BYTES(source);                                                                        \
  ZRV_OLD_TO_TEXT(source, ZRV_OLD)
#define ZRV_OLD_FROM_TEXT(source)                                                                  \
  ZRV_OLD_FROM_NUMBER(source, ZRV_OLD);                                                            \
  ZRV_OLD_TO_DATES(source, ZRV_OLD_TEXTDATE);                                                      \
  ZRV_OLD_TO_MB(source)
#define ZRV_OLD_FROM_BINARY(source)                                                                \
  ZRV_OLD_FROM_NUMBER(source, ZRV_OLD);                                                            \
  ZRV_OLD_TO_DATES(source, ZRV_OLD)
#define ZRV_OLD_FROM_DATE(source)                                                                  \
  ZRV_OLD_TO_DATES(source, ZRV_OLD);                                                               \
  ZRV_OLD_TO_BYTES(source);                                                                        \
  ZRV_OLD_TO_TEXT(source, ZRV_OLD_DATETEXT)

/*
 * ---- the members ----
 *
 * numbers to text  whole, or a single "*" with its padding and COM_OLD_OVERFLOW; where not even that has
 *                  room, nothing but the terminator or the header. num is cut instead, COM_OLD_OVERFLOW
 * integers         below the range COM_OLD_UNDERFLOW, but COM_OLD_OVERFLOW into the tiny integer
 * text to numbers  as com__chtoi4_mb, com__mnyfromchar_mb and their like read it. From varychar the text
 *                  behind the header is `srclen` bytes, whatever the header says (but for num)
 * text to floats   what passes floatcheck up to the first NUL, as strtod reads its start. The text must be
 *                  a number there: COM_OLD_SYNTAX leaves `dest` as it was. White space behind it is
 *                  dropped, and nothing is 0. COM_OLD_UNDERFLOW: zero or a subnormal CS_FLOAT is all that
 *                  is left of the number, and stored. From a character set of more than 512 bytes of text it
 *                  takes memory; CS_MEM_ERROR, which is COM_OLD_OVERFLOW
 * text to bit      digits and then blanks: 1 unless all digits are 0. After COM_OLD_SYNTAX `dest` is as it
 *                  was. A negative srclen is fatal, 0
 * text to binary   hexadecimal digits, as comn_chartobin reads them
 * text to dates    as style 0 reads; after a failure `dest` is as it was
 * binary           to types of one width the bytes as they are, filled up with zeroes; to bit, whether
 *                  the first byte is not 0; to num as comn_bintonum does; to text two hexadecimal digits a
 *                  byte. Digits that were cut, COM_OLD_OVERFLOW, are not padded and have no terminator;
 *                  varychar has -1 in its header then. A destlen of 0 is no limit of digits
 * dates to text    as com_date2char, which also tells the failures; com_date2char is char from date. Every
 *                  negative destlen is no limit
 */
ZRV_OLD_FROM_NUMBER(i1, ZRV_OLD);
ZRV_OLD_FROM_NUMBER(i2, ZRV_OLD);
ZRV_OLD_FROM_NUMBER(i4, ZRV_OLD);
ZRV_OLD_FROM_NUMBER(flt4, ZRV_OLD_FLOATTEXT);
ZRV_OLD_FROM_NUMBER(flt8, ZRV_OLD_FLOATTEXT);
ZRV_OLD_FROM_NUMBER(money, ZRV_OLD);
ZRV_OLD_FROM_NUMBER(mny4, ZRV_OLD);
ZRV_OLD_FROM_NUMBER(num, ZRV_OLD);
ZRV_OLD_FROM_BIT(bit);
ZRV_OLD_FROM_TEXT(char);
ZRV_OLD_FROM_TEXT(varychar);
ZRV_OLD_FROM_BINARY(bin);
ZRV_OLD_FROM_BINARY(varybin);
ZRV_OLD_FROM_DATE(date);
ZRV_OLD_FROM_DATE(date4);

/* A date in another style; com_date2char_ex is the one to char. */
ZRV_OLD_DATETEXT_EX(com_datetochar_ex);
ZRV_OLD_DATETEXT_EX(com_datetostring_ex);
ZRV_OLD_DATETEXT_EX(com_datetontbstring_ex);
ZRV_OLD_DATETEXT_EX(com_datetovarychar_ex);

/* `srclen` bytes of any kind to binary; the members above to binary are these with the width of their
 * source. What is longer than its room is cut, COM_OLD_OVERFLOW. */
ZRV_OLD(com_anytobinary);
ZRV_OLD(com_anytovarybin);

/*
 * ---- null values ----
 *
 * Write what stands for NULL.
 *
 * dest     out  the destination, as above
 * destlen  in   as above
 * value    in   the value; null for the zero value of the type
 * len      in   its length in bytes; 0 or less for the zero value
 *
 * Types of one width take so many bytes of the value, or zeroes behind a shorter one, and return the
 * width. Text and binary return the length that was written, without padding.
 *
 * char, binary        the zero value is nothing but padding. A value longer than destlen (-1: no limit) is
 *                     cut, COM_OLD_NULLCUT
 * string, ntbstring   the zero value is an empty text. A value longer than destlen - 1 leaves its first
 *                     destlen - 2 bytes and a NUL as byte destlen - 1, COM_OLD_NULLCUT; the byte between
 *                     them stays as it was
 * varychar, varybin   destlen is not looked at: `dest` has room for the value and its header. More than
 *                     32767 bytes are cut, COM_OLD_NULLCUT
 * num                 35 bytes; the zero value has the shape that is asked for, and another value is
 *                     converted by com_numtonum. COM_OLD_BADPRECISION, COM_OLD_BADSCALE, nothing written
 */
#define ZRV_OLD_NULL(type)                                                                         \
  ZRV_API CS_INT com_set##type##null(CS_BYTE *dest, CS_INT destlen, CS_BYTE *value, CS_INT len)    \
      ZRV_NOEXCEPT
ZRV_OLD_NULL(i1);
ZRV_OLD_NULL(i2);
ZRV_OLD_NULL(i4);
ZRV_OLD_NULL(bit);
ZRV_OLD_NULL(flt4);
ZRV_OLD_NULL(flt8);
ZRV_OLD_NULL(money);
ZRV_OLD_NULL(mny4);
ZRV_OLD_NULL(datetime);
ZRV_OLD_NULL(datetime4);
ZRV_OLD_NULL(char);
ZRV_OLD_NULL(string);
ZRV_OLD_NULL(ntbstring);
ZRV_OLD_NULL(varychar);
ZRV_OLD_NULL(binary);
ZRV_OLD_NULL(varybin);
ZRV_API CS_INT com_setnumnull(CS_BYTE *dest, CS_INT destlen, CS_BYTE *value, CS_INT len,
                              CS_INT precision, CS_INT scale) ZRV_NOEXCEPT;

/*
 * ---- money ----
 *
 * Arithmetic under its old names: each is the internal operation of numeric.h that its comment there
 * tells, and returns what that returns, so a status is NUME_OK, NUME_OVERFLOW or NUME_DIVZERO and no
 * CS_RETCODE. com_mnydivide is com__mnydiv; the comparisons return -1, 0 or 1.
 */
ZRV_API int com_mnycopy(CS_MONEY *mp1, CS_MONEY *mp2) ZRV_NOEXCEPT;
ZRV_API int com_mnyminus(CS_MONEY *imp, CS_MONEY *omp) ZRV_NOEXCEPT;
ZRV_API int com_mnyinc(CS_MONEY *mp) ZRV_NOEXCEPT;
ZRV_API int com_mnydec(CS_MONEY *mp) ZRV_NOEXCEPT;
ZRV_API int com_mnyadd(CS_MONEY *add1p, CS_MONEY *add2p, CS_MONEY *sump) ZRV_NOEXCEPT;
ZRV_API int com_mnysub(CS_MONEY *minp, CS_MONEY *subp, CS_MONEY *difp) ZRV_NOEXCEPT;
ZRV_API int com_mnymul(CS_MONEY *m1, CS_MONEY *m2, CS_MONEY *m3) ZRV_NOEXCEPT;
ZRV_API int com_mnydivide(CS_MONEY *m1, CS_MONEY *m2, CS_MONEY *m3) ZRV_NOEXCEPT;
ZRV_API int com_mnyscale(CS_MONEY *mp, CS_UINT mpier, CS_INT add) ZRV_NOEXCEPT;
ZRV_API int com_mnydown(CS_MONEY *mp, CS_INT dvsr) ZRV_NOEXCEPT;
ZRV_API int com_mnyinit(CS_MONEY *mp, CS_INT trim) ZRV_NOEXCEPT;
ZRV_API int com_mnyndigit(CS_MONEY *mp, CS_CHAR *value) ZRV_NOEXCEPT;
ZRV_API int com_mnycmp(CS_MONEY *m1, CS_MONEY *m2) ZRV_NOEXCEPT;
ZRV_API int com_mnyzero(CS_MONEY *mnyptr) ZRV_NOEXCEPT;
ZRV_API void com_mnymaxpos(CS_MONEY *mp) ZRV_NOEXCEPT;
ZRV_API void com_mnymaxneg(CS_MONEY *mp) ZRV_NOEXCEPT;
ZRV_API void com_mnyxdiv(CS_MONEY *num, CS_MONEY *den, CS_MONEY *res) ZRV_NOEXCEPT;
ZRV_PRIVATE void com__mny16div(CS_MONEY *num, CS_INT den, CS_MONEY *res) ZRV_NOEXCEPT;

ZRV_API int com_mny4copy(CS_MONEY4 *mp1, CS_MONEY4 *mp2) ZRV_NOEXCEPT;
ZRV_API int com_mny4minus(CS_MONEY4 *imp, CS_MONEY4 *omp) ZRV_NOEXCEPT;
ZRV_API int com_mny4add(CS_MONEY4 *add1p, CS_MONEY4 *add2p, CS_MONEY4 *sump) ZRV_NOEXCEPT;
ZRV_API int com_mny4sub(CS_MONEY4 *minp, CS_MONEY4 *subp, CS_MONEY4 *difp) ZRV_NOEXCEPT;
ZRV_API int com_mny4mul(CS_MONEY4 *m1, CS_MONEY4 *m2, CS_MONEY4 *m3) ZRV_NOEXCEPT;
ZRV_API int com_mny4divide(CS_MONEY4 *m1, CS_MONEY4 *m2, CS_MONEY4 *m3) ZRV_NOEXCEPT;
ZRV_API int com_mny4cmp(CS_MONEY4 *m1, CS_MONEY4 *m2) ZRV_NOEXCEPT;
ZRV_API int com_mny4zero(CS_MONEY4 *mnyptr) ZRV_NOEXCEPT;

/* ---- small services; a null pointer to bytes that would be read or written is fatal ---- */

/* Blanks from `bytes_filled` up to `destlen`. */
ZRV_PRIVATE void com__padchar(CS_BYTE *dest, CS_INT destlen, CS_INT bytes_filled) ZRV_NOEXCEPT;

/* Blanks from `bytes_filled` up to `destlen` - 1, and there a NUL, also where the text is longer; with a
 * `destlen` below 1 only the NUL behind the text. */
ZRV_PRIVATE void com__padstring(CS_BYTE *dest, CS_INT destlen, CS_INT bytes_filled) ZRV_NOEXCEPT;

/* Removes blanks from the end of a text and puts a NUL there; the first byte stays even if it is a blank.
 * Returns the length that is left. */
ZRV_PRIVATE CS_INT com__padntbstring(CS_BYTE *dest, CS_INT bytes_filled) ZRV_NOEXCEPT;

/* Copies `cnt` bytes, which may overlap; a count below 1 copies nothing. */
ZRV_API void com_bmove(CS_VOID *from, CS_VOID *to, CS_INT cnt) ZRV_NOEXCEPT;

/* Clears `length` bytes; a length below 1 clears nothing. */
ZRV_PRIVATE void com__bzero(CS_VOID *cp, CS_INT length) ZRV_NOEXCEPT;

/* Writes the byte at nptr as two lower-case hexadecimal digits at hptr, without a terminator. */
ZRV_API void com_prhex(CS_BYTE *nptr, CS_BYTE *hptr) ZRV_NOEXCEPT;

/* Writes two digits for each byte into `destlen` bytes, of which the last may stay as it was; 0 or less
 * is no limit. Returns the digits written, or COM_OLD_OVERFLOW when bytes are left over. */
ZRV_PRIVATE CS_INT com__bin2hex(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest,
                                CS_INT destlen) ZRV_NOEXCEPT;

/* comn__hex2binbytes (csintrn.h) under its old name, for which an empty text is none to trim and no
 * fault. */
ZRV_PRIVATE void com__hex2binbytes(CS_CHAR **src, CS_INT *srclen) ZRV_NOEXCEPT;

/* Moves a run of bytes by one hexadecimal digit toward its end: 0 comes in in front, and what was the
 * last digit is lost. So digits that were paired from the left are paired from the right. */
ZRV_PRIVATE void com__shift1(CS_BYTE *cp, CS_INT length) ZRV_NOEXCEPT;

/*
 * Whether a text has the shape of a floating-point number; 0 if it has, and 1 if not.
 *
 * str   in  the text, NUL-terminated
 * tmap  in  says which bytes are digits, by CS_CTYPE_DIGIT; null for com_isdigit
 *
 * A sign is the first byte of all, blanks too, or comes in the exponent, once and in front of its digits.
 * "e" or "E" comes once and after a digit, a point once, in the exponent too. Blanks and tabs stand in
 * front of the digits and the point, or behind the number. There is a digit, and one behind the sign of an
 * exponent.
 */
ZRV_API int floatcheck(char *str, struct cs_type_map *tmap) ZRV_NOEXCEPT;

ZRV_END_DECLS

#endif
