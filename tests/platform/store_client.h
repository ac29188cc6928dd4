// The calls of the secure store as a test wants them: values in, codes and values out.
#ifndef ZRVTEST_STORE_CLIENT_H
#define ZRVTEST_STORE_CLIENT_H

#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "temporary_directory.h"
#include "zrvcomn/velssfs.h"

namespace zrvtest {

struct StoredValue {
  std::string bytes;
  bool is_binary = false;
  bool is_plain = false;
  bool operator==(const StoredValue &) const = default;
};

inline std::string read_file(const std::filesystem::path &path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}
inline void write_file(const std::filesystem::path &path, const std::string &bytes) {
  std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

// A block that releases itself.
template <class Api, RSEC_SSFS_RC (*make)(Api **), RSEC_SSFS_RC (*drop)(Api **)>
class StoreBlock {
public:
  StoreBlock() { EXPECT_EQ(make(&api), RSEC_SSFS_RC_OK); }
  ~StoreBlock() {
    EXPECT_EQ(drop(&api), RSEC_SSFS_RC_OK);
    EXPECT_EQ(api, nullptr);
  }
  StoreBlock(const StoreBlock &) = delete;
  StoreBlock &operator=(const StoreBlock &) = delete;
  Api *operator->() { return api; }
  Api *get() { return api; }

private:
  Api *api = nullptr;
};
using GetBlock =
    StoreBlock<RSecSSFsGetRecordAPI, RSecSSFsGetRecordAPIGet, RSecSSFsGetRecordAPIRelease>;
using PutBlock =
    StoreBlock<RSecSSFsPutRecordAPI, RSecSSFsPutRecordAPIGet, RSecSSFsPutRecordAPIRelease>;
using ListBlock = StoreBlock<RSecSSFsListRecordKeysAPI, RSecSSFsListRecordKeysAPIGet,
                             RSecSSFsListRecordKeysAPIRelease>;
using GenerateBlock = StoreBlock<RSecSSFsGenerateCharKeyAPI, RSecSSFsGenerateCharKeyAPIGet,
                                 RSecSSFsGenerateCharKeyAPIRelease>;
using ChangeBlock =
    StoreBlock<RSecSSFsChangeKeyAPI, RSecSSFsChangeKeyAPIGet, RSecSSFsChangeKeyAPIRelease>;

// What each call leaves in its block beside the results.
template <class Block>
RSEC_SSFS_RC told(Block &block, RSEC_SSFS_RC code, std::string *text = nullptr) {
  EXPECT_NE(block->out_pProcessingInfo, nullptr);
  EXPECT_EQ(block->out_pProcessingInfo->rc, code);
  EXPECT_EQ(block->out_pProcessingInfo->pErrorText[0] == '\0', code == RSEC_SSFS_RC_OK);
  if (text != nullptr)
    *text = block->out_pProcessingInfo->pErrorText;
  return code;
}

inline RSEC_SSFS_RC put(const std::string &key, const StoredValue &value,
                        std::string *text = nullptr) {
  PutBlock block;
  block->in_pKey = key.c_str();
  block->in_storePlaintext = value.is_plain;
  block->in_isBinary = value.is_binary;
  if (value.is_binary) {
    block->in_pValueX = reinterpret_cast<const VEL_RAW *>(value.bytes.data());
    block->in_pValueXLen = value.bytes.size();
  } else {
    block->in_pValue = value.bytes.c_str();
  }
  return told(block, RSecSSFsPutRecord(block.get()), text);
}
inline RSEC_SSFS_RC put(const std::string &key, const char *value, std::string *text = nullptr) {
  return put(key, StoredValue{value}, text);
}

inline RSEC_SSFS_RC remove(const std::string &key, std::string *text = nullptr) {
  PutBlock block;
  block->in_pKey = key.c_str();
  return told(block, RSecSSFsPutRecord(block.get()), text);
}

inline RSEC_SSFS_RC get(GetBlock &block, const std::string &key, StoredValue &value,
                        std::string *text = nullptr) {
  block->in_pKey = key.c_str();
  const RSEC_SSFS_RC code = told(block, RSecSSFsGetRecord(block.get()), text);
  if (code != RSEC_SSFS_RC_OK) {
    EXPECT_EQ(block->out_pValue, nullptr);
    EXPECT_EQ(block->out_pValueX, nullptr);
    EXPECT_EQ(block->out_pValueXLen, 0U);
    EXPECT_EQ(block->out_isBinary, 0);
    EXPECT_EQ(block->out_isStoredAsPlaintext, 0);
    return code;
  }
  value.bytes.assign(reinterpret_cast<const char *>(block->out_pValueX), block->out_pValueXLen);
  value.is_binary = block->out_isBinary != 0;
  value.is_plain = block->out_isStoredAsPlaintext != 0;
  if (value.is_binary)
    EXPECT_EQ(block->out_pValue, nullptr);
  else
    EXPECT_EQ(block->out_pValue, value.bytes);
  return code;
}
inline RSEC_SSFS_RC get(const std::string &key, StoredValue &value, std::string *text = nullptr) {
  GetBlock block;
  return get(block, key, value, text);
}
inline RSEC_SSFS_RC get(const std::string &key) {
  StoredValue ignored;
  return get(key, ignored);
}

inline RSEC_SSFS_RC list(const char *prefix, std::vector<std::string> &keys,
                         std::string *text = nullptr) {
  ListBlock block;
  block->in_pKeyPrefix = prefix;
  const RSEC_SSFS_RC code = told(block, RSecSSFsListRecordKeys(block.get()), text);
  keys.clear();
  for (size_t i = 0; i < block->out_listSize; ++i)
    keys.emplace_back(block->out_pRecords[i].pKey);
  EXPECT_EQ(block->out_pRecords == nullptr, keys.empty());
  return code;
}
inline std::vector<std::string> list(const char *prefix = nullptr) {
  std::vector<std::string> keys;
  EXPECT_EQ(list(prefix, keys), RSEC_SSFS_RC_OK);
  return keys;
}

inline RSEC_SSFS_RC change_key(const std::string &char_key, std::string *text = nullptr,
                               int *wait = nullptr) {
  ChangeBlock block;
  block->in_pCharKey = char_key.c_str();
  block->in_pLockContext = wait;
  return told(block, RSecSSFsChangeKey(block.get()), text);
}

inline std::string generate_key() {
  GenerateBlock block;
  EXPECT_EQ(told(block, RSecSSFsGenerateCharKey(block.get())), RSEC_SSFS_RC_OK);
  return block->out_pCharKey == nullptr ? "" : block->out_pCharKey;
}

// A store in a directory of its own, which does not exist before the first record.
class StoreTest : public testing::Test {
protected:
  StoreTest() : path(above.path / "state" / "store") {
    EXPECT_EQ(RSecSSFsSetConfiguration(path.c_str()), RSEC_SSFS_RC_OK);
  }
  ~StoreTest() override { EXPECT_EQ(RSecSSFsSetConfiguration(nullptr), RSEC_SSFS_RC_OK); }

  std::filesystem::path file_of(std::string key) const {
    for (char &c : key)
      if (c == '/')
        c = '+';
    return path / (key + ".rec");
  }

  TemporaryDirectory above;
  std::filesystem::path path;
};

} // namespace zrvtest

#endif
