/* A client in C: one conversion through the matrix, and where the installation lives. */
#include <stdio.h>
#include <string.h>

#include <zrvcomn/comnlib.h>
#include <zrvcomn/zrvintl.h>

int main(void) {
  CS_CONTEXT context;
  CS_DATAFMT from, to;
  CS_INT value = 12345, length = 0;
  char text[12];
  char home[4096];
  memset(&context, 0, sizeof context);
  memset(&from, 0, sizeof from);
  memset(&to, 0, sizeof to);
  if (com_conv_init(&context) != CS_SUCCEED)
    return 1;
  from.datatype = CS_TYPE_INT;
  from.maxlength = sizeof value;
  to.datatype = CS_TYPE_CHAR;
  to.maxlength = sizeof text;
  if (com_conv_func(&context, CS_TYPE_INT, CS_TYPE_CHAR)(&context, &from, &value, &to, text,
                                                         &length) != CS_SUCCEED)
    return 1;
  if (intl_home(home, sizeof home) < 1)
    return 1;
  printf("%.*s\n%s\n", (int)length, text, home);
  return com_conv_free(&context) == CS_SUCCEED ? 0 : 1;
}
