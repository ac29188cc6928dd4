// Text from UTF-8 into the character set of a cache, which takes the bytes of `src` to those of `dest`,
// at most destfmt->maxlength.
#ifndef COMN_INTL_FROM_UTF8_H
#define COMN_INTL_FROM_UTF8_H

#include "comloc.h"

extern "C" CS_RETCODE comn__convt_from_utf8(CS_CONTEXT *context, CS_INT match_mode, CS_BYTE *src,
                                            CS_INT srclen, CS_DATAFMT *destfmt,
                                            CsLocCache *dest_lcache, CS_VOID *dest,
                                            CS_INT *resultlen) noexcept;

#endif
