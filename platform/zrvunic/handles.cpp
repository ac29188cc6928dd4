// Converters: how they are made, what they are told, and the calls that convert.
#include <pthread.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <new>

#include "tables.h"
#include "zrvintl.h"

struct uniconv_converter {
  const zrvunic::Set *set;
  zrvunic::Table *table; // null for a set that needs none
  zrvunic::Substitutes substitutes;
};

namespace zrvunic {

namespace {

Outcome decode(const uniconv_converter &converter, UChar16 *dest, size_t room,
               const UChar8 *source) noexcept {
  switch (converter.set->form) {
  case Form::one_byte:
    return decode_one_byte(static_cast<const OneByteTable &>(*converter.table), dest, room, source);
  case Form::utf8:
    return decode_utf8(dest, room, source);
  case Form::utf16:
    return decode_utf16(dest, room, source);
  case Form::rcsu:
    return decode_rcsu(dest, room, source);
  case Form::shifted:
    return decode_shifted(static_cast<const MultiByteTable &>(*converter.table), dest, room,
                          source);
  default:
    return decode_multi_byte(static_cast<const MultiByteTable &>(*converter.table), dest, room,
                             source);
  }
}

Outcome encode(const uniconv_converter &converter, UChar8 *dest, size_t room, const UChar16 *source,
               size_t count) noexcept {
  const Substitutes &substitutes = converter.substitutes;
  switch (converter.set->form) {
  case Form::one_byte:
    return encode_one_byte(static_cast<const OneByteTable &>(*converter.table), substitutes, dest,
                           room, source, count);
  case Form::utf8:
    return encode_utf8(substitutes, dest, room, source, count);
  case Form::utf16:
    return encode_utf16(substitutes, dest, room, source, count);
  case Form::rcsu:
    return encode_rcsu(substitutes, dest, room, source, count);
  case Form::shifted:
    return encode_shifted(static_cast<const MultiByteTable &>(*converter.table), substitutes, dest,
                          room, source, count);
  default:
    return encode_multi_byte(static_cast<const MultiByteTable &>(*converter.table), substitutes,
                             dest, room, source, count);
  }
}

bool has_replacement(const UChar16 *text) noexcept {
  while (*text != 0 && *text != replacement)
    ++text;
  return *text != 0;
}

// The tables in use, which all converters of the process share.
pthread_mutex_t tables_lock = PTHREAD_MUTEX_INITIALIZER;
Table *tables = nullptr;

// The one of a set that was read from a directory, null for the home directory; null when nobody has it.
Table *find_table(const Set &set, const char *directory) noexcept {
  Table *table = tables;
  while (table != nullptr &&
         (table->set != &set ||
          !(directory != nullptr ? std::strcmp(table->directory, directory) == 0 : table->is_home)))
    table = table->next;
  return table;
}

// The copy of a directory's name that a table keeps; false when there is no memory.
bool keep_directory(Table &table, const char *directory) noexcept {
  const size_t size = std::strlen(directory) + 1;
  table.directory = static_cast<char *>(comn_malloc(size));
  if (table.directory == nullptr)
    return false;
  std::memcpy(table.directory, directory, size);
  return true;
}

// These make the table of a set, read if nobody has it yet; null with the reason in `*code`.
Table *table_of(const Set &set, const char *directory, int *code) noexcept {
  if (Table *const found = find_table(set, directory))
    return found;
  Table *const table = load_table(set, directory, code);
  if (table == nullptr)
    return nullptr;
  if (!keep_directory(*table, directory)) {
    comn_free(table);
    *code = UNICONV_ENOMEM;
    return nullptr;
  }
  table->next = tables;
  return tables = table;
}

Table *table_of_home(const Set &set, int *code) noexcept {
  if (Table *const found = find_table(set, nullptr))
    return found;
  char directory[PATH_MAX];
  if (intl_home(directory, sizeof directory) < 1 ||
      intl_strlcat(directory, "/charsets/unicode", sizeof directory) >= sizeof directory) {
    *code = UNICONV_ENOTABLE;
    return nullptr;
  }
  Table *const table = table_of(set, directory, code);
  if (table != nullptr)
    table->is_home = true;
  return table;
}

// Null, and the reason in `*code`. To be given back with release.
Table *acquire(const Set &set, const char *directory, int *code) noexcept {
  pthread_mutex_lock(&tables_lock);
  Table *const table =
      directory != nullptr ? table_of(set, directory, code) : table_of_home(set, code);
  if (table != nullptr)
    ++table->users;
  pthread_mutex_unlock(&tables_lock);
  return table;
}

void release(Table *table) noexcept {
  pthread_mutex_lock(&tables_lock);
  if (--table->users == 0) {
    Table **link = &tables;
    while (*link != table)
      link = &(*link)->next;
    *link = table->next;
    comn_free(table->directory);
    comn_free(table);
  }
  pthread_mutex_unlock(&tables_lock);
}

// `directory` is null for the home directory.
int make(UNICONV_CID cid, const char *directory, CVTH *handle) noexcept {
  *handle = nullptr;
  const Set *const set = find_set(cid);
  if (set == nullptr)
    return UNICONV_ENOCONV;
  void *const block = comn_malloc(sizeof(uniconv_converter));
  if (block == nullptr)
    return UNICONV_ENOMEM;
  int code = UNICONV_SUCCEED;
  Table *table = built_in(cid);
  if (set->file != nullptr && (table = acquire(*set, directory, &code)) == nullptr) {
    comn_free(block);
    return code;
  }
  const Substitutes substitutes =
      set->ebcdic ? Substitutes{0x6F, 0xFEFE} : Substitutes{'?', '?' << 8 | '?'};
  *handle = new (block) uniconv_converter{set, table, substitutes};
  return UNICONV_SUCCEED;
}

} // namespace

} // namespace zrvunic

