// Benchmarks of the calendar: cracking, making, adding, differences, text both ways.
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "comparison.h"
#include "dates_peers.h"
#include "inputs.h"
#include "zrvcomn/datetime.h"

namespace zrvbench {
namespace {

constexpr bool is_32_bits = sizeof(void *) == 4;

alignas(64) char text[256];

// The same moments, from 1753 to 2100, as each side holds them.
struct Moment {
  CS_DATETIME value;
  CS_BIGDATETIME big;
  CS_DATEREC fields;
  CS_INT months; // to be added
  int64_t millis;
  time_t time;
  PeerFields peer_fields;
  tm peer_tm;
};

using Moments = std::shared_ptr<std::vector<Moment>>;

Moments make_moments() {
  constexpr CS_INT first_day = -53690, day_count = 53690 + 73414;
  constexpr int64_t epoch = -25567; // 1970-01-01 less 1900-01-01, in days
  Random random(40);
  auto moments = std::make_shared<std::vector<Moment>>(input_count + 1);
  for (Moment &moment : *moments) {
    moment = {};
    moment.value = {first_day + static_cast<CS_INT>(random_below(random, day_count)),
                    static_cast<CS_INT>(random_below(random, 25920000))};
    com__datecrack(&moment.value, &moment.fields);
    com__timecrack(&moment.value, &moment.fields);
    com_bigdatetimemake(&moment.big, &moment.fields);
    moment.months = static_cast<CS_INT>(random_below(random, 240)) - 120;
    const CS_DATEREC &fields = moment.fields;
    moment.millis =
        (int64_t{moment.value.dtdays} + epoch) * 86400000 + int64_t{moment.value.dttime} * 10 / 3;
    moment.time = static_cast<time_t>((int64_t{moment.value.dtdays} + epoch) * 86400 +
                                      moment.value.dttime / 300);
    moment.peer_fields = {fields.dateyear,   fields.datemonth + 1, fields.datedmonth,
                          fields.datedweek,  fields.datehour,      fields.dateminute,
                          fields.datesecond, fields.datemsecond};
    gmtime_r(&moment.time, &moment.peer_tm);
  }
  return moments;
}

// One pass of a step over the moments.
template <class Step>
Pass each(Moments moments, Step step) {
  return [moments, step] {
    for (size_t i = 0; i < input_count; ++i) {
      step((*moments)[i], (*moments)[i + 1]);
      benchmark::ClobberMemory();
    }
  };
}

void compare_fields(const Moments &moments) {
  static CS_DATEREC cracked;
  static PeerFields peer_cracked;
  static tm peer_tm;
  compare({"crack all fields",
           "com_datecrack and com_timecrack",
           "1753 to 2100",
           input_count,
           each(moments,
                [](Moment &moment, Moment &) {
                  com_datecrack(&moment.value, &cracked);
                  com_timecrack(&moment.value, &cracked);
                }),
           {{"std::chrono", is_32_bits ? 0.8 : 2.0,
             each(moments, [](Moment &moment,
                              Moment &) { peer_chrono_crack(moment.millis, &peer_cracked); })},
            {"gmtime_r", 0.5,
             each(moments, [](Moment &moment, Moment &) { gmtime_r(&moment.time, &peer_tm); })}}});
  static CS_DATETIME made;
  compare({"make from fields",
           "com_datemake and com_timemake",
           "1753 to 2100",
           input_count,
           each(moments,
                [](Moment &moment, Moment &) {
                  com_datemake(&made, &moment.fields);
                  com_timemake(&made, &moment.fields);
                }),
           {{"std::chrono", 2.7,
             each(moments,
                  [](Moment &moment, Moment &) {
                    benchmark::DoNotOptimize(peer_chrono_make(&moment.peer_fields));
                  })},
            {"timegm", 0.22, each(moments, [](Moment &moment, Moment &) {
               peer_tm = moment.peer_tm;
               benchmark::DoNotOptimize(timegm(&peer_tm));
             })}}});
}

void compare_arithmetic(const Moments &moments) {
  static CS_DATETIME sum;
  static CS_INT difference;
  compare({"add months",
           "com__date_add",
           "-120 to 119 months",
           input_count,
           each(moments,
                [](Moment &moment, Moment &) {
                  sum = moment.value;
                  com__date_add(2, moment.months, &sum);
                }),
           {{"std::chrono", 2.0, each(moments, [](Moment &moment, Moment &) {
               benchmark::DoNotOptimize(peer_chrono_add_months(moment.millis, moment.months));
             })}}});
  compare({"difference in months",
           "com__datediff",
           "1753 to 2100",
           input_count,
           each(moments,
                [](Moment &moment, Moment &next) {
                  com__datediff(2, &moment.value, &next.value, &difference);
                }),
           {{"std::chrono", 2.0, each(moments, [](Moment &moment, Moment &next) {
               benchmark::DoNotOptimize(peer_chrono_months_between(moment.millis, next.millis));
             })}}});
}

struct TextGoals {
  double fmt, strftime;
};

template <class Ours>
void compare_text(const Moments &moments, const char *member, const char *input, Ours ours,
                  TextGoals goals, [[maybe_unused]] size_t (*fmt)(char *, time_t),
                  const char *strftime_format) {
  std::vector<Peer> peers;
#ifdef ZRVBENCH_WITH_FMT
  peers.push_back({"{fmt} from a time_t", goals.fmt, each(moments, [fmt](Moment &moment, Moment &) {
                     benchmark::DoNotOptimize(fmt(text, moment.time));
                   })});
#endif
  peers.push_back({"strftime of gmtime_r", is_32_bits ? 0.12 : goals.strftime,
                   each(moments, [strftime_format](Moment &moment, Moment &) {
                     benchmark::DoNotOptimize(
                         peer_strftime(text, sizeof text, strftime_format, moment.time));
                   })});
  compare({"text", member, input, input_count, each(moments, ours), peers});
}

template <CS_INT style>
void show(Moment &moment, Moment &) {
  benchmark::DoNotOptimize(
      com_cvtdatetochar(&moment.value, text, sizeof text, style, com__get_shortmonths()));
}

template <CS_INT style>
void show_big(Moment &moment, Moment &) {
  benchmark::DoNotOptimize(
      com__bigdatetimetochar(&moment.big, text, sizeof text, style, com__get_shortmonths()));
}

#ifdef ZRVBENCH_WITH_FMT
#define PEER(function) function
#else
#define PEER(function) nullptr
#endif

void compare_texts(const Moments &moments) {
  constexpr TextGoals iso{0.45, 0.2}, names{0.6, 0.35};
  compare_text(moments, "com_cvtdatetochar", "style 23, ISO", show<23>, iso, PEER(peer_fmt_iso_t),
               "%Y-%m-%dT%H:%M:%S");
  compare_text(moments, "com__bigdatetimetochar", "style 140, ISO with microseconds", show_big<140>,
               iso, PEER(peer_fmt_iso), "%Y-%m-%d %H:%M:%S");
  compare_text(moments, "com_cvtdatetochar", "style 0, with names", show<0>, names,
               PEER(peer_fmt_minutes), "%b %e %Y %I:%M%p");
  compare_text(moments, "com_cvtdatetochar", "style 9, with names and milliseconds", show<9>, names,
               PEER(peer_fmt_seconds), "%b %e %Y %I:%M:%S%p");
}

// The text of each moment in a style.
std::shared_ptr<std::vector<std::string>> make_texts(const Moments &moments, CS_INT style) {
  auto texts = std::make_shared<std::vector<std::string>>();
  for (Moment &moment : *moments) {
    const CS_INT length =
        com__datetochar(&moment.value, text, sizeof text, style, com__get_shortmonths());
    texts->emplace_back(text, static_cast<size_t>(length));
  }
  return texts;
}

void compare_parsing(const Moments &moments) {
  static CS_DATETIME value;
  const auto row = [&](const char *input, CS_INT style, const char *peer, double goal,
                       int64_t (*read)(char *)) {
    const auto texts = make_texts(moments, style);
    const auto pass = [texts](auto body) {
      return [texts, body] {
        for (size_t i = 0; i < input_count; ++i) {
          body((*texts)[i]);
          benchmark::ClobberMemory();
        }
      };
    };
    Comparison comparison{"from text",
                          "com__datefromchar_mb",
                          input,
                          input_count,
                          pass([](std::string &source) {
                            benchmark::DoNotOptimize(com__datefromchar_mb(
                                &value, source.data(), static_cast<CS_INT>(source.size()), 0, 1,
                                com__get_months(), com__get_shortmonths(), com_get_charattrib(),
                                nullptr));
                          }),
                          {}};
    if (read != nullptr)
      comparison.peers.push_back({peer, goal, pass([read](std::string &source) {
                                    benchmark::DoNotOptimize(read(source.data()));
                                  })});
    compare(std::move(comparison));
  };
  row("2001-01-05T22:30:15", 23, "strptime, timegm", 0.7,
      [](char *source) { return static_cast<int64_t>(peer_strptime_iso(source)); });
#ifdef ZRVBENCH_WITH_PGTYPES
  row("Jan  5 2001 22:30:15", 116, "pgtypes", 0.3, peer_pg_timestamp);
  row("2001/01/05 22:30:15", 121, "pgtypes", 0.3, peer_pg_timestamp);
#endif
}

} // namespace

void register_comparisons() {
  const Moments moments = make_moments();
  compare_fields(moments);
  compare_arithmetic(moments);
  compare_texts(moments);
  compare_parsing(moments);
}

} // namespace zrvbench
