/*
 * comfou.h - table-driven character conversion: ten character sets, each to each where it makes sense,
 * and the transcoders between UTF-8 and UTF-16.
 *
 * It needs no installation, allocates nothing and knows the sets by their numbers. The conversion of
 * any set into any other is comn_charset_convert in comloc.h.
 */
#ifndef ZRV_COMFOU_H
#define ZRV_COMFOU_H

#include "csintrn.h"

ZRV_BEGIN_DECLS

/* The bits of a CS_XLATE_FUNC's result. */
#define COM_FOU_BADCHAR 1  /* a character had no counterpart and was replaced */
#define COM_FOU_OVERFLOW 2 /* the destination was too short */

/* What a transcoder returns for text that is no UTF-8 or UTF-16. */
#define COM_FOU_INVALID 4

/* CS_FOU_FUNCS.xlate_type */
#define COM_FOU_NONE 0  /* no conversion exists */
#define COM_FOU_COPY 1  /* the sets are the same */
#define COM_FOU_ASCII 2 /* only the ASCII part survives */
#define COM_FOU_MAP 3   /* a real mapping */

/*
 * Converts text of one set into another.
 *
 * src    in   the text, at any address; two functions change it, see below
 * slen   in   its length in bytes; may be 0, not negative
 * dest   out  the converted text, never terminated; must not overlap the source
 * dlen   in   bytes at `dest`; may be 0, not negative
 * sused  out  bytes of the source that were taken
 * dused  out  bytes that were written
 *
 * Never more than the smaller of `slen` and `dlen` is read or written. Returns a set of bits:
 * COM_FOU_BADCHAR, COM_FOU_OVERFLOW when `dlen` is smaller than `slen`, or 0. A character without a
 * counterpart becomes as many "?" as it has bytes.
 */
typedef int (*CS_XLATE_FUNC)(CS_BYTE *src, int slen, CS_BYTE *dest, int dlen, int *sused,
                             int *dused);

/* A cell of the table. */
typedef struct _cs_fou_funcs {
  CS_INT csid;              /* the destination's set */
  CS_INT xlate_type;        /* COM_FOU_ */
  CS_XLATE_FUNC xlate_func; /* null in cells of COM_FOU_NONE and COM_FOU_COPY */
} CS_FOU_FUNCS;

#define COM_FOU_SETS 10

/* A row of the table. */
typedef struct _cs_fou_xlt_map {
  CS_INT csid; /* the source's set */
  CS_FOU_FUNCS fou_funcs[COM_FOU_SETS];
} CS_FOU_XLT_MAP;

/* Rows and columns are ascii_8 (0), iso_1 (1), cp850 (2), cp437 (3), roman8 (4), mac (5), eucjis (140),
 * sjis (141), deckanji (142), zrvchar (255). */
extern ZRV_PRIVATE const CS_FOU_XLT_MAP Com_fou_xlt_map[COM_FOU_SETS];

/* ---- single-byte sets ---- */

#define ZRV_XLATE(name)                                                                            \
  ZRV_PRIVATE int name(CS_BYTE *src, int slen, CS_BYTE *dest, int dlen, int *sused, int *dused)    \
      ZRV_NOEXCEPT

/* Copies ASCII; every byte above 127 has no counterpart. */
ZRV_XLATE(com__fou_ascii8_tofrom_1byte);

/* Writes nothing. Both counts become the number of bytes before the first NUL, at most the larger of
 * `slen` and `dlen`: so many bytes must be readable at `src`, or a NUL must end them. `dest` is not
 * looked at. */
ZRV_XLATE(com__fou_caseswap);

