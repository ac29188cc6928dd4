// Dumps of identifiers, their table, conversion acknowledgements and data functions.
#include <algorithm>

#include "checks.h"
#include "comloc.h"
#include "oid_table.h"

namespace {

constexpr char heavy_rule[] =
    "====================================================================\n";
constexpr char light_rule[] =
    "  ------------------------------------------------------------------\n";
static_assert(sizeof heavy_rule == 68 + 2 && sizeof light_rule == 2 + 66 + 2);

// A text without a terminator, and its length.
void print_text(const char *format, const CS_CHAR *text, CS_INT length) noexcept {
  comn_debug_print(format, text != nullptr ? std::max(length, 0) : 0, text != nullptr ? text : "",
                   length);
}

void print_title(const char *title) noexcept {
  comn_debug_print(heavy_rule);
  comn_debug_print("%s\n", title);
  comn_debug_print(heavy_rule);
}

void print_no_record() noexcept {
  comn_debug_print("\tNULL\n");
  comn_debug_print(heavy_rule);
}

const char *class_name(CS_CONTEXT *context, CS_INT oidclass) noexcept {
  CS_CHAR *name;
  return comn_id_to_string(context, own_Com__classmap, oidclass, &name) == CS_SUCCEED ? name
                                                                                      : "unknown";
}

struct Field {
  CsOID *CS_CONVACK::*oid;
  CS_INT oidclass;
};

constexpr Field convack_fields[] = {
    {&CS_CONVACK::ca_int2, COM_OID_INTEGER2},     {&CS_CONVACK::ca_int4, COM_OID_INTEGER4},
    {&CS_CONVACK::ca_int8, COM_OID_INTEGER8},     {&CS_CONVACK::ca_flt4, COM_OID_FLOAT4},
    {&CS_CONVACK::ca_flt8, COM_OID_FLOAT8},       {&CS_CONVACK::ca_char, COM_OID_CHARSET},
    {&CS_CONVACK::ca_lang, COM_OID_NATLANG},      {&CS_CONVACK::ca_sort, COM_OID_COLLATE},
    {&CS_CONVACK::ca_datetime, COM_OID_DATETIME}, {&CS_CONVACK::ca_money, COM_OID_MONEY},
    {&CS_CONVACK::ca_numeric, COM_OID_NUMERIC},
};

} // namespace

CS_RETCODE comn_dbg_print_oid(CS_CONTEXT *, CsOID *oid) noexcept {
  if (oid == nullptr) {
    // Deliberate: no line end, so that what follows stands on the same line.
    comn_debug_print("OID: \tNULL");
    return CS_SUCCEED;
  }
  print_text("OID: \t%.*s (%d)\n", oid->oidstring, oid->oidnamelen);
  comn_debug_print("\t\tglobal id:");
  for (CS_INT i = 0; oid->oidber != nullptr && i < oid->oidberlen; ++i)
    comn_debug_print(" 0x%x", oid->oidber[i]);
  comn_debug_print(" (%d)\n", oid->oidberlen);
  comn_debug_print("\t\tnumber of local names: %d\n", oid->oidnumlnames);
  comn_debug_print("\t\tlocal names\n");
  for (const CS_STRING_LIST *name = oid->oidlnames; name != nullptr; name = name->next)
    print_text("\t\t\t%.*s (%d)\n", name->string, name->len);
  return CS_SUCCEED;
}

CS_RETCODE comn_dbg_print_oidtable(CS_CONTEXT *context, CS_OID_TABLE *oidtable) noexcept {
  print_title("OID TABLE");
  if (oidtable == nullptr) {
    print_no_record();
    return CS_SUCCEED;
  }
  for (CS_INT oidclass = 0; oidclass < COM_OID_CLASS_COUNT; ++oidclass) {
    comn_debug_print("  CLASS: %s\n", class_name(context, oidclass));
    comn_debug_print(light_rule);
    for (CsOID *oid = oidtable->ot_oid[oidclass]; oid != nullptr; oid = oid->oidnext)
      comn_dbg_print_oid(context, oid);
    comn_debug_print(heavy_rule);
  }
  return CS_SUCCEED;
}

CS_RETCODE comn_dbg_print_convack(CS_CONTEXT *context, CS_CONVACK *convack) noexcept {
  print_title("CONVACK");
  if (convack == nullptr) {
    print_no_record();
    return CS_SUCCEED;
  }
  for (const Field &field : convack_fields) {
    comn_debug_print("CLASS: %s\n", class_name(context, field.oidclass));
    comn_debug_print(light_rule);
    comn_dbg_print_oid(context, convack->*field.oid);
    comn_debug_print(light_rule);
  }
  comn_debug_print(heavy_rule);
  return CS_SUCCEED;
}

CS_RETCODE comn_dbg_print_datafuncs(CS_CONTEXT *, CS_DATAFUNCS *) noexcept {
  print_title("DATAFUNCS");
  comn_debug_print(heavy_rule);
  return CS_SUCCEED;
}
