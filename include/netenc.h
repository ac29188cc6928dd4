/*
 * netenc.h - passwords: the password cipher, its text and challenge forms, and the memory scramble.
 *
 * This cipher exists so that clients and servers that are already deployed keep understanding one
 * another. It is not protection by today's standards: the key table is part of the program, so who
 * has the program has the keys. New protocols use the symmetric keys and key pairs of the crypto
 * provider, over a channel that is encrypted as a whole; see docs/passwords.md.
 *
 * Texts are counted byte strings, not NUL-terminated; lengths are bytes. The tables are built on
 * first use by one thread (see ncl_call_once); after that everything but the scramble's first call
 * only reads them.
 */
#ifndef ZRV_NETENC_H
#define ZRV_NETENC_H

#include "comnlib.h"

ZRV_BEGIN_DECLS

typedef unsigned char OCTET;
typedef OCTET QOCTET[4];

/* Sizes in bytes. */
#define COM_ENC_MAXTEXT 30  /* the longest text of a string block */
#define COM_ENC_SALTLEN 8   /* a salt */
#define COM_ENC_BLOCKLEN 33 /* a string block: 32 enciphered bytes and the length */
#define COM_ENC_HEXLEN 70   /* its hexadecimal form: "0x01" and two digits a byte */
#define COM_ENC_TDSLEN 8    /* a challenge, and the response to it */

/*
 * Enciphers a text into a string block.
 *
 * handle            in   not read
 * plaintext         in   the text; may be null if its length is 0
 * plaintext_length  in   cut to COM_ENC_MAXTEXT
 * salt, saltlen     in   COM_ENC_SALTLEN bytes
 * output            out  COM_ENC_BLOCKLEN bytes
 * outlen            out  COM_ENC_BLOCKLEN, or 0 if the salt has another length or the text's length
 *                        is negative; `output` is then unchanged
 *
 * Always CS_SUCCEED. A null `salt`, `output` or `outlen`, and a null text with a length other than
 * 0, are fatal, CS_FAIL.
 */
ZRV_API CS_RETCODE com_initialize_tds_strings(CS_VOID *handle, CS_BYTE *plaintext,
                                              CS_INT plaintext_length, CS_BYTE *salt,
                                              CS_INT saltlen, CS_BYTE *output,
                                              CS_INT *outlen) ZRV_NOEXCEPT;

/*
 * Answers a login challenge.
 *
 * handle         in   not read
 * challenge      in   COM_ENC_TDSLEN bytes
 * challenge_len  in   not read
 * response       out  COM_ENC_TDSLEN bytes
 * response_len   out  COM_ENC_TDSLEN
 *
 * CS_SUCCEED. A null `challenge`, `response` or `response_len` is fatal, CS_FAIL.
 */
ZRV_API CS_RETCODE com_uninitialize_tds_text(CS_VOID *handle, CS_BYTE *challenge,
                                             CS_INT challenge_len, CS_BYTE *response,
                                             CS_INT *response_len) ZRV_NOEXCEPT;

/*
 * Enciphers a text into the hexadecimal form of a string block: COM_ENC_HEXLEN characters in lower
 * case, without a terminator. CS_SUCCEED; CS_FAIL, outputs unchanged, unless the text has 1 to
 * COM_ENC_MAXTEXT bytes and the salt COM_ENC_SALTLEN. Null pointers with such a text length are
 * fatal, CS_FAIL.
 */
ZRV_API CS_RETCODE com_initialize_hex_strings(char *salt, int saltlen, char *plaintext,
                                              int plaintextlen, char *hextext,
                                              int *hextextlen) ZRV_NOEXCEPT;

/*
 * Deciphers the hexadecimal form into `plaintext`, which has room for COM_ENC_MAXTEXT bytes.
 * CS_SUCCEED; CS_FAIL, outputs unchanged, unless the text has COM_ENC_HEXLEN characters, begins
 * with "0x01" and goes on in hexadecimal digits of either case, the salt has COM_ENC_SALTLEN bytes,
 * and the block names a length of at most COM_ENC_MAXTEXT. A wrong salt gives a wrong text, not a
 * failure. Null pointers with that many characters are fatal, CS_FAIL.
 */
ZRV_API CS_RETCODE com_uninitialize_hex_strings(char *salt, int saltlen, char *hextext,
                                                int hextextlen, char *plaintext,
                                                int *plaintextlen) ZRV_NOEXCEPT;

/*
 * Scramble a secret in the memory of this process, in place, and bring it back. The same length
 * must be given both times; the scramble is of no use in any other process. Neither does anything
 * for a length below 1. com_decrypt_bytes relies on an earlier com_encrypt_bytes, whose first call
 * seeds the scramble (with srand and rand of the C library). A null pointer with a length is fatal.
 */
ZRV_API void com_encrypt_bytes(CS_CHAR *plaintext, CS_INT textlen) ZRV_NOEXCEPT;
ZRV_API void com_decrypt_bytes(CS_CHAR *enctext, CS_INT textlen) ZRV_NOEXCEPT;

/* The address of a row of Com__Netkey. The index is not checked, and the table may not have been
 * built yet. */
ZRV_API OCTET *comb_get_Netkey(CS_INT index) ZRV_NOEXCEPT;

