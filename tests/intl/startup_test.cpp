// The start and the end of a context as one operation, in the order of the layers above.
#include <cstdlib>

#include "allocation_probe.h"
#include "check_trap.h"
#include "installation.h"
#include "io_probe.h"

namespace {

using namespace zrvtest;

constexpr std::string_view english_messages = "[comdefaults]\n"
                                              "1 = ZZZZZ, no memory\n"
                                              "2 = ZZZZZ, no layer\n"
                                              "3 = ZZZZZ, no origin\n"
                                              "4 = ZZZZZ, no text\n"
                                              "[comlayer]\n"
                                              "1 = , layer\n"
                                              "[comorigin]\n"
                                              "1 = , origin\n"
                                              "[comapierror]\n"
                                              "1 = 08001, text\n";

// A client from the first access to the last.
class Client {
public:
  // The first failure; everything is ended then.
  CS_RETCODE start() {
    CS_RETCODE status = start_up();
    if (status != CS_SUCCEED)
      end();
    return status;
  }

  void end() {
    EXPECT_EQ(com_errdrop(&context), CS_SUCCEED);
    EXPECT_EQ(com_null_free(&context), CS_SUCCEED);
    EXPECT_EQ(com_conv_free(&context), CS_SUCCEED);
    EXPECT_EQ(comn_loc_drop_all(&context), CS_SUCCEED);
    EXPECT_EQ(com_intl_loccache_drop(&context), CS_SUCCEED);
    EXPECT_EQ(com_intl_chardesc_drop(&context), CS_SUCCEED);
    EXPECT_EQ(comn_intl_dt_drop(&context), CS_SUCCEED);
    EXPECT_EQ(comn_intl_mon_drop(&context), CS_SUCCEED);
    EXPECT_EQ(comn_intl_num_drop(&context), CS_SUCCEED);
    EXPECT_EQ(comn_intl_drop_mnemdb(&context), CS_SUCCEED);
    EXPECT_EQ(comn_intl_message_drop(&context), CS_SUCCEED);
    EXPECT_EQ(comn_lm_exit(&context), CS_SUCCEED);
    EXPECT_EQ(comn_intl_drop_globalid(&context, static_cast<CS_OID_TABLE *>(globals.ctxoids)),
              CS_SUCCEED);
  }

  // Nothing of the shared data is left.
  bool is_over() const {
    return globals.cmg_lcache == nullptr && globals.cmg_chardesc == nullptr &&
           globals.cmg_locale == nullptr && globals.cmg_datetime == nullptr &&
           globals.cmg_message == nullptr && globals.lm == nullptr &&
           globals.cmg_utf8_charset == nullptr && globals.cmg_utf8_ctypeptr == nullptr &&
           context.ctxlocale == nullptr && context.ctxdeflocale == nullptr &&
           context.ctxcomerrhan == nullptr;
  }

  CS_CONTEXT context{};
  CsCtxGlobals globals{};

private:
  CS_RETCODE start_up() {
    context = {};
    globals = {};
    context.ctxglobals = &globals;
    CS_OID_TABLE *identifiers = nullptr;
    CS_RETCODE status = comn_intl_load_globalid(&context, &identifiers);
    globals.ctxoids = identifiers;
    if (status == CS_SUCCEED)
      status = comn_intl_init(&context, nullptr, 0);
    if (status == CS_SUCCEED)
      status = load_locale();
    if (status == CS_SUCCEED)
      status = com_conv_init(&context);
    if (status == CS_SUCCEED)
      status = com_null_init(&context);
    if (status == CS_SUCCEED)
      status = com_errinit(&context);
    return status;
  }

  CS_RETCODE load_locale() {
    CS_CHAR name[256];
    CS_RETCODE status = com_intl_envloc(&context, CS_LCTYPE_ALL, name, sizeof name);
    CS_VOID *cache = nullptr;
    if (status == CS_SUCCEED)
      status = comn_intl_load(&context, name, static_cast<CS_INT>(std::strlen(name)), &cache,
                              nullptr, 0);
    if (status != CS_SUCCEED)
      return status;
    first = Family::locale_of(static_cast<CsLocCache *>(cache));
    context.ctxlocale = &first;
    CS_LOCALE *locale = nullptr;
    status = comn_loc_alloc(&context, &locale);
    context.ctxlocale = locale;
    return status;
  }

  CS_LOCALE first{};
};

class StartUp : public testing::Test {
protected:
  StartUp() { installation.write("locales/message/english/comnlib.loc", english_messages); }

  // What a start may fail with when memory or a file fails.
  static bool is_told(CS_RETCODE status) {
    return status == CS_FAIL || status == CS_MEM_ERROR || status == COM_INTL_ERROR ||
           status == COM_LOCFILE_ERROR;
  }

  const Installation installation;
  Client client;
};

TEST_F(StartUp, StartsAndEnds) {
  const AllocationProbe probe;
  const size_t descriptors = open_descriptors();
  for (int round = 0; round < 2; ++round) { // also once more with the same globals
    ASSERT_EQ(client.start(), CS_SUCCEED);
    EXPECT_EQ(open_descriptors(), descriptors);
    EXPECT_STREQ(com_intl_months(&client.context, nullptr)[0], "January");
    CS_ERRIDX index = {COM_ERRSEC_API, 1};
    CS_CHAR *text = nullptr;
    EXPECT_EQ(com_err_msg(&client.context, static_cast<CS_ERRHAN *>(client.context.ctxcomerrhan),
                          &index, &text),
              CS_SUCCEED);
    EXPECT_STREQ(text, "text");
    client.end();
    EXPECT_TRUE(client.is_over());
    EXPECT_EQ(probe.live_blocks(), 0U);
  }
}

TEST_F(StartUp, EachAllocationMayFail) {
  const size_t descriptors = open_descriptors();
  EXPECT_GT(fail_each_allocation([] {},
                                 [this] {
                                   const CS_RETCODE status = client.start();
                                   if (status == CS_SUCCEED)
                                     return false;
                                   EXPECT_TRUE(is_told(status)) << status;
                                   EXPECT_TRUE(client.is_over());
                                   return true;
                                 },
                                 [this] { client.end(); }),
            150U);
  EXPECT_EQ(open_descriptors(), descriptors);
}

TEST_F(StartUp, EachFileOperationMayFail) {
  const AllocationProbe probe;
  EXPECT_GT(fail_each_io([this] {
              const CS_RETCODE status = client.start();
              if (status == CS_SUCCEED) {
                client.end();
                return false;
              }
              EXPECT_TRUE(is_told(status)) << status;
              EXPECT_TRUE(client.is_over());
              return true;
            }),
            20U);
  EXPECT_EQ(probe.live_blocks(), 0U);
}

// With the files of the installation that is shipped.
TEST(ShippedStartUp, StartsAndEnds) {
  setenv("ZARVEK", ZRVTEST_HOME, 1);
  for (const char *const name : {"default", "de_DE.UTF-8", "C"}) {
    setenv("LC_ALL", name, 1);
    const AllocationProbe probe;
    Client client;
    ASSERT_EQ(client.start(), CS_SUCCEED) << name;
    client.end();
    EXPECT_EQ(probe.live_blocks(), 0U);
  }
  unsetenv("LC_ALL");
  unsetenv("ZARVEK");
}

} // namespace