void i18nuni_RequestSetDefaults(I18NUNI_REQUEST *request) noexcept {
  if (request != nullptr)
    *request = I18NUNI_REQUEST{1, 0, I18NUNI_DIR_HOME};
}

int uniconv_HandleGet(UNICONV_CID cid, CVTH *handle) noexcept {
  return handle != nullptr ? zrvunic::make(cid, nullptr, handle) : UNICONV_EINVAL;
}

int uniconv_HandleGetU(UNICONV_CID cid, const I18NUNI_REQUEST *request, const UChar16 *path,
                       int reserved, CVTH *handle) noexcept {
  if (handle == nullptr)
    return UNICONV_EINVAL;
  *handle = nullptr;
  const int directory = request != nullptr ? request->useCurrentDir : I18NUNI_DIR_HOME;
  if (reserved != 0 || directory < I18NUNI_DIR_HOME || directory > I18NUNI_DIR_PATH ||
      (directory == I18NUNI_DIR_PATH && path == nullptr))
    return UNICONV_EINVAL;
  if (directory == I18NUNI_DIR_CURRENT)
    return zrvunic::make(cid, ".", handle);
  if (directory == I18NUNI_DIR_HOME || zrvunic::has_replacement(path))
    return zrvunic::make(cid, nullptr, handle);
  UChar8 bytes[4001];
  if (uniutf8_unistrToUTF8(bytes, sizeof bytes, path, nullptr) < 1)
    return UNICONV_ENOTABLE;
  return zrvunic::make(cid, reinterpret_cast<const char *>(bytes), handle);
}

int uniconv_HandleFree(CVTH handle) noexcept {
  if (handle != nullptr && handle->set->file != nullptr)
    zrvunic::release(handle->table);
  comn_free(handle);
  return UNICONV_SUCCEED;
}

int uniconv_SetSubstituteChar(CVTH handle, UChar8 value) noexcept {
  if (handle == nullptr || value == 0)
    return UNICONV_EINVAL;
  handle->substitutes.single = value;
  return UNICONV_SUCCEED;
}

int uniconv_SetDBCSSubstituteChar(CVTH handle, UChar16 value) noexcept {
  if (handle == nullptr || (value & 0xFF) == 0 || value < 0x100)
    return UNICONV_EINVAL;
  handle->substitutes.pair = value;
  return UNICONV_SUCCEED;
}

int uniconv_unistrFromS(CVTH handle, UChar16 *dest, int size, const UChar8 *source,
                        int *length) noexcept {
  if (length != nullptr)
    *length = 0;
  if (handle == nullptr || dest == nullptr || size < 1 || source == nullptr)
    return UNICONV_EINVAL;
  const zrvunic::Outcome outcome =
      zrvunic::decode(*handle, dest, static_cast<size_t>(size) - 1, source);
  dest[outcome.length] = 0;
  if (length != nullptr)
    *length = static_cast<int>(outcome.length) + 1;
  return outcome.code;
}

int uniconv_unistrToS(CVTH handle, UChar8 *dest, int size, const UChar16 *source,
                      int *length) noexcept {
  if (length != nullptr)
    *length = 0;
  if (handle == nullptr || dest == nullptr || size < 1 || source == nullptr)
    return UNICONV_EINVAL;
  const size_t room = static_cast<size_t>(size) - 1;
  const zrvunic::Outcome outcome =
      zrvunic::encode(*handle, dest, room, source, zrvunic::unit_count(source));
  dest[outcome.length] = 0;
  if (length != nullptr)
    *length = static_cast<int>(outcome.length) + 1;
  if (outcome.code != UNICONV_FULL || outcome.length == room)
    return outcome.code;
  std::fill(dest + outcome.length, dest + size, UChar8{0});
  return UNICONV_NOFIT;
}

int uniconv_GetExpansion(UNICONV_CID from, UNICONV_CID to, int *expansion) noexcept {
  const zrvunic::Set *const source = zrvunic::find_set(from);
  const zrvunic::Set *const target = zrvunic::find_set(to);
  if (expansion == nullptr)
    return UNICONV_EINVAL;
  if (source == nullptr || target == nullptr)
    return UNICONV_ENOCONV;
  const int bytes = target->unit_bytes;
  if (from == to)
    *expansion = 1;
  else if (source->form == zrvunic::Form::utf16) // one unit has two bytes
    *expansion = (bytes + 1) / 2;
  else if (source->form == zrvunic::Form::rcsu) // one byte can become two units
    *expansion = std::min(2 * bytes, 4);
  else
    *expansion = bytes;
  return UNICONV_SUCCEED;
}

int uniconv_GetExpansionFactor(CVTH handle, int *factor) noexcept {
  if (handle == nullptr || factor == nullptr)
    return UNICONV_EINVAL;
  *factor = handle->set->unit_bytes;
  return UNICONV_SUCCEED;
}
