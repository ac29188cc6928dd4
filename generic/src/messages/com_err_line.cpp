// Lines of messages: the texts of a number, its parameters, and the report to an application.
#include <algorithm>
#include <climits>
#include <cstring>
#include <string_view>

#include "checks.h"
#include "comerr.h"
#include "table.h"
#include "zrvintl.h"

COMN_DEFINE_TABLE(Msgfailures) = {
    {1, "unable to get string due to lack of memory"}, {2, "unable to get layer message string"},
    {3, "unable to get origin message string"},        {4, "unable to get error string"},
    {CS_UNUSED, "bad default error number"},
};

namespace {

// The texts of Msgfailures and of COM_ERRSEC_DEFAULTS.
enum Failure : CS_MSGNUM { no_layer = 2, no_origin = 3, no_error = 4 };

constexpr std::string_view separator = ": ";
constexpr CS_INT room_for_parameters = 512;
constexpr CS_INT longest_line = sizeof CS_CLIENTMSG::msgstring - 1;
constexpr std::string_view unknown_state = "ZZZZZ";

// A byte of a message number, 0 the lowest.
CS_INT byte_of(CS_MSGNUM number, int index) noexcept {
  return static_cast<CS_INT>(static_cast<CS_UINT>(number) >> (8 * index) & 255);
}

CS_INT length_of(const CS_CHAR *text) noexcept {
  return static_cast<CS_INT>(std::strlen(text));
}

std::string_view view(const CS_CHAR *text, CS_INT length) noexcept {
  return {text, length > 0 ? static_cast<size_t>(length) : 0};
}

// What a lookup of a text may return when there is none.
bool is_missing(CS_RETCODE result) noexcept {
  return result == CS_FAIL || result == CS_MEM_ERROR || result == COM_INTL_ERROR ||
         result == COM_LOCFILE_ERROR;
}

// A line on its way into a buffer: each piece is cut to the room that is left.
class Line {
public:
  Line(CS_CHAR *buffer, CS_INT size) noexcept
      : begin(buffer), next(buffer), room(size > 0 ? static_cast<size_t>(size) : 0) {}

  void add(std::string_view piece) noexcept {
    const size_t length = std::min(piece.size(), room);
    next = std::copy_n(piece.data(), length, next);
    room -= length;
  }

  void separate() noexcept {
    if (room < separator.size())
      return add(separator);
    next = std::copy_n(separator.data(), separator.size(), next);
    room -= separator.size();
  }

  CS_INT length() const noexcept { return static_cast<CS_INT>(next - begin); }

private:
  CS_CHAR *begin, *next;
  size_t room;
};

void release(const CsErrStrings &strings) noexcept {
  if (strings.es_err_alloc != 0)
    comn_free(strings.es_err);
}

// Hands a parameter to `call` as the type that it has.
template <class Call>
int with_parameter(CS_INT type, const CS_VOID *parameter, Call call) noexcept {
  if (type == COM_EP_INT)
    return call(static_cast<long>(*static_cast<const CS_INT *>(parameter)));
  return call(static_cast<const CS_CHAR *>(parameter));
}

bool is_parameter(CS_INT type, const CS_VOID *parameter) noexcept {
  return (type == COM_EP_STRING || type == COM_EP_INT) && parameter != nullptr;
}

// What tells that the cache has changed: a text that was loaded stands first in the history, one that
// was dropped for a text that could not be loaded is missing in the count.
struct CacheState {
  const CsErrorCache *newest;
  CS_INT count;

