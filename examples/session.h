/*
 * From start to teardown of a context with an installation, in the told order, as each example needs it.
 * docs/startup.md numbers the steps so and has what each failure means. A start that fails has released
 * nothing yet: end it all the same.
 */
#ifndef ZRV_EXAMPLE_SESSION_H
#define ZRV_EXAMPLE_SESSION_H

#include <stdio.h>
#include <string.h>
#include <zrvcomn/charset.h>
#include <zrvcomn/comcfg.h>
#include <zrvcomn/comerr.h>
#include <zrvcomn/comloc.h>
#include <zrvcomn/comnlib.h>
#include <zrvcomn/lmpublic.h>
#include <zrvcomn/zrvintl.h>
#include <zrvcomn/zrvstatus.h>

typedef struct {
  CS_CONTEXT context;
  CsCtxGlobals globals;
  CsAppGlobal *process;
  CS_LOCALE locale; /* ctxlocale: what the names of the environment or the program mean */
} Session;

/* Handles of configuration files go back through comn_free, so they come from there. */
static CS_VOID *from_heap(CS_CONTEXT *context, CS_UINT size) {
  (void)context;
  return comn_malloc(size);
}

/* Says what failed; `step` is the call. */
static CS_RETCODE report(const char *step, const char *name, CS_RETCODE status) {
  const char *text = zrv_status_name(status);
  fprintf(stderr, "%s %s: %s\n", step, name, text != NULL ? text : "failed");
  return status;
}

/* Loads a locale for all six categories; without a name each has that of the environment. */
static CS_RETCODE load_locale(Session *session, const char *name) {
  CS_LOCALE *const locale = &session->locale;
  CS_VOID **const categories[] = {&locale->collateptr,  &locale->ctypeptr,   &locale->messageptr,
                                  &locale->monetaryptr, &locale->numericptr, &locale->timeptr};
  for (CS_INT i = 0; i < 6; ++i) {
    CS_CHAR of_environment[COM_LOCNAME_SIZE], file[1025] = "";
    CS_CHAR *const text = name != NULL ? (CS_CHAR *)name : of_environment;
    CS_RETCODE status = CS_SUCCEED;
    if (name == NULL)
      status = com_intl_envloc(&session->context, CS_LCTYPE_COLLATE + i, text, COM_LOCNAME_SIZE);
    if (status != CS_SUCCEED)
      return report("com_intl_envloc", "", status);
    status = comn_intl_load(&session->context, text, (CS_INT)strlen(text), categories[i], file,
                            sizeof file);
    if (status != CS_SUCCEED)
      return report("comn_intl_load", file, status);
  }
  locale->ctxptr = &session->context;
  session->context.ctxlocale = locale;
  return CS_SUCCEED;
}

static CS_RETCODE start(Session *session, const char *locale) {
  CS_CONTEXT *const context = &session->context;
  CS_OID_TABLE *identifiers = NULL;
  CS_CHAR file[1025] = "";
  CS_RETCODE status;
  memset(session, 0, sizeof *session);
  /* 1. the process-wide record */
  if ((status = com_appglobal_alloc(&session->process, NULL, COM_APPGLOBAL_STATIC)) != CS_SUCCEED)
    return report("com_appglobal_alloc", "", status);
  /* 2. the context, and what the layers above set in it */
  context->ctxglobals = &session->globals;
  context->ctxversion = COM_CFG_MIN_CTXVERSION;
  context->ctxmalloc = from_heap;
  /* 3. the identifiers of character sets, languages and sort orders: objectid.dat */
  status = comn_intl_load_globalid(context, &identifiers);
  session->globals.ctxoids = identifiers;
  if (status != CS_SUCCEED)
    return report("comn_intl_load_globalid", "objectid.dat", status);
  /* 4. the character sets that the library itself needs */
  if ((status = comn_intl_init(context, file, sizeof file)) != CS_SUCCEED)
    return report("comn_intl_init", file, status);
  /* 5. the locale: character set, sort order, language, dates */
  if ((status = load_locale(session, locale)) != CS_SUCCEED)
    return status;
  /* 6. the matrix of conversions, 7. the default values */
  if ((status = com_conv_init(context)) != CS_SUCCEED)
    return report("com_conv_init", "", status);
  if ((status = com_null_init(context)) != CS_SUCCEED)
    return report("com_null_init", "", status);
  /* 8. the messages in its language; one without a text says so in its line */
  com_errinit(context);
  return CS_SUCCEED;
}

/* What was started goes in the opposite order; what was not is passed over. */
static void end(Session *session) {
  CS_CONTEXT *const context = &session->context;
  com_errdrop(context);
  com_null_free(context);
  com_conv_free(context);
  comn_loc_drop_all(context);
  com_intl_loccache_drop(context);
  com_intl_chardesc_drop(context);
  comn_intl_dt_drop(context);
  comn_intl_mon_drop(context);
  comn_intl_num_drop(context);
  comn_intl_drop_mnemdb(context);
  comn_intl_message_drop(context);
  comn_lm_exit(context);
  comn_intl_drop_globalid(context, (CS_OID_TABLE *)session->globals.ctxoids);
  if (session->process != NULL)
    com_appglobal_drop(session->process, COM_APPGLOBAL_STATIC);
}

#endif
