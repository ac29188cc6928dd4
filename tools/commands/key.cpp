// zrvcomn key: symmetric keys and key pairs of the crypto provider. Keys come from files or from
// standard input, never from the arguments, which any process can read.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <unistd.h>
#include <vector>

#include <CLI/CLI.hpp>

#include "arguments.h"
#include "input.h"
#include "output.h"
#include "secret.h"
#include "status_names.h"
#include "subcommand.h"
#include "visible.h"
#include "zrvcomn/comncrypto.h"

namespace {

using namespace zrvtool;

constexpr CS_INT smallest_pair = 2048, largest_pair = 16384; // bits
constexpr size_t largest_text = 1 << 30;

struct Options {
  std::string action, key_file, iv_file, out_file;
  CS_INT bits = 3072;
  std::vector<std::string> rest;
};

// ---- the library ----

// A context with its record of the provider.
class Provider {
public:
  Provider() {
    if (com_cclcontext_alloc(&context) != CS_SUCCEED)
      throw StreamError(
          "the crypto provider libvelcrypto.so cannot be loaded, or not in the mode that "
          "ZRVNCL_FIPS_MODE asks for");
  }
  ~Provider() {
    com_cclcontext_drop(&context);
    comn_cryptolib_unload();
  }
  Provider(const Provider &) = delete;
  Provider &operator=(const Provider &) = delete;

  CS_CONTEXT *get() { return &context; }
  NETENC_CONTEXT *record() { return static_cast<NETENC_CONTEXT *>(context.ctxcclctx); }

private:
  CS_CONTEXT context{};
};

struct DropKey {
  void operator()(COMN_SYMKEY *key) const {
    com_secure_memset(key->encoded_symkey_buf, 0, sizeof key->encoded_symkey_buf);
    comn_drop_symkey(key);
  }
};
using Key = std::unique_ptr<COMN_SYMKEY, DropKey>;

struct DeletePair {
  void operator()(COMN_KEYPAIR *pair) const { comn_keypair_delete(pair); }
};

// The library takes its arguments without const.
template <class Owner>
CS_BYTE *bytes_of(Owner &secret) {
  return reinterpret_cast<CS_BYTE *>(secret.data());
}

[[noreturn]] void refuse(const std::string &what) {
  throw StreamError(what + ": CS_FAIL");
}

// A loaded key decrypts: one that is to encrypt gets a cipher in the other direction.
void turn_to_encryption(Provider &provider, COMN_SYMKEY &key) {
  CCLCryptFactory *const factory = provider.record()->factory;
  CCLCipherCtx *cipher = nullptr;
  if (factory->functions->createCipherCtxEncryption(factory, provider.record()->cipherparams,
                                                    &cipher) < 0)
    refuse("the provider makes no cipher");
  key.cipherctx->functions->release(key.cipherctx);
  key.cipherctx = cipher;
  if (cipher->functions->setKey(cipher, key.ccl_symkey) < 0)
    refuse("the provider takes no key");
}

// ---- input ----

// The first line of a file, or the next one of standard input, which spells `size` bytes.
void read_bytes(const std::string &file, const std::string &what, int size, Secret &bytes) {
  Secret line;
  if (file == "-") {
    read_line(line, what);
  } else {
    const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
      throw UsageError("cannot open " + in_quotes(file) + ": " + std::strerror(errno));
    try {
      read_line(line, what, descriptor, file);
    } catch (...) {
      close(descriptor);
      throw;
    }
    close(descriptor);
  }
  if (line.size() != 2 * size || !read_hex(line.text(), bytes.data()))
    throw StreamError("the " + what + " has " + std::to_string(2 * size) + " hexadecimal digits");
  bytes.resize(size);
}

// All that is left of standard input.
class Text {
public:
  Text() {
    while (true) {
      if (used == bytes.size())
        grow();
      const ssize_t got = read(STDIN_FILENO, bytes.data() + used, bytes.size() - used);
      if (got < 0 && errno == EINTR)
        continue;
      if (got < 0)
        throw StreamError(std::string("cannot read standard input: ") + std::strerror(errno));
      if (got == 0)
        break;
      used += static_cast<size_t>(got);
    }
  }

  CS_BYTE *data() { return bytes_of(bytes); }
  size_t size() const { return used; }

private:
  void grow() {
    if (bytes.size() >= largest_text)
      throw StreamError("the text is too long");
    SecretBuffer larger(2 * bytes.size());
    std::memcpy(larger.data(), bytes.data(), used);
    bytes.swap(larger);
  }