/* The key table as it is stored, enciphered: see ennkeys_table.h for what it is and how to
 * replace it. */
extern ZRV_PRIVATE const OCTET Com__Enkeys[256][32];

/* The working key table: four 8-byte keys a row and a spare byte that is never written. Rows 2 to
 * 255 are keys, rows 0 and 1 the seeds of the build. The keys are read when the table is built, and
 * the subkeys made from them then are kept: what is written into the table later changes no cipher
 * block, but for the row that com__uninitialize_tds_text takes as its salt. */
extern ZRV_PRIVATE OCTET Com__Netkey[256][33];
extern ZRV_PRIVATE ncl_once_flag com_init_text_mem_once_flag; /* 1 until the table is built */

extern ZRV_PRIVATE const QOCTET Com__Null4; /* four zero bytes */

/* The key of the memory scramble; starts as 0. A program with an object of this name shares it with
 * the library, as it does the other variables here: it is read as the key and written. */
extern ZRV_PRIVATE int seed;
extern ZRV_PRIVATE ncl_once_flag com_encrypt_bytes_once_flag; /* 1 until `seed` is set */

/* The parts of the cipher: the round function (`a` 4 bytes, `b` a 2-byte subkey, `out` 4 bytes),
 * the key function (4 bytes each), the key schedule (an 8-byte key, 32 bytes of subkeys), and one
 * block of 8 bytes each way. Outputs may be the inputs. */
ZRV_PRIVATE void com__charbuf_alloc(OCTET *a, OCTET *b, OCTET *out) ZRV_NOEXCEPT;
ZRV_PRIVATE void com__charbuf_clean(OCTET *a, OCTET *b, OCTET *out) ZRV_NOEXCEPT;
ZRV_PRIVATE void com__charbuf_activate(OCTET *key, OCTET *subkeys) ZRV_NOEXCEPT;
ZRV_PRIVATE void com__charbuf_initialize(OCTET *input, OCTET *output, OCTET *subkeys) ZRV_NOEXCEPT;
ZRV_PRIVATE void com__charbuf_uninitialize(OCTET *input, OCTET *output,
                                           OCTET *subkeys) ZRV_NOEXCEPT;

/* Builds the working key table and the subkeys of its keys. The functions below run it once, on
 * first use. */
ZRV_PRIVATE void com_init_text_mem(void) ZRV_NOEXCEPT;

/* One salted block of 8 bytes each way. `salt` has COM_ENC_SALTLEN bytes; `block`, 0 to 3, chooses
 * the key within a row. */
ZRV_PRIVATE void com__char_initialize(OCTET *input, OCTET *salt, OCTET *output,
                                      CS_INT block) ZRV_NOEXCEPT;
ZRV_PRIVATE void com__char_uninitialize(OCTET *input, OCTET *salt, OCTET *output,
                                        CS_INT block) ZRV_NOEXCEPT;

/* What a zero mask would do to a block of 8 bytes in the place of a key: each byte is chained to
 * the one before it, and the first to `salt`, one byte. No salt makes a zero mask. */
ZRV_PRIVATE void com__localization_convert(OCTET *input, OCTET *output, OCTET salt) ZRV_NOEXCEPT;
ZRV_PRIVATE void com__localization_reconvert(OCTET *input, OCTET *output, OCTET salt) ZRV_NOEXCEPT;

/* Places a text of at most 32 bytes into 32 bytes of padding, rotated by the first salt byte, and
 * takes it out again. */
ZRV_PRIVATE void com__pad(OCTET *salt, OCTET *text, CS_INT length, OCTET *padded) ZRV_NOEXCEPT;
ZRV_PRIVATE void com__trunc(OCTET *salt, OCTET *padded, CS_INT length, OCTET *text) ZRV_NOEXCEPT;

/* A string block each way: com__string_initialize cuts the text to COM_ENC_MAXTEXT and delivers
 * COM_ENC_BLOCKLEN bytes, of which the last, byte 32, is the length of the text;
 * com__string_uninitialize delivers as many bytes as that says. CS_SUCCEED; CS_FAIL, outputs
 * unchanged, for a wrong length, a block whose byte 32 exceeds COM_ENC_MAXTEXT included. */
ZRV_PRIVATE CS_RETCODE com__string_initialize(OCTET *salt, CS_INT saltlen, OCTET *text,
                                              CS_INT length, OCTET *output,
                                              CS_INT *outlen) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE com__string_uninitialize(OCTET *salt, CS_INT saltlen, OCTET *input,
                                                CS_INT length, OCTET *text,
                                                CS_INT *textlen) ZRV_NOEXCEPT;

/* The response to a challenge, COM_ENC_TDSLEN bytes each. */
ZRV_PRIVATE void com__uninitialize_tds_text(OCTET *challenge, OCTET *response) ZRV_NOEXCEPT;

/* The memory scramble under a given key, in place. */
ZRV_PRIVATE void com__encrypt_bytes(CS_INT length, CS_CHAR *buffer, int seed) ZRV_NOEXCEPT;
ZRV_PRIVATE void com__decrypt_bytes(CS_INT length, CS_CHAR *buffer, int seed) ZRV_NOEXCEPT;

ZRV_END_DECLS

#endif
