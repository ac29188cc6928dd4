/*
 * velssfs.h - the interface of libvelssfs: a store for secrets on disk.
 *
 * libzrvcomn opens the library at run time and looks five of these functions up (securestore.h), so
 * any library with this interface can stand in its place.
 *
 * A store is a directory. Each record is a file of its own in it, and the file "key" holds the master
 * key; all have the mode 0600. Values are encrypted under the master key, with AES-256-GCM, and bound
 * to their record's key; a value that is stored as plain text is bound to it in the same way. So a
 * file that was changed, cut or put in another's place is told from a good one. What is not seen: a
 * file that was replaced by an older state of itself, and a record that somebody removed. Who reads
 * the file "key" reads every value: docs/security.md tells what the store protects from what.
 *
 * Processes and threads may use one store at the same time. Writers wait for one another at the file
 * "lock"; readers of a record wait for nobody and see the value before or after a change. A change
 * that was reported as done has reached the disk, and one that broke off, by a crash or by a full
 * disk, has left the old value or the new one. That holds for the directory of a new store as well,
 * unless it is made in one that may be written to and not be read.
 *
 * How an operation is called: get its block, fill in the fields that begin with in_, call, read the
 * fields that begin with out_, release. A block can be used again and again, by one thread at a time.
 * What its out_ fields point to belongs to it and lasts until the next call with it or its release,
 * when values and keys are wiped. The callers' strings need only live through the call.
 */
#ifndef ZRV_VELSSFS_H
#define ZRV_VELSSFS_H

#include <stddef.h>

#ifndef ZRV_API
#define ZRV_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#define VELSSFS_NOEXCEPT noexcept
#else
#define VELSSFS_NOEXCEPT
#endif

typedef char VEL_UC;            /* a byte of text, which is UTF-8 */
typedef unsigned char VEL_BOOL; /* 0 or 1 */
typedef unsigned char VEL_RAW;  /* a byte of a binary value */
typedef size_t size_tR;

/* Sizes in bytes, without terminators. */
#define VELSSFS_MAX_KEY 200        /* the longest key of a record */
#define VELSSFS_MAX_VALUE 1048576  /* the longest value */
#define VELSSFS_MAX_DIRECTORY 3072 /* the longest path of a store */
#define VELSSFS_CHAR_KEY 64        /* the text of a master key */

/* How long a writer waits for another one, in milliseconds. */
#define VELSSFS_LOCK_WAIT 60000

/* What every function returns. The positive codes leave the store as it was and sound. */
typedef enum {
  RSEC_SSFS_RC_OK = 0,
  RSEC_SSFS_RC_RECORD_NOT_FOUND = 1,     /* there is no record of that key */
  RSEC_SSFS_RC_VALUE_TOO_LONG = 2,       /* above VELSSFS_MAX_VALUE */
  RSEC_SSFS_RC_CONCURRENT_UPDATE = 3,    /* another process held the store for too long */
  RSEC_SSFS_RC_RECORD_KEY_FORMAT = -1,   /* this cannot be the key of a record */
  RSEC_SSFS_RC_ENVIRONMENT = -2,         /* a call to the system failed; the key file is missing or
                                            may be read by others than its owner */
  RSEC_SSFS_RC_NO_WRITE_PERMISSION = -3, /* the directory cannot be written to */
  RSEC_SSFS_RC_UTF8_CONVERSION = -4,     /* a text value is not UTF-8 */
  RSEC_SSFS_RC_INCORRECT_KEY = -5,       /* this is no master key, or not the one that is missing */
  RSEC_SSFS_RC_FILE_CORRUPTION = -6,     /* a file of the store is not as it was written */
  RSEC_SSFS_RC_RSECSSFX_USAGE = -7,      /* a null pointer, or a block that is none */
  RSEC_SSFS_RC_SEE_TRACE_FILE = -8,      /* not given by this library, which writes no trace */
  RSEC_SSFS_RC_LOW_MEMORY = -9           /* no memory */
} RSEC_SSFS_RC;

/* How a call went: its code again, and a line of English about a failure, with the file that it is
 * about; the empty string after a success. Never holds a value or a master key. */
typedef struct RSecProcessingInfo {
  RSEC_SSFS_RC rc;
  const VEL_UC *pErrorText;
} RSecProcessingInfo;

/*
 * The key of a record: 1 to VELSSFS_MAX_KEY bytes, names that are separated by single slashes. A name
 * is made of letters and digits of ASCII, '_', '-' and '.', and begins with a letter, a digit or '_'.
 * Case counts.
 */

/* Reads a record. */
typedef struct RSecSSFsGetRecordAPI {
  const VEL_UC *in_pKey;
  const RSecProcessingInfo *out_pProcessingInfo;
  const VEL_UC *out_pValue; /* a text value, NUL-terminated; null for a binary one */
  VEL_BOOL out_isStoredAsPlaintext;
  void *internalOpaque; /* the library's own */
  VEL_BOOL out_isBinary;
  const VEL_RAW *out_pValueX; /* any value, a text without its terminator */
  size_tR out_pValueXLen;     /* its length in bytes */
} RSecSSFsGetRecordAPI;

