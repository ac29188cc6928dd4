// The look-ups in the table of identifiers: by encoding, by name, by format code.
#include "checks.h"
#include "oid_table.h"
#include "table.h"

namespace {

constexpr CS_STRINGS end_row = {CS_UNUSED, nullptr};

constexpr comn::Table<CS_STRINGS, COM_OID_CLASS_COUNT + 1> class_names = {{
    {COM_OID_CHARSET, "charset"},
    {COM_OID_NUMERIC, "numeric"},
    {COM_OID_MONEY, "money"},
    {COM_OID_DATETIME, "datetime"},
    {COM_OID_COLLATE, "collate"},
    {COM_OID_NATLANG, "natlang"},
    {COM_OID_INTEGER2, "integer2"},
    {COM_OID_INTEGER4, "integer4"},
    {COM_OID_INTEGER8, "integer8"},
    {COM_OID_FLOAT4, "float4"},
    {COM_OID_FLOAT8, "float8"},
    {COM_OID_SECMECH, "secmech"},
    end_row,
}};
using ClassNames = decltype(class_names);

} // namespace

COMN_PUBLISH_TABLE(ClassNames, CS_STRINGS, Com__classmap, [COM_OID_CLASS_COUNT + 1], class_names);
COMN_PUBLISH_TABLE(ClassNames, CS_STRINGS, Com__dup_classmap, [COM_OID_CLASS_COUNT + 1],
                   class_names);

COMN_DEFINE_TABLE(Com__tds_lclname_map) = {
    {2, "int2_lsb_high"},       {3, "int2_lsb_low"},        {0, "int4_lsb_high"},
    {1, "int4_lsb_low"},        {6, "char_ascii"},          {7, "char_ebcdic"},
    {4, "float_ieee_lsb_high"}, {10, "float_ieee_lsb_low"}, {11, "float_nd5000"},
    {5, "float_vaxd"},          {12, "flt4_ieee_lsb_high"}, {13, "flt4_ieee_lsb_low"},
    {14, "flt4_vaxf"},          {15, "flt4_nd5000"},        end_row,
};

namespace {

// The longest name that comn_oid_to_tds and comn_locale_to_oid look at, with its terminator.
constexpr CS_INT name_size = 255;

const CS_OID_TABLE *table_of(const CS_CONTEXT *context) noexcept {
  if (context == nullptr || context->ctxglobals == nullptr)
    return nullptr;
  return static_cast<const CS_OID_TABLE *>(context->ctxglobals->ctxoids);
}

// The classes that a look-up searches, in ascending order.
struct Classes {
  CS_INT first = 0;
  CS_INT last = COM_OID_CLASS_COUNT - 1;
};

Classes classes_of(CS_INT oidclass) noexcept {
  return oidclass == CS_UNUSED ? Classes{} : Classes{oidclass, oidclass};
}

// A record, and the class in which it was found.
struct Found {
  CsOID *oid = nullptr;
  CS_INT oidclass = 0;
};

template <class Matches>
Found find(const CS_OID_TABLE &table, Classes classes, Matches matches) noexcept {
  for (CS_INT oidclass = classes.first; oidclass <= classes.last; ++oidclass)
    for (CsOID *oid = table.ot_oid[oidclass]; oid != nullptr; oid = oid->oidnext)
      if (matches(*oid))
        return {oid, oidclass};
  return {};
}

Found find_encoding(const CS_OID_TABLE &table, Classes classes,
                    comn::ByteSpan<CS_BYTE> encoding) noexcept {
  return find(table, classes,
              [encoding](const CsOID &oid) { return comn::encoding_of(oid) == encoding; });
}

// A name as a look-up is given it: whole, and without the terminator that a caller may have counted.
struct Probe {
  comn::ByteSpan<CS_CHAR> whole, bare;

  Probe(const CS_CHAR *text, CS_INT len) noexcept
      : whole{text, len}, bare{text, text[len - 1] == '\0' ? len - 1 : len} {}

  bool is_among(const CS_STRING_LIST *names) const noexcept {
    for (; names != nullptr; names = names->next) {
      const comn::ByteSpan<CS_CHAR> name = {names->string, names->len};
      if (name == whole || name == bare)
        return true;
    }
    return false;
  }
};

const CS_STRING_LIST *name_at(const CsOID &oid, CS_INT position) noexcept {
  const CS_STRING_LIST *name = oid.oidlnames;
  while (name != nullptr && --position > 0)
    name = name->next;
  return name;
}

} // namespace

