// The installation paths: every builder over every buffer size and every setting of the
// environment, the driver configuration, the search for LDAP libraries, the application's name.
#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <dirent.h>
#include <dlfcn.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "guarded_buffer.h"
#include "traced_exit.h"
#include "zrvcomn/comnlib.h"
#include "zrvcomn/zrvintl.h"

namespace {

// What the stand-ins below do; by default they pass the call on.
struct Shim {
  int home_result = 0; // not 0: the result of intl_home
  bool link_fails = false;
  bool link_is_empty = false;
  int opened = 0; // calls of opendir
  int closed = 0; // calls of closedir
} shim;

} // namespace

// The dynamic linker binds the library to these. A home directory that breaks its contract, a link
// that cannot be read and the count of directories have no other way in.
extern "C" int intl_home(char *buffer, int size) noexcept {
  if (shim.home_result != 0) {
    if (size > 0)
      buffer[0] = '\0';
    return shim.home_result;
  }
  static const auto real = reinterpret_cast<int (*)(char *, int)>(dlsym(RTLD_NEXT, "intl_home"));
  return real(buffer, size);
}

extern "C" ssize_t readlink(const char *path, char *buffer, size_t size) noexcept {
  if (shim.link_fails)
    return -1;
  if (shim.link_is_empty)
    return 0;
  return syscall(SYS_readlink, path, buffer, size);
}

extern "C" DIR *opendir(const char *name) {
  ++shim.opened;
  static const auto real = reinterpret_cast<DIR *(*)(const char *)>(dlsym(RTLD_NEXT, "opendir"));
  return real(name);
}

extern "C" int closedir(DIR *entries) {
  ++shim.closed;
  static const auto real = reinterpret_cast<int (*)(DIR *)>(dlsym(RTLD_NEXT, "closedir"));
  return real(entries);
}

namespace {

constexpr const char *unit = "com_path.cpp";

class PathTest : public testing::Test {
protected:
  PathTest() {
    shim = Shim{};
    for (const char *const name :
         {"ZARVEK_NCL", "ZRVNCL_IFILE", "ZRVNCL_TCL_CFG", "ZARVEK_TCL_CFG"})
      unsetenv(name);
    set("ZARVEK", "/opt/z");
    context.ctxintlerr = 77;
  }
  ~PathTest() override {
    shim = Shim{};
    com_set_tclcfg(nullptr);
  }

  // Null unsets.
  static void set(const char *name, const char *value) {
    if (value != nullptr)
      setenv(name, value, 1);
    else
      unsetenv(name);
  }

