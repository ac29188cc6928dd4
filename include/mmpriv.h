/*
 * mmpriv.h - the records of the memory manager and its inner operations.
 *
 * The records are laid by hand inside raw memory. Under ILP32 the sizes quoted here are exact;
 * under LP64 the same algorithms run on a pool word of 8 bytes, and every size that is quoted as 4
 * is that word.
 */
#ifndef ZRV_MMPRIV_H
#define ZRV_MMPRIV_H

#include "mmpublic.h"

ZRV_BEGIN_DECLS

typedef struct _mmpoolhead MmPoolHead;

/* A block of the general heap. The header is the first word alone: `link` exists only while the
 * block is free and lies in the first word of the payload. */
typedef struct _mmlist {
  CS_UINT size; /* payload bytes, a multiple of the pool word */
  struct _mmlist *link;
} MmList;

/* The record at the start of a region, 20 bytes. Its last word is the header of the region's first
 * block, so that the first payload begins right behind the record. */
typedef struct _mmheap {
  CS_INT size;   /* the whole length of the region, record included */
  CS_INT status; /* MM_HEAP_ */
  struct _mmheap *next;
  MmList *free; /* free blocks in ascending address order */
  CS_VOID *buffer;
} MmHeap;

#define MM_HEAP_BREAK 1  /* came from the break function and goes back */
#define MM_HEAP_CALLER 2 /* handed in by the caller, never given back */

/* Chains the blocks that a handle holds; the memory that was asked for begins at `block`. */
typedef struct _mmblock {
  struct _mmblock *next;
  CS_VOID *block;
} MmBlock;

/* A buddy block: 16 bytes at least. The links exist only while it is free. */
typedef struct _mmdlist {
  CS_UINT size; /* the header word, MM_BUDDY_ */
  struct _mmdlist *next;
  struct _mmdlist *prev;
} MmDList;

/* The header word of a buddy block. Bits 4 to 20 are the chunk's identity: its address in pool
 * words. Order 16 and the half of an order 16 chunk in which a block lies have bits of their own,
 * because the order field and the identity are too narrow for them. */
#define MM_BUDDY_ORDER 0x0000000FU
#define MM_BUDDY_CHUNK 0x001FFFF0U
#define MM_BUDDY_TOPORDER 0x00200000U
#define MM_BUDDY_UPPERHALF 0x00400000U
#define MM_BUDDY_FREE 0x40000000U
#define MM_BUDDY_OVERSIZE 0x80000000U /* the other bits then hold the requested size */

#define MM_BUDDY_ORDERS 17

typedef struct _mm_buddy_pool {
  CS_INT bpmax;                   /* the largest order */
  MmDList *free[MM_BUDDY_ORDERS]; /* blocks of 2^(i + 4) bytes; -1 above bpmax */
} MmBuddyPool;

typedef struct _mm_uniform_pool {
  CS_INT uniform_size; /* as the first caller asked */
  CS_INT node_size;    /* rounded, with the header */
  MmList *free;
} MmUniformPool;

/* The chunks of an alloc-only pool are blocks that begin with a region record, whose `free` points
 * to a cursor in its fifth word: bytes left, and the next free byte. Its `status` is not used. */
typedef struct _mm_alloconly_pool {
  MmHeap *free; /* the chunks, newest first */
} MmAllocOnlyPool;

/*
 * A remembered search of the general heap: as the last one that failed has shown, no region from
 * `first` on has `size` bytes in one piece. Regions that are added stand in front of `first`, so the
 * next search for as much ends there. That holds until something goes back to the heap. Whoever is
 * alone and gives nothing back while it works can rely on it, which is a handle that
 *
 *   1. has MM_ST_READY: its strategy has been set up, and has cleared this record;
 *   2. is of a type that gives nothing back, uniform or alloc-only; the record of a buddy pool
 *      takes up this place besides;
 *   3. has no parent, with which it would share the heap;
 *   4. has no sub-pool.
 *
 * For any other handle the record is neither looked at nor kept. com___putheap, for a handle that
 * fulfils all four, forgets the search; the drop of the last sub-pool goes through it when the
 * sub-pool is no longer among the children.
 */
