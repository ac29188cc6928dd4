/* A text under a key of its own, and a secret in a store on disk. */
#define _XOPEN_SOURCE 700 /* mkdtemp */
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>
#include <zrvcomn/comncrypto.h>
#include <zrvcomn/securestore.h>

/* A fresh key encrypts; its bytes, loaded again, decrypt. The vector goes along with the text. */
static int encrypt_and_back(CS_CONTEXT *context) {
  CS_BYTE text[] = "meet me at noon", bytes[COMN_SYMKEY_MAXLEN], vector[COMN_SYMKEY_IVLEN];
  CS_BYTE cipher[sizeof text + COMN_SYMKEY_IVLEN], back[sizeof cipher];
  CS_INT key_length = 0;
  CS_UINT length = 0, back_length = 0;
  COMN_SYMKEY *theirs = NULL, *ours = comn_create_symkey(context);
  int done =
      ours != NULL && comn_get_symkey(ours, bytes, &key_length) == CS_SUCCEED &&
      comn_symkey_get_iv(ours, vector) == CS_SUCCEED &&
      comn_symkey_encrypt(ours, text, sizeof text, cipher, sizeof cipher, &length) == CS_SUCCEED;
  if (done)
    theirs = comn_load_symkey(context, bytes, key_length);
  done = done && theirs != NULL && comn_symkey_set_iv(theirs, vector) == CS_SUCCEED &&
         comn_symkey_decrypt(theirs, cipher, length, back, sizeof back, &back_length) == CS_SUCCEED;
  if (done)
    printf("%d bytes of text, %u of ciphertext, and back: %s\n", (int)sizeof text, length,
           (char *)back);
  comn_drop_symkey(theirs);
  comn_drop_symkey(ours);
  return done;
}

/* One value into the store of a directory; a null value removes it. The entry points that the context's
 * table does not have are in the library that it opened. */
static int put(const SSFSAPI_PROVIDER *store, const char *key, const char *value) {
  RSEC_SSFS_RC (*get_block)(RSecSSFsPutRecordAPI **), (*release)(RSecSSFsPutRecordAPI **);
  RSEC_SSFS_RC (*run)(RSecSSFsPutRecordAPI *);
  RSecSSFsPutRecordAPI *block = NULL;
  int done = 0;
  *(void **)&get_block = dlsym(store->handle, "RSecSSFsPutRecordAPIGet");
  *(void **)&run = dlsym(store->handle, "RSecSSFsPutRecord");
  *(void **)&release = dlsym(store->handle, "RSecSSFsPutRecordAPIRelease");
  if (get_block == NULL || run == NULL || release == NULL || get_block(&block) != RSEC_SSFS_RC_OK)
    return 0;
  block->in_pKey = key;
  block->in_pValue = value;
  if (run(block) == RSEC_SSFS_RC_OK)
    done = 1;
  else
    fprintf(stderr, "%s\n", block->out_pProcessingInfo->pErrorText);
  release(&block);
  return done;
}

static int print(const SSFSAPI_PROVIDER *store, const char *key) {
  RSecSSFsGetRecordAPI *block = NULL;
  if (store->GetRecordAPIGet(&block) != RSEC_SSFS_RC_OK)
    return 0;
  block->in_pKey = key;
  const int done = store->GetRecord(block) == RSEC_SSFS_RC_OK;
  if (done)
    printf("%s is %s\n", key, block->out_pValue);
  else
    fprintf(stderr, "%s\n", block->out_pProcessingInfo->pErrorText);
  store->GetRecordAPIRelease(&block);
  return done;
}

static int put_and_get(CS_CONTEXT *context) {
  char directory[] = "/tmp/zrvcomn-example-XXXXXX";
  int done = mkdtemp(directory) != NULL && com_ssfscontext_alloc(context) == CS_SUCCEED;
  if (done) {
    const SSFSAPI_PROVIDER *store = ((SSFS_CONTEXT *)context->ctxssfsctx)->ssfsp;
    done = store->SetConfiguration(directory) == RSEC_SSFS_RC_OK &&
           put(store, "app/password", "correct horse") && print(store, "app/password") &&
           put(store, "app/password", NULL);
  }
  com_ssfscontext_drop(context);
  return chdir(directory) == 0 && unlink("key") == 0 && unlink("lock") == 0 &&
         rmdir(directory) == 0 && done;
}

int main(void) {
  CS_CONTEXT context = {0};
  const int done = encrypt_and_back(&context) && put_and_get(&context);
  com_cclcontext_drop(&context);
  comn_cryptolib_unload();
  return done ? 0 : 1;
}
/* prints:
16 bytes of text, 32 of ciphertext, and back: meet me at noon
app/password is correct horse
*/
