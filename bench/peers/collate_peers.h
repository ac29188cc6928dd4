// The peers of comparison, in a shared object of their own.
#ifndef ZRVBENCH_COLLATE_PEERS_H
#define ZRVBENCH_COLLATE_PEERS_H

#include "zrvcomn/sortordr.h"

namespace zrvbench {

// A loop that takes the weights of both strings one after another, with the same result.
int peer_compare_weights(SO_1CLASS *so, char *str1, int len1, char *str2, int len2);

#ifdef ZRVBENCH_WITH_ICU
// The default collation of Unicode, accents included, case not.
int icu_compare(const char16_t *str1, const char16_t *str2, int length);
#endif

} // namespace zrvbench

#endif
