/*
 * comncrypto.h - the crypto provider, and the symmetric keys and key pairs that stand on it.
 *
 * All cryptography is done by a provider, libvelcrypto.so, which is opened when the first of these
 * functions needs it, and looked for where this library lies and where the dynamic linker looks.
 * velcrypto.h is its interface; docs/security.md tells what the parts are good for and how to give
 * the library another provider.
 *
 * Lengths are bytes. A null pointer where none is allowed, and what a comment calls fatal, is as in
 * comnlib.h. A result of the provider below 0 is CS_FAIL, the outputs unchanged; where a comment says
 * that a release is checked, any result but 0 is fatal, and what was to be released after it stays.
 *
 * The table of the provider is the process's, without a lock: the first com_cclcontext_alloc, and
 * comn_cryptolib_unload, must not run in two threads at once. A context, and an object made with it,
 * is used by one thread at a time.
 */
#ifndef ZRV_COMNCRYPTO_H
#define ZRV_COMNCRYPTO_H

#include "comnlib.h"
#include "velcrypto.h"

ZRV_BEGIN_DECLS

/* ---- the provider ---- */

/* The names of the provider, in the order in which they are looked up, then what they lead to. All but
 * the first three lists are null until the load has come that far. */
#define COM_CCL_FIELD(type, name) type *name;
typedef struct _cclapi_provider {
  VELCRYPTO_NAMES(COM_CCL_FIELD)
  CRYPTOLIB_F_LIST *cryptolib_f_list;
  SEC_KEYCONVERT_FUNCTIONS *sec_keyconvert_functions;
  SEC_VELCCL_FUNCTIONS *sec_velccl_functions;
  VELCRYPTO_CALL *SSL_set_cipher_suites; /* not looked up: null */
  VELCRYPTO_CALL *SSL_set_fd;            /* not looked up: null */
} CCLAPI_PROVIDER;
#undef COM_CCL_FIELD

extern ZRV_PRIVATE CCLAPI_PROVIDER *cclp; /* the table, null while nothing is loaded */
extern ZRV_PRIVATE CS_VOID *ccl_handle;   /* the library, as dlopen gave it */
extern ZRV_PRIVATE CS_BOOL Com_fipsmode;  /* what comn_set_fipsmode set; starts as 0 */

/*
 * Loads the provider, unless it is loaded, and delivers its table.
 *
 * retcclp  out  the table, a CCLAPI_PROVIDER; it belongs to this library, until comn_cryptolib_unload
 *
 * The first call opens the library, looks up every name, chooses the FIPS kernel or the ordinary one
 * (the FIPS kernel if the environment variable ZRVNCL_FIPS_MODE has a value, whatever it is, or if
 * comn_get_fipsmode says so), and asks for the lists of functions.
 *
 * Returns CS_SUCCEED; CS_FAIL when the library cannot be opened or there is no memory, and nothing is
 * left behind; CS_FAIL when a name is missing, the kernel cannot be had, or a list is refused. That
 * last kind of failure leaves the table as far as it was filled, and every later call delivers it with
 * CS_SUCCEED: only comn_cryptolib_unload makes way for another try.
 */
ZRV_API CS_RETCODE comn_cryptolib_load(CS_VOID **retcclp) ZRV_NOEXCEPT;

/*
 * Gives the lists of functions back (the releases of the two APIs are checked), frees the table and
 * closes the library. Without a table it does nothing. Contexts and objects that are still alive keep what they
 * hold of the provider of this installation, and are dropped afterwards as ever; a provider that does
 * not stay in memory behind its last dlclose does not allow that.
 *
 * Returns CS_SUCCEED; CS_FAIL when a checked release fails and the application catches the signal.
 */
ZRV_API CS_RETCODE comn_cryptolib_unload(void) ZRV_NOEXCEPT;

/* Whether the next load asks for the FIPS kernel even though ZRVNCL_FIPS_MODE is not set. */
ZRV_API void comn_set_fipsmode(CS_BOOL boolval) ZRV_NOEXCEPT;
ZRV_API CS_BOOL comn_get_fipsmode(void) ZRV_NOEXCEPT;

/* ---- records of contexts and of objects ---- */

