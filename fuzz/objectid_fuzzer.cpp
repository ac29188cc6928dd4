// Any bytes as objectid.dat: the loader answers with a told status, and a table that it gives holds
// together: what each record says of itself is what the look-ups find.
#include "fuzz_home.h"
#include "fuzz_input.h"
#include "zrvcomn/comloc.h"

namespace {

using zrvfuzz::require;

void check_record(CS_CONTEXT &context, CS_INT oidclass, CsOID *oid) {
  require(oid->oidber[0] == 6 && oid->oidberlen >= 3 && oid->oidberlen <= COM_OID_BER_SIZE);
  CsOID *found = nullptr;
  require(comn_gid_to_oid(&context, oidclass, oid->oidber, oid->oidberlen, &found) == CS_SUCCEED &&
          found == oid);
  CS_INT names = 0;
  for (const CS_STRING_LIST *name = oid->oidlnames; name != nullptr; name = name->next, ++names)
    if (name->len > 0) {
      // The first record with the name, which may be an earlier one.
      require(comn_globalid(&context, COM_NAME_TO_OID, &found, &oidclass, CS_UNUSED, name->string,
                            name->len, nullptr, nullptr) == CS_SUCCEED);
      require(comn__find_lclname(found, name->string, name->len) != 0);
    }
  require(names == oid->oidnumlnames);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  static const zrvfuzz::Home home("config/objectid.dat");
  home.write(data, size);
  CS_CONTEXT context{};
  CsCtxGlobals globals{};
  context.ctxglobals = &globals;
  CS_OID_TABLE *table = nullptr;
  const CS_RETCODE result = comn_intl_load_globalid(&context, &table);
  require(result == CS_SUCCEED || result == CS_FAIL || result == COM_INTL_ERROR);
  require((table != nullptr) == (result == CS_SUCCEED));
  if (table == nullptr)
    return 0;
  globals.ctxoids = table;
  for (CS_INT oidclass = 0; oidclass < COM_OID_CLASS_COUNT; ++oidclass)
    for (CsOID *oid = table->ot_oid[oidclass]; oid != nullptr; oid = oid->oidnext)
      check_record(context, oidclass, oid);
  return comn_intl_drop_globalid(&context, table) != CS_SUCCEED;
}
