// Every conversion of the matrix on a few fixed values, compared with one file whatever the data model:
// status, length and bytes. With ZRVTEST_RESULTS in the environment the file is written there, to be
// compared by eye before it is committed.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "guarded_buffer.h"
#include "test_context.h"
#include "text_world.h"
#include "value_bytes.h"
#include "zrvintl.h"

using zrvtest::bytes_of;
using zrvtest::GuardedBuffer;
using zrvtest::make_format;
using namespace std::string_literals;

namespace {

std::string record_of(const std::string &bytes) {
  std::string record = bytes_of(static_cast<CS_SMALLINT>(bytes.size())) + bytes;
  record.resize(sizeof(CS_VARCHAR), '\xEE');
  return record;
}

std::string wide(const std::string &text) {
  std::string bytes;
  for (const char c : text)
    bytes += {c, '\0'};
  return bytes;
}

// Twelve, all bits, the most and the least value of an integer.
template <class Integer>
std::vector<std::string> integers() {
  using Bounds = std::numeric_limits<Integer>;
  return {bytes_of(Integer{12}), bytes_of(static_cast<Integer>(-1)), bytes_of(Bounds::max()),
          bytes_of(Bounds::min())};
}

std::vector<std::string> mapped(std::vector<std::string> values,
                                std::string (*map)(const std::string &)) {
  std::transform(values.begin(), values.end(), values.begin(), map);
  return values;
}

const std::vector<std::string> texts = {"12", "-1.5", "1999-12-31 13:30", "0x1f", "caf\xE9"};
const std::vector<std::string> binaries = {"\x01\x02"s, "\x10\x20\x30\x40"s,
                                           "\0\0\x09\x08\x07\0\0\0"s, "abcdefghijklmnopqrstuvwxyz"};

std::string numeric(CS_BYTE precision, CS_BYTE scale, const std::string &array) {
  std::string bytes = {static_cast<char>(precision), static_cast<char>(scale)};
  bytes += array;
  bytes.resize(sizeof(CS_NUMERIC));
  return bytes;
}

// The values of a source, the locators aside.
std::vector<std::string> values_of(CS_INT type) {
  switch (type) {
  case CS_TYPE_CHAR:
  case CS_TYPE_LONGCHAR:
  case CS_TYPE_TEXT:
  case CS_TYPE_SENSITIVITY:
  case CS_TYPE_BOUNDARY:
  case CS_TYPE_XML:
    return texts;
  case CS_TYPE_BINARY:
  case CS_TYPE_LONGBINARY:
  case CS_TYPE_IMAGE:
    return binaries;
  case CS_TYPE_VARCHAR:
    return mapped(texts, record_of);
  case CS_TYPE_VARBINARY:
    return mapped(binaries, record_of);
  case CS_TYPE_UNICHAR:
  case CS_TYPE_UNITEXT: {
    std::vector<std::string> all = mapped(texts, wide);
    all.push_back("odd");
    return all;
  }
  case CS_TYPE_TINYINT:
    return integers<CS_TINYINT>();
  case CS_TYPE_SMALLINT:
    return integers<CS_SMALLINT>();
  case CS_TYPE_INT:
    return integers<CS_INT>();
  case CS_TYPE_BIGINT:
    return integers<CS_BIGINT>();
  case CS_TYPE_USMALLINT:
    return integers<CS_USMALLINT>();
  case CS_TYPE_UINT:
    return integers<CS_UINT>();
  case CS_TYPE_UBIGINT:
    return integers<CS_UBIGINT>();
  case CS_TYPE_REAL:
    return {bytes_of(1.5F), bytes_of(-0.1F), bytes_of(3e38F)};
  case CS_TYPE_FLOAT:
    return {bytes_of(1.5), bytes_of(-0.1), bytes_of(1e300), bytes_of(922337203685477.5)};
  case CS_TYPE_BIT:
    return {"\0"s, "\1", "\2"};
  case CS_TYPE_DATETIME:
    return {bytes_of(CS_INT{0}, CS_INT{0}), bytes_of(CS_INT{36524}, CS_INT{14580000}),
            bytes_of(CS_INT{-53690}, CS_INT{25919999}), bytes_of(CS_INT{9999999}, CS_INT{0})};
  case CS_TYPE_DATETIME4:
    return {bytes_of(CS_USHORT{0}, CS_USHORT{0}), bytes_of(CS_USHORT{65535}, CS_USHORT{1439})};
  case CS_TYPE_DATE:
    return {bytes_of(CS_INT{0}), bytes_of(CS_INT{-693595}), bytes_of(CS_INT{2958463})};
  case CS_TYPE_TIME:
    return {bytes_of(CS_INT{0}), bytes_of(CS_INT{14580000}), bytes_of(CS_INT{25919999})};
  case CS_TYPE_BIGDATETIME:
    return {bytes_of(CS_UBIGINT{63145440000000000U}), bytes_of(CS_UBIGINT{59958273600000001U})};
  case CS_TYPE_BIGTIME:
    return {bytes_of(CS_UBIGINT{0}), bytes_of(CS_UBIGINT{48600999999U}),
            bytes_of(CS_UBIGINT{86400000000U})};
  case CS_TYPE_MONEY:
    return {bytes_of(CS_INT{0}, CS_UINT{123456}), bytes_of(CS_INT{-1}, CS_UINT{0xFFFFFFFF}),
            bytes_of(CS_INT{0x7FFFFFFF}, CS_UINT{0xFFFFFFFF})};
  case CS_TYPE_MONEY4:
    return {bytes_of(CS_INT{123456}), bytes_of(std::numeric_limits<CS_INT>::min())};
  case CS_TYPE_NUMERIC:
  case CS_TYPE_DECIMAL:
    return {numeric(9, 2, "\0\0\0\x30\x39"s), numeric(9, 0, "\1\x3B\x9A\xC9\xFF"s),
            numeric(0, 0, "")};
  case CS_TYPE_VOID:
    return {"\0"s};
  default:
    return {};
  }
}

// A locator with a token and chunks; its blocks are released by comn__locator_clean.
CS_LOCATOR locator(CS_INT type, const std::vector<std::string> &chunks) {
  const auto copied = [](const void *bytes, size_t length) {
    void *const block = comn_calloc(1, length);
    std::memcpy(block, bytes, length);
    return block;
  };
  CS_LOCATOR record{};
  record.locatortag = CS_LOCATOR_TAG;
  record.locatortype = type;
  record.locatorlen = 3;
  record.locator = static_cast<CS_BYTE *>(copied("\x01\xAB\xCD", 3));
  record.totalloblen = 77;
  CsBlobChunk **link = &record.prefetchdata;
  for (const std::string &bytes : chunks) {
    *link = static_cast<CsBlobChunk *>(comn_calloc(1, sizeof(CsBlobChunk)));
    (*link)->len = static_cast<CS_INT>(bytes.size());
    (*link)->data = copied(bytes.data(), bytes.size());
    record.prefetchlen += (*link)->len;
    link = &(*link)->pnext;
  }
  return record;
}

bool is_locator(CS_INT type) {
  return type >= CS_TYPE_TEXTLOCATOR && type <= CS_TYPE_UNITEXTLOCATOR;
}

void append_hex(std::ostream &out, const void *bytes, size_t length) {
  constexpr const char *digits = "0123456789abcdef";
  for (size_t i = 0; i < length; ++i) {
    const auto byte = static_cast<const unsigned char *>(bytes)[i];
    out << digits[byte >> 4] << digits[byte & 15];
  }
}

// What a record holds, without the addresses.
void append_record(std::ostream &out, const CS_LOCATOR &record) {
  out << " type " << record.locatortype << " total " << record.totalloblen << " token ";
  append_hex(out, record.locator, record.locatorlen);
  out << " prefetched " << record.prefetchlen;
  for (const CsBlobChunk *chunk = record.prefetchdata; chunk != nullptr; chunk = chunk->pnext) {
    out << ' ';
    append_hex(out, chunk->data, static_cast<size_t>(chunk->len));
  }
}

class Results {
public:
  Results() {
    context->ctxlocale = world.context.ctxlocale;
    context->ctxglobals = &world.globals;
  }

