// Loads the file charset.loc of a character set, and keeps the list of what is loaded.
#include <algorithm>
#include <cstring>
#include <string_view>

#include "charset_image.h"
#include "checks.h"
#include "hex_digits.h"
#include "oid_table.h"
#include "section_files.h"
#include "sortordr.h"

namespace {

CS_CHAR file_name[] = "charset.loc";
constexpr const char *section_name = "charset";
constexpr std::string_view image_key = "definition";

// An image without tables of any use is smaller than this.
constexpr CS_UINT least_class2_size = sizeof(cs_2class) + sizeof(CS_TYPE_MAP) + sizeof(CS_SOUNDEX);

// A byte numbers the planes of a normalisation map. Room for all of them, cleared: whatever plane an
// entry of the file names, a look-up stays inside.
constexpr size_t width_room = 256;
constexpr size_t norm_room = 256 * sizeof(CS_NORM_MAP);

CsCharDesc *first_of(CS_CONTEXT *context) noexcept {
  return static_cast<CsCharDesc *>(context->ctxglobals->cmg_chardesc);
}

void free_attributes(CHAR_ATTRIB *set) noexcept {
  if (set == nullptr)
    return;
  comn_free(set->cs_width_map);
  comn_free(set->cs_norm_map);
  comn_free(set->cs_type_map);
  comn_free(set->cs_soundex);
  com_free_char_attrib(set);
}

// Gives a set a table: `size` bytes of image in a new block of `room` bytes.
template <class Map>
CS_RETCODE read_table(CS_CONTEXT *context, INTL_LOCFILE *file, bool at_hand, size_t size,
                      size_t room, Map **table) noexcept {
  if (size > room)
    return CS_FAIL;
  *table = static_cast<Map *>(comn_calloc(room, 1));
  if (*table == nullptr)
    return CS_MEM_ERROR;
  return comn__get_image(context, file, at_hand, reinterpret_cast<CS_BYTE *>(*table),
                         static_cast<CS_INT>(size));
}

// The planes that a look-up asks for: the first one and those that its entries name.
size_t planes_in_use(const CS_TYPE_MAP &first) noexcept {
  size_t count = 1;
  for (const CHAR_MAP &entry : first.chmap)
    if ((entry.char_type & CS_CTYPE_LEAD) != 0)
      count = std::max<size_t>(count, entry.char_upper + size_t{1});
  return count;
}

// Gives a set its type map. Planes that the first one names and the file does not hold stand behind
// it, cleared, so that a look-up stays inside.
CS_RETCODE read_type_map(CS_CONTEXT *context, INTL_LOCFILE *file, bool at_hand, size_t size,
                         CHAR_ATTRIB *set) noexcept {
  const CS_RETCODE result = read_table(context, file, at_hand, size, size, &set->cs_type_map);
  if (result != CS_SUCCEED)
    return result;
  const size_t room = planes_in_use(*set->cs_type_map) * sizeof(CS_TYPE_MAP);
  if (room <= size)
    return CS_SUCCEED;
  auto *const whole = static_cast<CS_TYPE_MAP *>(comn_calloc(room, 1));
  if (whole == nullptr)
    return CS_MEM_ERROR;
  std::memcpy(whole, set->cs_type_map, size);
  comn_free(set->cs_type_map);
  set->cs_type_map = whole;
  return CS_SUCCEED;
}

CS_RETCODE read_class(CS_CONTEXT *context, INTL_LOCFILE *file, CHAR_ATTRIB *set) noexcept {
  const CS_RETCODE result = comn__get_byteval(context, file, &set->cs_class);
  if (result != CS_SUCCEED)
    return result;
  return set->cs_class == 1 || set->cs_class == 2 ? CS_SUCCEED : CS_FAIL;
}

CS_RETCODE read_name(CS_CONTEXT *context, INTL_LOCFILE *file, CHAR_ATTRIB *set) noexcept {
  const CS_RETCODE result = comn__get_string(context, file, set->cs_name, 0, sizeof set->cs_name);
  if (result == CS_SUCCEED)
    set->cs_namelen = static_cast<CS_SMALLINT>(std::strlen(set->cs_name));
  return result;
}

CS_RETCODE read_status(CS_CONTEXT *context, INTL_LOCFILE *file, CHAR_ATTRIB *set) noexcept {
  CS_USHORT status = 0;
  const CS_RETCODE result = comn__get_shortval(context, file, &status);
  set->cs_status = static_cast<CS_SMALLINT>(status);
  return result;
}

// The images, whose form two earlier entries have told.
CS_RETCODE read_images(CS_CONTEXT *context, INTL_LOCFILE *file, CS_UINT image_size,
                       CHAR_ATTRIB *set) noexcept {
  switch (set->cs_class) {
  case 1:
    return comn__load_charset1(context, file, image_size, set);
  case 2:
    return comn__load_charset2(context, file, image_size, set);
  default:
    return CS_FAIL;
  }
}

// The entries of the section up to the images, which end the reading.
CS_RETCODE read_entries(CS_CONTEXT *context, INTL_LOCFILE *file, CHAR_ATTRIB *set) noexcept {
  CS_UINT image_size = 0;
  int status = 0;
  while (const CS_CHAR *const entry = intl_nextentry(file, &status)) {
    const std::string_view key = entry;
    CS_RETCODE result = CS_FAIL;
    if (key == image_key)
      return read_images(context, file, image_size, set);
    if (key == "class")
      result = read_class(context, file, set);
    else if (key == "name")
      result = read_name(context, file, set);
    else if (key == "description")
      result = comn__get_string(context, file, nullptr, 0, 0);
    else if (key == "id")
      result = comn__get_byteval(context, file, &set->cs_id);
    else if (key == "status")
      result = read_status(context, file, set);
    else if (key == "image_size")
      result = comn__get_longval(context, file, &image_size);
    if (result != CS_SUCCEED)
      return result;
  }
  return comn::missing_result(context, status);
}

CS_RETCODE read_file(CS_CONTEXT *context, INTL_LOCFILE *file, CHAR_ATTRIB **set) noexcept {
  const CS_RETCODE found = comn::find_section(context, file, section_name);
  if (found != CS_SUCCEED)
    return found;
  *set = static_cast<CHAR_ATTRIB *>(comn_calloc(1, sizeof(CHAR_ATTRIB)));
  if (*set == nullptr)
    return CS_MEM_ERROR;
  return read_entries(context, file, *set);
}

// A set has no sort order yet, so the one that the cache names is loaded along.
CS_RETCODE load_sort_order(CS_CONTEXT *context, CsLocCache *lcache, CS_CHAR *locfilename,
                           CS_INT filenamelen) noexcept {
  if (context->ctxlocale == nullptr || lcache->sortname == nullptr)
    return CS_SUCCEED;
  CsOID *oid = nullptr;
  const CS_RETCODE result =
      comn::identify(context, COM_OID_COLLATE, lcache->sortname, lcache->sortnamelen, &oid);
  if (result != CS_SUCCEED)
    return result;
  return comn__intl_load_sortorder(context, oid, lcache, locfilename, filenamelen);
}

} // namespace

