// Builds location caches: by a locale's name, and derived from another cache.
#include <initializer_list>

#include "charset.h"
#include "checks.h"
#include "comerr.h"
#include "loc_cache.h"
#include "oid_table.h"
#include "sortordr.h"

namespace {

// Where the loaders tell the path of the file that they open.
struct Report {
  CS_CHAR *locfilename;
  CS_INT filenamelen;
};

CsLocCache *find_by_name(const CsCtxGlobals *globals, const CS_CHAR *name, CS_INT length) noexcept {
  CsLocCache *cache = comn::caches(globals);
  while (cache != nullptr && (cache->locname == nullptr || cache->locnamelen != length ||
                              std::memcmp(cache->locname, name, static_cast<size_t>(length)) != 0))
    cache = cache->locnext;
  return cache;
}

CS_RETCODE set_name(CS_CHAR *&field, CS_INT &field_length, const CS_CHAR *name,
                    CS_INT length) noexcept {
  field = comn::copy_name(name, length);
  if (field == nullptr)
    return CS_MEM_ERROR;
  field_length = length;
  return CS_SUCCEED;
}

// A name of a cache with the identifier that it has in its class.
CS_RETCODE set_identified(CS_CONTEXT *context, CS_CHAR *&field, CS_INT &field_length,
                          const CS_CHAR *name, CS_INT length, CS_INT oidclass,
                          CsOID **oid) noexcept {
  const CS_RETCODE result = set_name(field, field_length, name, length);
  if (result != CS_SUCCEED)
    return result;
  return comn::identify(context, oidclass, name, length, oid);
}

// ---- by name ----

CS_RETCODE load_charset(CS_CONTEXT *context, const CsLocNames &names, CsLocCache *cache,
                        Report report) noexcept {
  CsOID *oid;
  const CS_RETCODE result = set_identified(context, cache->charname, cache->charnamelen,
                                           names.charset, names.charsetlen, COM_OID_CHARSET, &oid);
  if (result != CS_SUCCEED)
    return result;
  return comn__intl_load_charset(context, oid, cache, report.locfilename, report.filenamelen);
}

CS_RETCODE load_language(CS_CONTEXT *context, const CsLocNames &names, CsLocCache *cache,
                         Report) noexcept {
  CsOID *oid;
  const CS_RETCODE result = set_identified(context, cache->langname, cache->langnamelen, names.lang,
                                           names.langlen, COM_OID_NATLANG, &oid);
  if (result != CS_SUCCEED)
    return result;
  return comn__intl_load_message(context, oid, cache);
}

CS_RETCODE load_sort_order(CS_CONTEXT *context, const CsLocNames &names, CsLocCache *cache,
                           Report report) noexcept {
  CsOID *oid;
  const CS_RETCODE result =
      set_identified(context, cache->sortname, cache->sortnamelen, names.sortorder,
                     names.sortorderlen, COM_OID_COLLATE, &oid);
  if (result != CS_SUCCEED)
    return result;
  return comn__intl_load_sortorder(context, oid, cache, report.locfilename, report.filenamelen);
}

// Of the formats that a row names only that for money is loaded, deliberately.
CS_RETCODE load_dates(CS_CONTEXT *context, const CsLocNames &names, CsLocCache *cache,
                      Report report) noexcept {
  if (names.datetimelen < 1)
    return comn__read_common(context, cache, report.locfilename, report.filenamelen);
  CsOID *oid;
  return set_identified(context, cache->datename, cache->datenamelen, names.datetime,
                        names.datetimelen, COM_OID_DATETIME, &oid);
}

CS_RETCODE load_numbers(CS_CONTEXT *context, const CsLocNames &names, CsLocCache *cache,
                        Report) noexcept {
  if (names.numericlen < 1)
    return CS_SUCCEED;
  CsOID *oid;
  return set_identified(context, cache->numname, cache->numnamelen, names.numeric, names.numericlen,
                        COM_OID_NUMERIC, &oid);
}

CS_RETCODE load_money(CS_CONTEXT *context, const CsLocNames &names, CsLocCache *cache,
                      Report report) noexcept {
  if (names.moneylen < 1)
    return CS_SUCCEED;
  CsOID *oid;
  const CS_RETCODE result = set_identified(context, cache->monname, cache->monnamelen, names.money,
                                           names.moneylen, COM_OID_MONEY, &oid);
  if (result != CS_SUCCEED)
    return result;
  return comn__load_locdata(context, CS_LCTYPE_MONETARY, oid, cache, report.locfilename,
                            report.filenamelen);
}

CS_RETCODE load_row(CS_CONTEXT *context, const CsLocNames &names, CsLocCache *cache,
                    Report report) noexcept {
  for (const auto step :
       {load_charset, load_language, load_sort_order, load_dates, load_numbers, load_money}) {
    const CS_RETCODE result = step(context, names, cache, report);
    if (result != CS_SUCCEED)
      return result;
  }
  return CS_SUCCEED;
}

// ---- derived ----

// The three things by which a derived cache is found. Without a name there is no sort order.
struct Wanted {
  const CsOID *charset;
  const CsOID *language;
  const CsOID *sort_order;
  bool has_sort_order;
};

bool has(const CsLocCache &cache, const Wanted &wanted) noexcept {
  if (cache.locchardesc == nullptr || cache.locchardesc->oid != wanted.charset ||
      cache.locmessage == nullptr || cache.locmessage->lang_oid != wanted.language ||
      (cache.sortname != nullptr) != wanted.has_sort_order)
    return false;
  return !wanted.has_sort_order ||
         (cache.locsortorder != nullptr && cache.locsortorder->oid == wanted.sort_order);
}

constexpr CS_INT class_of(CS_INT type) noexcept {
  return type == COM_LOCTYPE_CHARSET     ? COM_OID_CHARSET
         : type == COM_LOCTYPE_SORTORDER ? COM_OID_COLLATE
                                         : COM_OID_NATLANG;
}

CS_RETCODE rename(CS_CHAR *&field, CS_INT &field_length, const CS_CHAR *name,
                  CS_INT length) noexcept {
  comn_free(field);
  return set_name(field, field_length, name, length);
}

// Puts the new object in the place of the one that the cache has from its model. Deliberate: nothing
// else is replaced, so with another character set the messages are those of the model, with the texts
// that they have in its set, and so is the sort order, unless the set is loaded here and brings one along.
CS_RETCODE replace(CS_CONTEXT *context, CS_INT type, const CS_CHAR *name, CS_INT length, CsOID *oid,
                   CsLocCache *cache, Report report) noexcept {
  CS_RETCODE result;
  switch (type) {
  case COM_LOCTYPE_CHARSET:
    result = rename(cache->charname, cache->charnamelen, name, length);
    return result != CS_SUCCEED ? result
                                : comn__intl_load_charset(context, oid, cache, report.locfilename,
                                                          report.filenamelen);
  case COM_LOCTYPE_SORTORDER:
    result = rename(cache->sortname, cache->sortnamelen, name, length);
    return result != CS_SUCCEED ? result
                                : comn__intl_load_sortorder(context, oid, cache, report.locfilename,
                                                            report.filenamelen);
  default:
    result = rename(cache->langname, cache->langnamelen, name, length);
    return result != CS_SUCCEED ? result : comn__intl_load_message(context, oid, cache);
  }
}

CS_RETCODE derive(CS_CONTEXT *context, CS_INT type, const CS_CHAR *name, CS_INT length, CsOID *oid,
                  CsLocCache *model, CsLocCache *cache, Report report) noexcept {
  CS_RETCODE result = comn__copy_loccache(model, cache);
  if (result == CS_SUCCEED)
    result = replace(context, type, name, length, oid, cache, report);
  if (result == CS_SUCCEED && cache->locdateinfo == nullptr)
    result = comn__read_common(context, cache, report.locfilename, report.filenamelen);
  comn::clear_locname(*cache);
  return result;
}

} // namespace

