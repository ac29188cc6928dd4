// Lines of messages: texts, fall-backs, parameters, cuts, and what the error callback gets.
#include <algorithm>

#include "allocation_probe.h"
#include "check_trap.h"
#include "guarded_buffer.h"
#include "io_probe.h"
#include "message_fixture.h"
#include "zrvcomn/zrvintl.h"

namespace {

using namespace zrvtest;

constexpr const char *unit = "com_err_line.cpp";

constexpr CS_MSGNUM number_of(CS_UINT layer, CS_UINT origin, CS_UINT severity, CS_UINT number) {
  return static_cast<CS_MSGNUM>(layer << 24 | origin << 16 | severity << 8 | number);
}

TEST(MessageTables, LastResort) {
  const std::pair<CS_INT, const char *> rows[] = {{1, "unable to get string due to lack of memory"},
                                                  {2, "unable to get layer message string"},
                                                  {3, "unable to get origin message string"},
                                                  {4, "unable to get error string"},
                                                  {-99999, "bad default error number"}};
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(Msgfailures[i].key, rows[i].first);
    EXPECT_STREQ(Msgfailures[i].string, rows[i].second);
  }
}

class MessageLine : public Messages {
protected:
  MessageLine() { com_ep_s(&one, text("api")); }

  CsErrParams one;
};

TEST_F(MessageLine, TextsOfTheBytesOfTheNumber) {
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  EXPECT_EQ(line(17039367), "api: the layer: the origin: seven");
  EXPECT_EQ(line(number_of(1, 4, 6, 9)), "api: the layer: the origin: nine");
  EXPECT_EQ(line(number_of(1, 4, 255, 7)), "api: the layer: the origin: seven");
}

TEST_F(MessageLine, TextsThatTheFileLacks) {
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  EXPECT_EQ(line(number_of(2, 4, 0, 7)), "api: no layer: the origin: seven");
  EXPECT_EQ(line(number_of(1, 3, 0, 7)), "api: the layer: no origin: seven");
  EXPECT_EQ(line(number_of(1, 4, 0, 99)), "api: the layer: the origin: no text");
  EXPECT_EQ(line(number_of(255, 254, 255, 255)), "api: no layer: no origin: no text");
  EXPECT_EQ(line(0), "api: no layer: no origin: no text");
  // In a text that stands for the wanted one there is no place for a parameter.
  CsErrParams two;
  com_ep_ss(&two, text("api"), text("x"));
  EXPECT_EQ(line(number_of(1, 4, 0, 99), two), "api: the layer: the origin: no text");
}

TEST_F(MessageLine, TextsWithoutTheirDefaults) {
  const std::string builtin =
      "api: unable to get layer message string: unable to get origin message string: unable to get "
      "error string";
  write("[comdefaults]\n4=s,only four\n[comlayer]\n[comorigin]\n[comapierror]\n");
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  EXPECT_EQ(line(17039367), "api: unable to get layer message string: unable to get origin message "
                            "string: only four");
  // Without the section, the file or the handle it is the same.
  EXPECT_EQ(com_errdrop(&context), CS_SUCCEED);
  EXPECT_EQ(line(17039367), builtin);
  std::filesystem::remove(folder() / "comnlib.loc");
  EXPECT_EQ(com__errfile_cache_drop(message()->locfilecache), CS_SUCCEED);
  message()->locfilecache = nullptr;
  message()->locerrhist = nullptr;
  message()->locerrcnt = 0;
  EXPECT_EQ(com_errinit(&context), COM_LOCFILE_ERROR);
  EXPECT_EQ(line(17039367), builtin);
  CS_CHAR buffer[200];
  CS_INT length = 0;
  EXPECT_EQ(
      com_notrunc_errmsg(nullptr, nullptr, 17039367, &one, nullptr, 0, 4, 1, buffer, 200, &length),
      CS_SUCCEED);
  EXPECT_EQ(std::string(buffer, static_cast<size_t>(length)), builtin);
}

