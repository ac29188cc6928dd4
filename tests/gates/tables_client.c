/* Prints what the library makes of fixed inputs, through every cell of the matrix and every family of
 * look-ups, so that whoever runs it twice can compare. A failed check is a result like others. */
#include <setjmp.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>

#include <zrvcomn/charset.h>
#include <zrvcomn/comloc.h>
#include <zrvcomn/commaps.h>
#include <zrvcomn/comnlib.h>
#include <zrvcomn/datetime.h>
#include <zrvcomn/netenc.h>
#include <zrvcomn/numeric.h>
#include <zrvcomn/oldconv.h>

static sigjmp_buf after_check;

static void leave_check(int signal_number) {
  siglongjmp(after_check, signal_number);
}

/* CHECKED(call): 0 when the call returned, else a failed check ended it. */
#define CHECKED(call) (sigsetjmp(after_check, 1) == 0 ? ((call), 0) : (puts("fatal"), 1))

static void print_bytes(const char *title, const void *bytes, int count) {
  int i;
  printf("%s ", title);
  for (i = 0; i < count; ++i)
    printf("%02x", ((const unsigned char *)bytes)[i]);
  putchar('\n');
}

/* ---- conversions ---- */

static CS_DATAFMT make_format(CS_INT type, CS_INT maxlength) {
  CS_DATAFMT format;
  memset(&format, 0, sizeof format);
  format.datatype = type;
  format.maxlength = maxlength;
  format.precision = 20;
  format.scale = 3;
  return format;
}

static void convert(CS_CONTEXT *context, CS_INT from, const void *value, CS_INT length) {
  CS_INT to;
  for (to = 0; to < CS_TYPE_COUNT; ++to) {
    unsigned char source[2048], dest[2048];
    CS_DATAFMT srcfmt = make_format(from, length), destfmt = make_format(to, 100);
    CS_CONV_FUNC function = com_conv_func(context, from, to);
    CS_INT destlen = 0;
    CS_RETCODE status = 0;
    if (function == NULL)
      continue;
    memset(dest, 0xEE, sizeof dest);
    memset(source, 0, sizeof source);
    memcpy(source, value, (size_t)length);
    printf("convert %d to %d: ", from, to);
    if (CHECKED(status = function(context, &srcfmt, source, &destfmt, dest, &destlen)))
      continue;
    printf("%d %d", status, destlen);
    print_bytes("", dest, 300);
  }
}

