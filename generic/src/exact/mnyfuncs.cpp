// Arithmetic on CS_MONEY. What both sizes share stands in money.h.
#include "money.h"
#include "table.h"

namespace exact = comn::exact;

namespace {

constexpr int64_t largest = std::numeric_limits<int64_t>::max();
constexpr int64_t smallest = std::numeric_limits<int64_t>::min();

int copy(const CS_MONEY *from, CS_MONEY *to) noexcept {
  exact::store_count(to, exact::load_count(from));
  return NUME_OK;
}

int negate(const CS_MONEY *from, CS_MONEY *to) noexcept {
  const int64_t count = exact::load_count(from);
  // The smallest value stays what it is.
  exact::store_count(to, exact::count_of(exact::magnitude_of(count), count > 0));
  return count == smallest ? NUME_OVERFLOW : NUME_OK;
}

// Deliberate: past the limits both steps wrap, where sums become zero.
int increment(CS_MONEY *money) noexcept {
  const int64_t count = exact::load_count(money);
  exact::store_count(money, static_cast<int64_t>(static_cast<uint64_t>(count) + 1));
  return count == largest ? NUME_OVERFLOW : NUME_OK;
}

// Deliberate: no mirror of the increment. Where the low word is 0 it stays 0 and the high word gives
// way, a step of 2 to the 32.
int decrement(CS_MONEY *money) noexcept {
  const auto words = comn::load<CS_MONEY>(money);
  const uint64_t step = words.mnylow != 0 ? 1 : uint64_t{1} << 32;
  const int64_t count = exact::load_count(money);
  exact::store_count(money, static_cast<int64_t>(static_cast<uint64_t>(count) - step));
  return count == smallest ? NUME_OVERFLOW : NUME_OK;
}

int scale(CS_MONEY *money, CS_UINT factor, CS_INT addend) noexcept {
  if (factor == 0) {
    exact::store_count(money, int64_t{addend});
    return NUME_OK;
  }
  const int64_t count = exact::load_count(money);
  uint64_t magnitude = exact::magnitude_of(count);
  if (__builtin_mul_overflow(magnitude, uint64_t{factor}, &magnitude) ||
      magnitude >= exact::money_limit)
    return NUME_OVERFLOW;
  // Deliberate: the addend goes to the magnitude, whatever the sign of the value. One that takes the
  // magnitude below zero makes it too large.
  magnitude += static_cast<uint64_t>(int64_t{addend});
  if (magnitude >= exact::money_limit)
    return NUME_OVERFLOW;
  exact::store_count(money, exact::count_of(magnitude, count < 0));
  return NUME_OK;
}

// Divides in place; the remainder of the magnitude.
unsigned divide_down(CS_MONEY *money, uint16_t divisor) noexcept {
  if (divisor == 0)
    return 0;
  const int64_t count = exact::load_count(money);
  const uint64_t magnitude = exact::magnitude_of(count);
  exact::store_count(money, exact::count_of(magnitude / divisor, count < 0));
  return static_cast<unsigned>(magnitude % divisor);
}

// Divides magnitudes; the quotient has the sign of the dividend.
void divide_by_word(const CS_MONEY *dividend, CS_UINT divisor, CS_MONEY *quotient) noexcept {
  const int64_t count = exact::load_count(dividend);
  // A divisor of zero is the caller's fault, which nothing reports.
  const uint64_t magnitude = divisor == 0 ? 0 : exact::magnitude_of(count) / divisor;
  exact::store_count(quotient, exact::count_of(magnitude, count < 0));
}

} // namespace

// ---- internal operations ----

COMN_PUBLISH_TABLE(exact::ScaleTable, CS_INT, scalebuf, [5], exact::scales);

int com__mnycopy(CS_MONEY *mp1, CS_MONEY *mp2) noexcept {
  return exact::run_internal<copy>(COMN_HERE, mp1, mp2);
}

int com__mnyminus(CS_MONEY *imp, CS_MONEY *omp) noexcept {
  return exact::run_internal<negate>(COMN_HERE, imp, omp);
}

