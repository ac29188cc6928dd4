// The algorithms that users register for pairs of character sets, and the growth of converted text.
#include <cstring>

#include "charconv.h"
#include "checks.h"
#include "locale_of.h"
#include "oid_table.h"

namespace {

CsUserAlgo *first_algorithm(const CS_CONTEXT *context) noexcept {
  return static_cast<CsUserAlgo *>(context->usercharconv);
}

CsUserAlgo *find(const CS_CONTEXT *context, const CsOID *from, const CsOID *to) noexcept {
  CsUserAlgo *algorithm = first_algorithm(context);
  while (algorithm != nullptr && (algorithm->from_oid != from || algorithm->to_oid != to))
    algorithm = algorithm->next;
  return algorithm;
}

// The record of a character set's name, or null.
CsOID *resolve(CS_CONTEXT *context, CS_CHAR *name, CS_INT length) noexcept {
  CsOID *oid = nullptr;
  return comn::identify(context, COM_OID_CHARSET, name, length, &oid) == CS_SUCCEED ? oid : nullptr;
}

// A name as it was given: its bytes and an explicit length.
struct Name {
  const CS_CHAR *text;
  CS_INT length;

  bool is_valid() const {
    return length >= 0 && static_cast<size_t>(length) <= sizeof(CsUserAlgo::from_charname);
  }
};

// Adds a record at the head of the list: CS_SUCCEED, CS_CONV_SYNTAX or CS_MEM_ERROR.
CS_RETCODE add(CS_CONTEXT *context, Name from_name, CsOID *from, Name to_name, CsOID *to) noexcept {
  if (!from_name.is_valid() || !to_name.is_valid())
    return CS_CONV_SYNTAX;
  auto *const algorithm = static_cast<CsUserAlgo *>(comn_calloc(1, sizeof(CsUserAlgo)));
  if (algorithm == nullptr)
    return CS_MEM_ERROR;
  std::memcpy(algorithm->from_charname, from_name.text, static_cast<size_t>(from_name.length));
  algorithm->from_charnamelen = from_name.length;
  std::memcpy(algorithm->to_charname, to_name.text, static_cast<size_t>(to_name.length));
  algorithm->to_charnamelen = to_name.length;
  algorithm->from_oid = from;
  algorithm->to_oid = to;
  algorithm->next = first_algorithm(context);
  context->usercharconv = algorithm;
  return CS_SUCCEED;
}

void remove(CS_CONTEXT *context, CsUserAlgo *algorithm) noexcept {
  CsUserAlgo *const head = first_algorithm(context);
  if (algorithm == head) {
    // Deliberate: the records behind the head go with it and are not released. Applications that keep
    // such records themselves depend on it.
    context->usercharconv = nullptr;
  } else {
    CsUserAlgo *before = head;
    while (before->next != algorithm)
      before = before->next;
    before->next = algorithm->next;
  }
  comn_free(algorithm);
}

} // namespace

CS_RETCODE comn_set_user_charset_convert(CS_CONTEXT *context, CS_INT action, CS_CHAR *srccharset,
                                         CS_INT srccharset_len, CS_CHAR *destcharset,
                                         CS_INT destcharset_len, CS_INT *multiplier,
                                         CS_CONV_FUNC *func) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(srccharset, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(destcharset, COMN_TRACE(CS_FAIL));
  CsOID *const from = resolve(context, srccharset, srccharset_len);
  if (from == nullptr)
    return COMN_TRACE(COM_UNKNOWN_NAME);
  CsOID *const to = resolve(context, destcharset, destcharset_len);
  if (to == nullptr)
    return COMN_TRACE(COM_UNKNOWN_NAME);

  CsUserAlgo *algorithm = find(context, from, to);
  switch (action) {
  case CS_ACT_SET:
    COMN_CHECK_PTR(func, COMN_TRACE(CS_FAIL));
    if (algorithm == nullptr) {
      const CS_RETCODE result =
          add(context, {srccharset, srccharset_len}, from, {destcharset, destcharset_len}, to);
      if (result != CS_SUCCEED)
        return COMN_TRACE(result);
      algorithm = first_algorithm(context);
    }
    algorithm->user_conv_func = *func;
    algorithm->conv_multiplier = multiplier != nullptr ? *multiplier : 1;
    return COMN_TRACE(CS_SUCCEED);
  case CS_ACT_GET:
    COMN_CHECK_PTR(func, COMN_TRACE(CS_FAIL));
    *func = algorithm != nullptr ? algorithm->user_conv_func : nullptr;
    if (algorithm != nullptr && multiplier != nullptr)
      *multiplier = algorithm->conv_multiplier;
    return COMN_TRACE(CS_SUCCEED);
  case CS_ACT_CLEAR:
    if (algorithm != nullptr)
      remove(context, algorithm);
    return COMN_TRACE(CS_SUCCEED);
  default:
    return COMN_TRACE(comn::raise_bomb(COMN_HERE));
  }
}

