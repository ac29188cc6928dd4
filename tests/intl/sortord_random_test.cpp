// Random sort orders: the compiled table against the slow compiler's, byte for byte, and comparison of
// random strings under it against one that spells all weights out.
#include <algorithm>
#include <cstring>
#include <random>
#include <string>

#include "sort_order_reference.h"
#include "sort_orders.h"
#include "test_scale.h"

namespace {

using namespace zrvtest;

class Random {
public:
  size_t below(size_t n) { return std::uniform_int_distribution<size_t>(0, n - 1)(engine); }

private:
  std::mt19937_64 engine{random_seed()};
};

// Whether a load did what the slow compiler says.
void expect_same(SortOrderSet &set, CS_RETCODE result, const SlowOrder &slow) {
  ASSERT_EQ(result, slow.result);
  EXPECT_EQ(set.context.ctxintlerr, slow.reader_status);
  if (result != CS_SUCCEED) {
    EXPECT_EQ(set.description.sort_order, nullptr);
    EXPECT_EQ(set.cache.locsortorder, nullptr);
    return;
  }
  const CsSortDesc *const order = set.cache.locsortorder;
  EXPECT_EQ(std::memcmp(order->char_sort_descript, &slow.header, sizeof(S_DESCRIPT)), 0);
  ASSERT_EQ(set.table() == nullptr, slow.header.isbin != 0);
  if (set.table() == nullptr)
    return;
  EXPECT_EQ(set.table()->stat1, slow.table.stat1);
  EXPECT_EQ(set.table()->last_char, slow.table.last_char);
  EXPECT_EQ(std::memcmp(set.table(), &slow.table, sizeof(SO_1CLASS)), 0);
}

TEST(SortOrder, CompilesRandomFilesAsTheSlowCompilerDoes) {
  const SortOrderHome home;
  Random random;
  const size_t rounds = sanitized || !optimized ? 100 : 500;
  size_t compiled = 0;
  for (size_t round = 0; round < rounds && !testing::Test::HasFailure(); ++round) {
    const std::string file = make_sort_order([&](size_t n) { return random.below(n); });
    SortOrderSet set;
    const CS_RETCODE result = set.load(home, file);
    expect_same(set, result, compile_slowly(file));
    if (testing::Test::HasFailure())
      ADD_FAILURE() << file;
    compiled += result == CS_SUCCEED;
  }
  EXPECT_GT(compiled, rounds / 4);
}

// A string of what an order has most to say about.
std::string random_text(Random &random, const SlowOrder &order, size_t length) {
  std::string text;
  const bool is_narrow = random.below(2) == 0; // few characters, so that strings are often equal
  while (text.size() < length) {
    switch (random.below(6)) {
    case 0: {
      auto character = order.characters.begin();
      std::advance(character, random.below(is_narrow ? 4 : order.characters.size()));
      text += character->first;
      break;
    }
    case 1:
      if (!order.ligatures.empty()) {
        auto ligature = order.ligatures.begin();
        std::advance(ligature, random.below(order.ligatures.size()));
        text += ligature->first;
      }
      break;
    case 2:
      text += ' ';
      break;
    case 3: // a tail that repeats, with first bytes of double characters side by side
      text += text.substr(text.size() - std::min<size_t>(text.size(), random.below(9)));
      break;
    default:
      text += static_cast<char>(is_narrow ? 'a' + random.below(3) : random.below(256));
    }
    if (text.empty())
      text += 'a';
  }
  text.resize(length);
  return text;
}

// Another string that is equal for a stretch, or nearly so.
std::string random_relative(Random &random, const SlowOrder &order, const std::string &text) {
  std::string other = text;
  for (size_t changes = random.below(4); changes > 0; --changes) {
    const size_t at = random.below(other.size() + 1);
    switch (random.below(4)) {
    case 0: { // an equal weight elsewhere, where there is one
      if (at == other.size())
        break;
      const auto own = order.characters.find(other.substr(at, 1));
      for (const auto &[bytes, weight] : order.characters)
        if (own != order.characters.end() && weight.p == own->second.p && random.below(2) == 0) {
          other.replace(at, 1, bytes);
          break;
        }
      break;
    }
    case 1:
      other.insert(at, random_text(random, order, 1));
      break;
    case 2:
      other.erase(at, random.below(3));
      break;
    default:
      other += std::string(random.below(3), ' ');
    }
  }
  return other;
}

int sign(int value) {
  return (value > 0) - (value < 0);
}

TEST(SortOrder, ComparesRandomStringsAsTheSlowComparisonDoes) {
  const SortOrderHome home;
  Random random;
  const size_t rounds = sanitized || !optimized ? 20 : 150;
  size_t compared = 0, equal = 0;
  for (size_t round = 0; round < rounds && !testing::Test::HasFailure(); ++round) {
    const std::string file = make_sort_order([&](size_t n) { return random.below(n); });
    SortOrderSet set;
    if (set.load(home, file) != CS_SUCCEED)
      continue;
    const SlowOrder slow = compile_slowly(file);
    for (int pair = 0; pair < 300; ++pair) {
      // Copies of exactly their length, so that the sanitizers see a byte read behind them.
      const size_t longest = random.below(4) == 0 ? 300 : 30;
      const std::string first = random_text(random, slow, random.below(longest));
      const std::string second = random.below(3) == 0
                                     ? random_text(random, slow, random.below(longest))
                                     : random_relative(random, slow, first);
      std::vector<char> str1(first.begin(), first.end()), str2(second.begin(), second.end());
      const auto len1 = static_cast<CS_INT>(str1.size()), len2 = static_cast<CS_INT>(str2.size());
      SO_1CLASS *const so = set.table();
      const int expected = compare_slowly(slow, first, second);
      const int ties = compare_ties_slowly(slow, first, second);
      EXPECT_EQ(com__ps_dl_sqlhilo(so, str1.data(), len1, str2.data(), len2), expected);
      EXPECT_EQ(com__spec_tord(so, str1.data(), len1, str2.data(), len2), ties);
      EXPECT_EQ(com_ps_dl_sqlhilo(so, str1.data(), len1, str2.data(), len2), sign(expected));
      EXPECT_EQ(com_spec_tord(so, str1.data(), len1, str2.data(), len2), sign(ties));
      ++compared;
      equal += expected == 0;
      if (testing::Test::HasFailure()) {
        ADD_FAILURE() << file << testing::PrintToString(first) << testing::PrintToString(second);
        break;
      }
    }
  }
  EXPECT_GT(compared, 0U);
  EXPECT_GT(equal, compared / 20);
}

} // namespace
