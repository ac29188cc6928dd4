// Keys and key pairs over the real provider, beside OpenSSL, which this program uses itself as an
// application would; and the provider alone.
#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <set>
#include <string>

#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/provider.h>
#include <openssl/rsa.h>
#include <openssl/ssl.h>

#include "allocation_probe.h"
#include "guarded_buffer.h"
#include "to_hex.h"
#include "zrvcomn/comncrypto.h"
#include "zrvcomn/zrvintl.h"

namespace {

using namespace zrvtest;

CS_BYTE *bytes_of(std::string &text) {
  return reinterpret_cast<CS_BYTE *>(text.data());
}

std::string from_hex(const std::string &digits) {
  std::string bytes;
  for (size_t at = 0; at < digits.size(); at += 2)
    bytes += static_cast<char>(std::stoi(digits.substr(at, 2), nullptr, 16));
  return bytes;
}

// Text of any length whose bytes differ.
std::string pattern(size_t length) {
  std::string text(length, '\0');
  for (size_t i = 0; i < length; ++i)
    text[i] = static_cast<char>(i * 7 + i / 251);
  return text;
}

// The provider stays loaded between tests but for those that unload it.
class VelcryptoTest : public testing::Test {
protected:
  VelcryptoTest() { EXPECT_EQ(com_cclcontext_alloc(&context), CS_SUCCEED); }
  ~VelcryptoTest() override {
    EXPECT_EQ(com_cclcontext_drop(&context), CS_SUCCEED);
    EXPECT_EQ(comn_cryptolib_unload(), CS_SUCCEED);
    EXPECT_EQ(memory.live_blocks(), 0U);
  }

  CCLCryptFactory *factory() { return static_cast<NETENC_CONTEXT *>(context.ctxcclctx)->factory; }

  AllocationProbe memory;
  CS_CONTEXT context{};
};

// ---- AES ----

class AesTest : public VelcryptoTest {
protected:
  AesTest() : key(comn_create_symkey(&context)) {}
  ~AesTest() override { EXPECT_EQ(comn_drop_symkey(key), CS_SUCCEED); }

  // The created key, encrypting.
  std::string encrypt(std::string text) {
    GuardedBuffer out((text.size() / 16 + 1) * 16);
    CS_UINT length = 0;
    EXPECT_EQ(comn_symkey_encrypt(key, bytes_of(text), static_cast<CS_UINT>(text.size()),
                                  out.data(), static_cast<CS_UINT>(out.size()), &length),
              CS_SUCCEED);
    return out.contents(length);
  }
  std::string key_bytes() {
    std::string bytes(32, '\0');
    CS_INT length = 0;
    EXPECT_EQ(comn_get_symkey(key, bytes_of(bytes), &length), CS_SUCCEED);
    EXPECT_EQ(length, 32);
    return bytes;
  }
  std::string iv() {
    std::string bytes(16, '\0');
    EXPECT_EQ(comn_symkey_get_iv(key, bytes_of(bytes)), CS_SUCCEED);
    return bytes;
  }
  // A key for decryption, loaded from bytes and with an initialisation vector.
  COMN_SYMKEY *load(std::string bytes, std::string vector) {
    COMN_SYMKEY *const loaded =
        comn_load_symkey(&context, bytes_of(bytes), static_cast<CS_INT>(bytes.size()));
    EXPECT_NE(loaded, nullptr);
    EXPECT_EQ(comn_symkey_set_iv(loaded, bytes_of(vector)), CS_SUCCEED);
    return loaded;
  }

