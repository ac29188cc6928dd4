// The entry points: blocks, the checks of what callers give, and calls on the store.
#include "velssfs.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <new>

#include "store.h"

namespace velssfs {

RSEC_SSFS_RC Report::fail(RSEC_SSFS_RC code, const char *format, ...) noexcept {
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  return code;
}

RSEC_SSFS_RC Report::no_memory() noexcept {
  return fail(RSEC_SSFS_RC_LOW_MEMORY, "there is no memory");
}

RSEC_SSFS_RC Report::no_random_bytes() noexcept {
  return fail(RSEC_SSFS_RC_ENVIRONMENT, "there are no random bytes");
}

RSEC_SSFS_RC Report::system_failed(int error, const char *directory, const char *file) noexcept {
  if (error == ENOMEM)
    return no_memory();
  if (error == ETIMEDOUT)
    return fail(RSEC_SSFS_RC_CONCURRENT_UPDATE, "%s: another process is at work there", directory);
  // English, whatever the locale of the process.
  const char *const why = strerrordesc_np(error);
  return fail(RSEC_SSFS_RC_ENVIRONMENT, "%s%s%s: %s", directory, file == nullptr ? "" : "/",
              file == nullptr ? "" : file, why == nullptr ? "a call to the system failed" : why);
}

RSEC_SSFS_RC Report::write_failed(int error, const char *directory, const char *file) noexcept {
  const RSEC_SSFS_RC code = system_failed(error, directory, file);
  return error == EACCES || error == EPERM || error == EROFS ? RSEC_SSFS_RC_NO_WRITE_PERMISSION
                                                             : code;
}

RSEC_SSFS_RC Report::corrupt(const char *directory, const char *file, const char *how) noexcept {
  return fail(RSEC_SSFS_RC_FILE_CORRUPTION, "%s/%s: %s", directory, file, how);
}

const RSecProcessingInfo *Report::finish(RSEC_SSFS_RC code) noexcept {
  if (code == RSEC_SSFS_RC_OK)
    text[0] = '\0';
  info = {code, text};
  return &info;
}

namespace {

// A block: what an application sees of it, and behind that its store. `Own` is what the results of a
// call point to.
template <class Api, class Own>
struct Block {
  Api api{};
  Store store;
  Own own;
};

template <class Api, class Own>
RSEC_SSFS_RC make(Api **api) noexcept {
  if (api == nullptr)
    return RSEC_SSFS_RC_RSECSSFX_USAGE;
  *api = nullptr;
  void *const room = comn_malloc(sizeof(Block<Api, Own>));
  if (room == nullptr)
    return RSEC_SSFS_RC_LOW_MEMORY;
  auto *const block = new (room) Block<Api, Own>;
  block->api.internalOpaque = block;
  *api = &block->api;
  return RSEC_SSFS_RC_OK;
}

// The block of a record, or null for one that this library did not make.
template <class Own, class Api>
Block<Api, Own> *block_of(Api *api) noexcept {
  return api != nullptr && api->internalOpaque == api
             ? static_cast<Block<Api, Own> *>(api->internalOpaque)
             : nullptr;
}

template <class Own, class Api>
RSEC_SSFS_RC release(Api **api) noexcept {
  if (api == nullptr)
    return RSEC_SSFS_RC_RSECSSFX_USAGE;
  if (*api == nullptr)
    return RSEC_SSFS_RC_OK;
  auto *const block = block_of<Own>(*api);
  if (block == nullptr)
    return RSEC_SSFS_RC_RSECSSFX_USAGE;
  block->~Block();
  OPENSSL_cleanse(static_cast<void *>(block), sizeof *block);
  comn_free(block);
  *api = nullptr;
  return RSEC_SSFS_RC_OK;
}

// Runs an operation on a block whose outputs are clear, and tells how it went.
template <class Own, class Api, class Operation>
RSEC_SSFS_RC run(Api *api, Operation operation) noexcept {
  auto *const block = block_of<Own>(api);
  if (block == nullptr)
    return RSEC_SSFS_RC_RSECSSFX_USAGE;
  const RSEC_SSFS_RC code = operation(block->store, block->own);
  api->out_pProcessingInfo = block->store.report.finish(code);
  return code;
}

RSEC_SSFS_RC need_key(Report &report, const char *key) noexcept {
  return is_record_key(key)
             ? RSEC_SSFS_RC_OK
             : report.fail(RSEC_SSFS_RC_RECORD_KEY_FORMAT, "this is no key of a record");
}

struct Nothing {};

// The file of a record, with its value.
using Value = Bytes;

struct Lines {
  Bytes names, lines;
};

int compare_lines(const void *one, const void *other) noexcept {
  return std::strcmp(static_cast<const RSecSSFsListRecordKeysLine *>(one)->pKey,
                     static_cast<const RSecSSFsListRecordKeysLine *>(other)->pKey);
}

struct CharKey {
  char text[VELSSFS_CHAR_KEY + 1];
};

// The value that a caller gives.
RSEC_SSFS_RC check_value(Report &report, const RSecSSFsPutRecordAPI &api, Record &record) noexcept {
  record.is_plain = api.in_storePlaintext != 0;
  record.is_binary = api.in_isBinary != 0;
  record.value = record.is_binary ? api.in_pValueX : reinterpret_cast<const Byte *>(api.in_pValue);
  record.length =
      record.is_binary ? api.in_pValueXLen : strnlen(api.in_pValue, VELSSFS_MAX_VALUE + size_t{1});
  if (record.value == nullptr && record.length > 0)
    return report.fail(RSEC_SSFS_RC_RSECSSFX_USAGE, "the value is a null pointer");
  if (record.length > VELSSFS_MAX_VALUE)
    return report.fail(RSEC_SSFS_RC_VALUE_TOO_LONG, "a value has at most %d bytes",
                       VELSSFS_MAX_VALUE);
  if (!record.is_binary && !is_utf8(record.value, record.length))
    return report.fail(RSEC_SSFS_RC_UTF8_CONVERSION, "a value that is not binary must be UTF-8");
  return RSEC_SSFS_RC_OK;
}

} // namespace

} // namespace velssfs

