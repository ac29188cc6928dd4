// The layouts that are part of the binary interface, checked when the library is built.
//
// Value records and scalars are the same in both data models. Records that hold pointers have told
// sizes under ILP32 and their natural ones under LP64.
#include <cstddef>
#include <limits>

#include "charset.h"
#include "comloc.h"
#include "comnlib.h"
#include "sortordr.h"

namespace {

template <class T, size_t Width>
constexpr bool is_signed_of = sizeof(T) == Width &&std::numeric_limits<T>::is_signed;

template <class T, size_t Width>
constexpr bool is_unsigned_of = sizeof(T) == Width && !std::numeric_limits<T>::is_signed;

static_assert(is_signed_of<CS_INT, 4> && is_signed_of<CS_LONG, 4> && is_unsigned_of<CS_UINT, 4>);
static_assert(is_signed_of<CS_RETCODE, 4> && is_signed_of<CS_MSGNUM, 4> &&
              is_signed_of<CS_BOOL, 4>);
static_assert(is_signed_of<CS_SMALLINT, 2> && is_unsigned_of<CS_USMALLINT, 2> &&
              is_unsigned_of<CS_USHORT, 2>);
static_assert(is_unsigned_of<CS_TINYINT, 1> && is_unsigned_of<CS_BYTE, 1> &&
              is_unsigned_of<CS_BIT, 1>);
static_assert(is_signed_of<CS_BIGINT, 8> && is_unsigned_of<CS_UBIGINT, 8>);
static_assert(is_unsigned_of<CS_UNICHAR, 2> && is_unsigned_of<CS_UNITEXT, 2>);
static_assert(is_signed_of<CS_DATE, 4> && is_signed_of<CS_TIME, 4> &&
              is_unsigned_of<CS_BIGDATETIME, 8> && is_unsigned_of<CS_BIGTIME, 8>);
static_assert(std::numeric_limits<CS_REAL>::is_iec559 && sizeof(CS_REAL) == 4);
static_assert(std::numeric_limits<CS_FLOAT>::is_iec559 && sizeof(CS_FLOAT) == 8);

static_assert(sizeof(CS_VARCHAR) == 258 && offsetof(CS_VARCHAR, str) == 2);
static_assert(sizeof(CS_VARBINARY) == 258 && offsetof(CS_VARBINARY, array) == 2);
static_assert(sizeof(CS_NUMERIC) == 35 && offsetof(CS_NUMERIC, scale) == 1 &&
              offsetof(CS_NUMERIC, array) == 2);
static_assert(sizeof(CS_MONEY) == 8 && offsetof(CS_MONEY, mnylow) == 4);
static_assert(sizeof(CS_MONEY4) == 4);
static_assert(sizeof(CS_DATETIME) == 8 && offsetof(CS_DATETIME, dttime) == 4);
static_assert(sizeof(CS_DATETIME4) == 4 && offsetof(CS_DATETIME4, minutes) == 2);
static_assert(sizeof(CS_DATEREC) == 12 * sizeof(CS_INT));
static_assert(sizeof(CS_CLIENTMSG) == 2084);
static_assert(sizeof(LSC) == 4 && sizeof(SMEL) == 12 && sizeof(SO_1CLASS) == 1796);
static_assert(sizeof(S_DESCRIPT) == 336);
static_assert(sizeof(CS_NORM_MAP) == 256 && sizeof(CS_SOUNDEX) == 256 &&
              sizeof(CS_TYPE_MAP) == 1024);
static_assert(sizeof(cs_1class) == 1285 && offsetof(cs_1class, sounds) == 1028);
static_assert(sizeof(cs_2class) == 44 && offsetof(cs_2class, off_width) == 12);

// True under LP64, or when the record has this size.
template <class Record, size_t Size>
constexpr bool is_told_size = sizeof(void *) != 4 || sizeof(Record) == Size;

static_assert(is_told_size<CS_DATAFMT, 296>);
static_assert(is_told_size<CS_CONTEXT, 120>);
static_assert(is_told_size<CsCtxGlobals, 68>);
static_assert(is_told_size<CS_STRING_LIST, 12>);
static_assert(is_told_size<CsOID, 28>);
static_assert(is_told_size<CS_OID_TABLE, 48>);
static_assert(is_told_size<CS_STRINGS, 8>);
static_assert(is_told_size<CS_CONVACK, 44>);
static_assert(is_told_size<CS_DATAFUNCS, 320>);
static_assert(is_told_size<CsLocCache, 84>);
static_assert(is_told_size<CsSortDesc, 16>);
static_assert(is_told_size<CHAR_ATTRIB, 60>);
static_assert(is_told_size<CsCharDesc, 20>);
static_assert(is_told_size<CS_LOCALE, 32>);
static_assert(is_told_size<CS_THREAD, 40>);
static_assert(is_told_size<CsConvertTbl, 8>);
static_assert(is_told_size<CsUsrCvtFunc, 20>);
static_assert(is_told_size<CsDefVal, 12>);
static_assert(is_told_size<CsNullTbl, 8>);
static_assert(is_told_size<CsUsrNull, 16>);
static_assert(is_told_size<CS_LOCATOR, 32>);
static_assert(is_told_size<CsBlobChunk, 12>);
static_assert(is_told_size<CS_CONV_FUNC[CS_TYPE_COUNT][CS_TYPE_COUNT], 6400>);

} // namespace
