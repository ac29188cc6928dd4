// Loads objectid.dat into a table of identifiers, and releases the table.
#include "checks.h"
#include "oid_table.h"
#include "section_files.h"

namespace {

CS_CHAR file_name[] = "objectid.dat";

void free_names(CS_STRING_LIST *name) noexcept {
  while (name != nullptr) {
    CS_STRING_LIST *const next = name->next;
    comn_free(name->string);
    comn_free(name);
    name = next;
  }
}

void free_oid(CsOID *oid) noexcept {
  if (oid == nullptr)
    return;
  free_names(oid->oidlnames);
  comn_free(oid->oidstring);
  comn_free(oid->oidber);
  comn_free(oid);
}

// A copy without a terminator; null without memory.
CS_CHAR *copy_text(const CS_CHAR *text, CS_INT length) noexcept {
  auto *const copy = static_cast<CS_CHAR *>(comn_malloc(static_cast<size_t>(length)));
  if (copy != nullptr)
    std::memcpy(copy, text, static_cast<size_t>(length));
  return copy;
}

// Where a pointer to a further element goes.
CS_STRING_LIST **end_of(CS_STRING_LIST **names) noexcept {
  while (*names != nullptr)
    names = &(*names)->next;
  return names;
}

CS_RETCODE read_sections(CS_CONTEXT *context, INTL_LOCFILE *file, CS_OID_TABLE *oidtable) noexcept {
  int status = 0;
  while (CS_CHAR *const section = intl_nextsection(file, &status)) {
    CS_INT oidclass;
    if (comn_string_to_id(context, own_Com__dup_classmap, section, &oidclass) != CS_SUCCEED)
      continue;
    const CS_RETCODE result = comn__read_oidsection(context, file, oidtable, oidclass);
    if (result != CS_SUCCEED)
      return result;
  }
  return comn::reader_result(context, status);
}

// An entry of a section: its key, and the names behind it.
CS_RETCODE read_entry(CS_CONTEXT *context, INTL_LOCFILE *file, CS_CHAR *key,
                      CsOID **oidp) noexcept {
  CS_RETCODE result = comn__new_oid(context, key, oidp);
  if (result != CS_SUCCEED)
    return result;
  result = comn__read_localnames(context, file, *oidp);
  if (result != CS_SUCCEED)
    free_oid(*oidp);
  return result;
}

} // namespace

