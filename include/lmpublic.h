/*
 * lmpublic.h - the list manager: five kinds of container behind one calling shape.
 *
 * A context holds defaults and the set of lists made under it; a handle is one list. All traffic
 * goes through lm_list_op with an operation code, and lm_list_prop and lm_property with a property
 * code. Keys and data are the caller's pointers: nothing is copied, compared other than as bytes,
 * or released.
 *
 * There is no lock: a context and its lists belong to one thread at a time. Every record carries a
 * state and is stamped before it is released, so that a use after release is reported.
 *
 * What a comment calls fatal is reported and raises signal 6 (com_toggle_abort); if the application
 * catches it, the function returns CS_FAIL and has changed nothing unless a comment says so.
 */
#ifndef ZRV_LMPUBLIC_H
#define ZRV_LMPUBLIC_H

#include <stddef.h>

#include "cspublic.h"

ZRV_BEGIN_DECLS

/* Their records stand in lmpriv.h. */
typedef struct _lmcontext LM_CONTEXT;
typedef struct _lmhandle LM_HANDLE;

/* An allocator and its release. `user` is the pointer given with them. */
typedef void *(*LM_ALLOCATOR)(void *user, size_t size);
typedef void (*LM_RELEASER)(void *user, void *block);

/* Called on one key or one data pointer; CS_FAIL stops a walk. */
typedef CS_RETCODE (*CS_PRINT_FUNC)(CS_VOID *item);
/* Stored by a property and called by nothing. */
typedef CS_INT (*CS_COMPARE_FUNC)(CS_VOID *item1, CS_VOID *item2);

/* The kinds of list. */
#define LM_DLINK 13 /* doubly linked list with a cursor */
#define LM_CHASH 14 /* chained hash table */
#define LM_DHASH 16 /* open-addressed hash table of fixed capacity, 2 slots at least */
#define LM_QUEUE 18 /* first in, first out, on the linked list */
#define LM_STACK 19 /* last in, first out, on the linked list */

/* Operations. LM_OP_FIRST, LM_OP_LAST and the LM_POS_ codes are insertion positions too. */
#define LM_OP_INSERT 20
#define LM_OP_DELETE 21
#define LM_OP_SEARCH 22
#define LM_OP_REPLACE 23
#define LM_OP_NEXT 24
#define LM_OP_PREV 25
#define LM_OP_CURRENT 26
#define LM_OP_FIRST 27
#define LM_OP_LAST 28
#define LM_OP_PRINT 29
#define LM_OP_PRINTALL 30
#define LM_OP_APPLY 31
#define LM_POS_BEFORE 32
#define LM_POS_AFTER 33

/* A key that is not in the list. */
#define LM_NOT_FOUND 34

/* Actions of the property calls. */
#define LM_ACTION_GET 33
#define LM_ACTION_SET 34
#define LM_ACTION_CLEAR 35

/* Options of lm_list_drop and lm_exit. */
#define LM_DROP_NORMAL CS_UNUSED
#define LM_DROP_FORCE 35
#define LM_EXIT_NORMAL CS_UNUSED
#define LM_EXIT_FORCE 36

/* Properties of a list. */
#define LM_HDL_LIST_TYPE 1
#define LM_HDL_MAX_TABLESIZE 2
#define LM_HDL_MAX_POOLSIZE 3
#define LM_HDL_HANDLE_LOAD 8
#define LM_HDL_CONTEXT_ADDR 9
#define LM_HDL_HANDLE_NAME 10
#define LM_HDL_PRINT_FUNC 11
#define LM_HDL_COMP_FUNC 12

/* Properties of a context. */
#define LM_CXT_LIST_TYPE 1
#define LM_CXT_MAX_TABLESIZE 2
#define LM_CXT_MAX_POOLSIZE 3
#define LM_CXT_VERSION 4
#define LM_CXT_CONTEXT_LOAD 5
#define LM_CXT_CURRENT_HANDLENAME 6
#define LM_CXT_CURRENT_HANDLEADDR 7

/*
 * Makes a context.
 *
 * version       in   1100 or more, else fatal
 * context_name  in   copied; may be null
 * length        in   its length in bytes, or CS_LEN_NULLTERM; below 1 means no name
 * context_ptr   out  the context, set on success only
 * lm_alloc,     in   allocator of the context's records and, by default, of its lists; names come
 * lm_free,           from comn_malloc. lm_initlm uses comn_malloc for all
 * userctx
 *
 * Returns CS_SUCCEED; CS_FAIL when a record cannot be had; CS_MEM_ERROR when the name cannot be
 * copied. Nothing is left behind then.
 */