using namespace velssfs;

// The functions that make and release blocks.
#define VELSSFS_BLOCKS(name, own)                                                                  \
  RSEC_SSFS_RC RSecSSFs##name##APIGet(RSecSSFs##name##API **api) noexcept {                        \
    return make<RSecSSFs##name##API, own>(api);                                                    \
  }                                                                                                \
  RSEC_SSFS_RC RSecSSFs##name##APIRelease(RSecSSFs##name##API **api) noexcept {                    \
    return release<own>(api);                                                                      \
  }
VELSSFS_BLOCKS(GetRecord, Value)
VELSSFS_BLOCKS(PutRecord, Nothing)
VELSSFS_BLOCKS(ListRecordKeys, Lines)
VELSSFS_BLOCKS(GenerateCharKey, CharKey)
VELSSFS_BLOCKS(ChangeKey, Nothing)

RSEC_SSFS_RC RSecSSFsSharedLibInit() noexcept {
  EVP_CIPHER *const cipher = EVP_CIPHER_fetch(nullptr, "AES-256-GCM", nullptr);
  EVP_CIPHER_free(cipher);
  return cipher != nullptr ? RSEC_SSFS_RC_OK : RSEC_SSFS_RC_ENVIRONMENT;
}

RSEC_SSFS_RC RSecSSFsSetConfiguration(const VEL_UC *directory) noexcept {
  return configure(directory) ? RSEC_SSFS_RC_OK : RSEC_SSFS_RC_ENVIRONMENT;
}

