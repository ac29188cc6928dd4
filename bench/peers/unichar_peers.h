// The peer of 16-bit text: ICU behind the checks that a conversion makes.
#ifndef ZRVBENCH_UNICHAR_PEERS_H
#define ZRVBENCH_UNICHAR_PEERS_H

#include "zrvcomn/comnlib.h"

extern "C" {

// From CS_TYPE_CHAR to CS_TYPE_UNICHAR by u_strFromUTF8, and back by u_strToUTF8.
CS_RETCODE peer_from_utf8(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,
                          CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen);
CS_RETCODE peer_to_utf8(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                        CS_VOID *dest, CS_INT *destlen);

} // extern "C"

#endif
