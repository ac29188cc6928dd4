#include "sealing.h"

#include <bit>

#include <openssl/rand.h>

namespace velssfs {

namespace {

static_assert(std::endian::native == std::endian::little, "numbers are written as they stand");

constexpr Byte record_magic[8] = {'V', 'E', 'L', 'S', 'S', 'F', 'S', 1};
constexpr Byte key_magic[8] = {'V', 'E', 'L', 'S', 'S', 'F', 'K', 1};
constexpr uint32_t flag_plain = 1, flag_binary = 2;
constexpr size_t nonce_size = 12, digest_size = 32;

// The head of a record's file. Its members leave no gaps.
struct RecordHead {
  Byte magic[8];
  uint32_t flags;
  uint32_t value_length;
  Byte key_id[Key::id_size];
  Byte nonce[nonce_size];
  uint32_t name_length;
};
static_assert(sizeof(RecordHead) == Sealer::header_size && offsetof(RecordHead, key_id) == 16);

struct KeyHead {
  Byte magic[8];
  uint32_t count;
  uint32_t zero;
};
static_assert(sizeof(KeyHead) == 16);

bool digest(const Byte *bytes, size_t size, Byte (&result)[digest_size]) noexcept {
  return EVP_Digest(bytes, size, result, nullptr, EVP_sha256(), nullptr) == 1;
}

} // namespace

bool draw(Byte *bytes, size_t size) noexcept {
  return RAND_priv_bytes(bytes, static_cast<int>(size)) == 1;
}

bool Key::identify() noexcept {
  // Never the digest of the key alone, which could be one that somebody else publishes.
  static constexpr char purpose[] = "velssfs key id";
  Byte text[sizeof purpose + key_size], sum[digest_size];
  std::memcpy(text, purpose, sizeof purpose);
  std::memcpy(text + sizeof purpose, bytes, key_size);
  const bool is_done = digest(text, sizeof text, sum);
  OPENSSL_cleanse(text, sizeof text);
  std::memcpy(id, sum, id_size);
  return is_done;
}

const Key *KeyRing::find(const Byte *id) const noexcept {
  for (int i = 0; i < count; ++i)
    if (keys[i].has_id(id))
      return &keys[i];
  return nullptr;
}

void KeyRing::keep_current() noexcept {
  keys[0] = keys[count - 1];
  count = 1;
}

bool KeyRing::write(Bytes &file) const noexcept {
  const size_t keys_length = static_cast<size_t>(count) * key_size;
  if (!file.renew(sizeof(KeyHead) + keys_length + digest_size))
    return false;
  KeyHead head{{}, static_cast<uint32_t>(count), 0};
  std::memcpy(head.magic, key_magic, sizeof key_magic);
  Byte *out = file.data();
  std::memcpy(out, &head, sizeof head);
  out += sizeof head;
  for (int i = 0; i < count; ++i, out += key_size)
    std::memcpy(out, keys[i].bytes, key_size);
  Byte sum[digest_size];
  if (!digest(file.data(), file.size() - digest_size, sum))
    return false;
  std::memcpy(out, sum, digest_size);
  return true;
}

bool KeyRing::read(const Bytes &file) noexcept {
  count = 0;
  KeyHead head;
  if (file.size() < sizeof head)
    return false;
  std::memcpy(&head, file.data(), sizeof head);
  Byte sum[digest_size];
  if (std::memcmp(head.magic, key_magic, sizeof key_magic) != 0 || head.count < 1 ||
      head.count > most || file.size() != sizeof head + head.count * key_size + digest_size ||
      !digest(file.data(), file.size() - digest_size, sum) ||
      std::memcmp(sum, file.data() + file.size() - digest_size, digest_size) != 0)
    return false;
  for (uint32_t i = 0; i < head.count; ++i) {
    std::memcpy(keys[i].bytes, file.data() + sizeof head + i * key_size, key_size);
    if (!keys[i].identify())
      return false;
  }
  count = static_cast<int>(head.count);
  return true;
}

bool Sealer::start(const Key &key, const Byte *nonce, int is_sealing) noexcept {
  if (context == nullptr)
    context = EVP_CIPHER_CTX_new();
  if (context == nullptr)
    return false;
  // Without memory a context may have come so far and stay without its cipher.
  if (EVP_CIPHER_CTX_get0_cipher(context) == nullptr &&
      EVP_CipherInit_ex(context, EVP_aes_256_gcm(), nullptr, nullptr, nullptr, is_sealing) != 1)
    return false;
  return EVP_CipherInit_ex(context, nullptr, nullptr, key.bytes, nonce, is_sealing) == 1;
}

// Runs what is only authenticated, and then the text, in place, through the cipher.
bool Sealer::pass(const Byte *authenticated, size_t authenticated_length, Byte *text,
                  size_t length) noexcept {
  int done = 0;
  return EVP_CipherUpdate(context, nullptr, &done, authenticated,
                          static_cast<int>(authenticated_length)) == 1 &&
         (length == 0 ||
          EVP_CipherUpdate(context, text, &done, text, static_cast<int>(length)) == 1);
}

Sealed Sealer::seal(const Key &key, const char *name, const Record &record, Bytes &file) noexcept {
  const size_t name_length = std::strlen(name);
  if (!file.renew(header_size + name_length + record.length + tag_size))
    return Sealed::no_memory;
  RecordHead head{};
  std::memcpy(head.magic, record_magic, sizeof record_magic);
  head.flags = (record.is_plain ? flag_plain : 0) | (record.is_binary ? flag_binary : 0);
  head.value_length = static_cast<uint32_t>(record.length);
  std::memcpy(head.key_id, key.id, Key::id_size);
  head.name_length = static_cast<uint32_t>(name_length);
  if (RAND_bytes(head.nonce, nonce_size) != 1)
    return Sealed::no_random_bytes;
  Byte *const begin = file.data();
  Byte *const value = begin + header_size + name_length;
  Byte *const tag = value + record.length;
  std::memcpy(begin, &head, sizeof head);
  std::memcpy(begin + header_size, name, name_length);
  if (record.length > 0)
    std::memcpy(value, record.value, record.length);
  Byte *const text = record.is_plain ? tag : value; // what is encrypted, up to the tag
  int none = 0;
  const bool is_sealed =
      start(key, head.nonce, 1) &&
      pass(begin, static_cast<size_t>(text - begin), text, static_cast<size_t>(tag - text)) &&
      EVP_CipherFinal_ex(context, tag, &none) == 1 &&
      EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_AEAD_GET_TAG, tag_size, tag) == 1;
  return is_sealed ? Sealed::good : Sealed::no_memory;
}

