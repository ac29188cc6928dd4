// Exact numerics for callers without a context: each member goes through the matrix's conversion, with
// formats of its own.
#include "binary.h"
#include "character.h"
#include "legacy.h"
#include "number.h"
#include "types.h"

namespace {

using namespace comn::legacy;

constexpr CS_INT numeric_length = sizeof(CS_NUMERIC);

// The fields of a format that a conversion of these reads.
struct Side {
  Side(CS_INT datatype, CS_INT maxlength) noexcept {
    format.datatype = datatype;
    format.format = 0;
    format.maxlength = maxlength;
    format.scale = format.precision = 0;
    format.locale = nullptr;
  }

  CS_DATAFMT format;
};

// A locale that has nothing but a character set.
class SetLocale {
public:
  explicit SetLocale(CS_ATTRIB *chatr) noexcept {
    set.char_attrib = chatr != nullptr ? chatr : com_get_charattrib();
    cache.locchardesc = &set;
    locale_.ctypeptr = &cache;
  }
  SetLocale(const SetLocale &) = delete;
  SetLocale &operator=(const SetLocale &) = delete;

  CS_LOCALE *get() noexcept { return &locale_; }

private:
  CsCharDesc set{};
  CsLocCache cache{};
  CS_LOCALE locale_{};
};

struct Converted {
  CS_RETCODE status;
  CS_INT length;
};

// The conversions of numerics want a context and read nothing of it.
CS_CONTEXT *blank_context() noexcept {
  static constexpr CS_CONTEXT context{};
  return const_cast<CS_CONTEXT *>(&context);
}

template <auto Convert>
Converted convert(Side &from, CS_BYTE *src, Side &to, CS_BYTE *dest) noexcept {
  CS_INT length = 0;
  const CS_RETCODE status = Convert(blank_context(), &from.format, src, &to.format, dest, &length);
  return {status, length};
}

// ---- to numerics ----

struct NumericSide : Side {
  NumericSide(CS_INT precision, CS_INT scale) noexcept : Side(CS_TYPE_NUMERIC, numeric_length) {
    format.precision = precision;
    format.scale = scale;
  }
};

template <auto Convert, CS_INT Code>
CS_INT to_num(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT precision, CS_INT scale,
              CS_LOCALE *locale = nullptr) noexcept {
  Side from(Code, srclen);
  NumericSide to(precision, scale);
  from.format.locale = locale;
  const auto [status, length] = convert<Convert>(from, src, to, dest);
  return result_of(status, length);
}

CS_INT text_to_num(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT precision, CS_INT scale,
                   CS_ATTRIB *chatr) noexcept {
  SetLocale locale(chatr);
  return to_num<comn_chartonum, CS_TYPE_CHAR>(src, srclen, dest, precision, scale, locale.get());
}

// Text in a record that may be longer than a CS_VARCHAR holds.
struct of_varychar : comn::text::of_varchar {
  of_varychar(Side &from, CS_BYTE *src) noexcept : of_varchar(blank_context(), &from.format, src) {
    length = told_length;
  }
};

CS_INT record_to_num(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT precision, CS_INT scale,
                     CS_ATTRIB *chatr) noexcept {
  SetLocale locale(chatr);
  Side from(CS_TYPE_VARCHAR, srclen);
  const NumericSide to(precision, scale);
  from.format.locale = locale.get();
  CS_INT length = 0;
  const CS_RETCODE status =
      comn::text::to_num(&to.format, dest, &length, of_varychar(from, src), COMN_HERE);
  return result_of(status, length);
}

template <class Source>
CS_INT bytes_to_num(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT precision,
                    CS_INT scale) noexcept {
  const Side from(CS_TYPE_BINARY, srclen);
  const NumericSide to(precision, scale);
  CS_INT length = 0;
  const CS_RETCODE status =
      comn::binary::to_num(Source(&from.format, src), &to.format, dest, &length);
  return result_of(status, length);
}

// An empty record, which the matrix takes for a fault, is a null value.
bool is_empty(const CS_BYTE *record) noexcept {
  return comn::load<CS_SMALLINT>(record) <= 0;
}

// ---- from numerics ----

template <auto Convert, CS_INT Code>
CS_INT to_fixed(CS_BYTE *src, CS_BYTE *dest) noexcept {
  Side from(CS_TYPE_NUMERIC, numeric_length), to(Code, 0);
  const auto [status, length] = convert<Convert>(from, src, to, dest);
  return result_of(status, length);
}

// Deliberate: a text without room is cut, where other numbers become a star.
template <class Shape>
CS_INT num_text(CS_BYTE *src, CS_BYTE *dest, CS_INT destlen) noexcept {
  const Shape shape(dest, destlen);
  Side from(CS_TYPE_NUMERIC, numeric_length), to(CS_TYPE_CHAR, shape.room);
  const auto [status, length] = convert<comn_numtochar>(from, src, to, shape.text);
  if (status == CS_SUCCEED || status == CS_CONV_OVERFLOW)
    shape.finish(length);
  return result_of(status, length);
}

// The sign and the digits, without the shape. Deliberate: a cut is the code of the matrix, but in a
// record, of which the matrix has one with room for every value.
template <class Shape>
CS_INT to_bytes(const Shape &shape, const CS_BYTE *src) noexcept {
  if (!comn::exact::is_valid(*reinterpret_cast<const CS_NUMERIC *>(src))) [[unlikely]]
    return COM_OLD_DOMAIN;
  const CS_INT length =
      copy_value<sizeof(CS_NUMERIC::array)>(shape, src + offsetof(CS_NUMERIC, array));
  return length < 0 && std::is_same_v<Shape, AsBinary> ? CS_CONV_TRUNCATED : length;
}

} // namespace

