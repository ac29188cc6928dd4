/* All values of an entry of the installation's configuration file, those of included sections too. */
#include "session.h"

static int print_all(CS_CONFIG *config, const char *section, const char *entry) {
  CS_CHAR value[80];
  CS_VOID *next = NULL;
  CS_INT length = 0;
  CS_RETCODE status;
  while ((status = comn_get_cfg(config, (CS_CHAR *)section, CS_LEN_NULLTERM, (CS_CHAR *)entry,
                                CS_LEN_NULLTERM, &next, value, sizeof value, &length)) ==
         CS_SUCCEED)
    printf("%s.%s = %.*s\n", section, entry, (int)length, value);
  comn_nextdrop_cfg(config, next);
  return status == CS_END_DATA;
}

int main(void) {
  CS_CHAR path[512];
  CS_CONFIG *config = NULL;
  Session session;
  int done = start(&session, "en_US.UTF-8") == CS_SUCCEED && intl_home(path, sizeof path) > 0;
  if (done) {
    strncat(path, "/config/ncl.cfg", sizeof path - strlen(path) - 1);
    done = comn_init_cfg(&session.context, path, CS_LEN_NULLTERM, &config) == CS_SUCCEED;
  }
  done = done && print_all(config, "payroll", "login_timeout") &&
         print_all(config, "payroll", "server") && print_all(config, "another", "trace");
  if (config != NULL)
    comn_drop_cfg(config, COM_CFG_DROP_NORMAL);
  end(&session);
  return done ? 0 : 1;
}
/* prints:
payroll.login_timeout = 10
payroll.login_timeout = 30
payroll.server = db1.example, port = 5000
payroll.server = db2.example, port = 5000
another.trace = off
*/
