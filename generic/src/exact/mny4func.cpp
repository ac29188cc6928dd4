// Arithmetic on CS_MONEY4. What both sizes share stands in money.h.
#include "money.h"

namespace exact = comn::exact;

namespace {

int copy(const CS_MONEY4 *from, CS_MONEY4 *to) noexcept {
  exact::store_count(to, exact::load_count(from));
  return NUME_OK;
}

// Deliberate: nothing is written for the smallest value, where the longer form stores it.
int negate(const CS_MONEY4 *from, CS_MONEY4 *to) noexcept {
  const int32_t count = exact::load_count(from);
  if (count == std::numeric_limits<int32_t>::min())
    return NUME_OVERFLOW;
  exact::store_count(to, -count);
  return NUME_OK;
}

} // namespace

int com__mnyminus4(CS_MONEY4 *imp, CS_MONEY4 *omp) noexcept {
  return exact::run_internal<negate>(COMN_HERE, imp, omp);
}

int com__mnyadd4(CS_MONEY4 *add1p, CS_MONEY4 *add2p, CS_MONEY4 *sump) noexcept {
  return exact::run_internal<exact::add<CS_MONEY4>>(COMN_HERE, add1p, add2p, sump);
}

int com__mnysub4(CS_MONEY4 *minp, CS_MONEY4 *subp, CS_MONEY4 *difp) noexcept {
  return exact::run_internal<exact::subtract<CS_MONEY4>>(COMN_HERE, minp, subp, difp);
}

int com__mnymul4(CS_MONEY4 *m1, CS_MONEY4 *m2, CS_MONEY4 *m3) noexcept {
  return exact::run_internal<exact::multiply_values<CS_MONEY4>>(COMN_HERE, m1, m2, m3);
}

int com__mnydiv4(CS_MONEY4 *m1, CS_MONEY4 *m2, CS_MONEY4 *m3) noexcept {
  return exact::run_internal<exact::divide_values<CS_MONEY4>>(COMN_HERE, m1, m2, m3);
}

// Deliberate: money has no remainder.
int com__mnyrem4(CS_MONEY4 *, CS_MONEY4 *, CS_MONEY4 *) noexcept {
  return NUME_OVERFLOW;
}

CS_RETCODE comn_mny4copy(CS_MONEY4 *mp1, CS_MONEY4 *mp2) noexcept {
  return COMN_TRACE(exact::run_public<copy>(COMN_HERE, mp1, mp2));
}

CS_RETCODE comn_mny4minus(CS_MONEY4 *imp, CS_MONEY4 *omp) noexcept {
  return COMN_TRACE(exact::run_public<negate>(COMN_HERE, imp, omp));
}

CS_RETCODE comn_mny4add(CS_MONEY4 *add1p, CS_MONEY4 *add2p, CS_MONEY4 *sump) noexcept {
  return COMN_TRACE(exact::run_public<exact::add<CS_MONEY4>>(COMN_HERE, add1p, add2p, sump));
}

CS_RETCODE comn_mny4sub(CS_MONEY4 *minp, CS_MONEY4 *subp, CS_MONEY4 *difp) noexcept {
  return COMN_TRACE(exact::run_public<exact::subtract<CS_MONEY4>>(COMN_HERE, minp, subp, difp));
}

CS_RETCODE comn_mny4mul(CS_MONEY4 *m1, CS_MONEY4 *m2, CS_MONEY4 *m3) noexcept {
  return COMN_TRACE(exact::run_public<exact::multiply_values<CS_MONEY4>>(COMN_HERE, m1, m2, m3));
}

CS_RETCODE comn_mny4divide(CS_MONEY4 *m1, CS_MONEY4 *m2, CS_MONEY4 *m3) noexcept {
  return COMN_TRACE(exact::run_public<exact::divide_values<CS_MONEY4>>(COMN_HERE, m1, m2, m3));
}

int comn_mny4cmp(CS_MONEY4 *m1, CS_MONEY4 *m2) noexcept {
  COMN_CHECK_PTR(m1, 0);
  COMN_CHECK_PTR(m2, 0);
  return exact::compare(m1, m2);
}

CS_RETCODE comn_mny4zero(CS_MONEY4 *mnyptr) noexcept {
  COMN_CHECK_PTR(mnyptr, COMN_TRACE(CS_FAIL));
  exact::store_count(mnyptr, 0);
  return COMN_TRACE(CS_SUCCEED);
}
