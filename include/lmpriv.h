/*
 * lmpriv.h - the records of the list manager and its inner operations.
 */
#ifndef ZRV_LMPRIV_H
#define ZRV_LMPRIV_H

#include "lmpublic.h"

ZRV_BEGIN_DECLS

/* The state of a record. */
typedef enum _lmnodestate {
  LM_ALLOCATED = 11,
  LM_RELEASED = 12,
  LM_INITIALIZED = 13,
  LM_UNINITIALIZED = 14, /* a node that went back to its pool */
  LM_INSERTED = 15,      /* a node in a linked list */
  LM_SET = 16,           /* a node in a hash table */
  LM_UNSET = 17          /* a node in a hash table whose entry was deleted */
} LM_NODE_STATE;

/* One entry of any list. */
typedef struct _dlinknode {
  LM_NODE_STATE state;
  CS_VOID *key;    /* the caller's */
  CS_INT key_size; /* bytes */
  CS_VOID *data;   /* the caller's */
  struct _dlinknode *previous;
  struct _dlinknode *next;
} DLinkNode;

/* Hashes `key_size` bytes into 0 to `range` - 1, stored in `*hash`. */
typedef CS_RETCODE (*CS_KEY_HASH_FUNC)(CS_CHAR *key, CS_INT key_size, CS_INT range, CS_UINT *hash);

/* LM_DLINK, LM_QUEUE, LM_STACK. */
typedef struct _dlinkinfo {
  LM_NODE_STATE state;
  DLinkNode *head;
  DLinkNode *tail;
} DLinkInfo;

/* LM_CHASH. */
typedef struct _chashinfo {
  LM_NODE_STATE state;
  DLinkNode **table; /* the head of each chain, null if empty */
  CS_INT table_size;
  CS_KEY_HASH_FUNC home_addr_hfunc;
} CHashInfo;

/* LM_DHASH. */
typedef struct _dhashinfo {
  LM_NODE_STATE state;
  DLinkNode **table; /* a node in every slot */
  CS_INT table_size;
  CS_KEY_HASH_FUNC home_addr_hfunc;
  CS_KEY_HASH_FUNC incr_hfunc; /* shifts the start of a probe; it is no stride */
} DHashInfo;

typedef struct _lmcxtprop {
  LM_NODE_STATE state;
  CS_INT list_type;     /* defaults for new lists: LM_DLINK */
  CS_INT max_tablesize; /* 10 */
  CS_INT max_poolsize;  /* 0 */
  CS_INT version;
  CS_INT context_load; /* lists in the context */
  CS_CHAR *cur_handlename;
  LM_HANDLE *cur_handleaddr; /* the current list */
} LM_CXTPROP;

struct _lmcontext {
  LM_NODE_STATE state;
  CS_CHAR *context_name; /* owned */
  CS_INT length;         /* its bytes, with the terminator if it came with one */
  CS_BOOL lmchkparam;    /* 1: a list needs a name */
  LM_CXTPROP *cxtprop;
  LM_HANDLE *first_handle; /* newest first */
  LM_ALLOCATOR lmmalloc;
  LM_RELEASER lmfree;
  void *lmuser;
};

typedef struct _lmhdlprop {
  LM_NODE_STATE state;
  CS_INT list_type;
  CS_INT max_tablesize; /* size of a hash table */
  CS_INT max_poolsize;  /* bound of the node pool */
  CS_INT handle_load;   /* live entries */
  LM_CONTEXT *context;
  CS_CHAR *handle_name; /* owned */
  CS_INT length;        /* as for the context */
  CS_PRINT_FUNC print_func;
  CS_COMPARE_FUNC comp_func;
} LM_HDLPROP;

struct _lmhandle {
  LM_NODE_STATE state;
  LM_HDLPROP *hdlprop;
  CS_VOID *list_state;      /* the record of the kind */
  DLinkNode *free_DLN_list; /* the node pool */
  CS_INT free_nodes;
  CS_VOID *cur_ptr; /* the current node */
  LM_HANDLE *next;
  LM_ALLOCATOR lmhmalloc;
  LM_RELEASER lmhfree;
  void *lmhuser;
};

/* The least version that lm_initlm accepts. */
#define LM_MIN_VERSION 1100

