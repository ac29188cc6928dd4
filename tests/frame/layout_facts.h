/*
 * The published layouts and constants as literal rows, each checked by a C++ and by a C99 unit.
 *
 * Widths are bytes. Scalars, value records and constants are the same in both data models. The
 * sizes and offsets of the records that hold pointers are those of ILP32; under LP64 such records
 * have their natural layout, and only the order of their fields is a fact.
 */
#ifndef ZRVTEST_LAYOUT_FACTS_H
#define ZRVTEST_LAYOUT_FACTS_H

#include "zrvcomn/castctx.h"
#include "zrvcomn/charset.h"
#include "zrvcomn/comerr.h"
#include "zrvcomn/comfou.h"
#include "zrvcomn/comloc.h"
#include "zrvcomn/comnlib.h"
#include "zrvcomn/datetime.h"
#include "zrvcomn/lmpriv.h"
#include "zrvcomn/mmpriv.h"
#include "zrvcomn/sortordr.h"

/* clang-format off */

/* type, width, 1 if it is signed */
#define LAYOUT_INTEGERS(ROW) \
  ROW(CS_INT, 4, 1) \
  ROW(CS_LONG, 4, 1) \
  ROW(CS_UINT, 4, 0) \
  ROW(CS_RETCODE, 4, 1) \
  ROW(CS_MSGNUM, 4, 1) \
  ROW(CS_BOOL, 4, 1) \
  ROW(CS_SMALLINT, 2, 1) \
  ROW(CS_USMALLINT, 2, 0) \
  ROW(CS_USHORT, 2, 0) \
  ROW(CS_TINYINT, 1, 0) \
  ROW(CS_BIGINT, 8, 1) \
  ROW(CS_UBIGINT, 8, 0) \
  ROW(CS_BYTE, 1, 0) \
  ROW(CS_BINARY, 1, 0) \
  ROW(CS_LONGBINARY, 1, 0) \
  ROW(CS_IMAGE, 1, 0) \
  ROW(CS_LONGCHAR, 1, 0) \
  ROW(CS_TEXT, 1, 0) \
  ROW(CS_XML, 1, 0) \
  ROW(CS_BIT, 1, 0) \
  ROW(CS_UNICHAR, 2, 0) \
  ROW(CS_UNITEXT, 2, 0) \
  ROW(CS_VOIDDATA, 4, 1) \
  ROW(CS_BLOB, 4, 1) \
  ROW(CS_DATE, 4, 1) \
  ROW(CS_TIME, 4, 1) \
  ROW(CS_THRDID, 4, 1) \
  ROW(CS_BIGDATETIME, 8, 0) \
  ROW(CS_BIGTIME, 8, 0) \
  ROW(CS_EVENT, 1, 0) \
  ROW(CS_STATE, 1, 0)

/* It has the name of a function, which hides it. */
typedef struct com__datecrack DateToken;

/* record, size: both data models */
#define LAYOUT_VALUE_RECORDS(ROW) \
  ROW(CS_VARCHAR, 258) \
  ROW(CS_VARBINARY, 258) \
  ROW(CS_NUMERIC, 35) \
  ROW(CS_DECIMAL, 35) \
  ROW(CS_MONEY, 8) \
  ROW(CS_MONEY4, 4) \
  ROW(CS_DATETIME, 8) \
  ROW(CS_DATETIME4, 4) \
  ROW(CS_DATEREC, 48) \
  ROW(DateToken, 12) \
  ROW(CS_CLIENTMSG, 2084) \
  ROW(CHAR_MAP, 4) \
  ROW(LSC, 4) \
  ROW(SMEL, 12) \
  ROW(SO_1CLASS, 1796) \
  ROW(S_DESCRIPT, 336) \
  ROW(struct sm_0type, 4) \
  ROW(struct sm_1type, 8) \
  ROW(struct sm_2type, 1) \
  ROW(struct sm_3type, 8) \
  ROW(struct sm_4type, 8) \
  ROW(struct sm_5type, 4) \
  ROW(struct sm_6type, 4) \
  ROW(struct sm_7type, 4) \
  ROW(CS_NORM_MAP, 256) \
  ROW(CS_SOUNDEX, 256) \
  ROW(CS_TYPE_MAP, 1024) \
  ROW(cs_1class, 1285) \
  ROW(cs_2class, 44) \
  ROW(LIGSTRUCT, 14)