  bool operator==(const CacheState &) const = default;
};

CacheState cache_state(const CS_ERRHAN *errhan) noexcept {
  if (errhan == nullptr || errhan->err_locale == nullptr)
    return {};
  const auto *const cache = static_cast<const CsLocCache *>(errhan->err_locale->messageptr);
  if (cache == nullptr || cache->locmessage == nullptr)
    return {};
  return {cache->locmessage->locerrhist, cache->locmessage->locerrcnt};
}

// Gets the parts of a line; `text` stands for that of the number when it is not null.
CS_RETCODE collect_once(CsContext *context, CS_ERRHAN *errhan, CS_INT errnum, CsErrParams *ep,
                        std::string_view text, CS_INT errsection, CsErrStrings &strings) noexcept {
  strings = CsErrStrings{};
  strings.es_api = static_cast<CS_CHAR *>(ep->ep_param1);
  strings.es_apilen = length_of(strings.es_api);
  CS_RETCODE result = com__get_errstr(context, errhan, COM_ERRSEC_LAYER, byte_of(errnum, 3),
                                      no_layer, &strings.es_layer, &strings.es_layerlen);
  if (result == CS_SUCCEED)
    result = com__get_errstr(context, errhan, COM_ERRSEC_ORIGIN, byte_of(errnum, 2), no_origin,
                             &strings.es_origin, &strings.es_origlen);
  if (result != CS_SUCCEED)
    return result;
  if (text.data() == nullptr)
    return com__get_errmsg(context, errhan, errnum, ep, errsection, &strings);
  strings.es_err = const_cast<CS_CHAR *>(text.data());
  strings.es_errlen = static_cast<CS_INT>(text.size());
  return CS_SUCCEED;
}

// The parts stand in a cache that drops its oldest text for a new one, and the oldest may be a part
// that was there already. So they are got again until nothing is loaded any more. A part that was
// loaded is too young to be dropped for the others, which makes that a few times at most.
CS_RETCODE collect(CsContext *context, CS_ERRHAN *errhan, CS_INT errnum, CsErrParams *ep,
                   std::string_view text, CS_INT errsection, CsErrStrings &strings) noexcept {
  for (;;) {
    const CacheState before = cache_state(errhan);
    const CS_RETCODE result = collect_once(context, errhan, errnum, ep, text, errsection, strings);
    if (result != CS_SUCCEED || cache_state(errhan) == before)
      return result;
    release(strings);
  }
}

} // namespace

