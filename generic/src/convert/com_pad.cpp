// The pads, which end every text and binary result.
#include "pad.h"

#include <algorithm>
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
  // Stores the largest pieces that fit, one behind the other, and the last of them at the end,
  // where it overlaps the one before: no rest is left whose length the processor must guess.
  static void fill(CS_BYTE *first, CS_INT units, Unit unit) noexcept {
    using Eight __attribute__((vector_size(8 * sizeof(Unit)))) = Unit;
    using Four __attribute__((vector_size(4 * sizeof(Unit)))) = Unit;
    const Eight eight = Eight{} + unit;
    if (units >= 8)
      store_run(first, units, eight);
    else if (units >= 4)
      store_run(first, units, Four{} + unit);
    else
      for (CS_INT i = 0; i < units; ++i)
        comn::store(first + i * CS_INT{sizeof unit}, unit);
  }

private:
  template <class Piece>
  static void store_run(CS_BYTE *first, CS_INT units, Piece piece) noexcept {
    CS_BYTE *const last = first + units * CS_INT{sizeof(Unit)} - sizeof piece;
    for (; first < last; first += sizeof piece)
      comn::store(first, piece);
    comn::store(last, piece);
  }
};

template <class Text>
CS_RETCODE pad(CS_INT srclen, CS_INT format, CS_INT capacity, CS_VOID *dest,
               CS_INT *destlen) noexcept {
  using Unit = typename Text::Unit;
  constexpr CS_INT width = sizeof(Unit);
  const auto asks_for = [format](CS_INT bit) { return (format & bit) != 0; };
  auto *const bytes = static_cast<CS_BYTE *>(dest);
  srclen = std::max<CS_INT>(srclen, 0);

  if (capacity < srclen || (asks_for(CS_DFMT_NULLTERM) && capacity - srclen < width)) [[unlikely]] {
    const CS_INT whole = capacity - capacity % width;
    if (asks_for(CS_DFMT_NULLTERM) && whole > 0)
      comn::store(bytes + whole - width, Unit{});
    return CS_CONV_OVERFLOW;
  }
  if (asks_for(CS_DFMT_PADNULL) && asks_for(CS_DFMT_PADBLANK)) [[unlikely]]
    return CS_CONV_PADCONFLICT;

  const CS_INT used = std::max<CS_INT>(*destlen, 0);
  if (capacity - used < width)
    return CS_SUCCEED;
  CS_BYTE *const end = bytes + used;
  if (!asks_for(CS_DFMT_PADNULL | CS_DFMT_PADBLANK)) {
    if (asks_for(CS_DFMT_NULLTERM)) {
      comn::store(end, Unit{});
      *destlen = used + width;
    }
    return CS_SUCCEED;
  }
  CS_INT units = (capacity - used) / width;
  *destlen = used + units * width;
  if (asks_for(CS_DFMT_NULLTERM))
    comn::store(end + --units * width, Unit{});
  Text::fill(end, units, asks_for(CS_DFMT_PADNULL) ? Unit{} : Unit{' '});
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
  if ((format & CS_DFMT_PADNULL) != 0 && capacity > srclen) {
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
