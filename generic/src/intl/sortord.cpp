// Sort orders as locales see them: found on the chain of their character set, or read from their file
// and compiled.
#include "sortordr.h"

#include <cstring>
#include <iterator>

#include "charset.h"
#include "checks.h"
#include "section_files.h"

namespace {

CS_CHAR file_extension[] = "srt";
constexpr const char *section_name = "sortorder";

// ---- the header ----

using ReadEntry = CS_RETCODE (*)(CsContext *context, INTL_LOCFILE *ifile,
                                 S_DESCRIPT *descript) noexcept;

// A name has less than 30 bytes although its field has room for one more, and so has a description.
constexpr CS_INT name_limit = SO_NAME_SIZE - 1;
constexpr CS_INT description_limit = SO_DESCRIPT_SIZE - 1;

CS_RETCODE read_class(CsContext *context, INTL_LOCFILE *ifile, S_DESCRIPT *descript) noexcept {
  CS_BYTE value;
  const CS_RETCODE result = comn__get_byteval(context, ifile, &value);
  if (result != CS_SUCCEED)
    return result;
  descript->class_ = value;
  return value == 1 || value == 2 ? CS_SUCCEED : CS_FAIL;
}

CS_RETCODE read_id(CsContext *context, INTL_LOCFILE *ifile, S_DESCRIPT *descript) noexcept {
  CS_BYTE value;
  const CS_RETCODE result = comn__get_byteval(context, ifile, &value);
  if (result != CS_SUCCEED)
    return result;
  descript->id = value;
  return value != 0 ? CS_SUCCEED : CS_FAIL;
}

struct HeaderEntry {
  const char *key;
  bool is_required;
  ReadEntry read;
};

constexpr HeaderEntry header[] = {
    {"class", true, read_class},
    {"charset", true,
     [](CsContext *context, INTL_LOCFILE *ifile, S_DESCRIPT *descript) noexcept {
       return comn__get_string(context, ifile, descript->charset, 1, name_limit);
     }},
    {"menuname", true,
     [](CsContext *context, INTL_LOCFILE *ifile, S_DESCRIPT *) noexcept {
       return comn__get_string(context, ifile, nullptr, 0, 0);
     }},
    {"name", true,
     [](CsContext *context, INTL_LOCFILE *ifile, S_DESCRIPT *descript) noexcept {
       return comn__get_string(context, ifile, descript->name, 1, name_limit);
     }},
    {"id", true, read_id},
    {"preference", false,
     [](CsContext *context, INTL_LOCFILE *ifile, S_DESCRIPT *descript) noexcept {
       return comn__get_boolval(context, ifile, &descript->preference);
     }},
    {"description", true,
     [](CsContext *context, INTL_LOCFILE *ifile, S_DESCRIPT *descript) noexcept {
       return comn__get_string(context, ifile, descript->descript, 0, description_limit);
     }},
    {"binary", false,
     [](CsContext *context, INTL_LOCFILE *ifile, S_DESCRIPT *descript) noexcept {
       return comn__get_boolval(context, ifile, &descript->isbin);
     }},
};

// The entries that a body may begin with. Those of class 2 are reserved: it has no compiler.
constexpr const char *class1_keys[] = {"lig", "char", "ignore char"};
constexpr const char *class2_keys[] = {
    "not_found", "lig",   "char",        "alphabet",   "row",          "row-low",     "row-high",
    "plane",     "group", "ignore char", "ignore row", "ignore plane", "ignore group"};

template <size_t Count>
bool is_one_of(const CS_CHAR *key, const char *const (&keys)[Count]) noexcept {
  for (const char *const candidate : keys)
    if (std::strcmp(key, candidate) == 0)
      return true;
  return false;
}

// The index of a key in the header, or the count of its entries.
size_t find_in_header(const CS_CHAR *key) noexcept {
  size_t i = 0;
  while (i < std::size(header) && std::strcmp(key, header[i].key) != 0)
    ++i;
  return i;
}

bool is_complete(CS_UINT seen) noexcept {
  for (size_t i = 0; i < std::size(header); ++i)
    if (header[i].is_required && (seen >> i & 1) == 0)
      return false;
  return true;
}

// ---- loading ----

CS_RETCODE read_sort_order(CsContext *context, INTL_LOCFILE *ifile, CsSortDesc *sortdesc) noexcept {
  CS_RETCODE result = comn::find_section(context, ifile, section_name);
  if (result != CS_SUCCEED)
    return result;
  auto *const descript = static_cast<S_DESCRIPT *>(comn_calloc(1, sizeof(S_DESCRIPT)));
  if (descript == nullptr)
    return CS_MEM_ERROR;
  sortdesc->char_sort_descript = descript;
  CS_CHAR *key;
  result = comn__get_sort_description(context, ifile, descript, &key);
  if (result != CS_SUCCEED)
    return result;
  COMN_CHECK(descript->class_ == 1 || descript->class_ == 2, CS_FAIL);
  return descript->class_ == 1 ? comn__build_class1(context, ifile, key, sortdesc) : CS_FAIL;
}

CS_RETCODE load_file(CsContext *context, const CsLocCache &cache, CsSortDesc *sortdesc,
                     CS_CHAR *locfilename, CS_INT filenamelen) noexcept {
  INTL_LOCFILE file;
  CS_RETCODE result = com__open_charfile(context, cache.charname, cache.sortname, file_extension,
                                         &file, locfilename, filenamelen);
  if (result != CS_SUCCEED)
    return result;
  result = read_sort_order(context, &file, sortdesc);
  return comn::close_behind(context, &file, result);
}

} // namespace

