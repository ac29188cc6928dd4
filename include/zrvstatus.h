/*
 * zrvstatus.h - conveniences around return codes, beside the interfaces of the family.
 */
#ifndef ZRV_ZRVSTATUS_H
#define ZRV_ZRVSTATUS_H

#include "cserror.h"

ZRV_BEGIN_DECLS

/* The name of a return code as these headers write it ("CS_CONV_OVERFLOW"), or NULL for a number that
 * no header names. The text is constant and is never freed. */
ZRV_API const CS_CHAR *zrv_status_name(CS_RETCODE status) ZRV_NOEXCEPT;

/* 1 when a conversion that returned `status` may have left something to show or to go on with: the
 * whole value (CS_SUCCEED, CS_CONV_PARTIAL), the nearest one (CS_CONV_OVERFLOW, CS_CONV_UNDERFLOW)
 * or a part of it (CS_CONV_TRUNCATED). 0 for every other code: the destination then holds no value,
 * whatever its bytes are. The nearest value is a matter of the family: text that does not fit a number
 * leaves none, and nothing does in a date or an amount; docs/conversions.md has them all. */
ZRV_API CS_BOOL zrv_status_usable(CS_RETCODE status) ZRV_NOEXCEPT;

ZRV_END_DECLS

#endif