RSEC_SSFS_RC RSecSSFsGetRecord(RSecSSFsGetRecordAPI *api) noexcept {
  return run<Value>(api, [api](Store &store, Value &value) {
    api->out_pValue = nullptr;
    api->out_pValueX = nullptr;
    api->out_pValueXLen = 0;
    api->out_isStoredAsPlaintext = api->out_isBinary = 0;
    value.release();
    if (const RSEC_SSFS_RC code = need_key(store.report, api->in_pKey))
      return code;
    Record record;
    if (const RSEC_SSFS_RC code = store.get(api->in_pKey, value, record)) {
      value.release();
      return code;
    }
    api->out_isStoredAsPlaintext = record.is_plain;
    api->out_isBinary = record.is_binary;
    api->out_pValue = record.is_binary ? nullptr : reinterpret_cast<const VEL_UC *>(record.value);
    api->out_pValueX = record.value;
    api->out_pValueXLen = record.length;
    return RSEC_SSFS_RC_OK;
  });
}

RSEC_SSFS_RC RSecSSFsPutRecord(RSecSSFsPutRecordAPI *api) noexcept {
  return run<Nothing>(api, [api](Store &store, Nothing &) {
    if (const RSEC_SSFS_RC code = need_key(store.report, api->in_pKey))
      return code;
    if (api->in_isBinary == 0 && api->in_pValue == nullptr) {
      if (api->in_pValueX == nullptr)
        return store.remove(api->in_pKey);
      return store.report.fail(RSEC_SSFS_RC_RSECSSFX_USAGE,
                               "the value is binary, and in_isBinary says that it is not");
    }
    Record record;
    if (const RSEC_SSFS_RC code = check_value(store.report, *api, record))
      return code;
    return store.put(api->in_pKey, record);
  });
}

RSEC_SSFS_RC RSecSSFsListRecordKeys(RSecSSFsListRecordKeysAPI *api) noexcept {
  return run<Lines>(api, [api](Store &store, Lines &own) {
    api->out_listSize = 0;
    api->out_pRecords = nullptr;
    own.names.release();
    own.lines.release();
    const char *const prefix = api->in_pKeyPrefix == nullptr ? "" : api->in_pKeyPrefix;
    if (!is_key_prefix(prefix))
      return store.report.fail(RSEC_SSFS_RC_RECORD_KEY_FORMAT, "no key of a record begins so");
    size_t count;
    if (const RSEC_SSFS_RC code = store.list(prefix, own.names, count))
      return code;
    if (count == 0)
      return RSEC_SSFS_RC_OK;
    if (!own.lines.renew(count * sizeof(RSecSSFsListRecordKeysLine)))
      return store.report.no_memory();
    auto *const lines = reinterpret_cast<RSecSSFsListRecordKeysLine *>(own.lines.data());
    const char *key = reinterpret_cast<const char *>(own.names.data());
    for (size_t i = 0; i < count; ++i, key += std::strlen(key) + 1)
      lines[i].pKey = key;
    std::qsort(lines, count, sizeof *lines, compare_lines);
    api->out_listSize = count;
    api->out_pRecords = lines;
    return RSEC_SSFS_RC_OK;
  });
}

RSEC_SSFS_RC RSecSSFsGenerateCharKey(RSecSSFsGenerateCharKeyAPI *api) noexcept {
  return run<CharKey>(api, [api](Store &store, CharKey &own) {
    api->out_pCharKey = nullptr;
    Byte bytes[key_size];
    if (!draw(bytes, sizeof bytes))
      return store.report.no_random_bytes();
    print_char_key(bytes, own.text);
    OPENSSL_cleanse(bytes, sizeof bytes);
    api->out_pCharKey = own.text;
    return RSEC_SSFS_RC_OK;
  });
}

RSEC_SSFS_RC RSecSSFsChangeKey(RSecSSFsChangeKeyAPI *api) noexcept {
  return run<Nothing>(api, [api](Store &store, Nothing &) {
    Key wanted;
    if (!parse_char_key(api->in_pCharKey, wanted.bytes))
      return store.report.fail(RSEC_SSFS_RC_INCORRECT_KEY, "a master key is %d hexadecimal digits",
                               VELSSFS_CHAR_KEY);
    if (!wanted.identify())
      return store.report.no_memory();
    const auto *const wait = static_cast<const int *>(api->in_pLockContext);
    return store.change_key(wanted, wait == nullptr ? VELSSFS_LOCK_WAIT : *wait);
  });
}