/* Writes a record, or removes it. */
typedef struct RSecSSFsPutRecordAPI {
  const VEL_UC *in_pKey;
  const VEL_UC *in_pValue;    /* a text value, NUL-terminated, in UTF-8 */
  VEL_BOOL in_storePlaintext; /* 1: the value is not encrypted */
  const RSecProcessingInfo *out_pProcessingInfo;
  void *internalOpaque;      /* the library's own */
  VEL_BOOL in_isBinary;      /* 1: the value is the next two, and in_pValue is not looked at */
  const VEL_RAW *in_pValueX; /* a binary value; may be null if it is empty */
  size_tR in_pValueXLen;     /* its length in bytes */
} RSecSSFsPutRecordAPI;

/* Makes the text of a new master key. */
typedef struct RSecSSFsGenerateCharKeyAPI {
  const VEL_UC *out_pCharKey; /* VELSSFS_CHAR_KEY hexadecimal digits, NUL-terminated */
  const RSecProcessingInfo *out_pProcessingInfo;
  void *internalOpaque; /* the library's own */
} RSecSSFsGenerateCharKeyAPI;

/* Changes the master key. */
typedef struct RSecSSFsChangeKeyAPI {
  const VEL_UC *in_pCharKey; /* the new one, VELSSFS_CHAR_KEY hexadecimal digits of either case */
  const RSecProcessingInfo *out_pProcessingInfo;
  void *internalOpaque;  /* the library's own */
  void *in_pLockContext; /* null, or the address of an int: how many milliseconds to wait for other
                            writers, in place of VELSSFS_LOCK_WAIT; 0 or less does not wait */
} RSecSSFsChangeKeyAPI;

/* A line of a list of keys. */
typedef struct RSecSSFsListRecordKeysLine {
  const VEL_UC *pKey;
} RSecSSFsListRecordKeysLine;

/* Lists the keys of the store. */
typedef struct RSecSSFsListRecordKeysAPI {
  const VEL_UC *in_pKeyPrefix; /* what the keys begin with; null or empty for all keys */
  const RSecProcessingInfo *out_pProcessingInfo;
  size_tR out_listSize;                           /* the number of lines */
  const RSecSSFsListRecordKeysLine *out_pRecords; /* in the order of their bytes; null for none */
  void *internalOpaque;                           /* the library's own */
} RSecSSFsListRecordKeysAPI;

/*
 * Tells whether the library can work at all: whether its cipher is to be had. Nothing is kept; no other
 * function needs it to be called first.
 *
 * Returns RSEC_SSFS_RC_OK or RSEC_SSFS_RC_ENVIRONMENT.
 */
ZRV_API RSEC_SSFS_RC RSecSSFsSharedLibInit(void) VELSSFS_NOEXCEPT;

/*
 * Sets the directory of the store, for the whole process and for blocks that are made from now on; to
 * be called while no other thread makes one. The directory need not exist: the first record that is
 * written makes it, with those above it, with the mode 0700.
 *
 * directory  in  its path; null or empty for the default, which is zrvcomn/secstore below
 *                XDG_STATE_HOME, if that is set to an absolute path, else .local/state/zrvcomn/secstore
 *                below HOME, else below the home directory of the user. A process with the rights of
 *                another user than its caller's does not read the environment.
 *
 * Returns RSEC_SSFS_RC_OK, or RSEC_SSFS_RC_ENVIRONMENT, nothing changed, for a path of more than
 * VELSSFS_MAX_DIRECTORY bytes.
 */
ZRV_API RSEC_SSFS_RC RSecSSFsSetConfiguration(const VEL_UC *directory) VELSSFS_NOEXCEPT;

/*
 * Make a block for a call, with its in_ fields cleared. It is to be released with the function of the
 * same name below, before the library is closed.
 *
 * Return RSEC_SSFS_RC_OK; RSEC_SSFS_RC_LOW_MEMORY, the pointer null; RSEC_SSFS_RC_RSECSSFX_USAGE for a
 * null argument.
 */
ZRV_API RSEC_SSFS_RC RSecSSFsGetRecordAPIGet(RSecSSFsGetRecordAPI **api) VELSSFS_NOEXCEPT;
ZRV_API RSEC_SSFS_RC RSecSSFsPutRecordAPIGet(RSecSSFsPutRecordAPI **api) VELSSFS_NOEXCEPT;
ZRV_API RSEC_SSFS_RC RSecSSFsListRecordKeysAPIGet(RSecSSFsListRecordKeysAPI **api) VELSSFS_NOEXCEPT;
ZRV_API RSEC_SSFS_RC RSecSSFsGenerateCharKeyAPIGet(RSecSSFsGenerateCharKeyAPI **api)
    VELSSFS_NOEXCEPT;
ZRV_API RSEC_SSFS_RC RSecSSFsChangeKeyAPIGet(RSecSSFsChangeKeyAPI **api) VELSSFS_NOEXCEPT;

/*
 * Release a block, wipe what it held, and clear the pointer to it.
 *
 * Return RSEC_SSFS_RC_OK, also when there is no block; RSEC_SSFS_RC_RSECSSFX_USAGE, nothing done, for
 * a null argument and for a block that is none.
 */
