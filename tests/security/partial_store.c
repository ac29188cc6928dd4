/* Stands in for the library of the secure store, with the first entry points only: ENTRIES of them. */
#define ENTRY(number, name)                                                                        \
  int name(void) {                                                                                 \
    return number;                                                                                 \
  }

int partial_store_entries(void);
int partial_store_entries(void) {
  return ENTRIES;
}

#if ENTRIES > 0
int RSecSSFsSharedLibInit(void);
ENTRY(1, RSecSSFsSharedLibInit)
#endif
#if ENTRIES > 1
int RSecSSFsSetConfiguration(void);
ENTRY(2, RSecSSFsSetConfiguration)
#endif
#if ENTRIES > 2
int RSecSSFsGetRecordAPIGet(void);
ENTRY(3, RSecSSFsGetRecordAPIGet)
#endif
#if ENTRIES > 3
int RSecSSFsGetRecord(void);
ENTRY(4, RSecSSFsGetRecord)
#endif
