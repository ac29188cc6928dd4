/*
 * mmpublic.h - the memory manager: pools over a caller-supplied source of raw memory.
 *
 * All memory of a pool comes from large regions, which the pool asks of its break function or which
 * the caller hands in. Above them it hands out memory under one of three strategies, chosen by a
 * property before the first allocation:
 *
 *   buddy       power-of-two blocks with lazy coalescing, and a path for larger requests; the only
 *               strategy that can reallocate; the default
 *   uniform     equal nodes; the first request fixes the size for the pool's lifetime
 *   alloc-only  bump allocation; nothing is returned until the pool is dropped
 *
 * A pool releases a family of objects at once, runs inside a fixed buffer, and obeys a ceiling.
 * Memory is aligned to the pool word, sizeof(void *), and to no more. A pool serves one thread at a
 * time unless it has lock functions.
 *
 * A null pointer where none is allowed, and what a comment calls fatal, is reported and raises
 * signal 6 (com_toggle_abort); if the application catches it, the function returns CS_FAIL, or what
 * the comment says. If the lock function fails, its code is the result and nothing is done.
 */
#ifndef ZRV_MMPUBLIC_H
#define ZRV_MMPUBLIC_H

#include "csintrn.h"
#include "cspublic.h"

ZRV_BEGIN_DECLS

/* A pool or a sub-pool; its record stands in mmpriv.h. */
typedef struct _mmhandle MM_HANDLE;

/* Obtains a region of at least `size` bytes, aligned to the pool word; null on failure. `param` is
 * MM_PROP_PARAM. */
typedef CS_VOID *(*MM_SBREAK_FUNC)(MM_HANDLE *mmh, CS_VOID *param, CS_UINT size);
/* Gives a region back. */
typedef void (*MM_UNSBREAK_FUNC)(MM_HANDLE *mmh, CS_VOID *param, CS_VOID *buffer);
/* Serialise a pool. `lockarg` is MM_PROP_LOCKARG. */
typedef CS_RETCODE (*MM_LOCK_FUNC)(MM_HANDLE *mmh, CS_VOID *lockarg);
typedef CS_RETCODE (*MM_UNLOCK_FUNC)(MM_HANDLE *mmh, CS_VOID *lockarg);

/* Pool types. */
#define MM_POOL_NONE 2235 /* accepted by the property, served by no strategy */
#define MM_POOL_BUDDY 2236
#define MM_POOL_ALLOCONLY 2237
#define MM_POOL_UNIFORM 2238

/* Actions and properties of comn_mmproperty. */
#define MM_ACTION_GET 33
#define MM_ACTION_SET 34
#define MM_ACTION_CLEAR 35
#define MM_PROP_POOLTYPE 1235
#define MM_PROP_SBREAK 1236
#define MM_PROP_PARAM 1237
#define MM_PROP_UNSBREAK 1238
#define MM_PROP_LOCK 1239
#define MM_PROP_LOCKARG 1240
#define MM_PROP_UNLOCK 1241
#define MM_PROP_CHUNKSIZE 1242
#define MM_PROP_MAXSIZE 1243
#define MM_PROP_ADDHEAP 1244
#define MM_PROP_OVERHEAD 1245
#define MM_PROP_SUBPOOL 1246
#define MM_PROP_BLOCKSIZE 1247

/* Options of comn_mmdrop. */
#define MM_DROP_NORMAL CS_UNUSED
#define MM_DROP_FORCE 300

/* A property that does not exist or does not allow the action. */
#define MM_BAD_PROPERTY (-214)

/* Marks a pool without a ceiling. */
#define MM_NO_MAXSIZE (-9999)

