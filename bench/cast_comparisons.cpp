// The cast-context conversions beside their counterparts in the matrix, on the same values.
#include <array>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "cast_comparisons.h"
#include "comparison.h"
#include "inputs.h"
#include "zrvcomn/castctx.h"
#include "zrvcomn/comloc.h"
#include "zrvcomn/comnlib.h"
#include "zrvcomn/datetime.h"
#include "zrvcomn/numeric.h"

namespace zrvbench {
namespace {

using CastFunction = CS_RETCODE (*)(CAST_CONTEXT *, __CONSTANT *, __CONSTANT *);

struct Member {
  const char *source, *destination;
  CastFunction function;
};

#define ZRVBENCH_MEMBER(source, destination)                                                       \
  {#source, #destination, comnb_##source##to##destination},
constexpr Member members[] = {ZRV_CAST_MEMBERS(ZRVBENCH_MEMBER)};
#undef ZRVBENCH_MEMBER

const std::map<std::string, CS_INT> type_codes = {
    {"bit", CS_TYPE_BIT},
    {"i1", CS_TYPE_TINYINT},
    {"i2", CS_TYPE_SMALLINT},
    {"i4", CS_TYPE_INT},
    {"i8", CS_TYPE_BIGINT},
    {"ui2", CS_TYPE_USMALLINT},
    {"ui4", CS_TYPE_UINT},
    {"ui8", CS_TYPE_UBIGINT},
    {"flt4", CS_TYPE_REAL},
    {"flt8", CS_TYPE_FLOAT},
    {"num", CS_TYPE_NUMERIC},
    {"mny4", CS_TYPE_MONEY4},
    {"money", CS_TYPE_MONEY},
    {"char", CS_TYPE_CHAR},
    {"varchar", CS_TYPE_VARCHAR},
    {"date", CS_TYPE_DATETIME},
    {"date4", CS_TYPE_DATETIME4},
    {"time4", CS_TYPE_DATETIME4},
    {"datea", CS_TYPE_DATE},
    {"timea", CS_TYPE_TIME},
    {"bigdate", CS_TYPE_BIGDATETIME},
    {"bigdatetime", CS_TYPE_BIGDATETIME},
    {"bigtime", CS_TYPE_BIGTIME},
};

// A value as the matrix takes it, and where in it the family's value stands.
struct Value {
  alignas(8) std::array<char, 48> bytes{};
  CS_INT length = 0, head = 0; // of the family's value
};

template <class T>
void put(Value &value, T number, CS_INT head = 0) {
  std::memcpy(value.bytes.data() + head, &number, sizeof number);
  value.head = head;
  value.length = sizeof number;
}

constexpr CS_INT precision = 20, scale = 2;

// A whole number of up to four digits, which every type but the shortest holds, in the form of a type.
Value make_value(const std::string &type, int number) {
  Value value;
  char text[16];
  const auto length = static_cast<size_t>(std::snprintf(text, sizeof text, "%d", number));
  switch (type_codes.at(type)) {
  case CS_TYPE_BIT:
    put(value, static_cast<CS_BIT>(number % 2));
    break;
  case CS_TYPE_TINYINT:
    put(value, static_cast<CS_TINYINT>(number % 256));
    break;
  case CS_TYPE_SMALLINT:
    put(value, static_cast<CS_SMALLINT>(number));
    break;
  case CS_TYPE_USMALLINT:
    put(value, static_cast<CS_USMALLINT>(number));
    break;
  case CS_TYPE_UINT:
  case CS_TYPE_INT:
    put(value, static_cast<CS_INT>(number));
    break;
  case CS_TYPE_BIGINT:
  case CS_TYPE_UBIGINT:
    put(value, static_cast<CS_BIGINT>(number));
    break;
  case CS_TYPE_REAL:
    put(value, static_cast<CS_REAL>(number));
    break;
  case CS_TYPE_FLOAT:
    put(value, static_cast<CS_FLOAT>(number));
    break;
  case CS_TYPE_MONEY4:
    put(value, static_cast<CS_INT>(number * 10000));
    break;
  case CS_TYPE_MONEY:
    put(value, CS_MONEY{0, static_cast<CS_UINT>(number * 10000)});
    break;
  case CS_TYPE_NUMERIC: {
    CS_NUMERIC numeric{};
    numeric.precision = precision;
    numeric.scale = scale;
    com__longtoexctnume(number, numeric.array, comn_num_getlen(precision), &numeric.precision,
                        &numeric.scale);
    put(value, numeric);
    value.head = 2;
    value.length = comn_num_getlen(precision);
    break;
  }
  case CS_TYPE_CHAR:
    std::memcpy(value.bytes.data(), text, length);
    value.length = static_cast<CS_INT>(length);
    break;
  case CS_TYPE_VARCHAR:
    put(value, static_cast<CS_SMALLINT>(length));
    std::memcpy(value.bytes.data() + 2, text, length);
    value.head = 2;
    value.length = static_cast<CS_INT>(length);
    break;
  case CS_TYPE_DATETIME:
    put(value, CS_DATETIME{number, number * 1000});
    break;
  case CS_TYPE_DATETIME4:
    put(value, CS_DATETIME4{static_cast<CS_USHORT>(number), static_cast<CS_USHORT>(number % 1440)});
    break;
  case CS_TYPE_BIGDATETIME:
    put(value, CS_BIGDATETIME{31622400000000} + CS_BIGDATETIME{700000} * 86400000000 +
                   static_cast<CS_BIGDATETIME>(number) * 86411000000);
    break;
  case CS_TYPE_BIGTIME:
    put(value, static_cast<CS_BIGTIME>(number) * 1000000);
    break;
  default: // dates and times of 32 bits
    put(value, static_cast<CS_INT>(number));
    break;
  }
  return value;
}

bool is_date(CS_INT type) {
  switch (type) {
  case CS_TYPE_DATETIME:
  case CS_TYPE_DATETIME4:
  case CS_TYPE_DATE:
  case CS_TYPE_TIME:
  case CS_TYPE_BIGDATETIME:
  case CS_TYPE_BIGTIME:
    return true;
  default:
    return false;
  }
}

alignas(64) char result[512];

// The built-in set in all locales.
CS_LOCALE *builtin_locale() {
  static CsCharDesc charset{};
  static CsLocCache cache{};
  static CS_LOCALE locale{};
  charset.char_attrib = com_get_charattrib();
  cache.locchardesc = &charset;
  locale.collateptr = locale.ctypeptr = locale.messageptr = locale.monetaryptr = locale.numericptr =
      locale.timeptr = &cache;
  return &locale;
}

using Values = std::shared_ptr<std::vector<Value>>;

Pass cast_each(CastFunction function, const Values &values) {
  return [function, values] {
    CAST_CONTEXT context{};
    __CONSTANT src{}, dest{};
    src.prec = dest.prec = precision;
    src.scale = dest.scale = scale;
    dest.maxlen = 64;
    dest.value = reinterpret_cast<CS_BYTE *>(result);
    for (const Value &value : *values) {
      src.len = value.length;
      src.value = reinterpret_cast<CS_BYTE *>(const_cast<char *>(value.bytes.data())) + value.head;
      benchmark::DoNotOptimize(function(&context, &src, &dest));
      benchmark::ClobberMemory();
    }
  };
}

Pass convert_each(CS_CONV_FUNC function, CS_INT from, CS_INT to, const Values &values) {
  return [=] {
    CS_CONTEXT context{};
    CS_DATAFMT srcfmt{}, destfmt{};
    srcfmt.datatype = from;
    destfmt.datatype = to;
    srcfmt.locale = destfmt.locale = builtin_locale();
    destfmt.maxlength = 64;
    destfmt.precision = precision;
    destfmt.scale = scale;
    for (const Value &value : *values) {
      CS_INT length;
      srcfmt.maxlength = value.length;
      benchmark::DoNotOptimize(function(&context, &srcfmt, const_cast<char *>(value.bytes.data()),
                                        &destfmt, result, &length));
      benchmark::ClobberMemory();
    }
  };
}

} // namespace

void compare_casts(CS_CONTEXT *matrix) {
  std::map<std::string, Values> values;
  for (const Member &member : members) {
    const auto from = type_codes.find(member.source), to = type_codes.find(member.destination);
    if (from == type_codes.end() || to == type_codes.end())
      continue;
    const bool is_text_of_dates =
        (to->second == CS_TYPE_CHAR || to->second == CS_TYPE_VARCHAR ||
         from->second == CS_TYPE_CHAR || from->second == CS_TYPE_VARCHAR) &&
        // They go through UTF-8 in the matrix.
        (is_date(from->second) || is_date(to->second));
    const CS_CONV_FUNC counterpart = com_conv_func(matrix, from->second, to->second);
    if (is_text_of_dates || counterpart == nullptr)
      continue;
    Values &made = values[member.source];
    if (made == nullptr) {
      made = std::make_shared<std::vector<Value>>();
      Random random(31);
      for (size_t i = 0; i < input_count; ++i)
        made->push_back(make_value(member.source, static_cast<int>(random_below(random, 9000))));
    }
    compare({"cast context",
             std::string("comnb_") + member.source + "to" + member.destination,
             std::string("to ") + member.destination,
             input_count,
             cast_each(member.function, made),
             {{"counterpart in the matrix", 1.3,
               convert_each(counterpart, from->second, to->second, made)}}});
  }
}

} // namespace zrvbench
