// Converts texts from one datatype to another: reads the text as a value of the first type, has
// the library convert it, and shows the result as text.
#ifndef ZRVTOOL_CONVERTER_H
#define ZRVTOOL_CONVERTER_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "context.h"
#include "type_names.h"

namespace zrvtool {

// What became of one text. The views last until the next conversion.
struct Outcome {
  CS_RETCODE status;
  bool was_read;          // false: `status` tells why the text is no value of the source type
  bool is_usable;         // there is a result to show, if only a part of it or the nearest one
  CS_INT length;          // as the library reports it, in bytes
  std::string_view bytes; // the bytes of the result that are in use
  std::string_view text;  // the result as a text; "0x..." where it has none
};

class Converter {
public:
  // `format` has CS_DFMT_ bits; `maxlength` is the capacity, if not the type's own. All texts, the
  // values and the results, are of the locale, and in its character set or in another (see Context).
  // Throws UsageError where the library has no conversion for the pair or reads no such source.
  Converter(const Type &from, const Type &to, CS_INT format, std::optional<CS_INT> maxlength,
            const std::string &locale, const std::string &charset);

  Outcome convert(std::string_view value);

private:
  CS_RETCODE read(std::string_view value);
  std::string_view used_bytes(CS_INT length) const;
  bool leaves_result(CS_RETCODE status) const;
  void show(std::string_view bytes);

  Context context;
  Type from, to;
  CS_CONV_FUNC reader;  // from text to the source type; null where the command reads by itself
  CS_CONV_FUNC member;  // from the source to the destination type
  CS_CONV_FUNC printer; // from the destination type to text; may be null
  bool takes_hex;       // the source is a text, and the conversion reads hexadecimal digits
  std::optional<CS_INT> capacity;
  CS_DATAFMT text_format{}, source_format{}, dest_format{}, shown_format{}, printed_format{};
  std::vector<char> source_bytes, dest_bytes, printed_bytes;
  CS_VOID *source = nullptr;
  std::string shown;
};

} // namespace zrvtool

#endif
