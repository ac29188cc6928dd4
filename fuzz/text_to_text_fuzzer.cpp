// Text to text in four character sets, with any room and format, against the rules followed character by
// character; and from one set into another, between the two that need no table of the installation. Of the
// input, the first byte picks the set, the second the room and the third the format; each other one is an
// ASCII character, in its wide form where its top bit is set. The same bytes are then a text as they stand,
// where only the frame is watched.
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "fuzz_input.h"
#include "text_sets.h"
#include "text_to_text_reference.h"
#include "zrvcomn/comnlib.h"

using zrvfuzz::make_format;
using zrvfuzz::require;
using zrvfuzz::TextSet;
using zrvfuzz::TextSets;

namespace {

constexpr CS_INT formats = CS_DFMT_NULLTERM | CS_DFMT_PADNULL | CS_DFMT_PADBLANK | CS_DFMT_ESCQUOTE;
constexpr char filler = '\xA5';

// The text as a source: bytes, or a record, which is always whole.
zrvfuzz::ExactText source_of(const std::string &text, bool is_record) {
  if (!is_record)
    return zrvfuzz::ExactText(text);
  const auto length = static_cast<CS_SMALLINT>(text.size());
  std::string record(reinterpret_cast<const char *>(&length), sizeof length);
  record += text;
  record.resize(sizeof(CS_VARCHAR), 'q');
  return zrvfuzz::ExactText(record);
}

zrvtest::TextResult convert(TextSets &sets, const std::string &text, bool is_record, CS_INT format,
                            CS_INT maxlength, TextSet &from, TextSet &to) {
  const auto source = source_of(text, is_record);
  CS_DATAFMT srcfmt =
      make_format(is_record ? CS_TYPE_VARCHAR : CS_TYPE_CHAR, text.size(), 0, &from);
  const auto room = static_cast<size_t>(maxlength);
  CS_DATAFMT destfmt = make_format(CS_TYPE_CHAR, room, format, &to);
  // A block of exactly the room, for the sanitizers.
  const std::unique_ptr<char[]> dest(new char[room + (room == 0 ? 1 : 0)]);
  std::memset(dest.get(), filler, room + (room == 0 ? 1 : 0));
  zrvtest::TextResult result{0, -1, {}};
  result.status = (is_record ? comn_varchartochar : comn_chartochar)(
      &sets.context, &srcfmt, source.data(), &destfmt, dest.get(), &result.destlen);
  require(room != 0 || dest[0] == filler);
  require(result.destlen >= 0 && result.destlen <= maxlength);
  result.bytes.assign(dest.get(), room);
  return result;
}

zrvtest::TextResult convert_to_record(TextSets &sets, const std::string &text, bool is_record,
                                      TextSet &from, TextSet &to) {
  const auto source = source_of(text, is_record);
  CS_DATAFMT srcfmt =
      make_format(is_record ? CS_TYPE_VARCHAR : CS_TYPE_CHAR, text.size(), 0, &from);
  CS_DATAFMT destfmt = make_format(CS_TYPE_VARCHAR, 0, 0, &to);
  const std::unique_ptr<CS_VARCHAR> dest(new CS_VARCHAR);
  dest->len = -1;
  zrvtest::TextResult result{0, -1, {}};
  result.status = (is_record ? comn_varchartovarchar : comn_chartovarchar)(
      &sets.context, &srcfmt, source.data(), &destfmt, dest.get(), &result.destlen);
  const CS_SMALLINT length = dest->len;
  require(length >= -1 && length <= CS_INT{sizeof dest->str});
  if (length >= 0)
    result.bytes.assign(reinterpret_cast<const char *>(dest->str), static_cast<size_t>(length));
  return result;
}

// Between sets that both have ASCII, an ASCII text that fits stays as it is.
void check_between(TextSets &sets, const std::string &text, bool is_record, CS_INT maxlength,
                   TextSet &from, TextSet &to) {
  const zrvtest::TextResult result = convert(sets, text, is_record, 0, maxlength, from, to);
  for (const char c : text)
    if (static_cast<unsigned char>(c) >= 0x80)
      return;
  if (static_cast<CS_INT>(text.size()) > maxlength)
    return;
  require(result.status == CS_SUCCEED && result.destlen == static_cast<CS_INT>(text.size()));
  require(result.bytes.compare(0, text.size(), text) == 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  constexpr size_t head = 3;
  if (size < head || size > 400)
    return 0;
  static TextSets sets;
  TextSet &from = sets[data[0]];
  TextSet &to = &from == &sets.one_byte ? sets.utf8 : &from == &sets.utf8 ? sets.one_byte : from;
  const CS_INT maxlength = data[1];
  const CS_INT format = data[2] & formats;
  zrvtest::Characters source;
  for (size_t i = head; i < size; ++i) {
    const char ascii = static_cast<char>(data[i] & 0x7F);
    source.push_back(
        {from.tables.spell(std::string(1, ascii), [&] { return data[i] >= 0x80; }), ascii});
  }
  const std::string text = zrvtest::spelled(source);
  const std::string raw(reinterpret_cast<const char *>(data) + head, size - head);
  for (const bool is_record : {false, true}) {
    if (!is_record || text.size() <= sizeof(CS_VARCHAR::str)) {
      require(convert(sets, text, is_record, format, maxlength, from, from) ==
              zrvtest::slow_text_to_text(source, is_record, format, maxlength, filler));
      require(convert_to_record(sets, text, is_record, from, from) ==
              zrvtest::slow_text_to_record(source));
      convert(sets, text, is_record, format, maxlength, from, to);
    }
    if (!is_record || raw.size() <= sizeof(CS_VARCHAR::str)) {
      convert(sets, raw, is_record, format, maxlength, from, from);
      check_between(sets, raw, is_record, maxlength, from, to);
      convert_to_record(sets, raw, is_record, from, to);
    }
  }
  return 0;
}
