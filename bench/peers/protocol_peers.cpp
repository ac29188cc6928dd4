#include "protocol_peers.h"

#include <initializer_list>

CS_RETCODE peer_scan_values(const TDS_TOKENMAP *map, CS_INT value, CS_INT *result,
                            CS_INT direction) {
  if (direction == COM_TDS_CSTOTDS) {
    for (; map->cs_tokenval != COM_TDS_UNIQ_END; ++map)
      if (map->cs_tokenval == value) {
        *result = map->tds_tokenval;
        return CS_SUCCEED;
      }
  } else {
    for (; map->tds_tokenval != COM_TDS_UNIQ_END; ++map)
      if (map->tds_tokenval == value) {
        *result = map->cs_tokenval;
        return CS_SUCCEED;
      }
  }
  return CS_FAIL;
}

CS_RETCODE peer_scan_bits(const TDS_TOKENMAP *map, CS_INT value, CS_INT *result, CS_INT *unmapped,
                          CS_INT direction) {
  CS_INT mapped = 0, left = value;
  for (; map->cs_tokenval != COM_TDS_BIT_END; ++map) {
    const CS_INT from = direction == COM_TDS_CSTOTDS ? map->cs_tokenval : map->tds_tokenval;
    if ((from & value) != 0) {
      mapped |= direction == COM_TDS_CSTOTDS ? map->tds_tokenval : map->cs_tokenval;
      left &= ~from;
    }
  }
  *result = mapped;
  *unmapped = left;
  return CS_SUCCEED;
}

const TDS_DATAMAP *peer_scan_types(const TDS_DATAMAP *first, const TDS_DATAMAP *second,
                                   CS_INT wire_type) {
  for (const TDS_DATAMAP *const map : {first, second})
    for (const TDS_DATAMAP *row = map; row->cs_datatype != -1; ++row)
      if (row->tds_datatype == wire_type)
        return row;
  return nullptr;
}

const TDS_DATAMAP *peer_scan_types_and_lengths(const TDS_DATAMAP *first, const TDS_DATAMAP *second,
                                               CS_INT wire_type, CS_INT length) {
  for (const TDS_DATAMAP *row = first; row->cs_datatype != -1; ++row)
    if (row->tds_datatype == wire_type)
      return row;
  for (const TDS_DATAMAP *row = second; row->cs_datatype != -1; ++row)
    if (row->tds_datatype == wire_type && row->tds_datamaxlen == length)
      return row;
  return nullptr;
}