typedef struct _mm_search {
  MmHeap *first;
  CS_UINT size;
} MmSearch;

/* The records above are fixed. What the smaller strategies note beside them, for speed alone,
 * stands behind them, in room that a handle has for the buddy strategy anyway. */
typedef struct _mm_pool_notes {
  union {
    MmUniformPool u;
    MmAllocOnlyPool a;
  } pool;
  MmSearch search;
  CS_UINT older_left; /* alloc-only: no chunk but the newest has more bytes left */
  CS_CHAR *cleared;   /* alloc-only: the newest chunk is clear from its cursor up to here */
} MmPoolNotes;

/* Bits of mmh_status and mph_status. READY: an allocation has succeeded, so type and block size are
 * fixed. DROPPING: on its way out, the lock is no longer taken. */
#define MM_ST_OWNED 0x01    /* the record came from the manager and goes through ctxfree */
#define MM_ST_CALLER 0x02   /* the record lies in the caller's storage */
#define MM_ST_READY 0x08    /* mmh_status */
#define MM_ST_OWNMUTEX 0x10 /* mph_status: the mutex is the context's, deleted at the drop */
#define MM_ST_DROPPING 0x20 /* mph_status */

/* One pool or sub-pool; 108 bytes. */
struct _mmhandle {
  MmPoolHead *mmh_head; /* shared by a pool and its sub-pools */
  CS_INT mmh_type;      /* MM_POOL_ */
  CS_INT mmh_blocksize; /* buddy: a fresh chunk; uniform: a chunk of nodes; alloc-only: the least */
  CS_INT mmh_status;    /* MM_ST_ */
  CS_INT mmh_tagid;     /* 0 for a root pool */
  MmBlock *mmh_blocks;  /* every block that this handle holds, newest first */
  struct _mmhandle *mmh_parent;
  struct _mmhandle *mmh_child; /* newest first */
  struct _mmhandle *mmh_sibling;
  union {
    MmBuddyPool af;
    MmUniformPool u;
    MmAllocOnlyPool a;
    MmPoolNotes notes;
  } mmh_pool;
};

/* What a pool and its sub-pools share; 48 bytes. */
struct _mmpoolhead {
  MM_SBREAK_FUNC mph_sbreak;
  MM_UNSBREAK_FUNC mph_unsbreak;
  CS_VOID *mph_param; /* passed to both */
  MM_LOCK_FUNC mph_lock;
  MM_UNLOCK_FUNC mph_unlock;
  CS_VOID *mph_lockarg; /* passed to both */
  CS_INT mph_chunksize; /* the least that is asked of mph_sbreak */
  CS_INT mph_totalsize; /* of all regions ever added, never lowered; stops at the largest CS_INT */
  CS_INT mph_maxsize;   /* ceiling of the total, or MM_NO_MAXSIZE */
  MmHeap *mph_heap;     /* regions, newest first */
  CS_CONTEXT *mph_ctx;  /* null for a pool of comn_mmmanage */
  CS_INT mph_status;    /* MM_ST_ */
};

/* A region shorter than this is fatal. */
#define MM_MIN_REGION 9

/* The first context version with pools. */
#define MM_MIN_CTXVERSION 114

