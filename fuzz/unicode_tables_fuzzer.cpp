// Any bytes as the table of a set, with a right check sum: the loader makes a converter or tells that the
// table is damaged, and what the converter reads and writes stays within its buffers.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

#include "fuzz_input.h"
#include "zrvcomn/zrvunic.h"

namespace {

using zrvfuzz::require;

// One set of each form.
constexpr struct {
  UNICONV_CID cid;
  const char *file;
} sets[] = {{2, "cp850.bin"}, {47, "big5hk.bin"}, {930, "cp930.bin"}, {48, "gb18030.bin"}};

// A directory of this process for one table.
class Directory {
public:
  Directory() {
    if (mkdtemp(path.data()) == nullptr) {
      std::perror("directory of the fuzzer");
      std::_Exit(1);
    }
    units.assign(path.begin(), path.end());
  }
  ~Directory() { rmdir(path.c_str()); }

  CVTH load(UNICONV_CID cid, const char *name, const std::string &table) const {
    const std::string file = path + "/" + name;
    const int descriptor = open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    require(descriptor >= 0 &&
            write(descriptor, table.data(), table.size()) == static_cast<ssize_t>(table.size()));
    close(descriptor);
    I18NUNI_REQUEST request;
    i18nuni_RequestSetDefaults(&request);
    request.useCurrentDir = I18NUNI_DIR_PATH;
    CVTH handle = nullptr;
    const int code = uniconv_HandleGetU(
        cid, &request, reinterpret_cast<const UChar16 *>(units.c_str()), 0, &handle);
    unlink(file.c_str());
    require(code == UNICONV_SUCCEED || code == UNICONV_EDAMAGED);
    require((handle != nullptr) == (code == UNICONV_SUCCEED));
    return handle;
  }

private:
  std::string path = "/tmp/zrvfuzz-XXXXXX";
  std::u16string units;
};

std::string sealed(UNICONV_CID cid, const uint8_t *body, size_t size) {
  std::string table("zrvunic\x01", 8);
  table.resize(24);
  table.append(reinterpret_cast<const char *>(body), size);
  table.resize((table.size() + 7) / 8 * 8);
  const auto length = static_cast<uint32_t>(table.size());
  uint64_t check = static_cast<uint64_t>(length) << 32 | static_cast<uint32_t>(cid);
  for (size_t at = 24; at < table.size(); at += 8) {
    uint64_t word = 0;
    std::memcpy(&word, &table[at], 8);
    check = (check ^ word) * 0x9E3779B97F4A7C15;
    check ^= check >> 32;
  }
  std::memcpy(&table[8], &length, 4);
  std::memcpy(&table[12], &cid, 4);
  std::memcpy(&table[16], &check, 8);
  return table;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  static const Directory directory;
  if (size == 0)
    return 0;
  const auto &[cid, file] = sets[data[0] % 4];
  const CVTH handle = directory.load(cid, file, sealed(cid, data + 1, size - 1));
  if (handle == nullptr)
    return 0;
  // Every pair of bytes, every byte alone, then every unit and some pairs of surrogates.
  std::vector<UChar8> text;
  for (unsigned lead = 1; lead < 256; ++lead)
    for (unsigned trail = 1; trail < 256; ++trail) {
      text.push_back(static_cast<UChar8>(lead));
      text.push_back(static_cast<UChar8>(trail));
    }
  text.push_back(0);
  std::vector<UChar16> units(2 * text.size());
  int length = 0;
  uniconv_unistrFromS(handle, units.data(), static_cast<int>(units.size()), text.data(), &length);
  require(length >= 1 && length <= static_cast<int>(units.size()));
  // A text that ends within a character.
  for (unsigned lead = 1; lead < 256; ++lead) {
    const std::vector<UChar8> cut{static_cast<UChar8>(lead), 0};
    uniconv_unistrFromS(handle, units.data(), static_cast<int>(units.size()), cut.data(), &length);
    require(length >= 1 && length <= 3);
  }
  units.clear();
  for (unsigned unit = 1; unit < 0x10000; ++unit)
    units.push_back(static_cast<UChar16>(unit));
  for (unsigned high = 0xD800; high < 0xDC00; ++high) {
    units.push_back(static_cast<UChar16>(high));
    units.push_back(static_cast<UChar16>(high + 0x400));
  }
  units.push_back(0);
  std::vector<UChar8> bytes(4 * units.size());
  const int code = uniconv_unistrToS(handle, bytes.data(), static_cast<int>(bytes.size()),
                                     units.data(), &length);
  require(code == UNICONV_SUBSTITUTED || code == UNICONV_SUCCEED);
  uniconv_HandleFree(handle);
  return 0;
}
