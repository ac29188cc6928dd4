// Any bytes as objectid.dat: the loader answers with a told status, and a table that it gives holds
// together: what each record says of itself is what the look-ups find.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "fuzz_input.h"
#include "zrvcomn/comloc.h"

namespace {

using zrvfuzz::require;

// A home directory of this process, whose only file is objectid.dat.
class Home {
public:
  Home() {
    check(mkdtemp(path.data()) != nullptr && mkdir((path + "/config").c_str(), 0700) == 0);
    setenv("ZARVEK", path.c_str(), 1);
    file = open((path + "/config/objectid.dat").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    check(file >= 0);
  }
  ~Home() {
    close(file);
    unlink((path + "/config/objectid.dat").c_str());
    rmdir((path + "/config").c_str());
    rmdir(path.c_str());
  }

  void write(const uint8_t *data, size_t size) const {
    check(pwrite(file, data, size, 0) == static_cast<ssize_t>(size) &&
          ftruncate(file, static_cast<off_t>(size)) == 0);
  }

private:
  static void check(bool holds) {
    if (!holds) {
      std::perror("home of the fuzzer");
      std::_Exit(1);
    }
  }

  std::string path = "/tmp/zrvfuzz-XXXXXX";
  int file = -1;
};

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
  static const Home home;
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