#define COMN_OLD_SHAPE CS_INT precision, CS_INT scale
#define COMN_OLD_TO_NUM(source, member, code)                                                      \
  COMN_OLD(com_##source##tonum,                                                                    \
           (to_num<comn_##member##tonum, code>(src, srclen, dest, precision, scale)),              \
           COMN_OLD_SHAPE)

COMN_OLD_TO_NUM(i1, i1, CS_TYPE_TINYINT)
COMN_OLD_TO_NUM(i2, i2, CS_TYPE_SMALLINT)
COMN_OLD_TO_NUM(i4, i4, CS_TYPE_INT)
COMN_OLD_TO_NUM(flt4, flt4, CS_TYPE_REAL)
COMN_OLD_TO_NUM(flt8, flt8, CS_TYPE_FLOAT)
COMN_OLD_TO_NUM(money, money, CS_TYPE_MONEY)
COMN_OLD_TO_NUM(mny4, mny4, CS_TYPE_MONEY4)
COMN_OLD_TO_NUM(bit, bit, CS_TYPE_BIT)
COMN_OLD_TO_NUM(num, num, CS_TYPE_NUMERIC)
COMN_OLD(com_bintonum, (bytes_to_num<comn::binary::bin>(src, srclen, dest, precision, scale)),
         COMN_OLD_SHAPE)
COMN_OLD(com_varybintonum,
         (is_empty(src) ? nothing
                        : bytes_to_num<comn::binary::varbin>(src, srclen, dest, precision, scale)),
         COMN_OLD_SHAPE)

#define COMN_OLD_TEXT_TO_NUM(prefix, chatr, ...)                                                   \
  COMN_OLD(prefix##chartonum, (text_to_num(src, srclen, dest, precision, scale, chatr)),           \
           COMN_OLD_SHAPE __VA_OPT__(, ) __VA_ARGS__)                                              \
  COMN_OLD(prefix##varychartonum,                                                                  \
           (is_empty(src) ? nothing : record_to_num(src, srclen, dest, precision, scale, chatr)),  \
           COMN_OLD_SHAPE __VA_OPT__(, ) __VA_ARGS__)

COMN_OLD_TEXT_TO_NUM(com_, nullptr)
COMN_OLD_TEXT_TO_NUM(com_mb_, chatr, CS_ATTRIB *chatr)

#define COMN_OLD_NUM_TO(destination, code)                                                         \
  COMN_OLD(com_numto##destination, (to_fixed<comn_numto##destination, code>(src, dest)))

COMN_OLD_NUM_TO(i1, CS_TYPE_TINYINT)
COMN_OLD_NUM_TO(i2, CS_TYPE_SMALLINT)
COMN_OLD_NUM_TO(i4, CS_TYPE_INT)
COMN_OLD_NUM_TO(bit, CS_TYPE_BIT)
COMN_OLD_NUM_TO(flt4, CS_TYPE_REAL)
COMN_OLD_NUM_TO(flt8, CS_TYPE_FLOAT)
COMN_OLD_NUM_TO(money, CS_TYPE_MONEY)
COMN_OLD_ALIAS(com_numtomny, com_numtomoney)
COMN_OLD_NUM_TO(mny4, CS_TYPE_MONEY4)
COMN_OLD_TO_TEXT(num, num_text, , (src, dest, destlen))
COMN_OLD_TO_BYTES(num, to_bytes, src)
