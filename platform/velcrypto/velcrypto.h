/*
 * velcrypto.h - the interface of libvelcrypto: ciphers, key pairs and random bytes behind objects that
 * count their references.
 *
 * Nobody links with this library: it is opened at run time, and its names are looked up (docs/
 * security.md). Any library with the names and the interfaces below can stand in its place. The
 * names are the same as some of OpenSSL's, so this header gives their types and declares none of
 * them: it may be included beside OpenSSL's headers.
 *
 * What this one can do: AES-256 in CBC mode with the padding of PKCS #7; RSA key pairs; encryption
 * with RSA and OAEP (SHA-1, no label, which is what the name means by default); public keys in PEM and
 * DER; random bytes. It has no TLS layer, no I/O objects and no certificates: the names are there,
 * because who loads the library asks for all of them, and each function fails plainly.
 *
 * The work is OpenSSL's, in a library context of its own: an application that uses OpenSSL itself
 * shares neither settings nor providers nor its queue of errors with this library.
 *
 * A null argument where none is allowed is refused with VELCRYPTO_EINVAL. On any failure an output
 * object is left alone, and output buffers hold nothing of the result.
 */
#ifndef ZRV_VELCRYPTO_H
#define ZRV_VELCRYPTO_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A result: 0 or more is success, below 0 an error. */
typedef int RC;

#define VELCRYPTO_OK 0
#define VELCRYPTO_EINVAL (-1)       /* a null argument, or a length that cannot be */
#define VELCRYPTO_EMEMORY (-2)      /* no memory */
#define VELCRYPTO_EUNSUPPORTED (-3) /* this library has no such algorithm, interface or layer */
#define VELCRYPTO_EKERNEL (-4) /* the machine lacks the cryptographic kernel that was asked for */
#define VELCRYPTO_EBUSY (-5)   /* not while objects of the other kernel are alive */
#define VELCRYPTO_ESPACE (-6)  /* the result does not fit */
#define VELCRYPTO_ESTATE (-7)  /* a key or an initialisation vector has not been set */
#define VELCRYPTO_EDATA (-8)   /* malformed or damaged data, or a wrong key */

/* How a key is encoded. */
typedef enum {
  CCLKeyEncodeFormat_None = -1,
  CCLKeyEncodeFormat_Raw = 1,             /* DER, RSAPublicKey of PKCS #1 */
  CCLKeyEncodeFormat_KeyInfo = 2,         /* DER, SubjectPublicKeyInfo */
  CCLKeyEncodeFormat_EC_uncompressed = 3, /* not for RSA */
  CCLKeyEncodeFormat_EC_compressed = 4,   /* not for RSA */
  CCLKeyEncodeFormat_Raw_PEM = 4097,      /* "BEGIN RSA PUBLIC KEY" */
  CCLKeyEncodeFormat_KeyInfo_PEM = 4098   /* "BEGIN PUBLIC KEY" */
} CCLKeyEncodeFormat;

typedef enum {
  CCLCertificateEncodeFormat_None = -1,
  CCLCertificateEncodeFormat_Raw = 1,
  CCLCertificateEncodeFormat_PKCS7 = 2,
  CCLCertificateEncodeFormat_PEM = 3,
  CCLCertificateEncodeFormat_PEM_AND_COMMENT = 4
} CCLCertificateEncodeFormat;

typedef enum {
  CERT_ISSUER = 0,
  CERT_SUBJECT = 1,
  CERT_SUBJECT_ALT_NAME = 2,
  CERT_AIA_OCSP = 3,
  CERT_AIA_CAISSUERS = 4,
  CERT_DNAME = 5
} certentry_t;

/* ---- interfaces ---- */

/*
 * An object is a pointer to its interface, whose first word points to the list of its functions; the
 * object itself is the first argument of each. Every list begins with these five.
 *
 * queryInterface  the object again, with a reference of the caller's, under the name of its interface
 *                 ("CCLCipherCtx"); any other name is VELCRYPTO_EUNSUPPORTED
 * addRef          takes a reference
 * release         gives one back; the last one releases the object and wipes what was secret in it.
 *                 Returns 0, never the count
 * setProperty     these objects have no properties: VELCRYPTO_EUNSUPPORTED
 * getProperty     the same
 */
#define CCL_COMMON_SLOTS(interface)                                                                \
  RC (*queryInterface)(interface * self, const char *name, void **object);                         \
  RC (*addRef)(interface * self);                                                                  \
  RC (*release)(interface * self);                                                                 \
  RC (*setProperty)(interface * self, const char *name, const void *value, size_t length);         \
  RC (*getProperty)(interface * self, const char *name, void *value, size_t *length)

/* Declares an interface. */
#define CCL_INTERFACE(interface)                                                                   \
  typedef struct interface##_functions interface##_functions;                                      \
  typedef struct interface {                                                                       \
    const interface##_functions *functions;                                                        \
  } interface

