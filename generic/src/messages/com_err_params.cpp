// The parameters of messages.
#include "checks.h"
#include "comerr.h"

namespace {

// A parameter behind the first one.
struct Parameter {
  CS_INT type;
  CS_VOID *value;
};

constexpr Parameter no_parameter = {COM_EP_STRING, nullptr};

Parameter string(CS_CHAR *text) noexcept {
  return {COM_EP_STRING, text};
}

Parameter integer(CS_INT *number) noexcept {
  return {COM_EP_INT, number};
}

// The caller's record was cleared: a null pointer leaves it so.
void fill(CsErrParams *ep, CS_INT count, const CS_CHAR *format, CS_CHAR *first,
          Parameter second = no_parameter, Parameter third = no_parameter) noexcept {
  COMN_CHECK_PTR(ep);
  *ep = CsErrParams{};
  COMN_CHECK_PTR(first);
  if (count > 1)
    COMN_CHECK_PTR(second.value);
  if (count > 2)
    COMN_CHECK_PTR(third.value);
  *ep = {count, format, COM_EP_STRING, first, second.type, second.value, third.type, third.value};
}

} // namespace

void com_ep_s(CsErrParams *ep, CS_CHAR *str1) noexcept {
  fill(ep, 1, "%s", str1);
}

void com_ep_sd(CsErrParams *ep, CS_CHAR *str1, CS_INT *int1) noexcept {
  fill(ep, 2, "%ld", str1, integer(int1));
}

void com_ep_ss(CsErrParams *ep, CS_CHAR *str1, CS_CHAR *str2) noexcept {
  fill(ep, 2, "%s", str1, string(str2));
}

void com_ep_sss(CsErrParams *ep, CS_CHAR *str1, CS_CHAR *str2, CS_CHAR *str3) noexcept {
  fill(ep, 3, "%s %s", str1, string(str2), string(str3));
}

void com_ep_sds(CsErrParams *ep, CS_CHAR *str1, CS_INT *int1, CS_CHAR *str2) noexcept {
  fill(ep, 3, "%ld %s", str1, integer(int1), string(str2));
}

void com_ep_sdd(CsErrParams *ep, CS_CHAR *str1, CS_INT *int1, CS_INT *int2) noexcept {
  fill(ep, 3, "%ld %ld", str1, integer(int1), integer(int2));
}

void com_ep_ssd(CsErrParams *ep, CS_CHAR *str1, CS_CHAR *str2, CS_INT *int1) noexcept {
  fill(ep, 3, "%s %ld", str1, string(str2), integer(int1));
}
