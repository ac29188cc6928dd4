// Conversion acknowledgements: what two peers have agreed on, format by format.
#include "checks.h"
#include "oid_table.h"

namespace {

// The fields that decide whether two acknowledgements agree.
constexpr CsOID *CS_CONVACK::*compared_fields[] = {
    &CS_CONVACK::ca_int2, &CS_CONVACK::ca_int4, &CS_CONVACK::ca_int8,
    &CS_CONVACK::ca_flt4, &CS_CONVACK::ca_flt8, &CS_CONVACK::ca_char,
};

} // namespace

CS_RETCODE comn_init_convack(CS_CONTEXT *context, CS_CONVACK *convack, CS_INT int2type,
                             CS_INT int4type, CS_INT /*int8type*/, CS_INT flt4type, CS_INT flt8type,
                             CS_CHAR *charset, CS_INT charlen, CS_CHAR *lang, CS_INT langlen,
                             CS_CHAR *sort, CS_INT sortlen, CS_CHAR *datetime, CS_INT datelen,
                             CS_CHAR *money, CS_INT mnylen, CS_CHAR *numeric,
                             CS_INT numlen) noexcept {
  COMN_CHECK_PTR(convack, COMN_TRACE(CS_FAIL));
  struct Format {
    CsOID **field;
    CS_INT oidclass, code;
  };
  const Format formats[] = {
      {&convack->ca_int2, COM_OID_INTEGER2, int2type},
      {&convack->ca_int4, COM_OID_INTEGER4, int4type},
      {&convack->ca_flt4, COM_OID_FLOAT4, flt4type},
      {&convack->ca_flt8, COM_OID_FLOAT8, flt8type},
  };
  struct Name {
    CsOID **field;
    CS_INT oidclass;
    CS_CHAR *name;
    CS_INT length;
  };
  const Name names[] = {
      {&convack->ca_char, COM_OID_CHARSET, charset, charlen},
      {&convack->ca_lang, COM_OID_NATLANG, lang, langlen},
      {&convack->ca_sort, COM_OID_COLLATE, sort, sortlen},
      {&convack->ca_datetime, COM_OID_DATETIME, datetime, datelen},
      {&convack->ca_money, COM_OID_MONEY, money, mnylen},
      {&convack->ca_numeric, COM_OID_NUMERIC, numeric, numlen},
  };

  *convack = {};
  CS_RETCODE status = CS_SUCCEED;
  for (const Format &format : formats)
    if (status == CS_SUCCEED)
      status = comn_tds_to_oid(context, format.oidclass, format.code, format.field);
  for (const Name &name : names)
    if (status == CS_SUCCEED && name.length >= 1)
      status = comn::identify(context, name.oidclass, name.name, name.length, name.field);
  if (status != CS_SUCCEED)
    *convack = {};
  return COMN_TRACE(status);
}

CS_RETCODE comn_copy_convack(CS_CONTEXT *, CS_CONVACK *from, CS_CONVACK *to) noexcept {
  COMN_CHECK_PTR(from, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(to, COMN_TRACE(CS_FAIL));
  *to = *from;
  return COMN_TRACE(CS_SUCCEED);
}

CS_BOOL comn_cmp_convack(CS_CONTEXT *context, CS_CONVACK *convack1, CS_CONVACK *convack2) noexcept {
  COMN_CHECK_PTR(convack1, 0);
  COMN_CHECK_PTR(convack2, 0);
  for (CsOID *CS_CONVACK::*field : compared_fields)
    if (!comn_oid_cmp(context, convack1->*field, convack2->*field))
      return 0;
  return 1;
}
