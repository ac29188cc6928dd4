/*
 * commaps.h - the maps between the library's codes and the numbers of the wire protocol, and the
 * checks of state tables that the layers above define.
 *
 * Everything here is constant tables and small lookups. A null pointer is fatal, CS_FAIL, where
 * nothing else is said.
 */
#ifndef ZRV_COMMAPS_H
#define ZRV_COMMAPS_H

#include "cspublic.h"

ZRV_BEGIN_DECLS

/* Failures of the type lookups; message numbers as well. */
#define COM_TDS_BADTYPE 67175721 /* no such wire type */
#define COM_CS_BADTYPE 67241513  /* no such library type */

/* Directions of a mapping. */
#define COM_TDS_CSTOTDS 1 /* library to wire */
#define COM_TDS_TDSTOCS 2 /* wire to library */

/* ---- datatypes ---- */

/* One wire type. */
typedef struct _com__tds_datamap {
  CS_INT tds_datatype;   /* the wire type; -1 for a library type without a wire form */
  CS_INT cs_datatype;    /* the library's datatype code; -1 in an end row */
  CS_INT tds_datamaxlen; /* longest value in bytes */
  CS_BOOL tds_nullable;
  CS_INT tds_lendatalen; /* bytes of the length prefix on the wire: 0, 1 or 4 */
} TDS_DATAMAP;

/* Wire types that name one library type each, and those that are told apart by their maximum
 * length; both with an end row. Behind them the forms of each library type, by its code: without
 * NULLs, and with them. */
extern ZRV_PRIVATE const TDS_DATAMAP Com__tds_uniq_datatype_map[36];
extern ZRV_PRIVATE const TDS_DATAMAP Com__tds_dup_datatype_map[19];
extern ZRV_PRIVATE const TDS_DATAMAP Com__tds_cs_uniq[CS_TYPE_COUNT];
extern ZRV_PRIVATE const TDS_DATAMAP Com__tds_cs_dup[CS_TYPE_COUNT];

/* The length prefix (bytes) and nullability of a wire type. CS_SUCCEED, or COM_TDS_BADTYPE with the
 * outputs unchanged. */
ZRV_API CS_RETCODE com_tds_get_tdsdatainfo(CS_INT tds_datatype, CS_INT *lendatalen,
                                           CS_BOOL *nullable) ZRV_NOEXCEPT;

/* The maximum length in bytes of a wire type of the unique map. CS_SUCCEED, or COM_TDS_BADTYPE with
 * the output unchanged. */
ZRV_API CS_RETCODE com_tds_get_tdsfixedlen(CS_INT tds_datatype, CS_INT *maxlen) ZRV_NOEXCEPT;

/* The library type of a wire type; the maximum length in bytes tells those apart that share one.
 * CS_SUCCEED, or COM_TDS_BADTYPE with the output unchanged. */
ZRV_API CS_RETCODE com_tds_get_cstype(CS_INT tds_datatype, CS_INT datamaxlen,
                                      CS_INT *cs_datatype) ZRV_NOEXCEPT;

/* The wire form of a library type where NULLs can occur, and where they cannot: its wire type,
 * length prefix and maximum length in bytes. A type without a wire form succeeds and delivers -1 in
 * all three. CS_SUCCEED, or COM_CS_BADTYPE, outputs unchanged, for a code outside 0 to 39. */
ZRV_API CS_RETCODE com_tds_get_nullable_tdstype(CS_INT cs_datatype, CS_INT *tds_datatype,
                                                CS_INT *lendatalen, CS_INT *maxlen) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE com_tds_get_fixed_tdstype(CS_INT cs_datatype, CS_INT *tds_datatype,
                                             CS_INT *lendatalen, CS_INT *maxlen) ZRV_NOEXCEPT;

/* ---- tokens ---- */

/* One pair of values. */
typedef struct _com__tds_tokenmap {
  CS_INT cs_tokenval;
  CS_INT tds_tokenval;
} TDS_TOKENMAP;

/* Both fields of the end row of a map of unique values, and of a bit map. */
#define COM_TDS_UNIQ_END (-1)
#define COM_TDS_BIT_END 0x70000000

/* One map in the array of maps. */
typedef struct _com__tds_maparray {
  CS_INT index;
  const TDS_TOKENMAP *map;
  CS_BOOL is_uniqmap; /* 1 values, 0 bits */
} TDS_MAPARRAY;

#define COM_TDS_MAP_COUNT 21

