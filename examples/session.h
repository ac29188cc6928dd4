/*
 * From start to teardown of a context with an installation, as each example needs it. A start that
 * fails has released nothing yet: end it all the same.
 */
#ifndef ZRV_EXAMPLE_SESSION_H
#define ZRV_EXAMPLE_SESSION_H

#include <stdio.h>
#include <string.h>
#include <zrvcomn/charset.h>
#include <zrvcomn/comerr.h>
#include <zrvcomn/comloc.h>
#include <zrvcomn/comnlib.h>
#include <zrvcomn/lmpublic.h>
#include <zrvcomn/zrvstatus.h>

typedef struct {
  CS_CONTEXT context;
  CsCtxGlobals globals;
  CS_LOCALE locale; /* ctxlocale: what the names of the environment or the program mean */
} Session;

/* Says what failed; `step` is the call. */
static CS_RETCODE report(const char *step, const char *name, CS_RETCODE status) {
  const char *text = zrv_status_name(status);
  fprintf(stderr, "%s %s: %s\n", step, name, text != NULL ? text : "failed");
  return status;
}

/* Loads a locale for all six categories. */
static CS_RETCODE load_locale(Session *session, const char *name) {
  CS_VOID *cache = NULL;
  CS_CHAR file[1025] = "";
  CS_RETCODE status = comn_intl_load(&session->context, (CS_CHAR *)name, (CS_INT)strlen(name),
                                     &cache, file, sizeof file);
  if (status != CS_SUCCEED)
    return report("comn_intl_load", file, status);
  session->locale.collateptr = session->locale.ctypeptr = session->locale.messageptr = cache;
  session->locale.monetaryptr = session->locale.numericptr = session->locale.timeptr = cache;
  session->locale.ctxptr = &session->context;
  session->context.ctxlocale = &session->locale;
  return CS_SUCCEED;
}

static CS_RETCODE start(Session *session, const char *locale) {
  CS_OID_TABLE *identifiers = NULL;
  CS_CHAR file[1025] = "";
  CS_RETCODE status;
  memset(session, 0, sizeof *session);
  session->context.ctxglobals = &session->globals;
  /* 1. the matrix of conversions and the default values */
  if ((status = com_conv_init(&session->context)) != CS_SUCCEED)
    return report("com_conv_init", "", status);
  if ((status = com_null_init(&session->context)) != CS_SUCCEED)
    return report("com_null_init", "", status);
  /* 2. the identifiers of character sets, languages and sort orders: objectid.dat */
  status = comn_intl_load_globalid(&session->context, &identifiers);
  session->globals.ctxoids = identifiers;
  if (status != CS_SUCCEED)
    return report("comn_intl_load_globalid", "objectid.dat", status);
  /* 3. the character sets that the library itself needs */
  if ((status = comn_intl_init(&session->context, file, sizeof file)) != CS_SUCCEED)
    return report("comn_intl_init", file, status);
  /* 4. the locale: character set, sort order, language, dates */
  if ((status = load_locale(session, locale)) != CS_SUCCEED)
    return status;
  /* 5. the messages in its language; without them they come without a text */
  com_errinit(&session->context);
  return CS_SUCCEED;
}

/* What was started goes in the opposite order; what was not is passed over. */
static void end(Session *session) {
  CS_CONTEXT *context = &session->context;
  com_errdrop(context);
  context->ctxlocale = NULL;
  com_intl_loccache_drop(context);
  com_intl_chardesc_drop(context);
  comn_intl_dt_drop(context);
  comn_intl_mon_drop(context);
  comn_intl_num_drop(context);
  comn_intl_message_drop(context);
  comn_intl_drop_mnemdb(context);
  comn_lm_exit(context);
  comn_intl_drop_globalid(context, (CS_OID_TABLE *)session->globals.ctxoids);
  com_null_free(context);
  com_conv_free(context);
}

#endif