Opened Sealer::open(const KeyRing &ring, const char *name, Bytes &file, Record &record) noexcept {
  RecordHead head;
  if (file.size() < sizeof head)
    return Opened::damaged;
  Byte *const begin = file.data();
  std::memcpy(&head, begin, sizeof head);
  const size_t name_length = std::strlen(name);
  if (std::memcmp(head.magic, record_magic, sizeof record_magic) != 0 ||
      (head.flags & ~(flag_plain | flag_binary)) != 0 || head.value_length > VELSSFS_MAX_VALUE ||
      head.name_length != name_length ||
      file.size() != header_size + name_length + head.value_length + tag_size ||
      std::memcmp(begin + header_size, name, name_length) != 0)
    return Opened::damaged;
  const Key *const key = ring.find(head.key_id);
  if (key == nullptr)
    return Opened::unknown_key;
  if (!start(*key, head.nonce, 0))
    return Opened::no_memory;
  Byte *const value = begin + header_size + name_length;
  Byte *const tag = value + head.value_length;
  const bool is_plain = (head.flags & flag_plain) != 0;
  Byte *const text = is_plain ? tag : value;
  int none = 0;
  if (EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_AEAD_SET_TAG, tag_size, tag) != 1 ||
      !pass(begin, static_cast<size_t>(text - begin), text, static_cast<size_t>(tag - text)))
    return Opened::no_memory;
  if (EVP_CipherFinal_ex(context, tag, &none) != 1)
    return Opened::damaged;
  *tag = 0;
  record = {is_plain, (head.flags & flag_binary) != 0, value, head.value_length};
  return Opened::good;
}

} // namespace velssfs
