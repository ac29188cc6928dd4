/*
 * velcrypto_exports.h - the names that libvelcrypto exports. Not to be included beside OpenSSL's headers, which
 * have some of the names too.
 */
#ifndef VELCRYPTO_EXPORTS_H
#define VELCRYPTO_EXPORTS_H

#include "velcrypto.h"

#ifndef ZRV_API
#define ZRV_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

#define VELCRYPTO_DECLARE(type, name) ZRV_API type name;
VELCRYPTO_NAMES(VELCRYPTO_DECLARE)
#undef VELCRYPTO_DECLARE
ZRV_API VELCRYPTO_GET_LIST cryptolib_get_f_list;

#ifdef __cplusplus
}
#endif

#endif