TEST_F(MessageLine, HandlesWithoutTheirParts) {
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  const std::string builtin =
      "api: unable to get layer message string: unable to get origin message string: unable to get "
      "error string";
  CS_LOCALE *const own = std::exchange(handle()->err_locale, nullptr);
  EXPECT_EQ(line(17039367), builtin);
  handle()->err_locale = own;
  CS_VOID *const messages = std::exchange(own->messageptr, nullptr);
  EXPECT_EQ(line(17039367), builtin);
  own->messageptr = messages;
  auto *const texts = std::exchange(cache.locmessage, nullptr);
  EXPECT_EQ(line(17039367), builtin);
  cache.locmessage = texts;
  EXPECT_EQ(line(17039367), "api: the layer: the origin: seven");
}

TEST_F(MessageLine, AFallBackMustBeOne) {
  CS_CHAR *found = nullptr;
  CS_INT length = 0;
  EXPECT_EQ(com__get_failerr(&context, nullptr, 1, &found), CS_SUCCEED);
  EXPECT_STREQ(found, "unable to get string due to lack of memory");
  for (const CS_MSGNUM fallback : {0, 5, -1, -99999})
    EXPECT_ASSERTION(unit, CS_FAIL, com__get_failerr(&context, nullptr, fallback, &found));
  EXPECT_ASSERTION(unit, CS_FAIL, com__get_errstr(&context, nullptr, 4, 7, 5, &found, &length));
}

TEST_F(MessageLine, Parameters) {
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  CS_INT row = 12;
  CsErrParams ep;
  com_ep_sds(&ep, text("file"), &row, text("end"));
  EXPECT_EQ(line(17039368, ep), "file: the layer: the origin: line 12, at end");
  row = -2147483647 - 1;
  EXPECT_EQ(line(17039368, ep), "file: the layer: the origin: line -2147483648, at end");
  com_ep_sss(&ep, text("api"), text("b"), text("c"));
  EXPECT_EQ(line(number_of(1, 4, 6, 10), ep), "api: the layer: the origin: ten b, c");
  com_ep_ss(&ep, text("api"), text("b"));
  EXPECT_EQ(line(number_of(1, 4, 6, 10), ep), "api: the layer: the origin: ten b, %s");
  // The first one is never put into the text.
  com_ep_s(&ep, text("%s"));
  EXPECT_EQ(line(number_of(1, 4, 6, 10), ep), "%s: the layer: the origin: ten %s, %s");
  CS_INT second = 5;
  com_ep_sdd(&ep, text("api"), &row, &second);
  row = 4;
  EXPECT_EQ(line(17039368, ep), "api: the layer: the origin: line 4, at 5");
  com_ep_ssd(&ep, text("api"), text("x"), &second);
  EXPECT_EQ(line(17039368, ep), "api: the layer: the origin: line x, at 5");
  com_ep_sd(&ep, text("api"), &second);
  EXPECT_EQ(line(17039368, ep), "api: the layer: the origin: line 5, at %s");
}

// The block has the text's length and 512 bytes more.
TEST_F(MessageLine, ParametersThatAreTooLong) {
  write("[comdefaults]\n[comlayer]\n1=s,l\n[comorigin]\n4=s,o\n[comapierror]\n7=s,<%s>\n");
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  const std::string longest(513, 'x'); // with the brackets 515, and the terminator: 4 + 512
  CsErrParams ep;
  com_ep_ss(&ep, text("a"), text(longest.c_str()));
  EXPECT_EQ(line(17039367, ep), "a: l: o: <" + longest + ">");
  const std::string longer(514, 'x');
  com_ep_ss(&ep, text("a"), text(longer.c_str()));
  EXPECT_EQ(line(17039367, ep), "a: l: o: <%s>");
}

TEST_F(MessageLine, WithoutMemoryForTheParameters) {
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  CsErrParams ep;
  com_ep_ss(&ep, text("api"), text("b"));
  line(number_of(1, 4, 6, 10), ep); // the texts are there now
  AllocationProbe probe;
  EXPECT_EQ(line(number_of(1, 4, 6, 10), ep), "api: the layer: the origin: ten b, %s");
  EXPECT_EQ(probe.allocations(), 1U);
  EXPECT_EQ(probe.live_blocks(), 0U);
  probe.fail(1);
  EXPECT_EQ(line(number_of(1, 4, 6, 10), ep), "api: the layer: the origin: ten %s, %s");
}

