/*
 * securestore.h - the secure store: opens libvelssfs at run time and keeps its entry points for a
 * context. What the library does, and the records that its functions take, tells velssfs.h.
 *
 * Nothing is loaded until a context is given its record. Each context has a record, and a table, of its
 * own. A context is used by one thread at a time; the log is one for the process, and its first line is
 * to be written by one thread.
 */
#ifndef ZRV_SECURESTORE_H
#define ZRV_SECURESTORE_H

#include <stdio.h>

#include "comnlib.h"
#include "csintrn.h"
#include "velssfs.h"

ZRV_BEGIN_DECLS

/* The entry points of the library. Only the first five are looked up; the others stay null, and who
 * needs them looks them up in `handle`, under their names in velssfs.h. */
typedef struct _ssfsapi_provider {
  CS_VOID *handle; /* what dlopen gave; null when it failed */
  RSEC_SSFS_RC (*SharedLibInit)(void);
  RSEC_SSFS_RC (*SetConfiguration)(const VEL_UC *directory);
  RSEC_SSFS_RC (*GetRecordAPIGet)(RSecSSFsGetRecordAPI **api);
  RSEC_SSFS_RC (*GetRecord)(RSecSSFsGetRecordAPI *api);
  RSEC_SSFS_RC (*GetRecordAPIRelease)(RSecSSFsGetRecordAPI **api);
  RSEC_SSFS_RC (*PutRecordAPIGet)(RSecSSFsPutRecordAPI **api);
  RSEC_SSFS_RC (*PutRecord)(RSecSSFsPutRecordAPI *api);
  RSEC_SSFS_RC (*PutRecordAPIRelease)(RSecSSFsPutRecordAPI **api);
  RSEC_SSFS_RC (*ListRecordKeysAPIGet)(RSecSSFsListRecordKeysAPI **api);
  RSEC_SSFS_RC (*ListRecordKeys)(RSecSSFsListRecordKeysAPI *api);
  RSEC_SSFS_RC (*ListRecordKeysAPIRelease)(RSecSSFsListRecordKeysAPI **api);
  RSEC_SSFS_RC (*GenerateCharKeyAPIGet)(RSecSSFsGenerateCharKeyAPI **api);
  RSEC_SSFS_RC (*GenerateCharKey)(RSecSSFsGenerateCharKeyAPI *api);
  RSEC_SSFS_RC (*GenerateCharKeyAPIRelease)(RSecSSFsGenerateCharKeyAPI **api);
  RSEC_SSFS_RC (*ChangeKeyAPIGet)(RSecSSFsChangeKeyAPI **api);
  RSEC_SSFS_RC (*ChangeKey)(RSecSSFsChangeKeyAPI *api);
  RSEC_SSFS_RC (*ChangeKeyAPIRelease)(RSecSSFsChangeKeyAPI **api);
} SSFSAPI_PROVIDER;

/* What ctxssfsctx of a context points to. */
typedef struct _ssfs_context {
  SSFSAPI_PROVIDER *ssfsp;
} SSFS_CONTEXT;

/*
 * Gives a context its record and loads the library.
 *
 * Returns CS_SUCCEED, also for a context that has a record, whatever became of its library; CS_FAIL
 * without memory for the record; CS_FAIL, with the message COM_ERR_LOADLIB (comerr.h), when the library
 * could not be loaded. The record then stays, with what was loaded, and **a further call succeeds**:
 * who goes on after a failure looks at the entry points. com_ssfscontext_drop releases it in any case.
 * A null context is fatal, CS_FAIL.
 */
ZRV_API CS_RETCODE com_ssfscontext_alloc(CS_CONTEXT *context) ZRV_NOEXCEPT;

/*
 * Closes the library, releases the record and clears ctxssfsctx. Blocks that the library made must have
 * been released before.
 *
 * Returns CS_SUCCEED, also for a context without a record; CS_FAIL, nothing released, when the library
 * cannot be closed. A null context is fatal, CS_FAIL.
 */
ZRV_API CS_RETCODE com_ssfscontext_drop(CS_CONTEXT *context) ZRV_NOEXCEPT;

/*
 * Loads the library for a context that has a record. com_ssfscontext_alloc calls it.
 *
 * Returns CS_SUCCEED, also when the record has a table, whatever is in it; CS_FAIL without a record;
 * CS_FAIL without memory for the table, and when the library cannot be opened, both with a line in the
 * log; CS_FAIL when it lacks an entry point. The table then stays with what was found, the library
 * open. A null context is fatal, CS_FAIL.
 */
ZRV_API CS_RETCODE comn_ssfslib_load(CS_CONTEXT *context) ZRV_NOEXCEPT;

/*
 * Closes the library and releases the table, **to which the record goes on pointing**: the record is to
 * be released next, as com_ssfscontext_drop does.
 *
 * Returns CS_SUCCEED, also without a record or a table; CS_FAIL, nothing released, when the library
 * cannot be closed. A null context is fatal, CS_FAIL.
 */
ZRV_API CS_RETCODE comn_ssfslib_unload(CS_CONTEXT *context) ZRV_NOEXCEPT;

/*
 * Writes to the log of the secure store, as printf does, and flushes it. The first call opens the file
 * "secstore.log" in the working directory: a new one of the mode 0600, or an older one, which is emptied
 * and keeps its mode. Where that cannot be had, the log is standard output. A null format is fatal.
 */
ZRV_API void com_ssfsdbg(CS_CHAR *format, ...) ZRV_NOEXCEPT __attribute__((format(printf, 1, 2)));

/* The log; null until its first line. */
extern ZRV_PRIVATE FILE *ssfsfile;

ZRV_END_DECLS

#endif
