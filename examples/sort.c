/* Words in the order of a locale. */
#include <stdlib.h>
#include <zrvcomn/sortordr.h>

#include "session.h"

static CS_VOID *order; /* what qsort cannot pass on */

static int compare(const void *first, const void *second) {
  CS_CHAR *a = *(CS_CHAR **)first, *b = *(CS_CHAR **)second;
  const CS_INT a_length = (CS_INT)strlen(a), b_length = (CS_INT)strlen(b);
  const CS_INT result = com_ps_dl_sqlhilo(order, a, a_length, b, b_length);
  return result != 0 ? result : com_spec_tord(order, a, a_length, b, b_length);
}

int main(void) {
  CS_CHAR zebra[] = "zebra", Apple[] = "Apple", apple[] = "apple", aether[] = "\xE6ther";
  CS_CHAR *words[] = {zebra, apple, aether, Apple};
  Session session;
  const int started = start(&session, "en_US.ISO-8859-1") == CS_SUCCEED &&
                      com_intl_sortorder(&session.locale, &order) == CS_SUCCEED && order != NULL;
  if (started) {
    qsort(words, 4, sizeof words[0], compare);
    for (int i = 0; i < 4; ++i)
      printf("%s\n", words[i] == aether ? "aether, with a ligature" : words[i]);
  }
  end(&session);
  return started ? 0 : 1;
}
/* prints:
aether, with a ligature
apple
Apple
zebra
*/