/* Declares an interface that has the five slots alone. */
#define CCL_PLAIN_INTERFACE(interface)                                                             \
  CCL_INTERFACE(interface);                                                                        \
  struct interface##_functions {                                                                   \
    CCL_COMMON_SLOTS(interface);                                                                   \
  }

/* Parameters and keys. */
CCL_PLAIN_INTERFACE(CCLAlgParamCipher);
CCL_PLAIN_INTERFACE(CCLAlgParamEncryption);
CCL_PLAIN_INTERFACE(CCLAlgParamKeyPair);
CCL_PLAIN_INTERFACE(CCLSecretKey);
CCL_PLAIN_INTERFACE(CCLPrivateKey);

CCL_INTERFACE(CCLPublicKey);
struct CCLPublicKey_functions {
  CCL_COMMON_SLOTS(CCLPublicKey);
  /* Encodes the key into `buffer`. `*length` is its size in bytes, then the length of the encoding,
   * which has no terminator. */
  RC(*exportToBlob)
  (CCLPublicKey *self, CCLKeyEncodeFormat format, uint8_t *buffer, size_t *length);
};

/* A cipher in one direction. */
CCL_INTERFACE(CCLCipherCtx);
struct CCLCipherCtx_functions {
  CCL_COMMON_SLOTS(CCLCipherCtx);
  /* Transforms a whole text: every call starts anew from the initialisation vector that was set last.
   * `input` and `output` may be the same place, and must not overlap in any other way; `input` may be
   * null when `input_length`, in bytes and below 2^31 - 16, is 0. Encrypting adds 1 to 16 bytes;
   * decrypting wants a multiple of 16 and takes them off. */
  RC(*all)
  (CCLCipherCtx *self, const uint8_t *input, size_t input_length, uint8_t *output, size_t capacity,
   size_t *output_length);
  RC (*setKey)(CCLCipherCtx *self, CCLSecretKey *key);               /* copies the key */
  RC (*setIV)(CCLCipherCtx *self, const uint8_t *iv, size_t length); /* 16 bytes */
};

/* Encryption with a public key. */
CCL_INTERFACE(CCLEncryptionCtx);
struct CCLEncryptionCtx_functions {
  CCL_COMMON_SLOTS(CCLEncryptionCtx);
  RC (*init)(CCLEncryptionCtx *self, CCLPublicKey *key); /* takes what it needs of the key */
  /* The result is as long as the key, an input at most 42 bytes shorter. */
  RC(*encrypt)
  (CCLEncryptionCtx *self, const uint8_t *input, size_t input_length, uint8_t *output,
   size_t capacity, size_t *output_length);
};

/* Decryption with a private key, of texts as long as the key: VELCRYPTO_EDATA for any other. */
CCL_INTERFACE(CCLDecryptionCtx);
struct CCLDecryptionCtx_functions {
  CCL_COMMON_SLOTS(CCLDecryptionCtx);
  RC (*init)(CCLDecryptionCtx *self, CCLPrivateKey *key);
  RC(*decrypt)
  (CCLDecryptionCtx *self, const uint8_t *input, size_t input_length, uint8_t *output,
   size_t capacity, size_t *output_length);
};

/* What makes the others. Each object that it delivers comes with one reference, the caller's. */
CCL_INTERFACE(CCLCryptFactory);
struct CCLCryptFactory_functions {
  CCL_COMMON_SLOTS(CCLCryptFactory);
  RC(*createAlgParamCipherByName)
  (CCLCryptFactory *self, const char *name, /* "AES256;CBC" */
   CCLAlgParamCipher **params);
  RC(*createAlgParamEncryptionByParams)
  (CCLCryptFactory *self, const char *algorithm, /* "RSA" */
   const char *padding,                          /* "PKCS_EME_OAEP" */
   CCLAlgParamEncryption **params);
  RC(*createCipherCtxEncryption)
  (CCLCryptFactory *self, CCLAlgParamCipher *params, CCLCipherCtx **context);
  RC(*createCipherCtxDecryption)
  (CCLCryptFactory *self, CCLAlgParamCipher *params, CCLCipherCtx **context);
  RC(*createSecretKeyByBlob)
  (CCLCryptFactory *self, const uint8_t *bytes, size_t length, /* 32 */
   CCLAlgParamCipher *params, CCLSecretKey **key);
  /* Key pairs of so many bits, 512 to 16384; below 2048 they protect nothing. */
  RC (*createAlgParamKeyPairRSA)(CCLCryptFactory *self, size_t bits, CCLAlgParamKeyPair **params);
  RC(*createKeyPair)
  (CCLCryptFactory *self, CCLAlgParamKeyPair *params, CCLPrivateKey **private_key,
   CCLPublicKey **public_key);
  /* An RSA key of 512 to 16384 bits in any of the formats above. */
  RC(*importPublicKey)
  (CCLCryptFactory *self, const uint8_t *bytes, size_t length, CCLPublicKey **key);
  RC(*createEncryptionCtx)
  (CCLCryptFactory *self, CCLAlgParamEncryption *params, CCLEncryptionCtx **context);
  RC(*createDecryptionCtx)
  (CCLCryptFactory *self, CCLAlgParamEncryption *params, CCLDecryptionCtx **context);
  RC (*rndGet)(CCLCryptFactory *self, uint8_t *bytes, size_t length); /* good enough for keys */
};