/* comn_malloc and comn_free in the shape of a list allocator. */
ZRV_PRIVATE void *lm___malloc(void *user, size_t size) ZRV_NOEXCEPT;
ZRV_PRIVATE void lm___free(void *user, void *block) ZRV_NOEXCEPT;

/*
 * The hash of a key. It is read as big-endian words, the last of which is filled up with 0x5A, and each
 * is added to 37 times the hash so far. The bytes of a word are signed: the lowest one with its sign set
 * sets all bits above it. Words count in pairs: a word of 0 that would begin one is passed over. A size
 * of 0 gives 0. CS_SUCCEED; a negative size, or null with a size, is fatal.
 */
ZRV_PRIVATE CS_RETCODE lm___api_key_to_uint(CS_CHAR *key, CS_INT key_size,
                                            CS_UINT *output) ZRV_NOEXCEPT;

/* The hash modulo `range`; and 7 times the hash modulo `range` - 1, plus 1, for which `range` must
 * not be 1 (fatal). CS_SUCCEED; CS_FAIL and 0 for a range below 1. */
ZRV_PRIVATE CS_RETCODE lm__api_key_to_hash(CS_CHAR *key, CS_INT key_size, CS_INT range,
                                           CS_UINT *output) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE lm__api_key_to_hash2(CS_CHAR *key, CS_INT key_size, CS_INT range,
                                            CS_UINT *output) ZRV_NOEXCEPT;

/*
 * The node pool of a list.
 *
 * lm__get_dlinknode         a node from the pool, or a new one. CS_SUCCEED or CS_MEM_ERROR; a node of
 *                           the pool that is LM_RELEASED is fatal
 * lm__free_dlinknode        a node back to the pool if it has room, else to the allocator. CS_SUCCEED
 * lm__api_dlink_mpool_init  adds nodes up from `oldsize` to max_poolsize. CS_SUCCEED; CS_MEM_ERROR:
 *                           the whole pool is released then, and free_nodes stays as it was. Nothing
 *                           to add is fatal
 * lm__api_dlink_mpool_drop  releases `oldsize` - max_poolsize free nodes, all of them if the two are
 *                           equal, at most as many as there are. CS_SUCCEED
 */
ZRV_PRIVATE CS_RETCODE lm__get_dlinknode(LM_HANDLE *handle, DLinkNode **node) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE lm__free_dlinknode(LM_HANDLE *handle, DLinkNode *node) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE lm__api_dlink_mpool_init(LM_HANDLE *handle, CS_INT oldsize) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE lm__api_dlink_mpool_drop(LM_HANDLE *handle, CS_INT oldsize) ZRV_NOEXCEPT;

/*
 * Copy bytes out of the list manager.
 *
 * source      in   null counts as empty
 * srclen      in   its length, or CS_LEN_NULLTERM
 * terminate   in   1 adds a NUL, which counts
 * buffer      out  untouched if all of it does not fit in `buflen` bytes
 * outlen      out  the bytes copied or needed; may be null
 *
 * Always CS_SUCCEED. lm__api_prop_cpbytes is the form of the property calls.
 */
ZRV_PRIVATE CS_RETCODE lm__api_cp_bytes(CS_VOID *source, CS_INT srclen, CS_BOOL terminate,
                                        CS_VOID *buffer, CS_INT buflen,
                                        CS_INT *outlen) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE lm__api_prop_cpbytes(CS_VOID *source, CS_INT srclen, CS_BOOL terminate,
                                            CS_VOID *buffer, CS_INT buflen,
                                            CS_INT *outlen) ZRV_NOEXCEPT;

/*
 * Keep a copy of the caller's bytes, from comn_malloc. `length` may be CS_LEN_NULLTERM, which
 * includes the terminator; null or a length below 1 stores null and 0.
 *
 * lm__api_setdata returns CS_SUCCEED, or CS_MEM_ERROR with null and 0 stored.
 * lm__api_prop_setdata releases the old value first and returns CS_SUCCEED whatever came of it.
 */
ZRV_PRIVATE CS_RETCODE lm__api_setdata(CS_CHAR **dest, CS_INT *destlen, CS_CHAR *source,
                                       CS_INT length) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE lm__api_prop_setdata(CS_CHAR **dest, CS_INT *destlen, CS_CHAR *source,
                                            CS_INT length) ZRV_NOEXCEPT;

ZRV_END_DECLS

#endif
