// Dates and times from free-form text. The text becomes at most 20 tokens, which the interpreter looks
// for by kind and uses up in a fixed order: the time wherever it stands, then an ISO "T", then a month
// name, a numeric date, a packed date or a lone year. What is left over is an error, unless the caller
// wants a part of the value alone.
#include <algorithm>
#include <cstring>

#include "calendar.h"
#include "checks.h"
#include "text.h"

namespace calendar = comn::calendar;

namespace {

using Token = struct com__datecrack; // a function has the same name

constexpr int most_tokens = 20;
constexpr CS_INT longest_word = 30;

// What a parse is to deliver.
enum Part { date_and_time = 0, date_part = 1, time_part = 2, time_alone = 3 };

// ---- tokens ----

// Whether a name, reduced to ASCII, is a word that has been. Most names differ early, so their length
// is not asked for where it need not be.
bool is_plain_word(const CHAR_MAP *plane, const CS_BYTE *word, CS_INT length,
                   const CS_CHAR *name) noexcept {
  for (CS_INT i = 0; i < length; ++i) {
    const auto byte = static_cast<CS_BYTE>(name[i]);
    const CS_BYTE ascii = plane[byte].char_lower;
    if (byte == '\0' || word[i] != (ascii != 0 ? ascii : byte))
      return false;
  }
  return name[length] == '\0';
}

bool is_word(const CHAR_ATTRIB &set, const CS_BYTE *word, CS_INT length,
             const CS_CHAR *name) noexcept {
  if (comn::is_plain(set))
    return is_plain_word(set.cs_type_map->chmap, word, length, name);
  const size_t name_length = std::strlen(name);
  if (name_length > longest_word)
    return false;
  const CS_BYTE *const end = word + length;
  comn::TextCursor cursor(set, reinterpret_cast<const CS_BYTE *>(name),
                          static_cast<CS_INT>(name_length));
  while (cursor.more()) {
    const CS_BYTE *const character = cursor.position();
    const CS_BYTE ascii = cursor.ascii();
    const CS_BYTE *reduced = ascii != 0 ? &ascii : character;
    cursor.next();
    for (auto bytes = ascii != 0 ? 1 : cursor.position() - character; bytes > 0; --bytes)
      if (word == end || *word++ != *reduced++)
        return false;
  }
  return word == end;
}

// The index of the name that a word is, the whole of it, or -1.
int look_up(const CHAR_ATTRIB &set, const CS_BYTE *word, CS_INT length, CS_CHAR *const *list,
            int count) noexcept {
  if (length > longest_word)
    return -1;
  CS_BYTE reduced[longest_word];
  const CS_INT reduced_length = comn::reduce_to_ascii(set, word, length, reduced);
  for (int i = 0; i < count; ++i)
    if (list[i] != nullptr && is_word(set, reduced, reduced_length, list[i]))
      return i;
  return -1;
}

// The kind of a number by its digits; one with more is none.
constexpr int most_digits = 8;
constexpr signed char number_kinds[most_digits + 1] = {
    DT_ERROR, DT_NUMBER, DT_NUMBER, DT_NUMBER, DT_YEAR, DT_FIVE, DT_PACKED, DT_ERROR, DT_PACKED};

// Reads a number to the first character that is no digit.
template <class Cursor>
int read_number(Cursor &cursor, Token &token) noexcept {
  int digits = 0;
  // Eight digits without an ASCII form have room in this, and are refused in the end.
  CS_UINT value = 0;
  unsigned highest = 0;
  for (; cursor.more() && (cursor.map().char_type & CS_CTYPE_DIGIT) != 0; cursor.next()) {
    const auto digit = static_cast<CS_BYTE>(cursor.ascii() - '0');
    highest = std::max<unsigned>(highest, digit);
    if (++digits <= most_digits)
      value = value * 10 + digit;
  }
  token.dclength = digits;
  token.dcvalue = static_cast<CS_INT>(value);
  return digits <= most_digits && highest < 10 ? number_kinds[digits] : DT_ERROR;
}

// Reads a word to the first character that is no letter.
template <class Cursor>
int read_word(Cursor &cursor, Token &token, const CHAR_ATTRIB &set, CS_CHAR **months,
              CS_CHAR **short_months) noexcept {
  const CS_BYTE *const word = cursor.position();
  int characters = 0;
  for (; cursor.more() && (cursor.map().char_type & CS_CTYPE_ALPHA) != 0; cursor.next())
    ++characters;
  const auto length = static_cast<CS_INT>(cursor.position() - word);
  const auto find = [&](CS_CHAR *const *list, int count) {
    token.dcvalue = look_up(set, word, length, list, count);
    return token.dcvalue >= 0;
  };
  if (characters == 2 && find(own_Com__ampm, 2))
    return DT_AMPM;
  if (months != nullptr && short_months != nullptr &&
      (find(months, calendar::months_per_year) || find(short_months, calendar::months_per_year)))
    return DT_MONTH;
  token.dcvalue = 0;
  return DT_ERROR;
}

template <class Cursor>
int read_token(Cursor &cursor, Token &token, const CHAR_ATTRIB &set, CS_CHAR **months,
               CS_CHAR **short_months) noexcept {
  token.dclength = 0;
  token.dcvalue = 0;
  while (cursor.more() && cursor.ascii() == ' ')
    cursor.next();
  if (!cursor.more())
    return DT_END;
  const auto take = [&](int kind) {
    cursor.next();
    return kind;
  };
  const CS_BYTE ascii = cursor.ascii(), type = cursor.map().char_type;
  // First, as most tokens are numbers: digits are none of the characters below.
  if ((type & CS_CTYPE_DIGIT) != 0 && static_cast<CS_BYTE>(ascii - '0') < 10)
    return read_number(cursor, token);
  switch (ascii) {
  case '.':
    token.dcvalue = -1;
    [[fallthrough]];
  case '/':
  case '-':
    return take(DT_SEPARATOR);
  case ',':
    return take(DT_COMMA);
  case ':':
    return take(DT_COLON);
  case 'T':
  case 't': // deliberate: at once, so no word that begins with it is ever looked up
    return take(DT_ISOT);
  default:
    break;
  }
  if ((type & CS_CTYPE_DIGIT) != 0)
    return read_number(cursor, token);
  if ((type & CS_CTYPE_ALPHA) != 0)
    return read_word(cursor, token, set, months, short_months);
  return DT_ERROR;
}

// ---- the order of a numeric date ----

enum Order { no_order = 0, mdy = 1, dmy = 2, ymd = 3, ydm = 4, myd = 5, dym = 6 };

// What stands at each place, by order.
constexpr char order_places[][4] = {"", "mdy", "dmy", "ymd", "ydm", "myd", "dym"};

enum class Year { if_there, no, required }; // whether a year of four digits is looked for

struct StyleRule {
  CS_INT order; // no_order for that of the caller
  Year year;
};

// False for a style that reads no numeric date.
bool find_style(CS_INT style, StyleRule &rule) noexcept {
  switch (style) {
  case 0:
  case 9:
    rule = {no_order, Year::if_there};
    return true;
  case 1:
  case 10:
    rule = {mdy, Year::no};
    return true;
  case 2:
  case 11:
  case 21:
  case 22:
  case 23:
  case 40:
    rule = {ymd, Year::no};
    return true;
  case 3:
  case 4:
  case 5:
    rule = {dmy, Year::no};
    return true;
  case 101:
  case 110:
    rule = {mdy, Year::required};
    return true;
  case 102:
  case 111:
  case 121:
  case 122:
  case 140:
    rule = {ymd, Year::required};
    return true;
  case 103:
  case 104:
  case 105:
    rule = {dmy, Year::required};
    return true;
  default:
    return false;
  }
}

// ---- the interpreter ----

constexpr int year_failed = 1; // what com__year2digit answers, and what then becomes of the parse

class Interpreter {
public:
  Interpreter(CS_DATEREC &record, CS_INT type, CS_BOOL *lost) noexcept
      : fields(record), truncated(lost),
        has_micros(type == CS_TYPE_BIGDATETIME || type == CS_TYPE_BIGTIME) {
    fields.datehour = fields.dateminute = fields.datesecond = fields.datemsecond = 0;
    fields.datesecfrac = fields.datesecprec = 0;
    fields.datemonth = 0;
    fields.datedmonth = 1;
  }