TEST_F(MessageLine, ParametersOfNoType) {
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  char buffer[100];
  CS_INT length = 0;
  const auto build = [&](const CsErrParams &ep) {
    CsErrParams copy = ep;
    return com_notrunc_errmsg(&context, handle(), number_of(1, 4, 6, 10), &copy, nullptr, 0, 4, 1,
                              buffer, 100, &length);
  };
  CsErrParams good;
  com_ep_sss(&good, text("api"), text("b"), text("c"));
  for (const CS_INT type : {1, 7, 9, -1}) {
    CsErrParams ep = good;
    ep.ep_type2 = type;
    EXPECT_ASSERTION(unit, CS_FAIL, build(ep));
    ep = good;
    ep.ep_type3 = type;
    EXPECT_ASSERTION(unit, CS_FAIL, build(ep));
    ep.ep_numparams = 2; // now the third does not matter
    ep.ep_format = "%s";
    EXPECT_EQ(build(ep), CS_SUCCEED);
  }
  CsErrParams ep = good;
  ep.ep_param2 = nullptr;
  EXPECT_ASSERTION(unit, CS_FAIL, build(ep));
  ep = good;
  ep.ep_param3 = nullptr;
  EXPECT_ASSERTION(unit, CS_FAIL, build(ep));
  ep = good;
  ep.ep_format = "%x"; // which nobody can fill in
  EXPECT_EQ(build(ep), CS_SUCCEED);
  EXPECT_EQ(std::string(buffer, static_cast<size_t>(length)),
            "api: the layer: the origin: ten %s, %s");
}

TEST_F(MessageLine, FailedChecks) {
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  GuardedBuffer buffer(100);
  CS_INT length = 77;
  const auto build = [&](CsErrParams *ep, CS_BOOL truncate, CS_CHAR *to, CS_INT *used) {
    return com_notrunc_errmsg(&context, handle(), 17039367, ep, nullptr, 0, 4, truncate, to, 100,
                              used);
  };
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, build(nullptr, 1, buffer.text(), &length));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, build(&one, 1, nullptr, &length));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, build(&one, 1, buffer.text(), nullptr));
  for (const CS_BOOL truncate : {-1, 2})
    EXPECT_ASSERTION(unit, CS_FAIL, build(&one, truncate, buffer.text(), &length));
  for (const CS_INT count : {-1, 0, 4}) {
    CsErrParams ep = one;
    ep.ep_numparams = count;
    EXPECT_ASSERTION(unit, CS_FAIL, build(&ep, 1, buffer.text(), &length));
  }
  CsErrParams ep = one;
  ep.ep_type1 = COM_EP_INT;
  EXPECT_ASSERTION(unit, CS_FAIL, build(&ep, 1, buffer.text(), &length));
  ep = one;
  ep.ep_param1 = nullptr;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, build(&ep, 1, buffer.text(), &length));
  EXPECT_TRUE(buffer.is_untouched());
  EXPECT_EQ(length, 77);
  // com_build_errmsg makes any failure fatal.
  const CheckReport report = catch_check([&] {
    com_build_errmsg(&context, handle(), 17039367, nullptr, nullptr, 0, 4, buffer.text(), 100,
                     &length);
  });
  EXPECT_EQ(report.signals, 2);
}

TEST_F(MessageLine, OriginOfTheReader) {
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  EXPECT_EQ(line(number_of(1, 5, 6, 3)),
            std::string("api: the layer: the reader: ") + intl_errstr(-3));
  EXPECT_EQ(line(number_of(1, 5, 6, 0)),
            std::string("api: the layer: the reader: ") + intl_errstr(0));
  EXPECT_EQ(line(number_of(1, 5, 6, 255)),
            std::string("api: the layer: the reader: ") + intl_errstr(-255));
  CsErrParams two;
  com_ep_ss(&two, text("api"), text("x"));
  EXPECT_ASSERTION(unit, std::string("status 0"), line(number_of(1, 5, 6, 3), two));
}