  SecretBuffer bytes{65536};
  size_t used = 0;
};

// ---- output ----

void write_bytes(int descriptor, const CS_BYTE *bytes, size_t length, const std::string &name) {
  while (length > 0) {
    const ssize_t count = write(descriptor, bytes, length);
    if (count < 0 && errno == EINTR)
      continue;
    if (count < 0)
      throw StreamError("cannot write " + name + ": " + std::strerror(errno));
    bytes += count;
    length -= static_cast<size_t>(count);
  }
}

// ---- actions ----

int create(Provider &provider, const Options &options) {
  const Key key(comn_create_symkey(provider.get()));
  if (!key)
    refuse("the provider makes no key");
  Secret line;
  for (const unsigned char byte : key->encoded_symkey_buf)
    for (const int nibble : {byte >> 4, byte & 15})
      line.append("0123456789abcdef"[nibble]);
  line.append('\n');
  int descriptor = STDOUT_FILENO;
  if (!options.out_file.empty()) {
    descriptor = open(options.out_file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (descriptor < 0)
      throw StreamError("cannot create " + options.out_file + ": " + std::strerror(errno));
  }
  const std::string name = options.out_file.empty() ? "the output" : options.out_file;
  write_bytes(descriptor, bytes_of(line), static_cast<size_t>(line.size()), name);
  if (descriptor != STDOUT_FILENO && close(descriptor) != 0)
    throw StreamError("cannot write " + name + ": " + std::strerror(errno));
  return exit_success;
}

// Encrypts or decrypts all of standard input. Without a file for it the initialisation vector stands
// before the encrypted text.
int transform(Provider &provider, const Options &options) {
  const bool encrypts = options.action == "encrypt";
  Secret bytes, iv;
  read_bytes(options.key_file, "key", COMN_SYMKEY_MAXLEN, bytes);
  const bool is_iv_given = !options.iv_file.empty();
  if (is_iv_given)
    read_bytes(options.iv_file, "initialisation vector", COMN_SYMKEY_IVLEN, iv);
  const Key key(comn_load_symkey(provider.get(), bytes_of(bytes), bytes.size()));
  if (!key)
    refuse("the provider takes no such key");

  Text text;
  const CS_BYTE *input = text.data();
  size_t length = text.size();
  if (!is_iv_given) {
    iv.resize(COMN_SYMKEY_IVLEN);
    if (encrypts) {
      if (comn_symkey_generate_iv(key.get(), bytes_of(iv)) != CS_SUCCEED)
        refuse("the provider draws no initialisation vector");
    } else {
      if (length < COMN_SYMKEY_IVLEN)
        throw StreamError("the text has no initialisation vector before it");
      std::memcpy(iv.data(), input, COMN_SYMKEY_IVLEN);
      input += COMN_SYMKEY_IVLEN;
      length -= COMN_SYMKEY_IVLEN;
    }
  }
  if (encrypts)
    turn_to_encryption(provider, *key);
  if (comn_symkey_set_iv(key.get(), bytes_of(iv)) != CS_SUCCEED)
    refuse("the provider takes no initialisation vector");
  SecretBuffer out(length + COMN_SYMKEY_IVLEN);
  CS_UINT used = 0;
  const CS_RETCODE status = (encrypts ? comn_symkey_encrypt : comn_symkey_decrypt)(
      key.get(), const_cast<CS_BYTE *>(input), static_cast<CS_UINT>(length), bytes_of(out),
      static_cast<CS_UINT>(out.size()), &used);
  if (status != CS_SUCCEED)
    throw StreamError(std::string(encrypts
                                      ? "the text cannot be encrypted: "
                                      : "the text is damaged, or was made with another key: ") +
                      status_name(status));
  if (encrypts && !is_iv_given)
    write_bytes(STDOUT_FILENO, bytes_of(iv), COMN_SYMKEY_IVLEN, "the output");
  write_bytes(STDOUT_FILENO, bytes_of(out), used, "the output");
  return exit_success;
}

// Makes a pair, shows its public key, and decrypts what comes for it, a line at a time.
int pair(Provider &provider, const Options &options) {
  const std::unique_ptr<COMN_KEYPAIR, DeletePair> keys(
      comn_keypair_create(provider.get(), options.bits));
  if (!keys)
    refuse("the provider makes no key pair of " + std::to_string(options.bits) + " bits");
  Writer out(STDOUT_FILENO);
  out.text.assign(reinterpret_cast<const char *>(comn_keypair_get_public_key(keys.get())),
                  comn_keypair_get_public_key_length(keys.get()));
  out.flush();
  const size_t size = static_cast<size_t>(options.bits) / 8;
  Values values;
  values.are_lines = true;
  const std::unique_ptr<Input> lines = values_input(values, [] {});
  int code = exit_success;
  for (InputValue line; lines->next(line);) {
    std::string cipher(size, '\0');
    SecretBuffer plain(size);
    const bool is_hex = line.text.size() == 2 * size && read_hex(line.text, cipher.data());
    CS_UINT length = 0;
    const CS_RETCODE status =
        is_hex
            ? comn_keypair_privkey_decrypt(keys.get(), bytes_of(cipher), static_cast<CS_UINT>(size),
                                           bytes_of(plain), static_cast<CS_UINT>(size), &length)
            : CS_FAIL;
    if (status != CS_SUCCEED) {
      std::fprintf(stderr, "zrvcomn key: line %llu: %s: %s\n",
                   static_cast<unsigned long long>(line.line),
                   is_hex ? "was not encrypted for this key"
                          : ("has not " + std::to_string(2 * size) + " hexadecimal digits").c_str(),
                   status_name(status).c_str());
      code = exit_failure;
      continue;
    }
    write_secret({plain.data(), length});
  }
  return code;
}

void check(const Options &options, bool is_key_given, bool is_bits_given) {
  const bool transforms = options.action == "encrypt" || options.action == "decrypt";
  if (!options.rest.empty())
    throw UsageError("keys and texts come from files or standard input, never from the arguments");
  if (transforms && !is_key_given)
    throw UsageError(options.action + " needs --key FILE");
  if (!transforms && (is_key_given || !options.iv_file.empty()))
    throw UsageError("--key and --iv are for encrypt and decrypt");
  if (options.action != "create" && !options.out_file.empty())
    throw UsageError("--out is for create");
  if (options.action != "pair" && is_bits_given)
    throw UsageError("--bits is for pair");
  if (options.bits % 8 != 0)
    throw UsageError("--bits is no multiple of 8");
}

Subcommand::Run add(CLI::App &app) {
  const auto options = std::make_shared<Options>();
  add_choice(app, "action", options->action, "ACTION", {"create", "encrypt", "decrypt", "pair"},
             "create, encrypt, decrypt or pair")
      ->required();
  app.add_option("rest", options->rest)->group(""); // taken, so that it is not repeated
  CLI::Option *const key =
      app.add_option("--key", options->key_file,
                     "encrypt, decrypt: the file of the key, '-' for standard input")
          ->type_name("FILE");
  app.add_option("--iv", options->iv_file,
                 "encrypt, decrypt: the file of the initialisation vector, likewise")
      ->type_name("FILE");
  app.add_option("--out", options->out_file, "create: a new file for the key, for its owner alone")
      ->type_name("FILE");
  CLI::Option *const bits = add_number(app, "--bits", options->bits, smallest_pair, largest_pair,
                                       "NUMBER", "pair: its length in bits (3072)");
  app.footer(
      "create makes a key of AES-256: 64 hexadecimal digits. encrypt and decrypt run all of\n"
      "standard input through AES-256 in CBC mode; without --iv each text gets a fresh\n"
      "initialisation vector, which stands before it. What is read as - comes first, a line each,\n"
      "the key before the vector. pair makes an RSA key pair, prints its public key, and decrypts\n"
      "each line of standard input, in hexadecimal digits, that was encrypted for it (OAEP). The\n"
      "private key goes with the command.\n"
      "\nNothing here authenticates a text: who can change it can change what comes out.\n"
      "\nExamples:\n"
      "  zrvcomn key create --out my.key\n"
      "  zrvcomn key encrypt --key my.key <text >text.enc\n"
      "  zrvcomn key decrypt --key my.key <text.enc\n"
      "  zrvcomn key pair --bits 2048\n"
      "\nExit codes: 0 done, 1 a text or line that was refused, no provider, 2 wrong usage.");
  return [options, key, bits](const std::vector<std::string> &more) {
    if (!more.empty())
      throw UsageError(
          "keys and texts come from files or standard input, never from the arguments");
    check(*options, key->count() > 0, bits->count() > 0);
    Provider provider;
    if (options->action == "create")
      return create(provider, *options);
    if (options->action == "pair")
      return pair(provider, *options);
    return transform(provider, *options);
  };
}

const Subcommand key("key", "Make keys, encrypt and decrypt with the crypto provider", add);

} // namespace
