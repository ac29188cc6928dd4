// The encoding of identifiers: literal bytes, every limit, and a slow encoder over random arcs.
#include <climits>
#include <cstring>
#include <random>

#include "allocation_probe.h"
#include "check_trap.h"
#include "identifier_records.h"
#include "test_scale.h"
#include "zrvcomn/zrvintl.h"

namespace {

using namespace zrvtest;

constexpr const char *unit = "com_oid_encode.cpp";

// What an encoding came to; the bytes behind it must be clear.
struct Encoded {
  CS_RETCODE result;
  Bytes bytes;
};

Encoded encode(std::string_view dotted) {
  CsOID oid{};
  const CS_RETCODE result =
      comn__encode_oid(nullptr, Text(dotted), static_cast<CS_INT>(dotted.size()), &oid);
  if (result != CS_SUCCEED) {
    EXPECT_EQ(oid.oidber, nullptr);
    EXPECT_EQ(oid.oidberlen, 0);
    return {result, {}};
  }
  const Bytes whole(oid.oidber, oid.oidber + 255);
  EXPECT_GE(oid.oidberlen, 3);
  EXPECT_LE(oid.oidberlen, 255);
  const auto end = whole.begin() + oid.oidberlen;
  EXPECT_EQ(Bytes(end, whole.end()), Bytes(static_cast<size_t>(whole.end() - end), 0)) << dotted;
  comn_free(oid.oidber);
  return {result, Bytes(whole.begin(), end)};
}

void expect_bytes(std::string_view dotted, const Bytes &bytes) {
  const Encoded encoded = encode(dotted);
  EXPECT_EQ(encoded.result, CS_SUCCEED) << dotted;
  EXPECT_EQ(encoded.bytes, bytes) << dotted;
}

void expect_failure(std::string_view dotted) {
  EXPECT_EQ(encode(dotted).result, CS_FAIL) << dotted;
}

TEST(EncodeOid, TwoArcs) {
  expect_bytes("1.2", {6, 1, 42});
  expect_bytes("0.0", {6, 1, 0});
  expect_bytes("2.5", {6, 1, 85});
}

TEST(EncodeOid, FewerArcsFail) {
  for (const char *const dotted : {"", "1", "1.", ".1", "...", "..1.."})
    expect_failure(dotted);
}

// The first two arcs make one byte, whatever they come to.
TEST(EncodeOid, TheFirstByteKeepsEightBits) {
  expect_bytes("6.15", {6, 1, 255});
  expect_bytes("6.16", {6, 1, 0});
  expect_bytes("2.999", {6, 1, 0x37});
  expect_bytes("4294967295.39", {6, 1, 0xFF});
  expect_bytes("4294967295.4294967295", {6, 1, 0xD7});
}

TEST(EncodeOid, DigitsOfAnArc) {
  expect_bytes("1.2.0", {6, 2, 42, 0});
  expect_bytes("1.2.1", {6, 2, 42, 1});
  expect_bytes("1.2.127", {6, 2, 42, 0x7F});
  expect_bytes("1.2.128", {6, 3, 42, 0x81, 0x00});
  expect_bytes("1.2.16383", {6, 3, 42, 0xFF, 0x7F});
  expect_bytes("1.2.16384", {6, 4, 42, 0x81, 0x80, 0x00});
  expect_bytes("1.2.2097151", {6, 4, 42, 0xFF, 0xFF, 0x7F});
  expect_bytes("1.2.2097152", {6, 5, 42, 0x81, 0x80, 0x80, 0x00});
  expect_bytes("1.2.268435455", {6, 5, 42, 0xFF, 0xFF, 0xFF, 0x7F});
  expect_bytes("1.2.268435456", {6, 6, 42, 0x81, 0x80, 0x80, 0x80, 0x00});
  expect_bytes("1.2.4294967295", {6, 6, 42, 0x8F, 0xFF, 0xFF, 0xFF, 0x7F});
  expect_bytes("1.2.0.128.0", {6, 5, 42, 0, 0x81, 0x00, 0});
  expect_bytes("1.2.840.113549", {6, 6, 42, 0x86, 0x48, 0x86, 0xF7, 0x0D});
}

// Alike in both data models.
TEST(EncodeOid, LargerArcsAreClamped) {
  const Bytes largest = {6, 6, 42, 0x8F, 0xFF, 0xFF, 0xFF, 0x7F};
  for (const char *const arc :
       {"4294967296", "4294967297", "18446744073709551615", "18446744073709551616",
        "99999999999999999999999999", "-4294967296", "-99999999999999999999999999"})
    expect_bytes(std::string("1.2.") + arc, largest);
}

// A sign turns the arc over within 32 bits.
TEST(EncodeOid, SignsAndBlanks) {
  expect_bytes("1.2.+5", {6, 2, 42, 5});
  expect_bytes("1.2.-0", {6, 2, 42, 0});
  expect_bytes("1.2.-1", {6, 6, 42, 0x8F, 0xFF, 0xFF, 0xFF, 0x7F});
  expect_bytes("1.2.-4294967295", {6, 2, 42, 1});
  expect_bytes(" 1.\t2.\n\v\f\r 3", {6, 2, 42, 3});
  expect_bytes("1 .2 .3 ", {6, 2, 42, 3});
  expect_bytes("1.2. +5", {6, 2, 42, 5});
  for (const char *const arc : {"+-5", "--5", "+ 5", "- 5",
                                "\xA0"
                                "5"})
    expect_bytes(std::string("1.2.") + arc, {6, 2, 42, 0});
}

TEST(EncodeOid, WhatIsNoNumberIsZero) {
  expect_bytes("a.b", {6, 1, 0});
  expect_bytes("1.2.x", {6, 2, 42, 0});
  expect_bytes("1.2.12x3", {6, 2, 42, 12});
  expect_bytes("1.2.0x1F", {6, 2, 42, 0});
  expect_bytes("1.2.010", {6, 2, 42, 10});
  expect_bytes("1.2. ", {6, 2, 42, 0});
}

TEST(EncodeOid, SeveralPointsAreOne) {
  for (const char *const dotted : {"1.2.3", ".1.2.3", "1.2.3.", "1..2...3", "...1.2.3..."})
    expect_bytes(dotted, {6, 2, 42, 3});
}

TEST(EncodeOid, TheLengthOrANulEndsTheText) {
  CsOID oid{};
  ASSERT_EQ(comn__encode_oid(nullptr, Text("1.2.34"), 5, &oid), CS_SUCCEED);
  EXPECT_EQ(encoding_of(oid), (Bytes{6, 2, 42, 3}));
  comn_free(oid.oidber);
  expect_bytes(std::string("1.2.3\0.4", 8), {6, 2, 42, 3});
  expect_bytes(std::string("1.2\0", 4), {6, 1, 42});
  expect_failure(std::string("1\0.2", 4));
}

// ---- the limits ----

// An identifier with `content` bytes behind the first one, made of arcs of one byte and, at the end,
// one arc of `digits` bytes.
std::string with_content(size_t content, size_t digits) {
  constexpr const char *arcs[] = {"", "1", "128", "16384", "2097152", "4294967295"};
  std::string dotted = "1.2";
  for (size_t i = digits; i < content; ++i)
    dotted += ".1";
  return dotted + "." + arcs[digits];
}

// Two length octets from 124 bytes behind the first one on, although one could still tell three
// more. Peers compare these bytes: the limit is deliberate.
TEST(EncodeOid, TheLongFormBeginsEarly) {
  for (size_t digits = 1; digits <= 5; ++digits)
    for (const size_t content : {122, 123, 124, 125, 126, 127, 128, 129}) {
      const Encoded encoded = encode(with_content(content, digits));
      ASSERT_EQ(encoded.result, CS_SUCCEED);
      const auto total = static_cast<CS_BYTE>(content + 1);
      const Bytes head = content < 124 ? Bytes{6, total, 42, 1} : Bytes{6, 0x81, total, 42};
      EXPECT_EQ(Bytes(encoded.bytes.begin(), encoded.bytes.begin() + 4), head) << content;
      EXPECT_EQ(encoded.bytes.size(), content + (content < 124 ? 3 : 4));
    }
}

TEST(EncodeOid, TheMostContent) {
  for (size_t digits = 1; digits <= 5; ++digits) {
    for (const size_t content : {249, 250, 251}) {
      const Encoded encoded = encode(with_content(content, digits));
      EXPECT_EQ(encoded.result, CS_SUCCEED) << content << " " << digits;
      EXPECT_EQ(encoded.bytes.size(), content + 4);
    }
    for (const size_t content : {252, 253, 254, 255, 256, 300})
      EXPECT_EQ(encode(with_content(content, digits)).result, CS_FAIL) << content << " " << digits;
  }
}

// An arc of 0 takes a byte like any other.
TEST(EncodeOid, ZeroesFillTheContentToo) {
  std::string dotted = "1.2";
  for (int i = 0; i < 251; ++i)
    dotted += ".0";
  Bytes expected(255, 0);
  expected[0] = 6;
  expected[1] = 0x81;
  expected[2] = 252;
  expected[3] = 42;
  expect_bytes(dotted, expected);
  expect_failure(dotted + ".0");
  expect_failure(dotted + ".1");
}

TEST(EncodeOid, AFailedAllocationChangesNothing) {
  CsOID oid{};
  CS_BYTE before = 1;
  oid.oidber = &before;
  oid.oidberlen = 1;
  AllocationProbe probe;
  probe.fail(1);
  EXPECT_EQ(comn__encode_oid(nullptr, Text("1.2.3"), 5, &oid), CS_MEM_ERROR);
  EXPECT_EQ(probe.failures(), 1U);
  EXPECT_EQ(oid.oidber, &before);
  EXPECT_EQ(oid.oidberlen, 1);
  EXPECT_EQ(comn__encode_oid(nullptr, Text("1"), 1, &oid), CS_FAIL);
  EXPECT_EQ(oid.oidber, &before);
  EXPECT_EQ(probe.live_blocks(), 0U);
}

TEST(EncodeOid, AllocatesTheWholeRoom) {
  AllocationProbe probe;
  CsOID oid{};
  EXPECT_EQ(comn__encode_oid(nullptr, Text("1.2"), 3, &oid), CS_SUCCEED);
  EXPECT_EQ(probe.last_size(), 255U);
  EXPECT_EQ(probe.live_blocks(), 1U);
  comn_free(oid.oidber);
}

TEST(EncodeOid, RefusesWrongArguments) {
  CsOID oid{};
  Text text("1.2");
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__encode_oid(nullptr, nullptr, 3, &oid));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__encode_oid(nullptr, text, 3, nullptr));
  EXPECT_ASSERTION(unit, CS_FAIL, comn__encode_oid(nullptr, text, -1, &oid));
  EXPECT_ASSERTION(unit, CS_FAIL, comn__encode_oid(nullptr, text, CS_LEN_NULLTERM, &oid));
  EXPECT_EQ(oid.oidber, nullptr);
}