CS_RETCODE comn::identify(CS_CONTEXT *context, CS_INT oidclass, const CS_CHAR *name, CS_INT length,
                          CsOID **oid) noexcept {
  return comn_globalid(context, COM_NAME_TO_OID, oid, &oidclass, CS_UNUSED,
                       const_cast<CS_CHAR *>(name), length, nullptr, nullptr);
}

CS_RETCODE comn_globalid(CS_CONTEXT *context, CS_INT type, CsOID **gidp, CS_INT *classp,
                         CS_INT nameid, CS_CHAR *localnp, CS_INT len, CS_INT *numnamesp,
                         CS_INT *outlen) noexcept {
  COMN_CHECK(type == COM_OID_TO_NAME || type == COM_NAME_TO_OID, COMN_TRACE(CS_FAIL));
  const auto look_up = type == COM_OID_TO_NAME ? comn__oidtoname : comn__nametooid;
  return COMN_TRACE(look_up(context, gidp, classp, nameid, localnp, len, numnamesp, outlen));
}

CS_RETCODE comn__oidtoname(CS_CONTEXT *context, CsOID **gidp, CS_INT *classp, CS_INT nameid,
                           CS_CHAR *localnp, CS_INT len, CS_INT *numnamesp,
                           CS_INT *outlen) noexcept {
  const CS_OID_TABLE *const table = table_of(context);
  COMN_CHECK_PTR(table, CS_FAIL);
  COMN_CHECK_PTR(gidp, CS_FAIL);
  COMN_CHECK_PTR(*gidp, CS_FAIL);
  COMN_CHECK_PTR(classp, CS_FAIL);
  if (localnp == nullptr)
    COMN_CHECK(nameid == CS_UNUSED && len == CS_UNUSED && outlen == nullptr, CS_FAIL);
  else
    COMN_CHECK(nameid >= 1 && len >= 0, CS_FAIL);

  const Found found = find_encoding(*table, Classes{}, comn::encoding_of(**gidp));
  if (found.oid == nullptr)
    return CS_FAIL;
  *classp = found.oidclass;
  if (numnamesp != nullptr)
    *numnamesp = found.oid->oidnumlnames;
  if (localnp == nullptr)
    return CS_SUCCEED;
  if (found.oid->oidnumlnames < nameid)
    return CS_FAIL;
  const CS_STRING_LIST *const name = name_at(*found.oid, nameid);
  if (name == nullptr)
    return CS_FAIL;
  if (outlen != nullptr)
    *outlen = name->len;
  if (name->len > len)
    return CS_FAIL;
  if (name->len > 0)
    std::memcpy(localnp, name->string, static_cast<size_t>(name->len));
  return CS_SUCCEED;
}

CS_RETCODE comn__nametooid(CS_CONTEXT *context, CsOID **gidp, CS_INT *classp, CS_INT nameid,
                           CS_CHAR *localnp, CS_INT len, CS_INT *numnamesp,
                           CS_INT *outlen) noexcept {
  const CS_OID_TABLE *const table = table_of(context);
  COMN_CHECK_PTR(table, CS_FAIL);
  COMN_CHECK_PTR(gidp, CS_FAIL);
  COMN_CHECK_PTR(localnp, CS_FAIL);
  COMN_CHECK(nameid == CS_UNUSED && numnamesp == nullptr && outlen == nullptr, CS_FAIL);
  const CS_INT oidclass = classp != nullptr ? *classp : CS_UNUSED;
  COMN_CHECK(oidclass == CS_UNUSED || comn::is_oid_class(oidclass), CS_FAIL);

  if (len == CS_LEN_NULLTERM)
    len = static_cast<CS_INT>(std::strlen(localnp));
  if (len <= 0)
    return CS_FAIL;
  const Probe probe(localnp, len);
  const Found found = find(*table, classes_of(oidclass),
                           [probe](const CsOID &oid) { return probe.is_among(oid.oidlnames); });
  if (found.oid == nullptr)
    return CS_FAIL;
  *gidp = found.oid;
  return CS_SUCCEED;
}

CS_BOOL comn__find_lclname(CsOID *oid, CS_CHAR *localnp, CS_INT len) noexcept {
  COMN_CHECK_PTR(oid, 0);
  COMN_CHECK_PTR(localnp, 0);
  return len > 0 && Probe(localnp, len).is_among(oid->oidlnames);
}

