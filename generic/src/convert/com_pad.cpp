// The pads, which end every text and binary result.
#include "pad.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "any_address.h"
#include "checks.h"

namespace {

// The two widths of text. The units of a pad start where the data ends, so 16-bit text never pads
// an odd byte that is left at the end of the capacity.
struct NarrowText {
  using Unit = CS_CHAR;
  static void fill(CS_BYTE *first, CS_INT units, Unit unit) noexcept {
    std::memset(first, unit, static_cast<size_t>(units));
  }
};

struct WideText {
  using Unit = CS_UNICHAR;
  static void fill(CS_BYTE *first, CS_INT units, Unit unit) noexcept {
    using Block __attribute__((vector_size(16))) = Unit;
    const CS_INT bytes = units * CS_INT{sizeof unit};
    const uint64_t four = unit * uint64_t{0x0001000100010001};
    if (bytes >= CS_INT{sizeof(Block)})
      fill_blocks(first, bytes, Block{} + unit);
    else if (bytes >= CS_INT{sizeof four})
      fill_blocks(first, bytes, four);
    else if (bytes >= CS_INT{sizeof(uint32_t)})
      fill_blocks(first, bytes, static_cast<uint32_t>(four));
    else if (bytes > 0)
      comn::store(first, unit);
  }

private:
  // Whole blocks, the last of which may overlap the one before.
  template <class Block>
  static void fill_blocks(CS_BYTE *first, CS_INT bytes, Block block) noexcept {
    const CS_INT last = bytes - CS_INT{sizeof block};
    for (CS_INT i = 0; i < last; i += CS_INT{sizeof block})
      comn::store(first + i, block);
    comn::store(first + last, block);
  }
};

template <class Text>
CS_RETCODE pad(CS_INT srclen, CS_INT format, CS_INT capacity, CS_VOID *dest,
               CS_INT *destlen) noexcept {
  srclen = std::max<CS_INT>(srclen, 0);
  constexpr CS_INT width = sizeof(typename Text::Unit);
  auto *bytes = static_cast<CS_BYTE *>(dest);
  const bool terminate = (format & CS_DFMT_NULLTERM) != 0;
  const bool nulls = (format & CS_DFMT_PADNULL) != 0;
  const bool blanks = (format & CS_DFMT_PADBLANK) != 0;

  if (capacity < srclen || (terminate && capacity - srclen < width)) {
    const CS_INT whole = capacity - capacity % width;
    if (terminate && whole > 0)
      Text::fill(bytes + whole - width, 1, 0);
    return CS_CONV_OVERFLOW;
  }
  if (nulls && blanks)
    return CS_CONV_PADCONFLICT;

  const CS_INT used = std::max<CS_INT>(*destlen, 0);
  const CS_INT units = capacity > used ? (capacity - used) / width : 0;
  if (units == 0)
    return CS_SUCCEED;
  CS_BYTE *const end = bytes + used;
  if (nulls || blanks) {
    Text::fill(end, units, nulls ? 0 : ' ');
    if (blanks && terminate)
      Text::fill(end + (units - 1) * width, 1, 0);
    *destlen = used + units * width;
  } else if (terminate) {
    Text::fill(end, 1, 0);
    *destlen = used + width;
  }
  return CS_SUCCEED;
}

} // namespace

CS_RETCODE comn::pad_text(CS_INT srclen, CS_INT format, CS_INT capacity, CS_VOID *dest,
                          CS_INT *destlen) noexcept {
  return pad<NarrowText>(srclen, format, capacity, dest, destlen);
}

CS_RETCODE comn::pad_unitext(CS_INT srclen, CS_INT format, CS_INT capacity, CS_VOID *dest,
                             CS_INT *destlen) noexcept {
  return pad<WideText>(srclen, format, capacity, dest, destlen);
}

CS_RETCODE comn::pad_binary(CS_INT srclen, CS_INT format, CS_INT capacity, CS_VOID *dest,
                            CS_INT *destlen) noexcept {
  srclen = std::max<CS_INT>(srclen, 0);
  if ((format & CS_DFMT_PADNULL) != 0 && capacity > srclen && capacity > *destlen) {
    std::memset(static_cast<CS_BYTE *>(dest) + srclen, 0, static_cast<size_t>(capacity - srclen));
    *destlen = capacity;
  }
  return CS_SUCCEED;
}

#define COMN_PAD(name, pad_function)                                                               \
  CS_RETCODE name(CS_INT srclen, CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen) noexcept {   \
    COMN_CHECK_PTR(destfmt, CS_FAIL);                                                              \
    COMN_CHECK_PTR(dest, CS_FAIL);                                                                 \
    COMN_CHECK_PTR(destlen, CS_FAIL);                                                              \
    return pad_function(srclen, destfmt->format, destfmt->maxlength, dest, destlen);               \
  }

COMN_PAD(comn__padchar, comn::pad_text)
COMN_PAD(comn__padbin, comn::pad_binary)
COMN_PAD(comn__padunichar, comn::pad_unitext)