TEST_F(MessageLine, AReadyText) {
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  char buffer[100];
  CS_INT length = 0;
  char ready[] = "%s is ready";
  CsErrParams two;
  com_ep_ss(&two, text("api"), text("x"));
  const auto build = [&](CS_INT errlen) {
    EXPECT_EQ(com_notrunc_errmsg(&context, handle(), number_of(1, 5, 0, 99), &two, ready, errlen, 4,
                                 0, buffer, 100, &length),
              CS_SUCCEED);
    return std::string(buffer, static_cast<size_t>(length));
  };
  EXPECT_EQ(build(11), "api: the layer: the reader: %s is ready");
  EXPECT_EQ(build(2), "api: the layer: the reader: %s");
  EXPECT_EQ(build(0), "api: the layer: the reader: ");
  EXPECT_EQ(build(-1), "api: the layer: the reader: ");
}

TEST_F(MessageLine, SectionsOfOthers) {
  write("[mine]\n7=s,mine\n[comlayer]\n1=s,l\n[comorigin]\n4=s,o\n", "own.loc");
  CS_ERRHAN own = {&locale, text("own.loc")};
  CS_ERRSECTION sections[] = {{2, "comlayer"}, {3, "comorigin"}, {9, "mine"}};
  ASSERT_EQ(com_err_init(&context, &own, sections, 3, nullptr, 0), CS_SUCCEED);
  char buffer[100];
  CS_INT length = 0;
  ASSERT_EQ(
      com_notrunc_errmsg(&context, &own, 17039367, &one, nullptr, 0, 9, 0, buffer, 100, &length),
      CS_SUCCEED);
  EXPECT_EQ(std::string(buffer, static_cast<size_t>(length)), "api: l: o: mine");
}

// Every room from none to more than enough, cut and refused.
TEST_F(MessageLine, EveryRoom) {
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  const std::string whole = "api: the layer: the origin: seven";
  const auto full = static_cast<CS_INT>(whole.size());
  for (CS_INT room = 0; room <= full + 2; ++room) {
    GuardedBuffer cut(static_cast<size_t>(room)), refused(static_cast<size_t>(room));
    CS_INT length = -1;
    ASSERT_EQ(com_notrunc_errmsg(&context, handle(), 17039367, &one, nullptr, 0, 4, 1, cut.text(),
                                 room, &length),
              CS_SUCCEED);
    ASSERT_EQ(length, std::min(room, full));
    ASSERT_EQ(cut.contents(static_cast<size_t>(length)),
              whole.substr(0, static_cast<size_t>(length)));
    ASSERT_TRUE(cut.is_untouched(static_cast<size_t>(length))); // no terminator
    length = -1;
    const CS_RETCODE result = com_notrunc_errmsg(&context, handle(), 17039367, &one, nullptr, 0, 4,
                                                 0, refused.text(), room, &length);
    ASSERT_EQ(result, room < full ? CS_FAIL : CS_SUCCEED);
    ASSERT_EQ(length, full);
    ASSERT_EQ(refused.is_untouched(), room < full || room == 0);
  }
  GuardedBuffer none(1);
  CS_INT length = -1;
  EXPECT_EQ(com_notrunc_errmsg(&context, handle(), 17039367, &one, nullptr, 0, 4, 1, none.text(),
                               -5, &length),
            CS_SUCCEED);
  EXPECT_EQ(length, 0);
  EXPECT_TRUE(none.is_untouched());
}

TEST_F(MessageLine, ARefusedLineReleasesItsText) {
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  CsErrParams ep;
  com_ep_ss(&ep, text("api"), text("b"));
  line(number_of(1, 4, 6, 10), ep);
  const AllocationProbe probe;
  char buffer[10];
  CS_INT length = 0;
  EXPECT_EQ(com_notrunc_errmsg(&context, handle(), number_of(1, 4, 6, 10), &ep, nullptr, 0, 4, 0,
                               buffer, 10, &length),
            CS_FAIL);
  EXPECT_EQ(length, 37);
  EXPECT_EQ(probe.allocations(), 1U);
  EXPECT_EQ(probe.live_blocks(), 0U);
}

