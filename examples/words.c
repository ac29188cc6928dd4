/* Words counted: records from a pool, a hash table that finds them, a queue that keeps their order. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <zrvcomn/lmpublic.h>
#include <zrvcomn/mmpublic.h>

enum { version = 1100 }; /* of the interfaces that this program knows */

typedef struct {
  CS_INT count, length;
  const CS_CHAR *text;
} Word;

static CS_VOID *from_heap(CS_CONTEXT *context, CS_UINT size) {
  (void)context;
  return malloc(size);
}

static CS_RETCODE to_heap(CS_CONTEXT *context, CS_VOID *block) {
  (void)context;
  free(block);
  return CS_SUCCEED;
}

/* The record of a word, or null: the one that the table has, or a new one from the pool. */
static Word *record_of(CS_CHAR *text, CS_INT length, MM_HANDLE *pool, LM_HANDLE *table,
                       LM_HANDLE *order) {
  CS_VOID *found = NULL;
  Word *word;
  const CS_RETCODE status = lm_list_op(table, LM_OP_SEARCH, text, length, NULL, &found);
  if (status != LM_NOT_FOUND)
    return status == CS_SUCCEED ? (Word *)found : NULL;
  if (comn_mmalloc(pool, sizeof *word, &found) != CS_SUCCEED)
    return NULL;
  word = (Word *)found; /* cleared */
  word->text = text;
  word->length = length;
  if (lm_list_op(table, LM_OP_INSERT, text, length, word, NULL) != CS_SUCCEED ||
      lm_list_op(order, LM_OP_INSERT, NULL, CS_UNUSED, word, NULL) != CS_SUCCEED)
    return NULL;
  return word;
}

static CS_RETCODE print(CS_VOID *item) {
  const Word *word = (const Word *)item;
  printf("%d %.*s\n", (int)word->count, (int)word->length, word->text);
  return CS_SUCCEED;
}

int main(void) {
  CS_CHAR text[] = "to be or not to be that is the question";
  CS_CONTEXT context = {0};
  MM_HANDLE *pool = NULL;
  LM_CONTEXT *lists = NULL;
  LM_HANDLE *table = NULL, *order = NULL;
  CS_PRINT_FUNC printer = print;
  int done;
  context.ctxversion = version;
  context.ctxmalloc = from_heap;
  context.ctxfree = to_heap;
  done = comn_mminit(&context, &pool) == CS_SUCCEED &&
         lm_initlm(version, NULL, 0, &lists) == CS_SUCCEED &&
         lm_list_alloc(lists, LM_CHASH, NULL, 0, &table) == CS_SUCCEED &&
         lm_list_alloc(lists, LM_QUEUE, NULL, 0, &order) == CS_SUCCEED;
  for (CS_CHAR *word = strtok(text, " "); done && word != NULL; word = strtok(NULL, " ")) {
    Word *const record = record_of(word, (CS_INT)strlen(word), pool, table, order);
    done = record != NULL;
    if (done)
      ++record->count;
  }
  done = done && lm_list_op(order, LM_OP_APPLY, NULL, CS_UNUSED, &printer, NULL) == CS_SUCCEED;
  /* The records of the words go with the pool; the lists never owned them. */
  if (lists != NULL)
    lm_exit(lists, LM_EXIT_FORCE);
  if (pool != NULL)
    comn_mmdrop(pool, MM_DROP_FORCE);
  return done ? 0 : 1;
}
/* prints:
2 to
2 be
1 or
1 not
1 that
1 is
1 the
1 question
*/