  COMN_SYMKEY *const key;
};

// AES-256 in CBC mode as EVP has it.
std::string evp_encrypt(const std::string &key, const std::string &iv, const std::string &text) {
  const std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> context(
      EVP_CIPHER_CTX_new(), EVP_CIPHER_CTX_free);
  std::string out(text.size() + 16, '\0');
  int whole = 0, rest = 0;
  const auto u = [](const std::string &s) {
    return reinterpret_cast<const unsigned char *>(s.data());
  };
  EXPECT_EQ(EVP_EncryptInit_ex(context.get(), EVP_aes_256_cbc(), nullptr, u(key), u(iv)), 1);
  EXPECT_EQ(EVP_EncryptUpdate(context.get(), bytes_of(out), &whole, u(text),
                              static_cast<int>(text.size())),
            1);
  EXPECT_EQ(EVP_EncryptFinal_ex(context.get(), bytes_of(out) + whole, &rest), 1);
  out.resize(static_cast<size_t>(whole + rest));
  return out;
}

// The vectors of NIST SP 800-38A, F.2.5 and F.2.6; the block of padding behind them is this key's.
TEST_F(AesTest, PublishedVectors) {
  const std::string known_key =
      from_hex("603deb1015ca71be2b73aef0857d77811f352c073b6108d72d9810a30914dff4");
  const std::string known_iv = from_hex("000102030405060708090a0b0c0d0e0f");
  const std::string plain =
      from_hex("6bc1bee22e409f96e93d7e117393172aae2d8a571e03ac9c9eb76fac45af8e51"
               "30c81c46a35ce411e5fbc1191a0a52eff69f2445df4f9b17ad2b417be66c3710");
  const std::string cipher =
      from_hex("f58c4c04d6e5f1ba779eabfb5f7bfbd69cfc4e967edb808d679f777bc6702c7d"
               "39f23369a9d9bacfa530e26304231461b2eb05e2c39be9fcda6c19078c6a9d1b");
  // The padding, which the vectors leave out, is what EVP makes of them.
  std::string padded = evp_encrypt(known_key, known_iv, plain);
  ASSERT_EQ(to_hex(padded.substr(0, 64)), to_hex(cipher));
  COMN_SYMKEY *const loaded = load(known_key, known_iv);
  GuardedBuffer out(64);
  CS_UINT length = 0;
  EXPECT_EQ(comn_symkey_decrypt(loaded, bytes_of(padded), 80, out.data(), 64, &length), CS_SUCCEED);
  EXPECT_EQ(length, 64U);
  EXPECT_EQ(out.contents(), plain);
  EXPECT_EQ(comn_drop_symkey(loaded), CS_SUCCEED);
}

TEST_F(AesTest, EncryptsAsEvpDoes) {
  for (const size_t length : {0, 1, 15, 16, 17, 31, 32, 33, 1000, 65536}) {
    const std::string text = pattern(length), cipher = encrypt(text);
    EXPECT_EQ(cipher, evp_encrypt(key_bytes(), iv(), text)) << length;
    EXPECT_EQ(encrypt(text), cipher); // every text starts from the vector that was set
  }
}

TEST_F(AesTest, DecryptsWhatItEncrypted) {
  COMN_SYMKEY *const loaded = load(key_bytes(), iv());
  for (const size_t length : {0, 1, 15, 16, 17, 32, 65535}) {
    const std::string text = pattern(length);
    std::string cipher = encrypt(text);
    GuardedBuffer out(length);
    CS_UINT decrypted = 77;
    EXPECT_EQ(comn_symkey_decrypt(loaded, bytes_of(cipher), static_cast<CS_UINT>(cipher.size()),
                                  out.data(), static_cast<CS_UINT>(length), &decrypted),
              CS_SUCCEED)
        << length;
    EXPECT_EQ(decrypted, length);
    EXPECT_EQ(out.contents(), text);
    // In place.
    EXPECT_EQ(comn_symkey_decrypt(loaded, bytes_of(cipher), static_cast<CS_UINT>(cipher.size()),
                                  bytes_of(cipher), static_cast<CS_UINT>(cipher.size()),
                                  &decrypted),
              CS_SUCCEED);
    EXPECT_EQ(cipher.substr(0, decrypted), text);
  }
  EXPECT_EQ(comn_drop_symkey(loaded), CS_SUCCEED);
}

TEST_F(AesTest, TooLittleRoom) {
  for (const size_t length : {0, 15, 16, 33}) {
    std::string text = pattern(length), cipher = encrypt(text);
    GuardedBuffer out(cipher.size());
    CS_UINT result = 77;
    EXPECT_EQ(comn_symkey_encrypt(key, bytes_of(text), static_cast<CS_UINT>(length), out.data(),
                                  static_cast<CS_UINT>(cipher.size() - 1), &result),
              CS_FAIL);
    EXPECT_EQ(result, 77U);
    EXPECT_TRUE(out.is_untouched());
    if (length == 0)
      continue;
    COMN_SYMKEY *const loaded = load(key_bytes(), iv());
    for (const size_t lacking : {size_t{1}, length}) {
      GuardedBuffer room(length - lacking);
      EXPECT_EQ(comn_symkey_decrypt(loaded, bytes_of(cipher), static_cast<CS_UINT>(cipher.size()),
                                    room.data(), static_cast<CS_UINT>(room.size()), &result),
                CS_FAIL);
      EXPECT_EQ(result, 77U);
      // Nothing of the text is left in the room.
      EXPECT_TRUE(length < 17 || room.contents().find(text.substr(0, 16)) == std::string::npos);
    }
    EXPECT_EQ(comn_drop_symkey(loaded), CS_SUCCEED);
  }
}

TEST_F(AesTest, DamagedTexts) {
  COMN_SYMKEY *const loaded = load(key_bytes(), iv());
  const std::string cipher = encrypt(pattern(40));
  const auto decrypt = [&](std::string text) {
    GuardedBuffer out(64);
    CS_UINT length = 77;
    const CS_RETCODE result = comn_symkey_decrypt(
        loaded, bytes_of(text), static_cast<CS_UINT>(text.size()), out.data(), 64, &length);
    if (result != CS_SUCCEED) {
      EXPECT_EQ(length, 77U);
      EXPECT_EQ(out.contents().find(pattern(16)), std::string::npos);
    }
    return result;
  };
  EXPECT_EQ(decrypt(cipher), CS_SUCCEED);
  EXPECT_EQ(decrypt(""), CS_FAIL);
  EXPECT_EQ(decrypt(cipher.substr(0, 47)), CS_FAIL);
  EXPECT_EQ(decrypt(cipher.substr(0, 15)), CS_FAIL);
  std::string padding = cipher;
  padding[31] = static_cast<char>(padding[31] ^ 0x80); // turns a bit of the last byte of padding
  EXPECT_EQ(decrypt(padding), CS_FAIL);
  EXPECT_EQ(comn_drop_symkey(loaded), CS_SUCCEED);
}

TEST_F(AesTest, ALoadedKeyNeedsAVector) {
  std::string bytes = key_bytes(), cipher = encrypt("text");
  COMN_SYMKEY *const loaded = comn_load_symkey(&context, bytes_of(bytes), 32);
  ASSERT_NE(loaded, nullptr);
  GuardedBuffer out(16);
  CS_UINT length = 77;
  EXPECT_EQ(comn_symkey_decrypt(loaded, bytes_of(cipher), 16, out.data(), 16, &length), CS_FAIL);
  std::string vector = iv();
  EXPECT_EQ(comn_symkey_set_iv(loaded, bytes_of(vector)), CS_SUCCEED);
  EXPECT_EQ(comn_symkey_decrypt(loaded, bytes_of(cipher), 16, out.data(), 16, &length), CS_SUCCEED);
  EXPECT_EQ(out.contents(length), "text");
  EXPECT_EQ(comn_drop_symkey(loaded), CS_SUCCEED);
}

TEST_F(AesTest, KeysAndVectorsDiffer) {
  std::set<std::string> seen;
  for (int i = 0; i < 16; ++i) {
    COMN_SYMKEY *const other = comn_create_symkey(&context);
    ASSERT_NE(other, nullptr);
    seen.emplace(other->encoded_symkey_buf, other->encoded_symkey_buf + 32);
    seen.emplace(other->iv, other->iv + 16);
    std::string drawn(16, '\0');
    EXPECT_EQ(comn_symkey_generate_iv(other, bytes_of(drawn)), CS_SUCCEED);
    seen.insert(drawn);
    EXPECT_EQ(comn_drop_symkey(other), CS_SUCCEED);
  }
  EXPECT_EQ(seen.size(), 48U);
}

// A refused key leaves the provider's cipher and its connection behind, deliberately.
TEST_F(VelcryptoTest, KeysOfOtherLengthsAreRefused) {
  std::string bytes(32, 'k');
  CCLCipherCtx *cipher = nullptr;
  CCLSecretKey *key = nullptr;
  auto *const record = static_cast<NETENC_CONTEXT *>(context.ctxcclctx);
  for (const size_t length : {0, 16, 24, 31, 33})
    EXPECT_EQ(factory()->functions->createSecretKeyByBlob(factory(), bytes_of(bytes), length,
                                                          record->cipherparams, &key),
              VELCRYPTO_EINVAL);
  EXPECT_EQ(key, nullptr);
  ASSERT_EQ(
      factory()->functions->createCipherCtxEncryption(factory(), record->cipherparams, &cipher),
      VELCRYPTO_OK);
  size_t length = 77;
  uint8_t out[16];
  EXPECT_EQ(cipher->functions->all(cipher, bytes_of(bytes), 1, out, 16, &length), VELCRYPTO_ESTATE);
  EXPECT_EQ(cipher->functions->setIV(cipher, bytes_of(bytes), 15), VELCRYPTO_EINVAL);
  EXPECT_EQ(cipher->functions->setIV(cipher, bytes_of(bytes), 16), VELCRYPTO_OK);
  EXPECT_EQ(cipher->functions->all(cipher, bytes_of(bytes), 1, out, 16, &length), VELCRYPTO_ESTATE);
  EXPECT_EQ(length, 77U);
  EXPECT_EQ(cipher->functions->release(cipher), 0);
}

// ---- the openssl command ----

class Folder {
public:
  Folder() {
    std::string name = testing::TempDir() + "zrvtest_crypto_XXXXXX";
    path = mkdtemp(name.data());
  }
  ~Folder() { std::filesystem::remove_all(path); }
  Folder(const Folder &) = delete;
  Folder &operator=(const Folder &) = delete;

