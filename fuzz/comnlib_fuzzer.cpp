// Any bytes as a message file: a start answers with a told status, and a line comes out whatever the file
// holds. The cache stays within its bound and holds together.
#include <cstring>

#include "fuzz_home.h"
#include "fuzz_input.h"
#include "zrvcomn/charset.h"
#include "zrvcomn/comerr.h"

namespace {

using zrvfuzz::require;

CS_RETCODE receive(CS_CONTEXT *, CS_CLIENTMSG *message) {
  require(message->msgstringlen >= 3 && message->msgstringlen <= 1023);
  require(message->msgstring[message->msgstringlen] == '\0');
  require(std::memcmp(message->msgstring, "api: ", 5) == 0);
  require(message->sqlstatelen >= 0 && message->sqlstatelen <= 7);
  return CS_SUCCEED;
}

void check_cache(const CS_MESSAGE &message) {
  CS_INT count = 0;
  for (const CsErrorCache *entry = message.locerrhist; entry != nullptr; entry = entry->histnext) {
    const CsErrorCache *found = entry->errseccache->errcache;
    while (found != nullptr && found != entry)
      found = found->next;
    require(found == entry);
    ++count;
  }
  require(count == message.locerrcnt && count <= COM_ERR_CACHE_SIZE);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  static const zrvfuzz::Home home("locales/message/x/comnlib.loc");
  home.write(data, size);
  CsCharDesc charset{};
  CsLocCache cache{};
  char language[] = "x";
  cache.langname = language;
  cache.langnamelen = 1;
  cache.locchardesc = &charset;
  CS_LOCALE locale{};
  locale.messageptr = &cache;
  CsCtxGlobals globals{};
  globals.cmg_utf8_charset = &charset;
  CS_CONTEXT context{};
  context.ctxglobals = &globals;
  context.ctxlocale = &locale;
  context.ctxerrfunc = receive;
  require(comn__intl_load_message(&context, nullptr, &cache) == CS_SUCCEED);
  const CS_RETCODE result = com_errinit(&context);
  require(result == CS_SUCCEED || result == CS_FAIL || result == COM_INTL_ERROR);
  require((cache.locmessage->locfilecache != nullptr) == (result == CS_SUCCEED));
  check_cache(*cache.locmessage);

  char api[] = "api", text[] = "a text";
  CS_INT number = 12;
  CsErrParams ep;
  for (CS_INT i = 0; i < 120; ++i) {
    if (i % 3 == 0)
      com_ep_s(&ep, api);
    else if (i % 3 == 1)
      com_ep_ss(&ep, api, text);
    else
      com_ep_sds(&ep, api, &number, text);
    require(com__error(&context, i % 4 << 24 | i % 5 << 16 | i, &ep) == CS_SUCCEED);
  }
  check_cache(*cache.locmessage);
  require(com_errdrop(&context) == CS_SUCCEED);
  return comn_intl_message_drop(&context) != CS_SUCCEED;
}
