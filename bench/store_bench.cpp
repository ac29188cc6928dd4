// Benchmarks of the secure store, against opening and reading a file of the same size.
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include <benchmark/benchmark.h>

#include "comparison.h"
#include "store_peers.h"
#include "zrvcomn/velssfs.h"

namespace zrvbench {
namespace {

constexpr size_t calls = 256;

void require(bool holds) {
  if (!holds)
    std::abort();
}

// A store that goes with the program.
class Store {
public:
  Store() {
    require(mkdtemp(path.data()) != nullptr);
    require(RSecSSFsSetConfiguration(path.c_str()) == RSEC_SSFS_RC_OK);
    require(RSecSSFsGetRecordAPIGet(&get) == RSEC_SSFS_RC_OK);
  }
  ~Store() {
    RSecSSFsGetRecordAPIRelease(&get);
    std::filesystem::remove_all(path);
  }
  Store(const Store &) = delete;
  Store &operator=(const Store &) = delete;

  // Puts a value and gives the path of its file.
  std::string put(const std::string &key, const std::string &value) const {
    RSecSSFsPutRecordAPI *put = nullptr;
    require(RSecSSFsPutRecordAPIGet(&put) == RSEC_SSFS_RC_OK);
    put->in_pKey = key.c_str();
    put->in_pValue = value.c_str();
    require(RSecSSFsPutRecord(put) == RSEC_SSFS_RC_OK);
    require(RSecSSFsPutRecordAPIRelease(&put) == RSEC_SSFS_RC_OK);
    return path + "/" + key + ".rec";
  }

  RSecSSFsGetRecordAPI *get = nullptr;

private:
  std::string path = "/tmp/zrvbench-XXXXXX";
};

// Beyond a few kilobytes the time is that of the cipher, for which there is no goal.
void compare_gets(size_t length, double goal) {
  static const Store store;
  const std::string key = "value-" + std::to_string(length);
  const std::string file = store.put(key, std::string(length, 'v'));
  const auto file_size = static_cast<size_t>(std::filesystem::file_size(file));
  compare({"store get",
           "RSecSSFsGetRecord",
           std::to_string(length) + " bytes",
           calls,
           [=] {
             store.get->in_pKey = key.c_str();
             for (size_t i = 0; i < calls; ++i)
               require(RSecSSFsGetRecord(store.get) == RSEC_SSFS_RC_OK);
           },
           {{"open and read", goal, [=] {
               for (size_t i = 0; i < calls; ++i)
                 require(peer_read_file(file.c_str(), file_size));
             }}}});
}

} // namespace

void register_comparisons() {
  compare_gets(32, 3.0);
  compare_gets(1024, 3.0);
  compare_gets(4096, 3.0);
  compare_gets(65536, 0);
}

} // namespace zrvbench