extern ZRV_PRIVATE const TDS_MAPARRAY Com__tds_maparray[COM_TDS_MAP_COUNT];
extern ZRV_PRIVATE const TDS_TOKENMAP Com__tds_altop_map[6];
extern ZRV_PRIVATE const TDS_TOKENMAP Com__tds_captype_map[3];
extern ZRV_PRIVATE const TDS_TOKENMAP Com__tds_cap_req_map[108];
extern ZRV_PRIVATE const TDS_TOKENMAP Com__tds_cap_resp_map[74];
extern ZRV_PRIVATE const TDS_TOKENMAP Com__tds_colinfo_map[6];
extern ZRV_PRIVATE const TDS_TOKENMAP Com__tds_curclose_map[3];
extern ZRV_PRIVATE const TDS_TOKENMAP Com__tds_curdecl_map[22];
extern ZRV_PRIVATE const TDS_TOKENMAP Com__tds_curinfo_map[17];
extern ZRV_PRIVATE const TDS_TOKENMAP Com__tds_dynamic_map[9];
extern ZRV_PRIVATE const TDS_TOKENMAP Com__tds_optcom_map[5];
extern ZRV_PRIVATE const TDS_TOKENMAP Com__tds_option_map[48];
extern ZRV_PRIVATE const TDS_TOKENMAP Com__tds_optboolean_map[3];
extern ZRV_PRIVATE const TDS_TOKENMAP Com__tds_optdatefirst_map[8];
extern ZRV_PRIVATE const TDS_TOKENMAP Com__tds_optdatefmt_map[7];
extern ZRV_PRIVATE const TDS_TOKENMAP Com__tds_optisolation_map[8];
extern ZRV_PRIVATE const TDS_TOKENMAP Com__tds_paramstat_map[10];
extern ZRV_PRIVATE const TDS_TOKENMAP Com__tds_rpcopt_map[4];
extern ZRV_PRIVATE const TDS_TOKENMAP Com__tds_rpcstat_map[4];
extern ZRV_PRIVATE const TDS_TOKENMAP Com__tds_retval_map[5];
extern ZRV_PRIVATE const TDS_TOKENMAP Com__tds_rowfmt_map[11];
extern ZRV_PRIVATE const TDS_TOKENMAP Com__tds_optisolationmode_map[4];

/*
 * Maps a value through one of the maps.
 *
 * mapindex   in   0 to 20, an index of Com__tds_maparray
 * srcval     in   the value
 * destval    out  what it maps to; 0 on a miss
 * unmapval   out  what no row claimed: 0, the value on a miss, or the bits that are left
 * direction  in   COM_TDS_CSTOTDS or COM_TDS_TDSTOCS
 *
 * A value is looked up whole in a map of unique values; in a bit map each row that shares a bit
 * with it adds what it maps to. The value 0 is looked up whole in every map. Returns CS_SUCCEED,
 * also with bits left over; CS_FAIL on a miss, which is fatal from library to wire; CS_CONV_DOMAIN,
 * outputs unchanged, for an index without a map. Any other direction is fatal, CS_FAIL.
 */
ZRV_API CS_RETCODE com_tds_maptoken(CS_INT mapindex, CS_INT srcval, CS_INT *destval,
                                    CS_INT *unmapval, CS_INT direction) ZRV_NOEXCEPT;

/* The two directions of com_tds_maptoken over a given map, which must have its end row. */
ZRV_PRIVATE CS_RETCODE com__tds_cstotds_map(const TDS_TOKENMAP *map, CS_INT srcval, CS_INT *destval,
                                            CS_INT *unmapval, CS_BOOL is_uniq) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE com__tds_tdstocs_map(const TDS_TOKENMAP *map, CS_INT srcval, CS_INT *destval,
                                            CS_INT *unmapval, CS_BOOL is_uniq) ZRV_NOEXCEPT;

/* ---- protocol version and secure login ---- */

/* Symbols of the protocol versions. */
#define COM_TDS_VERSION_40 7360
#define COM_TDS_VERSION_42 7361
#define COM_TDS_VERSION_46 7362
#define COM_TDS_VERSION_495 7363
#define COM_TDS_VERSION_50 7364

/*
 * Maps a version symbol to the four version bytes of the wire, or back.
 *
 * tdsarray   out or in  the bytes
 * arraylen   in         its size, at least 4
 * tdssymbol  in or out  the symbol
 * direction  in         COM_TDS_CSTOTDS writes the bytes, COM_TDS_TDSTOCS the symbol
 * outlen     out        4 when bytes were asked for; may be null
 *
 * CS_SUCCEED, or CS_FAIL with bytes or symbol unchanged for a version that is not known. From the
 * wire only the bytes count that tell versions apart. A smaller array and any other direction are
 * fatal, CS_FAIL.
 */