/*
 * Makes a pool that a context serves: regions come from ctxmalloc and go back through ctxfree, and
 * if the context has thread callbacks, a mutex of theirs guards the pool.
 *
 * ctx  in      a context of version 114 or later, else fatal; it must outlive the pool
 * mmh  in,out  null inside: the pool's records come from ctxmalloc. Else it points to storage of
 *              the caller, aligned for pointers, of MM_PROP_OVERHEAD bytes, which holds the records
 *
 * Returns CS_SUCCEED; CS_FAIL when a record cannot be had; the code of create_mutex_fn when it
 * fails (the pool's head, if it came from ctxmalloc, is then lost). `*mmh` stays as it was unless
 * the call succeeds.
 */
ZRV_API CS_RETCODE comn_mminit(CS_CONTEXT *ctx, MM_HANDLE **mmh) ZRV_NOEXCEPT;

/*
 * Makes a pool without a context. It has no break or lock functions until properties set them.
 *
 * buffer  in      memory for the pool, which stays the caller's and must outlive the pool; may be
 *                 null when `buflen` is 0 and `*mmh` is not null
 * buflen  in      its length in bytes
 * mmh     in,out  as for comn_mminit, but the records of a null handle are carved out of `buffer`
 *
 * What is left of `buffer` becomes the first region, unless nothing is. Returns CS_SUCCEED; CS_FAIL
 * when `buflen` is below the size of a handle and the records must come out of the buffer. A
 * remainder below 9 bytes, or a `buflen` that has no room for both records, is fatal. A pool whose
 * records came out of the buffer cannot be dropped to its end (see comn_mmdrop); release the buffer
 * instead.
 */
ZRV_API CS_RETCODE comn_mmmanage(CS_VOID *buffer, CS_UINT buflen, MM_HANDLE **mmh) ZRV_NOEXCEPT;

/*
 * Reads or changes a property.
 *
 * mmh       in      the pool; not looked at for MM_PROP_OVERHEAD
 * action    in      MM_ACTION_; another one is fatal
 * property  in      MM_PROP_; another one is fatal, MM_BAD_PROPERTY
 * buffer    in,out  an integer property: points to a CS_INT. A pointer property: to set it, the
 *                   pointer itself; to get it, the place to store it
 * buflen    in      MM_PROP_ADDHEAP: bytes at `buffer`; MM_PROP_SUBPOOL: the tag; else not read
 * outlen    out     4 after a successful get; may be null
 *
 *   property   kind     set                                       get
 *   POOLTYPE   integer  CS_FAIL after the first allocation; a     yes
 *                       value that is no MM_POOL_ is fatal,
 *                       MM_BAD_PROPERTY
 *   SBREAK     pointer  null is fatal                             yes
 *   PARAM      pointer  yes                                       succeeds, delivers nothing
 *   UNSBREAK   pointer  null is fatal                             yes
 *   LOCK       pointer  null is fatal; CS_FAIL if one is set      yes
 *   LOCKARG    pointer  yes                                       succeeds, delivers nothing
 *   UNLOCK     pointer  null is fatal                             yes
 *   CHUNKSIZE  integer  below 1 is fatal                          yes; 4120 by default
 *   MAXSIZE    integer  below 1 is fatal                          yes; MM_NO_MAXSIZE by default
 *   ADDHEAP    pointer  hands in a region, which stays the        fatal, MM_BAD_PROPERTY
 *                       caller's; below 9 bytes is fatal
 *   OVERHEAD   integer  CS_FAIL                                   bytes for a pool's records
 *   SUBPOOL    pointer  CS_FAIL                                   the sub-pool of that tag; fatal
 *                                                                 when there is none
 *   BLOCKSIZE  integer  CS_FAIL after the first allocation;       yes; 4096 by default
 *                       below 1 is fatal
 *
 * A region too small for its record counts in the pool's total and serves nothing.
 *
 * The pool is locked during the call if it has both lock functions, and unlocked at the end if it
 * has both then. To install locking set LOCKARG, then UNLOCK, and LOCK last, which does not unlock.
 * Clear works on LOCK, LOCKARG and UNLOCK alike, and each clears all three; the unlock function is
 * called first and its code is the result. A mutex made by comn_mminit is not deleted then. Clear
 * is fatal for other properties, MM_BAD_PROPERTY.
 */
