// The parameters of messages.
#include <cstring>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "message_fixture.h"

namespace {

using namespace zrvtest;

constexpr const char *unit = "com_err_params.cpp";

class Parameters : public testing::Test {
protected:
  // A record with rubbish in it, which every function must clear.
  Parameters() { std::memset(&ep, 0xA5, sizeof ep); }

  void expect(CS_INT count, const char *format, CS_INT type2, const void *param2, CS_INT type3,
              const void *param3) {
    EXPECT_EQ(ep.ep_numparams, count);
    EXPECT_STREQ(ep.ep_format, format);
    EXPECT_EQ(ep.ep_type1, 0);
    EXPECT_EQ(ep.ep_param1, api);
    EXPECT_EQ(ep.ep_type2, type2);
    EXPECT_EQ(ep.ep_param2, param2);
    EXPECT_EQ(ep.ep_type3, type3);
    EXPECT_EQ(ep.ep_param3, param3);
  }

  // The call must fail one check and leave the record cleared.
  template <class Call>
  void expect_null_check(Call call) {
    std::memset(&ep, 0xA5, sizeof ep);
    const CheckReport report = catch_check(call);
    EXPECT_EQ(report.signals, 1);
    EXPECT_TRUE(is_null_pointer_report(report, unit)) << report.text;
    const CsErrParams cleared{};
    EXPECT_EQ(ep.ep_numparams, cleared.ep_numparams);
    EXPECT_EQ(ep.ep_format, nullptr);
    EXPECT_EQ(ep.ep_param1, nullptr);
    EXPECT_EQ(ep.ep_param2, nullptr);
    EXPECT_EQ(ep.ep_param3, nullptr);
  }

  CsErrParams ep;
  CS_CHAR api[4] = "api", one[4] = "one", two[4] = "two";
  CS_INT first = 11, second = 22;
};

TEST_F(Parameters, EachFunction) {
  com_ep_s(&ep, api);
  expect(1, "%s", 0, nullptr, 0, nullptr);
  com_ep_sd(&ep, api, &first);
  expect(2, "%ld", 8, &first, 0, nullptr);
  com_ep_ss(&ep, api, one);
  expect(2, "%s", 0, one, 0, nullptr);
  com_ep_sss(&ep, api, one, two);
  expect(3, "%s %s", 0, one, 0, two);
  com_ep_sds(&ep, api, &first, one);
  expect(3, "%ld %s", 8, &first, 0, one);
  com_ep_sdd(&ep, api, &first, &second);
  expect(3, "%ld %ld", 8, &first, 8, &second);
  com_ep_ssd(&ep, api, one, &first);
  expect(3, "%s %ld", 0, one, 8, &first);
}

TEST_F(Parameters, ClearWhatWasThere) {
  com_ep_sss(&ep, api, one, two);
  com_ep_s(&ep, api);
  expect(1, "%s", 0, nullptr, 0, nullptr);
  com_ep_sdd(&ep, api, &first, &second);
  com_ep_ss(&ep, api, one);
  expect(2, "%s", 0, one, 0, nullptr);
}

TEST_F(Parameters, NullPointersAreFatal) {
  expect_null_check([&] { com_ep_s(&ep, nullptr); });
  expect_null_check([&] { com_ep_sd(&ep, nullptr, &first); });
  expect_null_check([&] { com_ep_sd(&ep, api, nullptr); });
  expect_null_check([&] { com_ep_ss(&ep, nullptr, one); });
  expect_null_check([&] { com_ep_ss(&ep, api, nullptr); });
  expect_null_check([&] { com_ep_sss(&ep, nullptr, one, two); });
  expect_null_check([&] { com_ep_sss(&ep, api, nullptr, two); });
  expect_null_check([&] { com_ep_sss(&ep, api, one, nullptr); });
  expect_null_check([&] { com_ep_sds(&ep, nullptr, &first, one); });
  expect_null_check([&] { com_ep_sds(&ep, api, nullptr, one); });
  expect_null_check([&] { com_ep_sds(&ep, api, &first, nullptr); });
  expect_null_check([&] { com_ep_sdd(&ep, nullptr, &first, &second); });
  expect_null_check([&] { com_ep_sdd(&ep, api, nullptr, &second); });
  expect_null_check([&] { com_ep_sdd(&ep, api, &first, nullptr); });
  expect_null_check([&] { com_ep_ssd(&ep, nullptr, one, &first); });
  expect_null_check([&] { com_ep_ssd(&ep, api, nullptr, &first); });
  expect_null_check([&] { com_ep_ssd(&ep, api, one, nullptr); });
}

TEST_F(Parameters, ANullRecordIsFatal) {
  const auto fails = [](auto call) {
    const CheckReport report = catch_check(call);
    return report.signals == 1 && is_null_pointer_report(report, unit);
  };
  EXPECT_TRUE(fails([&] { com_ep_s(nullptr, api); }));
  EXPECT_TRUE(fails([&] { com_ep_sd(nullptr, api, &first); }));
  EXPECT_TRUE(fails([&] { com_ep_ss(nullptr, api, one); }));
  EXPECT_TRUE(fails([&] { com_ep_sss(nullptr, api, one, two); }));
  EXPECT_TRUE(fails([&] { com_ep_sds(nullptr, api, &first, one); }));
  EXPECT_TRUE(fails([&] { com_ep_sdd(nullptr, api, &first, &second); }));
  EXPECT_TRUE(fails([&] { com_ep_ssd(nullptr, api, one, &first); }));
}

} // namespace