/* What a context has of the provider: its ctxcclctx. */
typedef struct _netenc_context {
  CCLCryptFactory *factory;
  CCLAlgParamEncryption *encryptionparams; /* "RSA", "PKCS_EME_OAEP" */
  CCLAlgParamCipher *cipherparams;         /* "AES256;CBC" */
} NETENC_CONTEXT;

/* What an object has for public-key encryption. */
typedef struct _netenc_connection {
  CCLEncryptionCtx *encryptionctx;
  CCLDecryptionCtx *decryptionctx;
} NETENC_CONNECTION;

/*
 * Gives the context its record, a NETENC_CONTEXT, and loads the provider for it. The provider takes its
 * memory from comn_malloc and its kin from then on.
 *
 * Returns CS_SUCCEED, at once when the context has a record. CS_FAIL, the context unchanged, when the
 * load fails, which is reported as message COM_ERR_LOADLIB to the context's error callback, if it has
 * one; when a load that failed earlier left the table incomplete; when there is no memory; when the
 * provider refuses.
 */
ZRV_API CS_RETCODE com_cclcontext_alloc(CS_CONTEXT *context) ZRV_NOEXCEPT;

/* Releases the record and clears ctxcclctx; the releases are checked. A context without a record is left
 * alone. The provider stays loaded. Returns CS_SUCCEED; CS_FAIL when a checked release fails and the
 * application catches the signal. */
ZRV_API CS_RETCODE com_cclcontext_drop(CS_CONTEXT *context) ZRV_NOEXCEPT;

/*
 * Makes a NETENC_CONNECTION.
 *
 * csctx    in   a context with a record; one without it is fatal
 * cclconn  out  the record, to be given to com_cclconn_drop
 *
 * Returns CS_SUCCEED, or CS_FAIL, `*cclconn` unchanged, without memory or when the provider refuses.
 */
ZRV_API CS_RETCODE com_cclconn_alloc(CS_CONTEXT *csctx, CS_VOID **cclconn) ZRV_NOEXCEPT;

/* Releases a NETENC_CONNECTION; null is allowed. The releases are checked. Returns CS_SUCCEED. */
ZRV_API CS_RETCODE com_cclconn_drop(CS_VOID *cclconn) ZRV_NOEXCEPT;

/*
 * Encrypts a string with somebody's public key (RSA, OAEP with SHA-1).
 *
 * cclcontext        in   a NETENC_CONTEXT, as ctxcclctx is one
 * cclconn           in   a NETENC_CONNECTION
 * plaintext         in   may be null if its length is 0; otherwise null is fatal
 * plaintext_length  in   at most the length of the key less 42
 * pubkey            in   the key in PEM or DER
 * pubkeylen         in
 * encrypt_buf       out  as long as the key
 * encrypt_buflen    in   the room there
 * encrypt_len       out  the length of the result
 *
 * Returns CS_SUCCEED, or CS_FAIL, the output unchanged, for a negative length, a malformed key, a text
 * that is too long, or too little room; CS_FAIL with the output in place when the provider does not take
 * the key back. A length from the provider beyond the room is fatal.
 */
ZRV_API CS_RETCODE com_encrypt_string(CS_VOID *cclcontext, CS_VOID *cclconn, CS_BYTE *plaintext,
                                      CS_INT plaintext_length, CS_BYTE *pubkey, CS_INT pubkeylen,
                                      CS_BYTE *encrypt_buf, CS_INT encrypt_buflen,
                                      CS_INT *encrypt_len) ZRV_NOEXCEPT;

/* ---- symmetric keys ---- */

#define COMN_SYMKEY_MAXLEN 32 /* a key of AES-256 */
#define COMN_SYMKEY_IVLEN 16  /* its initialisation vector, and its block */

/* A key of AES-256 in CBC mode. A created key encrypts, a loaded one decrypts. */
typedef struct _comn_crypt_symkey {
  NETENC_CONTEXT *context; /* the context's, not owned */
  NETENC_CONNECTION *conn; /* owned, as are the next two */
  CCLCipherCtx *cipherctx;
  CCLSecretKey *ccl_symkey;
  unsigned char encoded_symkey_buf[COMN_SYMKEY_MAXLEN]; /* the key's bytes */
  size_t encoded_symkey_buflen;
  unsigned char iv[COMN_SYMKEY_IVLEN];
  size_t ivlen; /* COMN_SYMKEY_IVLEN once it is set, 0 before */
} COMN_SYMKEY;

