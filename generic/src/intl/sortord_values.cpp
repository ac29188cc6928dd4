// The readers of single values, which sort orders, character sets and the tables of a language share.
#include <cstring>

#include "checks.h"
#include "section_files.h"
#include "sortordr.h"

namespace {

// A number of the first bytes of a value, the first one highest. The reader clears what is behind a
// shorter value.
template <class Number>
CS_RETCODE get_number(CS_CONTEXT *context, INTL_LOCFILE *ifile, Number *number) noexcept {
  int status = 0;
  const CS_CHAR *const value = intl_nextvalue(ifile, &status);
  if (value == nullptr)
    return comn::missing_result(context, status);
  CS_UINT result = 0;
  for (size_t i = 0; i < sizeof(Number); ++i)
    result = result << 8 | static_cast<CS_BYTE>(value[i]);
  *number = static_cast<Number>(result);
  return CS_SUCCEED;
}

// A letter, then letters, digits and "_".
bool is_alphanumeric(const CS_CHAR *text) noexcept {
  if (!com_isalpha(static_cast<CS_BYTE>(*text)))
    return false;
  while (*++text != '\0') {
    const auto byte = static_cast<CS_BYTE>(*text);
    if (!com_isalpha(byte) && !com_isdigit(byte) && byte != '_')
      return false;
  }
  return true;
}

} // namespace

CS_RETCODE comn__get_byteval(CsContext *context, INTL_LOCFILE *ifile, CS_BYTE *byteval) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(ifile, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(byteval, COMN_TRACE(CS_FAIL));
  return COMN_TRACE(get_number(context, ifile, byteval));
}

CS_RETCODE comn__get_shortval(CsContext *context, INTL_LOCFILE *ifile,
                              CS_USHORT *shortval) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(ifile, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(shortval, COMN_TRACE(CS_FAIL));
  return COMN_TRACE(get_number(context, ifile, shortval));
}

CS_RETCODE comn__get_longval(CsContext *context, INTL_LOCFILE *ifile, CS_UINT *longval) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(ifile, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(longval, COMN_TRACE(CS_FAIL));
  return COMN_TRACE(get_number(context, ifile, longval));
}

CS_RETCODE comn__get_boolval(CsContext *context, INTL_LOCFILE *ifile, CS_BOOL *boolval) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(ifile, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(boolval, COMN_TRACE(CS_FAIL));
  int status = 0;
  const CS_CHAR *const value = intl_nextvalue(ifile, &status);
  if (value == nullptr)
    return COMN_TRACE(comn::missing_result(context, status));
  const bool is_true = std::strcmp(value, "true") == 0;
  if (!is_true && std::strcmp(value, "false") != 0)
    return COMN_TRACE(CS_FAIL);
  *boolval = is_true;
  return COMN_TRACE(CS_SUCCEED);
}

CS_RETCODE comn__get_string(CsContext *context, INTL_LOCFILE *ifile, CS_CHAR *string,
                            CS_BOOL is_alnum, CS_INT maxlen) noexcept {
  COMN_CHECK_PTR(context, COMN_TRACE(CS_FAIL));
  COMN_CHECK_PTR(ifile, COMN_TRACE(CS_FAIL));
  COMN_CHECK(is_alnum == 0 || is_alnum == 1, COMN_TRACE(CS_FAIL));
  int status = 0;
  const CS_CHAR *const value = intl_nextvalue(ifile, &status);
  if (value == nullptr)
    return COMN_TRACE(comn::missing_result(context, status));
  if (string == nullptr)
    return COMN_TRACE(CS_SUCCEED);
  const size_t length = std::strlen(value);
  if (maxlen < 0 || length >= static_cast<size_t>(maxlen) ||
      (is_alnum == 1 && !is_alphanumeric(value)))
    return COMN_TRACE(CS_FAIL);
  std::memcpy(string, value, length + 1);
  return COMN_TRACE(CS_SUCCEED);
}