// The parts of a line stand in a cache that drops its oldest text for a new one, and that may be one of
// the parts.
TEST_F(MessageLine, PartsThatAreDroppedForOneAnother) {
  std::string bytes = "[comdefaults]\n[comlayer]\n1=s,the layer\n[comorigin]\n4=s,the origin\n"
                      "[comapierror]\n";
  for (int i = 1; i <= 120; ++i)
    bytes += std::to_string(i) + "=s,text " + std::to_string(i) + "\n";
  write(bytes);
  for (int first = 1; first <= 3; ++first) {
    EXPECT_EQ(com_errdrop(&context), CS_SUCCEED);
    EXPECT_EQ(com__errfile_cache_drop(message()->locfilecache), CS_SUCCEED);
    message()->locfilecache = nullptr;
    message()->locerrhist = nullptr;
    message()->locerrcnt = 0;
    ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
    // The cache is full, and layer and origin are its oldest texts, or nearly so.
    for (int i = 1; i < first; ++i)
      get(4, i);
    if (first == 2) {
      get(3, 4);
      get(2, 1);
    } else {
      get(2, 1);
      get(3, 4);
    }
    for (int i = first; message()->locerrcnt < 100; ++i)
      get(4, i);
    EXPECT_EQ(line(number_of(1, 4, 0, 120)), "api: the layer: the origin: text 120") << first;
    EXPECT_EQ(history().size(), 100U);
    EXPECT_EQ(line(number_of(1, 4, 0, 119)), "api: the layer: the origin: text 119") << first;
    // The same when the new text cannot be loaded after the oldest has gone for it.
    for (size_t nth = 1; nth <= 8; ++nth) {
      AllocationProbe probe;
      probe.fail(nth, AllocationProbe::fail_from_then_on);
      const std::string found = line(number_of(1, 4, 0, 118));
      EXPECT_EQ(found.substr(0, 5), "api: ") << found;
      probe.succeed();
    }
    EXPECT_EQ(line(number_of(1, 4, 0, 118)), "api: the layer: the origin: text 118") << first;
  }
}

TEST_F(MessageLine, EachAllocationAndEachReadFails) {
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  CS_INT row = 12;
  CsErrParams ep;
  com_ep_sds(&ep, text("api"), &row, text("end"));
  const std::string whole = "api: the layer: the origin: line 12, at end";
  // A line comes out whatever fails, and the next one is whole.
  for (size_t nth = 1;; ++nth) {
    size_t failures;
    std::string found;
    {
      AllocationProbe probe;
      probe.fail(nth);
      found = line(17039368, ep);
      failures = probe.failures();
      probe.succeed();
      EXPECT_EQ(line(17039368, ep), whole);
      EXPECT_EQ(com_errdrop(&context), CS_SUCCEED);
      EXPECT_EQ(comn_intl_message_drop(&context), CS_SUCCEED);
      EXPECT_EQ(probe.live_blocks(), 0U);
    }
    EXPECT_EQ(found.substr(0, 5), "api: ");
    ASSERT_EQ(comn__intl_load_message(&context, &language_oid, &cache), CS_SUCCEED);
    ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
    if (failures == 0) {
      EXPECT_EQ(found, whole);
      EXPECT_GE(nth, 10U);
      break;
    }
  }
  for (size_t nth = 1;; ++nth) {
    size_t failures;
    std::string found;
    {
      IoProbe probe;
      probe.fail(nth);
      found = line(17039368, ep);
      failures = probe.failures();
      EXPECT_EQ(probe.open_files(), 0U);
      EXPECT_EQ(line(17039368, ep), whole);
    }
    EXPECT_EQ(found.substr(0, 5), "api: ");
    EXPECT_EQ(com_errdrop(&context), CS_SUCCEED);
    EXPECT_EQ(comn_intl_message_drop(&context), CS_SUCCEED);
    ASSERT_EQ(comn__intl_load_message(&context, &language_oid, &cache), CS_SUCCEED);
    ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
    if (failures == 0) {
      EXPECT_GE(nth, 9U);
      break;
    }
  }
}

// ---- the report ----

struct Received {
  CS_CONTEXT *context = nullptr;
  CS_CLIENTMSG message;
  int calls = 0;
  CS_RETCODE answer = CS_SUCCEED;
} received;

CS_RETCODE receive(CS_CONTEXT *context, CS_CLIENTMSG *message) {
  received.context = context;
  received.message = *message;
  ++received.calls;
  return received.answer;
}