  std::string name(const std::string &file) const { return (path / file).string(); }
  void write(const std::string &file, const std::string &bytes) const {
    std::ofstream(path / file, std::ios::binary) << bytes;
  }
  std::string read(const std::string &file) const {
    std::ifstream stream(path / file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }
  // Runs the openssl command in the folder.
  void openssl(const std::string &arguments) const {
    const std::string line = "cd '" + path.string() + "' && openssl " + arguments + " 2>errors";
    EXPECT_EQ(std::system(line.c_str()), 0) << line << "\n" << read("errors");
  }

private:
  std::filesystem::path path;
};

TEST_F(AesTest, TheCommandAndTheLibraryReadEachOther) {
  const Folder folder;
  const std::string text = pattern(1000);
  const std::string options = "enc -aes-256-cbc -K " + to_hex(key_bytes()) + " -iv " + to_hex(iv());
  folder.write("cipher", encrypt(text));
  folder.openssl(options + " -d -in cipher -out plain");
  EXPECT_EQ(folder.read("plain"), text);

  folder.openssl(options + " -in plain -out back");
  std::string cipher = folder.read("back");
  COMN_SYMKEY *const loaded = load(key_bytes(), iv());
  GuardedBuffer out(1000);
  CS_UINT length = 0;
  EXPECT_EQ(comn_symkey_decrypt(loaded, bytes_of(cipher), static_cast<CS_UINT>(cipher.size()),
                                out.data(), 1000, &length),
            CS_SUCCEED);
  EXPECT_EQ(out.contents(), text);
  EXPECT_EQ(comn_drop_symkey(loaded), CS_SUCCEED);
}

// ---- RSA ----

// One pair for all: making one takes its time. It has a context of its own.
class RsaTest : public VelcryptoTest {
protected:
  RsaTest() : pair(comn_keypair_create(&context, bits)) {
    EXPECT_EQ(com_cclconn_alloc(&context, &connection), CS_SUCCEED);
  }
  ~RsaTest() override {
    EXPECT_EQ(com_cclconn_drop(connection), CS_SUCCEED);
    comn_keypair_delete(pair);
  }