/* A byte goes through the map of the function's name, told below. */
ZRV_XLATE(com__fou_iso1_to_cp850);
ZRV_XLATE(com__fou_iso1_to_cp437);
ZRV_XLATE(com__fou_iso1_to_roman8);
ZRV_XLATE(com__fou_iso1_to_mac);
ZRV_XLATE(com__fou_cp850_to_iso1);
ZRV_XLATE(com__fou_cp850_to_cp437);
ZRV_XLATE(com__fou_cp850_to_roman8);
ZRV_XLATE(com__fou_cp850_to_mac);
ZRV_XLATE(com__fou_cp437_to_iso1);
ZRV_XLATE(com__fou_cp437_to_cp850);
ZRV_XLATE(com__fou_cp437_to_roman8);
ZRV_XLATE(com__fou_cp437_to_mac);
ZRV_XLATE(com__fou_roman8_to_iso1);
ZRV_XLATE(com__fou_roman8_to_cp850);
ZRV_XLATE(com__fou_roman8_to_cp437);
ZRV_XLATE(com__fou_roman8_to_mac);
ZRV_XLATE(com__fou_mac_to_iso1);
ZRV_XLATE(com__fou_mac_to_cp850);
ZRV_XLATE(com__fou_mac_to_cp437);
ZRV_XLATE(com__fou_mac_to_roman8);

/* The maps. An entry of 0 means no counterpart. Bytes below 128 stay as they are. */

/* From 155 on; the bytes 128 to 154 are the same in both sets. */
extern ZRV_PRIVATE const CS_BYTE Hi_cp437_to_cp850[101];
extern ZRV_PRIVATE const CS_BYTE Hi_cp850_to_cp437[101];

/* From 128 on. */
extern ZRV_PRIVATE const CS_BYTE Hi_cp437_to_iso1[128];
extern ZRV_PRIVATE const CS_BYTE Hi_cp437_to_roman8[128];
extern ZRV_PRIVATE const CS_BYTE Hi_cp437_to_mac[128];
extern ZRV_PRIVATE const CS_BYTE Hi_cp850_to_iso1[128];
extern ZRV_PRIVATE const CS_BYTE Hi_cp850_to_roman8[128];
extern ZRV_PRIVATE const CS_BYTE Hi_cp850_to_mac[128];

/* From 160 on, the last one from 176 on; the bytes from 128 up to there have no counterpart. */
extern ZRV_PRIVATE const CS_BYTE Hi_iso1_to_cp437[96];
extern ZRV_PRIVATE const CS_BYTE Hi_iso1_to_cp850[96];
extern ZRV_PRIVATE const CS_BYTE Hi_iso1_to_roman8[96];
extern ZRV_PRIVATE const CS_BYTE Hi_iso1_to_mac[96];
extern ZRV_PRIVATE const CS_BYTE Hi_roman8_to_iso1[96];
extern ZRV_PRIVATE const CS_BYTE Hi_roman8_to_cp850[96];
extern ZRV_PRIVATE const CS_BYTE Hi_roman8_to_mac[96];
extern ZRV_PRIVATE const CS_BYTE Hi_roman8_to_cp437[80];

/* From 128 on; the bytes above 216 have no counterpart. */
extern ZRV_PRIVATE const CS_BYTE Hi_mac_to_iso1[89];
extern ZRV_PRIVATE const CS_BYTE Hi_mac_to_cp850[89];
extern ZRV_PRIVATE const CS_BYTE Hi_mac_to_cp437[89];
extern ZRV_PRIVATE const CS_BYTE Hi_mac_to_roman8[89];

/* ---- Japanese sets ---- */

/*
 * These go character by character. Where a character of several bytes does not fit what is left of the
 * smaller of the two lengths they stop before it: the counts then leave it out. An invalid character
 * is replaced like one without a counterpart.
 *
 * com__fou_eucjis_to_deckanji and com__fou_eucjis_to_sjis change their source: a three-byte character
 * (0x8F) is replaced by three "?", but reading goes on at its second byte, which is raised by 2 in
 * place. So from there on the source is read two bytes behind what the counts say.
 */
ZRV_XLATE(com__fou_deckanji_to_ascii8);
ZRV_XLATE(com__fou_deckanji_to_eucjis);
ZRV_XLATE(com__fou_deckanji_to_sjis);
ZRV_XLATE(com__fou_eucjis_to_ascii8);
ZRV_XLATE(com__fou_eucjis_to_deckanji);
ZRV_XLATE(com__fou_eucjis_to_sjis);
ZRV_XLATE(com__fou_sjis_to_ascii8);
ZRV_XLATE(com__fou_sjis_to_eucjis_deckanj); /* the two sets agree on these characters */

/* ---- UTF-8 and UTF-16 ---- */

