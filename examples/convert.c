#include <stdio.h>
#include <zrvcomn/comnlib.h>

int main(void) {
  CS_CONTEXT context = {0};
  if (com_conv_init(&context) != CS_SUCCEED)
    return 1;

  CS_INT population = 83516593, length = 0;
  CS_CHAR text[12];
  CS_DATAFMT from = {.datatype = CS_TYPE_INT, .maxlength = sizeof population};
  CS_DATAFMT to = {.datatype = CS_TYPE_CHAR, .format = CS_DFMT_NULLTERM, .maxlength = sizeof text};

  CS_CONV_FUNC convert = com_conv_func(&context, from.datatype, to.datatype);
  CS_RETCODE status = convert(&context, &from, &population, &to, text, &length);
  printf("%s (%d bytes, status %d)\n", text, length, status);

  com_conv_free(&context);
  return status == CS_SUCCEED ? 0 : 1;
}
/* prints:
83516593 (9 bytes, status 1)
*/
