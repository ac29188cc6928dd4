// Number and money formats, and those of dates that a row of locales.dat names: their files are
// opened, and accepted as they are.
#include <cstring>

#include "charset.h"
#include "checks.h"
#include "leading_integer.h"
#include "section_files.h"

namespace {

// Releases the tables of a list and empties it.
template <class Table>
void drop_list(CS_VOID *&head, void (*release)(Table *)) noexcept {
  for (auto *table = static_cast<Table *>(head); table != nullptr;) {
    Table *const next = table->next;
    release(table);
    table = next;
  }
  head = nullptr;
}

// What is loaded for a cache: the tables of a list, or what the reader of a file makes of it.
template <class Table>
struct Format {
  CS_INT type; // COM_LOCDATA_
  CS_CHAR *CsLocCache::*name;
  Table *CsLocCache::*table;
  Table *(*scan)(CS_CONTEXT *, CsOID *);
  CS_RETCODE (*read)(CS_CONTEXT *, INTL_LOCFILE *, CsOID *, Table **);
};

constexpr Format<CS_MONINFO> money = {COM_LOCDATA_MONEY, &CsLocCache::monname,
                                      &CsLocCache::locmoninfo, comn__scan_cache_mon,
                                      comn__read_monfile};
constexpr Format<CS_NUMINFO> numbers = {COM_LOCDATA_NUMERIC, &CsLocCache::numname,
                                        &CsLocCache::locnuminfo, comn__scan_cache_num,
                                        comn__read_numfile};
constexpr Format<CS_DATEINFO> dates = {COM_LOCDATA_DATETIME, &CsLocCache::datename,
                                       &CsLocCache::locdateinfo, comn__scan_cache_dt,
                                       comn__read_dtfile};

template <class Table>
CS_RETCODE load(const Format<Table> &format, CS_CONTEXT *context, CsOID *oid, CsLocCache *cache,
                CS_CHAR *locfilename, CS_INT filenamelen) noexcept {
  if (Table *const loaded = format.scan(context, oid)) {
    cache->*format.table = loaded;
    return CS_SUCCEED;
  }
  CS_CHAR path[comn::path_size];
  CS_RETCODE result =
      comn__path_locdata(context, format.type, cache->*format.name, path, sizeof path);
  if (result != CS_SUCCEED)
    return result;
  INTL_LOCFILE file;
  result = comn::open_reported(context, path, &file, locfilename, filenamelen);
  if (result != CS_SUCCEED)
    return result;
  return comn::close_behind(context, &file,
                            format.read(context, &file, oid, &(cache->*format.table)));
}

// A number in the text of a value.
CS_INT group_size(char *value, CS_ATTRIB *charset) noexcept {
  CS_BYTE ascii[INTL_VALUE_SIZE];
  CS_INT length = 0;
  comn_str_to_ascii(reinterpret_cast<CS_BYTE *>(value), static_cast<CS_INT>(std::strlen(value)),
                    ascii, &length, charset);
  ascii[length] = 0;
  return comn::leading_int(reinterpret_cast<CS_CHAR *>(ascii));
}

CS_RETCODE append(CS_INT **sizes, CS_INT *count, CS_INT size) noexcept {
  auto *const longer = static_cast<CS_INT *>(
      comn_realloc(*sizes, (static_cast<size_t>(*count) + 1) * sizeof(CS_INT)));
  if (longer == nullptr)
    return CS_MEM_ERROR;
  longer[(*count)++] = size;
  *sizes = longer;
  return CS_SUCCEED;
}

// Reads sizes up to the end of the entry, or one that says that there are no groups.
CS_RETCODE read_sizes(INTL_LOCFILE *file, CS_ATTRIB *charset, CS_INT **sizes,
                      CS_INT *count) noexcept {
  int status = 0;
  while (char *const value = intl_nextvalue(file, &status)) {
    const CS_INT size = group_size(value, charset);
    const bool is_first = *count == 0;
    if (is_first && (size == 0 || size < -1))
      return CS_FAIL;
    const CS_RETCODE appended = append(sizes, count, size);
    if (appended != CS_SUCCEED || (is_first && size == -1))
      return appended;
  }
  return status < 0 ? COM_INTL_ERROR : *count > 0 ? CS_SUCCEED : CS_FAIL;
}

} // namespace