/*
 * The transcoders. UTF-16 is in host byte order; all lengths are in bytes, and text may stand at any
 * address.
 *
 * src             in   the text
 * slen            in   its length; not negative
 * dest            out  the converted text, never terminated; must not overlap the source
 * dlen            in   bytes at `dest`; not negative
 * sused           out  bytes of the source that were taken, whole characters; may be null
 * dused           out  bytes that were written, the fill included; may be null
 * padbytes        in   where not null, whatever the result, the rest of the destination is filled with
 *                      this unit, or, towards UTF-8, with its low byte; an odd byte at the end of
 *                      UTF-16 stays as it is and does not count
 * validity_check  in   true refuses U+FFFE and U+FFFF, which no text may have
 *
 * They stop at the first character that cannot be converted. Return 0 when all text was converted;
 * COM_FOU_OVERFLOW when the next character does not fit; COM_FOU_INVALID when the next character is
 * invalid, be there room or not.
 *
 * com__fou_utf8_to_utf16   refuses wrong and missing continuation bytes and values above 0x10FFFF,
 *                          but neither overlong forms nor encoded surrogates
 * com__fou_utf16_to_utf16  copies; only an odd byte at the end is invalid. `validity_check` is not
 *                          looked at
 * com__fou_utf16_to_utf8   refuses an odd byte at the end. A unit from 0xD800 to 0xDBFF makes one
 *                          character with any next unit above 0xDBFF, be it a surrogate or not; a
 *                          surrogate that stands alone is encoded like any other unit
 */
#define ZRV_TRANSCODER(name)                                                                       \
  ZRV_PRIVATE int name(CS_VOID *src, int slen, CS_VOID *dest, int dlen, int *sused, int *dused,    \
                       CS_USHORT *padbytes, CS_BOOL validity_check) ZRV_NOEXCEPT

ZRV_TRANSCODER(com__fou_utf8_to_utf16);
ZRV_TRANSCODER(com__fou_utf16_to_utf16);
ZRV_TRANSCODER(com__fou_utf16_to_utf8);

/* ---- conversion by the table ---- */

/*
 * Tells how text of one format is converted into another: COM_FOU_COPY for the same locale and for sets
 * of the same number, else the table's word; COM_FOU_NONE when it does not have a set. A format without a
 * locale has ctxlocale; the set is that of its ctypeptr, which must not be null. Returns CS_SUCCEED.
 */
ZRV_API CS_RETCODE com_intl_will_xlate(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_DATAFMT *destfmt,
                                       CS_INT *xlate_type) ZRV_NOEXCEPT;

/*
 * Converts text by the table.
 *
 * srcfmt    in   the length of the text in maxlength, at least 1; with the datatype CS_TYPE_VARCHAR
 *                `src` is a CS_VARCHAR, whose own length counts
 * src       in   the text; some functions change it, and com__fou_caseswap reads as much as there is
 *                room
 * destfmt   in   the room in maxlength, not negative; with CS_TYPE_VARCHAR `dest` is a CS_VARCHAR
 * dest      out  the converted text, not terminated
 * srcused   out  bytes of the source that were taken
 * destused  out  bytes that were written
 *
 * Between the same sets the bytes are copied from `src` on: from a CS_VARCHAR its length comes first.
 *
 * Returns CS_SUCCEED; CS_CONV_NOXLATE, both counts 0, when the table has no conversion; CS_CONV_BADCHAR
 * when something was replaced; CS_CONV_OVERFLOW when the text did not fit and nothing was replaced.
 */
ZRV_API CS_RETCODE com_intl_xlate(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,
                                  CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *srcused,
                                  CS_INT *destused) ZRV_NOEXCEPT;

/* The function for two formats, null where com_intl_will_xlate tells COM_FOU_NONE or COM_FOU_COPY. Returns
 * CS_SUCCEED. */
ZRV_PRIVATE CS_RETCODE com__intl_get_xlate(CS_CONTEXT *context, CS_DATAFMT *srcfmt,
                                           CS_DATAFMT *destfmt,
                                           CS_XLATE_FUNC *xlate_func) ZRV_NOEXCEPT;

/* The number of a locale's character set, that of its ctypeptr; 0 after a failed check. */
ZRV_PRIVATE CS_INT com__intl_get_csid(CS_LOCALE *locale) ZRV_NOEXCEPT;

ZRV_END_DECLS

#endif