  std::string pem() const {
    return {reinterpret_cast<char *>(comn_keypair_get_public_key(pair)),
            comn_keypair_get_public_key_length(pair)};
  }
  CS_RETCODE encrypt(std::string text, std::string key, std::string &cipher, CS_INT room = size) {
    GuardedBuffer out(static_cast<size_t>(room));
    CS_INT length = 77;
    const CS_RETCODE result = com_encrypt_string(
        context.ctxcclctx, connection, bytes_of(text), static_cast<CS_INT>(text.size()),
        bytes_of(key), static_cast<CS_INT>(key.size()), out.data(), room, &length);
    if (result == CS_SUCCEED) {
      EXPECT_EQ(length, size);
      cipher = out.contents(static_cast<size_t>(length));
    } else {
      EXPECT_EQ(length, 77);
      EXPECT_TRUE(out.is_untouched());
    }
    return result;
  }
  CS_RETCODE decrypt(std::string cipher, std::string &text, size_t room = size) {
    GuardedBuffer out(room);
    CS_UINT length = 77;
    const CS_RETCODE result =
        comn_keypair_privkey_decrypt(pair, bytes_of(cipher), static_cast<CS_UINT>(cipher.size()),
                                     out.data(), static_cast<CS_UINT>(room), &length);
    if (result == CS_SUCCEED) {
      text = out.contents(length);
      EXPECT_TRUE(out.is_untouched(length));
    } else {
      EXPECT_EQ(length, 77U);
      EXPECT_TRUE(out.is_untouched());
    }
    return result;
  }

