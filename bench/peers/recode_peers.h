// The peers of conversions between character sets: ICU, the C library's iconv, and plain loops.
#ifndef ZRVBENCH_RECODE_PEERS_H
#define ZRVBENCH_RECODE_PEERS_H

#include <cstddef>
#include <cstdint>

#include "zrvcomn/comnlib.h"

namespace zrvbench::peers {

// Each converts `length` bytes (or units) into `room` and returns how many came out, -1 on failure.
long icu_from_utf8(char16_t *to, int room, const char *from, int length);
long icu_to_utf8(char *to, int room, const char16_t *from, int length);

// A converter of ICU that is kept, and what it does.
void *icu_open(const char *set);
void icu_close(void *converter);
long icu_decode(void *converter, char16_t *to, int room, const char *from, int length);

// A descriptor of iconv that is kept.
void *iconv_keep(const char *to, const char *from);
void iconv_release(void *descriptor);
long iconv_run(void *descriptor, char *to, size_t room, const char *from, size_t length);

void table_loop(unsigned char *to, const unsigned char *from, size_t length,
                const unsigned char *table);
// memcpy behind the signature and the checks of a conversion.
CS_RETCODE copy_text(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                     CS_VOID *dest, CS_INT *destlen);

} // namespace zrvbench::peers

#endif
