// Any bytes as locales.dat: a look-up answers with a told status, and a row that it finds is whole.
#include <csignal>
#include <cstring>

#include "fuzz_home.h"
#include "fuzz_input.h"
#include "zrvcomn/comloc.h"

namespace {

using zrvfuzz::require;

void check_name(const CS_CHAR (&name)[COM_LOCNAME_SIZE], CS_INT length, CS_INT least) {
  require(length >= least && length < COM_LOCNAME_SIZE);
  require(std::strlen(name) == static_cast<size_t>(length));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  static const zrvfuzz::Home home("locales/locales.dat");
  home.write(data, size);
  // A name that is too long is fatal, and the look-up goes on to fail.
  const auto fuzzers_handler = std::signal(SIGABRT, SIG_IGN);
  CS_CONTEXT context{};
  CsLocNames names;
  CS_CHAR name[] = "default";
  const CS_RETCODE result = comn__intl_lookup(&context, name, sizeof name - 1, &names, nullptr, 0);
  std::signal(SIGABRT, fuzzers_handler);
  require(result == CS_SUCCEED || result == CS_FAIL || result == COM_INTL_ERROR);
  require((context.ctxintlerr < 0) == (result == COM_INTL_ERROR));
  const CS_INT least = result == CS_SUCCEED ? 1 : 0;
  check_name(names.lang, names.langlen, least);
  check_name(names.charset, names.charsetlen, least);
  check_name(names.sortorder, names.sortorderlen, least);
  check_name(names.datetime, names.datetimelen, 0);
  check_name(names.numeric, names.numericlen, 0);
  check_name(names.money, names.moneylen, 0);
  return 0;
}
