// The peer of the password cipher, in a shared object of its own: the cipher by hand, as the tests
// have it.
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
}

#endif