/* Certificates, which this library does not have. */
CCL_PLAIN_INTERFACE(CCLPkiFactory);
/* Makers of memory allocators, which it does not have either. */
CCL_PLAIN_INTERFACE(CCLMemoryAllocator);

/* ---- lists of functions ---- */

/* What every API list begins with. */
typedef struct api_common {
  const char *name; /* as get_API was asked for it */
  unsigned version;
} API_COMMON;

/* The list "VELCCL_1". */
typedef struct sec_velccl_functions {
  API_COMMON common;
  RC (*create_memory_allocator_on_blob)(CCLMemoryAllocator **allocator, void *blob, size_t size);
  RC (*create_memory_allocator)(CCLMemoryAllocator **allocator, unsigned flags);
  RC (*create_crypt_factory)(CCLCryptFactory **factory, unsigned zero, unsigned other_zero);
  RC (*set_default_crypt_factory)(CCLCryptFactory *factory);
  RC (*create_pki_factory)(CCLPkiFactory **factory, unsigned zero, unsigned other_zero);
} SEC_VELCCL_FUNCTIONS;

/* The list "SEC_KEYCONVERT_1": it is there and has nothing in it. */
typedef struct sec_keyconvert_functions {
  API_COMMON common;
} SEC_KEYCONVERT_FUNCTIONS;

/* The way to the API lists. Each list that was had is to be given back; the memory is the library's. */
typedef struct cryptolib_f_list {
  RC (*release)(struct cryptolib_f_list *list);
  RC (*get_version)(char *buffer, size_t size);               /* a line of text, cut to fit */
  RC (*get_API)(unsigned zero, const char *name, void **api); /* one of the lists above */
  RC (*release_API)(void **api);                              /* clears the pointer */
  const char *(*get_error_text)(RC result);                   /* static, English, never null */
  RC (*get_DLL)(char *buffer, size_t size);                   /* the file of this library */
  void *(*sec_malloc)(size_t size);                           /* the memory functions in use */
  void *(*sec_calloc)(size_t count, size_t size);
  void *(*sec_realloc)(void *block, size_t size);
  void (*sec_free)(void *block);
} CRYPTOLIB_F_LIST;

/* ---- names ---- */

/* The types of the exported functions. */

/* A function of a layer that this library lacks: it returns VELCRYPTO_EUNSUPPORTED, or null. */
typedef RC VELCRYPTO_CALL(void);
typedef void *VELCRYPTO_MAKER(void);

/* Start and end: there is nothing to do, VELCRYPTO_OK. */
typedef RC VELCRYPTO_LIFE(void);

/* Where the objects of this library take their memory from then on; all four are needed, else nothing
 * changes. An object goes back to where it came from. OpenSSL's own memory stays its own. */
typedef void VELCRYPTO_SET_MEMORY(void *(*allocate)(size_t),
                                  void *(*allocate_cleared)(size_t, size_t),
                                  void *(*resize)(void *, size_t), void (*release)(void *));

/*
 * The one property is "FIPS_140_2_CRYPTO_KERNEL_ACTIVE". 1 asks for OpenSSL's FIPS provider, set up in
 * its configuration file; where the machine has none, that is VELCRYPTO_EKERNEL. 0 asks for the
 * ordinary algorithms. VELCRYPTO_EBUSY while a list or an object of the other kind is in use; another
 * property is VELCRYPTO_EUNSUPPORTED, another value VELCRYPTO_EINVAL.
 */
typedef RC VELCRYPTO_SET_PROPERTY(const char *name, int value);

/*
 * Delivers the list of functions, with a reference of the caller's.
 *
 * version      in   of the list that the caller knows: 2
 * language     in   of the texts of errors; they are always English
 * list         out
 * granted      out  the version of the list
 * application  in   the name of the application; not used
 * flags        in   0
 */
typedef RC VELCRYPTO_GET_LIST(unsigned version, const char *language, CRYPTOLIB_F_LIST **list,
                              unsigned *granted, const char *application, unsigned flags);