  CS_CONTEXT context{};
};

// One part of a path: what joins it, the text, and whether the length with it must stay below the
// size (true) or may reach it (false).
struct Part {
  char joint;
  std::string text;
  bool below;
};

struct Expected {
  CS_RETCODE result;
  std::string path;
};

// What a builder must answer for a buffer of `size` bytes, worked out by hand: the home directory
// needs `home_needs` bytes of buffer.
Expected expect_path(const std::string &home, size_t home_needs, const std::vector<Part> &parts,
                     size_t size) {
  if (size < home_needs)
    return {COM_INTL_ERROR, ""};
  std::string path = home;
  for (const Part &part : parts) {
    path += part.joint + part.text;
    if (part.below ? path.size() >= size : path.size() > size)
      return {CS_FAIL, ""};
  }
  return {CS_SUCCEED, path.substr(0, size - 1)};
}

size_t whole_length(const std::string &home, const std::vector<Part> &parts) {
  size_t length = home.size();
  for (const Part &part : parts)
    length += 1 + part.text.size();
  return length;
}

// Runs a builder over every buffer size from 1 to two past the need.
template <class Builder>
void sweep(CS_CONTEXT &context, const std::string &home, size_t home_extra,
           const std::vector<Part> &parts, bool has_context, Builder &&build) {
  const size_t need = whole_length(home, parts) + 1;
  for (size_t size = 1; size <= need + 2; ++size) {
    SCOPED_TRACE(size);
    const Expected expected = expect_path(home, home.size() + 1 + home_extra, parts, size);
    zrvtest::GuardedBuffer buffer(size);
    context.ctxintlerr = 77;
    ASSERT_EQ(build(buffer.text(), static_cast<CS_INT>(size)), expected.result);
    if (expected.result == CS_SUCCEED) {
      ASSERT_EQ(strnlen(buffer.text(), size), expected.path.size());
      ASSERT_EQ(std::string(buffer.text()), expected.path);
    }
    const bool reported = has_context && expected.result == COM_INTL_ERROR;
    ASSERT_EQ(context.ctxintlerr,
              reported ? (size == 1 && home_extra == 1 ? ZRVINTL_EINVAL : ZRVINTL_ESIZE) : 77);
  }
}

char *arg(const char *text) {
  return const_cast<char *>(text);
}

TEST_F(PathTest, AnyfileOverEverySize) {
  for (const char *const product : {static_cast<const char *>(nullptr), "", "NCL-1"})
    for (const CS_INT ncl : {0, 1, 2})
      for (const char *const directory : {static_cast<const char *>(nullptr), "devlib3p"})
        for (const char *const file : {static_cast<const char *>(nullptr), "f.txt"}) {
          set("ZARVEK_NCL", product);
          std::vector<Part> parts;
          if (ncl == 1 && product != nullptr && *product != '\0')
            parts.push_back({'/', product, true});
          if (directory != nullptr)
            parts.push_back({'/', directory, true});
          if (file != nullptr)
            parts.push_back({'/', file, true});
          // The home directory is told of one byte less.
          sweep(context, "/opt/z", 1, parts, false, [&](char *buffer, CS_INT size) {
            return com_path_anyfile(buffer, size, arg(directory), arg(file), ncl);
          });
        }
}

TEST_F(PathTest, AnyfileClearsTheBuffer) {
  zrvtest::GuardedBuffer buffer(64);
  ASSERT_EQ(com_path_anyfile(buffer.text(), 64, arg("d"), nullptr, 0), CS_SUCCEED);
  EXPECT_EQ(buffer.contents(), std::string("/opt/z/d") + std::string(56, '\0'));
}

TEST_F(PathTest, CfgfileOverEverySize) {
  for (const char *const product : {static_cast<const char *>(nullptr), "", "NCL-1"})
    for (const CS_INT ncl : {0, 1, -3}) {
      set("ZARVEK_NCL", product);
      std::vector<Part> parts;
      if (ncl != 0 && product != nullptr && *product != '\0')
        parts.push_back({'/', product, false});
      parts.push_back({'/', "config", false});
      parts.push_back({'/', "f", false});
      sweep(context, "/opt/z", 0, parts, true, [&](char *buffer, CS_INT size) {
        return com_path_cfgfile(&context, arg("f"), buffer, size, ncl);
      });
    }
}

TEST_F(PathTest, CfgfileWithAndWithoutTheProductDirectory) {
  char path[64];
  set("ZARVEK_NCL", "NCL-1");
  ASSERT_EQ(com_path_cfgfile(&context, arg("f"), path, sizeof path, 1), CS_SUCCEED);
  EXPECT_STREQ(path, "/opt/z/NCL-1/config/f");
  ASSERT_EQ(com_path_cfgfile(&context, arg("f"), path, sizeof path, 0), CS_SUCCEED);
  EXPECT_STREQ(path, "/opt/z/config/f");
  set("ZARVEK_NCL", nullptr);
  ASSERT_EQ(com_path_cfgfile(&context, arg("f"), path, sizeof path, 1), CS_SUCCEED);
  EXPECT_STREQ(path, "/opt/z/config/f");
}

// A product directory that the builder's own buffer cannot hold is refused, not left out.
TEST_F(PathTest, LongProductDirectory) {
  char path[1200];
  for (const size_t length : {510U, 511U, 512U, 513U}) {
    SCOPED_TRACE(length);
    const std::string product(length, 'p');
    set("ZARVEK_NCL", product.c_str());
    EXPECT_EQ(com_path_anyfile(path, sizeof path, nullptr, arg("f"), 1),
              length <= 511 ? CS_SUCCEED : CS_FAIL);
    EXPECT_EQ(com_path_cfgfile(&context, arg("f"), path, sizeof path, 1),
              length <= 512 ? CS_SUCCEED : CS_FAIL);
    EXPECT_EQ(com_path_cfgfile(&context, arg("f"), path, sizeof path, 0), CS_SUCCEED);
  }
}

TEST_F(PathTest, LocfileOverEverySize) {
  for (const char *const lang : {static_cast<const char *>(nullptr), "us_english"})
    for (const char *const charset : {static_cast<const char *>(nullptr), "iso_1"}) {
      std::vector<Part> parts{{'/', "locales", false}};
      if (lang != nullptr)
        parts.push_back({'/', lang, false});
      if (lang != nullptr && charset != nullptr)
        parts.push_back({'/', charset, false});
      parts.push_back({'/', "common.loc", false});
      sweep(context, "/opt/z", 0, parts, true, [&](char *buffer, CS_INT size) {
        return com__path_locfile(&context, arg(lang), arg(charset), arg("common.loc"), buffer,
                                 size);
      });
    }
}

TEST_F(PathTest, MsgfileOverEverySize) {
  const std::vector<Part> parts{{'/', "locales", false},
                                {'/', "message", false},
                                {'/', "french", false},
                                {'/', "m.loc", true}};
  sweep(context, "/opt/z", 0, parts, true, [&](char *buffer, CS_INT size) {
    return com_path_msgfile(&context, arg("french"), -12345, arg("m.loc"), 5, buffer, size);
  });
}

// Deliberate: the given length enters the fit test alone. Too small a length lets a cut path
// through, too large a one refuses a path that would fit.
TEST_F(PathTest, MsgfileLengthEntersTheTestAlone) {
  const std::string whole = "/opt/z/locales/message/french/m.loc";
  zrvtest::GuardedBuffer exact(whole.size());
  ASSERT_EQ(com_path_msgfile(&context, arg("french"), 6, arg("m.loc"), 4, exact.text(),
                             static_cast<CS_INT>(exact.size())),
            CS_SUCCEED);
  EXPECT_EQ(std::string(exact.text()), whole.substr(0, whole.size() - 1));
  EXPECT_EQ(com_path_msgfile(&context, arg("french"), 6, arg("m.loc"), 5, exact.text(),
                             static_cast<CS_INT>(exact.size())),
            CS_FAIL);
  zrvtest::GuardedBuffer ample(64);
  EXPECT_EQ(com_path_msgfile(&context, arg("french"), 6, arg("m.loc"), 40, ample.text(), 64),
            CS_FAIL);
  EXPECT_EQ(
      com_path_msgfile(&context, arg("french"), 6, arg("m.loc"), 2147483647, ample.text(), 64),
      CS_FAIL);
  ASSERT_EQ(
      com_path_msgfile(&context, arg("french"), 6, arg("m.loc"), CS_LEN_NULLTERM, ample.text(), 64),
      CS_SUCCEED);
  EXPECT_EQ(ample.contents(), whole + std::string(64 - whole.size(), '\0'));
}

TEST_F(PathTest, CharfileOverEverySize) {
  for (const char *const charset : {static_cast<const char *>(nullptr), "cp850"})
    for (const char *const file : {static_cast<const char *>(nullptr), "dict"})
      for (const char *const ext : {static_cast<const char *>(nullptr), "srt"}) {
        std::vector<Part> parts{{'/', "charsets", true}};
        if (charset != nullptr)
          parts.push_back({'/', charset, true});
        if (file != nullptr)
          parts.push_back({'/', file, true});
        if (file != nullptr && ext != nullptr)
          parts.push_back({'.', ext, false});
        sweep(context, "/opt/z", 0, parts, true, [&](char *buffer, CS_INT size) {
          return com_path_charfile(&context, arg(charset), arg(file), arg(ext), buffer, size);
        });
      }
}

TEST_F(PathTest, LocdataOverEverySize) {
  const struct {
    CS_INT type;
    const char *directory, *extension;
  } rows[] = {{4, "money", "mon"}, {5, "numeric", "num"}, {6, "datetime", "dt"}};
  for (const auto &row : rows) {
    const std::vector<Part> parts{{'/', "locales", true},
                                  {'/', row.directory, true},
                                  {'/', "us", true},
                                  {'.', row.extension, true}};
    sweep(context, "/opt/z", 0, parts, true, [&](char *buffer, CS_INT size) {
      return comn__path_locdata(&context, row.type, arg("us"), buffer, size);
    });
  }
  char path[64];
  ASSERT_EQ(comn__path_locdata(&context, 4, arg("us"), path, sizeof path), CS_SUCCEED);
  EXPECT_STREQ(path, "/opt/z/locales/money/us.mon");
  for (const CS_INT type : {-1, 0, 3, 7})
    EXPECT_ASSERTION(unit, CS_FAIL,
                     comn__path_locdata(&context, type, arg("us"), path, sizeof path));
}

TEST_F(PathTest, IfileOverEverySize) {
  const std::vector<Part> parts{{'/', "interfaces", false}};
  for (const char *const unset : {static_cast<const char *>(nullptr), ""}) {
    set("ZRVNCL_IFILE", unset);
    sweep(context, "/opt/z", 0, parts, true,
          [&](char *buffer, CS_INT size) { return com_path_ifile(&context, buffer, size); });
  }
}

// The variable decides alone, whatever the home is: when it does not fit, the call fails.
TEST_F(PathTest, IfileOfTheVariable) {
  const std::string file = "/elsewhere/my interfaces";
  set("ZRVNCL_IFILE", file.c_str());
  for (const int home : {0, ZRVINTL_ENOHOME})
    for (size_t size = 1; size <= file.size() + 3; ++size) {
      SCOPED_TRACE(size);
      shim.home_result = home;
      zrvtest::GuardedBuffer buffer(size);
      const CS_RETCODE result = com_path_ifile(&context, buffer.text(), static_cast<CS_INT>(size));
      ASSERT_EQ(result, size > file.size() ? CS_SUCCEED : CS_FAIL);
      if (result == CS_SUCCEED) {
        ASSERT_STREQ(buffer.text(), file.c_str());
      }
      ASSERT_EQ(context.ctxintlerr, 77);
    }
}

// Every builder, reduced to its buffer; null stands for no context.
std::vector<std::function<CS_RETCODE(CS_CONTEXT *, char *, CS_INT)>> builders() {
  return {
      [](CS_CONTEXT *, char *b, CS_INT n) { return com_path_anyfile(b, n, arg("d"), arg("f"), 1); },
      [](CS_CONTEXT *c, char *b, CS_INT n) { return com_path_ifile(c, b, n); },
      [](CS_CONTEXT *c, char *b, CS_INT n) { return com_path_cfgfile(c, arg("f"), b, n, 1); },
      [](CS_CONTEXT *c, char *b, CS_INT n) {
        return com__path_locfile(c, arg("l"), arg("c"), arg("f"), b, n);
      },
      [](CS_CONTEXT *c, char *b, CS_INT n) {
        return com_path_msgfile(c, arg("l"), 1, arg("f"), 1, b, n);
      },
      [](CS_CONTEXT *c, char *b, CS_INT n) {
        return com_path_charfile(c, arg("c"), arg("f"), arg("x"), b, n);
      },
      [](CS_CONTEXT *c, char *b, CS_INT n) { return comn__path_locdata(c, 5, arg("f"), b, n); },
  };
}

TEST_F(PathTest, FailingHome) {
  shim.home_result = -42;
  char path[64];
  size_t index = 0;
  for (const auto &build : builders()) {
    SCOPED_TRACE(index);
    context.ctxintlerr = 77;
    EXPECT_EQ(build(&context, path, sizeof path), COM_INTL_ERROR);
    EXPECT_EQ(context.ctxintlerr, index == 0 ? 77 : -42);
    EXPECT_EQ(build(nullptr, path, sizeof path), COM_INTL_ERROR);
    ++index;
  }
}

TEST_F(PathTest, HomeLongerThanItsBuffer) {
  char path[64];
  size_t index = 0;
  for (const auto &build : builders()) {
    SCOPED_TRACE(index);
    shim.home_result = 65;
    EXPECT_ASSERTION(unit, CS_FAIL, build(&context, path, sizeof path));
    // Exactly the size is one too many for com_path_anyfile alone.
    shim.home_result = 64;
    if (index == 0)
      EXPECT_ASSERTION(unit, CS_FAIL, build(&context, path, sizeof path));
    else
      EXPECT_EQ(build(&context, path, sizeof path), CS_FAIL);
    EXPECT_EQ(context.ctxintlerr, 77);
    ++index;
  }
}

TEST_F(PathTest, SizesThatAreNone) {
  for (const CS_INT size : {0, -1, -2147483647 - 1})
    for (const auto &build : builders()) {
      zrvtest::GuardedBuffer buffer(16);
      EXPECT_LE(build(&context, buffer.text(), size), CS_FAIL);
      EXPECT_TRUE(buffer.is_untouched());
    }
}

// Each exit with a code passes through the trace; the length that com_get_tclcfg returns is none.
TEST_F(PathTest, EveryExitIsTraced) {
  char path[64];
  const std::string succeed = "(CS_SUCCEED) file com_path.cpp",
                    fail = "(CS_FAIL) file com_path.cpp";
  for (const auto &build : builders()) {
    shim.home_result = 0;
    EXPECT_EQ(zrvtest::exit_of(CS_SUCCEED, [&] { return build(&context, path, sizeof path); }),
              succeed);
    EXPECT_EQ(zrvtest::exit_of(CS_FAIL, [&] { return build(&context, nullptr, sizeof path); }),
              fail);
    EXPECT_EQ(zrvtest::exit_of(CS_FAIL, [&] { return build(&context, path, 9); }), fail);
    shim.home_result = 65;
    EXPECT_EQ(zrvtest::exit_of(CS_FAIL, [&] { return build(&context, path, sizeof path); }), fail);
    shim.home_result = -42;
    EXPECT_EQ(zrvtest::exit_of(COM_INTL_ERROR, [&] { return build(&context, path, sizeof path); }),
              "(-301) file com_path.cpp");
  }
  shim.home_result = 0;
  const std::string too_long(512, 'x');
  EXPECT_EQ(zrvtest::exit_of(CS_FAIL, [&] { return com_set_tclcfg(arg(too_long.c_str())); }), fail);
  EXPECT_EQ(zrvtest::exit_of(CS_SUCCEED, [&] { return com_set_tclcfg(arg("/a/b")); }), succeed);
  EXPECT_EQ(zrvtest::trace_of(4, [&] { return com_get_tclcfg(path, sizeof path); }), "");
  EXPECT_EQ(zrvtest::trace_of(0, [&] { return com_get_tclcfg(path, 4); }), "");
  EXPECT_EQ(zrvtest::trace_of(0, [&] { return com_get_tclcfg(nullptr, 4); }), "");
  EXPECT_EQ(zrvtest::exit_of(CS_SUCCEED, [&] { return com_set_tclcfg(nullptr); }), succeed);
  set("ZARVEK_TCL_CFG", "/a");
  EXPECT_EQ(zrvtest::trace_of(2, [&] { return com_get_tclcfg(path, sizeof path); }), "");
  char suffix[COM_LDAPVERSION_SIZE];
  CS_INT found = 0;
  EXPECT_EQ(zrvtest::exit_of(CS_SUCCEED, [&] { return com_get_ldapversionsuffix(suffix, 0); }),
            succeed);
  EXPECT_EQ(zrvtest::exit_of(CS_FAIL, [&] { return com_get_ldapversionsuffix(suffix, 1); }), fail);
  EXPECT_EQ(zrvtest::exit_of(CS_FAIL, [&] { return com_get_ldapversionsuffix(nullptr, 1); }), fail);
  EXPECT_EQ(zrvtest::exit_of(CS_FAIL, [&] { return com__find_latest_ldapversion(suffix, &found); }),
            fail);
  char name[256];
  EXPECT_EQ(
      zrvtest::exit_of(CS_SUCCEED,
                       [&] { return comn__genappname_from_exec(&context, name, sizeof name, 0); }),
      "(CS_SUCCEED) file comexecappnm.cpp");
  EXPECT_EQ(
      zrvtest::exit_of(CS_FAIL, [&] { return comn__genappname_from_exec(&context, name, 0, 0); }),
      "(CS_FAIL) file comexecappnm.cpp");
}

TEST_F(PathTest, NullPointers) {
  char path[64];
  for (const auto &build : builders())
    EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, build(&context, nullptr, 64));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com_path_cfgfile(&context, nullptr, path, 64, 1));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            com__path_locfile(&context, arg("l"), nullptr, nullptr, path, 64));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            com_path_msgfile(&context, nullptr, 1, arg("f"), 1, path, 64));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL,
                            com_path_msgfile(&context, arg("l"), 1, nullptr, 1, path, 64));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, comn__path_locdata(&context, 4, nullptr, path, 64));
  EXPECT_NULL_POINTER_CHECK(unit, 0, com_get_tclcfg(nullptr, 64));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com_get_ldapversionsuffix(nullptr, 0));
  CS_INT found = 5;
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com__find_latest_ldapversion(nullptr, &found));
  EXPECT_NULL_POINTER_CHECK(unit, CS_FAIL, com__find_latest_ldapversion(path, nullptr));
  EXPECT_NULL_POINTER_CHECK("comexecappnm.cpp", CS_FAIL,
                            comn__genappname_from_exec(&context, nullptr, 64, 0));
}