static void convert_everything(CS_CONTEXT *context) {
  static const char *const texts[] = {"12345", "-1.5", "Mar 15 2021  3:04PM", "$1,234.50",
                                      "0x1F2e"};
  static const CS_INT text_types[] = {CS_TYPE_CHAR,       CS_TYPE_BINARY,      CS_TYPE_LONGCHAR,
                                      CS_TYPE_LONGBINARY, CS_TYPE_TEXT,        CS_TYPE_IMAGE,
                                      CS_TYPE_XML,        CS_TYPE_SENSITIVITY, CS_TYPE_BOUNDARY};
  const CS_TINYINT tiny = 200;
  const CS_SMALLINT small = -1234;
  const CS_INT medium = 123456789;
  const CS_BIGINT big = -1234567890123;
  const CS_REAL real = 2.5f;
  const CS_FLOAT number = -12345.678;
  const CS_BIT bit = 1;
  const CS_DATETIME moment = {44268, 16272000};
  const CS_DATETIME4 minute = {44268, 904};
  const CS_MONEY money = {-1, 4160749569u};
  const CS_MONEY4 money4 = {12345600};
  const CS_NUMERIC numeric = {18, 2, {0, 0, 0, 0, 0, 0, 0x12, 0xD6, 0x87}};
  const CS_DATE date = 44268;
  const CS_TIME time = 16272000;
  const CS_BIGDATETIME bigdatetime = 63783000000123456;
  const CS_BIGTIME bigtime = 54240123456;
  const CS_USHORT unichars[] = {'1', '2', '3', '4', '5'};
  CS_VARCHAR varying;
  size_t i, j;

  for (i = 0; i < sizeof texts / sizeof *texts; ++i)
    for (j = 0; j < sizeof text_types / sizeof *text_types; ++j)
      convert(context, text_types[j], texts[i], (CS_INT)strlen(texts[i]));
  memset(&varying, 0, sizeof varying);
  varying.len = 5;
  memcpy(varying.str, "12345", 5);
  convert(context, CS_TYPE_VARCHAR, &varying, sizeof varying);
  convert(context, CS_TYPE_VARBINARY, &varying, sizeof varying);
  convert(context, CS_TYPE_TINYINT, &tiny, sizeof tiny);
  convert(context, CS_TYPE_SMALLINT, &small, sizeof small);
  convert(context, CS_TYPE_INT, &medium, sizeof medium);
  convert(context, CS_TYPE_BIGINT, &big, sizeof big);
  convert(context, CS_TYPE_USMALLINT, &small, sizeof small);
  convert(context, CS_TYPE_UINT, &medium, sizeof medium);
  convert(context, CS_TYPE_UBIGINT, &big, sizeof big);
  convert(context, CS_TYPE_REAL, &real, sizeof real);
  convert(context, CS_TYPE_FLOAT, &number, sizeof number);
  convert(context, CS_TYPE_BIT, &bit, sizeof bit);
  convert(context, CS_TYPE_DATETIME, &moment, sizeof moment);
  convert(context, CS_TYPE_DATETIME4, &minute, sizeof minute);
  convert(context, CS_TYPE_MONEY, &money, sizeof money);
  convert(context, CS_TYPE_MONEY4, &money4, sizeof money4);
  convert(context, CS_TYPE_NUMERIC, &numeric, sizeof numeric);
  convert(context, CS_TYPE_DECIMAL, &numeric, sizeof numeric);
  convert(context, CS_TYPE_DATE, &date, sizeof date);
  convert(context, CS_TYPE_TIME, &time, sizeof time);
  convert(context, CS_TYPE_BIGDATETIME, &bigdatetime, sizeof bigdatetime);
  convert(context, CS_TYPE_BIGTIME, &bigtime, sizeof bigtime);
  convert(context, CS_TYPE_UNICHAR, unichars, sizeof unichars);
  convert(context, CS_TYPE_UNITEXT, unichars, sizeof unichars);
  convert(context, CS_TYPE_VOID, &medium, 0);
}

static void print_defaults(CS_CONTEXT *context) {
  CS_INT type;
  for (type = 0; type < CS_TYPE_COUNT; ++type) {
    unsigned char dest[2048];
    CS_DATAFMT format = make_format(type, 20);
    CS_INT length = 0;
    memset(dest, 0xEE, sizeof dest);
    if (type >= CS_TYPE_TEXTLOCATOR)
      continue; /* their default has pointers */
    printf("default %d: ", type);
    if (CHECKED(com_null_get(context, &format, dest, 300, &length)))
      continue;
    printf("%d", length);
    print_bytes("", dest, 300);
  }
}

/* ---- numerics ---- */

static void calculate(void) {
  CS_NUMERIC left = {10, 3, {0, 0, 0, 1, 0x86, 0xA3}}, right = {5, 1, {1, 0, 0x2B, 0x67}}, result;
  CS_RETCODE(*const operations[])
  (CS_NUMERIC *, CS_NUMERIC *, CS_NUMERIC *) = {comn_numadd, comn_numsub, comn_nummul,
                                                comn_numdivide};
  CS_INT i;
  for (i = 0; i < 4; ++i) {
    memset(&result, 0, sizeof result);
    printf("calculate %d", operations[i](&left, &right, &result));
    print_bytes("", &result, sizeof result);
  }
  for (i = 1; i <= CS_MAX_PREC; ++i)
    printf("length of precision %d: %d\n", i, comn_num_getlen(i));
  for (i = 2; i <= 33; ++i)
    printf("precision of length %d: %d\n", i, comn_num_getprec(i));
}

/* ---- dates ---- */

