// The peers of the protocol maps, in a shared object of their own: bare scans of the same rows,
// from the first one on, without a check.
#ifndef ZRVBENCH_PROTOCOL_PEERS_H
#define ZRVBENCH_PROTOCOL_PEERS_H

#include "zrvcomn/commaps.h"

extern "C" {

// A map of unique values, and a bit map; in the direction of com_tds_maptoken.
CS_RETCODE peer_scan_values(const TDS_TOKENMAP *map, CS_INT value, CS_INT *result,
                            CS_INT direction);
CS_RETCODE peer_scan_bits(const TDS_TOKENMAP *map, CS_INT value, CS_INT *result, CS_INT *unmapped,
                          CS_INT direction);

// The row of a wire type in the first map, else in the second; null if neither has it.
const TDS_DATAMAP *peer_scan_types(const TDS_DATAMAP *first, const TDS_DATAMAP *second,
                                   CS_INT wire_type);
// The same, where the length must be equal in the second map.
const TDS_DATAMAP *peer_scan_types_and_lengths(const TDS_DATAMAP *first, const TDS_DATAMAP *second,
                                               CS_INT wire_type, CS_INT length);
}

#endif