/*
 * Makes a fresh random key with a random initialisation vector, for encryption. comn_load_symkey makes
 * one of known bytes, for decryption, without an initialisation vector: comn_symkey_set_iv is needed
 * before its first use.
 *
 * csctx      in  gets its record, unless it has one, and must outlive the key
 * key        in  the bytes, as comn_get_symkey gives them
 * keylength  in  0 to COMN_SYMKEY_MAXLEN; the provider of this installation takes 32 and nothing else
 *
 * Return the key, to be given to comn_drop_symkey; null when there is no memory, the length is out of
 * range, or the provider cannot be loaded or refuses. What the provider had made for a key that failed,
 * its connection included, is deliberately left to it; the record is wiped and freed.
 */
ZRV_API COMN_SYMKEY *comn_create_symkey(CS_CONTEXT *csctx) ZRV_NOEXCEPT;
ZRV_API COMN_SYMKEY *comn_load_symkey(CS_CONTEXT *csctx, CS_BYTE *key,
                                      CS_INT keylength) ZRV_NOEXCEPT;

/* Releases a key; null is allowed. The releases are checked. The bytes of the key are deliberately not
 * wiped in the record's memory: who wants that wipes encoded_symkey_buf first. Returns CS_SUCCEED. */
ZRV_API CS_RETCODE comn_drop_symkey(COMN_SYMKEY *symkeyinfo) ZRV_NOEXCEPT;

/* Copies the key's bytes to `key`, which has room for COMN_SYMKEY_MAXLEN, and their number to
 * `*keylength`. CS_SUCCEED; CS_FAIL for a null argument. */
ZRV_API CS_RETCODE comn_get_symkey(COMN_SYMKEY *symkeyinfo, CS_BYTE *key,
                                   CS_INT *keylength) ZRV_NOEXCEPT;

/*
 * Encrypt or decrypt a whole text, from the initialisation vector that was set last; the function must
 * be the one for the direction of the key, or the result is rubbish or a failure.
 *
 * plaintext, ciphertext   in   a ciphertext is a multiple of 16 bytes; input and output may be the same
 *                              place
 * *_buf, *_buflen         out  room for the result: a ciphertext is 1 to 16 bytes longer than its text,
 *                              to the next multiple of 16
 * ciphertext_len, plaintext_len
 *                         out  the length of the result
 *
 * Return CS_SUCCEED; CS_FAIL, the length unchanged, for a null key, output or length, too little room, a
 * damaged text, and a loaded key without an initialisation vector. A length from the provider beyond
 * the room is fatal.
 */
ZRV_API CS_RETCODE comn_symkey_encrypt(COMN_SYMKEY *symkeyinfo, CS_BYTE *plaintext,
                                       CS_UINT plaintext_len, CS_BYTE *ciphertext_buf,
                                       CS_UINT ciphertext_buflen,
                                       CS_UINT *ciphertext_len) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE comn_symkey_decrypt(COMN_SYMKEY *symkeyinfo, CS_BYTE *ciphertext,
                                       CS_UINT ciphertext_len, CS_BYTE *plaintext_buf,
                                       CS_UINT plaintext_buflen,
                                       CS_UINT *plaintext_len) ZRV_NOEXCEPT;

/* Copies the initialisation vector, COMN_SYMKEY_IVLEN bytes, out of the record. CS_SUCCEED; CS_FAIL for
 * a null argument. A key that has none is fatal, CS_FAIL. */
ZRV_API CS_RETCODE comn_symkey_get_iv(COMN_SYMKEY *symkeyinfo, CS_BYTE *initvector) ZRV_NOEXCEPT;

/* Sets the initialisation vector, COMN_SYMKEY_IVLEN bytes, in the provider and in the record.
 * CS_SUCCEED; CS_FAIL, the record unchanged, for a null argument and when the provider refuses. */
ZRV_API CS_RETCODE comn_symkey_set_iv(COMN_SYMKEY *symkeyinfo, CS_BYTE *initvector) ZRV_NOEXCEPT;