CS_RETCODE com__get_failerr(CsContext *context, CS_ERRHAN *errhan, CS_MSGNUM fallback,
                            CS_CHAR **errstr) noexcept {
  CS_ERRIDX index = {COM_ERRSEC_DEFAULTS, fallback};
  if (com_err_msg(context, errhan, &index, errstr) == CS_SUCCEED)
    return COMN_TRACE(CS_SUCCEED);
  const CS_STRINGS *row = own_Msgfailures;
  while (row->key != fallback && row->key != CS_UNUSED)
    ++row;
  COMN_CHECK(row->key != CS_UNUSED, COMN_TRACE(CS_FAIL));
  *errstr = const_cast<CS_CHAR *>(row->string);
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com__get_errstr(CsContext *context, CS_ERRHAN *errhan, CS_INT errsection,
                           CS_MSGNUM errnum, CS_MSGNUM fallback, CS_CHAR **errstr,
                           CS_INT *errlen) noexcept {
  CS_ERRIDX index = {errsection, errnum};
  CS_RETCODE result = com_err_msg(context, errhan, &index, errstr);
  if (result != CS_SUCCEED) {
    COMN_CHECK(is_missing(result), COMN_TRACE(CS_FAIL));
    result = com__get_failerr(context, errhan, fallback, errstr);
    if (result != CS_SUCCEED)
      return COMN_TRACE(result);
  }
  *errlen = length_of(*errstr);
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com__call_strbuild(CsErrParams *ep, CsErrStrings *strings) noexcept {
  COMN_CHECK(is_parameter(ep->ep_type2, ep->ep_param2), COMN_TRACE(CS_FAIL));
  COMN_CHECK(ep->ep_numparams < 3 || is_parameter(ep->ep_type3, ep->ep_param3),
             COMN_TRACE(CS_FAIL));
  const CS_CHAR *const text = strings->es_err;
  const CS_INT size = strings->es_errlen + room_for_parameters;
  auto *const block = static_cast<CS_CHAR *>(comn_malloc(static_cast<size_t>(size)));
  if (block == nullptr)
    return COMN_TRACE(CS_SUCCEED);
  const int length = with_parameter(ep->ep_type2, ep->ep_param2, [&](auto second) {
    if (ep->ep_numparams < 3)
      return intl_strbuild(0, block, size, text, ep->ep_format, second);
    return with_parameter(ep->ep_type3, ep->ep_param3, [&](auto third) {
      return intl_strbuild(0, block, size, text, ep->ep_format, second, third);
    });
  });
  if (length < 0) {
    comn_free(block);
    return COMN_TRACE(CS_SUCCEED);
  }
  strings->es_err = block;
  strings->es_errlen = length;
  strings->es_err_alloc = 1;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE com__get_errmsg(CsContext *context, CS_ERRHAN *errhan, CS_INT errnum, CsErrParams *ep,
                           CS_INT errsection, CsErrStrings *strings) noexcept {
  if (byte_of(errnum, 2) == COM_ERRORIGIN_INTL) {
    COMN_CHECK(ep->ep_numparams == 1, COMN_TRACE(CS_FAIL));
    strings->es_err = const_cast<CS_CHAR *>(intl_errstr(-byte_of(errnum, 0)));
    strings->es_errlen = length_of(strings->es_err);
    return COMN_TRACE(CS_SUCCEED);
  }
  const CS_RETCODE result = com__get_errstr(context, errhan, errsection, byte_of(errnum, 0),
                                            no_error, &strings->es_err, &strings->es_errlen);
  if (result != CS_SUCCEED || ep->ep_numparams == 1)
    return COMN_TRACE(result);
  return COMN_TRACE(com__call_strbuild(ep, strings));
}

CS_INT com__fill_climsg(const CsErrStrings *strings, CS_CHAR *buf, CS_INT maxlen) noexcept {
  Line line(buf, maxlen);
  line.add(view(strings->es_api, strings->es_apilen));
  line.separate();
  line.add(view(strings->es_layer, strings->es_layerlen));
  line.separate();
  line.add(view(strings->es_origin, strings->es_origlen));
  line.separate();
  line.add(view(strings->es_err, strings->es_errlen));
  return line.length();
}

CS_RETCODE com_notrunc_errmsg(CsContext *context, CS_ERRHAN *errhan, CS_INT errnum, CsErrParams *ep,
                              CS_CHAR *errstr, CS_INT errlen, CS_INT errsection, CS_BOOL truncate,
                              CS_CHAR *buf, CS_INT maxlen, CS_INT *buflen) noexcept {
  COMN_CHECK_PTR(ep, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(buf, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(buflen, COMN_TRACE(CS_FAIL));
  COMN_CHECK(ep->ep_numparams >= 1 && ep->ep_numparams <= 3, COMN_TRACE(CS_FAIL));
  COMN_CHECK(ep->ep_type1 == COM_EP_STRING, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(ep->ep_param1, COMN_TRACE(CS_FAIL));
  COMN_CHECK(truncate == 0 || truncate == 1, COMN_TRACE(CS_FAIL));

  CsErrStrings strings;
  const CS_RETCODE result =
      collect(context, errhan, errnum, ep, view(errstr, errstr != nullptr ? errlen : 0), errsection,
              strings);
  if (result != CS_SUCCEED)
    return COMN_TRACE(result);

  const long long length = 0LL + strings.es_apilen + strings.es_layerlen + strings.es_origlen +
                           strings.es_errlen + 3 * static_cast<long long>(separator.size());
  if (truncate == 0 && length > maxlen) {
    release(strings);
    *buflen = static_cast<CS_INT>(std::min(length, static_cast<long long>(INT_MAX)));
    return COMN_TRACE(CS_FAIL);
  }
  *buflen = com__fill_climsg(&strings, buf, maxlen);
  release(strings);
  return COMN_TRACE(CS_SUCCEED);
}

void com_build_errmsg(CsContext *context, CS_ERRHAN *errhan, CS_INT errnum, CsErrParams *ep,
                      CS_CHAR *errstr, CS_INT errlen, CS_INT errsection, CS_CHAR *buf,
                      CS_INT maxlen, CS_INT *buflen) noexcept {
  const CS_RETCODE result = com_notrunc_errmsg(context, errhan, errnum, ep, errstr, errlen,
                                               errsection, 1, buf, maxlen, buflen);
  COMN_CHECK(result == CS_SUCCEED);
}

CS_RETCODE com__error(CsContext *ctx, CS_MSGNUM errnum, CsErrParams *ep) noexcept {
  COMN_CHECK_PTR(ctx, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(ep, COMN_TRACE(CS_FAIL));
  if (ctx->ctxerrfunc == nullptr)
    return COMN_TRACE(CS_FAIL);
  auto *const errhan = static_cast<CS_ERRHAN *>(ctx->ctxcomerrhan);
  CS_CLIENTMSG message;
  message.msgstringlen = 0;
  com_build_errmsg(ctx, errhan, errnum, ep, nullptr, 0, COM_ERRSEC_API, message.msgstring,
                   longest_line, &message.msgstringlen);
  message.msgstring[message.msgstringlen] = '\0';
  auto *const state = reinterpret_cast<CS_CHAR *>(message.sqlstate);
  if (com_err_sqlstate(ctx, errhan, byte_of(errnum, 0), COM_ERRSEC_API, state,
                       sizeof message.sqlstate, &message.sqlstatelen) != CS_SUCCEED) {
    std::memset(state, 0, sizeof message.sqlstate);
    std::copy(unknown_state.begin(), unknown_state.end(), state);
    message.sqlstatelen = static_cast<CS_INT>(unknown_state.size());
  }
  message.severity = byte_of(errnum, 1);
  message.msgnumber = errnum;
  message.osnumber = 0;
  message.osstring[0] = '\0';
  message.osstringlen = 0;
  message.status = 0;
  return COMN_TRACE(ctx->ctxerrfunc(ctx, &message));
}
