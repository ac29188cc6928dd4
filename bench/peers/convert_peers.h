// The peers of the conversions, in a shared object of their own. What a wrapper does around its
// peer is what a conversion has to do around its work: six pointers, two type codes, an output
// length.
#ifndef ZRVBENCH_CONVERT_PEERS_H
#define ZRVBENCH_CONVERT_PEERS_H

#include <cstddef>

#include "zrvcomn/comnlib.h"

extern "C" {

// From CS_TYPE_BIGINT or CS_TYPE_INT to CS_TYPE_CHAR, by std::to_chars.
CS_RETCODE peer_i4_to_chars(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,
                            CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen);
CS_RETCODE peer_i8_to_chars(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,
                            CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen);

// CS_TYPE_BIGINT to itself: eight bytes, as the compiler copies a constant count.
CS_RETCODE peer_copy_8(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                       CS_VOID *dest, CS_INT *destlen);
// The same with four bytes and CS_TYPE_INT.
CS_RETCODE peer_copy_4(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                       CS_VOID *dest, CS_INT *destlen);

// CS_TYPE_BINARY to itself: memcpy of srcfmt->maxlength bytes.
CS_RETCODE peer_memcpy(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                       CS_VOID *dest, CS_INT *destlen);

// CS_TYPE_CHAR to itself: memset with blanks from `*destlen` to destfmt->maxlength.
CS_RETCODE peer_memset(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                       CS_VOID *dest, CS_INT *destlen);

// From CS_TYPE_CHAR, by std::from_chars and strtod. strtod is given a copy with a NUL behind it.
CS_RETCODE peer_i4_from_chars(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,
                              CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen);
CS_RETCODE peer_i8_from_chars(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,
                              CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen);
CS_RETCODE peer_flt8_from_chars(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,
                                CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen);
CS_RETCODE peer_strtod(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                       CS_VOID *dest, CS_INT *destlen);

// From CS_TYPE_FLOAT to CS_TYPE_CHAR with 17 digits, by std::to_chars and snprintf.
CS_RETCODE peer_flt8_to_chars(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,
                              CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen);
CS_RETCODE peer_snprintf_17(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,
                            CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen);

// CS_TYPE_CHAR to itself: memcpy of srcfmt->maxlength bytes; and a copy of the characters that fit, by
// their lengths.
CS_RETCODE peer_copy_text(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,
                          CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen);
CS_RETCODE peer_copy_characters(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,
                                CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen);
// The table of peer_copy_characters: the bytes of a character that begins with a byte.
extern const unsigned char *peer_widths;

#ifdef ZRVBENCH_WITH_FMT
// CS_TYPE_FLOAT to CS_TYPE_CHAR with two decimals, by fmt::format_to.
CS_RETCODE peer_fmt_amount(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,
                           CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen);
#endif

// A bare load from a table of 40 by 40.
CS_CONV_FUNC peer_table_load(const CS_CONV_FUNC *table, CS_INT srctype, CS_INT desttype);

#ifdef ZRVBENCH_WITH_BOOST
// boost::algorithm::unhex; returns the number of bytes.
size_t peer_unhex(const char *text, size_t digits, unsigned char *dest);
// CS_TYPE_BINARY to CS_TYPE_CHAR, by boost::algorithm::hex_lower.
CS_RETCODE peer_hex_lower(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,
                          CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen);
#endif
}

#endif
