// Blocks are converted whole; only where something is lost is a block gone through by characters.
#include "recoder.h"

#include <algorithm>

#include "errors.h"
#include "visible.h"

namespace zrvtool {

namespace {

constexpr char shift_out = 0x0E; // to two bytes
constexpr char shift_in = 0x0F;  // to one byte

// The longest character of any set.
constexpr size_t longest_character = 4;

bool is_high_surrogate(char16_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}

char32_t first_character(const std::u16string &text) {
  if (text.size() > 1 && is_high_surrogate(text[0]))
    return 0x10000 + ((text[0] - 0xD800u) << 10) + (text[1] - 0xDC00u);
  return text.empty() ? 0 : text[0];
}

} // namespace

SetConverter::SetConverter(int the_cid, const std::string &name) : cid(the_cid) {
  const int status = uniconv_HandleGet(cid, &handle);
  if (status == UNICONV_ENOCONV)
    throw UsageError("there is no converter for " + name);
  if (status != UNICONV_SUCCEED)
    throw StreamError("cannot load the table of " + name +
                      " (zrvcomn check all tells which file is wrong)");
}

SetConverter::Decoded SetConverter::decode(std::string bytes) const {
  Decoded decoded;
  decoded.text.resize(2 * bytes.size() + 1);
  bytes.append(3, '\0');
  int length = 0;
  decoded.status = uniconv_unistrFromS(handle, reinterpret_cast<UChar16 *>(decoded.text.data()),
                                       static_cast<int>(decoded.text.size()),
                                       reinterpret_cast<const UChar8 *>(bytes.data()), &length);
  decoded.text.resize(static_cast<size_t>(std::max(length - 1, 0)));
  return decoded;
}

SetConverter::Encoded SetConverter::encode(const std::u16string &text) const {
  int factor = 1;
  uniconv_GetExpansionFactor(handle, &factor);
  Encoded encoded;
  // And one character more, for shifts around none.
  encoded.bytes.resize((text.size() + 1) * static_cast<size_t>(factor) + 1);
  int length = 0;
  encoded.status = uniconv_unistrToS(handle, reinterpret_cast<UChar8 *>(encoded.bytes.data()),
                                     static_cast<int>(encoded.bytes.size()),
                                     reinterpret_cast<const UChar16 *>(text.c_str()), &length);
  encoded.bytes.resize(static_cast<size_t>(std::max(length - 1, 0)));
  return encoded;
}

Recoder::Recoder(int from_cid, const std::string &from_name, int to_cid, const std::string &to_name,
                 const std::string &the_substitute, OnLoss the_on_loss)
    : from(from_cid, from_name), to(to_cid, to_name), substitute(text_of(the_substitute)),
      on_loss(std::move(the_on_loss)),
      // Where it shifts, the byte is no character.
      has_shifts(!from.is_wide() && !from.is_compressed() &&
                 from.decode(std::string(1, shift_out)).text.empty()) {
  if (from.is_compressed())
    compressed.emplace();
  if (to.encode(substitute).status != UNICONV_SUCCEED)
    throw UsageError(in_quotes(the_substitute) + " is not in " + to_name);
}

std::u16string Recoder::text_of(const std::string &utf8) const {
  std::u16string text(utf8.size() + 1, u'\0');
  const int units = uniutf8_unistrFromUTF8(reinterpret_cast<UChar16 *>(text.data()),
                                           static_cast<int>(text.size()),
                                           reinterpret_cast<const UChar8 *>(utf8.c_str()), nullptr);
  if (units < 0)
    throw UsageError("the substitute is not UTF-8");
  text.resize(static_cast<size_t>(units));
  return text;
}

SetConverter::Decoded Recoder::decode(std::string_view bytes) const {
  return from.decode((is_shifted ? std::string(1, shift_out) : std::string()) + std::string(bytes));
}

// The character at the start of a text without NUL, which rcsu alone may have.
Recoder::Character Recoder::read(std::string_view bytes, bool is_end) {
  if (compressed)
    return compressed->read(bytes, is_end);
  if (has_shifts && (bytes[0] == shift_out || bytes[0] == shift_in))
    return {1, {}, false};
  const size_t step = from.is_wide() ? 2 : 1;
  const size_t most = std::min(bytes.size(), longest_character);
  for (size_t length = step; length <= most; length += step) {
    SetConverter::Decoded decoded = decode(bytes.substr(0, length));
    if (decoded.status == UNICONV_PARTIAL && decoded.text.empty())
      continue;
    if (decoded.status == UNICONV_SUCCEED)
      return {length, std::move(decoded.text), false};
    // What follows the bad bytes may have been read as well.
    const size_t behind = decoded.status == UNICONV_PARTIAL
                              ? step
                              : step * (std::max<size_t>(decoded.text.size(), 1) - 1);
    return {std::max(length - std::min(behind, length), step), {}, true};
  }
  return {is_end || bytes.size() >= longest_character ? most : 0, {}, true};
}

// False, and nothing is appended, where the destination lacks some of it.
bool Recoder::append(const std::u16string &text, std::string &out) {
  std::string bytes;
  bool moved_windows = has_moved_windows;
  for (size_t at = 0; at < text.size(); ++at) {
    const size_t nul = std::min(text.find(u'\0', at), text.size());
    std::u16string part = text.substr(at, nul - at);
    // What the scheme has set stays set. A blank behind the text leads out of the units, and the next
    // text begins with the windows where they were at first, as the converter expects them.
    if (to.is_compressed())
      part += u' ';
    SetConverter::Encoded encoded = to.encode(part);
    if (encoded.status != UNICONV_SUCCEED)
      return false;
    if (to.is_compressed())
      encoded.bytes.pop_back();
    if (to.is_compressed() && !encoded.bytes.empty()) {
      if (moved_windows)
        bytes += RcsuReader::reset();
      moved_windows = RcsuReader::has_commands(encoded.bytes);
    }
    bytes += encoded.bytes;
    if (nul < text.size())
      bytes.append(to.is_wide() ? 2 : 1, '\0');
    at = nul;
  }
  out += bytes;
  has_moved_windows = moved_windows;
  return true;
}

// Moves the place behind a text that was read.
void Recoder::advance(std::string_view bytes, const std::u16string &text) {
  offset += bytes.size();
  for (const char16_t unit : text) {
    if (unit == u'\n') {
      ++line;
      column = 1;
    } else if (!is_high_surrogate(unit)) {
      ++column;
    }
  }
  if (has_shifts) {
    const size_t last = bytes.find_last_of(std::string{shift_out, shift_in});
    if (last != std::string_view::npos)
      is_shifted = bytes[last] == shift_out;
  }
}

// These convert text without NUL, which rcsu alone may have, and return the bytes that they took.
size_t Recoder::convert_by_characters(std::string_view piece, bool is_end, std::string &out) {
  std::u16string text;
  size_t taken = 0;
  while (taken < piece.size()) {
    Character character = read(piece.substr(taken), is_end);
    if (character.bytes == 0)
      break;
    const std::string_view bytes = piece.substr(taken, character.bytes);
    const bool is_lost =
        character.is_invalid || to.encode(character.text).status != UNICONV_SUCCEED;
    if (is_lost && !on_loss({line, column, offset, std::string(bytes), character.is_invalid,
                             first_character(character.text)})) {
      is_stopped = true;
      break;
    }
    text += is_lost ? substitute : character.text;
    advance(bytes, is_lost ? std::u16string(1, u'?') : character.text);
    taken += character.bytes;
  }
  append(text, out);
  return taken;
}

size_t Recoder::convert_compressed(std::string_view piece, bool is_end, std::string &out) {
  RcsuReader ahead = *compressed;
  std::u16string text;
  size_t taken = 0;
  bool is_valid = true;
  while (is_valid && taken < piece.size()) {
    const Character character = ahead.read(piece.substr(taken), is_end);
    if (character.bytes == 0)
      break;
    is_valid = !character.is_invalid;
    text += character.text;
    taken += character.bytes;
  }
  if (!is_valid || !append(text, out))
    return convert_by_characters(piece, is_end, out);
  compressed = ahead;
  advance(piece.substr(0, taken), text);
  return taken;
}

size_t Recoder::convert_piece(std::string_view piece, bool is_end, std::string &out) {
  if (compressed)
    return convert_compressed(piece, is_end, out);
  size_t length = piece.size();
  SetConverter::Decoded decoded = decode(piece);
  // An unfinished character is shorter than the longest.
  const size_t step = from.is_wide() ? 2 : 1;
  for (size_t cut = step;
       cut < longest_character && cut < length && !is_end && decoded.status == UNICONV_PARTIAL;
       cut += step) {
    length = piece.size() - cut;
    decoded = decode(piece.substr(0, length));
  }
  if (decoded.status == UNICONV_SUCCEED && append(decoded.text, out)) {
    advance(piece.substr(0, length), decoded.text);
    return length;
  }
  return convert_by_characters(piece, is_end, out);
}

bool Recoder::convert(std::string_view bytes, bool is_last, std::string &out) {
  pending += bytes;
  const size_t unit = from.is_wide() ? 2 : 1;
  const std::string nul(unit, '\0');
  size_t done = 0;
  while (done < pending.size() && !is_stopped) {
    // A NUL would end a text for the converters, so it goes by itself.
    size_t end = compressed ? std::string::npos : pending.find(nul, done);
    while (end != std::string::npos && (end - done) % unit != 0)
      end = pending.find(nul, end + 1);
    if (end == done) {
      out.append(to.is_wide() ? 2 : 1, '\0');
      advance(nul, std::u16string(1, u'\0'));
      done += unit;
      continue;
    }
    const bool is_end = is_last || end != std::string::npos;
    std::string_view piece(pending);
    piece = piece.substr(done, end != std::string::npos ? end - done : std::string::npos);
    // Half a unit is no text: it waits, or stands at the end of all.
    const std::string_view half = piece.substr(piece.size() / unit * unit);
    piece.remove_suffix(half.size());
    const size_t taken = piece.empty() ? 0 : convert_piece(piece, is_end, out);
    done += taken;
    if (taken < piece.size() || is_stopped)
      break;
    if (!half.empty()) {
      if (is_last) {
        if (on_loss({line, column, offset, std::string(half), true, 0}))
          append(substitute, out);
        else
          is_stopped = true;
        done += half.size();
      }
      break;
    }
  }
  pending.erase(0, done);
  return !is_stopped;
}

} // namespace zrvtool