CS_RETCODE comn__get_sort_description(CsContext *context, INTL_LOCFILE *ifile, S_DESCRIPT *descript,
                                      CS_CHAR **key) noexcept {
  COMN_CHECK_PTR(context, CS_FAIL);
  COMN_CHECK_PTR(ifile, CS_FAIL);
  COMN_CHECK_PTR(descript, CS_FAIL);
  COMN_CHECK_PTR(key, CS_FAIL);
  descript->preference = 1;
  descript->isbin = 0;
  CS_UINT seen = 0;
  int status = 0;
  for (;;) {
    *key = intl_nextentry(ifile, &status);
    const size_t entry = *key != nullptr ? find_in_header(*key) : std::size(header);
    if (entry == std::size(header))
      break;
    const CS_RETCODE result = header[entry].read(context, ifile, descript);
    if (result != CS_SUCCEED)
      return result;
    seen |= 1U << entry;
  }
  if (status < 0)
    return comn::reader_result(context, status);
  if (!is_complete(seen))
    return CS_FAIL;
  if (*key == nullptr)
    return descript->isbin != 0 ? CS_SUCCEED : CS_FAIL;
  const bool is_legal =
      descript->class_ == 1 ? is_one_of(*key, class1_keys) : is_one_of(*key, class2_keys);
  return is_legal ? CS_SUCCEED : CS_FAIL;
}

CS_RETCODE comn__intl_load_sortorder(CsContext *context, CsOID *oid, CsLocCache *lcache,
                                     CS_CHAR *locfilename, CS_INT filenamelen) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(oid, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(lcache, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(lcache->locchardesc, COMN_TRACE(CS_FAIL));
  CsSortDesc *&chain = lcache->locchardesc->sort_order;
  for (CsSortDesc *order = chain; order != nullptr; order = order->sortnext)
    if (order->oid == oid) {
      lcache->locsortorder = order;
      return COMN_TRACE(CS_SUCCEED);
    }
  auto *const order = static_cast<CsSortDesc *>(comn_calloc(1, sizeof(CsSortDesc)));
  if (order == nullptr)
    return COMN_TRACE(CS_MEM_ERROR);
  order->oid = oid;
  const CS_RETCODE result = load_file(context, *lcache, order, locfilename, filenamelen);
  if (result != CS_SUCCEED) {
    comn__sortorder_drop(order);
    return COMN_TRACE(result);
  }
  order->sortnext = chain;
  lcache->locsortorder = chain = order;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE comn__sortorder_drop(CsSortDesc *sortdesc) noexcept {
  COMN_CHECK_PTR(sortdesc, COMN_TRACE(CS_FAIL));
  comn_free(sortdesc->char_sort_descript);
  comn_free(sortdesc->char_sort_class);
  comn_free(sortdesc);
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com_intl_sortorder(CsLocale *locale, CS_VOID **sortorder) noexcept {
  COMN_CHECK_PTR(locale, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(sortorder, COMN_TRACE(CS_FAIL));
  const auto *const cache = static_cast<const CsLocCache *>(locale->collateptr);
  if (cache == nullptr || cache->locchardesc == nullptr ||
      cache->locchardesc->sort_order == nullptr || cache->locsortorder == nullptr)
    return COMN_TRACE(CS_FAIL);
  *sortorder = cache->locsortorder->char_sort_class;
  return COMN_TRACE(CS_SUCCEED);
}