CS_RETCODE comn_gid_to_oid(CS_CONTEXT *context, CS_INT oidclass, CS_BYTE *gid, CS_INT gidlen,
                           CsOID **oidp) noexcept {
  COMN_CHECK_PTR(oidp, COMN_TRACE(CS_FAIL));
  COMN_CHECK(oidclass == CS_UNUSED || comn::is_oid_class(oidclass), COMN_TRACE(CS_FAIL));
  if (gid == nullptr || gidlen == 0) {
    *oidp = nullptr;
    return COMN_TRACE(CS_SUCCEED);
  }
  const CS_OID_TABLE *const table = table_of(context);
  COMN_CHECK_PTR(table, COMN_TRACE(CS_FAIL));
  const Found found = find_encoding(*table, classes_of(oidclass), {gid, gidlen});
  if (found.oid == nullptr)
    return COMN_TRACE(CS_FAIL);
  *oidp = found.oid;
  return COMN_TRACE(CS_SUCCEED);
}

CS_BOOL comn_oid_cmp(CS_CONTEXT *, CsOID *oid1, CsOID *oid2) noexcept {
  if (oid1 == oid2)
    return 1;
  constexpr comn::ByteSpan<CS_BYTE> nothing = {nullptr, 0};
  return (oid1 != nullptr ? comn::encoding_of(*oid1) : nothing) ==
         (oid2 != nullptr ? comn::encoding_of(*oid2) : nothing);
}

CS_RETCODE comn_string_to_id(CS_CONTEXT *, const CS_STRINGS *map, CS_CHAR *str,
                             CS_INT *idp) noexcept {
  COMN_CHECK_PTR(map, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(str, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(idp, COMN_TRACE(CS_FAIL));
  while (map->key != CS_UNUSED && std::strcmp(map->string, str) != 0)
    ++map;
  *idp = map->key;
  return COMN_TRACE(map->key != CS_UNUSED ? CS_SUCCEED : CS_FAIL);
}

CS_RETCODE comn_id_to_string(CS_CONTEXT *, const CS_STRINGS *map, CS_INT id,
                             CS_CHAR **strp) noexcept {
  COMN_CHECK_PTR(map, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(strp, COMN_TRACE(CS_FAIL));
  while (map->key != CS_UNUSED && map->key != id)
    ++map;
  *strp = const_cast<CS_CHAR *>(map->string);
  return COMN_TRACE(map->key != CS_UNUSED ? CS_SUCCEED : CS_FAIL);
}

CS_RETCODE comn_tds_to_oid(CS_CONTEXT *context, CS_INT oidclass, CS_INT tdsval,
                           CsOID **oidp) noexcept {
  COMN_CHECK(comn::is_oid_class(oidclass), COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(oidp, COMN_TRACE(CS_FAIL));
  CS_CHAR *name = nullptr;
  const CS_RETCODE status = comn_id_to_string(context, own_Com__tds_lclname_map, tdsval, &name);
  if (status != CS_SUCCEED)
    return COMN_TRACE(status);
  return COMN_TRACE(comn::identify(context, oidclass, name, CS_LEN_NULLTERM, oidp));
}

CS_RETCODE comn_oid_to_tds(CS_CONTEXT *context, CsOID *oid, CS_INT *tdsval) noexcept {
  COMN_CHECK_PTR(oid, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(tdsval, COMN_TRACE(CS_FAIL));
  *tdsval = CS_UNUSED;
  // The record itself is asked, not the one that the table has for its encoding: the formats of two
  // classes may share an encoding.
  const CS_STRING_LIST *const canonical = oid->oidlnames;
  if (canonical == nullptr || canonical->len >= name_size)
    return COMN_TRACE(CS_FAIL);
  CS_CHAR name[name_size] = {};
  if (canonical->len > 0)
    std::memcpy(name, canonical->string, static_cast<size_t>(canonical->len));
  return COMN_TRACE(comn_string_to_id(context, own_Com__tds_lclname_map, name, tdsval));
}

CS_RETCODE comn_locale_to_oid(CS_CONTEXT *context, CS_LOCALE *lp, CS_INT type,
                              CsOID **oidp) noexcept {
  COMN_CHECK_PTR(lp, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(oidp, COMN_TRACE(CS_FAIL));
  COMN_CHECK(type == CS_LOCSTR_CHARSET || type == CS_LOCSTR_LANGUAGE, COMN_TRACE(CS_FAIL));
  const bool is_charset = type == CS_LOCSTR_CHARSET;
  CS_CHAR name[name_size];
  CS_INT length = 0;
  const CS_RETCODE status = com_intl_getstr(lp, is_charset ? CS_LCTYPE_CTYPE : CS_LCTYPE_MESSAGE,
                                            type, name, name_size, &length);
  if (status != CS_SUCCEED)
    return COMN_TRACE(status);
  const CS_INT oidclass = is_charset ? COM_OID_CHARSET : COM_OID_NATLANG;
  return COMN_TRACE(comn::identify(context, oidclass, name, length, oidp));
}