CS_RETCODE comn__intl_load_charset(CsContext *context, CsOID *oid, CsLocCache *lcache,
                                   CS_CHAR *locfilename, CS_INT filenamelen) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(context->ctxglobals, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(oid, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(lcache, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(lcache->charname, COMN_TRACE(CS_FAIL));
  for (CsCharDesc *chardesc = first_of(context); chardesc != nullptr; chardesc = chardesc->charnext)
    if (chardesc->oid == oid) {
      lcache->locchardesc = chardesc;
      return COMN_TRACE(CS_SUCCEED);
    }
  auto *const chardesc = static_cast<CsCharDesc *>(comn_calloc(1, sizeof(CsCharDesc)));
  lcache->locchardesc = chardesc;
  if (chardesc == nullptr)
    return COMN_TRACE(CS_MEM_ERROR);
  chardesc->oid = oid;
  CS_RETCODE result = comn__get_charset(context, lcache, chardesc, locfilename, filenamelen);
  if (result == CS_SUCCEED)
    result = load_sort_order(context, lcache, locfilename, filenamelen);
  if (result != CS_SUCCEED) {
    lcache->locchardesc = nullptr;
    comn__chardesc_drop(chardesc);
    return COMN_TRACE(result);
  }
  chardesc->charnext = first_of(context);
  context->ctxglobals->cmg_chardesc = chardesc;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com_intl_chardesc_drop(CS_CONTEXT *context) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(context->ctxglobals, COMN_TRACE(CS_FAIL));
  for (CsCharDesc *chardesc = first_of(context); chardesc != nullptr;) {
    CsCharDesc *const next = chardesc->charnext;
    comn__chardesc_drop(chardesc);
    chardesc = next;
  }
  context->ctxglobals->cmg_chardesc = nullptr;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE comn__chardesc_drop(CsCharDesc *chardesc) noexcept {
  COMN_CHECK_PTR(chardesc, CS_FAIL);
  free_attributes(chardesc->char_attrib);
  for (CsSortDesc *order = chardesc->sort_order; order != nullptr;) {
    CsSortDesc *const next = order->sortnext;
    comn__sortorder_drop(order);
    order = next;
  }
  comn_free(chardesc);
  return CS_SUCCEED;
}

CS_RETCODE comn__get_charset(CsContext *context, CsLocCache *lcache, CsCharDesc *chardesc,
                             CS_CHAR *locfilename, CS_INT filenamelen) noexcept {
  COMN_CHECK_PTR(context, CS_FAIL);
  COMN_CHECK_PTR(lcache, CS_FAIL);
  COMN_CHECK_PTR(chardesc, CS_FAIL);
  INTL_LOCFILE file;
  CS_RETCODE result = com__open_charfile(context, lcache->charname, file_name, nullptr, &file,
                                         locfilename, filenamelen);
  if (result != CS_SUCCEED)
    return result;
  result = read_file(context, &file, &chardesc->char_attrib);
  return comn::close_behind(context, &file, result);
}

CS_RETCODE comn__load_charset1(CsContext *context, INTL_LOCFILE *ifile, CS_UINT imagesize,
                               CHAR_ATTRIB *chatr) noexcept {
  COMN_CHECK_PTR(chatr, CS_FAIL);
  if (imagesize != sizeof(cs_1class))
    return CS_FAIL;
  CS_RETCODE result = read_type_map(context, ifile, true, sizeof(cs_1class::char_map), chatr);
  if (result == CS_SUCCEED)
    result = read_table(context, ifile, false, sizeof(cs_1class::sounds), sizeof(cs_1class::sounds),
                        &chatr->cs_soundex);
  if (result != CS_SUCCEED)
    return result;
  chatr->cs_maxcharlen = 1;
  chatr->cs_ncharsize = 1;
  chatr->cs_ntype = 1;
  chatr->cs_nsoundex = 1;
  chatr->cs_nnorm = 0;
  return CS_SUCCEED;
}

CS_RETCODE comn__load_charset2(CsContext *context, INTL_LOCFILE *ifile, CS_UINT imagesize,
                               CHAR_ATTRIB *chatr) noexcept {
  COMN_CHECK_PTR(chatr, CS_FAIL);
  if (imagesize < least_class2_size)
    return CS_FAIL;
  cs_2class image;
  CS_RETCODE result =
      comn__get_image(context, ifile, true, reinterpret_cast<CS_BYTE *>(&image), sizeof image);
  if (result != CS_SUCCEED)
    return result;
  const cs_2class header = comn::in_host_order(image);
  const auto width_size = static_cast<CS_UINT>(header.size_width);
  const auto norm_size = static_cast<CS_UINT>(header.size_norm);
  const auto type_size = static_cast<CS_UINT>(header.size_type);
  const auto sound_size = static_cast<CS_UINT>(header.size_soundex);
  if (type_size == 0 || type_size != header.cs_ntype * sizeof(CS_TYPE_MAP) || sound_size == 0 ||
      sound_size != header.cs_nsoundex * sizeof(CS_SOUNDEX))
    return CS_FAIL;
  if (width_size != 0)
    result = read_table(context, ifile, false, width_size, width_room, &chatr->cs_width_map);
  if (result == CS_SUCCEED && norm_size != 0)
    result = read_table(context, ifile, false, norm_size, norm_room, &chatr->cs_norm_map);
  if (result == CS_SUCCEED)
    result = read_type_map(context, ifile, false, type_size, chatr);
  if (result == CS_SUCCEED)
    result = read_table(context, ifile, false, sound_size, sound_size, &chatr->cs_soundex);
  if (result != CS_SUCCEED)
    return result;
  chatr->cs_maxcharlen = header.cs_maxcharlen;
  chatr->cs_ncharsize = header.cs_ncharsize;
  chatr->cs_nnorm = header.cs_nnorm;
  chatr->cs_ntype = header.cs_ntype;
  chatr->cs_nsoundex = header.cs_nsoundex;
  return CS_SUCCEED;
}

CS_RETCODE comn__get_image(CsContext *context, INTL_LOCFILE *ifile, CS_BOOL athand, CS_BYTE *image,
                           CS_INT imagelen) noexcept {
  COMN_CHECK_PTR(context, CS_FAIL);
  COMN_CHECK_PTR(ifile, CS_FAIL);
  COMN_CHECK_PTR(image, CS_FAIL);
  COMN_CHECK(imagelen >= 0, CS_FAIL);
  // The digits of a line may be an odd number: a byte is then half done at its end.
  const size_t wanted = 2 * static_cast<size_t>(imagelen);
  size_t digits = 0;
  for (bool on_line = athand != 0; digits < wanted; on_line = false) {
    int status = 0;
    if (!on_line) {
      const CS_CHAR *const key = intl_nextentry(ifile, &status);
      if (key == nullptr)
        return comn::missing_result(context, status);
      if (key != image_key)
        return CS_FAIL;
    }
    const CS_CHAR *const value = intl_nextvalue(ifile, &status);
    if (value == nullptr)
      return comn::missing_result(context, status);
    const std::string_view line = value;
    if (line.size() > wanted - digits)
      return CS_FAIL;
    for (const CS_CHAR c : line) {
      const int digit = comn::hex_digit_values[static_cast<CS_BYTE>(c)];
      if (digit < 0)
        return CS_FAIL;
      CS_BYTE &byte = image[digits / 2];
      byte = static_cast<CS_BYTE>(digits % 2 == 0 ? digit << 4 : byte | digit);
      ++digits;
    }
  }
  return CS_SUCCEED;
}