  // Fills the tokens; false for what is none, and for too many.
  template <class Cursor>
  bool read_tokens(Cursor cursor, const CHAR_ATTRIB &set, CS_CHAR **months,
                   CS_CHAR **short_months) noexcept {
    for (Token &token : tokens) {
      const int kind = read_token(cursor, token, set, months, short_months);
      token.dctoken = kind;
      if (kind == DT_END || kind == DT_ERROR)
        return kind == DT_END;
      kinds |= 1U << kind;
      ++unused;
    }
    return false;
  }

  int run(int part, CS_INT style, CS_INT order) noexcept {
    int status = read_time();
    if (status != 0)
      return status;
    if (part == time_alone)
      return has_leftovers() ? DT_LEFTOVER : DT_NO_DATE;
    if (!end_at_iso_t())
      return DT_BAD_SYNTAX;
    status = read_date(style, order);
    if (status == 0 && part == date_and_time && has_leftovers())
      return DT_LEFTOVER;
    return status;
  }

private:
  // Most kinds are not there at all, which needs no search.
  int find(int kind) const noexcept {
    return (kinds >> kind & 1) != 0 ? findtoken(const_cast<Token *>(tokens), kind) : -1;
  }
  bool has_leftovers() const noexcept { return unused != 0; }
  bool is(int index, int kind) const noexcept { return tokens[index].dctoken == kind; }

