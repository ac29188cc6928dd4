/* Text from the character set of one locale to that of another. */
#include "session.h"

int main(void) {
  CS_CHAR text[] = "Gr\xC3\xBC\xC3\x9F"
                   "e, 5 \xE2\x82\xAC",
          shown[32];
  CS_INT length = 0;
  Session session;
  CS_LOCALE latin9;
  CS_DATAFMT from = {.datatype = CS_TYPE_CHAR, .maxlength = sizeof text - 1};
  CS_DATAFMT to = {.datatype = CS_TYPE_CHAR, .maxlength = sizeof shown, .locale = &latin9};
  int done = start(&session, "de_DE.ISO-8859-15") == CS_SUCCEED;
  latin9 = session.locale;
  done = done && load_locale(&session, "de_DE.UTF-8") == CS_SUCCEED &&
         comn_charset_convert(&session.context, CS_LCTYPE_CTYPE, &from, text, &to, shown,
                              &length) == CS_SUCCEED;
  for (int i = 0; done && i < length; ++i)
    printf("%02X%s", (unsigned char)shown[i], i + 1 < length ? " " : "\n");
  end(&session);
  return done ? 0 : 1;
}
/* prints:
47 72 FC DF 65 2C 20 35 20 A4
*/
