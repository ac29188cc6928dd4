// The peers of installation files.
#include "intl_peers.h"

#include <cstring>

const CsOID *zrvbench::peer_scan_names(const CsOID *oid, const char *name, std::size_t length) {
  for (; oid != nullptr; oid = oid->oidnext)
    for (const CS_STRING_LIST *other = oid->oidlnames; other != nullptr; other = other->next)
      if (static_cast<std::size_t>(other->len) == length &&
          std::memcmp(other->string, name, length) == 0)
        return oid;
  return nullptr;
}

int zrvbench::peer_table_bits(const CHAR_MAP *table, const CS_BYTE *p) {
  return table[*p].char_type & CS_CTYPE_ALPHA;
}

int zrvbench::peer_table_lower(const CHAR_MAP *table, const CS_BYTE *p) {
  return table[*p].char_lower;
}

int zrvbench::peer_table_width(const CS_BYTE *table, const CS_BYTE *p) {
  return table[*p] & 15;
}

#ifdef ZRVBENCH_WITH_GLIB
#include <cstdio>
#include <cstdlib>

#include <glib.h>

void zrvbench::glib_load_key_file(const char *path) {
  GKeyFile *const file = g_key_file_new();
  GError *error = nullptr;
  if (g_key_file_load_from_file(file, path, G_KEY_FILE_NONE, &error) == FALSE) {
    std::fprintf(stderr, "%s: %s\n", path, error->message);
    std::exit(1);
  }
  g_key_file_free(file);
}
#endif