  std::string all() {
    for (CS_INT from = 0; from < CS_TYPE_COUNT; ++from)
      for (CS_INT to = 0; to < CS_TYPE_COUNT; ++to) {
        if (com_conv_func(context.get(), from, to) == nullptr)
          continue;
        // What stands there refuses its destination.
        if (to == CS_TYPE_LONG && from != CS_TYPE_VOID)
          continue;
        if (is_locator(from)) {
          const std::vector<std::string> whole = {from == CS_TYPE_UNITEXTLOCATOR ? wide("abc")
                                                                                 : "abc"};
          for (const auto &chunks : {std::vector<std::string>{}, whole}) {
            CS_LOCATOR record = locator(from, chunks);
            convert(from, to, std::string(reinterpret_cast<char *>(&record), sizeof record));
            comn__locator_clean(&record);
          }
        } else {
          for (const std::string &value : values_of(from))
            convert(from, to, value);
        }
      }
    return out.str();
  }

private:
  void convert(CS_INT from, CS_INT to, std::string value) {
    constexpr CS_INT room = 24;
    CS_DATAFMT srcfmt = make_format(from, static_cast<CS_INT>(value.size()));
    CS_DATAFMT destfmt = make_format(to, room);
    destfmt.precision = 20;
    destfmt.scale = 3;
    GuardedBuffer dest(600);
    if (is_locator(to))
      dest.set(CS_LOCATOR{Comv_CS_LOCATOR});
    CS_INT length = -4711;
    const CS_RETCODE status = com_conv_func(context.get(), from, to)(
        context.get(), &srcfmt, value.data(), &destfmt, dest.data(), &length);
    out << from << ' ' << to << ": " << status << ' ' << length;
    if (is_locator(to)) {
      auto record = dest.value<CS_LOCATOR>();
      append_record(out, record);
      comn__locator_clean(&record);
    } else if (length > 0) {
      auto shown = static_cast<size_t>(length);
      // Of a record only what it holds.
      if (to == CS_TYPE_VARCHAR || to == CS_TYPE_VARBINARY)
        shown = 2 + static_cast<size_t>(std::clamp<CS_INT>(dest.value<CS_SMALLINT>(), 0, 256));
      out << ' ';
      append_hex(out, dest.data(), shown);
    }
    out << '\n';
  }

  zrvtest::TestContext context;
  zrvtest::TextWorld world;
  std::ostringstream out;
};

std::vector<std::string> lines_of(const std::string &text) {
  std::istringstream in(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);)
    lines.push_back(line);
  return lines;
}

} // namespace

TEST(MatrixResults, AreTheSameInEveryDataModel) {
  const std::string results = Results().all();
  if (const char *const path = std::getenv("ZRVTEST_RESULTS"))
    std::ofstream(path) << results;
  std::ifstream file(ZRVTEST_MATRIX_RESULTS);
  std::ostringstream committed;
  committed << file.rdbuf();
  const std::vector<std::string> expected = lines_of(committed.str()), actual = lines_of(results);
  EXPECT_EQ(actual.size(), expected.size());
  EXPECT_GT(expected.size(), 2000U);
  int differences = 0;
  for (size_t i = 0; i < std::min(actual.size(), expected.size()) && differences < 20; ++i)
    if (actual[i] != expected[i]) {
      ADD_FAILURE() << "line " << i + 1 << " is\n  " << actual[i] << "\nnot\n  " << expected[i];
      ++differences;
    }
}