  CS_INT use(int index) noexcept {
    tokens[index].dctoken = DT_USED;
    --unused;
    return tokens[index].dcvalue;
  }

  // Uses up a token of a kind; false, and nothing done, if it is another.
  bool take(int index, int kind) noexcept {
    if (!is(index, kind))
      return false;
    use(index);
    return true;
  }
  bool take(int index, int kind, CS_INT &value) noexcept {
    if (!is(index, kind))
      return false;
    value = use(index);
    return true;
  }

  // The first token of a kind.
  bool take_first(int kind, CS_INT &value) noexcept {
    const int index = find(kind);
    return index >= 0 && take(index, kind, value);
  }

  // Time, which is read whatever is wanted. A colon or am/pm that comes first is left over.
  int read_time() noexcept {
    const int colon = find(DT_COLON);
    if (colon > 0)
      return read_clock(colon);
    const int ampm = find(DT_AMPM);
    if (ampm > 0) {
      use(ampm);
      return take(ampm - 1, DT_NUMBER, fields.datehour) ? check_ampm(ampm) : DT_BAD_SYNTAX;
    }
    return 0;
  }

  int read_clock(int colon) noexcept {
    use(colon);
    if (!take(colon - 1, DT_NUMBER, fields.datehour) ||
        !take(colon + 1, DT_NUMBER, fields.dateminute))
      return DT_BAD_SYNTAX;
    int next = colon + 2;
    if (take(next, DT_COLON)) {
      if (!take(next + 1, DT_NUMBER, fields.datesecond))
        return DT_BAD_SYNTAX;
      next += 2;
    }
    if (take(next, DT_COLON)) {
      // Milliseconds as they stand: ":5" is 5 of them, where ".5" is 500.
      if (!take(next + 1, DT_NUMBER, fields.datemsecond))
        return DT_BAD_SYNTAX;
      next += 2;
    } else if (is(next, DT_SEPARATOR) && tokens[next].dcvalue == -1) {
      use(next);
      if (!read_fraction(next + 1))
        return DT_BAD_SYNTAX;
      next += 2;
    }
    if (!is(next, DT_AMPM))
      return 0;
    use(next);
    return check_ampm(next);
  }

  int check_ampm(int index) noexcept {
    constexpr int conflict = 9;
    return com__amcheck(&fields, tokens[index].dcvalue) == 0 ? 0 : conflict;
  }

  bool read_fraction(int index) noexcept {
    const Token token = tokens[index];
    if (token.dctoken != DT_NUMBER && token.dctoken != DT_YEAR && token.dctoken != DT_FIVE &&
        token.dctoken != DT_PACKED)
      return false;
    use(index);
    CS_INT micros = token.dcvalue;
    // Deliberate: eight digits count as they stand, like six.
    for (int digits = token.dclength; digits < 6; ++digits)
      micros *= 10;
    if (has_micros) {
      fields.datesecprec = calendar::micro_precision;
      fields.datesecfrac = micros;
      return true;
    }
    constexpr auto milli = static_cast<CS_INT>(calendar::micros_per_milli);
    if (micros % milli != 0 && truncated != nullptr)
      *truncated = 1;
    CS_INT millis = (micros + milli / 2) / milli;
    if (millis == 1000) // a fraction does not carry into the second
      millis = 999;
    if (millis > 999)
      return false;
    fields.datemsecond = millis;
    return true;
  }

  // Only a time may follow an ISO "T".
  bool end_at_iso_t() noexcept {
    const int iso_t = find(DT_ISOT);
    if (iso_t < 0)
      return true;
    use(iso_t);
    for (int i = iso_t; !is(i, DT_END); ++i)
      if (!is(i, DT_USED))
        return false;
    return true;
  }