/* record, field, offset, width of the field: both data models */
#define LAYOUT_VALUE_FIELDS(ROW) \
  ROW(CS_VARCHAR, len, 0, 2) \
  ROW(CS_VARCHAR, str, 2, 256) \
  ROW(CS_VARBINARY, len, 0, 2) \
  ROW(CS_VARBINARY, array, 2, 256) \
  ROW(CS_NUMERIC, precision, 0, 1) \
  ROW(CS_NUMERIC, scale, 1, 1) \
  ROW(CS_NUMERIC, array, 2, 33) \
  ROW(CS_DECIMAL, precision, 0, 1) \
  ROW(CS_DECIMAL, scale, 1, 1) \
  ROW(CS_DECIMAL, array, 2, 33) \
  ROW(CS_MONEY, mnyhigh, 0, 4) \
  ROW(CS_MONEY, mnylow, 4, 4) \
  ROW(CS_MONEY4, mny4, 0, 4) \
  ROW(CS_DATETIME, dtdays, 0, 4) \
  ROW(CS_DATETIME, dttime, 4, 4) \
  ROW(CS_DATETIME4, days, 0, 2) \
  ROW(CS_DATETIME4, minutes, 2, 2) \
  ROW(DateToken, dctoken, 0, 4) \
  ROW(DateToken, dclength, 4, 4) \
  ROW(DateToken, dcvalue, 8, 4) \
  ROW(CS_DATEREC, dateyear, 0, 4) \
  ROW(CS_DATEREC, datemonth, 4, 4) \
  ROW(CS_DATEREC, datedmonth, 8, 4) \
  ROW(CS_DATEREC, datedyear, 12, 4) \
  ROW(CS_DATEREC, datedweek, 16, 4) \
  ROW(CS_DATEREC, datehour, 20, 4) \
  ROW(CS_DATEREC, dateminute, 24, 4) \
  ROW(CS_DATEREC, datesecond, 28, 4) \
  ROW(CS_DATEREC, datemsecond, 32, 4) \
  ROW(CS_DATEREC, datetzone, 36, 4) \
  ROW(CS_DATEREC, datesecfrac, 40, 4) \
  ROW(CS_DATEREC, datesecprec, 44, 4) \
  ROW(CS_CLIENTMSG, severity, 0, 4) \
  ROW(CS_CLIENTMSG, msgnumber, 4, 4) \
  ROW(CS_CLIENTMSG, msgstring, 8, 1024) \
  ROW(CS_CLIENTMSG, msgstringlen, 1032, 4) \
  ROW(CS_CLIENTMSG, osnumber, 1036, 4) \
  ROW(CS_CLIENTMSG, osstring, 1040, 1024) \
  ROW(CS_CLIENTMSG, osstringlen, 2064, 4) \
  ROW(CS_CLIENTMSG, status, 2068, 4) \
  ROW(CS_CLIENTMSG, sqlstate, 2072, 8) \
  ROW(CS_CLIENTMSG, sqlstatelen, 2080, 4) \
  ROW(CHAR_MAP, char_upper, 0, 1) \
  ROW(CHAR_MAP, char_lower, 1, 1) \
  ROW(CHAR_MAP, char_lex, 2, 1) \
  ROW(CHAR_MAP, char_type, 3, 1) \
  ROW(LSC, lsclong, 0, 4) \
  ROW(LSC, ps, 0, 2) \
  ROW(LSC, pst, 0, 4) \
  ROW(LSC, p1p2s, 0, 4) \
  ROW(SMEL, next_smel, 0, 1) \
  ROW(SMEL, type_smel, 1, 1) \
  ROW(SMEL, noxtraw, 2, 1) \
  ROW(SMEL, pad, 3, 1) \
  ROW(SMEL, smel_types, 4, 8) \
  ROW(SO_1CLASS, stat1, 0, 1) \
  ROW(SO_1CLASS, stat2, 1, 1) \
  ROW(SO_1CLASS, last_char, 2, 1) \
  ROW(SO_1CLASS, nsmels, 3, 1) \
  ROW(SO_1CLASS, lscs, 4, 1024) \
  ROW(SO_1CLASS, smels, 1028, 768) \
  ROW(S_DESCRIPT, class_, 0, 4) \
  ROW(S_DESCRIPT, id, 4, 4) \
  ROW(S_DESCRIPT, name, 8, 31) \
  ROW(S_DESCRIPT, charset, 39, 31) \
  ROW(S_DESCRIPT, preference, 72, 4) \
  ROW(S_DESCRIPT, descript, 76, 256) \
  ROW(S_DESCRIPT, isbin, 332, 4) \
  ROW(CS_NORM_MAP, norm, 0, 256) \
  ROW(CS_SOUNDEX, sound, 0, 256) \
  ROW(CS_TYPE_MAP, chmap, 0, 1024) \
  ROW(cs_1class, char_map, 0, 1028) \
  ROW(cs_1class, sounds, 1028, 257) \
  ROW(cs_2class, cs_status, 0, 2) \
  ROW(cs_2class, cs_class, 2, 1) \
  ROW(cs_2class, cs_maxcharlen, 3, 1) \
  ROW(cs_2class, cs_ncharsize, 4, 1) \
  ROW(cs_2class, cs_ntype, 5, 1) \
  ROW(cs_2class, cs_nnorm, 6, 1) \
  ROW(cs_2class, cs_nsoundex, 7, 1) \
  ROW(cs_2class, machine_type, 8, 1) \
  ROW(cs_2class, padding, 9, 3) \
  ROW(cs_2class, off_width, 12, 4) \
  ROW(cs_2class, size_width, 16, 4) \
  ROW(cs_2class, off_norm, 20, 4) \
  ROW(cs_2class, size_norm, 24, 4) \
  ROW(cs_2class, off_type, 28, 4) \
  ROW(cs_2class, size_type, 32, 4) \
  ROW(cs_2class, off_soundex, 36, 4) \
  ROW(cs_2class, size_soundex, 40, 4) \
  ROW(LIGSTRUCT, lig, 0, 11) \
  ROW(LIGSTRUCT, first, 11, 1) \
  ROW(LIGSTRUCT, second, 12, 1) \
  ROW(LIGSTRUCT, type, 13, 1)

/* record, size under ILP32 */
#define LAYOUT_POINTER_RECORDS(ROW) \
  ROW(CS_DATAFMT, 296) \
  ROW(CS_CONTEXT, 120) \
  ROW(CsContext, 120) \
  ROW(CsConvertTbl, 8) \
  ROW(CAST_CONTEXT, 40) \
  ROW(__CONSTANT, 52) \
  ROW(CsNullTbl, 8) \
  ROW(CsDefVal, 12) \
  ROW(CsUsrCvtFunc, 20) \
  ROW(CsUsrNull, 16) \
  ROW(CsCtxGlobals, 68) \
  ROW(CS_STRING_LIST, 12) \
  ROW(CsOID, 28) \
  ROW(CS_OID_TABLE, 48) \
  ROW(CS_STRINGS, 8) \
  ROW(CS_CONVACK, 44) \
  ROW(CS_DATAFUNCS, 320) \
  ROW(CsLocCache, 84) \
  ROW(CsLocNames, 1560) \
  ROW(ParseStruct, 16) \
  ROW(CS_DATEINFO, 420) \
  ROW(CS_NUMINFO, 64) \
  ROW(CS_MONINFO, 104) \
  ROW(CsSortDesc, 16) \
  ROW(CHAR_ATTRIB, 60) \
  ROW(CS_ATTRIB, 60) \
  ROW(CsCharDesc, 20) \
  ROW(CS_FOU_FUNCS, 12) \
  ROW(CS_FOU_XLT_MAP, 124) \
  ROW(CSID_CSNAME, 16) \
  ROW(CsUserAlgo, 540) \
  ROW(UNICODE_MNEM_STRING, 12) \
  ROW(CS_LOCALE, 32) \
  ROW(CsLocale, 32) \
  ROW(CS_THREAD, 40) \
  ROW(CS_LOCATOR, 32) \
  ROW(CsBlobChunk, 12) \
  ROW(CS_ERRSECTION, 8) \
  ROW(CS_ERRIDX, 8) \
  ROW(CS_ERRHAN, 8) \
  ROW(CsErrorCache, 28) \
  ROW(CsErrSecCache, 16) \
  ROW(CsErrFileCache, 12) \
  ROW(CS_MESSAGE, 28) \
  ROW(CsErrParams, 32) \
  ROW(CsErrStrings, 44) \
  ROW(ComErrString, 8) \
  ROW(MmPoolHead, 48) \
  ROW(MM_HANDLE, 108) \
  ROW(MmHeap, 20) \
  ROW(MmList, 8) \
  ROW(MmBlock, 8) \
  ROW(MmDList, 12) \
  ROW(MmBuddyPool, 72) \
  ROW(MmUniformPool, 12) \
  ROW(MmAllocOnlyPool, 4) \
  ROW(LM_CONTEXT, 36) \
  ROW(LM_CXTPROP, 32) \
  ROW(LM_HANDLE, 40) \
  ROW(LM_HDLPROP, 40) \
  ROW(DLinkNode, 24) \
  ROW(DLinkInfo, 12) \
  ROW(CHashInfo, 16) \
  ROW(DHashInfo, 20)