/*
 * The general heap: first fit over the regions, newest first. None of these takes the lock.
 *
 * com___addheap      counts a region and enters all of it as one free block; a start that is not
 *                    aligned to the pool word is rounded up. CS_SUCCEED; fatal below MM_MIN_REGION.
 * com___sbreak       asks the break function for a region of `size` bytes. CS_SUCCEED; CS_FAIL
 *                    without one, without a break function or above the ceiling.
 * com___unsbreak     gives a region back. CS_SUCCEED; CS_FAIL without a function for it.
 * com___getheap      `size` bytes, rounded up to the pool word. CS_SUCCEED or CS_MEM_ERROR.
 * com___putheap      gives a payload back, and its region if that is wholly free and came from the
 *                    break function. CS_SUCCEED; CS_FAIL when the payload is free and the region
 *                    has no way back: it stays and serves on. Fatal: a payload outside the regions.
 * com___insert_block puts a block among the free blocks of its region and merges neighbours.
 *                    CS_SUCCEED. Fatal: a block outside the region, or free already. The inner
 *                    step of com___putheap, which lets the handle know: what goes back without it
 *                    may stay unseen by an MmSearch.
 * com___getblock     `size` bytes that are chained to the handle. CS_SUCCEED or CS_MEM_ERROR.
 * com___putblock     gives a block back. As com___putheap; fatal: a block that is not chained.
 */
ZRV_PRIVATE CS_RETCODE com___addheap(MM_HANDLE *mmh, CS_VOID *region, CS_INT length,
                                     CS_INT status) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE com___sbreak(MM_HANDLE *mmh, CS_UINT size) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE com___unsbreak(MM_HANDLE *mmh, MmHeap *heap) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE com___getheap(MM_HANDLE *mmh, CS_UINT size, CS_VOID **payload) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE com___putheap(MM_HANDLE *mmh, CS_VOID *payload) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE com___insert_block(MmHeap *heap, MmList *block) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE com___getblock(MM_HANDLE *mmh, CS_UINT size, CS_VOID **block) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE com___putblock(MM_HANDLE *mmh, CS_VOID *block) ZRV_NOEXCEPT;

/*
 * The strategies, without the lock and without clearing; see comn_mmalloc and its kin for their
 * results. An allocation on a handle without MM_ST_READY sets its strategy up first.
 *
 * com___buddy_split       makes a free block of an order out of one of a higher order. CS_SUCCEED or
 *                         CS_FAIL. Fatal: another type, an order out of range, a list that has one.
 * com___buddy_compact     merges free buddies below an order. CS_SUCCEED when a block of that order
 *                         came out of it, else CS_FAIL. Fatal: headers that contradict each other.
 * com___alloconly_malloc  does not pass its success through the trace, alone in the manager.
 */
ZRV_PRIVATE CS_RETCODE com___buddy_malloc(MM_HANDLE *mmh, CS_UINT size,
                                          CS_VOID **buffer) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE com___buddy_split(MM_HANDLE *mmh, CS_INT order) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE com___buddy_compact(MM_HANDLE *mmh, CS_INT order) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE com___buddy_free(MM_HANDLE *mmh, CS_VOID *buf) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE com___buddy_realloc(MM_HANDLE *mmh, CS_UINT size,
                                           CS_VOID **buffer) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE com___uniform_malloc(MM_HANDLE *mmh, CS_UINT size,
                                            CS_VOID **buffer) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE com___uniform_free(MM_HANDLE *mmh, CS_VOID *buf) ZRV_NOEXCEPT;
ZRV_PRIVATE CS_RETCODE com___alloconly_malloc(MM_HANDLE *mmh, CS_UINT size,
                                              CS_VOID **buffer) ZRV_NOEXCEPT;

/*
 * Makes a sub-pool: a handle of its own out of the general heap, with the type and block size of
 * its parent.
 *
 * tagid    in      finds it again through MM_PROP_SUBPOOL
 * subpool  in,out  the new handle; must hold something that is not null before, else fatal
 *
 * Returns CS_SUCCEED or CS_MEM_ERROR, `*subpool` unchanged.
 */
ZRV_PRIVATE CS_RETCODE com___subpool(MM_HANDLE *mmh, CS_INT tagid,
                                     MM_HANDLE **subpool) ZRV_NOEXCEPT;

ZRV_END_DECLS

#endif