// ---- against a slow encoder ----

// The digits of an arc, the lowest first, by division.
Bytes base_128(unsigned long long arc) {
  Bytes digits;
  do {
    digits.push_back(static_cast<CS_BYTE>(arc % 128 + (digits.empty() ? 0 : 128)));
    arc /= 128;
  } while (arc != 0);
  return Bytes(digits.rbegin(), digits.rend());
}

// Every arc is known as a number here, so no text is parsed.
Encoded slow_encode(const std::vector<unsigned long long> &arcs) {
  if (arcs.size() < 2)
    return {CS_FAIL, {}};
  Bytes content;
  for (size_t i = 2; i < arcs.size(); ++i) {
    const Bytes digits = base_128(std::min(arcs[i], 4294967295ULL));
    content.insert(content.end(), digits.begin(), digits.end());
  }
  const size_t total = 1 + content.size();
  Bytes bytes = {6};
  if (total >= 125)
    bytes.push_back(0x81);
  bytes.push_back(static_cast<CS_BYTE>(total));
  bytes.push_back(static_cast<CS_BYTE>(
      (std::min(arcs[0], 4294967295ULL) * 40 + std::min(arcs[1], 4294967295ULL)) % 256));
  bytes.insert(bytes.end(), content.begin(), content.end());
  return bytes.size() <= 255 ? Encoded{CS_SUCCEED, bytes} : Encoded{CS_FAIL, {}};
}