/* record, field, offset under ILP32; a record's fields in their order */
#define LAYOUT_POINTER_FIELDS(ROW) \
  ROW(CS_DATAFMT, name, 0) \
  ROW(CS_DATAFMT, namelen, 256) \
  ROW(CS_DATAFMT, datatype, 260) \
  ROW(CS_DATAFMT, format, 264) \
  ROW(CS_DATAFMT, maxlength, 268) \
  ROW(CS_DATAFMT, scale, 272) \
  ROW(CS_DATAFMT, precision, 276) \
  ROW(CS_DATAFMT, status, 280) \
  ROW(CS_DATAFMT, count, 284) \
  ROW(CS_DATAFMT, usertype, 288) \
  ROW(CS_DATAFMT, locale, 292) \
  ROW(CS_CONTEXT, ctxtag, 0) \
  ROW(CS_CONTEXT, ctxstatus, 4) \
  ROW(CS_CONTEXT, ctxversion, 8) \
  ROW(CS_CONTEXT, ctxlocale, 12) \
  ROW(CS_CONTEXT, ctxdeflocale, 16) \
  ROW(CS_CONTEXT, ctxglobals, 20) \
  ROW(CS_CONTEXT, ctxcvttbl, 24) \
  ROW(CS_CONTEXT, ctxusrcvttbl, 32) \
  ROW(CS_CONTEXT, ctxnulls, 36) \
  ROW(CS_CONTEXT, ctxusrnulls, 44) \
  ROW(CS_CONTEXT, ctxthread, 48) \
  ROW(CS_CONTEXT, ctxintlerr, 52) \
  ROW(CS_CONTEXT, ctxctctx, 56) \
  ROW(CS_CONTEXT, ctxnetwork, 60) \
  ROW(CS_CONTEXT, ctxdsctx, 64) \
  ROW(CS_CONTEXT, ctxssctx, 68) \
  ROW(CS_CONTEXT, ctxopenserver, 72) \
  ROW(CS_CONTEXT, ctxcsctx, 76) \
  ROW(CS_CONTEXT, ctxmtx, 80) \
  ROW(CS_CONTEXT, usercharconv, 84) \
  ROW(CS_CONTEXT, ctxconfig, 88) \
  ROW(CS_CONTEXT, ctxmalloc, 92) \
  ROW(CS_CONTEXT, ctxfree, 96) \
  ROW(CS_CONTEXT, ctxerrfunc, 100) \
  ROW(CS_CONTEXT, ctxcomerrhan, 104) \
  ROW(CS_CONTEXT, ctxcsifactory, 108) \
  ROW(CS_CONTEXT, ctxcclctx, 112) \
  ROW(CS_CONTEXT, ctxssfsctx, 116) \
  ROW(CAST_CONTEXT, ctxcvttbl, 0) \
  ROW(CAST_CONTEXT, format, 8) \
  ROW(CAST_CONTEXT, style, 12) \
  ROW(CAST_CONTEXT, flags, 16) \
  ROW(CAST_CONTEXT, months, 20) \
  ROW(CAST_CONTEXT, shrtmonths, 24) \
  ROW(CAST_CONTEXT, dateorder, 28) \
  ROW(CAST_CONTEXT, char_attrib, 32) \
  ROW(CAST_CONTEXT, cfn, 36) \
  ROW(__CONSTANT, len, 0) \
  ROW(__CONSTANT, type, 4) \
  ROW(__CONSTANT, rsrvdpad, 5) \
  ROW(__CONSTANT, maxlen, 8) \
  ROW(__CONSTANT, prec, 12) \
  ROW(__CONSTANT, scale, 13) \
  ROW(__CONSTANT, newtype, 14) \
  ROW(__CONSTANT, conomnistat, 15) \
  ROW(__CONSTANT, cvarno, 16) \
  ROW(__CONSTANT, constat, 18) \
  ROW(__CONSTANT, constat2, 20) \
  ROW(__CONSTANT, constat3, 21) \
  ROW(__CONSTANT, conspare, 22) \
  ROW(__CONSTANT, locale, 24) \
  ROW(__CONSTANT, value, 28) \
  ROW(__CONSTANT, xtype, 32) \
  ROW(__CONSTANT, jobj, 40) \
  ROW(__CONSTANT, constat6, 44) \
  ROW(__CONSTANT, constat7, 48) \
  ROW(CsConvertTbl, cvttbl, 0) \
  ROW(CsConvertTbl, cvtdim, 4) \
  ROW(CsNullTbl, nullvals, 0) \
  ROW(CsNullTbl, nulldim, 4) \
  ROW(CsDefVal, dventity, 0) \
  ROW(CsDefVal, dvsize, 4) \
  ROW(CsDefVal, dvpadtype, 8) \
  ROW(CsUsrCvtFunc, srctype, 0) \
  ROW(CsUsrCvtFunc, desttype, 4) \
  ROW(CsUsrCvtFunc, cvtfunc, 8) \
  ROW(CsUsrCvtFunc, nextdest, 12) \
  ROW(CsUsrCvtFunc, nextsrc, 16) \
  ROW(CsUsrNull, dttype, 0) \
  ROW(CsUsrNull, dventity, 4) \
  ROW(CsUsrNull, dvsize, 8) \
  ROW(CsUsrNull, nextnull, 12) \
  ROW(CsCtxGlobals, cmg_count, 0) \
  ROW(CsCtxGlobals, cmg_lcache, 4) \
  ROW(CsCtxGlobals, cmg_chardesc, 8) \
  ROW(CsCtxGlobals, cmg_locale, 12) \
  ROW(CsCtxGlobals, cmg_mtx, 16) \
  ROW(CsCtxGlobals, cmg_datetime, 20) \
  ROW(CsCtxGlobals, cmg_money, 24) \
  ROW(CsCtxGlobals, cmg_numeric, 28) \
  ROW(CsCtxGlobals, cmg_utf8_charset, 32) \
  ROW(CsCtxGlobals, cmg_utf8_ctypeptr, 36) \
  ROW(CsCtxGlobals, cmg_message, 40) \
  ROW(CsCtxGlobals, lm, 44) \
  ROW(CsCtxGlobals, mnem_db, 48) \
  ROW(CsCtxGlobals, max_mnem_strlen, 52) \
  ROW(CsCtxGlobals, ucs2_oid, 56) \
  ROW(CsCtxGlobals, ctxoids, 60) \
  ROW(CsCtxGlobals, csicorep, 64) \
  ROW(CS_STRING_LIST, string, 0) \
  ROW(CS_STRING_LIST, len, 4) \
  ROW(CS_STRING_LIST, next, 8) \
  ROW(CsOID, oidstring, 0) \
  ROW(CsOID, oidnamelen, 4) \
  ROW(CsOID, oidber, 8) \
  ROW(CsOID, oidberlen, 12) \
  ROW(CsOID, oidlnames, 16) \
  ROW(CsOID, oidnumlnames, 20) \
  ROW(CsOID, oidnext, 24) \
  ROW(CS_OID_TABLE, ot_oid, 0) \
  ROW(CS_STRINGS, key, 0) \
  ROW(CS_STRINGS, string, 4) \
  ROW(CS_CONVACK, ca_int2, 0) \
  ROW(CS_CONVACK, ca_int4, 4) \
  ROW(CS_CONVACK, ca_int8, 8) \
  ROW(CS_CONVACK, ca_flt4, 12) \
  ROW(CS_CONVACK, ca_flt8, 16) \
  ROW(CS_CONVACK, ca_char, 20) \
  ROW(CS_CONVACK, ca_lang, 24) \
  ROW(CS_CONVACK, ca_sort, 28) \
  ROW(CS_CONVACK, ca_datetime, 32) \
  ROW(CS_CONVACK, ca_money, 36) \
  ROW(CS_CONVACK, ca_numeric, 40) \
  ROW(CS_DATAFUNCS, df_xdrsend, 0) \
  ROW(CS_DATAFUNCS, df_xdrrecv, 160) \
  ROW(CsLocCache, locname, 0) \
  ROW(CsLocCache, locnamelen, 4) \
  ROW(CsLocCache, charname, 8) \
  ROW(CsLocCache, charnamelen, 12) \
  ROW(CsLocCache, locchardesc, 16) \
  ROW(CsLocCache, sortname, 20) \
  ROW(CsLocCache, sortnamelen, 24) \
  ROW(CsLocCache, locsortorder, 28) \
  ROW(CsLocCache, langname, 32) \
  ROW(CsLocCache, langnamelen, 36) \
  ROW(CsLocCache, locmessage, 40) \
  ROW(CsLocCache, datename, 44) \
  ROW(CsLocCache, datenamelen, 48) \
  ROW(CsLocCache, locdateinfo, 52) \
  ROW(CsLocCache, numname, 56) \
  ROW(CsLocCache, numnamelen, 60) \
  ROW(CsLocCache, locnuminfo, 64) \
  ROW(CsLocCache, monname, 68) \
  ROW(CsLocCache, monnamelen, 72) \
  ROW(CsLocCache, locmoninfo, 76) \
  ROW(CsLocCache, locnext, 80) \
  ROW(CsLocNames, charset, 0) \
  ROW(CsLocNames, charsetlen, 256) \
  ROW(CsLocNames, lang, 260) \
  ROW(CsLocNames, langlen, 516) \
  ROW(CsLocNames, sortorder, 520) \
  ROW(CsLocNames, sortorderlen, 776) \
  ROW(CsLocNames, datetime, 780) \
  ROW(CsLocNames, datetimelen, 1036) \
  ROW(CsLocNames, numeric, 1040) \
  ROW(CsLocNames, numericlen, 1296) \
  ROW(CsLocNames, money, 1300) \
  ROW(CsLocNames, moneylen, 1556) \
  ROW(ParseStruct, type, 0) \
  ROW(ParseStruct, data, 4) \
  ROW(ParseStruct, datalen, 8) \
  ROW(ParseStruct, next, 12) \
  ROW(CS_DATEINFO, id, 0) \
  ROW(CS_DATEINFO, is12hour, 4) \
  ROW(CS_DATEINFO, amindict, 8) \
  ROW(CS_DATEINFO, amindict_len, 12) \
  ROW(CS_DATEINFO, pmindict, 16) \
  ROW(CS_DATEINFO, pmindict_len, 20) \
  ROW(CS_DATEINFO, months, 24) \
  ROW(CS_DATEINFO, mon_len, 72) \
  ROW(CS_DATEINFO, shortmonths, 120) \
  ROW(CS_DATEINFO, shrtmon_len, 168) \
  ROW(CS_DATEINFO, days, 216) \
  ROW(CS_DATEINFO, day_len, 244) \
  ROW(CS_DATEINFO, shortdays, 272) \
  ROW(CS_DATEINFO, shrtday_len, 300) \
  ROW(CS_DATEINFO, firstday, 328) \
  ROW(CS_DATEINFO, datefmt, 332) \
  ROW(CS_DATEINFO, datefmt_len, 336) \
  ROW(CS_DATEINFO, timefmt, 340) \
  ROW(CS_DATEINFO, timefmt_len, 344) \
  ROW(CS_DATEINFO, longdtfmt, 348) \
  ROW(CS_DATEINFO, longdtfmt_len, 352) \
  ROW(CS_DATEINFO, shrtdtfmt, 356) \
  ROW(CS_DATEINFO, shrtdtfmt_len, 360) \
  ROW(CS_DATEINFO, era, 364) \
  ROW(CS_DATEINFO, era_len, 368) \
  ROW(CS_DATEINFO, era_t_fmt, 372) \
  ROW(CS_DATEINFO, eratfmt_len, 376) \
  ROW(CS_DATEINFO, era_d_fmt, 380) \
  ROW(CS_DATEINFO, eradfmt_len, 384) \
  ROW(CS_DATEINFO, era_dt_fmt, 388) \
  ROW(CS_DATEINFO, eradtfmt_len, 392) \
  ROW(CS_DATEINFO, secprec, 396) \
  ROW(CS_DATEINFO, dateorder, 400) \
  ROW(CS_DATEINFO, convertfmt, 404) \
  ROW(CS_DATEINFO, bdtconvertfmt, 408) \
  ROW(CS_DATEINFO, locdateorder_id, 412) \
  ROW(CS_DATEINFO, next, 416) \
  ROW(CS_NUMINFO, id, 0) \
  ROW(CS_NUMINFO, decpt, 4) \
  ROW(CS_NUMINFO, decpt_len, 8) \
  ROW(CS_NUMINFO, gpsep, 12) \
  ROW(CS_NUMINFO, gpsep_len, 16) \
  ROW(CS_NUMINFO, grouping, 20) \
  ROW(CS_NUMINFO, group_cnt, 24) \
  ROW(CS_NUMINFO, possign, 28) \
  ROW(CS_NUMINFO, possign_len, 32) \
  ROW(CS_NUMINFO, negsign, 36) \
  ROW(CS_NUMINFO, negsign_len, 40) \
  ROW(CS_NUMINFO, posfmt, 44) \
  ROW(CS_NUMINFO, posfmt_len, 48) \
  ROW(CS_NUMINFO, negfmt, 52) \
  ROW(CS_NUMINFO, negfmt_len, 56) \
  ROW(CS_NUMINFO, next, 60) \
  ROW(CS_MONINFO, id, 0) \
  ROW(CS_MONINFO, intlcurrsym, 4) \
  ROW(CS_MONINFO, intlsym_len, 8) \
  ROW(CS_MONINFO, loccurrsym, 12) \
  ROW(CS_MONINFO, locsym_len, 16) \
  ROW(CS_MONINFO, decpt, 20) \
  ROW(CS_MONINFO, decpt_len, 24) \
  ROW(CS_MONINFO, gpsep, 28) \
  ROW(CS_MONINFO, gpsep_len, 32) \
  ROW(CS_MONINFO, grouping, 36) \
  ROW(CS_MONINFO, group_cnt, 40) \
  ROW(CS_MONINFO, possign, 44) \
  ROW(CS_MONINFO, possign_len, 48) \
  ROW(CS_MONINFO, negsign, 52) \
  ROW(CS_MONINFO, negsign_len, 56) \
  ROW(CS_MONINFO, intlfracdig, 60) \
  ROW(CS_MONINFO, locfracdig, 64) \
  ROW(CS_MONINFO, intlposfmt, 68) \
  ROW(CS_MONINFO, intlposfmt_len, 72) \
  ROW(CS_MONINFO, intlnegfmt, 76) \
  ROW(CS_MONINFO, intlnegfmt_len, 80) \
  ROW(CS_MONINFO, locposfmt, 84) \
  ROW(CS_MONINFO, locposfmt_len, 88) \
  ROW(CS_MONINFO, locnegfmt, 92) \
  ROW(CS_MONINFO, locnegfmt_len, 96) \
  ROW(CS_MONINFO, next, 100) \
  ROW(CsSortDesc, oid, 0) \
  ROW(CsSortDesc, char_sort_descript, 4) \
  ROW(CsSortDesc, char_sort_class, 8) \
  ROW(CsSortDesc, sortnext, 12) \
  ROW(CHAR_ATTRIB, cs_status, 0) \
  ROW(CHAR_ATTRIB, cs_class, 2) \
  ROW(CHAR_ATTRIB, cs_id, 3) \
  ROW(CHAR_ATTRIB, cs_namelen, 4) \
  ROW(CHAR_ATTRIB, cs_name, 6) \
  ROW(CHAR_ATTRIB, cs_maxcharlen, 36) \
  ROW(CHAR_ATTRIB, cs_ncharsize, 37) \
  ROW(CHAR_ATTRIB, cs_nnorm, 38) \
  ROW(CHAR_ATTRIB, cs_ntype, 39) \
  ROW(CHAR_ATTRIB, cs_nsoundex, 40) \
  ROW(CHAR_ATTRIB, spare, 41) \
  ROW(CHAR_ATTRIB, cs_width_map, 44) \
  ROW(CHAR_ATTRIB, cs_norm_map, 48) \
  ROW(CHAR_ATTRIB, cs_type_map, 52) \
  ROW(CHAR_ATTRIB, cs_soundex, 56) \
  ROW(CsCharDesc, oid, 0) \
  ROW(CsCharDesc, char_attrib, 4) \
  ROW(CsCharDesc, sort_order, 8) \
  ROW(CsCharDesc, conv_config, 12) \
  ROW(CsCharDesc, charnext, 16) \
  ROW(CS_FOU_FUNCS, csid, 0) \
  ROW(CS_FOU_FUNCS, xlate_type, 4) \
  ROW(CS_FOU_FUNCS, xlate_func, 8) \
  ROW(CS_FOU_XLT_MAP, csid, 0) \
  ROW(CS_FOU_XLT_MAP, fou_funcs, 4) \
  ROW(CSID_CSNAME, csid, 0) \
  ROW(CSID_CSNAME, csname, 4) \
  ROW(CSID_CSNAME, len, 8) \
  ROW(CSID_CSNAME, unilib_cid, 12) \
  ROW(CsUserAlgo, from_charname, 0) \
  ROW(CsUserAlgo, from_charnamelen, 256) \
  ROW(CsUserAlgo, to_charname, 260) \
  ROW(CsUserAlgo, to_charnamelen, 516) \
  ROW(CsUserAlgo, from_oid, 520) \
  ROW(CsUserAlgo, to_oid, 524) \
  ROW(CsUserAlgo, user_conv_func, 528) \
  ROW(CsUserAlgo, conv_multiplier, 532) \
  ROW(CsUserAlgo, next, 536) \
  ROW(UNICODE_MNEM_STRING, unicode, 0) \
  ROW(UNICODE_MNEM_STRING, string, 4) \
  ROW(UNICODE_MNEM_STRING, string_len, 8) \
  ROW(CS_LOCALE, collateptr, 0) \
  ROW(CS_LOCALE, ctypeptr, 4) \
  ROW(CS_LOCALE, messageptr, 8) \
  ROW(CS_LOCALE, monetaryptr, 12) \
  ROW(CS_LOCALE, numericptr, 16) \
  ROW(CS_LOCALE, timeptr, 20) \
  ROW(CS_LOCALE, ctxptr, 24) \
  ROW(CS_LOCALE, next, 28) \
  ROW(CS_THREAD, create_mutex_fn, 0) \
  ROW(CS_THREAD, delete_mutex_fn, 4) \
  ROW(CS_THREAD, take_mutex_fn, 8) \
  ROW(CS_THREAD, release_mutex_fn, 12) \
  ROW(CS_THREAD, create_event_fn, 16) \
  ROW(CS_THREAD, delete_event_fn, 20) \
  ROW(CS_THREAD, signal_event_fn, 24) \
  ROW(CS_THREAD, reset_event_fn, 28) \
  ROW(CS_THREAD, waitfor_event_fn, 32) \
  ROW(CS_THREAD, thread_id_fn, 36) \
  ROW(CS_LOCATOR, locatortag, 0) \
  ROW(CS_LOCATOR, locatortype, 4) \
  ROW(CS_LOCATOR, locatorlen, 8) \
  ROW(CS_LOCATOR, locator, 12) \
  ROW(CS_LOCATOR, prefetchlen, 16) \
  ROW(CS_LOCATOR, prefetchdata, 20) \
  ROW(CS_LOCATOR, totalloblen, 24) \
  ROW(CsBlobChunk, pnext, 0) \
  ROW(CsBlobChunk, len, 4) \
  ROW(CsBlobChunk, data, 8) \
  ROW(CS_ERRSECTION, errtag, 0) \
  ROW(CS_ERRSECTION, errstr, 4) \
  ROW(CS_ERRIDX, errtag, 0) \
  ROW(CS_ERRIDX, errnum, 4) \
  ROW(CS_ERRHAN, err_locale, 0) \
  ROW(CS_ERRHAN, err_file, 4) \
  ROW(CsErrorCache, errcode, 0) \
  ROW(CsErrorCache, errnum, 8) \
  ROW(CsErrorCache, errmsg, 12) \
  ROW(CsErrorCache, errseccache, 16) \
  ROW(CsErrorCache, histnext, 20) \
  ROW(CsErrorCache, next, 24) \
  ROW(CsErrSecCache, errtag, 0) \
  ROW(CsErrSecCache, errstr, 4) \
  ROW(CsErrSecCache, errcache, 8) \
  ROW(CsErrSecCache, next, 12) \
  ROW(CsErrFileCache, errfilename, 0) \
  ROW(CsErrFileCache, errsecs, 4) \
  ROW(CsErrFileCache, next, 8) \
  ROW(CS_MESSAGE, lang_oid, 0) \
  ROW(CS_MESSAGE, charset_oid, 4) \
  ROW(CS_MESSAGE, locfilecache, 8) \
  ROW(CS_MESSAGE, locerrhist, 12) \
  ROW(CS_MESSAGE, locerrcnt, 16) \
  ROW(CS_MESSAGE, msgmtx, 20) \
  ROW(CS_MESSAGE, messagenext, 24) \
  ROW(CsErrParams, ep_numparams, 0) \
  ROW(CsErrParams, ep_format, 4) \
  ROW(CsErrParams, ep_type1, 8) \
  ROW(CsErrParams, ep_param1, 12) \
  ROW(CsErrParams, ep_type2, 16) \
  ROW(CsErrParams, ep_param2, 20) \
  ROW(CsErrParams, ep_type3, 24) \
  ROW(CsErrParams, ep_param3, 28) \
  ROW(CsErrStrings, es_api, 0) \
  ROW(CsErrStrings, es_apilen, 4) \
  ROW(CsErrStrings, es_layer, 8) \
  ROW(CsErrStrings, es_layerlen, 12) \
  ROW(CsErrStrings, es_origin, 16) \
  ROW(CsErrStrings, es_origlen, 20) \
  ROW(CsErrStrings, es_err, 24) \
  ROW(CsErrStrings, es_errlen, 28) \
  ROW(CsErrStrings, es_err_alloc, 32) \
  ROW(CsErrStrings, es_oserr, 36) \
  ROW(CsErrStrings, es_oserrlen, 40) \
  ROW(ComErrString, errcode, 0) \
  ROW(ComErrString, errstr, 4) \
  ROW(MmPoolHead, mph_sbreak, 0) \
  ROW(MmPoolHead, mph_unsbreak, 4) \
  ROW(MmPoolHead, mph_param, 8) \
  ROW(MmPoolHead, mph_lock, 12) \
  ROW(MmPoolHead, mph_unlock, 16) \
  ROW(MmPoolHead, mph_lockarg, 20) \
  ROW(MmPoolHead, mph_chunksize, 24) \
  ROW(MmPoolHead, mph_totalsize, 28) \
  ROW(MmPoolHead, mph_maxsize, 32) \
  ROW(MmPoolHead, mph_heap, 36) \
  ROW(MmPoolHead, mph_ctx, 40) \
  ROW(MmPoolHead, mph_status, 44) \
  ROW(MM_HANDLE, mmh_head, 0) \
  ROW(MM_HANDLE, mmh_type, 4) \
  ROW(MM_HANDLE, mmh_blocksize, 8) \
  ROW(MM_HANDLE, mmh_status, 12) \
  ROW(MM_HANDLE, mmh_tagid, 16) \
  ROW(MM_HANDLE, mmh_blocks, 20) \
  ROW(MM_HANDLE, mmh_parent, 24) \
  ROW(MM_HANDLE, mmh_child, 28) \
  ROW(MM_HANDLE, mmh_sibling, 32) \
  ROW(MM_HANDLE, mmh_pool, 36) \
  ROW(MmHeap, size, 0) \
  ROW(MmHeap, status, 4) \
  ROW(MmHeap, next, 8) \
  ROW(MmHeap, free, 12) \
  ROW(MmHeap, buffer, 16) \
  ROW(MmList, size, 0) \
  ROW(MmList, link, 4) \
  ROW(MmBlock, next, 0) \
  ROW(MmBlock, block, 4) \
  ROW(MmDList, size, 0) \
  ROW(MmDList, next, 4) \
  ROW(MmDList, prev, 8) \
  ROW(MmBuddyPool, bpmax, 0) \
  ROW(MmBuddyPool, free, 4) \
  ROW(MmUniformPool, uniform_size, 0) \
  ROW(MmUniformPool, node_size, 4) \
  ROW(MmUniformPool, free, 8) \
  ROW(MmAllocOnlyPool, free, 0) \
  ROW(LM_CONTEXT, state, 0) \
  ROW(LM_CONTEXT, context_name, 4) \
  ROW(LM_CONTEXT, length, 8) \
  ROW(LM_CONTEXT, lmchkparam, 12) \
  ROW(LM_CONTEXT, cxtprop, 16) \
  ROW(LM_CONTEXT, first_handle, 20) \
  ROW(LM_CONTEXT, lmmalloc, 24) \
  ROW(LM_CONTEXT, lmfree, 28) \
  ROW(LM_CONTEXT, lmuser, 32) \
  ROW(LM_CXTPROP, state, 0) \
  ROW(LM_CXTPROP, list_type, 4) \
  ROW(LM_CXTPROP, max_tablesize, 8) \
  ROW(LM_CXTPROP, max_poolsize, 12) \
  ROW(LM_CXTPROP, version, 16) \
  ROW(LM_CXTPROP, context_load, 20) \
  ROW(LM_CXTPROP, cur_handlename, 24) \
  ROW(LM_CXTPROP, cur_handleaddr, 28) \
  ROW(LM_HANDLE, state, 0) \
  ROW(LM_HANDLE, hdlprop, 4) \
  ROW(LM_HANDLE, list_state, 8) \
  ROW(LM_HANDLE, free_DLN_list, 12) \
  ROW(LM_HANDLE, free_nodes, 16) \
  ROW(LM_HANDLE, cur_ptr, 20) \
  ROW(LM_HANDLE, next, 24) \
  ROW(LM_HANDLE, lmhmalloc, 28) \
  ROW(LM_HANDLE, lmhfree, 32) \
  ROW(LM_HANDLE, lmhuser, 36) \
  ROW(LM_HDLPROP, state, 0) \
  ROW(LM_HDLPROP, list_type, 4) \
  ROW(LM_HDLPROP, max_tablesize, 8) \
  ROW(LM_HDLPROP, max_poolsize, 12) \
  ROW(LM_HDLPROP, handle_load, 16) \
  ROW(LM_HDLPROP, context, 20) \
  ROW(LM_HDLPROP, handle_name, 24) \
  ROW(LM_HDLPROP, length, 28) \
  ROW(LM_HDLPROP, print_func, 32) \
  ROW(LM_HDLPROP, comp_func, 36) \
  ROW(DLinkNode, state, 0) \
  ROW(DLinkNode, key, 4) \
  ROW(DLinkNode, key_size, 8) \
  ROW(DLinkNode, data, 12) \
  ROW(DLinkNode, previous, 16) \
  ROW(DLinkNode, next, 20) \
  ROW(DLinkInfo, state, 0) \
  ROW(DLinkInfo, head, 4) \
  ROW(DLinkInfo, tail, 8) \
  ROW(CHashInfo, state, 0) \
  ROW(CHashInfo, table, 4) \
  ROW(CHashInfo, table_size, 8) \
  ROW(CHashInfo, home_addr_hfunc, 12) \
  ROW(DHashInfo, state, 0) \
  ROW(DHashInfo, table, 4) \
  ROW(DHashInfo, table_size, 8) \
  ROW(DHashInfo, home_addr_hfunc, 12) \
  ROW(DHashInfo, incr_hfunc, 16)

