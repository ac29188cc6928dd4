// The sets that there are converters for.
#include <algorithm>
#include <iterator>

#include "sets.h"

namespace zrvunic {

namespace {

constexpr auto by_cid = [](const Set &set, UNICONV_CID cid) { return set.cid < cid; };

// In the order of their numbers.
constexpr Set sets[] = {
    {-4, Form::utf8, 3, false, nullptr},
    {-1, Form::utf16, 2, false, nullptr},
    {0, Form::one_byte, 1, false, nullptr},
    {1, Form::one_byte, 1, false, nullptr},
};

static_assert(std::is_sorted(std::begin(sets), std::end(sets),
                             [](const Set &a, const Set &b) { return a.cid < b.cid; }));

} // namespace

const Set *find_set(UNICONV_CID cid) noexcept {
  const Set *const found = std::lower_bound(std::begin(sets), std::end(sets), cid, by_cid);
  return found != std::end(sets) && found->cid == cid ? found : nullptr;
}

} // namespace zrvunic