ZRV_API RSEC_SSFS_RC RSecSSFsGetRecordAPIRelease(RSecSSFsGetRecordAPI **api) VELSSFS_NOEXCEPT;
ZRV_API RSEC_SSFS_RC RSecSSFsPutRecordAPIRelease(RSecSSFsPutRecordAPI **api) VELSSFS_NOEXCEPT;
ZRV_API RSEC_SSFS_RC RSecSSFsListRecordKeysAPIRelease(RSecSSFsListRecordKeysAPI **api)
    VELSSFS_NOEXCEPT;
ZRV_API RSEC_SSFS_RC RSecSSFsGenerateCharKeyAPIRelease(RSecSSFsGenerateCharKeyAPI **api)
    VELSSFS_NOEXCEPT;
ZRV_API RSEC_SSFS_RC RSecSSFsChangeKeyAPIRelease(RSecSSFsChangeKeyAPI **api) VELSSFS_NOEXCEPT;

/*
 * The calls themselves. Each returns the code that is in out_pProcessingInfo as well; for
 * RSEC_SSFS_RC_RSECSSFX_USAGE because of a block that is null or none nothing is written at all.
 * After any failure the other out_ fields are null and 0. Any of them can give
 * RSEC_SSFS_RC_ENVIRONMENT and RSEC_SSFS_RC_LOW_MEMORY.
 */

/*
 * Reads a record. The block keeps the master key for the next call.
 *
 * RSEC_SSFS_RC_RECORD_NOT_FOUND, also where there is no store; RSEC_SSFS_RC_RECORD_KEY_FORMAT;
 * RSEC_SSFS_RC_FILE_CORRUPTION, for the record and for the file "key"; RSEC_SSFS_RC_ENVIRONMENT when
 * the file "key" is missing; RSEC_SSFS_RC_CONCURRENT_UPDATE when the master key was changed again and
 * again while the record was read.
 */
ZRV_API RSEC_SSFS_RC RSecSSFsGetRecord(RSecSSFsGetRecordAPI *api) VELSSFS_NOEXCEPT;

/*
 * Writes a record, over the one that is there, whatever its state. A text value that is null removes
 * the record instead: in_isBinary 0 and both in_pValue and in_pValueX null. The first record that is
 * written makes the store with a master key of its own.
 *
 * RSEC_SSFS_RC_RECORD_KEY_FORMAT; RSEC_SSFS_RC_VALUE_TOO_LONG; RSEC_SSFS_RC_UTF8_CONVERSION;
 * RSEC_SSFS_RC_RECORD_NOT_FOUND for a removal; RSEC_SSFS_RC_RSECSSFX_USAGE for a null value that is
 * not empty, and for in_pValueX alone with in_isBinary 0; RSEC_SSFS_RC_CONCURRENT_UPDATE;
 * RSEC_SSFS_RC_NO_WRITE_PERMISSION; RSEC_SSFS_RC_FILE_CORRUPTION for the file "key";
 * RSEC_SSFS_RC_ENVIRONMENT when it is missing although there are records. A failure has left the old
 * state or, when only the last step to the disk failed, the new one.
 */
ZRV_API RSEC_SSFS_RC RSecSSFsPutRecord(RSecSSFsPutRecordAPI *api) VELSSFS_NOEXCEPT;

/*
 * Lists the keys that begin with a prefix. Records are not opened: one that is damaged is listed too.
 *
 * RSEC_SSFS_RC_RECORD_KEY_FORMAT for a prefix with bytes that no key has;
 * RSEC_SSFS_RC_CONCURRENT_UPDATE. Where there is no store the list is empty.
 */
ZRV_API RSEC_SSFS_RC RSecSSFsListRecordKeys(RSecSSFsListRecordKeysAPI *api) VELSSFS_NOEXCEPT;

/* Makes the text of a new master key from random bytes. The store is not looked at. */
ZRV_API RSEC_SSFS_RC RSecSSFsGenerateCharKey(RSecSSFsGenerateCharKeyAPI *api) VELSSFS_NOEXCEPT;

/*
 * Changes the master key and encrypts every record anew; makes a store where there is none.
 *
 * First every record is read, and a damaged one ends the call with nothing changed. Then the file "key"
 * gets the new key beside the old one, records follow one by one, and last the old key goes. A change
 * that breaks off leaves a store in which every record can be read and written; the next change, to the
 * same key or to another, completes it first. The key that the store has is RSEC_SSFS_RC_OK.
 *
 * Where the file "key" is missing although there are records, the key that they are encrypted under
 * brings it back; any other one is RSEC_SSFS_RC_INCORRECT_KEY.
 *
 * RSEC_SSFS_RC_INCORRECT_KEY, also for a text that is no master key or null;
 * RSEC_SSFS_RC_FILE_CORRUPTION; RSEC_SSFS_RC_CONCURRENT_UPDATE; RSEC_SSFS_RC_NO_WRITE_PERMISSION.
 */
ZRV_API RSEC_SSFS_RC RSecSSFsChangeKey(RSecSSFsChangeKeyAPI *api) VELSSFS_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