CS_RETCODE comn_intl_load_globalid(CS_CONTEXT *context, CS_OID_TABLE **oidtablep) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(oidtablep, COMN_TRACE(CS_FAIL));
  *oidtablep = nullptr;
  auto *const oidtable = static_cast<CS_OID_TABLE *>(comn_calloc(1, sizeof(CS_OID_TABLE)));
  if (oidtable == nullptr)
    return COMN_TRACE(CS_MEM_ERROR);
  const CS_RETCODE result = comn__read_oidfile(context, oidtable);
  if (result != CS_SUCCEED) {
    comn_intl_drop_globalid(context, oidtable);
    return COMN_TRACE(result);
  }
  *oidtablep = oidtable;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE comn_intl_drop_globalid(CS_CONTEXT *, CS_OID_TABLE *oidtablep) noexcept {
  if (oidtablep == nullptr)
    return COMN_TRACE(CS_SUCCEED);
  for (CsOID *oid : oidtablep->ot_oid)
    while (oid != nullptr) {
      CsOID *const next = oid->oidnext;
      free_oid(oid);
      oid = next;
    }
  comn_free(oidtablep);
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE comn__read_oidfile(CS_CONTEXT *context, CS_OID_TABLE *oidtable) noexcept {
  COMN_CHECK_PTR(context, CS_FAIL);
  COMN_CHECK_PTR(oidtable, CS_FAIL);
  INTL_LOCFILE file;
  CS_RETCODE result = com__open_cfgfile(context, file_name, &file, 0);
  if (result != CS_SUCCEED)
    return result;
  result = read_sections(context, &file, oidtable);
  return comn::close_behind(context, &file, result);
}

CS_RETCODE comn__read_oidsection(CS_CONTEXT *context, INTL_LOCFILE *file, CS_OID_TABLE *oidtable,
                                 CS_INT oidclass) noexcept {
  COMN_CHECK_PTR(context, CS_FAIL);
  COMN_CHECK_PTR(file, CS_FAIL);
  COMN_CHECK_PTR(oidtable, CS_FAIL);
  COMN_CHECK(comn::is_oid_class(oidclass), CS_FAIL);
  int status = 0;
  while (CS_CHAR *const key = intl_nextentry(file, &status)) {
    CsOID *oid;
    CS_RETCODE result = read_entry(context, file, key, &oid);
    if (result == CS_SUCCEED)
      result = comn__add_oid(context, oidtable, oidclass, oid);
    if (result != CS_SUCCEED)
      return result;
  }
  return comn::reader_result(context, status);
}

CS_RETCODE comn__read_localnames(CS_CONTEXT *context, INTL_LOCFILE *file, CsOID *oid) noexcept {
  COMN_CHECK_PTR(context, CS_FAIL);
  COMN_CHECK_PTR(file, CS_FAIL);
  COMN_CHECK_PTR(oid, CS_FAIL);
  CS_STRING_LIST **end = end_of(&oid->oidlnames);
  int status = 0;
  while (CS_CHAR *const value = intl_nextvalue(file, &status)) {
    const CS_RETCODE result =
        comn__newstring(context, value, static_cast<CS_INT>(std::strlen(value)), end);
    if (result != CS_SUCCEED)
      return result;
    end = &(*end)->next;
    ++oid->oidnumlnames;
  }
  return comn::reader_result(context, status);
}

CS_RETCODE comn__new_oid(CS_CONTEXT *context, CS_CHAR *oidstring, CsOID **oidp) noexcept {
  COMN_CHECK_PTR(oidstring, CS_FAIL);
  COMN_CHECK_PTR(oidp, CS_FAIL);
  *oidp = nullptr;
  auto *const oid = static_cast<CsOID *>(comn_calloc(1, sizeof(CsOID)));
  if (oid == nullptr)
    return CS_MEM_ERROR;
  oid->oidnamelen = static_cast<CS_INT>(std::strlen(oidstring));
  oid->oidstring = copy_text(oidstring, oid->oidnamelen);
  const CS_RETCODE result = oid->oidstring != nullptr
                                ? comn__encode_oid(context, oid->oidstring, oid->oidnamelen, oid)
                                : CS_MEM_ERROR;
  if (result != CS_SUCCEED) {
    free_oid(oid);
    return result;
  }
  *oidp = oid;
  return CS_SUCCEED;
}

CS_RETCODE comn__newstring(CS_CONTEXT *, CS_CHAR *string, CS_INT len,
                           CS_STRING_LIST **elementp) noexcept {
  COMN_CHECK_PTR(elementp, CS_FAIL);
  *elementp = nullptr;
  auto *const element = static_cast<CS_STRING_LIST *>(comn_calloc(1, sizeof(CS_STRING_LIST)));
  if (element == nullptr)
    return CS_MEM_ERROR;
  if (string != nullptr && len >= 1) {
    element->string = copy_text(string, len);
    element->len = len;
    if (element->string == nullptr) {
      comn_free(element);
      return CS_MEM_ERROR;
    }
  }
  *elementp = element;
  return CS_SUCCEED;
}

CS_RETCODE comn__add_oid(CS_CONTEXT *context, CS_OID_TABLE *oidtable, CS_INT oidclass,
                         CsOID *oid) noexcept {
  COMN_CHECK_PTR(oidtable, CS_FAIL);
  COMN_CHECK_PTR(oid, CS_FAIL);
  COMN_CHECK(comn::is_oid_class(oidclass), CS_FAIL);
  const comn::ByteSpan<CS_BYTE> encoding = comn::encoding_of(*oid);
  CsOID **link = &oidtable->ot_oid[oidclass];
  for (; *link != nullptr; link = &(*link)->oidnext)
    if (comn::encoding_of(**link) == encoding) {
      comn__cat_localnames(context, *link, oid);
      free_oid(oid);
      return CS_SUCCEED;
    }
  *link = oid;
  return CS_SUCCEED;
}

CS_RETCODE comn__cat_localnames(CS_CONTEXT *, CsOID *to, CsOID *from) noexcept {
  COMN_CHECK_PTR(to, CS_FAIL);
  COMN_CHECK_PTR(from, CS_FAIL);
  *end_of(&to->oidlnames) = from->oidlnames;
  to->oidnumlnames += from->oidnumlnames;
  from->oidlnames = nullptr;
  from->oidnumlnames = 0;
  return CS_SUCCEED;
}