/* The names that a user of the library looks up, in this order, and behind them, last, the way to
 * everything else: cryptolib_get_f_list, a VELCRYPTO_GET_LIST. */
#define VELCRYPTO_NAMES(NAME)                                                                      \
  NAME(VELCRYPTO_CALL, aux_get_Certificate_n_from_Certificates)                                    \
  NAME(VELCRYPTO_CALL, aux_get_validity_of_Certificate)                                            \
  NAME(VELCRYPTO_CALL, BIO_free)                                                                   \
  NAME(VELCRYPTO_CALL, BIO_get_amount_read)                                                        \
  NAME(VELCRYPTO_MAKER, BIO_mem_new)                                                               \
  NAME(VELCRYPTO_MAKER, BIO_new)                                                                   \
  NAME(VELCRYPTO_CALL, BIO_pending_read)                                                           \
  NAME(VELCRYPTO_CALL, BIO_pending_write)                                                          \
  NAME(VELCRYPTO_CALL, BIO_read)                                                                   \
  NAME(VELCRYPTO_CALL, BIO_socket_set_fd)                                                          \
  NAME(VELCRYPTO_CALL, BIO_write)                                                                  \
  NAME(VELCRYPTO_SET_MEMORY, cryptolib_set_memory_callback)                                        \
  NAME(VELCRYPTO_CALL, vel_delete_memory_PSE)                                                      \
  NAME(VELCRYPTO_LIFE, velcr_done)                                                                 \
  NAME(VELCRYPTO_LIFE, velcr_init)                                                                 \
  NAME(VELCRYPTO_SET_PROPERTY, velcr_set_property_int)                                             \
  NAME(VELCRYPTO_CALL, Velcryptolib_RegisterTraceCallback)                                         \
  NAME(VELCRYPTO_CALL, Velcryptolib_UnregisterTraceCallback)                                       \
  NAME(VELCRYPTO_MAKER, velsecu_create_CertEntryList)                                              \
  NAME(VELCRYPTO_CALL, velsecu_free_CertEntryList)                                                 \
  NAME(VELCRYPTO_CALL, SSL_API_cleanup)                                                            \
  NAME(VELCRYPTO_CALL, SSL_API_get_last_error)                                                     \
  NAME(VELCRYPTO_CALL, SSL_API_startup)                                                            \
  NAME(VELCRYPTO_CALL, SSL_accept)                                                                 \
  NAME(VELCRYPTO_CALL, SSL_check_last_io)                                                          \
  NAME(VELCRYPTO_MAKER, SSL_CIPHER_SUITE_get_name_info)                                            \
  NAME(VELCRYPTO_CALL, SSL_connect)                                                                \
  NAME(VELCRYPTO_MAKER, SSL_CTX_new)                                                               \
  NAME(VELCRYPTO_CALL, SSL_CTX_free)                                                               \
  NAME(VELCRYPTO_CALL, SSL_CTX_set_default_cipher_suites)                                          \
  NAME(VELCRYPTO_CALL, SSL_CTX_set_default_pse_by_name)                                            \
  NAME(VELCRYPTO_CALL, SSL_CTX_set_default_verify_mode)                                            \
  NAME(VELCRYPTO_CALL, SSL_CTX_set_options)                                                        \
  NAME(VELCRYPTO_CALL, SSL_CTX_set_protocol_version_flags)                                         \
  NAME(VELCRYPTO_CALL, SSL_do_handshake)                                                           \
  NAME(VELCRYPTO_CALL, SSL_free)                                                                   \
  NAME(VELCRYPTO_CALL, SSL_get_cipher_suite_used)                                                  \
  NAME(VELCRYPTO_MAKER, SSL_get_peer_certificates)                                                 \
  NAME(VELCRYPTO_CALL, SSL_get_protocol_version_numbers)                                           \
  NAME(VELCRYPTO_MAKER, SSL_get_state_description_long)                                            \
  NAME(VELCRYPTO_MAKER, SSL_new)                                                                   \
  NAME(VELCRYPTO_CALL, SSL_pending)                                                                \
  NAME(VELCRYPTO_CALL, SSL_read)                                                                   \
  NAME(VELCRYPTO_CALL, SSL_renegotiate)                                                            \
  NAME(VELCRYPTO_CALL, SSL_set_bio)                                                                \
  NAME(VELCRYPTO_CALL, SSL_set_type)                                                               \
  NAME(VELCRYPTO_CALL, SSL_set_read_ahead_mode)                                                    \
  NAME(VELCRYPTO_CALL, SSL_set_shutdown_mode)                                                      \
  NAME(VELCRYPTO_CALL, SSL_set_verify_mode)                                                        \
  NAME(VELCRYPTO_CALL, SSL_shutdown)                                                               \
  NAME(VELCRYPTO_CALL, SSL_write)

#ifdef __cplusplus
}
#endif

#endif