ZRV_API CS_RETCODE comn_mmproperty(MM_HANDLE *mmh, CS_INT action, CS_INT property, CS_VOID *buffer,
                                   CS_INT buflen, CS_INT *outlen) ZRV_NOEXCEPT;

/*
 * Allocates `size` bytes, cleared. The memory belongs to the pool: release it with comn_mmfree on
 * the same handle, or by dropping the pool.
 *
 * Returns CS_SUCCEED; CS_MEM_ERROR when no region can be had, the ceiling is reached or the size is
 * out of reach, the pool stays usable; CS_FAIL for another size than the first in a uniform pool. A
 * pool of type MM_POOL_NONE is fatal. `*buffer` is set on success only.
 */
ZRV_API CS_RETCODE comn_mmalloc(MM_HANDLE *mmh, CS_UINT size, CS_VOID **buffer) ZRV_NOEXCEPT;

/*
 * Resizes an allocation of a buddy pool, which may move. It never shrinks, and what is added is not
 * cleared.
 *
 * A size up to the whole block succeeds in place, and the block counts its header: sizes in the
 * last pool word of it are reported as done although that word is not the caller's. Callers must
 * not write there; comn_mmalloc of the new size is the way to be sure of it.
 *
 * Returns CS_SUCCEED, `*buffer` is the new place, and the old region may remain as for comn_mmfree;
 * CS_MEM_ERROR, the allocation stands; CS_FAIL in a uniform or alloc-only pool, whatever `*buffer`
 * holds. In a pool of another type, or a buddy pool that never allocated, the call is fatal, and so
 * is a `*buffer` that is null or not a live allocation of the pool.
 */
ZRV_API CS_RETCODE comn_mmrealloc(MM_HANDLE *mmh, CS_UINT size, CS_VOID **buffer) ZRV_NOEXCEPT;

/*
 * Releases an allocation. Returns CS_SUCCEED; CS_FAIL in an alloc-only pool, which does nothing.
 *
 * Fatal: a pool that never allocated, a lock that fails, a pointer outside the pool's regions. An
 * allocation of 0 bytes in an alloc-only pool may lie at the very end of a region, which is outside.
 * Also fatal, but for an alloc-only pool: a pointer among a region's first bytes, which are its
 * record and one pool word more (24 bytes under ILP32); in a buddy pool a pointer that is no block's
 * or that of a block which is free already. A uniform pool does not inspect the pointer further.
 *
 * A region that is wholly free then goes back to the break function it came from. When there is no
 * function to take it, the region stays with the pool and serves on, and the call succeeds all the
 * same.
 *
 * The cost of finding the region grows with the number of regions, newest first.
 */
ZRV_API CS_RETCODE comn_mmfree(MM_HANDLE *mmh, CS_VOID *buf) ZRV_NOEXCEPT;

/* Not implemented: fatal. */
ZRV_API CS_RETCODE comn_mmdiag(MM_HANDLE *mmh) ZRV_NOEXCEPT;

/*
 * Removes a pool with all its memory, or with MM_DROP_NORMAL a sub-pool alone.
 *
 * option  in  MM_DROP_NORMAL: CS_BUSY while the handle has sub-pools. MM_DROP_FORCE: the whole pool
 *             goes, also when the handle is a sub-pool. Another option is fatal.
 *
 * Regions of the break function go back to it, if there is a function to take them. Regions of the
 * caller are left alone, and so is a handle in the caller's storage. The pool is locked during the
 * call and unlocked at its end, also after CS_BUSY. Returns CS_SUCCEED or CS_BUSY. Fatal: a handle
 * that is not one; a pool whose records were carved out of a buffer by comn_mmmanage, after its
 * regions have gone.
 */
ZRV_API CS_RETCODE comn_mmdrop(MM_HANDLE *mmh, CS_INT option) ZRV_NOEXCEPT;

ZRV_END_DECLS

#endif
