// Benchmarks of the protocol maps, against bare scans of the same rows.
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "comparison.h"
#include "inputs.h"
#include "protocol_peers.h"

namespace zrvbench {
namespace {

using Values = std::shared_ptr<std::vector<CS_INT>>;

constexpr double scan_goal = 1.5;
constexpr double index_goal = 1.0;

const char *direction_name(CS_INT direction) {
  return direction == COM_TDS_CSTOTDS ? "to wire" : "to library";
}

// The field of random rows of a map that is looked up.
Values random_rows(const TDS_TOKENMAP *map, size_t rows, CS_INT direction) {
  Random random(23);
  auto values = std::make_shared<std::vector<CS_INT>>(input_count);
  for (CS_INT &value : *values) {
    const TDS_TOKENMAP &row = map[random_below(random, rows)];
    value = direction == COM_TDS_CSTOTDS ? row.cs_tokenval : row.tds_tokenval;
  }
  return values;
}

// `rows` is without the end row.
void compare_values(const char *name, CS_INT index, size_t rows, CS_INT direction) {
  const TDS_TOKENMAP *const map = Com__tds_maparray[index].map;
  const Values values = random_rows(map, rows, direction);
  compare({std::string("unique map, ") + name,
           "com_tds_maptoken",
           std::string(name) + ", " + std::to_string(rows) + " rows, " + direction_name(direction),
           input_count,
           [=] {
             for (const CS_INT value : *values) {
               CS_INT result, unmapped;
               com_tds_maptoken(index, value, &result, &unmapped, direction);
               benchmark::DoNotOptimize(result);
             }
           },
           {{"linear scan", scan_goal, [=] {
               for (const CS_INT value : *values) {
                 CS_INT result;
                 peer_scan_values(map, value, &result, direction);
                 benchmark::DoNotOptimize(result);
               }
             }}}});
}

void compare_bits(const char *name, CS_INT index, size_t rows, CS_INT direction) {
  const TDS_TOKENMAP *const map = Com__tds_maparray[index].map;
  const Values one = random_rows(map, rows, direction);
  auto values = std::make_shared<std::vector<CS_INT>>(*one);
  for (size_t i = 0; i + 1 < input_count; ++i)
    (*values)[i] |= (*one)[i + 1];
  compare({std::string("bit map, ") + name,
           "com_tds_maptoken",
           std::string(name) + ", " + std::to_string(rows) + " rows, " + direction_name(direction),
           input_count,
           [=] {
             for (const CS_INT value : *values) {
               CS_INT result, unmapped;
               com_tds_maptoken(index, value, &result, &unmapped, direction);
               benchmark::DoNotOptimize(result);
               benchmark::DoNotOptimize(unmapped);
             }
           },
           {{"linear scan", scan_goal, [=] {
               for (const CS_INT value : *values) {
                 CS_INT result, unmapped;
                 peer_scan_bits(map, value, &result, &unmapped, direction);
                 benchmark::DoNotOptimize(result);
                 benchmark::DoNotOptimize(unmapped);
               }
             }}}});
}

// Wire types that a map has, each row as often as any other.
Values random_types(bool with_duplicates) {
  Random random(24);
  std::vector<CS_INT> types;
  for (const TDS_DATAMAP *row = Com__tds_uniq_datatype_map; row->cs_datatype != -1; ++row)
    types.push_back(row->tds_datatype);
  if (with_duplicates)
    for (const TDS_DATAMAP *row = Com__tds_dup_datatype_map; row->cs_datatype != -1; ++row)
      types.push_back(row->tds_datatype);
  auto values = std::make_shared<std::vector<CS_INT>>(input_count);
  for (CS_INT &value : *values)
    value = types[random_below(random, types.size())];
  return values;
}

void compare_types() {
  const Values both = random_types(true), unique = random_types(false);
  compare({"type lookup, info",
           "com_tds_get_tdsdatainfo",
           "wire types of both maps",
           input_count,
           [=] {
             for (const CS_INT type : *both) {
               CS_INT prefix;
               CS_BOOL nullable;
               com_tds_get_tdsdatainfo(type, &prefix, &nullable);
               benchmark::DoNotOptimize(prefix);
               benchmark::DoNotOptimize(nullable);
             }
           },
           {{"linear scan", index_goal, [=] {
               for (const CS_INT type : *both) {
                 const TDS_DATAMAP *row =
                     peer_scan_types(Com__tds_uniq_datatype_map, Com__tds_dup_datatype_map, type);
                 benchmark::DoNotOptimize(row);
               }
             }}}});
  compare({"type lookup, library type",
           "com_tds_get_cstype",
           "wire types of both maps, length 4",
           input_count,
           [=] {
             for (const CS_INT type : *both) {
               CS_INT library_type = 0;
               com_tds_get_cstype(type, 4, &library_type);
               benchmark::DoNotOptimize(library_type);
             }
           },
           {{"linear scan", index_goal, [=] {
               for (const CS_INT type : *both) {
                 const TDS_DATAMAP *row = peer_scan_types_and_lengths(
                     Com__tds_uniq_datatype_map, Com__tds_dup_datatype_map, type, 4);
                 benchmark::DoNotOptimize(row);
               }
             }}}});
  compare({"type lookup, length",
           "com_tds_get_tdsfixedlen",
           "wire types of the unique map",
           input_count,
           [=] {
             for (const CS_INT type : *unique) {
               CS_INT length;
               com_tds_get_tdsfixedlen(type, &length);
               benchmark::DoNotOptimize(length);
             }
           },
           {{"linear scan", index_goal, [=] {
               for (const CS_INT type : *unique) {
                 const TDS_DATAMAP *row =
                     peer_scan_types(Com__tds_uniq_datatype_map, Com__tds_dup_datatype_map, type);
                 benchmark::DoNotOptimize(row);
               }
             }}}});
}

} // namespace

void register_comparisons() {
  for (const CS_INT direction : {COM_TDS_CSTOTDS, COM_TDS_TDSTOCS}) {
    compare_values("alternate operators", 0, 5, direction);
    compare_values("options", 10, 47, direction);
    compare_values("capabilities", 2, 107, direction);
    compare_bits("column facts", 4, 4, direction);
    compare_bits("row formats", 19, 9, direction);
  }
  compare_types();
}

} // namespace zrvbench