  int read_date(CS_INT style, CS_INT order) noexcept {
    const int month = find(DT_MONTH);
    if (month >= 0)
      return read_month_date(month);
    const int separator = find(DT_SEPARATOR);
    if (separator > 0)
      return read_numeric_date(separator, style, order);
    const int packed = find(DT_PACKED);
    if (packed >= 0)
      return read_packed_date(packed);
    if (take_first(DT_YEAR, fields.dateyear))
      return 0; // its first day
    return has_leftovers() ? DT_LEFTOVER : DT_NO_DATE;
  }

  int read_month_date(int month) noexcept {
    fields.datemonth = use(month);
    if (month > 0 && take(month - 1, DT_SEPARATOR)) {
      if (!take(month + 1, DT_SEPARATOR))
        take(month + 1, DT_COMMA);
    } else {
      take(month + 1, DT_COMMA);
    }
    const bool has_year = take_first(DT_YEAR, fields.dateyear);
    const int day = find(DT_NUMBER);
    if (day < 0)
      return has_year ? 0 : DT_BAD_SYNTAX;
    fields.datedmonth = use(day);
    take(day + 1, DT_COMMA);
    return has_year ? 0 : read_short_year();
  }

  // The next number as a year.
  int read_short_year() noexcept {
    CS_INT year;
    if (!take_first(DT_NUMBER, year))
      return DT_BAD_SYNTAX;
    return set_short_year(year);
  }

  int set_short_year(CS_INT year) noexcept {
    fields.dateyear = com__year2digit(year);
    return fields.dateyear == year_failed ? year_failed : 0;
  }

  // Deliberate: two separators must be there, behind the first token; where else, and whether they
  // match, does not count.
  int read_numeric_date(int separator, CS_INT style, CS_INT order) noexcept {
    use(separator);
    const int second = find(DT_SEPARATOR);
    StyleRule rule;
    if (second < 0)
      return DT_BAD_SYNTAX;
    use(second);
    if (!find_style(style, rule))
      return DT_BAD_SYNTAX;
    const int year = rule.year == Year::no ? -1 : find(DT_YEAR);
    if (year >= 0)
      fields.dateyear = use(year);
    else if (rule.year == Year::required)
      return DT_BAD_SYNTAX;
    if (rule.order != no_order)
      order = rule.order;
    else if (year == 0 && order != ydm)
      order = ymd; // a year that leads is first, whatever the caller's order says
    if (order < mdy || order > dym)
      return DT_BAD_SYNTAX;
    return read_places(order_places[order], year >= 0);
  }

  // Values are not judged: the make functions refuse a thirteenth month.
  int read_places(const char *places, bool has_year) noexcept {
    for (; *places != '\0'; ++places) {
      CS_INT number;
      if (*places == 'y' && has_year)
        continue;
      if (!take_first(DT_NUMBER, number))
        return DT_BAD_SYNTAX;
      if (*places == 'm')
        fields.datemonth = number - 1;
      else if (*places == 'd')
        fields.datedmonth = number;
      else if (const int status = set_short_year(number); status != 0)
        return status;
    }
    return 0;
  }

  int read_packed_date(int packed) noexcept {
    const CS_INT value = use(packed), year = value / 10000;
    fields.datedmonth = value % 100;
    fields.datemonth = value / 100 % 100 - 1;
    if (tokens[packed].dclength == 6)
      return set_short_year(year);
    fields.dateyear = year;
    return 0;
  }

  Token tokens[most_tokens + 1];
  unsigned kinds = 0; // a bit for each kind that was read
  int unused = 0;
  CS_DATEREC &fields;
  CS_BOOL *truncated;
  bool has_micros;
};

// ---- values ----

// What a date and time answers whose time cannot be made. The field at fault is not told.
constexpr int make_failed = 1;

// Whether there is something to make of what was read.
constexpr bool is_read(int status) noexcept {
  return status == 0 || status == DT_NO_DATE;
}

} // namespace

int datelookup(CS_CHAR *cp, CS_INT len, CS_CHAR **list, int cnt, CS_ATTRIB *chatr) noexcept {
  COMN_CHECK_PTR(cp, -1);
  COMN_CHECK_PTR(list, -1);
  return look_up(comn::charset_or_builtin(chatr), reinterpret_cast<CS_BYTE *>(cp), len, list, cnt);
}

