/* From start to teardown with the locales of the environment, and a message on the way. */
#define _XOPEN_SOURCE 700 /* putenv */
#include <stdlib.h>

#include "session.h"

static CS_RETCODE print_message(CS_CONTEXT *context, CS_CLIENTMSG *message) {
  (void)context;
  printf("%d: %.*s\n", message->msgnumber, (int)message->msgstringlen, message->msgstring);
  return CS_SUCCEED;
}

int main(void) {
  CS_CHAR file[] = "nowhere.cfg";
  CS_CONFIG *config = NULL;
  Session session;
  static char as_a_user_may_have_them[][24] = {"LC_COLLATE=de_DE.UTF-8", "LC_CTYPE=de_DE.UTF-8",
                                               "LC_MESSAGE=de_DE.UTF-8", "LC_MONETARY=de_DE.UTF-8",
                                               "LC_NUMERIC=de_DE.UTF-8", "LC_TIME=fr_FR.UTF-8"};
  for (int i = 0; i < 6; ++i)
    putenv(as_a_user_may_have_them[i]);

  const int started = start(&session, NULL) == CS_SUCCEED;
  if (started) {
    printf("the seventh month is %s\n", com_intl_months(&session.context, NULL)[6]);
    session.context.ctxerrfunc = print_message;
    comn_init_cfg(&session.context, file, CS_LEN_NULLTERM, &config); /* fails, and says why */
  } else {
    com_intl_verify_ctxloc(&session.context); /* prints what the installation lacks */
  }
  end(&session);
  return started ? 0 : 1;
}
/* prints:
the seventh month is juillet
17040899: comn_init_cfg: gemeinsame Bibliothek: Konfiguration: Die Datei "nowhere.cfg" kann nicht geöffnet werden.
*/
