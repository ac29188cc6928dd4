// Any bytes as a file of the secure store, a record or its key file: what was not written by the store is
// told from what was. The first byte of the input chooses the file and what is done to a good one: the
// bytes behind it take its place, or change it.
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <unistd.h>

#include "fuzz_input.h"
#include "zrvcomn/velssfs.h"

namespace {

using zrvfuzz::require;

const std::string value = "a value that is long enough to be cut";

class Store {
public:
  Store() {
    require(mkdtemp(path.data()) != nullptr);
    require(RSecSSFsSetConfiguration(path.c_str()) == RSEC_SSFS_RC_OK);
    RSecSSFsPutRecordAPI *put = nullptr;
    require(RSecSSFsPutRecordAPIGet(&put) == RSEC_SSFS_RC_OK);
    put->in_pValue = value.c_str();
    put->in_pKey = "hidden";
    require(RSecSSFsPutRecord(put) == RSEC_SSFS_RC_OK);
    put->in_pKey = "plain";
    put->in_storePlaintext = 1;
    require(RSecSSFsPutRecord(put) == RSEC_SSFS_RC_OK);
    require(RSecSSFsPutRecordAPIRelease(&put) == RSEC_SSFS_RC_OK);
    for (size_t i = 0; i < std::size(names); ++i)
      good[i] = read(names[i]);
  }
  ~Store() { std::filesystem::remove_all(path); }

  std::string read(const char *name) const {
    std::ifstream file(path + "/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  void write(const char *name, const std::string &bytes) const {
    std::ofstream(path + "/" + name, std::ios::binary | std::ios::trunc) << bytes;
  }

  static constexpr const char *names[] = {"hidden.rec", "plain.rec", "key"};
  std::string good[3];

private:
  std::string path = "/tmp/zrvfuzz-XXXXXX";
};

void check_get(const char *key, bool is_good) {
  RSecSSFsGetRecordAPI *get = nullptr;
  require(RSecSSFsGetRecordAPIGet(&get) == RSEC_SSFS_RC_OK);
  get->in_pKey = key;
  const RSEC_SSFS_RC code = RSecSSFsGetRecord(get);
  require(code == (is_good ? RSEC_SSFS_RC_OK : RSEC_SSFS_RC_FILE_CORRUPTION));
  require((get->out_pValue != nullptr) == is_good);
  require(!is_good || value == get->out_pValue);
  require(RSecSSFsGetRecordAPIRelease(&get) == RSEC_SSFS_RC_OK);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  static const Store store;
  if (size == 0)
    return 0;
  const size_t which = data[0] % std::size(Store::names);
  const std::string bytes(reinterpret_cast<const char *>(data) + 1, size - 1);
  std::string file = store.good[which];
  if ((data[0] & 0x80) != 0)
    file = bytes;
  else
    // Pairs of a place and of what is added there; a place behind the end lengthens the file.
    for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
      const size_t place = static_cast<uint8_t>(bytes[i]) % (file.size() + 1);
      if (place == file.size())
        file += bytes[i + 1];
      else
        file[place] = static_cast<char>(file[place] + bytes[i + 1]);
    }
  const bool is_good = file == store.good[which];
  store.write(Store::names[which], file);
  check_get("hidden", is_good || which == 1);
  check_get("plain", is_good || which == 0);
  store.write(Store::names[which], store.good[which]);
  return 0;
}