int datetoken(CS_CHAR **cpp, CS_INT *lenp, struct com__datecrack *dc, CS_CHAR **mths,
              CS_CHAR **shortmths, CS_ATTRIB *chatr) noexcept {
  COMN_CHECK_PTR(cpp, DT_ERROR);
  COMN_CHECK_PTR(lenp, DT_ERROR);
  COMN_CHECK_PTR(dc, DT_ERROR);
  const CHAR_ATTRIB &set = comn::charset_or_builtin(chatr);
  const auto *const start = reinterpret_cast<CS_BYTE *>(*cpp);
  comn::TextCursor cursor(set, start, *lenp);
  dc->dctoken = read_token(cursor, *dc, set, mths, shortmths);
  const auto read = static_cast<CS_INT>(cursor.position() - start);
  *cpp += read;
  *lenp -= read;
  return dc->dctoken;
}

int findtoken(struct com__datecrack *dc, int token) noexcept {
  COMN_CHECK_PTR(dc, -1);
  for (int i = 0; dc[i].dctoken != DT_END; ++i)
    if (token < 0 ? dc[i].dctoken != -token : dc[i].dctoken == token)
      return i;
  return -1;
}

// Deliberate: PM leaves hours of 12 and above alone.
int com__amcheck(CS_DATEREC *pp, int pmflag) noexcept {
  COMN_CHECK_PTR(pp, 1);
  CS_INT &hour = pp->datehour;
  if (pmflag != 0) {
    if (hour == 0)
      return 1;
    if (hour < 12)
      hour += 12;
  } else {
    if (hour > 12)
      return 1;
    if (hour == 12)
      hour = 0;
  }
  return 0;
}

CS_INT com__year2digit(CS_INT year) noexcept {
  if (year < 0 || year > 99)
    return year_failed;
  return year < 50 ? 2000 + year : 1900 + year;
}

// All in one piece, so that the rules of stepping cost no calls.
[[gnu::flatten]] int xdaterecfromchar(CS_DATEREC *parts, CS_CHAR *origcp, CS_INT origlen,
                                      int partonly, CS_INT style, CS_INT order, CS_CHAR **mths,
                                      CS_CHAR **shortmths, CS_ATTRIB *chatr, CS_INT dt_type,
                                      CS_BOOL *truncated) noexcept {
  COMN_CHECK_PTR(parts, DT_BAD_SYNTAX);
  COMN_CHECK_PTR(origcp, DT_BAD_SYNTAX);
  if (truncated != nullptr)
    *truncated = 0;
  const CHAR_ATTRIB &set = comn::charset_or_builtin(chatr);
  Interpreter interpreter(*parts, dt_type, truncated);
  const bool is_read =
      comn::with_cursor(set, reinterpret_cast<CS_BYTE *>(origcp), origlen, [&](const auto &cursor) {
        return interpreter.read_tokens(cursor, set, mths, shortmths);
      });
  return is_read ? interpreter.run(partonly, style, order) : DT_BAD_SYNTAX;
}

int xdatefromchar(CS_DATETIME *dtp, CS_CHAR *origcp, CS_INT origlen, int partonly, CS_INT style,
                  CS_INT order, CS_CHAR **mths, CS_CHAR **shortmths, CS_ATTRIB *chatr,
                  CS_BOOL *truncated) noexcept {
  COMN_CHECK_PTR(dtp, DT_BAD_SYNTAX);
  com_datezero(dtp);
  CS_DATEREC parts;
  const int status = xdaterecfromchar(&parts, origcp, origlen, partonly, style, order, mths,
                                      shortmths, chatr, CS_TYPE_DATETIME, truncated);
  if (!is_read(status))
    return status;
  if (com__timemake(dtp, &parts) != 0)
    return make_failed;
  return status == DT_NO_DATE ? 0 : com__datemake(dtp, &parts);
}

int xbigdatetimefromchar(CS_BIGDATETIME *dtp, CS_CHAR *origcp, CS_INT origlen, int partonly,
                         CS_INT style, CS_INT order, CS_CHAR **mths, CS_CHAR **shortmths,
                         CS_ATTRIB *chatr, CS_BOOL *truncated) noexcept {
  COMN_CHECK_PTR(dtp, DT_BAD_SYNTAX);
  *dtp = 0;
  CS_DATEREC parts;
  const int status = xdaterecfromchar(&parts, origcp, origlen, partonly, style, order, mths,
                                      shortmths, chatr, CS_TYPE_BIGDATETIME, truncated);
  if (!is_read(status))
    return status;
  CS_BIGTIME time = 0;
  if (com__bigtimemake(&time, &parts) != 0)
    return make_failed;
  *dtp = calendar::first_bigdatetime;
  if (status == 0) {
    const int made = com__bigdatemake(dtp, &parts);
    if (made != 0)
      return made;
  }
  *dtp += time;
  return 0;
}

