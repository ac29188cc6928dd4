/* A row of text into typed columns and back, with a word on each value that fails. */
#include "session.h"

typedef union {
  CS_INT number;
  CS_NUMERIC amount;
  CS_DATETIME date;
} Value;

static const CS_DATAFMT columns[] = {
    {.name = "id", .datatype = CS_TYPE_INT, .maxlength = sizeof(CS_INT)},
    {.name = "price",
     .datatype = CS_TYPE_NUMERIC,
     .maxlength = sizeof(CS_NUMERIC),
     .scale = 2,
     .precision = 8},
    {.name = "since", .datatype = CS_TYPE_DATETIME, .maxlength = sizeof(CS_DATETIME)},
};

static void convert_row(CS_CONTEXT *context, const char *const row[]) {
  for (int i = 0; i < 3; ++i) {
    CS_DATAFMT column = columns[i], text = {.datatype = CS_TYPE_CHAR};
    Value value;
    CS_CHAR shown[80];
    CS_INT length = 0;
    CS_RETCODE status;
    text.maxlength = (CS_INT)strlen(row[i]);
    if (text.maxlength == 0) { /* no text is a NULL: the default value of the type */
      status = com_null_get(context, &column, &value, column.maxlength, &length);
    } else {
      status = com_conv_func(context, CS_TYPE_CHAR, column.datatype)(
          context, &text, (CS_VOID *)row[i], &column, &value, &length);
    }
    if (status != CS_SUCCEED) { /* what a text that does not fit leaves behind is no value */
      printf("%-6s '%s' is no value: %s\n", column.name, row[i], zrv_status_name(status));
      continue;
    }
    text.maxlength = sizeof shown;
    text.format = CS_DFMT_NULLTERM;
    status = com_conv_func(context, column.datatype, CS_TYPE_CHAR)(context, &column, &value, &text,
                                                                   shown, &length);
    if (status == CS_SUCCEED)
      printf("%-6s '%s' is %s\n", column.name, row[i], shown);
  }
}

int main(void) {
  static const char *const rows[][3] = {
      {"42", "1234.50", "Jan 5, 2001 1:30PM"},
      {"9999999999", "12.345", "2001-02-30"},
      {"", "x", "7/4/1776"},
  };
  Session session;
  const int started = start(&session, "en_US.UTF-8") == CS_SUCCEED;
  for (int i = 0; started && i < 3; ++i)
    convert_row(&session.context, rows[i]);
  end(&session);
  return started ? 0 : 1;
}
/* prints:
id     '42' is 42
price  '1234.50' is 1234.50
since  'Jan 5, 2001 1:30PM' is Jan  5 2001  1:30PM
id     '9999999999' is no value: CS_CONV_OVERFLOW
price  '12.345' is no value: CS_CONV_TRUNCATED
since  '2001-02-30' is no value: CS_CONV_OVERFLOW
id     '' is 0
price  'x' is no value: CS_CONV_SYNTAX
since  '7/4/1776' is Jul  4 1776 12:00AM
*/