ZRV_API CS_RETCODE lm_initlm(CS_INT version, CS_CHAR *context_name, CS_INT length,
                             LM_CONTEXT **context_ptr) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE lm_initlm_ex(CS_INT version, CS_CHAR *context_name, CS_INT length,
                                LM_CONTEXT **context_ptr, LM_ALLOCATOR lm_alloc,
                                LM_RELEASER lm_free, void *userctx) ZRV_NOEXCEPT;

/* Releases a context. LM_EXIT_NORMAL: CS_FAIL while it has lists. LM_EXIT_FORCE: its lists are
 * dropped, whatever is in them; a failure stops and is returned. A null context is CS_FAIL; another
 * option is fatal. */
ZRV_API CS_RETCODE lm_exit(LM_CONTEXT *context, CS_INT option) ZRV_NOEXCEPT;

/*
 * Makes a list. It takes the sizes of its table and of its node pool from the context (the pool of
 * an LM_DHASH is 0) and becomes the context's current list.
 *
 * list_type    in   a kind, or CS_UNUSED for the context's default
 * handle_name  in   copied; may be null
 * length       in   its length in bytes, or CS_LEN_NULLTERM; below 1 means no name
 * handle_ptr   out  the list, set on success only
 * lm_alloc,    in   allocator of the list's records; lm_list_alloc uses the context's
 * lm_free,
 * userctx
 *
 * Returns CS_SUCCEED; CS_MEM_ERROR; CS_FAIL for a null context, something that is no kind, or a
 * table size below 1. Nothing is left behind then.
 */
ZRV_API CS_RETCODE lm_list_alloc(LM_CONTEXT *context, CS_INT list_type, CS_CHAR *handle_name,
                                 CS_INT length, LM_HANDLE **handle_ptr) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE lm_list_alloc_ex(LM_CONTEXT *context, CS_INT list_type, CS_CHAR *handle_name,
                                    CS_INT length, LM_HANDLE **handle_ptr, LM_ALLOCATOR lm_alloc,
                                    LM_RELEASER lm_free, void *userctx) ZRV_NOEXCEPT;

/*
 * Works on a list.
 *
 * Returns CS_SUCCEED; CS_FAIL; CS_MEM_ERROR, the list unchanged; LM_NOT_FOUND, the current entry
 * unchanged. `data_out`, if not null, is written on CS_SUCCEED only: the data of the entry that is
 * current then, or null. A null handle is CS_FAIL. An operation that a kind does not list is fatal.
 *
 * LM_DLINK. `key` is no key but the address of a cursor: a walk of the caller's own. If `*key` is
 * not null it is where the operation starts, else the list's own cursor is; at the end the cursor
 * goes to `*key` if `key` is not null, and to the list otherwise. Start a walk with null in `*key`.
 * The cursor counts for what starts at it alone: INSERT in front of it or behind it, DELETE, REPLACE,
 * NEXT, PREV, CURRENT and PRINT. There it is fatal if its entry was deleted. To all others it may
 * point anywhere, so that a walk can begin anew with the same variable; PRINTALL and APPLY leave it
 * where it is, and deliver null for an entry that is gone.
 *   INSERT    adds `data_in` at the position in `key_size` (LM_POS_BEFORE and LM_POS_AFTER the
 *             cursor, LM_OP_FIRST, LM_OP_LAST; another one is fatal unless the list is empty); the
 *             new entry becomes the cursor
 *   DELETE    removes the cursor's entry; without one it is fatal. The cursor becomes the new head
 *             or tail at the ends, else the predecessor; so does the list's own cursor if it stood on
 *             the entry, under a cursor of the caller's too. Other cursors there are stale from now on
 *   REPLACE   stores `data_in` in the cursor's entry; CS_FAIL without one
 *   NEXT PREV step; CS_FAIL at the end or without a cursor, which then stays
 *   FIRST LAST CURRENT
 *   PRINT     calls the print function on the cursor's data; CS_FAIL without a function or cursor, or
 *             if the function returns that
 *   PRINTALL  calls it on all data, from the head; the first CS_FAIL stops and is the result. The
 *             function may delete the entry that it is called with
 *   APPLY     the same with the function whose address is stored at `data_in`
 *
 * LM_QUEUE, LM_STACK. `key` and `key_size` are not read. INSERT at the tail (queue) or head
 * (stack), DELETE at the head, CURRENT, PRINT, PRINTALL, APPLY. CURRENT of a queue goes to its
 * head. Mind the stack: `*data_out` is itself the address of the place for the result.
 *
 * LM_CHASH, LM_DHASH. `key` and `key_size` name an entry by its bytes.
 *   INSERT    adds an entry without a look for duplicates; the newest of a key is found first in an
 *             LM_CHASH. A full LM_DHASH is fatal
 *   SEARCH    makes the entry current. An LM_DHASH compares as many bytes as the search key has, so
 *             a prefix of a stored key finds it; it reads no stored key past its size, so one that is
 *             shorter than the search key is never found
 *   DELETE    removes the entry of the key, or the current one if `key` is null or `key_size` is
 *             CS_UNUSED; without one it is fatal. Current is then, in an LM_CHASH, the predecessor in
 *             the chain, else the successor; in an LM_DHASH the empty slot. Delete from an LM_CHASH
 *             by key: without, the head of any chain but that of bucket 0 keeps its place in the
 *             table, and its node counts against the pool, until the bucket is used again
 *   REPLACE   stores `data_in` in the entry that DELETE would remove; CS_FAIL without one
 *   PRINT     calls the print function on the data of that entry. CS_FAIL without a function, or if
 *             the function returns that. Without an entry an LM_CHASH prints "NULL" on the debug
 *             stream, in an LM_DHASH it is fatal
 *   PRINTALL  calls the print function on all keys and all data, with captions on the debug stream
 *   APPLY     calls the function stored at `data_in` on all data; in an LM_DHASH on that of every
 *             slot, null where there is none
 *   CURRENT
 */