  static constexpr CS_INT bits = 1024; // what the tests have time for
  static constexpr CS_INT size = bits / 8;
  COMN_KEYPAIR *const pair;
  CS_VOID *connection = nullptr;
};

TEST_F(RsaTest, PublicKeyIsPem) {
  const std::string text = pem();
  EXPECT_EQ(text.substr(0, 31), "-----BEGIN RSA PUBLIC KEY-----\n");
  EXPECT_EQ(text.substr(text.size() - 29), "-----END RSA PUBLIC KEY-----\n");
  EXPECT_EQ(text.find('\0'), std::string::npos);
  EXPECT_LT(text.size(), static_cast<size_t>(bits));
}

TEST_F(RsaTest, RoundTrips) {
  const size_t longest = size - 42;
  for (const size_t length : {size_t{0}, size_t{1}, size_t{20}, longest}) {
    std::string cipher, text;
    ASSERT_EQ(encrypt(pattern(length), pem(), cipher), CS_SUCCEED) << length;
    EXPECT_EQ(decrypt(cipher, text), CS_SUCCEED);
    EXPECT_EQ(text, pattern(length));
    text = "untouched";
    EXPECT_EQ(decrypt(cipher, text, length), CS_SUCCEED);
    EXPECT_EQ(text, pattern(length));
    EXPECT_TRUE(length == 0 || decrypt(cipher, text, length - 1) == CS_FAIL);
  }
  std::string cipher, again;
  EXPECT_EQ(encrypt(pattern(longest + 1), pem(), cipher), CS_FAIL);
  EXPECT_EQ(encrypt("x", pem(), cipher, size - 1), CS_FAIL);
  EXPECT_EQ(encrypt("x", pem(), cipher), CS_SUCCEED);
  EXPECT_EQ(encrypt("x", pem(), again), CS_SUCCEED);
  EXPECT_NE(cipher, again); // the padding is random
}

TEST_F(RsaTest, WrongTexts) {
  std::string cipher, text = "untouched";
  ASSERT_EQ(encrypt("secret", pem(), cipher), CS_SUCCEED);
  for (const size_t at : {size_t{0}, size_t{64}, size_t{size - 1}}) {
    std::string damaged = cipher;
    damaged[at] = static_cast<char>(damaged[at] ^ 1);
    EXPECT_EQ(decrypt(damaged, text), CS_FAIL) << at;
  }
  EXPECT_EQ(decrypt("", text), CS_FAIL);
  EXPECT_EQ(decrypt(cipher.substr(1), text), CS_FAIL);
  EXPECT_EQ(decrypt(cipher + '\0', text), CS_FAIL);
  // As a number a text with a zero in front is the same without it; one in 256 has one.
  do
    ASSERT_EQ(encrypt("secret", pem(), cipher), CS_SUCCEED);
  while (cipher[0] != '\0');
  EXPECT_EQ(decrypt(cipher.substr(1), text), CS_FAIL);
  EXPECT_EQ(decrypt('\0' + cipher, text), CS_FAIL);
  COMN_KEYPAIR *const other = comn_keypair_create(&context, bits);
  const std::string other_pem(reinterpret_cast<char *>(comn_keypair_get_public_key(other)),
                              comn_keypair_get_public_key_length(other));
  ASSERT_EQ(encrypt("secret", other_pem, cipher), CS_SUCCEED);
  EXPECT_EQ(decrypt(cipher, text), CS_FAIL);
  comn_keypair_delete(other);
  EXPECT_EQ(text, "untouched");
}

TEST_F(RsaTest, TheCommandAndTheLibraryReadEachOther) {
  const Folder folder;
  folder.openssl("genpkey -algorithm RSA -pkeyopt rsa_keygen_bits:1024 -out private.pem");
  folder.openssl("pkey -in private.pem -pubout -out public.pem");
  folder.openssl("rsa -in private.pem -RSAPublicKey_out -out public1.pem");
  folder.openssl("pkey -in private.pem -pubout -outform DER -out public.der");
  folder.openssl("rsa -in private.pem -RSAPublicKey_out -outform DER -out public1.der");
  for (const char *const file : {"public.pem", "public1.pem", "public.der", "public1.der"}) {
    SCOPED_TRACE(file);
    std::string cipher;
    ASSERT_EQ(encrypt("from the library", folder.read(file), cipher), CS_SUCCEED);
    folder.write("cipher", cipher);
    folder.openssl("pkeyutl -decrypt -inkey private.pem -pkeyopt rsa_padding_mode:oaep -in cipher "
                   "-out plain");
    EXPECT_EQ(folder.read("plain"), "from the library");
  }
  folder.write("ours1.pem", pem());
  folder.openssl("rsa -RSAPublicKey_in -in ours1.pem -pubout -out ours.pem");
  folder.write("plain", "from the command");
  folder.openssl("pkeyutl -encrypt -pubin -inkey ours.pem -pkeyopt rsa_padding_mode:oaep -in plain "
                 "-out cipher");
  std::string text;
  EXPECT_EQ(decrypt(folder.read("cipher"), text), CS_SUCCEED);
  EXPECT_EQ(text, "from the command");
}

TEST_F(RsaTest, WhatIsNoPublicKey) {
  const Folder folder;
  folder.openssl("genpkey -algorithm RSA -pkeyopt rsa_keygen_bits:1024 -out private.pem");
  folder.openssl("pkcs8 -topk8 -in private.pem -out locked.pem -passout pass:secret");
  folder.openssl("genpkey -algorithm EC -pkeyopt ec_paramgen_curve:P-256 -out curve.pem");
  folder.openssl("pkey -in curve.pem -pubout -out curve_public.pem");
  std::string cipher;
  for (const char *const file : {"private.pem", "locked.pem", "curve.pem", "curve_public.pem"})
    EXPECT_EQ(encrypt("x", folder.read(file), cipher), CS_FAIL) << file;
  EXPECT_EQ(encrypt("x", "", cipher), CS_FAIL);
  EXPECT_EQ(encrypt("x", "no key", cipher), CS_FAIL);
  for (size_t length = 0; length < pem().size() - 1; length += 7)
    EXPECT_EQ(encrypt("x", pem().substr(0, length), cipher), CS_FAIL) << length;
}

TEST_F(RsaTest, Formats) {
  CCLPublicKey *const key = pair->ccl_pubkey;
  for (const auto format : {CCLKeyEncodeFormat_Raw, CCLKeyEncodeFormat_KeyInfo,
                            CCLKeyEncodeFormat_Raw_PEM, CCLKeyEncodeFormat_KeyInfo_PEM}) {
    size_t needed = 2048;
    std::string blob(needed, '\0'), cipher, text;
    ASSERT_EQ(key->functions->exportToBlob(key, format, bytes_of(blob), &needed), VELCRYPTO_OK);
    blob.resize(needed);
    ASSERT_EQ(encrypt("text", blob, cipher), CS_SUCCEED) << format;
    EXPECT_EQ(decrypt(cipher, text), CS_SUCCEED);

    GuardedBuffer exact(needed);
    size_t length = needed;
    EXPECT_EQ(key->functions->exportToBlob(key, format, exact.data(), &length), VELCRYPTO_OK);
    EXPECT_EQ(exact.contents(), blob);
    GuardedBuffer little(needed - 1);
    length = needed - 1;
    EXPECT_EQ(key->functions->exportToBlob(key, format, little.data(), &length), VELCRYPTO_ESPACE);
    EXPECT_EQ(length, needed - 1);
    EXPECT_TRUE(little.is_untouched());
  }
  uint8_t byte = 0;
  size_t length = 1;
  for (const auto format : {CCLKeyEncodeFormat_None, CCLKeyEncodeFormat_EC_uncompressed,
                            CCLKeyEncodeFormat_EC_compressed})
    EXPECT_EQ(key->functions->exportToBlob(key, format, &byte, &length), VELCRYPTO_EUNSUPPORTED);
}

TEST_F(VelcryptoTest, LengthsOfPairs) {
  for (const CS_INT bits : {-1, 0, 64, 511, 16385}) {
    EXPECT_EQ(comn_keypair_create(&context, bits), nullptr) << bits;
    EXPECT_EQ(memory.live_blocks(), 5U) << bits; // the table, the context's record and its objects
  }
  COMN_KEYPAIR *const pair = comn_keypair_create(&context, 512);
  EXPECT_NE(pair, nullptr);
  comn_keypair_delete(pair);
}

// ---- objects ----

TEST_F(VelcryptoTest, ObjectsCountReferences) {
  void *again = nullptr;
  CCLCryptFactory *const object = factory();
  EXPECT_EQ(object->functions->queryInterface(object, "CCLCryptFactory", &again), VELCRYPTO_OK);
  EXPECT_EQ(again, object);
  EXPECT_EQ(object->functions->addRef(object), VELCRYPTO_OK);
  const size_t blocks = memory.live_blocks();
  EXPECT_EQ(object->functions->release(object), 0);
  EXPECT_EQ(object->functions->release(object), 0);
  EXPECT_EQ(memory.live_blocks(), blocks);
  EXPECT_EQ(object->functions->queryInterface(object, "CCLCipherCtx", &again),
            VELCRYPTO_EUNSUPPORTED);
  EXPECT_EQ(object->functions->queryInterface(object, nullptr, &again), VELCRYPTO_EINVAL);
  EXPECT_EQ(object->functions->addRef(nullptr), VELCRYPTO_EINVAL);
  EXPECT_EQ(object->functions->release(nullptr), VELCRYPTO_EINVAL);
  size_t length = 0;
  EXPECT_EQ(object->functions->setProperty(object, "x", "y", 1), VELCRYPTO_EUNSUPPORTED);
  EXPECT_EQ(object->functions->getProperty(object, "x", &again, &length), VELCRYPTO_EUNSUPPORTED);
}

TEST_F(VelcryptoTest, UnknownAlgorithms) {
  CCLAlgParamCipher *cipher = nullptr;
  CCLAlgParamEncryption *encryption = nullptr;
  for (const char *const name : {"", "AES128;CBC", "AES256;ECB", "AES256;CBC "})
    EXPECT_EQ(factory()->functions->createAlgParamCipherByName(factory(), name, &cipher),
              VELCRYPTO_EUNSUPPORTED);
  EXPECT_EQ(factory()->functions->createAlgParamEncryptionByParams(factory(), "RSA", "PKCS1",
                                                                   &encryption),
            VELCRYPTO_EUNSUPPORTED);
  EXPECT_EQ(factory()->functions->createAlgParamEncryptionByParams(factory(), "EC", "PKCS_EME_OAEP",
                                                                   &encryption),
            VELCRYPTO_EUNSUPPORTED);
  EXPECT_EQ(cipher, nullptr);
  EXPECT_EQ(encryption, nullptr);
}

TEST_F(VelcryptoTest, EachAllocationOfAKeyAndOfAPairFails) {
  COMN_KEYPAIR *pair = nullptr;
  // 512 bits: a pair is made for each allocation.
  EXPECT_EQ(fail_each_allocation([] {},
                                 [&] {
                                   pair = comn_keypair_create(&context, 512);
                                   return pair == nullptr;
                                 },
                                 [&] { comn_keypair_delete(pair); }),
            16U);
}

// ---- the life of the library ----

TEST(VelcryptoLifeTest, UnloadWithObjectsAlive) {
  const AllocationProbe memory;
  CS_CONTEXT context{}, other{};
  COMN_SYMKEY *const key = comn_create_symkey(&context);
  COMN_KEYPAIR *const pair = comn_keypair_create(&context, 512);
  ASSERT_NE(key, nullptr);
  ASSERT_NE(pair, nullptr);
  EXPECT_EQ(comn_cryptolib_unload(), CS_SUCCEED);
  EXPECT_EQ(cclp, nullptr);

  // What is alive works on, beside what is made after another load.
  std::string text = "text";
  GuardedBuffer out(16);
  CS_UINT length = 0;
  EXPECT_EQ(comn_symkey_encrypt(key, bytes_of(text), 4, out.data(), 16, &length), CS_SUCCEED);
  COMN_SYMKEY *const another = comn_create_symkey(&other);
  ASSERT_NE(another, nullptr);
  EXPECT_EQ(comn_drop_symkey(another), CS_SUCCEED);
  EXPECT_EQ(com_cclcontext_drop(&other), CS_SUCCEED);
  EXPECT_EQ(comn_cryptolib_unload(), CS_SUCCEED);

  EXPECT_EQ(comn_symkey_encrypt(key, bytes_of(text), 4, out.data(), 16, &length), CS_SUCCEED);
  comn_keypair_delete(pair);
  EXPECT_EQ(comn_drop_symkey(key), CS_SUCCEED);
  EXPECT_EQ(com_cclcontext_drop(&context), CS_SUCCEED);
  EXPECT_EQ(memory.live_blocks(), 0U);
}

// A machine without the kernel says so at the load; none is taken in its place.
TEST(VelcryptoLifeTest, AFipsKernelThatIsNotThere) {
  if (OSSL_PROVIDER *const fips = OSSL_PROVIDER_try_load(nullptr, "fips", 1)) {
    OSSL_PROVIDER_unload(fips);
    GTEST_SKIP() << "this machine has a FIPS kernel";
  }
  ERR_clear_error();
  CS_CONTEXT context{};
  comn_set_fipsmode(1);
  EXPECT_EQ(com_cclcontext_alloc(&context), CS_FAIL);
  comn_set_fipsmode(0);
  EXPECT_EQ(cclp->velcr_set_property_int("FIPS_140_2_CRYPTO_KERNEL_ACTIVE", 1), VELCRYPTO_EKERNEL);
  EXPECT_EQ(cclp->velcr_set_property_int("FIPS_140_2_CRYPTO_KERNEL_ACTIVE", 2), VELCRYPTO_EINVAL);
  EXPECT_EQ(cclp->velcr_set_property_int("OTHER", 0), VELCRYPTO_EUNSUPPORTED);
  EXPECT_EQ(ERR_peek_error(), 0U);
  EXPECT_EQ(comn_cryptolib_unload(), CS_SUCCEED);
  EXPECT_EQ(com_cclcontext_alloc(&context), CS_SUCCEED);
  EXPECT_EQ(cclp->velcr_set_property_int("FIPS_140_2_CRYPTO_KERNEL_ACTIVE", 1), VELCRYPTO_EBUSY);
  EXPECT_EQ(com_cclcontext_drop(&context), CS_SUCCEED);
  EXPECT_EQ(comn_cryptolib_unload(), CS_SUCCEED);
}

TEST_F(VelcryptoTest, Lists) {
  CRYPTOLIB_F_LIST *const list = cclp->cryptolib_f_list;
  char text[64], file[4096];
  EXPECT_EQ(list->get_version(text, sizeof text), VELCRYPTO_OK);
  EXPECT_EQ(std::string(text).substr(0, 8), "OpenSSL ");
  EXPECT_EQ(list->get_DLL(file, sizeof file), VELCRYPTO_OK);
  EXPECT_EQ(std::filesystem::path(file).filename(), "libvelcrypto.so");
  EXPECT_EQ(list->get_DLL(file, 4), VELCRYPTO_ESPACE);
  EXPECT_STREQ(list->get_error_text(VELCRYPTO_OK), "success");
  EXPECT_STREQ(list->get_error_text(-1000), "unknown error");
  std::set<std::string> texts;
  for (RC result = 0; result >= VELCRYPTO_EDATA; --result)
    texts.insert(list->get_error_text(result));
  EXPECT_EQ(texts.size(), 9U);
  void *api = nullptr;
  EXPECT_EQ(list->get_API(0, "OTHER_1", &api), VELCRYPTO_EUNSUPPORTED);
  EXPECT_EQ(list->release_API(&api), VELCRYPTO_EINVAL);
  void *const block = list->sec_calloc(1, 4);
  EXPECT_EQ(memory.last_size(), 4U); // comn_calloc
  list->sec_free(list->sec_realloc(block, 8));
  EXPECT_EQ(memory.last_size(), 8U);
}

TEST_F(VelcryptoTest, WhatIsAbsentFails) {
  EXPECT_EQ(cclp->SSL_accept(), VELCRYPTO_EUNSUPPORTED);
  EXPECT_EQ(cclp->BIO_read(), VELCRYPTO_EUNSUPPORTED);
  EXPECT_EQ(cclp->SSL_new(), nullptr);
  EXPECT_EQ(cclp->BIO_new(), nullptr);
  EXPECT_EQ(cclp->velcr_init(), VELCRYPTO_OK);
  EXPECT_EQ(cclp->velcr_done(), VELCRYPTO_OK);
  CCLPkiFactory *pki = nullptr;
  EXPECT_EQ(cclp->sec_velccl_functions->create_pki_factory(&pki, 0, 0), VELCRYPTO_EUNSUPPORTED);
}

// ---- beside OpenSSL ----

// The names are the same, and each side has its own: neither takes the other's place.
TEST_F(VelcryptoTest, NamesDoNotCollide) {
  EXPECT_NE(reinterpret_cast<void *>(cclp->SSL_new), reinterpret_cast<void *>(&SSL_new));
  EXPECT_NE(reinterpret_cast<void *>(cclp->BIO_free), reinterpret_cast<void *>(&BIO_free));
  for (const char *const name :
       {"BIO_new", "BIO_free", "BIO_read", "BIO_write", "SSL_new", "SSL_read"}) {
    Dl_info ours, theirs;
    ASSERT_NE(dladdr(dlsym(ccl_handle, name), &ours), 0) << name;
    ASSERT_NE(dladdr(dlsym(RTLD_DEFAULT, name), &theirs), 0) << name;
    EXPECT_NE(std::string(ours.dli_fname).find("libvelcrypto.so"), std::string::npos) << name;
    EXPECT_EQ(std::string(theirs.dli_fname).find("libvelcrypto.so"), std::string::npos) << name;
  }
  BIO *const bio = BIO_new(BIO_s_mem());
  ASSERT_NE(bio, nullptr);
  char back[4] = {};
  EXPECT_EQ(BIO_write(bio, "abc", 3), 3);
  EXPECT_EQ(BIO_read(bio, back, 3), 3);
  EXPECT_STREQ(back, "abc");
  EXPECT_EQ(BIO_free(bio), 1);
  SSL_CTX *const tls = SSL_CTX_new(TLS_client_method());
  ASSERT_NE(tls, nullptr);
  SSL *const connection = SSL_new(tls);
  EXPECT_NE(connection, nullptr);
  SSL_free(connection);
  SSL_CTX_free(tls);
}

// The application's errors stay in its queue, and none of the provider's are left there.
TEST_F(AesTest, TheQueueOfErrorsIsTheApplications) {
  ERR_clear_error();
  std::string junk(16, 'x'), no_key = "no key";
  GuardedBuffer out(256);
  CS_UINT length = 0;
  CS_INT encrypted = 0;
  COMN_SYMKEY *const loaded = load(key_bytes(), iv());
  for (const bool has_error : {false, true}) {
    if (has_error)
      ERR_raise(ERR_LIB_USER, 42);
    const unsigned long before = ERR_peek_last_error();
    EXPECT_EQ(comn_symkey_decrypt(loaded, bytes_of(junk), 16, out.data(), 16, &length), CS_FAIL);
    EXPECT_EQ(com_encrypt_string(context.ctxcclctx, key->conn, bytes_of(junk), 1, bytes_of(no_key),
                                 6, out.data(), 256, &encrypted),
              CS_FAIL);
    EXPECT_EQ(comn_keypair_create(&context, 17000), nullptr);
    EXPECT_EQ(ERR_peek_last_error(), before);
  }
  EXPECT_EQ(ERR_GET_REASON(ERR_get_error()), 42);
  EXPECT_EQ(ERR_get_error(), 0U);
  EXPECT_EQ(comn_drop_symkey(loaded), CS_SUCCEED);
}

TEST(VelcryptoLifeTest, TwoContexts) {
  const AllocationProbe memory;
  CS_CONTEXT contexts[2] = {};
  COMN_SYMKEY *keys[2];
  for (int i = 0; i < 2; ++i) {
    keys[i] = comn_create_symkey(&contexts[i]);
    ASSERT_NE(keys[i], nullptr);
  }
  EXPECT_NE(contexts[0].ctxcclctx, contexts[1].ctxcclctx);
  // The first context goes, and the second one's key works on.
  EXPECT_EQ(comn_drop_symkey(keys[0]), CS_SUCCEED);
  EXPECT_EQ(com_cclcontext_drop(&contexts[0]), CS_SUCCEED);
  std::string text = "text";
  GuardedBuffer out(16);
  CS_UINT length = 0;
  EXPECT_EQ(comn_symkey_encrypt(keys[1], bytes_of(text), 4, out.data(), 16, &length), CS_SUCCEED);
  EXPECT_EQ(comn_drop_symkey(keys[1]), CS_SUCCEED);
  EXPECT_EQ(com_cclcontext_drop(&contexts[1]), CS_SUCCEED);
  EXPECT_EQ(comn_cryptolib_unload(), CS_SUCCEED);
  EXPECT_EQ(memory.live_blocks(), 0U);
}

} // namespace
