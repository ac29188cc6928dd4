// Records of character sets in memory: their allocation, and the description of an image.
#include <cstring>

#include "any_address.h"
#include "charset_image.h"
#include "checks.h"
#include "zrvintl.h"

namespace {

void set_name(CS_INT id, const CS_CHAR *name, CS_ATTRIB *chatr) noexcept {
  chatr->cs_id = static_cast<CS_BYTE>(id);
  intl_strlcpy(chatr->cs_name, name, sizeof chatr->cs_name);
  chatr->cs_namelen = static_cast<CS_SMALLINT>(std::strlen(name));
}

void describe_class1(CS_BYTE *image, CS_ATTRIB *chatr) noexcept {
  chatr->cs_status = 0;
  chatr->cs_class = 1;
  chatr->cs_maxcharlen = 1;
  chatr->cs_ncharsize = 1;
  chatr->cs_nnorm = 0;
  chatr->cs_ntype = 1;
  chatr->cs_nsoundex = 1;
  chatr->cs_width_map = nullptr;
  chatr->cs_norm_map = nullptr;
  chatr->cs_type_map = reinterpret_cast<CS_TYPE_MAP *>(image);
  chatr->cs_soundex = reinterpret_cast<CS_SOUNDEX *>(image + offsetof(cs_1class, sounds));
}

template <class Map>
Map *table_at(CS_BYTE *image, CS_INT offset) noexcept {
  return reinterpret_cast<Map *>(image + static_cast<CS_UINT>(offset));
}

void describe_class2(CS_BYTE *image, CS_ATTRIB *chatr) noexcept {
  const cs_2class header = comn::in_host_order(comn::load<cs_2class>(image));
  comn::store(image, header);
  chatr->cs_status = header.cs_status;
  chatr->cs_class = header.cs_class;
  chatr->cs_maxcharlen = header.cs_maxcharlen;
  chatr->cs_ncharsize = header.cs_ncharsize;
  chatr->cs_nnorm = header.cs_nnorm;
  chatr->cs_ntype = header.cs_ntype;
  chatr->cs_nsoundex = header.cs_nsoundex;
  chatr->cs_width_map =
      header.size_width != 0 ? table_at<CS_BYTE>(image, header.off_width) : nullptr;
  chatr->cs_norm_map =
      header.size_norm != 0 ? table_at<CS_NORM_MAP>(image, header.off_norm) : nullptr;
  chatr->cs_type_map = table_at<CS_TYPE_MAP>(image, header.off_type);
  chatr->cs_soundex = table_at<CS_SOUNDEX>(image, header.off_soundex);
}

} // namespace

CS_ATTRIB *com_alloc_char_attrib(void) noexcept {
  return static_cast<CS_ATTRIB *>(comn_malloc(sizeof(CS_ATTRIB)));
}

CS_RETCODE com_free_char_attrib(CS_ATTRIB *chatr) noexcept {
  comn_free(chatr);
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com_build_char_attrib(CS_INT type, CS_INT id, CS_CHAR *cname, CS_VOID *imptr,
                                 CS_ATTRIB *chatr) noexcept {
  if (cname == nullptr || imptr == nullptr || chatr == nullptr)
    return COMN_TRACE(CS_FAIL);
  auto *const image = static_cast<CS_BYTE *>(imptr);
  switch (type) {
  case COM_CHARSET_IMAGE1:
    describe_class1(image, chatr);
    break;
  case COM_CHARSET_IMAGE2:
    describe_class2(image, chatr);
    break;
  default:
    return COMN_TRACE(CS_FAIL);
  }
  set_name(id, cname, chatr);
  return COMN_TRACE(CS_SUCCEED);
}