TEST_F(PathTest, TclcfgOverride) {
  EXPECT_EQ(com_set_tclcfg(arg("/a/b.cfg")), CS_SUCCEED);
  EXPECT_STREQ(tclcfgpath, "/a/b.cfg");
  const std::string too_long(512, 'x'), longest(511, 'y');
  EXPECT_EQ(com_set_tclcfg(arg(too_long.c_str())), CS_FAIL);
  EXPECT_STREQ(tclcfgpath, "/a/b.cfg");
  EXPECT_EQ(com_set_tclcfg(arg(longest.c_str())), CS_SUCCEED);
  EXPECT_EQ(tclcfgpath, longest);
  EXPECT_EQ(com_set_tclcfg(nullptr), CS_SUCCEED);
  EXPECT_STREQ(tclcfgpath, "");
}

// An empty override is none.
TEST_F(PathTest, EmptyTclcfgOverride) {
  char path[64];
  set("ZRVNCL_TCL_CFG", "/e");
  ASSERT_EQ(com_set_tclcfg(arg("/a/b.cfg")), CS_SUCCEED);
  EXPECT_EQ(com_get_tclcfg(path, sizeof path), 8);
  EXPECT_EQ(com_set_tclcfg(arg("")), CS_SUCCEED);
  EXPECT_EQ(std::string(tclcfgpath, 1), std::string(1, '\0'));
  EXPECT_EQ(com_get_tclcfg(path, sizeof path), 2);
  EXPECT_STREQ(path, "/e");
}