CS_RETCODE comn__load_locdata(CS_CONTEXT *context, CS_INT type, CsOID *oid, CsLocCache *lcache,
                              CS_CHAR *locfilename, CS_INT filenamelen) noexcept {
  COMN_CHECK_PTR(context, CS_FAIL);
  COMN_CHECK_PTR(context->ctxglobals, CS_FAIL);
  COMN_CHECK_PTR(lcache, CS_FAIL);
  switch (type) {
  case CS_LCTYPE_MONETARY:
    return load(money, context, oid, lcache, locfilename, filenamelen);
  case CS_LCTYPE_NUMERIC:
    return load(numbers, context, oid, lcache, locfilename, filenamelen);
  case CS_LCTYPE_TIME:
    return load(dates, context, oid, lcache, locfilename, filenamelen);
  default:
    return CS_FAIL;
  }
}

CS_RETCODE comn__chk_format(CS_INT type, ParseStruct *pptr, CS_VOID *eptr) noexcept {
  while (pptr != nullptr && pptr->type != type)
    pptr = pptr->next;
  return pptr == nullptr || eptr != nullptr ? CS_SUCCEED : CS_FAIL;
}

CS_RETCODE comn__read_grp(INTL_LOCFILE *ifile, CS_ATTRIB *charattrib, CS_INT **grpptr,
                          CS_INT *cntptr) noexcept {
  COMN_CHECK_PTR(ifile, CS_FAIL);
  COMN_CHECK_PTR(grpptr, CS_FAIL);
  COMN_CHECK_PTR(cntptr, CS_FAIL);
  *grpptr = nullptr;
  *cntptr = 0;
  const CS_RETCODE result = read_sizes(ifile, charattrib, grpptr, cntptr);
  if (result != CS_SUCCEED) {
    comn_free(*grpptr);
    *grpptr = nullptr;
    *cntptr = 0;
  }
  return result;
}

CS_RETCODE comn__read_dtfile(CS_CONTEXT *, INTL_LOCFILE *, CsOID *, CS_DATEINFO **) noexcept {
  return CS_SUCCEED;
}

CS_RETCODE comn__read_monfile(CS_CONTEXT *, INTL_LOCFILE *, CsOID *, CS_MONINFO **) noexcept {
  return CS_SUCCEED;
}

CS_RETCODE comn__read_numfile(CS_CONTEXT *, INTL_LOCFILE *, CsOID *, CS_NUMINFO **) noexcept {
  return CS_SUCCEED;
}

CS_MONINFO *comn__scan_cache_mon(CS_CONTEXT *, CsOID *) noexcept {
  return nullptr;
}

CS_NUMINFO *comn__scan_cache_num(CS_CONTEXT *, CsOID *) noexcept {
  return nullptr;
}

// Nothing makes such tables, so nothing knows what they own.
void comn__free_moninfo(CS_MONINFO *) noexcept {}
void comn__free_numinfo(CS_NUMINFO *) noexcept {}

CS_RETCODE comn_intl_mon_drop(CS_CONTEXT *context) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(context->ctxglobals, COMN_TRACE(CS_FAIL));
  drop_list(context->ctxglobals->cmg_money, comn__free_moninfo);
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE comn_intl_num_drop(CS_CONTEXT *context) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(context->ctxglobals, COMN_TRACE(CS_FAIL));
  drop_list(context->ctxglobals->cmg_numeric, comn__free_numinfo);
  return COMN_TRACE(CS_SUCCEED);
}
