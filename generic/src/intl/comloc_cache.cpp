// Location caches: made, copied, compared, taken off their list, released.
#include <initializer_list>

#include "charset.h"
#include "checks.h"
#include "comerr.h"
#include "loc_cache.h"
#include "sortordr.h"

namespace {

bool same_name(const CS_CHAR *name1, CS_INT length1, const CS_CHAR *name2,
               CS_INT length2) noexcept {
  if (length1 != length2 || (name1 == nullptr) != (name2 == nullptr))
    return false;
  return name1 == nullptr || std::memcmp(name1, name2, static_cast<size_t>(length1)) == 0;
}

// The identifier of a loaded object, null for none.
template <class Object>
const CsOID *identity(const Object *object, CsOID *Object::*oid) noexcept {
  return object != nullptr ? object->*oid : nullptr;
}

template <class Object>
bool same_object(const Object *object1, const Object *object2, CsOID *Object::*oid) noexcept {
  return (object1 == nullptr) == (object2 == nullptr) &&
         identity(object1, oid) == identity(object2, oid);
}

// A copy of a name, when there is one.
CS_RETCODE copy(const CS_CHAR *name, CS_INT length, CS_CHAR *&copied,
                CS_INT &copied_length) noexcept {
  if (name == nullptr)
    return CS_SUCCEED;
  copied = comn::copy_name(name, length);
  if (copied == nullptr)
    return CS_MEM_ERROR;
  copied_length = length;
  return CS_SUCCEED;
}

// Takes an element off a list whose head has no type: false when it is not there.
template <class Element>
bool unlink(CS_VOID *&head, Element *element, Element *Element::*next) noexcept {
  auto *before = static_cast<Element *>(head);
  if (before == element) {
    head = element->*next;
    return true;
  }
  while (before != nullptr && before->*next != element)
    before = before->*next;
  if (before == nullptr)
    return false;
  before->*next = element->*next;
  return true;
}

} // namespace

CS_RETCODE comn__create_loccache(CS_CONTEXT *, CsLocCache **lcachep) noexcept {
  COMN_CHECK_PTR(lcachep, CS_FAIL);
  *lcachep = static_cast<CsLocCache *>(comn_calloc(1, sizeof(CsLocCache)));
  return *lcachep != nullptr ? CS_SUCCEED : CS_MEM_ERROR;
}

void comn__drop_loccache(CsLocCache *lcache) noexcept {
  if (lcache == nullptr)
    return;
  for (CS_CHAR *const name : {lcache->locname, lcache->charname, lcache->sortname, lcache->langname,
                              lcache->datename, lcache->numname, lcache->monname})
    comn_free(name);
  comn_free(lcache);
}

CS_RETCODE comn__copy_loccache(CsLocCache *src, CsLocCache *dest) noexcept {
  COMN_CHECK_PTR(src, CS_FAIL);
  COMN_CHECK_PTR(dest, CS_FAIL);
  if (copy(src->locname, src->locnamelen, dest->locname, dest->locnamelen) != CS_SUCCEED ||
      copy(src->charname, src->charnamelen, dest->charname, dest->charnamelen) != CS_SUCCEED ||
      copy(src->langname, src->langnamelen, dest->langname, dest->langnamelen) != CS_SUCCEED ||
      copy(src->sortname, src->sortnamelen, dest->sortname, dest->sortnamelen) != CS_SUCCEED)
    return CS_MEM_ERROR;
  dest->locchardesc = src->locchardesc;
  dest->locmessage = src->locmessage;
  dest->locsortorder = src->locsortorder;
  return CS_SUCCEED;
}

CS_BOOL comn__cmp_loccache(CsLocCache *lcache1, CsLocCache *lcache2) noexcept {
  COMN_CHECK_PTR(lcache1, 0);
  COMN_CHECK_PTR(lcache2, 0);
  const CsLocCache &a = *lcache1, &b = *lcache2;
  return same_name(a.locname, a.locnamelen, b.locname, b.locnamelen) &&
         same_name(a.charname, a.charnamelen, b.charname, b.charnamelen) &&
         same_name(a.sortname, a.sortnamelen, b.sortname, b.sortnamelen) &&
         same_name(a.langname, a.langnamelen, b.langname, b.langnamelen) &&
         same_name(a.datename, a.datenamelen, b.datename, b.datenamelen) &&
         same_object(a.locchardesc, b.locchardesc, &CsCharDesc::oid) &&
         same_object(a.locsortorder, b.locsortorder, &CsSortDesc::oid) &&
         same_object(a.locmessage, b.locmessage, &CS_MESSAGE::lang_oid) &&
         comn__cmp_dtinfo(a.locdateinfo, b.locdateinfo) &&
         same_name(a.numname, a.numnamelen, b.numname, b.numnamelen) &&
         same_name(a.monname, a.monnamelen, b.monname, b.monnamelen) &&
         same_object(a.locnuminfo, b.locnuminfo, &CS_NUMINFO::id) &&
         same_object(a.locmoninfo, b.locmoninfo, &CS_MONINFO::id);
}

CS_RETCODE comn__scan_lcache(CS_CONTEXT *context, CsLocCache *lcache,
                             CsLocCache **dup_loccache) noexcept {
  COMN_CHECK_PTR(context, CS_FAIL);
  COMN_CHECK_PTR(context->ctxglobals, CS_FAIL);
  COMN_CHECK_PTR(lcache, CS_FAIL);
  COMN_CHECK_PTR(dup_loccache, CS_FAIL);
  *dup_loccache = nullptr;
  CsCtxGlobals *const globals = context->ctxglobals;
  CsLocCache *equal = comn::caches(globals);
  while (equal != nullptr && !comn__cmp_loccache(equal, lcache))
    equal = equal->locnext;
  if (equal == nullptr)
    return CS_SUCCEED;
  if (equal->locdateinfo == nullptr ||
      !unlink(globals->cmg_datetime, equal->locdateinfo, &CS_DATEINFO::next))
    return CS_FAIL;
  unlink(globals->cmg_lcache, equal, &CsLocCache::locnext);
  *dup_loccache = equal;
  return CS_SUCCEED;
}

CS_RETCODE com_intl_loccache_drop(CS_CONTEXT *context) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(context->ctxglobals, COMN_TRACE(CS_FAIL));
  CsCtxGlobals *const globals = context->ctxglobals;
  while (CsLocCache *const cache = comn::caches(globals)) {
    globals->cmg_lcache = cache->locnext;
    comn__drop_loccache(cache);
  }
  comn::forget_utf8(globals);
  return COMN_TRACE(CS_SUCCEED);
}