TEST(EncodeOid, EqualsASlowEncoder) {
  const unsigned long long seed = random_seed();
  std::mt19937_64 random(seed);
  const auto below = [&](unsigned long long bound) { return random() % bound; };
  const size_t rounds = sanitized ? 1000 : 6000;
  size_t failures = 0;
  for (size_t round = 0; round < rounds; ++round) {
    // Around the two limits as often as anywhere else.
    constexpr unsigned long long bits[] = {7, 14, 21, 28, 32, 40};
    const unsigned long long widest = bits[below(6)];
    const size_t count = static_cast<size_t>(below(3) == 0 ? below(260) : 1 + below(1750 / widest));
    std::vector<unsigned long long> arcs;
    std::string dotted;
    for (size_t i = 0; i < count; ++i) {
      unsigned long long arc = 0;
      switch (below(4)) {
      case 0:
        arc = 0;
        break;
      case 1: // at a boundary of a digit, or of the arc
        arc = (1ULL << bits[below(6)]) - 1 + below(3);
        break;
      default:
        arc = random() >> (64 - 1 - below(widest));
      }
      arcs.push_back(arc);
      dotted += (i > 0 ? std::string(below(20) == 0 ? 2 : 1, '.') : "") + std::to_string(arc);
    }
    const Encoded expected = slow_encode(arcs), encoded = encode(dotted);
    failures += expected.result == CS_FAIL;
    ASSERT_EQ(encoded.result, expected.result) << "seed " << seed << ": " << dotted;
    ASSERT_EQ(encoded.bytes, expected.bytes) << "seed " << seed << ": " << dotted;
  }
  EXPECT_GT(failures, rounds / 100);
  EXPECT_LT(failures, rounds * 9 / 10);
}

