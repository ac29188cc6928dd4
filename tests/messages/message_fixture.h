// A locale with message files of its own, and the texts that tests put into them.
#ifndef ZRVTEST_MESSAGE_FIXTURE_H
#define ZRVTEST_MESSAGE_FIXTURE_H

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "zrvcomn/charset.h"
#include "zrvcomn/comerr.h"
#include "zrvcomn/comnlib.h"

namespace zrvtest {

inline CS_CHAR *text(const char *constant) {
  return const_cast<CS_CHAR *>(constant);
}

// Texts that tell where they come from.
const std::string plain_messages = "[comdefaults]\n"
                                   "1 = 00000, no memory\n"
                                   "2 = 00000, no layer\n"
                                   "3 = 00000, no origin\n"
                                   "4 = 00000, no text\n"
                                   "[comlayer]\n"
                                   "1 = 00001, the layer\n"
                                   "[comorigin]\n"
                                   "4 = 00004, the origin\n"
                                   "5 = 00005, the reader\n"
                                   "[comapierror]\n"
                                   "7 = 42S02, seven\n"
                                   "8 = 42000, \"line %ld, at %s\"\n"
                                   "9 = HY010, nine\n"
                                   "10 = IM003, \"ten %s, %s\"\n";

// A home directory, a context, a locale in the fixed UTF-8 character set. The messages of its language
// are those of the file that a test writes.
class Messages : public testing::Test {
protected:
  Messages() {
    std::string pattern = testing::TempDir() + "zrvtest_home_XXXXXX";
    home = mkdtemp(pattern.data());
    setenv("ZARVEK", home.c_str(), 1);
    std::filesystem::create_directories(folder());
    cache.langname = text("plain");
    cache.langnamelen = 5;
    cache.locchardesc = &charset;
    charset.oid = &charset_oid;
    globals.cmg_utf8_charset = &charset;
    locale.messageptr = &cache;
    context.ctxglobals = &globals;
    context.ctxlocale = &locale;
    context.ctxintlerr = 77;
    EXPECT_EQ(comn__intl_load_message(&context, &language_oid, &cache), CS_SUCCEED);
    write(plain_messages);
  }
  ~Messages() override {
    EXPECT_EQ(com_errdrop(&context), CS_SUCCEED);
    EXPECT_EQ(comn_intl_message_drop(&context), CS_SUCCEED);
    unsetenv("ZARVEK");
    std::filesystem::remove_all(home);
  }

  std::filesystem::path folder() const {
    return std::filesystem::path(home) / "locales/message/plain";
  }
  void write(const std::string &bytes, const char *name = "comnlib.loc") const {
    std::ofstream(folder() / name, std::ios::binary) << bytes;
  }
  CS_ERRHAN *handle() { return static_cast<CS_ERRHAN *>(context.ctxcomerrhan); }
  CS_MESSAGE *message() { return cache.locmessage; }

  // A text as com_err_msg has it, or its status.
  std::string get(CS_INT section, CS_MSGNUM number) {
    CS_ERRIDX index = {section, number};
    CS_CHAR *found = nullptr;
    const CS_RETCODE result = com_err_msg(&context, handle(), &index, &found);
    return result == CS_SUCCEED ? found : "status " + std::to_string(result);
  }

  // The numbers of the history, the newest first, each as section.number; they must be as many as
  // are counted, and each must hang under its section.
  std::vector<std::string> history() {
    std::vector<std::string> result;
    for (const CsErrorCache *entry = message()->locerrhist; entry != nullptr;
         entry = entry->histnext) {
      const CsErrSecCache *const section = entry->errseccache;
      result.push_back(std::to_string(section->errtag) + "." + std::to_string(entry->errnum));
      const CsErrorCache *found = section->errcache;
      while (found != nullptr && found != entry)
        found = found->next;
      EXPECT_EQ(found, entry) << result.back();
    }
    EXPECT_EQ(message()->locerrcnt, static_cast<CS_INT>(result.size()));
    return result;
  }

  // The line of a message, refused when it is longer than a message's text can be.
  std::string line(CS_MSGNUM number, CsErrParams &parameters) {
    char buffer[1023];
    CS_INT length = -1;
    const CS_RETCODE result =
        com_notrunc_errmsg(&context, handle(), number, &parameters, nullptr, 0, COM_ERRSEC_API, 0,
                           buffer, sizeof buffer, &length);
    return result == CS_SUCCEED ? std::string(buffer, static_cast<size_t>(length))
                                : "status " + std::to_string(result);
  }
  std::string line(CS_MSGNUM number) {
    CsErrParams parameters;
    com_ep_s(&parameters, text("api"));
    return line(number, parameters);
  }

  std::string home;
  CsOID language_oid{}, charset_oid{};
  CsCharDesc charset{};
  CsLocCache cache{};
  CS_LOCALE locale{};
  CsCtxGlobals globals{};
  CS_CONTEXT context{};
};

} // namespace zrvtest

#endif