CS_RETCODE comn_intl_load(CS_CONTEXT *context, CS_CHAR *name, CS_INT namelen, CS_VOID **loccache_p,
                          CS_CHAR *locfilename, CS_INT filenamelen) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(context->ctxglobals, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(name, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(loccache_p, COMN_TRACE(CS_FAIL));
  COMN_CHECK(namelen >= 1, COMN_TRACE(CS_FAIL));
  CsLocCache *cache = find_by_name(context->ctxglobals, name, namelen);
  if (cache == nullptr) {
    CsLocNames names;
    CS_RETCODE result = comn__intl_lookup(context, name, namelen, &names, locfilename, filenamelen);
    if (result == CS_SUCCEED)
      result = comn__create_loccache(context, &cache);
    if (result != CS_SUCCEED)
      return COMN_TRACE(result);
    result = set_name(cache->locname, cache->locnamelen, name, namelen);
    if (result == CS_SUCCEED)
      result = load_row(context, names, cache, {locfilename, filenamelen});
    if (result != CS_SUCCEED) {
      comn__drop_loccache(cache);
      return COMN_TRACE(result);
    }
    comn::link_cache(context->ctxglobals, cache);
  }
  *loccache_p = cache;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE comn_intl_load_zrvtypes(CS_CONTEXT *context, CS_INT type, CS_CHAR *zrv_name,
                                   CS_INT namelen, CS_CHAR *locfilename, CS_INT filenamelen,
                                   CS_VOID *old_loccache, CS_VOID **new_loccache_p) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(context->ctxglobals, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(zrv_name, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(old_loccache, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(new_loccache_p, COMN_TRACE(CS_FAIL));
  COMN_CHECK(type >= COM_LOCTYPE_LANGUAGE && type <= COM_LOCTYPE_SORTORDER, COMN_TRACE(CS_FAIL));
  auto *const model = static_cast<CsLocCache *>(old_loccache);
  COMN_CHECK_PTR(model->locchardesc, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(model->locmessage, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(model->locsortorder, COMN_TRACE(CS_FAIL));

  CsOID *oid;
  if (namelen < 1 || comn::identify(context, class_of(type), zrv_name, namelen, &oid) != CS_SUCCEED)
    return COMN_TRACE(COM_UNKNOWN_NAME);
  Wanted wanted = {model->locchardesc->oid, model->locmessage->lang_oid, model->locsortorder->oid,
                   model->sortname != nullptr};
  switch (type) {
  case COM_LOCTYPE_CHARSET:
    wanted.charset = oid;
    break;
  case COM_LOCTYPE_SORTORDER:
    wanted.sort_order = oid;
    wanted.has_sort_order = true;
    break;
  default:
    wanted.language = oid;
  }

  CsLocCache *cache = comn::caches(context->ctxglobals);
  while (cache != nullptr && !has(*cache, wanted))
    cache = cache->locnext;
  if (cache == nullptr) {
    CS_RETCODE result = comn__create_loccache(context, &cache);
    if (result != CS_SUCCEED)
      return COMN_TRACE(result);
    result =
        derive(context, type, zrv_name, namelen, oid, model, cache, {locfilename, filenamelen});
    if (result != CS_SUCCEED) {
      comn__drop_loccache(cache);
      return COMN_TRACE(result);
    }
    comn::link_cache(context->ctxglobals, cache);
  }
  *new_loccache_p = cache;
  return COMN_TRACE(CS_SUCCEED);
}
