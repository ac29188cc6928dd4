// The conversion matrix: which function converts from each datatype to each other one.
//
// Rows and columns fall into groups, so the table is built from one set of members for each source
// and the exceptions beside it.
#include "comnlib.h"
#include "table.h"

namespace {

using Row = comn::Table<CS_CONV_FUNC, CS_TYPE_COUNT>;
using Matrix = comn::Table<Row, CS_TYPE_COUNT>;

// The members that serve the value columns. Three text types share a member, as do three binary
// types, the two numerics and the two 16-bit texts.
struct ValueMembers {
  CS_CONV_FUNC text, binary, i1, i2, i4, i8, ui2, ui4, ui8, flt4, flt8, bit, money, mny4, num,
      varchar, varbin, unichar;
};

#define COMN_VALUE_MEMBERS_WITH(source, money, mny4)                                               \
  ValueMembers {                                                                                   \
    comn_##source##tochar, comn_##source##tobin, comn_##source##toi1, comn_##source##toi2,         \
        comn_##source##toi4, comn_##source##toi8, comn_##source##toui2, comn_##source##toui4,      \
        comn_##source##toui8, comn_##source##toflt4, comn_##source##toflt8, comn_##source##tobit,  \
        money, mny4, comn_##source##tonum, comn_##source##tovarchar, comn_##source##tovarbin,      \
        comn_##source##tounichar                                                                   \
  }
#define COMN_VALUE_MEMBERS(source)                                                                 \
  COMN_VALUE_MEMBERS_WITH(source, comn_##source##tomoney, comn_##source##tomny4)

// The members of a source that serve the date and time columns.
struct DateMembers {
  CS_CONV_FUNC datetime, date4, datea, timea, bigdatetime, bigtime;
};

constexpr void set_text(Row &row, CS_CONV_FUNC member) {
  row[CS_TYPE_CHAR] = row[CS_TYPE_LONGCHAR] = row[CS_TYPE_TEXT] = member;
}

constexpr void set_binary(Row &row, CS_CONV_FUNC member) {
  row[CS_TYPE_BINARY] = row[CS_TYPE_LONGBINARY] = row[CS_TYPE_IMAGE] = member;
}

constexpr void set_unitext(Row &row, CS_CONV_FUNC member) {
  row[CS_TYPE_UNICHAR] = row[CS_TYPE_UNITEXT] = member;
}

constexpr Row value_row(const ValueMembers &members) {
  Row row{};
  set_text(row, members.text);
  set_binary(row, members.binary);
  row[CS_TYPE_TINYINT] = members.i1;
  row[CS_TYPE_SMALLINT] = members.i2;
  row[CS_TYPE_INT] = members.i4;
  row[CS_TYPE_BIGINT] = members.i8;
  row[CS_TYPE_USMALLINT] = members.ui2;
  row[CS_TYPE_UINT] = members.ui4;
  row[CS_TYPE_UBIGINT] = members.ui8;
  row[CS_TYPE_REAL] = members.flt4;
  row[CS_TYPE_FLOAT] = members.flt8;
  row[CS_TYPE_BIT] = members.bit;
  row[CS_TYPE_MONEY] = members.money;
  row[CS_TYPE_MONEY4] = members.mny4;
  row[CS_TYPE_NUMERIC] = row[CS_TYPE_DECIMAL] = members.num;
  row[CS_TYPE_VARCHAR] = members.varchar;
  row[CS_TYPE_VARBINARY] = members.varbin;
  set_unitext(row, members.unichar);
  return row;
}

constexpr void set_dates(Row &row, const DateMembers &members) {
  row[CS_TYPE_DATETIME] = members.datetime;
  row[CS_TYPE_DATETIME4] = members.date4;
  row[CS_TYPE_DATE] = members.datea;
  row[CS_TYPE_TIME] = members.timea;
  row[CS_TYPE_BIGDATETIME] = members.bigdatetime;
  row[CS_TYPE_BIGTIME] = members.bigtime;
}

// The big dates of a text are its ordinary ones.
#define COMN_TEXT_DATES(source)                                                                    \
  DateMembers {                                                                                    \
    comn_##source##todatetime, comn_##source##todate4, comn_##source##todatea,                     \
        comn_##source##totimea, comn_##source##todatetime, comn_##source##totimea                  \
  }
#define COMN_BINARY_DATES(source)                                                                  \
  DateMembers {                                                                                    \
    comn_##source##todatetime, comn_##source##todate4, comn_##source##todatea,                     \
        comn_##source##totimea, comn_##source##tobigdatetime, comn_##source##tobigtime             \
  }

constexpr Row text_row(const ValueMembers &values, const DateMembers &dates) {
  Row row = value_row(values);
  set_dates(row, dates);
  row[CS_TYPE_SENSITIVITY] = row[CS_TYPE_BOUNDARY] = row[CS_TYPE_XML] = values.text;
  return row;
}

constexpr Row binary_row(const ValueMembers &values, const DateMembers &dates) {
  Row row = value_row(values);
  set_dates(row, dates);
  row[CS_TYPE_XML] = values.text;
  return row;
}

constexpr Row unitext_row() {
  Row row = value_row(COMN_VALUE_MEMBERS(unichar));
  set_dates(row, COMN_TEXT_DATES(unichar));
  // The only way into this column but the one from void.
  row[CS_TYPE_LONG] = comn_unichartoi8;
  return row;
}

constexpr Row date_row(CS_CONV_FUNC text, CS_CONV_FUNC varchar, CS_CONV_FUNC varbin,
                       CS_CONV_FUNC unitext, const DateMembers &dates) {
  Row row{};
  set_text(row, text);
  row[CS_TYPE_VARCHAR] = varchar;
  row[CS_TYPE_VARBINARY] = varbin;
  set_unitext(row, unitext);
  set_dates(row, dates);
  return row;
}

// Text that converts to nothing but text: sensitivity and boundary labels.
constexpr Row label_row(CS_INT own_type) {
  Row row{};
  set_text(row, comn_chartochar);
  row[static_cast<size_t>(own_type)] = comn_chartochar;
  row[CS_TYPE_VARCHAR] = comn_chartovarchar;
  return row;
}

constexpr Row xml_row() {
  Row row = label_row(CS_TYPE_XML);
  set_binary(row, comn_chartobin);
  row[CS_TYPE_VARBINARY] = comn_chartovarbin;
  return row;
}

constexpr Row locator_row(size_t own_type, size_t object_type, CS_CONV_FUNC object) {
  Row row{};
  row[CS_TYPE_CHAR] = comn_locatortochar;
  row[object_type] = object;
  row[own_type] = comn_locatortolocator;
  return row;
}

constexpr Row void_row() {
  Row row{};
  for (size_t column = CS_TYPE_CHAR; column <= CS_TYPE_BIGTIME; ++column)
    row[column] = comn_voidtoany;
  row[CS_TYPE_VOID] = comn_voidtovoid;
  return row;
}

// The rows of LONG, USHORT and BLOB are empty.
consteval Matrix build() {
  Matrix m{};
  m[CS_TYPE_TINYINT] = value_row(COMN_VALUE_MEMBERS(i1));
  m[CS_TYPE_SMALLINT] = value_row(COMN_VALUE_MEMBERS(i2));
  m[CS_TYPE_INT] = value_row(COMN_VALUE_MEMBERS(i4));
  m[CS_TYPE_BIGINT] = value_row(COMN_VALUE_MEMBERS(i8));
  m[CS_TYPE_USMALLINT] = value_row(COMN_VALUE_MEMBERS(ui2));
  m[CS_TYPE_UINT] = value_row(COMN_VALUE_MEMBERS(ui4));
  m[CS_TYPE_UBIGINT] = value_row(COMN_VALUE_MEMBERS(ui8));
  m[CS_TYPE_REAL] = value_row(COMN_VALUE_MEMBERS(flt4));
  m[CS_TYPE_FLOAT] = value_row(COMN_VALUE_MEMBERS(flt8));
  m[CS_TYPE_MONEY] = value_row(COMN_VALUE_MEMBERS(money));
  m[CS_TYPE_MONEY4] = value_row(COMN_VALUE_MEMBERS(mny4));
  m[CS_TYPE_NUMERIC] = m[CS_TYPE_DECIMAL] = value_row(COMN_VALUE_MEMBERS(num));
  m[CS_TYPE_BIT] = value_row(COMN_VALUE_MEMBERS_WITH(bit, nullptr, nullptr));

  m[CS_TYPE_CHAR] = m[CS_TYPE_LONGCHAR] = m[CS_TYPE_TEXT] =
      text_row(COMN_VALUE_MEMBERS(char), COMN_TEXT_DATES(char));
  m[CS_TYPE_VARCHAR] = text_row(COMN_VALUE_MEMBERS(varchar), COMN_TEXT_DATES(varchar));
  m[CS_TYPE_BINARY] = m[CS_TYPE_LONGBINARY] = m[CS_TYPE_IMAGE] =
      binary_row(COMN_VALUE_MEMBERS(bin), COMN_BINARY_DATES(bin));
  m[CS_TYPE_VARBINARY] = binary_row(COMN_VALUE_MEMBERS(varbin), COMN_BINARY_DATES(varbin));
  m[CS_TYPE_UNICHAR] = m[CS_TYPE_UNITEXT] = unitext_row();

  m[CS_TYPE_DATETIME] =
      date_row(comn_datetochar, comn_datetovarchar, comn_datetovarbin, comn_datetimetounichar,
               {comn_datetodate, comn_datetodate4, comn_datetodatea, comn_datetotimea,
                comn_datetobigdatetime, comn_datetobigtime});
  m[CS_TYPE_DATETIME4] =
      date_row(comn_date4tochar, comn_date4tovarchar, comn_date4tovarbin, comn_date4tounichar,
               {comn_date4todate, comn_date4todate4, comn_date4todatea, comn_date4totimea,
                comn_date4tobigdatetime, comn_date4tobigtime});
  m[CS_TYPE_DATE] =
      date_row(comn_dateatochar, comn_dateatovarchar, comn_dateatovarbin, comn_dateatounichar,
               {comn_dateatodate, comn_dateatodate4, comn_dateatodatea, nullptr,
                comn_dateatobigdatetime, nullptr});
  m[CS_TYPE_TIME] =
      date_row(comn_timeatochar, comn_timeatovarchar, comn_timeatovarbin, comn_timeatounichar,
               {comn_timeatodate, comn_timeatodate4, nullptr, comn_timeatotimea,
                comn_timeatobigdatetime, comn_timeatobigtime});
  // The big types print as the ordinary ones do.
  m[CS_TYPE_BIGDATETIME] = date_row(
      comn_datetochar, comn_datetovarchar, comn_bigdatetimetovarbin, comn_datetimetounichar,
      {comn_bigdatetimetodate, comn_bigdatetimetodate4, comn_bigdatetimetodatea,
       comn_bigdatetimetotimea, comn_bigdatetimetobigdatetime, comn_bigdatetimetobigtime});
  m[CS_TYPE_BIGTIME] =
      date_row(comn_timeatochar, comn_timeatovarchar, comn_bigtimetovarbin, comn_timeatounichar,
               {comn_bigtimetodate, comn_bigtimetodate4, nullptr, comn_bigtimetotimea,
                comn_bigtimetobigdatetime, comn_bigtimetobigtime});

  m[CS_TYPE_SENSITIVITY] = label_row(CS_TYPE_SENSITIVITY);
  m[CS_TYPE_BOUNDARY] = label_row(CS_TYPE_BOUNDARY);
  m[CS_TYPE_XML] = xml_row();
  m[CS_TYPE_TEXTLOCATOR] = locator_row(CS_TYPE_TEXTLOCATOR, CS_TYPE_TEXT, comn_locatortotext);
  m[CS_TYPE_IMAGELOCATOR] = locator_row(CS_TYPE_IMAGELOCATOR, CS_TYPE_IMAGE, comn_locatortoimage);
  m[CS_TYPE_UNITEXTLOCATOR] =
      locator_row(CS_TYPE_UNITEXTLOCATOR, CS_TYPE_UNICHAR, comn_locatortounitext);
  m[CS_TYPE_VOID] = void_row();

  // The exceptions, all deliberate. Only CHAR reaches the locators, not its sisters; and of the
  // image and the unichar types only one of two sisters has the member of its own.
  m[CS_TYPE_CHAR][CS_TYPE_TEXTLOCATOR] = m[CS_TYPE_CHAR][CS_TYPE_IMAGELOCATOR] =
      m[CS_TYPE_CHAR][CS_TYPE_UNITEXTLOCATOR] = comn_chartolocator;
  m[CS_TYPE_IMAGE][CS_TYPE_UNICHAR] = comn_imagetounichar;
  m[CS_TYPE_UNICHAR][CS_TYPE_IMAGE] = comn_unichartoimage;
  return m;
}

} // namespace

COMN_PUBLISH_TABLE(Matrix, CS_CONV_FUNC, Com__cnvrt_array, [CS_TYPE_COUNT][CS_TYPE_COUNT], build());
