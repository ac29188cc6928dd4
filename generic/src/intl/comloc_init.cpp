// The start of a family of contexts, and the end of what it alone holds.
#include <cstdlib>

#include "charset.h"
#include "checks.h"
#include "lmpublic.h"
#include "loc_cache.h"
#include "oid_table.h"
#include "sortordr.h"

namespace {

CS_CHAR utf8_name[] = "utf8";
CS_CHAR binary_name[] = "binary";
constexpr CS_CHAR ucs2_name[] = "ucs2";
CS_CHAR list_context_name[] = "comnlib list context";
constexpr CS_INT list_version = 16001;

template <size_t size>
constexpr CS_INT length_of(const CS_CHAR (&)[size]) noexcept {
  return static_cast<CS_INT>(size - 1);
}

// Loads the fixed character set with its sort order into a cache whose names are constants.
CS_RETCODE load_utf8(CS_CONTEXT *context, CsLocCache *cache, CS_CHAR *locfilename,
                     CS_INT filenamelen) noexcept {
  CsOID *oid;
  if (comn::identify(context, COM_OID_CHARSET, utf8_name, length_of(utf8_name), &oid) != CS_SUCCEED)
    return CS_FAIL;
  cache->charname = utf8_name;
  cache->charnamelen = length_of(utf8_name);
  const CS_RETCODE result = comn__intl_load_charset(context, oid, cache, locfilename, filenamelen);
  if (result != CS_SUCCEED)
    return result;
  cache->sortname = binary_name;
  cache->sortnamelen = length_of(binary_name);
  if (comn::identify(context, COM_OID_COLLATE, binary_name, length_of(binary_name), &oid) !=
      CS_SUCCEED)
    return CS_FAIL;
  return comn__intl_load_sortorder(context, oid, cache, locfilename, filenamelen);
}

CS_RETCODE prepare(CS_CONTEXT *context, CsLocCache *cache, CS_CHAR *locfilename,
                   CS_INT filenamelen) noexcept {
  CS_RETCODE result = load_utf8(context, cache, locfilename, filenamelen);
  if (result != CS_SUCCEED)
    return result;
  CsOID *ucs2;
  if (comn::identify(context, COM_OID_CHARSET, ucs2_name, length_of(ucs2_name), &ucs2) !=
      CS_SUCCEED)
    return CS_FAIL;
  CsCtxGlobals *const globals = context->ctxglobals;
  auto *lists = static_cast<LM_CONTEXT *>(globals->lm);
  if (lists == nullptr)
    result = lm_initlm(list_version, list_context_name, length_of(list_context_name), &lists);
  if (result != CS_SUCCEED)
    return result;
  globals->cmg_utf8_charset = cache->locchardesc;
  globals->cmg_utf8_ctypeptr = cache;
  globals->ucs2_oid = ucs2;
  globals->lm = lists;
  return CS_SUCCEED;
}

} // namespace

namespace comn {

void forget_utf8(CsCtxGlobals *globals) noexcept {
  std::free(globals->cmg_utf8_ctypeptr);
  globals->cmg_utf8_ctypeptr = nullptr;
  globals->cmg_utf8_charset = nullptr;
}

} // namespace comn

CS_RETCODE comn_intl_init(CS_CONTEXT *context, CS_CHAR *locfilename, CS_INT filenamelen) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(context->ctxglobals, COMN_TRACE(CS_FAIL));
  if (context->ctxglobals->cmg_utf8_charset != nullptr)
    return COMN_TRACE(CS_SUCCEED);
  // The record is the system allocator's, and so is its release.
  auto *const cache = static_cast<CsLocCache *>(std::calloc(1, sizeof(CsLocCache)));
  if (cache == nullptr)
    return COMN_TRACE(CS_MEM_ERROR);
  const CS_RETCODE result = prepare(context, cache, locfilename, filenamelen);
  if (result != CS_SUCCEED)
    std::free(cache);
  return COMN_TRACE(result);
}

CS_RETCODE comn_lm_exit(CS_CONTEXT *context) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(context->ctxglobals, COMN_TRACE(CS_FAIL));
  auto *const lists = static_cast<LM_CONTEXT *>(context->ctxglobals->lm);
  if (lists == nullptr)
    return COMN_TRACE(CS_SUCCEED);
  const CS_RETCODE result = lm_exit(lists, LM_EXIT_NORMAL);
  if (result == CS_SUCCEED)
    context->ctxglobals->lm = nullptr;
  return COMN_TRACE(result);
}