static void count_days(void) {
  static CS_CHAR month_names[12][4], day_names[7][4];
  CS_CHAR *months[12], *days[7], text[256];
  CS_INT day;
  int i;
  for (i = 0; i < 12; ++i)
    months[i] = memcpy(month_names[i], "m00", 4);
  for (i = 0; i < 7; ++i)
    days[i] = memcpy(day_names[i], "d00", 4);
  for (day = -40000; day < 60000; day += 29) {
    CS_DATETIME value = {day, 16272000}, other = {0, 0}, made;
    CS_DATEREC fields;
    CS_INT difference = 0;
    memset(&fields, 0, sizeof fields);
    com_datecrack(&value, &fields);
    memset(&made, 0, sizeof made);
    printf("date %d: %d/%d/%d %d", day, fields.dateyear, fields.datemonth, fields.datedmonth,
           com_datemake(&made, &fields));
    printf(" %d", made.dtdays);
    for (i = 0; i <= 13; ++i) {
      made = value;
      com__date_add(i, 1, &made);
      com__datediff(i, &other, &value, &difference);
      printf(" %d,%d,%d", made.dtdays, difference, com_datepart(i, &value, 7));
      printf(",%.*s", com_datename(i, &value, text, months, days), text);
    }
    putchar('\n');
  }
  for (i = 0; i < 150; ++i) {
    CS_DATETIME value = {44268, 16272000};
    CS_INT length = com_date2char_ex((CS_BYTE *)&value, 8, (CS_BYTE *)text, 60, NULL, i);
    if (length > 0)
      printf("style %d: %.*s\n", i, length, text);
  }
  for (i = 0; i < 2; ++i) {
    CS_DATETIME value = {0, 0};
    char *written = i == 0 ? "5 March 2001" : "5 mar 2001";
    CS_INT length = com_chartodatetime((CS_BYTE *)written, (CS_INT)strlen(written),
                                       (CS_BYTE *)&value, 8, NULL, NULL, -1);
    printf("text date %d: %d\n", length, value.dtdays);
  }
  printf("first day %d, order %d\n", com__get_firstday(), com__get_date_order_id());
}

/* ---- maps, characters, names ---- */

static void map_tokens(void) {
  CS_INT map, value, direction, wire, length, longest;
  CS_BOOL nullable;
  for (map = 0; map < COM_TDS_MAP_COUNT; ++map)
    for (value = -2; value < 6000; ++value)
      for (direction = 1; direction <= 2; ++direction) {
        CS_INT mapped = 0, unmapped = 0;
        CS_RETCODE status = 0;
        if (direction == 1 && (value < 0 || (value > 80 && value < 5000)))
          continue; /* a value that the library does not have is fatal */
        if (sigsetjmp(after_check, 1) != 0)
          continue;
        status = com_tds_maptoken(map, value, &mapped, &unmapped, direction);
        if (status == CS_SUCCEED && mapped != 0)
          printf("token %d %d %d: %d %d\n", map, direction, value, mapped, unmapped);
      }
  for (value = -1; value <= 256; ++value) {
    wire = length = longest = nullable = 0;
    printf("type %d: %d", value, com_tds_get_nullable_tdstype(value, &wire, &length, &longest));
    printf(" %d %d %d", wire, length, longest);
    printf(" %d", com_tds_get_fixed_tdstype(value, &wire, &length, &longest));
    printf(" %d %d %d", wire, length, longest);
    printf(" %d", com_tds_get_tdsdatainfo(value, &length, &nullable));
    printf(" %d %d", length, nullable);
    printf(" %d", com_tds_get_tdsfixedlen(value, &longest));
    printf(" %d", longest);
    printf(" %d", com_tds_get_cstype(value, 4, &wire));
    printf(" %d\n", wire);
  }
}

static void class_characters(void) {
  int c;
  for (c = 0; c < 256; ++c) {
    const CS_BYTE byte = (CS_BYTE)c;
    printf("character %d: %d %d %d %d %d %d %d %d %d\n", c, com_isalpha(byte), com_isupper(byte),
           com_islower(byte), com_isdigit(byte), com_isxdigit(byte), com_isspace(byte),
           com_isgraph(byte), com_toupper(byte), com_tolower(byte));
  }
  for (c = 0; c < 256; ++c) {
    CS_BYTE byte = (CS_BYTE)c, upper = 0, lower = 0;
    comn_toupper(NULL, &byte, &upper);
    comn_tolower(NULL, &byte, &lower);
    printf("%d %d %d %d %d ", comn_isalpha(NULL, &byte), comn_isdigit(NULL, &byte),
           comn_isspace(NULL, &byte), comn_ispunct(NULL, &byte), comn_get_lex(NULL, &byte));
    printf("%d %d %d\n", upper, lower, comn_to_ascii(NULL, &byte));
  }
}