int com__mnyinc(CS_MONEY *mp) noexcept {
  return exact::run_internal<increment>(COMN_HERE, mp);
}

int com__mnydec(CS_MONEY *mp) noexcept {
  return exact::run_internal<decrement>(COMN_HERE, mp);
}

int com__mnyadd(CS_MONEY *add1p, CS_MONEY *add2p, CS_MONEY *sump) noexcept {
  return exact::run_internal<exact::add<CS_MONEY>>(COMN_HERE, add1p, add2p, sump);
}

int com__mnysub(CS_MONEY *minp, CS_MONEY *subp, CS_MONEY *difp) noexcept {
  return exact::run_internal<exact::subtract<CS_MONEY>>(COMN_HERE, minp, subp, difp);
}

int com__mnymul(CS_MONEY *m1, CS_MONEY *m2, CS_MONEY *m3) noexcept {
  return exact::run_internal<exact::multiply_values<CS_MONEY>>(COMN_HERE, m1, m2, m3);
}

int com__mnydiv(CS_MONEY *m1, CS_MONEY *m2, CS_MONEY *m3) noexcept {
  return exact::run_internal<exact::divide_values<CS_MONEY>>(COMN_HERE, m1, m2, m3);
}

// Deliberate: money has no remainder.
int com__mnyrem(CS_MONEY *, CS_MONEY *, CS_MONEY *) noexcept {
  return NUME_OVERFLOW;
}

int com__mnyscale(CS_MONEY *mp, CS_UINT mpier, CS_INT add) noexcept {
  COMN_CHECK_PTR(mp, NUME_OVERFLOW);
  return scale(mp, mpier, add);
}

// Deliberate: the high half of the divisor has no effect.
int com__mnydown(CS_MONEY *mp, CS_INT dvsr) noexcept {
  COMN_CHECK_PTR(mp, 0);
  return static_cast<int>(divide_down(mp, static_cast<uint16_t>(dvsr)));
}

// Deliberate: the smallest value, untrimmed, has no magnitude to leave and stays; com__mnydown takes
// it for what its magnitude would be.
int com__mnyinit(CS_MONEY *mp, CS_INT trim) noexcept {
  COMN_CHECK_PTR(mp, 0);
  constexpr int most_digits = std::numeric_limits<uint64_t>::digits10 + 1;
  const int64_t count = exact::load_count(mp);
  uint64_t magnitude = exact::magnitude_of(count);
  unsigned dropped = 0;
  // From there on nothing is left to drop.
  for (int i = std::min(trim, most_digits); i > 0; --i) {
    dropped = static_cast<unsigned>(magnitude % 10);
    magnitude /= 10;
  }
  exact::store_count(mp, exact::count_of(magnitude + (dropped > 4), false));
  return count < 0 ? -1 : 0;
}

int com__mnyndigit(CS_MONEY *mp, CS_CHAR *value) noexcept {
  COMN_CHECK_PTR(mp, 0);
  COMN_CHECK_PTR(value, 0);
  *value = static_cast<CS_CHAR>('0' + divide_down(mp, 10));
  return exact::load_count(mp) != 0;
}

void com__maxposmny(CS_MONEY *mp) noexcept {
  COMN_CHECK_PTR(mp);
  exact::store_count(mp, largest);
}

void com__maxnegmny(CS_MONEY *mp) noexcept {
  COMN_CHECK_PTR(mp);
  exact::store_count(mp, smallest);
}

// Deliberate: not a shift by `value`, but by the number of its significant bits.
int com__mnyshift(CS_MONEY *m1, CS_INT value) noexcept {
  COMN_CHECK_PTR(m1, NUME_OVERFLOW);
  int64_t count = exact::load_count(m1);
  for (; value != 0; value /= 2)
    count >>= 1;
  exact::store_count(m1, count);
  return NUME_OK;
}

void comn__mny16div(CS_MONEY *num, CS_INT den, CS_MONEY *res) noexcept {
  COMN_CHECK_PTR(num);
  COMN_CHECK_PTR(res);
  divide_by_word(num, static_cast<uint16_t>(den), res);
}