// Deliberate: an override that does not fit gives 0 and hides the environment.
TEST_F(PathTest, TclcfgOverrideOverEverySize) {
  set("ZRVNCL_TCL_CFG", "/e");
  ASSERT_EQ(com_set_tclcfg(arg("/a/b.cfg")), CS_SUCCEED);
  for (CS_INT size = 0; size <= 10; ++size) {
    zrvtest::GuardedBuffer buffer(static_cast<size_t>(size));
    ASSERT_EQ(com_get_tclcfg(buffer.text(), size), size > 8 ? 8 : 0);
    if (size > 8)
      EXPECT_STREQ(buffer.text(), "/a/b.cfg");
    else
      EXPECT_TRUE(buffer.is_untouched());
  }
}

TEST_F(PathTest, TclcfgOrderOfChoice) {
  char path[64];
  EXPECT_EQ(com_get_tclcfg(path, sizeof path), 24);
  EXPECT_STREQ(path, "/opt/z/config/libtcl.cfg");
  set("ZARVEK_NCL", "NCL-1");
  EXPECT_EQ(com_get_tclcfg(path, sizeof path), 30);
  EXPECT_STREQ(path, "/opt/z/NCL-1/config/libtcl.cfg");
  set("ZARVEK_TCL_CFG", "/second");
  EXPECT_EQ(com_get_tclcfg(path, sizeof path), 7);
  EXPECT_STREQ(path, "/second");
  set("ZRVNCL_TCL_CFG", "/first");
  EXPECT_EQ(com_get_tclcfg(path, sizeof path), 6);
  EXPECT_STREQ(path, "/first");
  // A variable that does not fit ends the search.
  EXPECT_EQ(com_get_tclcfg(path, 6), 0);
  set("ZRVNCL_TCL_CFG", nullptr);
  EXPECT_EQ(com_get_tclcfg(path, 7), 0);
  set("ZARVEK_TCL_CFG", "");
  EXPECT_EQ(com_get_tclcfg(path, 29), 0);
  // Exactly the size: the last character has given way.
  EXPECT_EQ(com_get_tclcfg(path, 30), 29);
  EXPECT_STREQ(path, "/opt/z/NCL-1/config/libtcl.cf");
  shim.home_result = -1;
  EXPECT_EQ(com_get_tclcfg(path, sizeof path), 0);
}