/* Draws COMN_SYMKEY_IVLEN random bytes into `buffer`, and sets nothing. CS_SUCCEED; CS_FAIL for a null
 * argument and when the provider refuses. */
ZRV_API CS_RETCODE comn_symkey_generate_iv(COMN_SYMKEY *symkeyinfo, CS_BYTE *buffer) ZRV_NOEXCEPT;

/* Gives a cleared key its records of the provider. CS_SUCCEED, or CS_FAIL. */
ZRV_PRIVATE CS_RETCODE symkey_init(CS_CONTEXT *csctx, COMN_SYMKEY *symkeyinfo) ZRV_NOEXCEPT;

/* ---- key pairs ---- */

/* An RSA key pair whose private half does not leave the provider. */
typedef struct _comn_crypt_keypair {
  NETENC_CONTEXT *context; /* the context's, not owned */
  NETENC_CONNECTION *conn; /* owned, as is all that follows */
  CCLPublicKey *ccl_pubkey;
  CCLPrivateKey *ccl_privkey;
  uint8_t *ccl_encoded_pubkey_buf;  /* the public key in PEM (PKCS #1) */
  size_t ccl_encoded_pubkey_buflen; /* its length; the block may be longer */
} COMN_KEYPAIR;

/*
 * Makes a key pair.
 *
 * csctx      in  gets its record, unless it has one, and must outlive the pair
 * keylength  in  in bits, and at the same time the room for the PEM of the public key in bytes: a key of
 *                2048 bits has more than it needs
 *
 * Returns the pair, to be given to comn_keypair_delete; null, nothing left behind, when the length is
 * below 1, the PEM has no room in it, there is no memory, or the provider cannot be loaded or refuses.
 */
ZRV_API COMN_KEYPAIR *comn_keypair_create(CS_CONTEXT *csctx, CS_INT keylength) ZRV_NOEXCEPT;

/* Releases a pair, which must not be null. The releases are checked. */
ZRV_API void comn_keypair_delete(COMN_KEYPAIR *ckp) ZRV_NOEXCEPT;

/* The public key in PEM, which lives as long as the pair and has no terminator of its own; and its
 * length in bytes. */
ZRV_API CS_BYTE *comn_keypair_get_public_key(COMN_KEYPAIR *ckp) ZRV_NOEXCEPT;
ZRV_API CS_UINT comn_keypair_get_public_key_length(COMN_KEYPAIR *ckp) ZRV_NOEXCEPT;

/*
 * Decrypts what was encrypted with the public key.
 *
 * ciphertext, ciphertext_len    in   as long as the key
 * decrypt_buf, decrypt_buf_len  out  room for the result
 * decrypted_lenp                out  its length
 *
 * Returns CS_SUCCEED, or CS_FAIL, the outputs unchanged, when the provider refuses: a wrong or damaged
 * text, or too little room. That failure alone does not pass through the trace, so that a trace does
 * not tell which texts were refused. A null pair, connection or `decrypted_lenp`, and a length from the
 * provider beyond the room, is fatal.
 */
ZRV_API CS_RETCODE comn_keypair_privkey_decrypt(COMN_KEYPAIR *ckp, CS_BYTE *ciphertext,
                                                CS_UINT ciphertext_len, CS_BYTE *decrypt_buf,
                                                CS_UINT decrypt_buf_len,
                                                CS_UINT *decrypted_lenp) ZRV_NOEXCEPT;

/* Gives a cleared pair its records of the provider. CS_SUCCEED, or CS_FAIL. */
ZRV_PRIVATE CS_RETCODE keypair_init(CS_CONTEXT *csctx, COMN_KEYPAIR *ckp) ZRV_NOEXCEPT;

/* Makes the keys of a pair that has its records, of `keylength` bits, and exports the public one.
 * CS_SUCCEED, or CS_FAIL, the pair unchanged. A context without a record is fatal. */
ZRV_PRIVATE CS_RETCODE keypair_generate(CS_CONTEXT *csctx, COMN_KEYPAIR *ckp,
                                        CS_INT keylength) ZRV_NOEXCEPT;

ZRV_END_DECLS

#endif
