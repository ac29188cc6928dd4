// The peers of passwords and keys, in a shared object of their own: the password cipher by hand, as the
// tests have it, and EVP of OpenSSL.
#ifndef ZRVBENCH_SECURITY_PEERS_H
#define ZRVBENCH_SECURITY_PEERS_H

#include <cstddef>

extern "C" {

// A text into a string block of 33 bytes under a salt of 8 bytes; each key is scheduled when it is
// used.
void peer_string_block(const unsigned char *salt, const unsigned char *text, size_t length,
                       unsigned char *block);
// Eight bytes each.
void peer_response(const unsigned char *challenge, unsigned char *response);
// One byte at a time through a chain of words, by way of a copy that is aligned to 64 bytes and
// wiped.
void peer_scramble(unsigned char *bytes, size_t length, unsigned key);

// AES-256 in CBC mode with a context that is kept, encrypting; each text starts from the vector.
void *peer_aes_new(const unsigned char *key, const unsigned char *iv);
size_t peer_aes_encrypt(void *cipher, const unsigned char *iv, const unsigned char *text,
                        size_t length, unsigned char *out);
void peer_aes_free(void *cipher);

// RSA with OAEP: a pair of its own; encryption with a public key in PEM that is read for each text;
// decryption with a context for each text.
void *peer_rsa_new(int bits);
size_t peer_rsa_public(void *pair, char *pem, size_t room);
size_t peer_rsa_encrypt(const char *pem, size_t pem_length, const unsigned char *text,
                        size_t length, unsigned char *out, size_t room);
size_t peer_rsa_decrypt(void *pair, const unsigned char *cipher, size_t length, unsigned char *out,
                        size_t room);
void peer_rsa_free(void *pair);
}

#endif