class LdapTest : public PathTest {
protected:
  LdapTest() {
    std::string name = testing::TempDir() + "zrvcomn-ldap-XXXXXX";
    EXPECT_NE(mkdtemp(name.data()), nullptr);
    home = name;
    set("ZARVEK", name.c_str());
    set("ZARVEK_NCL", "NCL-1");
  }
  ~LdapTest() override { std::filesystem::remove_all(home); }

  void install(const std::string &file) {
    std::filesystem::create_directories(home / "NCL-1" / "devlib3p");
    std::ofstream(home / "NCL-1" / "devlib3p" / file) << "x";
  }

  std::filesystem::path home;
};

TEST_F(LdapTest, BuiltInSuffixNeedsNoDirectory) {
  zrvtest::GuardedBuffer suffix(256);
  for (const CS_INT latest : {0, 2, -1}) {
    ASSERT_EQ(com_get_ldapversionsuffix(suffix.text(), latest), CS_SUCCEED);
    EXPECT_STREQ(suffix.text(), ".2.4.46_ccl");
  }
  EXPECT_EQ(shim.opened, 0);
}

TEST_F(LdapTest, MissingDirectory) {
  zrvtest::GuardedBuffer suffix(256);
  EXPECT_EQ(com_get_ldapversionsuffix(suffix.text(), 1), CS_FAIL);
  EXPECT_TRUE(suffix.is_untouched());
  EXPECT_EQ(shim.opened, 1);
  EXPECT_EQ(shim.closed, 0);
  shim.home_result = -1;
  EXPECT_EQ(com_get_ldapversionsuffix(suffix.text(), 1), CS_FAIL);
  EXPECT_EQ(shim.opened, 1);
}

