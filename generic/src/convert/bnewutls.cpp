// What the cast-context conversions share: padding, and the conversion of sets that they do without.
#include <algorithm>
#include <cstring>

#include "castctx.h"
#include "checks.h"

namespace {

// Fills what is left of the capacity, from `first` on, and makes the capacity the length.
void fill(__CONSTANT *dest, CS_INT first, CS_BYTE byte) noexcept {
  const CS_INT used = std::max(dest->len, 0);
  if (dest->maxlen > used)
    std::memset(dest->value + first, byte, static_cast<size_t>(dest->maxlen - used));
  dest->len = dest->maxlen;
}

} // namespace

CS_RETCODE comnb__padchar(CAST_CONTEXT *context, __CONSTANT *dest) noexcept {
  const auto asks_for = [context](CS_INT bit) { return (context->format & bit) != 0; };
  const bool terminates = asks_for(CS_DFMT_NULLTERM);
  const CS_INT used = std::max(dest->len, 0);
  if (dest->maxlen < used || (terminates && dest->maxlen == used)) [[unlikely]]
    return CS_CONV_OVERFLOW;
  if (asks_for(CS_DFMT_PADNULL)) {
    if (asks_for(CS_DFMT_PADBLANK))
      return CS_CONV_PADCONFLICT;
    fill(dest, used, 0);
  } else if (asks_for(CS_DFMT_PADBLANK)) {
    const bool at_head = asks_for(CAST_DFMT_PADHEAD);
    if (at_head && terminates)
      return CS_CONV_PADCONFLICT;
    // Deliberate: the value does not move, so at its head the blanks go over its first bytes.
    fill(dest, at_head ? 0 : used, ' ');
    if (terminates)
      dest->value[dest->maxlen - 1] = 0;
  } else if (terminates) {
    dest->value[used] = 0;
    dest->len = used + 1;
  }
  return CS_SUCCEED;
}

// Deliberate: binary takes blanks too, which comn__padbin never does.
CS_RETCODE comnb__padbin(CAST_CONTEXT *context, __CONSTANT *dest) noexcept {
  if ((context->format & CS_DFMT_PADNULL) != 0)
    fill(dest, std::max(dest->len, 0), 0);
  else if ((context->format & CS_DFMT_PADBLANK) != 0)
    fill(dest, std::max(dest->len, 0), ' ');
  return CS_SUCCEED;
}

CS_RETCODE comb__intl_xlate(CAST_CONTEXT *, __CONSTANT *, __CONSTANT *) noexcept {
  comn::raise_bomb(COMN_HERE);
  return CS_CONV_OVERFLOW;
}
