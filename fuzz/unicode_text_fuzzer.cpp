// Random bytes through a set, from any bytes and from any units: in a room that ends where the memory
// ends, whole characters are written, and what was read comes back as itself.
#include <algorithm>
#include <memory>
#include <string>

#include "fuzz_input.h"
#include "zrvcomn/zrvunic.h"

namespace {

using zrvfuzz::require;

// All sets, their handles kept.
CVTH converter(unsigned which) {
  static CVTH handles[5200];
  const int cid = static_cast<int>(which % 5200) - 5;
  CVTH &handle = handles[cid + 5];
  if (handle == nullptr)
    uniconv_HandleGet(cid, &handle);
  return handle;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  zrvfuzz::Input input(data, size);
  const CVTH handle = converter(input.word());
  if (handle == nullptr)
    return -1; // no such set: not worth keeping
  const int cut = input.byte();
  const bool from_units = (input.byte() & 1) != 0;
  std::u16string text;
  if (from_units) {
    while (!input.is_empty())
      if (const unsigned unit = input.word())
        text += static_cast<char16_t>(unit);
  } else {
    std::string bytes;
    while (!input.is_empty())
      bytes += static_cast<char>(input.byte());
    bytes.append(3, '\0');
    for (const int room : {cut, static_cast<int>(2 * bytes.size())}) {
      // Nothing stands behind it, so that a sanitizer sees every write too far.
      const std::unique_ptr<UChar16[]> dest(new UChar16[static_cast<size_t>(room) + 1]);
      int length = 0;
      const int code = uniconv_unistrFromS(handle, dest.get(), room + 1,
                                           reinterpret_cast<const UChar8 *>(bytes.data()), &length);
      require(length >= 1 && length <= room + 1 && dest[length - 1] == 0);
      require(code == UNICONV_SUCCEED || code == UNICONV_SUBSTITUTED || code == UNICONV_PARTIAL);
      text.assign(dest.get(), dest.get() + length - 1);
    }
    // What was read is well formed.
    const std::unique_ptr<UChar8[]> utf8(new UChar8[3 * text.size() + 1]);
    require(uniutf8_unistrToUTF8(utf8.get(), static_cast<int>(3 * text.size() + 1),
                                 reinterpret_cast<const UChar16 *>(text.c_str()), nullptr) >= 0);
    const std::unique_ptr<UChar16[]> again(new UChar16[text.size() + 1]);
    require(uniutf8_unistrFromUTF8(again.get(), static_cast<int>(text.size() + 1), utf8.get(),
                                   nullptr) == static_cast<int>(text.size()));
    require(std::u16string(again.get(), again.get() + text.size()) == text);
  }
  int factor = 0;
  require(uniconv_GetExpansionFactor(handle, &factor) == UNICONV_SUCCEED);
  const std::unique_ptr<UChar16[]> source(new UChar16[text.size() + 1]);
  std::copy(text.c_str(), text.c_str() + text.size() + 1, source.get());
  for (const int room : {cut, static_cast<int>(text.size()) * factor}) {
    const std::unique_ptr<UChar8[]> dest(new UChar8[static_cast<size_t>(room) + 3]());
    int length = 0;
    const int code = uniconv_unistrToS(handle, dest.get(), room + 1, source.get(), &length);
    require(length >= 1 && length <= room + 1);
    require(room == cut || code == UNICONV_SUCCEED || code == UNICONV_SUBSTITUTED);
    // What has no loss comes back, unless the end of its room cut it.
    const std::unique_ptr<UChar16[]> back(new UChar16[text.size() + 2]);
    int units = 0;
    if (code != UNICONV_SUCCEED)
      continue;
    require(uniconv_unistrFromS(handle, back.get(), static_cast<int>(text.size()) + 2, dest.get(),
                                &units) == UNICONV_SUCCEED);
    require(std::u16string(back.get(), back.get() + units - 1) == text);
  }
  return 0;
}