ZRV_API CS_RETCODE com_tds_version_map(CS_BYTE *tdsarray, CS_INT arraylen, CS_INT *tdssymbol,
                                       CS_INT direction, CS_INT *outlen) ZRV_NOEXCEPT;

/* Bits of the secure-login mask. */
#define COM_SECLOGIN_ENCRYPT 1
#define COM_SECLOGIN_CHALLENGE 2
#define COM_SECLOGIN_NEGOTIATE 4
#define COM_SECLOGIN_APPDEFINED 8
#define COM_SECLOGIN_EXTENDEDENCRYPT 32

/* Maps the secure-login flags, each 0 or 1, to the bits of one byte: COM_TDS_CSTOTDS adds the bits
 * of the flags that are 1 to what the mask holds, COM_TDS_TDSTOCS reads each bit into its flag.
 * CS_SUCCEED. Another flag or direction is fatal, CS_FAIL, nothing changed. */
ZRV_API CS_RETCODE com_tds_seclogin(CS_BYTE *seclogin_mask, CS_BOOL *extendedencrypt,
                                    CS_BOOL *encrypt, CS_BOOL *challenge, CS_BOOL *negotiate,
                                    CS_BOOL *appdefined, CS_INT direction) ZRV_NOEXCEPT;

/* ---- state tables ---- */

/* An event and the one that it depends on. */
typedef struct _csdepend {
  CS_EVENT event;
  CS_EVENT depend_event;
} CS_DEPEND;

/* An event and the state that it leads to. */
typedef struct _cseventns {
  CS_EVENT event;
  CS_STATE nextstate;
} CS_EVENT_NS;

#define COM_ST_END 255       /* ends every list, in the place of an event */
#define COM_ST_NOTRANS 254   /* com_st_trans: no transition */
#define COM_ST_SAMESTATE 149 /* a transition that stays; com_ns_trans: no transition */

/* A state machine of the layers above. The lists of a state end with COM_ST_END. */
typedef struct _cssttable {
  CS_CHAR *st_name;
  CS_INT st_version;
  CS_INT st_numstates;
  CS_STATE st_init;
  CS_EVENT **st_ver;      /* by state: the events that are allowed */
  CS_DEPEND *st_depend;   /* the events that depend on another; may be null */
  CS_EVENT_NS **st_trans; /* by state: the transitions */
  CS_CHAR **st_ststrings;
  CS_CHAR **st_verstrings;
  CS_CHAR **st_transtrings;
} CS_ST_TABLE;

typedef struct _csnstable {
  CS_CHAR *nsname;
  CS_EVENT_NS **nstable; /* by state: the transitions */
  CS_INT nsnumevents;
  CS_INT nsnumstates;
  CS_CHAR **nsevtstrs;
  CS_CHAR **nsststrs;
  CS_INT nsversion;
} CS_NS_TABLE;

/* A state beyond the table's number of states, and a state without a list, have no events. Where
 * that number is 0 or less, the caller answers for every state that it asks for. */

/* 1 if the event is allowed in the state, else 0. A null table is fatal, 0. */
ZRV_API CS_BOOL com_st_ver(CS_ST_TABLE *table, CS_STATE state, CS_EVENT event) ZRV_NOEXCEPT;

/* 1, and the event that `event` depends on, or 0 with the output unchanged. A null table or output
 * is fatal, 0. */
ZRV_API CS_BOOL com_st_depend(CS_ST_TABLE *table, CS_EVENT event,
                              CS_EVENT *depend_event) ZRV_NOEXCEPT;

/* The state that an event leads to: `state` itself where the table says COM_ST_SAMESTATE,
 * COM_ST_NOTRANS where it says nothing. A null table is fatal, COM_ST_NOTRANS. */
ZRV_API CS_STATE com_st_trans(CS_ST_TABLE *table, CS_STATE state, CS_EVENT event) ZRV_NOEXCEPT;

/* The state that an event leads to, COM_ST_SAMESTATE where the table says nothing. A null table is
 * fatal, COM_ST_SAMESTATE. */
ZRV_API CS_STATE com_ns_trans(CS_NS_TABLE *table, CS_STATE state, CS_EVENT event) ZRV_NOEXCEPT;

ZRV_END_DECLS

#endif