TEST_F(LdapTest, NothingNewer) {
  install("libzarvekldap.so.2.4.46_ccl"); // the built-in one itself
  install("libzarvekldap.so.2.4.45_ccl");
  install("libzarvekldap");    // the stem alone compares lower
  install("libzarvekldaq.so"); // not the stem
  install("z");
  zrvtest::GuardedBuffer suffix(256), version(256);
  ASSERT_EQ(com_get_ldapversionsuffix(suffix.text(), 1), CS_SUCCEED);
  EXPECT_STREQ(suffix.text(), ".2.4.46_ccl");
  CS_INT found = 9;
  ASSERT_EQ(com__find_latest_ldapversion(version.text(), &found), CS_SUCCEED);
  EXPECT_EQ(found, 0);
  EXPECT_TRUE(version.is_untouched());
  EXPECT_EQ(shim.opened, 2);
  EXPECT_EQ(shim.closed, 2);
}

// Deliberate: the result is the file name, and versions are no numbers.
TEST_F(LdapTest, NewerByBytes) {
  install("libzarvekldap.so.2.4.9_ccl");
  install("libzarvekldap.so.2.4.50_ccl");
  zrvtest::GuardedBuffer suffix(256), version(256);
  ASSERT_EQ(com_get_ldapversionsuffix(suffix.text(), 1), CS_SUCCEED);
  EXPECT_STREQ(suffix.text(), "libzarvekldap.so.2.4.9_ccl");
  CS_INT found = 0;
  ASSERT_EQ(com__find_latest_ldapversion(version.text(), &found), CS_SUCCEED);
  EXPECT_EQ(found, 1);
  EXPECT_STREQ(version.text(), "libzarvekldap.so.2.4.9_ccl");
  EXPECT_EQ(shim.opened, 2);
  EXPECT_EQ(shim.closed, 2);
}

