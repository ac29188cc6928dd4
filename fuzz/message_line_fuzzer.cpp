// Lines of messages with random parameters: any text of a number, any parameters behind the first, any room,
// cut or refused. The line is what its parts and a slow reader of the marks make of it. The first bytes
// choose the function that fills the parameters, the number's layer and origin, the room and two integers;
// behind them stand three strings and the message, each with a NUL at its end.
#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz_home.h"
#include "fuzz_input.h"
#include "strbuild_reference.h"
#include "zrvcomn/charset.h"
#include "zrvcomn/comerr.h"

namespace {

using zrvfuzz::require;

constexpr std::string_view file = "[comdefaults]\n"
                                  "2 = HY000, no layer\n"
                                  "3 = HY000, no origin\n"
                                  "[comlayer]\n"
                                  "1 = HY000, layer\n"
                                  "[comorigin]\n"
                                  "1 = HY000, origin\n"
                                  "[comapierror]\n";
constexpr CS_MSGNUM number = 7;

// What the parameters behind the first one are.
constexpr std::string_view kinds[] = {"", "d", "s", "ss", "ds", "dd", "sd"};

struct Parameters {
  CsErrParams record;
  std::vector<std::string> shown; // as they stand in the text
};

Parameters fill(std::string_view kind, std::string (&strings)[3], CS_INT (&integers)[2]) {
  Parameters result;
  CsErrParams *const ep = &result.record;
  CS_CHAR *const api = strings[0].data(), *const one = strings[1].data(),
                 *const two = strings[2].data();
  if (kind.empty())
    com_ep_s(ep, api);
  else if (kind == "d")
    com_ep_sd(ep, api, &integers[0]);
  else if (kind == "s")
    com_ep_ss(ep, api, one);
  else if (kind == "ss")
    com_ep_sss(ep, api, one, two);
  else if (kind == "ds")
    com_ep_sds(ep, api, &integers[0], two);
  else if (kind == "dd")
    com_ep_sdd(ep, api, &integers[0], &integers[1]);
  else
    com_ep_ssd(ep, api, one, &integers[1]);
  for (size_t i = 0; i < kind.size(); ++i)
    result.shown.push_back(kind[i] == 's' ? strings[i + 1] : std::to_string(integers[i]));
  return result;
}

// A locale in the fixed set, with the texts of the file and one of number 7.
class Messages {
public:
  explicit Messages(std::string text) {
    static const zrvfuzz::Home home("locales/message/x/comnlib.loc");
    home.write(reinterpret_cast<const uint8_t *>(file.data()), file.size());
    cache.langname = language;
    cache.langnamelen = 1;
    cache.locchardesc = &charset;
    locale.messageptr = &cache;
    globals.cmg_utf8_charset = &charset;
    context.ctxglobals = &globals;
    context.ctxlocale = &locale;
    require(comn__intl_load_message(&context, nullptr, &cache) == CS_SUCCEED);
    require(com_errinit(&context) == CS_SUCCEED);
    CsErrSecCache *section = cache.locmessage->locfilecache->errsecs;
    while (section->errtag != COM_ERRSEC_API)
      section = section->next;
    char state[] = "HY000";
    require(com__update_cache(&context, handle(), section, number, state, sizeof state - 1,
                              text.data(), static_cast<CS_INT>(text.size())) == CS_SUCCEED);
  }
  ~Messages() {
    com_errdrop(&context);
    comn_intl_message_drop(&context);
  }
  Messages(const Messages &) = delete;
  Messages &operator=(const Messages &) = delete;

  CS_ERRHAN *handle() { return static_cast<CS_ERRHAN *>(context.ctxcomerrhan); }

  CS_CONTEXT context{};

private:
  char language[2] = "x";
  CsCharDesc charset{};
  CsLocCache cache{};
  CS_LOCALE locale{};
  CsCtxGlobals globals{};
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  zrvfuzz::Input input(data, size);
  const std::string_view kind = kinds[input.byte() % std::size(kinds)];
  const unsigned layer = input.byte() % 3, origin = input.byte() % 3;
  const size_t room = input.word() % 2048;
  CS_INT integers[] = {input.number(), input.number()};
  std::string strings[] = {input.text(), input.text(), input.text()};
  const std::string text = input.text();
  Messages messages(text);
  Parameters parameters = fill(kind, strings, integers);

  // There are 512 bytes more than the text has, one of them for a terminator.
  std::string built = zrvfuzz::build_message(text, parameters.shown);
  if (kind.empty() || built.size() >= text.size() + 512)
    built = text;
  const std::string wanted = strings[0] + (layer == 1 ? ": layer" : ": no layer") +
                             (origin == 1 ? ": origin: " : ": no origin: ") + built;

  const CS_MSGNUM errnum = static_cast<CS_MSGNUM>(layer << 24 | origin << 16) | number;
  for (const CS_BOOL truncate : {0, 1}) {
    char *const buffer = new char[room]; // watched at its end
    std::fill_n(buffer, room, '\x5A');
    CS_INT length = -1;
    const CS_RETCODE result = com_notrunc_errmsg(
        &messages.context, messages.handle(), errnum, &parameters.record, nullptr, 0,
        COM_ERRSEC_API, truncate, buffer, static_cast<CS_INT>(room), &length);
    const bool is_refused = truncate == 0 && wanted.size() > room;
    const size_t written = is_refused ? 0 : std::min(wanted.size(), room);
    require(result == (is_refused ? CS_FAIL : CS_SUCCEED));
    require(length == static_cast<CS_INT>(is_refused ? wanted.size() : written));
    require(std::memcmp(buffer, wanted.data(), written) == 0);
    require(std::all_of(buffer + written, buffer + room, [](char c) { return c == '\x5A'; }));
    delete[] buffer;
  }
  return 0;
}
