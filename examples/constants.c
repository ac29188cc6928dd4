/* Values without a context: as server-side constants, and as plain buffers for older callers. */
#include <stdio.h>
#include <string.h>
#include <zrvcomn/castctx.h>
#include <zrvcomn/oldconv.h>
#include <zrvcomn/zrvstatus.h>

/* A constant over bytes of the caller. */
static __CONSTANT over(void *bytes, CS_INT length, CS_INT capacity) {
  __CONSTANT constant;
  memset(&constant, 0, sizeof constant);
  constant.value = (CS_BYTE *)bytes;
  constant.len = length;
  constant.maxlen = capacity;
  return constant;
}

int main(void) {
  CS_CHAR prices[][12] = {"$1,234.56", "0.99", "much"}, number[5];
  CAST_CONTEXT cast;
  CS_INT population = 83516593;
  memset(&cast, 0, sizeof cast);
  for (int i = 0; i < 3; ++i) {
    CS_MONEY money;
    CS_CHAR text[16];
    __CONSTANT price = over(prices[i], (CS_INT)strlen(prices[i]), 0);
    __CONSTANT value = over(&money, 0, sizeof money);
    __CONSTANT shown = over(text, 0, sizeof text);
    CS_RETCODE status = comnb_chartomoney(&cast, &price, &value);
    if (status == CS_SUCCEED)
      status = comnb_moneytochar(&cast, &value, &shown);
    printf("%s: \"%.*s\", %s\n", prices[i], (int)shown.len, text, zrv_status_name(status));
  }
  /* Five bytes are too few for the digits and the terminator: a star stands for them. */
  const CS_INT length =
      com_i4tostring((CS_BYTE *)&population, sizeof population, (CS_BYTE *)number, sizeof number);
  printf("%d: \"%s\", %d\n", (int)population, number, (int)length);
  return 0;
}
/* prints:
$1,234.56: "1234.56", CS_SUCCEED
0.99: "0.99", CS_SUCCEED
much: "", CS_CONV_SYNTAX
83516593: "*   ", -1
*/