int com__datefromchar_mb(CS_DATETIME *dtp, CS_CHAR *origcp, CS_INT origlen, CS_INT style,
                         CS_INT order, CS_CHAR **mths, CS_CHAR **shortmths, CS_ATTRIB *chatr,
                         CS_BOOL *truncated) noexcept {
  const int status = xdatefromchar(dtp, origcp, origlen, date_and_time, style, order, mths,
                                   shortmths, chatr, truncated);
  return status != 0 ? status : com__datetime_check_range(dtp);
}

int com__date4fromchar_mb(CS_DATETIME4 *dtp, CS_CHAR *origcp, CS_INT origlen, CS_INT style,
                          CS_INT order, CS_CHAR **mths, CS_CHAR **shortmths, CS_ATTRIB *chatr,
                          CS_BOOL *truncated) noexcept {
  COMN_CHECK_PTR(dtp, DT_BAD_SYNTAX);
  CS_DATETIME value;
  const int status = xdatefromchar(&value, origcp, origlen, date_and_time, style, order, mths,
                                   shortmths, chatr, truncated);
  return status != 0 ? status : com__dttodate4(&value, dtp);
}

int com__bigdatetimefromchar_mb(CS_BIGDATETIME *dtp, CS_CHAR *origcp, CS_INT origlen, CS_INT style,
                                CS_INT order, CS_CHAR **mths, CS_CHAR **shortmths, CS_ATTRIB *chatr,
                                CS_BOOL *truncated) noexcept {
  const int status = xbigdatetimefromchar(dtp, origcp, origlen, date_and_time, style, order, mths,
                                          shortmths, chatr, truncated);
  return status != 0 ? status : com__bigdatetime_check_range(dtp);
}

int com__dateafromchar_mb(CS_DATE *dtp, CS_CHAR *origcp, CS_INT origlen, CS_INT style, CS_INT order,
                          CS_CHAR **mths, CS_CHAR **shortmths, CS_ATTRIB *chatr,
                          CS_BOOL *truncated) noexcept {
  COMN_CHECK_PTR(dtp, DT_BAD_SYNTAX);
  CS_DATETIME value;
  const int status = xdatefromchar(&value, origcp, origlen, date_part, style, order, mths,
                                   shortmths, chatr, truncated);
  *dtp = value.dtdays;
  return status;
}

int com__timeafromchar_mb(CS_TIME *dtp, CS_CHAR *origcp, CS_INT origlen, CS_INT style, CS_INT order,
                          CS_CHAR **mths, CS_CHAR **shortmths, CS_ATTRIB *chatr,
                          CS_BOOL *truncated) noexcept {
  COMN_CHECK_PTR(dtp, DT_BAD_SYNTAX);
  CS_DATETIME value;
  const int status = xdatefromchar(&value, origcp, origlen, time_part, style, order, mths,
                                   shortmths, chatr, truncated);
  *dtp = value.dttime;
  return status;
}

int com__bigtimefromchar_mb(CS_BIGTIME *dtp, CS_CHAR *origcp, CS_INT origlen, CS_INT style,
                            CS_INT order, CS_CHAR **mths, CS_CHAR **shortmths, CS_ATTRIB *chatr,
                            CS_BOOL *truncated) noexcept {
  COMN_CHECK_PTR(dtp, DT_BAD_SYNTAX);
  *dtp = 0;
  CS_DATEREC parts;
  const int status = xdaterecfromchar(&parts, origcp, origlen, time_part, style, order, mths,
                                      shortmths, chatr, CS_TYPE_BIGDATETIME, truncated);
  if (!is_read(status))
    return status;
  if (status == 0) {
    // The date does not come through, but must be one.
    CS_BIGDATETIME date;
    const int made = com__bigdatemake(&date, &parts);
    if (made != 0)
      return made;
  }
  return com__bigtimemake(dtp, &parts);
}

int com__timefromchar_mb(CS_DATETIME *dtp, CS_CHAR *origcp, CS_INT origlen, CS_INT style, CS_INT,
                         CS_CHAR **, CS_CHAR **, CS_ATTRIB *chatr, CS_BOOL *truncated) noexcept {
  return xdatefromchar(dtp, origcp, origlen, time_alone, style, no_order, nullptr, nullptr, chatr,
                       truncated);
}