static void cipher(void) {
  char salt[] = "saltsalt", plain[] = "a password", hex[512], back[512];
  int hex_length = sizeof hex, back_length = sizeof back;
  OCTET challenge[8] = {1, 2, 3, 4, 5, 6, 7, 0x88}, response[8];
  CS_INT response_length = sizeof response;
  /* The row of keys is drawn: only what comes back is the same each time. */
  printf("hex %d",
         com_initialize_hex_strings(salt, 8, plain, (int)strlen(plain), hex, &hex_length));
  printf(" %d", com_uninitialize_hex_strings(salt, 8, hex, hex_length, back, &back_length));
  printf(" %.*s\n", back_length, back);
  printf("response %d", com_uninitialize_tds_text(NULL, challenge, 8, response, &response_length));
  print_bytes("", response, sizeof response);
  print_bytes("key", comb_get_Netkey(7), 32);
}

static void name_things(CS_CONTEXT *context) {
  CsCtxGlobals globals;
  CS_OID_TABLE *table = NULL;
  CS_INT code;
  memset(&globals, 0, sizeof globals);
  context->ctxglobals = &globals;
  printf("load %d\n", comn_intl_load_globalid(context, &table));
  globals.ctxoids = table;
  comn_dbg_print_oidtable(context, table);
  for (code = -1; code < 20; ++code) {
    CsOID *oid = NULL;
    CS_INT back = 0;
    if (comn_tds_to_oid(context, COM_OID_INTEGER4, code, &oid) == CS_SUCCEED) {
      printf("format %d: %d", code, comn_oid_to_tds(context, oid, &back));
      printf(" %d\n", back);
    }
  }
  comn_intl_drop_globalid(context, table);
  com_errset(3);
  for (code = -310; code <= 5; ++code)
    com_errtrace(code, (char *)"file", 1);
  com_errset(1);
}

/* A character set that knows ASCII alone. */
static void describe_ascii(CHAR_ATTRIB *set) {
  static CS_TYPE_MAP types;
  int c;
  for (c = 0; c < 128; ++c) {
    CHAR_MAP *entry = &types.chmap[c];
    const int upper = c >= 'A' && c <= 'Z', lower = c >= 'a' && c <= 'z';
    entry->char_upper = (CS_BYTE)(lower ? c - 32 : c);
    entry->char_lower = (CS_BYTE)(upper ? c + 32 : c);
    entry->char_lex = c == '$' ? CS_LEX_CURRENCY : 0;
    entry->char_type = upper                             ? CS_CTYPE_UPPER
                       : lower                           ? CS_CTYPE_LOWER
                       : c >= '0' && c <= '9'            ? CS_CTYPE_DIGIT
                       : c == ' ' || (c >= 9 && c <= 13) ? CS_CTYPE_SPACE
                                                         : 0;
  }
  set->cs_class = set->cs_maxcharlen = set->cs_ncharsize = set->cs_ntype = 1;
  set->cs_type_map = &types;
}

int main(void) {
  static const char *const months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                       "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  static CS_CONTEXT context;
  static CsCtxGlobals globals;
  static CsOID oid;
  static CHAR_ATTRIB attributes;
  static CsCharDesc charset;
  static CS_DATEINFO dates;
  static CsLocCache cache;
  static CS_LOCALE locale;
  int month;
  signal(SIGABRT, leave_check);
  /* A locale with tables of its own. */
  charset.oid = &oid;
  describe_ascii(&attributes);
  charset.char_attrib = &attributes;
  for (month = 0; month < 12; ++month)
    dates.months[month] = dates.shortmonths[month] = (CS_BYTE *)months[month];
  dates.locdateorder_id = 1;
  cache.locchardesc = &charset;
  cache.locdateinfo = &dates;
  locale.collateptr = locale.ctypeptr = locale.messageptr = &cache;
  locale.monetaryptr = locale.numericptr = locale.timeptr = &cache;
  globals.cmg_utf8_charset = &charset;
  context.ctxlocale = &locale;
  context.ctxglobals = &globals;
  printf("start %d %d\n", com_conv_init(&context), com_null_init(&context));
  convert_everything(&context);
  print_defaults(&context);
  calculate();
  count_days();
  map_tokens();
  class_characters();
  cipher();
  name_things(&context);
  printf("again %d\n", com_conv_default(&context, CS_TYPE_INT, CS_TYPE_CHAR));
  printf("end %d %d\n", com_null_free(&context), com_conv_free(&context));
  return 0;
}