// Every content length from 120 on, at each boundary of a digit.
TEST(EncodeOid, EqualsASlowEncoderAtTheBoundaries) {
  for (const int bits : {0, 7, 14, 21, 28, 32})
    for (const long long step : {-1LL, 0LL, 1LL}) {
      const long long arc = (bits == 0 ? 0 : 1LL << bits) + step;
      if (arc < 0)
        continue;
      const size_t digits = base_128(std::min<unsigned long long>(
                                         static_cast<unsigned long long>(arc), 4294967295ULL))
                                .size();
      for (size_t content = 120; content <= 258; ++content) {
        std::vector<unsigned long long> arcs = {1, 3};
        std::string dotted = "1.3";
        for (size_t i = digits; i < content; ++i) {
          arcs.push_back(i % 128);
          dotted += "." + std::to_string(i % 128);
        }
        arcs.push_back(static_cast<unsigned long long>(arc));
        dotted += "." + std::to_string(arc);
        const Encoded expected = slow_encode(arcs), encoded = encode(dotted);
        ASSERT_EQ(expected.result, content <= 251 ? CS_SUCCEED : CS_FAIL);
        ASSERT_EQ(encoded.result, expected.result) << dotted;
        ASSERT_EQ(encoded.bytes, expected.bytes) << dotted;
      }
    }
}

} // namespace