// ---- public operations ----

CS_RETCODE comn_mnycopy(CS_MONEY *mp1, CS_MONEY *mp2) noexcept {
  return COMN_TRACE(exact::run_public<copy>(COMN_HERE, mp1, mp2));
}

CS_RETCODE comn_mnyminus(CS_MONEY *imp, CS_MONEY *omp) noexcept {
  return COMN_TRACE(exact::run_public<negate>(COMN_HERE, imp, omp));
}

CS_RETCODE comn_mnyinc(CS_MONEY *mp) noexcept {
  return COMN_TRACE(exact::run_public<increment>(COMN_HERE, mp));
}

CS_RETCODE comn_mnydec(CS_MONEY *mp) noexcept {
  return COMN_TRACE(exact::run_public<decrement>(COMN_HERE, mp));
}

CS_RETCODE comn_mnyadd(CS_MONEY *add1p, CS_MONEY *add2p, CS_MONEY *sump) noexcept {
  return COMN_TRACE(exact::run_public<exact::add<CS_MONEY>>(COMN_HERE, add1p, add2p, sump));
}

CS_RETCODE comn_mnysub(CS_MONEY *minp, CS_MONEY *subp, CS_MONEY *difp) noexcept {
  return COMN_TRACE(exact::run_public<exact::subtract<CS_MONEY>>(COMN_HERE, minp, subp, difp));
}

CS_RETCODE comn_mnymul(CS_MONEY *m1, CS_MONEY *m2, CS_MONEY *m3) noexcept {
  return COMN_TRACE(exact::run_public<exact::multiply_values<CS_MONEY>>(COMN_HERE, m1, m2, m3));
}

CS_RETCODE comn_mnydivide(CS_MONEY *m1, CS_MONEY *m2, CS_MONEY *m3) noexcept {
  return COMN_TRACE(exact::run_public<exact::divide_values<CS_MONEY>>(COMN_HERE, m1, m2, m3));
}

CS_RETCODE comn_mnyscale(CS_MONEY *mp, CS_UINT mpier, CS_INT add) noexcept {
  COMN_CHECK_PTR(mp, COMN_TRACE(CS_FAIL));
  return COMN_TRACE(exact::result_code(scale(mp, mpier, add)));
}

int comn_mnydown(CS_MONEY *mp, CS_INT dvsr) noexcept {
  return com__mnydown(mp, dvsr);
}

int comn_mnyinit(CS_MONEY *mp, CS_INT trim) noexcept {
  return com__mnyinit(mp, trim);
}

int comn_mnyndigit(CS_MONEY *mp, CS_CHAR *value) noexcept {
  return com__mnyndigit(mp, value);
}

void comn_mnymaxpos(CS_MONEY *mp) noexcept {
  com__maxposmny(mp);
}

void comn_mnymaxneg(CS_MONEY *mp) noexcept {
  com__maxnegmny(mp);
}

int comn_mnycmp(CS_MONEY *m1, CS_MONEY *m2) noexcept {
  COMN_CHECK_PTR(m1, 0);
  COMN_CHECK_PTR(m2, 0);
  return exact::compare(m1, m2);
}

CS_RETCODE comn_mnyzero(CS_MONEY *mnyptr) noexcept {
  COMN_CHECK_PTR(mnyptr, COMN_TRACE(CS_FAIL));
  exact::store_count(mnyptr, int64_t{0});
  return COMN_TRACE(CS_SUCCEED);
}

void comn_mnyxdiv(CS_MONEY *num, CS_MONEY *den, CS_MONEY *res) noexcept {
  COMN_CHECK_PTR(num);
  COMN_CHECK_PTR(den);
  COMN_CHECK_PTR(res);
  const CS_UINT divisor = comn::load<CS_MONEY>(den).mnylow;
  if (divisor <= std::numeric_limits<uint16_t>::max())
    comn__mny16div(num, static_cast<CS_INT>(divisor), res);
  else
    divide_by_word(num, divisor, res);
}
