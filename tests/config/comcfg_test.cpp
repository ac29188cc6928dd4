// Opening and closing configuration files: names, the chain, handles, failures.
#include <filesystem>
#include <fstream>

#include "allocation_probe.h"
#include "check_trap.h"
#include "config_fixture.h"
#include "io_probe.h"

namespace {

using std::string;
using zrvtest::text;
using Values = std::vector<string>;
using Numbers = std::set<string>;

class ConfigFiles : public zrvtest::Config {
protected:
  CS_RETCODE init(const string &path, CS_INT length, CS_CONFIG **cfg) {
    return comn_init_cfg(&context, text(path.c_str()), length, cfg);
  }
  static CS_CFGCHAIN *head() { return Application_global.ag_cfgchain; }

  // Lets the next look-up find the chain, as the first subscription of a process does.
  static void be_first() { Application_global.ag_accesscnt = 0; }
};

// ---- names ----

TEST_F(ConfigFiles, LengthOfTheName) {
  const zrvtest::TextFile file("[a]\nk = 1\n");
  const string path = string(file.path()) + "behind";
  CS_CONFIG *cfg = nullptr;
  ASSERT_EQ(init(path, static_cast<CS_INT>(path.size()) - 6, &cfg), CS_SUCCEED);
  EXPECT_STREQ(data(cfg)->cfgname, file.path());
  EXPECT_EQ(data(cfg)->cfgnamelen, static_cast<CS_INT>(path.size()) - 6);
  drop(cfg);
  ASSERT_EQ(init(file.path(), CS_LEN_NULLTERM, &cfg), CS_SUCCEED);
  EXPECT_STREQ(data(cfg)->cfgname, file.path());
  drop(cfg);
}

TEST_F(ConfigFiles, NamesWithoutLengthFail) {
  CS_CONFIG *cfg = nullptr;
  for (CS_INT length : {0, -1, -8, -10, -99998}) {
    EXPECT_EQ(init("/dev/null", length, &cfg), CS_FAIL) << length;
    EXPECT_EQ(comn_init_cfg(&context, nullptr, length, &cfg), CS_FAIL) << length;
  }
  EXPECT_EQ(cfg, nullptr);
  EXPECT_EQ(Application_global.ag_accesscnt, 0);
  EXPECT_EQ(take_reported(), Values());
}

TEST_F(ConfigFiles, LongestName) {
  CS_CONFIG *cfg = nullptr;
  const string longest(512, '/');
  // A directory can be opened but not be read.
  EXPECT_EQ(init(longest, 512, &cfg), CS_FAIL);
  EXPECT_EQ(take_reported(), Values{"17040899 comn_init_cfg: <" + longest + ">"});
  const string longer(513, '/');
  for (CS_INT length : {513, CS_LEN_NULLTERM}) {
    EXPECT_EQ(init(longer, length, &cfg), CS_FAIL);
    EXPECT_EQ(take_reported(), Values{"17040901 comn_init_cfg: <" + longer.substr(0, 254) + ">"});
  }
  EXPECT_EQ(cfg, nullptr);
}

TEST_F(ConfigFiles, DefaultFile) {
  std::filesystem::create_directories(home + "/config");
  std::ofstream(home + "/config/ncl.cfg") << "[a]\nk = default\n";
  CS_CONFIG *cfg = nullptr;
  ASSERT_EQ(comn_init_cfg(&context, nullptr, CS_UNUSED, &cfg), CS_SUCCEED);
  EXPECT_EQ(data(cfg)->cfgname, home + "/config/ncl.cfg");
  EXPECT_EQ(get(cfg, "a", "k"), "default");
  drop(cfg);
}

TEST_F(ConfigFiles, DefaultFileLeavesNothing) {
  std::filesystem::create_directories(home + "/config");
  std::ofstream(home + "/config/ncl.cfg") << "";
  zrvtest::AllocationProbe probe;
  CS_CONFIG *cfg = nullptr;
  ASSERT_EQ(comn_init_cfg(&context, nullptr, CS_UNUSED, &cfg), CS_SUCCEED);
  drop(cfg);
  EXPECT_EQ(probe.live_blocks(), 0U);
}

TEST_F(ConfigFiles, LongestDirectoryOfTheDefaultFile) {
  const string directory(255, '/');
  CS_CONFIG *cfg = nullptr;
  setenv("ZARVEK", directory.c_str(), 1);
  EXPECT_EQ(comn_init_cfg(&context, nullptr, CS_UNUSED, &cfg), CS_FAIL);
  EXPECT_EQ(take_numbers(), Numbers{"17040899"}); // no such file
  setenv("ZARVEK", ("/" + directory).c_str(), 1);
  EXPECT_ASSERTION("comcfg.cpp", CS_FAIL, comn_init_cfg(&context, nullptr, CS_UNUSED, &cfg));
  EXPECT_EQ(cfg, nullptr);
}

TEST_F(ConfigFiles, DefaultFileNeedsTheVariable) {
  unsetenv("ZARVEK");
  CS_CONFIG *cfg = nullptr;
  EXPECT_ASSERTION("comcfg.cpp", CS_FAIL, comn_init_cfg(&context, nullptr, CS_UNUSED, &cfg));
  EXPECT_EQ(cfg, nullptr);
  EXPECT_EQ(Application_global.ag_accesscnt, 0);
}

TEST_F(ConfigFiles, MissingFile) {
  EXPECT_EQ(open_path("/no/such/file"), nullptr);
  EXPECT_EQ(take_reported(), Values{"17040899 comn_init_cfg: </no/such/file>"});
  EXPECT_EQ(head(), nullptr);
}

// ---- the chain ----

TEST_F(ConfigFiles, RecordsOfAnOpenFile) {
  const zrvtest::TextFile file("");
  CS_CONFIG *const cfg = open_path(file.path());
  ASSERT_NE(cfg, nullptr);
  EXPECT_EQ(cfg->next, cfg);
  EXPECT_EQ(cfg->prev, cfg);
  EXPECT_EQ(cfg->cfg_ctx, &context);
  CS_CFGCHAIN *const chain = cfg->cfg_chain;
  EXPECT_EQ(head(), chain);
  EXPECT_EQ(chain->next, nullptr);
  EXPECT_EQ(chain->prev, nullptr);
  EXPECT_EQ(chain->cfgc_refcount, 1);
  EXPECT_EQ(chain->cfgc_handles, cfg);
  EXPECT_EQ(chain->cfgc_mtx, nullptr);
  EXPECT_EQ(data(cfg)->mm_mtx, nullptr);
  EXPECT_EQ(data(cfg)->parseinfo, nullptr);
  auto *const lists = static_cast<LM_CONTEXT *>(data(cfg)->lmctx);
  EXPECT_EQ(string(lists->context_name, static_cast<size_t>(lists->length)), file.path());
  EXPECT_EQ(lists->cxtprop->version, context.ctxversion);
  auto *const sections = static_cast<LM_HANDLE *>(data(cfg)->sections);
  EXPECT_EQ(sections->hdlprop->list_type, LM_CHASH);
  EXPECT_STREQ(sections->hdlprop->handle_name, "sections");
  auto *const pool = static_cast<MM_HANDLE *>(data(cfg)->mpool);
  EXPECT_EQ(pool, data(cfg)->mpool);
  EXPECT_EQ(pool->mmh_head, data(cfg)->mpoolhead);
  EXPECT_NE(pool->mmh_head->mph_lock, nullptr);
  EXPECT_NE(pool->mmh_head->mph_unlock, nullptr);
  EXPECT_EQ(pool->mmh_head->mph_lockarg, nullptr);
  drop(cfg);
  EXPECT_EQ(head(), nullptr);
}

// Deliberate: all but the first subscription of the process clear the chain, so a file is read anew.
TEST_F(ConfigFiles, FileOpenedTwiceIsReadTwice) {
  const zrvtest::TextFile file("[a]\nk = 1\n");
  CS_CONFIG *const first = open_path(file.path());
  CS_CONFIG *const second = open_path(file.path());
  ASSERT_NE(first, nullptr);
  ASSERT_NE(second, nullptr);
  EXPECT_NE(first->cfg_chain, second->cfg_chain);
  EXPECT_EQ(head(), second->cfg_chain);
  EXPECT_EQ(first->cfg_chain->cfgc_refcount, 1);
  EXPECT_EQ(second->cfg_chain->cfgc_refcount, 1);
  // The first one is on no chain and lives on all the same.
  EXPECT_EQ(get(first, "a", "k"), "1");
  drop(first);
  EXPECT_EQ(head(), second->cfg_chain);
  EXPECT_EQ(get(second, "a", "k"), "1");
  drop(second);
  EXPECT_EQ(head(), nullptr);
}

// Deliberate: the process-wide record is subscribed to for good.
TEST_F(ConfigFiles, SubscriptionsAreNotGivenBack) {
  const zrvtest::TextFile file("");
  CS_CONFIG *const cfg = open_path(file.path());
  open_path("/no/such/file");
  drop(cfg);
  EXPECT_EQ(Application_global.ag_accesscnt, 2);
}

TEST_F(ConfigFiles, FileOnTheChainIsShared) {
  const zrvtest::TextFile file("[a]\nk = 1\n");
  CS_CONFIG *const first = open_path(file.path());
  zrvtest::IoProbe probe;
  be_first();
  CS_CONFIG *const second = open_path(file.path());
  be_first();
  CS_CONFIG *const third = open_path(file.path());
  EXPECT_EQ(probe.calls(), 0U);
  ASSERT_NE(third, nullptr);
  EXPECT_EQ(first->cfg_chain, third->cfg_chain);
  EXPECT_EQ(first->cfg_chain->cfgc_refcount, 3);
  EXPECT_EQ(first->cfg_chain->cfgc_handles, third);
  // The ring, newest first.
  EXPECT_EQ(third->next, second);
  EXPECT_EQ(second->next, first);
  EXPECT_EQ(first->next, third);
  EXPECT_EQ(third->prev, first);
  EXPECT_EQ(second->prev, third);
  EXPECT_EQ(first->prev, second);
  drop(third);
  EXPECT_EQ(first->cfg_chain->cfgc_handles, second);
  EXPECT_EQ(first->cfg_chain->cfgc_refcount, 2);
  EXPECT_EQ(second->next, first);
  EXPECT_EQ(second->prev, first);
  drop(first);
  EXPECT_EQ(get(second, "a", "k"), "1");
  EXPECT_EQ(second->next, second);
  drop(second);
  EXPECT_EQ(head(), nullptr);
}

TEST_F(ConfigFiles, NamesAreComparedAsTheyStand) {
  const zrvtest::TextFile file("");
  CS_CONFIG *const first = open_path(file.path());
  be_first();
  CS_CONFIG *const second = open_path("/" + string(file.path()));
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(head(), second->cfg_chain);
  EXPECT_EQ(head()->next, first->cfg_chain);
  EXPECT_EQ(first->cfg_chain->prev, second->cfg_chain);
  drop(second);
  EXPECT_EQ(head(), first->cfg_chain);
  EXPECT_EQ(head()->prev, nullptr);
  drop(first);
}

// Of one length, and in either order of their bytes.
TEST_F(ConfigFiles, NamesOfOneLength) {
  const zrvtest::TextFile file("");
  const string path = file.path();
  const size_t slash = path.rfind('/');
  const string one = path.substr(0, slash) + "/./" + path.substr(slash + 1);
  const string other = path.substr(0, slash) + "///" + path.substr(slash + 1);
  for (bool is_turned : {false, true}) {
    CS_CONFIG *const first = open_path(is_turned ? other : one);
    be_first();
    CS_CONFIG *const second = open_path(is_turned ? one : other);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(first->cfg_chain, second->cfg_chain);
    drop(second);
    drop(first);
  }
}

TEST_F(ConfigFiles, NameThatBeginsAnother) {
  std::ofstream(home + "/file") << "";
  std::ofstream(home + "/filename") << "";
  CS_CONFIG *const longer = open_path(home + "/filename");
  be_first();
  CS_CONFIG *const shorter = open_path(home + "/file");
  ASSERT_NE(longer, nullptr);
  ASSERT_NE(shorter, nullptr);
  EXPECT_NE(shorter->cfg_chain, longer->cfg_chain);
  drop(shorter);
  drop(longer);
}

TEST_F(ConfigFiles, FilesLeaveTheMiddleOfTheChain) {
  const zrvtest::TextFile a(""), b(""), c("");
  CS_CONFIG *const first = open_path(a.path());
  be_first();
  CS_CONFIG *const second = open_path(b.path());
  be_first();
  CS_CONFIG *const third = open_path(c.path());
  drop(second);
  EXPECT_EQ(head(), third->cfg_chain);
  EXPECT_EQ(head()->next, first->cfg_chain);
  EXPECT_EQ(first->cfg_chain->prev, third->cfg_chain);
  drop(first);
  EXPECT_EQ(head()->next, nullptr);
  drop(third);
}

TEST_F(ConfigFiles, EndOfTheProcessReleasesTheChain) {
  do_without_texts();
  zrvtest::AllocationProbe probe;
  const zrvtest::TextFile a("[a]\nk = 1\n"), b("");
  CS_CONFIG *const first = open_path(a.path());
  be_first();
  CS_CONFIG *const second = open_path(b.path());
  be_first();
  CsAppGlobal *global = nullptr;
  ASSERT_EQ(com_appglobal_alloc(&global, nullptr, COM_APPGLOBAL_STATIC), CS_SUCCEED);
  ASSERT_EQ(com_appglobal_drop(global, COM_APPGLOBAL_STATIC), CS_SUCCEED);
  EXPECT_EQ(probe.live_blocks(), 2U);
  for (CS_CONFIG *cfg : {first, second}) {
    EXPECT_EQ(get(cfg, "a", "k"), "status 0");
    EXPECT_EQ(comn_drop_cfg(cfg, COM_CFG_DROP_NORMAL), CS_FAIL);
  }
  EXPECT_EQ(reported().size(), 2U);
  EXPECT_EQ(take_numbers(), Numbers{"17040900"});
  EXPECT_EQ(probe.live_blocks(), 0U);
  EXPECT_EQ(comn_globdrop_cfg(nullptr), CS_SUCCEED);
}

// ---- the end of handles ----

TEST_F(ConfigFiles, DroppedFileLeavesNothing) {
  do_without_texts();
  zrvtest::AllocationProbe probe;
  const string bytes = "[a]\nk = 1\nk = 2\n[b]\ninclude = a\n[c]\nbad line\n";
  for (CS_INT option : {COM_CFG_DROP_NORMAL, COM_CFG_DROP_FORCE}) {
    CS_CONFIG *const cfg = open(bytes);
    take_reported();
    const size_t taken = probe.live_blocks();
    EXPECT_GT(taken, 10U);
    walk(cfg, "b", "k");
    EXPECT_EQ(comn_drop_cfg(cfg, option), CS_SUCCEED);
    EXPECT_EQ(take_reported(), Values());
  }
  EXPECT_EQ(probe.live_blocks(), 0U);
}

TEST_F(ConfigFiles, ForcedDropMakesOtherHandlesInert) {
  const zrvtest::TextFile file("[a]\nk = 1\nk = 2\n");
  CS_CONFIG *handles[3];
  for (CS_CONFIG *&cfg : handles) {
    be_first();
    cfg = open_path(file.path());
    ASSERT_NE(cfg, nullptr);
  }
  EXPECT_EQ(comn_drop_cfg(handles[1], COM_CFG_DROP_FORCE), CS_SUCCEED);
  EXPECT_EQ(take_reported(), Values{"17039369 comn_drop_cfg: forced"});
  EXPECT_EQ(head(), nullptr);
  for (CS_CONFIG *cfg : {handles[0], handles[2]}) {
    EXPECT_EQ(cfg->next, nullptr);
    EXPECT_EQ(cfg->prev, nullptr);
    EXPECT_EQ(cfg->cfg_chain, nullptr);
    EXPECT_EQ(get(cfg, "a", "k"), "status 0");
    int cursor = 0;
    EXPECT_EQ(comn_nextdrop_cfg(cfg, &cursor), CS_FAIL);
    EXPECT_EQ(comn_nextdrop_cfg(cfg, nullptr), CS_SUCCEED);
    EXPECT_EQ(take_reported(), Values());
    EXPECT_EQ(comn_drop_cfg(cfg, COM_CFG_DROP_FORCE), CS_FAIL);
    EXPECT_EQ(take_reported(), Values{"17040900 comn_drop_cfg: handle"});
  }
}

TEST_F(ConfigFiles, CursorOfAnInertHandleIsCleared) {
  const zrvtest::TextFile file("[a]\nk = 1\nk = 2\n");
  CS_CONFIG *const cfg = open_path(file.path());
  be_first();
  CS_CONFIG *const other = open_path(file.path());
  CS_VOID *next = nullptr;
  char value[4];
  const auto get = [&] {
    return comn_get_cfg(cfg, text("a"), 1, text("k"), 1, &next, value, sizeof value, nullptr);
  };
  ASSERT_EQ(get(), CS_SUCCEED);
  ASSERT_EQ(comn_drop_cfg(other, COM_CFG_DROP_FORCE), CS_SUCCEED);
  EXPECT_EQ(get(), CS_FAIL);
  EXPECT_EQ(next, nullptr);
  EXPECT_EQ(comn_drop_cfg(cfg, COM_CFG_DROP_NORMAL), CS_FAIL);
}

// ---- failures ----

TEST_F(ConfigFiles, EveryAllocationFails) {
  // Long enough for the buffer to grow.
  const zrvtest::TextFile file("[a]\nk = 1\nk = 2\n[b]\ninclude = a\nl = \"" + string(3000, 'x') +
                               "\" y\n");
  do_without_texts();
  CS_CONFIG *cfg = nullptr;
  int silent = 0;
  const size_t failed = zrvtest::fail_each_allocation(
      [&] { cfg = nullptr; },
      [&] {
        const CS_RETCODE result = init(file.path(), CS_LEN_NULLTERM, &cfg);
        if (result == CS_SUCCEED) {
          EXPECT_EQ(sections(cfg).size(), 2U);
          EXPECT_EQ(take_reported(), Values());
          return false;
        }
        EXPECT_EQ(result, CS_FAIL);
        EXPECT_EQ(cfg, nullptr);
        EXPECT_EQ(head(), nullptr);
        // All tell, but for the allocator of the context, which knows. What ends in the middle of a string
        // is an error of its own.
        Numbers numbers = take_numbers();
        numbers.erase("17039368");
        EXPECT_TRUE(numbers == Numbers{"17040898"} || numbers == Numbers{"17040899"} ||
                    numbers.empty());
        silent += numbers.empty();
        return true;
      },
      [&] { drop(cfg); });
  EXPECT_GT(failed, 40U);
  EXPECT_EQ(silent, 2); // failing once and from then on
}

// What the pool of a file takes comes in regions: whatever it holds may be the first of a new one.
TEST_F(ConfigFiles, EveryRegionFails) {
  do_without_texts();
  for (size_t lead = 0; lead < 4096; lead += 32) {
    SCOPED_TRACE(lead);
    const zrvtest::TextFile file("[x]\nlead = \"" + string(lead, 'x') +
                                 "\"\n[a]\nk = 1\nk = 2\n[b]\ninclude = a\nl = 3\n");
    CS_CONFIG *cfg = nullptr;
    EXPECT_GT(zrvtest::fail_each_allocation([&] { cfg = nullptr; },
                                            [&] {
                                              init(file.path(), CS_LEN_NULLTERM, &cfg);
                                              take_numbers();
                                              EXPECT_EQ(head() == nullptr, cfg == nullptr);
                                              return cfg == nullptr;
                                            },
                                            [&] { drop(cfg); }),
              40U);
  }
}

TEST_F(ConfigFiles, EveryReadFails) {
  const zrvtest::TextFile file("[a]\nk = 1\n[b]\nl = " + string(10'000, 'x') + "\n");
  size_t calls = 0, failed = 0;
  {
    zrvtest::IoProbe probe;
    drop(open_path(file.path()));
    calls = probe.calls();
  }
  EXPECT_GT(calls, 4U);
  for (size_t nth = 1; nth <= calls; ++nth) {
    zrvtest::IoProbe probe;
    probe.fail(nth);
    CS_CONFIG *const cfg = open_path(file.path());
    // A close that fails has no say in what was read.
    EXPECT_EQ(cfg != nullptr, nth == calls) << nth;
    Values reported = take_reported();
    if (cfg != nullptr) {
      EXPECT_EQ(reported, Values());
      drop(cfg);
    } else {
      ++failed;
      // Nothing else: the end of the input ends the line that it is in.
      EXPECT_EQ(reported, Values{"17040899 comn_init_cfg: <" + string(file.path()) + ">"});
    }
    EXPECT_EQ(probe.open_files(), 0U);
    EXPECT_EQ(head(), nullptr);
  }
  EXPECT_EQ(failed, calls - 1);
}

TEST_F(ConfigFiles, ShortReads) {
  const zrvtest::TextFile file("[a]\nk = 1\n");
  zrvtest::IoProbe probe;
  probe.limit_reads(1);
  CS_CONFIG *const cfg = open_path(file.path());
  ASSERT_NE(cfg, nullptr);
  EXPECT_EQ(get(cfg, "a", "k"), "1");
  drop(cfg);
}

// The older version of a context than lists have is no obstacle.
TEST_F(ConfigFiles, VersionOfTheContext) {
  const zrvtest::TextFile file("");
  CS_CONFIG *cfg = nullptr;
  for (CS_INT version : {114, 1099, 1100, 2000}) {
    context.ctxversion = version;
    ASSERT_EQ(init(file.path(), CS_LEN_NULLTERM, &cfg), CS_SUCCEED);
    EXPECT_EQ(static_cast<LM_CONTEXT *>(data(cfg)->lmctx)->cxtprop->version,
              std::max(version, 1100));
    drop(cfg);
  }
  context.ctxversion = 113;
  cfg = nullptr;
  EXPECT_ASSERTION("comcfg.cpp", CS_FAIL, init(file.path(), CS_LEN_NULLTERM, &cfg));
  EXPECT_EQ(cfg, nullptr);
}

TEST_F(ConfigFiles, ArgumentsAreChecked) {
  CS_CONFIG *cfg = nullptr;
  EXPECT_NULL_POINTER_CHECK("comcfg.cpp", CS_FAIL, comn_init_cfg(nullptr, text("x"), 1, &cfg));
  for (CS_INT length : {1, 512, 513, CS_LEN_NULLTERM})
    EXPECT_NULL_POINTER_CHECK("comcfg.cpp", CS_FAIL,
                              comn_init_cfg(&context, nullptr, length, &cfg));
  EXPECT_NULL_POINTER_CHECK("comcfg.cpp", CS_FAIL, comn_init_cfg(&context, text("x"), 1, nullptr));
  EXPECT_NULL_POINTER_CHECK("comcfg.cpp", CS_FAIL, comn_drop_cfg(nullptr, COM_CFG_DROP_NORMAL));
  CS_MALLOC_FUNC const allocator = std::exchange(context.ctxmalloc, nullptr);
  EXPECT_NULL_POINTER_CHECK("comcfg.cpp", CS_FAIL, init("/dev/null", CS_LEN_NULLTERM, &cfg));
  context.ctxmalloc = allocator;
  EXPECT_EQ(Application_global.ag_accesscnt, 0);
  cfg = open("[a]\nk = 1\n");
  for (CS_INT option : {0, 1, 35, 299, 301, -1})
    EXPECT_ASSERTION("comcfg.cpp", CS_FAIL, comn_drop_cfg(cfg, option));
  EXPECT_EQ(get(cfg, "a", "k"), "1");
  drop(cfg);
}

} // namespace
