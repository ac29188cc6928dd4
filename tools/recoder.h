// Text on its way from one character set into another, block by block, with an account of each character
// that does not come through.
#ifndef ZRVTOOL_RECODER_H
#define ZRVTOOL_RECODER_H

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "rcsu_reader.h"
#include "zrvcomn/zrvunic.h"

namespace zrvtool {

// A character, or bytes that are none, that the destination cannot have.
struct Loss {
  uint64_t line, column; // from 1; a column is a character
  uint64_t offset;       // of its first byte
  std::string bytes;
  bool is_invalid;    // the bytes are no character of the source's set
  char32_t character; // else which one
};

// A converter of the library.
class SetConverter {
public:
  // Throws UsageError when the set has none that can be used.
  SetConverter(int cid, const std::string &name);
  ~SetConverter() { uniconv_HandleFree(handle); }
  SetConverter(const SetConverter &) = delete;
  SetConverter &operator=(const SetConverter &) = delete;

  struct Decoded {
    int status;
    std::u16string text;
  };
  Decoded decode(std::string bytes) const;

  struct Encoded {
    int status;
    std::string bytes;
  };
  Encoded encode(const std::u16string &text) const;

  bool is_wide() const { return cid == UNICONV_CID_UTF16; }
  bool is_compressed() const { return cid == UNICONV_CID_RCSU; }

private:
  int cid;
  CVTH handle = nullptr;
};

class Recoder {
public:
  // Is told of each loss; false stops the conversion before it.
  using OnLoss = std::function<bool(const Loss &)>;

  // `substitute` stands for each loss. All from one set to another; throws UsageError.
  Recoder(int from_cid, const std::string &from, int to_cid, const std::string &to,
          const std::string &substitute, OnLoss on_loss);

  // Appends what the next bytes become. An unfinished character at their end waits for more, unless
  // they are the last. False once it has been stopped.
  bool convert(std::string_view bytes, bool is_last, std::string &out);

private:
  using Character = RcsuReader::Element;

  std::u16string text_of(const std::string &utf8) const;
  SetConverter::Decoded decode(std::string_view bytes) const;
  Character read(std::string_view bytes, bool is_end);
  size_t convert_compressed(std::string_view piece, bool is_end, std::string &out);
  size_t convert_piece(std::string_view piece, bool is_end, std::string &out);
  size_t convert_by_characters(std::string_view piece, bool is_end, std::string &out);
  bool append(const std::u16string &text, std::string &out);
  void advance(std::string_view bytes, const std::u16string &text);

  SetConverter from, to;
  std::u16string substitute;
  OnLoss on_loss;
  std::optional<RcsuReader> compressed; // where a source in rcsu stands
  bool has_moved_windows = false;       // what was written in rcsu may have
  bool has_shifts;                      // the source's set has shift states
  bool is_shifted = false;              // and is in that of two bytes
  bool is_stopped = false;
  std::string pending; // an unfinished character
  uint64_t line = 1, column = 1, offset = 0;
};

} // namespace zrvtool

#endif