class MessageReport : public Messages {
protected:
  MessageReport() {
    received = Received{};
    context.ctxerrfunc = receive;
    com_ep_s(&one, text("api"));
  }
  CsErrParams one;
};

TEST_F(MessageReport, WhatTheCallbackGets) {
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  EXPECT_EQ(com__error(&context, number_of(1, 4, 6, 7), &one), CS_SUCCEED);
  EXPECT_EQ(received.calls, 1);
  EXPECT_EQ(received.context, &context);
  const CS_CLIENTMSG &message = received.message;
  EXPECT_STREQ(message.msgstring, "api: the layer: the origin: seven");
  EXPECT_EQ(message.msgstringlen, 33);
  EXPECT_EQ(message.severity, 6);
  EXPECT_EQ(message.msgnumber, 0x01040607);
  EXPECT_EQ(message.osnumber, 0);
  EXPECT_EQ(message.osstring[0], '\0');
  EXPECT_EQ(message.osstringlen, 0);
  EXPECT_EQ(message.status, 0);
  EXPECT_EQ(std::memcmp(message.sqlstate, "42S02\0\0\0", 8), 0);
  EXPECT_EQ(message.sqlstatelen, 5);
}

TEST_F(MessageReport, TheCallbackDecidesTheResult) {
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  for (const CS_RETCODE answer : {CS_FAIL, CS_SUCCEED, -42, 17}) {
    received.answer = answer;
    EXPECT_EQ(com__error(&context, 17039367, &one), answer);
  }
  EXPECT_EQ(received.calls, 4);
}

TEST_F(MessageReport, WithoutAState) {
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  com__error(&context, number_of(255, 255, 255, 255), &one);
  EXPECT_STREQ(received.message.msgstring, "api: no layer: no origin: no text");
  EXPECT_EQ(std::memcmp(received.message.sqlstate, "ZZZZZ\0\0\0", 8), 0);
  EXPECT_EQ(received.message.sqlstatelen, 5);
  EXPECT_EQ(received.message.severity, 255);
  EXPECT_EQ(received.message.msgnumber, -1);
  // Nor a handle.
  EXPECT_EQ(com_errdrop(&context), CS_SUCCEED);
  EXPECT_EQ(com__error(&context, 17039367, &one), CS_SUCCEED);
  EXPECT_STREQ(reinterpret_cast<const char *>(received.message.sqlstate), "ZZZZZ");
}

TEST_F(MessageReport, EveryLengthAtTheCut) {
  write("[comdefaults]\n[comlayer]\n1=s,l\n[comorigin]\n4=s,o\n[comapierror]\n7=42000,seven\n");
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  for (size_t length = 1000; length <= 1030; ++length) {
    const std::string api(length - 13, 'a');
    const std::string whole = api + ": l: o: seven";
    CsErrParams ep;
    com_ep_s(&ep, text(api.c_str()));
    com__error(&context, 17039367, &ep);
    const size_t expected = std::min<size_t>(length, 1023);
    EXPECT_EQ(received.message.msgstringlen, static_cast<CS_INT>(expected));
    EXPECT_EQ(received.message.msgstring, whole.substr(0, expected));
    EXPECT_STREQ(reinterpret_cast<const char *>(received.message.sqlstate), "42000");
  }
  // Also where a part in front takes all the room.
  const std::string api(3000, 'a');
  CsErrParams ep;
  com_ep_s(&ep, text(api.c_str()));
  com__error(&context, 17039367, &ep);
  EXPECT_EQ(received.message.msgstring, api.substr(0, 1023));
}

TEST_F(MessageReport, WithoutACallbackNothingIsBuilt) {
  ASSERT_EQ(com_errinit(&context), CS_SUCCEED);
  context.ctxerrfunc = nullptr;
  const IoProbe probe;
  EXPECT_EQ(com__error(&context, 17039367, &one), CS_FAIL);
  EXPECT_EQ(probe.calls(), 0U);
}

TEST_F(MessageReport, NullPointersAreFatal) {
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com__error(nullptr, 17039367, &one));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com__error(&context, 17039367, nullptr));
  EXPECT_EQ(received.calls, 0);
}

} // namespace