CS_RETCODE comn_drop_user_charconv_list(CS_CONTEXT *context) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  CsUserAlgo *algorithm = first_algorithm(context);
  context->usercharconv = nullptr;
  while (algorithm != nullptr) {
    CsUserAlgo *const next = algorithm->next;
    comn_free(algorithm);
    algorithm = next;
  }
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE comn__get_user_charconv(CS_CONTEXT *context, CsOID *from_oid, CsOID *to_oid,
                                   CsUserAlgo **useralgop) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(useralgop, COMN_TRACE(CS_FAIL));
  *useralgop = find(context, from_oid, to_oid);
  return COMN_TRACE(*useralgop != nullptr ? CS_SUCCEED : CS_FAIL);
}

CS_RETCODE comn_convert_max_multiplier(CS_CONTEXT *context, CS_INT type, CS_LOCALE *srcloc,
                                       CS_LOCALE *destloc, CS_INT *multiplier) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(multiplier, COMN_TRACE(CS_FAIL));
  const CS_LOCALE *const from = comn::locale_of(context, srcloc);
  const CS_LOCALE *const to = comn::locale_of(context, destloc);
  COMN_CHECK_PTR(from, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(to, COMN_TRACE(CS_FAIL));
  if (from == to) {
    *multiplier = 1;
    return COMN_TRACE(CS_SUCCEED);
  }
  const CS_INT category =
      type >= CS_LCTYPE_MESSAGE && type <= CS_LCTYPE_TIME ? type : CS_LCTYPE_CTYPE;
  CsLocCache *const from_cache = comn::cache_of(from, category);
  CsLocCache *const to_cache = comn::cache_of(to, category);
  COMN_CHECK_PTR(from_cache, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(to_cache, COMN_TRACE(CS_FAIL));
  if (from_cache == to_cache || from_cache->locchardesc == to_cache->locchardesc) {
    *multiplier = 1;
    return COMN_TRACE(CS_SUCCEED);
  }
  return COMN_TRACE(comn__convert_get_max_multiplier(context, from_cache, to_cache, multiplier));
}

CS_RETCODE comn__convert_get_max_multiplier(CS_CONTEXT *context, CsLocCache *src_lcache,
                                            CsLocCache *dest_lcache, CS_INT *multiplier) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(src_lcache, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(dest_lcache, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(multiplier, COMN_TRACE(CS_FAIL));
  const CsCharDesc *const from = src_lcache->locchardesc;
  const CsCharDesc *const to = dest_lcache->locchardesc;
  COMN_CHECK_PTR(from, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(to, COMN_TRACE(CS_FAIL));
  if (const CsUserAlgo *const algorithm = find(context, from->oid, to->oid)) {
    *multiplier = algorithm->conv_multiplier;
    return COMN_TRACE(CS_SUCCEED);
  }
  COMN_CHECK_PTR(from->char_attrib, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(to->char_attrib, COMN_TRACE(CS_FAIL));
  UNICONV_CID from_cid, to_cid;
  if (comn__get_unilib_cid(from->char_attrib->cs_id, &from_cid) != CS_SUCCEED ||
      comn__get_unilib_cid(to->char_attrib->cs_id, &to_cid) != CS_SUCCEED ||
      uniconv_GetExpansion(from_cid, to_cid, multiplier) != UNICONV_SUCCEED)
    return COMN_TRACE(CS_FAIL);
  return COMN_TRACE(CS_SUCCEED);
}