TEST_F(LdapTest, LongestFileName) {
  const std::string name = "libzarvekldap.so.9" + std::string(255 - 18, 'n');
  install(name);
  zrvtest::GuardedBuffer suffix(256);
  ASSERT_EQ(com_get_ldapversionsuffix(suffix.text(), 1), CS_SUCCEED);
  EXPECT_EQ(std::string(suffix.text()), name);
}

class ApplicationName : public PathTest {
protected:
  const std::string whole = std::filesystem::read_symlink("/proc/self/exe").filename();
};

TEST_F(ApplicationName, CutToEverySize) {
  for (size_t size = 1; size <= whole.size() + 2; ++size) {
    zrvtest::GuardedBuffer name(size);
    ASSERT_EQ(comn__genappname_from_exec(&context, name.text(), static_cast<CS_INT>(size), 0),
              CS_SUCCEED);
    EXPECT_EQ(std::string(name.text()), whole.substr(0, size - 1));
  }
  zrvtest::GuardedBuffer name(8);
  for (const CS_INT size : {0, -1})
    EXPECT_EQ(comn__genappname_from_exec(nullptr, name.text(), size, 2), CS_FAIL);
  EXPECT_TRUE(name.is_untouched());
}

TEST_F(ApplicationName, Folding) {
  std::string upper = whole;
  for (char &c : upper)
    c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  ASSERT_NE(upper, whole);
  char name[256];
  ASSERT_EQ(comn__genappname_from_exec(&context, name, sizeof name, 2), CS_SUCCEED);
  EXPECT_EQ(name, upper);
  ASSERT_EQ(comn__genappname_from_exec(&context, name, sizeof name, 1), CS_SUCCEED);
  EXPECT_EQ(name, whole);
}

// Deliberate: only an empty link is a failure; one that cannot be read names nothing.
TEST_F(ApplicationName, UnreadableLink) {
  zrvtest::GuardedBuffer name(32);
  shim.link_is_empty = true;
  EXPECT_EQ(comn__genappname_from_exec(&context, name.text(), 32, 1), CS_FAIL);
  EXPECT_TRUE(name.is_untouched());
  shim.link_is_empty = false;
  shim.link_fails = true;
  EXPECT_EQ(comn__genappname_from_exec(&context, name.text(), 32, 1), CS_SUCCEED);
  EXPECT_STREQ(name.text(), "");
}

} // namespace
