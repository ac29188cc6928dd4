// The peers of installation files, in a shared object of their own.
#ifndef ZRVBENCH_INTL_PEERS_H
#define ZRVBENCH_INTL_PEERS_H

#include <cstddef>

#include "zrvcomn/comloc.h"

namespace zrvbench {

// The first record of a class that has a name: a loop over the same strings, without a check.
const CsOID *peer_scan_names(const CsOID *oid, const char *name, std::size_t length);

// A bit, or a byte, of the table of a set with one byte for each character: the read and nothing else.
int peer_table_bits(const CHAR_MAP *table, const CS_BYTE *p);
int peer_table_lower(const CHAR_MAP *table, const CS_BYTE *p);
int peer_table_width(const CS_BYTE *table, const CS_BYTE *p);

#ifdef ZRVBENCH_WITH_GLIB
// Loads a key file and releases it; ends the program when it cannot.
void glib_load_key_file(const char *path);
#endif

} // namespace zrvbench

#endif