ZRV_API CS_RETCODE lm_list_op(LM_HANDLE *handle, CS_INT operation, CS_VOID *key, CS_INT key_size,
                              CS_VOID *data_in, CS_VOID **data_out) ZRV_NOEXCEPT;

/*
 * Releases a list, not its keys and data.
 *
 * option  in   LM_DROP_NORMAL: CS_FAIL while it has entries. LM_DROP_FORCE: in any case. Another one
 *              is fatal
 *
 * Everything is checked before anything is released: a list that its context does not know, a load
 * that is not the number of its entries, a node pool beyond its bound are fatal, and nothing has
 * changed then. Returns CS_SUCCEED; CS_FAIL, also for a null handle.
 */
ZRV_API CS_RETCODE lm_list_drop(LM_HANDLE *handle, CS_INT option) ZRV_NOEXCEPT;

/*
 * Read or change a property of a list (LM_HDL_) or of a context (LM_CXT_).
 *
 * action    in      LM_ACTION_; what the table does not name is fatal
 * buffer    in,out  get: where the value goes. Set: the value, or its address for the rest of them
 * buflen    in      bytes at `buffer`; CS_UNUSED is demanded where the table says so
 * outlen    out     0 on entry; 4 after a get of an integer or pointer, the bytes copied after a
 *                   get of a name. May be null
 *
 *   MAX_TABLESIZE      get set clear   of a list: resizes a hash table, CS_FAIL for other kinds and
 *                                      for an LM_DHASH with more entries. An LM_CHASH keeps its
 *                                      load, and of a chain only the head, once for each entry
 *   MAX_POOLSIZE       get set clear   of a list: resizes the node pool; CS_FAIL below 0. If it
 *                                      cannot grow it is empty then, and the list goes on
 *   LIST_TYPE          get set clear   of a list: get only, CS_UNUSED
 *   PRINT_FUNC, COMP_FUNC  get set clear
 *   HANDLE_LOAD, CONTEXT_ADDR  get, CS_UNUSED
 *   HANDLE_NAME        get
 *   VERSION, CONTEXT_LOAD, CURRENT_HANDLEADDR  get, CS_UNUSED
 *   CURRENT_HANDLENAME get set clear   set finds the first list whose name begins with `buflen`
 *                                      bytes of `buffer`; none is fatal. Clear takes the newest
 *
 * Clear goes back to the context's value for a list, to 13, 10 and 0 for a context, and to null for
 * a function. A name comes with its terminator; if it does not fit, nothing is copied, `*outlen` is
 * what it needs, and the result is still CS_SUCCEED.
 *
 * Returns CS_SUCCEED; CS_FAIL, also for a null object; CS_MEM_ERROR, nothing changed. An unknown
 * property is fatal.
 */
ZRV_API CS_RETCODE lm_list_prop(LM_HANDLE *handle, CS_INT action, CS_INT property, CS_VOID *buffer,
                                CS_INT buflen, CS_INT *outlen) ZRV_NOEXCEPT;
ZRV_API CS_RETCODE lm_property(LM_CONTEXT *context, CS_INT action, CS_INT property, CS_VOID *buffer,
                               CS_INT buflen, CS_INT *outlen) ZRV_NOEXCEPT;

ZRV_END_DECLS

#endif