/* The process-wide record: the widths of the slots of the layers above are not published, so only
 * the start of the record and the order of its fields are. */
#define LAYOUT_APPGLOBAL_FIELDS(ROW) \
  ROW(ag_subscribers, 0) \
  ROW(ag_state, 16) \
  ROW(ag_accesscnt, 20) \
  ROW(ag_dsglobal, 24)

#define LAYOUT_APPGLOBAL_ORDER(ROW) \
  ROW(ag_dsglobal) \
  ROW(ag_netglobal) \
  ROW(ag_asyncglobal) \
  ROW(ag_accessfunc) \
  ROW(ag_platformptr) \
  ROW(ag_ctxthread) \
  ROW(ag_mtx) \
  ROW(ag_appctxglobal) \
  ROW(ag_cfgchain) \
  ROW(ag_blk_osfncs) \
  ROW(ag_ctxglobal)

/* name, value */
#define LAYOUT_CONSTANTS(ROW) \
  ROW(CS_TYPE_CHAR, 0) \
  ROW(CS_TYPE_BINARY, 1) \
  ROW(CS_TYPE_LONGCHAR, 2) \
  ROW(CS_TYPE_LONGBINARY, 3) \
  ROW(CS_TYPE_TEXT, 4) \
  ROW(CS_TYPE_IMAGE, 5) \
  ROW(CS_TYPE_TINYINT, 6) \
  ROW(CS_TYPE_SMALLINT, 7) \
  ROW(CS_TYPE_INT, 8) \
  ROW(CS_TYPE_REAL, 9) \
  ROW(CS_TYPE_FLOAT, 10) \
  ROW(CS_TYPE_BIT, 11) \
  ROW(CS_TYPE_DATETIME, 12) \
  ROW(CS_TYPE_DATETIME4, 13) \
  ROW(CS_TYPE_MONEY, 14) \
  ROW(CS_TYPE_MONEY4, 15) \
  ROW(CS_TYPE_NUMERIC, 16) \
  ROW(CS_TYPE_DECIMAL, 17) \
  ROW(CS_TYPE_VARCHAR, 18) \
  ROW(CS_TYPE_VARBINARY, 19) \
  ROW(CS_TYPE_LONG, 20) \
  ROW(CS_TYPE_SENSITIVITY, 21) \
  ROW(CS_TYPE_BOUNDARY, 22) \
  ROW(CS_TYPE_VOID, 23) \
  ROW(CS_TYPE_USHORT, 24) \
  ROW(CS_TYPE_UNICHAR, 25) \
  ROW(CS_TYPE_BLOB, 26) \
  ROW(CS_TYPE_DATE, 27) \
  ROW(CS_TYPE_TIME, 28) \
  ROW(CS_TYPE_UNITEXT, 29) \
  ROW(CS_TYPE_BIGINT, 30) \
  ROW(CS_TYPE_USMALLINT, 31) \
  ROW(CS_TYPE_UINT, 32) \
  ROW(CS_TYPE_UBIGINT, 33) \
  ROW(CS_TYPE_XML, 34) \
  ROW(CS_TYPE_BIGDATETIME, 35) \
  ROW(CS_TYPE_BIGTIME, 36) \
  ROW(CS_TYPE_TEXTLOCATOR, 37) \
  ROW(CS_TYPE_IMAGELOCATOR, 38) \
  ROW(CS_TYPE_UNITEXTLOCATOR, 39) \
  ROW(CS_TYPE_COUNT, 40) \
  ROW(CS_SUCCEED, 1) \
  ROW(CS_FAIL, 0) \
  ROW(CS_MEM_ERROR, -1) \
  ROW(CS_PENDING, -2) \
  ROW(CS_QUIET, -3) \
  ROW(CS_BUSY, -4) \
  ROW(CS_INTERRUPT, -5) \
  ROW(CS_CANCELED, -202) \
  ROW(CS_ROW_FAIL, -203) \
  ROW(CS_END_DATA, -204) \
  ROW(CS_END_RESULTS, -205) \
  ROW(CS_END_ITEM, -206) \
  ROW(CS_NOMSG, -207) \
  ROW(CS_TIMED_OUT, -208) \
  ROW(CS_PASSTHRU_EOM, -210) \
  ROW(CS_PASSTHRU_MORE, -211) \
  ROW(CS_TRYING, -213) \
  ROW(CS_CONV_OVERFLOW, -101) \
  ROW(CS_CONV_UNDERFLOW, -102) \
  ROW(CS_CONV_BADPRECISION, -103) \
  ROW(CS_CONV_BADSCALE, -104) \
  ROW(CS_CONV_SYNTAX, -105) \
  ROW(CS_CONV_PADCONFLICT, -106) \
  ROW(CS_CONV_DOMAIN, -107) \
  ROW(CS_CONV_DIVZERO, -108) \
  ROW(CS_CONV_TRUNCATED, -113) \
  ROW(CS_CONV_DATEBUFFER, -114) \
  ROW(CS_CONV_BADCHAR, -115) \
  ROW(CS_CONV_NOXLATE, -116) \
  ROW(CS_CONV_PARTIAL, -117) \
  ROW(COM_INTL_ERROR, -301) \
  ROW(COM_LOCFILE_ERROR, -414) \
  ROW(COM_UNKNOWN_NAME, -417) \
  ROW(COM_ERRSEC_DEFAULTS, 1) \
  ROW(COM_ERRSEC_LAYER, 2) \
  ROW(COM_ERRSEC_ORIGIN, 3) \
  ROW(COM_ERRSEC_API, 4) \
  ROW(COM_EP_STRING, 0) \
  ROW(COM_EP_INT, 8) \
  ROW(COM_ERR_CACHE_SIZE, 100) \
  ROW(COM_ERRORIGIN_INTL, 5) \
  ROW(CS_DFMT_NULLTERM, 1) \
  ROW(CS_DFMT_PADNULL, 2) \
  ROW(CAST_DFMT_PADHEAD, 8) \
  ROW(CAST_MAY_DROP_DIGITS, 1) \
  ROW(CAST_TYPE_FLT4, 59) \
  ROW(CAST_TYPE_FLT8, 62) \
  ROW(CS_DFMT_PADBLANK, 4) \
  ROW(CS_DFMT_ESCQUOTE, 32) \
  ROW(CS_DFMT_FROMSOURCE, -2562) \
  ROW(CS_MIN_PREC, 1) \
  ROW(CS_MAX_PREC, 77) \
  ROW(CS_MIN_SCALE, 0) \
  ROW(CS_MAX_SCALE, 77) \
  ROW(CS_UNUSED, -99999) \
  ROW(CS_LEN_NULLTERM, -9) \
  ROW(CS_ACT_GET, 33) \
  ROW(CS_ACT_SET, 34) \
  ROW(CS_ACT_CLEAR, 35) \
  ROW(CS_LCTYPE_COLLATE, 1) \
  ROW(CS_LCTYPE_CTYPE, 2) \
  ROW(CS_LCTYPE_MESSAGE, 3) \
  ROW(CS_LCTYPE_MONETARY, 4) \
  ROW(CS_LCTYPE_NUMERIC, 5) \
  ROW(CS_LCTYPE_TIME, 6) \
  ROW(CS_LCTYPE_ALL, 7) \
  ROW(COM_PAD_CHAR, 1) \
  ROW(COM_PAD_BIN, 2) \
  ROW(COM_PAD_NONE, 3) \
  ROW(COM_PAD_UNICHAR, 4) \
  ROW(CS_LOCATOR_TAG, -779) \
  ROW(COM_APPGLOBAL_STATIC, 1) \
  ROW(NCL_ONCE_INIT, 1) \
  ROW(CS_CTYPE_UPPER, 1) \
  ROW(CS_CTYPE_LOWER, 2) \
  ROW(CS_CTYPE_ALPHA, 3) \
  ROW(CS_CTYPE_DIGIT, 4) \
  ROW(CS_CTYPE_SPACE, 8) \
  ROW(CS_CTYPE_XDIGIT, 16) \
  ROW(CS_CTYPE_PUNCT, 32) \
  ROW(CS_CTYPE_GRAPH, 64) \
  ROW(DT_NUMBER, 0) \
  ROW(DT_YEAR, 1) \
  ROW(DT_COLON, 2) \
  ROW(DT_AMPM, 3) \
  ROW(DT_MONTH, 4) \
  ROW(DT_COMMA, 5) \
  ROW(DT_SEPARATOR, 6) \
  ROW(DT_END, 7) \
  ROW(DT_ERROR, 8) \
  ROW(DT_USED, 9) \
  ROW(DT_PACKED, 10) \
  ROW(DT_ISOT, 11) \
  ROW(DT_FIVE, 12) \
  ROW(DT_NO_DATE, 99) \
  ROW(DT_BAD_SYNTAX, -1) \
  ROW(DT_LEFTOVER, -2) \
  ROW(CS_LEX_CURRENCY, 64) \
  ROW(CS_CTYPE_LEAD, 128) \
  ROW(COM_CHARSET_IMAGE1, 1001) \
  ROW(COM_CHARSET_IMAGE2, 1002) \
  ROW(SMEL_BYTE, 0) \
  ROW(SMEL_DOUBLE, 1) \
  ROW(SMEL_LIGATURE, 3) \
  ROW(SMEL_NONE, 255) \
  ROW(SMEL_COUNT, 64) \
  ROW(SO_PRIMARY, 1) \
  ROW(SO_SECONDARY, 2) \
  ROW(SO_PREFERENCE, 4) \
  ROW(SO_TIES, 8) \
  ROW(SO_EXPANDS, 16) \
  ROW(SO_LIGATURES, 32) \
  ROW(SO_WEIGHTS, 255) \
  ROW(SO_NAME_SIZE, 31) \
  ROW(SO_DESCRIPT_SIZE, 256) \
  ROW(LIG_AFTER, 1) \
  ROW(LIG_EQUAL, 2) \
  ROW(LIG_BYTES, 10) \
  ROW(LIG_COUNT, 50) \
  ROW(MM_POOL_NONE, 2235) \
  ROW(MM_POOL_BUDDY, 2236) \
  ROW(MM_POOL_ALLOCONLY, 2237) \
  ROW(MM_POOL_UNIFORM, 2238) \
  ROW(MM_ACTION_GET, 33) \
  ROW(MM_ACTION_SET, 34) \
  ROW(MM_ACTION_CLEAR, 35) \
  ROW(MM_PROP_POOLTYPE, 1235) \
  ROW(MM_PROP_SBREAK, 1236) \
  ROW(MM_PROP_PARAM, 1237) \
  ROW(MM_PROP_UNSBREAK, 1238) \
  ROW(MM_PROP_LOCK, 1239) \
  ROW(MM_PROP_LOCKARG, 1240) \
  ROW(MM_PROP_UNLOCK, 1241) \
  ROW(MM_PROP_CHUNKSIZE, 1242) \
  ROW(MM_PROP_MAXSIZE, 1243) \
  ROW(MM_PROP_ADDHEAP, 1244) \
  ROW(MM_PROP_OVERHEAD, 1245) \
  ROW(MM_PROP_SUBPOOL, 1246) \
  ROW(MM_PROP_BLOCKSIZE, 1247) \
  ROW(MM_DROP_NORMAL, -99999) \
  ROW(MM_DROP_FORCE, 300) \
  ROW(MM_BAD_PROPERTY, -214) \
  ROW(MM_NO_MAXSIZE, -9999) \
  ROW(MM_ST_OWNED, 1) \
  ROW(MM_ST_CALLER, 2) \
  ROW(MM_ST_READY, 8) \
  ROW(MM_ST_OWNMUTEX, 16) \
  ROW(MM_ST_DROPPING, 32) \
  ROW(LM_ALLOCATED, 11) \
  ROW(LM_RELEASED, 12) \
  ROW(LM_INITIALIZED, 13) \
  ROW(LM_UNINITIALIZED, 14) \
  ROW(LM_INSERTED, 15) \
  ROW(LM_SET, 16) \
  ROW(LM_UNSET, 17) \
  ROW(LM_DLINK, 13) \
  ROW(LM_CHASH, 14) \
  ROW(LM_DHASH, 16) \
  ROW(LM_QUEUE, 18) \
  ROW(LM_STACK, 19) \
  ROW(LM_OP_INSERT, 20) \
  ROW(LM_OP_DELETE, 21) \
  ROW(LM_OP_SEARCH, 22) \
  ROW(LM_OP_REPLACE, 23) \
  ROW(LM_OP_NEXT, 24) \
  ROW(LM_OP_PREV, 25) \
  ROW(LM_OP_CURRENT, 26) \
  ROW(LM_OP_FIRST, 27) \
  ROW(LM_OP_LAST, 28) \
  ROW(LM_OP_PRINT, 29) \
  ROW(LM_OP_PRINTALL, 30) \
  ROW(LM_OP_APPLY, 31) \
  ROW(LM_POS_BEFORE, 32) \
  ROW(LM_POS_AFTER, 33) \
  ROW(LM_NOT_FOUND, 34) \
  ROW(LM_ACTION_GET, 33) \
  ROW(LM_ACTION_SET, 34) \
  ROW(LM_ACTION_CLEAR, 35) \
  ROW(LM_EXIT_NORMAL, -99999) \
  ROW(LM_EXIT_FORCE, 36) \
  ROW(LM_DROP_NORMAL, -99999) \
  ROW(LM_DROP_FORCE, 35) \
  ROW(LM_HDL_LIST_TYPE, 1) \
  ROW(LM_HDL_MAX_TABLESIZE, 2) \
  ROW(LM_HDL_MAX_POOLSIZE, 3) \
  ROW(LM_HDL_HANDLE_LOAD, 8) \
  ROW(LM_HDL_CONTEXT_ADDR, 9) \
  ROW(LM_HDL_HANDLE_NAME, 10) \
  ROW(LM_HDL_PRINT_FUNC, 11) \
  ROW(LM_HDL_COMP_FUNC, 12) \
  ROW(LM_CXT_LIST_TYPE, 1) \
  ROW(LM_CXT_MAX_TABLESIZE, 2) \
  ROW(LM_CXT_MAX_POOLSIZE, 3) \
  ROW(LM_CXT_VERSION, 4) \
  ROW(LM_CXT_CONTEXT_LOAD, 5) \
  ROW(LM_CXT_CURRENT_HANDLENAME, 6) \
  ROW(LM_CXT_CURRENT_HANDLEADDR, 7) \
  ROW(COM_OID_BER_SIZE, 255) \
  ROW(COM_OID_CHARSET, 0) \
  ROW(COM_OID_NUMERIC, 1) \
  ROW(COM_OID_MONEY, 2) \
  ROW(COM_OID_DATETIME, 3) \
  ROW(COM_OID_COLLATE, 4) \
  ROW(COM_OID_NATLANG, 5) \
  ROW(COM_OID_INTEGER2, 6) \
  ROW(COM_OID_INTEGER4, 7) \
  ROW(COM_OID_INTEGER8, 8) \
  ROW(COM_OID_FLOAT4, 9) \
  ROW(COM_OID_FLOAT8, 10) \
  ROW(COM_OID_SECMECH, 11) \
  ROW(COM_OID_CLASS_COUNT, 12) \
  ROW(COM_OID_TO_NAME, 1) \
  ROW(COM_NAME_TO_OID, 2) \
  ROW(CS_LOCSTR_CHARSET, 1) \
  ROW(CS_LOCSTR_LANGUAGE, 2) \
  ROW(CS_LOCSTR_SORTORDER, 3) \
  ROW(COM_FOU_BADCHAR, 1) \
  ROW(COM_FOU_OVERFLOW, 2) \
  ROW(COM_FOU_INVALID, 4) \
  ROW(COM_FOU_NONE, 0) \
  ROW(COM_FOU_COPY, 1) \
  ROW(COM_FOU_ASCII, 2) \
  ROW(COM_FOU_MAP, 3) \
  ROW(COM_FOU_SETS, 10) \
  ROW(CS_LOCSTR_LANG_CHARSET, 4)

/* clang-format on */

#endif
