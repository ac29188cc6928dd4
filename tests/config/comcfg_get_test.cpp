// Look-ups: sections and the one that answers for others, cursors, includes.
#include "allocation_probe.h"
#include "check_trap.h"
#include "config_fixture.h"
#include "guarded_buffer.h"
#include "traced_exit.h"

namespace {

using std::string;
using zrvtest::text;
using Values = std::vector<string>;

class ConfigGet : public zrvtest::Config {
protected:
  void load(const string &file) {
    cfg = open(file);
    ASSERT_NE(cfg, nullptr);
    EXPECT_EQ(take_reported(), Values());
  }
  ~ConfigGet() override {
    if (cfg != nullptr)
      drop(cfg);
    EXPECT_EQ(reported(), Values());
  }

  string get(const string &section, const string &entry) {
    return Config::get(cfg, section, entry);
  }
  Values walk(const string &section, const string &entry) {
    return Config::walk(cfg, section, entry);
  }

  CS_RETCODE get_into(CS_CHAR *value, CS_INT valuelen, CS_INT *outlen) {
    return comn_get_cfg(cfg, text("a"), 1, text("k"), 1, nullptr, value, valuelen, outlen);
  }

  // One step of a walk.
  CS_RETCODE step(CS_VOID *&next, const char *section, const char *entry, string &value) {
    char buffer[64];
    CS_INT length = 0;
    const CS_RETCODE result = comn_get_cfg(cfg, text(section), CS_LEN_NULLTERM, text(entry),
                                           CS_LEN_NULLTERM, &next, buffer, sizeof buffer, &length);
    value = result == CS_SUCCEED ? string(buffer, static_cast<size_t>(length)) : "";
    return result;
  }

  CS_INT pool_size() { return static_cast<MM_HANDLE *>(data(cfg)->mpool)->mmh_head->mph_totalsize; }

  CS_CONFIG *cfg = nullptr;
};

const string end = "status -204", fail = "status 0";

// ---- one value ----

TEST_F(ConfigGet, FirstValue) {
  load("[a]\nk = 1\nk = 2\nl = x\n[b]\nk = 3\n");
  EXPECT_EQ(get("a", "k"), "1");
  EXPECT_EQ(get("a", "l"), "x");
  EXPECT_EQ(get("b", "k"), "3");
  EXPECT_EQ(get("b", "l"), end);
  EXPECT_EQ(get("b", "K"), end);
  EXPECT_EQ(get("b", ""), end);
}

TEST_F(ConfigGet, LengthsOfNames) {
  load("[ab]\nkl = 1\n[a]\nk = 2\n");
  char value[8];
  const auto find = [&](CS_INT sectionlen, CS_INT entrylen) {
    value[0] = '\0';
    const CS_RETCODE result = comn_get_cfg(cfg, text("ab"), sectionlen, text("kl"), entrylen,
                                           nullptr, value, sizeof value, nullptr);
    return result == CS_SUCCEED ? value : "status " + std::to_string(result);
  };
  EXPECT_EQ(find(CS_LEN_NULLTERM, CS_LEN_NULLTERM), "1");
  EXPECT_EQ(find(2, 2), "1");
  EXPECT_EQ(find(1, 1), "2");
  EXPECT_EQ(find(2, 1), end);
  EXPECT_EQ(find(2, 0), end);
  EXPECT_EQ(find(2, -1), end);
  // Without a length there is no message.
  EXPECT_EQ(find(0, 2), fail);
  EXPECT_EQ(find(-1, 2), fail);
  EXPECT_EQ(comn_get_cfg(cfg, nullptr, 0, nullptr, 0, nullptr, value, sizeof value, nullptr),
            CS_FAIL);
}

TEST_F(ConfigGet, ValueAndItsRoom) {
  load("[a]\nk = value\n");
  for (size_t room = 0; room <= 8; ++room) {
    zrvtest::GuardedBuffer buffer(room);
    CS_INT length = -1;
    const CS_RETCODE result =
        get_into(reinterpret_cast<CS_CHAR *>(buffer.data()), static_cast<CS_INT>(room), &length);
    EXPECT_EQ(result, room < 5 ? CS_CONV_TRUNCATED : CS_SUCCEED) << room;
    EXPECT_EQ(length, 5);
    const string stored(reinterpret_cast<const char *>(buffer.data()), std::min<size_t>(room, 6));
    EXPECT_EQ(stored, string("value\0", 6).substr(0, room)) << room;
  }
  char value[8] = "xyz";
  EXPECT_EQ(get_into(value, -5, nullptr), CS_CONV_TRUNCATED);
  EXPECT_STREQ(value, "xyz");
}

TEST_F(ConfigGet, EmptyValue) {
  load("[a]\nk = \"\"\n");
  char value[8] = "xyz";
  CS_INT length = -1;
  EXPECT_EQ(get_into(value, 0, &length), CS_SUCCEED);
  EXPECT_EQ(length, 0);
  EXPECT_STREQ(value, "xyz");
  EXPECT_EQ(get_into(value, 1, &length), CS_SUCCEED);
  EXPECT_STREQ(value, "");
}

TEST_F(ConfigGet, NothingIsStoredWithoutAValue) {
  load("[a]\nl = 1\n");
  char value[8] = "xyz";
  CS_INT length = -1;
  EXPECT_EQ(get_into(value, sizeof value, &length), CS_END_DATA);
  EXPECT_STREQ(value, "xyz");
  EXPECT_EQ(length, -1);
}

// ---- sections that do not exist ----

TEST_F(ConfigGet, MissingSectionIsReported) {
  load("[a]\n");
  EXPECT_EQ(get("b", "k"), fail);
  EXPECT_EQ(take_reported(), Values{"17040903 comn_get_cfg: <b>"});
  const string longest(254, 'x');
  EXPECT_EQ(get(longest + "y", "k"), fail);
  EXPECT_EQ(take_reported(), Values{"17040903 comn_get_cfg: <" + longest + ">"});
}

TEST_F(ConfigGet, EmptyFileHasNoSection) {
  load("");
  EXPECT_EQ(get("a", "k"), fail);
  EXPECT_EQ(take_reported(), Values{"17040903 comn_get_cfg: <a>"});
}

TEST_F(ConfigGet, DefaultSectionAnswersForOthers) {
  load("[NAMED_APP_DEFAULT]\nk = d\n[a]\nl = 1\n");
  EXPECT_EQ(get("b", "k"), "d");
  EXPECT_EQ(get("NAMED_APP_DEFAULT", "k"), "d");
  EXPECT_EQ(get("b", "l"), end);
  // Not for an entry that a section lacks.
  EXPECT_EQ(get("a", "k"), end);
  EXPECT_EQ(get("", "k"), fail);
}

TEST_F(ConfigGet, NewestSectionOfAName) {
  load("[a]\nk = 1\nl = 1\n[a]\nk = 2\n");
  EXPECT_EQ(get("a", "k"), "2");
  EXPECT_EQ(get("a", "l"), end);
}

// ---- cursors ----

TEST_F(ConfigGet, CursorWalksAllValues) {
  load("[a]\nk = 1\nl = x\nk = 2\nk = 1\n");
  EXPECT_EQ(walk("a", "k"), (Values{"1", "2", "1"}));
  EXPECT_EQ(walk("a", "l"), Values{"x"});
  EXPECT_EQ(walk("a", "m"), Values());
  EXPECT_EQ(walk("b", "k"), Values{fail});
  EXPECT_EQ(take_reported().size(), 1U);
}

TEST_F(ConfigGet, CursorGoesOnBehindACutValue) {
  load("[a]\nk = long\nk = s\n");
  char value[2];
  CS_INT length = 0;
  CS_VOID *next = nullptr;
  const auto get = [&] {
    return comn_get_cfg(cfg, text("a"), 1, text("k"), 1, &next, value, sizeof value, &length);
  };
  EXPECT_EQ(get(), CS_CONV_TRUNCATED);
  EXPECT_EQ(length, 4);
  ASSERT_NE(next, nullptr);
  EXPECT_EQ(get(), CS_SUCCEED);
  EXPECT_STREQ(value, "s");
  EXPECT_EQ(get(), CS_END_DATA);
  EXPECT_EQ(next, nullptr);
}

TEST_F(ConfigGet, WalksAreIndependent) {
  load("[a]\nk = 1\nk = 2\nk = 3\n");
  CS_VOID *one = nullptr, *other = nullptr;
  string value;
  step(one, "a", "k", value);
  step(one, "a", "k", value);
  EXPECT_EQ(value, "2");
  step(other, "a", "k", value);
  EXPECT_EQ(value, "1");
  EXPECT_EQ(get("a", "k"), "1");
  step(one, "a", "k", value);
  EXPECT_EQ(value, "3");
  step(other, "a", "k", value);
  EXPECT_EQ(value, "2");
  EXPECT_EQ(comn_nextdrop_cfg(cfg, one), CS_SUCCEED);
  EXPECT_EQ(comn_nextdrop_cfg(cfg, other), CS_SUCCEED);
  EXPECT_EQ(comn_nextdrop_cfg(cfg, nullptr), CS_SUCCEED);
}

// ---- includes ----

TEST_F(ConfigGet, IncludesHaveWhatASectionLacks) {
  load("[a]\nk = a1\nk = a2\nl = al\n[b]\nk = b1\nm = bm\n[c]\ninclude = a\nk = c\ninclude = b\n");
  EXPECT_EQ(get("c", "k"), "c");
  EXPECT_EQ(get("c", "l"), "al");
  EXPECT_EQ(get("c", "m"), "bm");
  EXPECT_EQ(get("c", "n"), end);
  EXPECT_EQ(walk("c", "k"), (Values{"c", "a1", "a2", "b1"}));
  EXPECT_EQ(walk("c", "l"), Values{"al"});
  EXPECT_EQ(walk("c", "m"), Values{"bm"});
  EXPECT_EQ(walk("c", "n"), Values());
}

TEST_F(ConfigGet, IncludesOfIncludesComeFirst) {
  load("[a]\nk = a\n[b]\nk = b\ninclude = a\n[c]\nk = c\n[d]\nk = d\ninclude = b\ninclude = c\n");
  EXPECT_EQ(walk("d", "k"), (Values{"d", "b", "a", "c"}));
}

TEST_F(ConfigGet, SectionIncludedTwiceIsWalkedTwice) {
  load("[a]\nk = a\n[b]\ninclude = a\ninclude = a\n");
  EXPECT_EQ(walk("b", "k"), (Values{"a", "a"}));
}

// Deliberate: behind values that were found through a section without any, what that section includes
// besides is passed over, and the walk goes on with the outermost section.
TEST_F(ConfigGet, WalkSkipsTheLevelsInBetween) {
  load("[a]\nk = a\n[b]\nk = b\n[m]\ninclude = a\ninclude = b\n[c]\nk = c\n"
       "[d]\ninclude = m\ninclude = c\n");
  EXPECT_EQ(walk("m", "k"), (Values{"a", "b"}));
  EXPECT_EQ(walk("d", "k"), (Values{"a", "c"}));
}

// With an entry of its own a section in between is a place to come back to.
TEST_F(ConfigGet, WalkComesBackToLevelsWithValues) {
  load("[a]\nk = a\n[b]\nk = b\n[m]\nk = m\ninclude = a\ninclude = b\n[d]\ninclude = m\n");
  EXPECT_EQ(walk("d", "k"), (Values{"m", "a", "b"}));
}

// Deliberate: the cursors of the levels in between stay in the pool, one for each walk.
TEST_F(ConfigGet, SkippedCursorsStayUntilTheFileGoes) {
  load("[a]\nk = a\n[m]\ninclude = a\n[d]\ninclude = m\n[e]\ninclude = a\n");
  const auto growth = [&](const char *section) {
    const CS_INT before = pool_size();
    for (int i = 0; i < 1000; ++i)
      walk(section, "k");
    return pool_size() - before;
  };
  EXPECT_LE(growth("e"), 10'000);
  EXPECT_GE(growth("d"), 1000 * static_cast<CS_INT>(sizeof(CfgNext)) / 2);
}

// A look-up without a cursor leaves nothing behind, however deep it goes.
TEST_F(ConfigGet, LookUpWithoutACursorLeavesNothing) {
  load("[a]\nk = a\n[m]\ninclude = a\n[d]\ninclude = m\n");
  EXPECT_EQ(get("d", "k"), "a");
  const CS_INT before = pool_size();
  for (int i = 0; i < 1000; ++i) {
    EXPECT_EQ(get("d", "k"), "a");
    EXPECT_EQ(get("d", "x"), end);
  }
  EXPECT_EQ(pool_size(), before);
}

TEST_F(ConfigGet, CursorsOfDeepWalksAreReleased) {
  load("[a]\nk = a1\nk = a2\n[m]\nk = m\ninclude = a\n[d]\nk = d\ninclude = m\n");
  walk("d", "k");
  const CS_INT before = pool_size();
  for (int steps = 1; steps <= 4; ++steps)
    for (int i = 0; i < 500; ++i) {
      CS_VOID *next = nullptr;
      string value;
      for (int j = 0; j < steps; ++j)
        EXPECT_EQ(step(next, "d", "k", value), CS_SUCCEED);
      EXPECT_EQ(value, (Values{"d", "m", "a1", "a2"})[static_cast<size_t>(steps - 1)]);
      EXPECT_EQ(comn_nextdrop_cfg(cfg, next), CS_SUCCEED);
    }
  EXPECT_EQ(pool_size(), before);
}

TEST_F(ConfigGet, DeepIncludes) {
  string file = "[s0]\nk = v\n";
  for (int i = 1; i < 3'000; ++i)
    file += "[s" + std::to_string(i) + "]\ninclude = s" + std::to_string(i - 1) + "\n";
  load(file);
  EXPECT_EQ(get("s2999", "k"), "v");
  EXPECT_EQ(get("s2999", "l"), end);
  EXPECT_EQ(walk("s2999", "k"), Values{"v"});
}

// A later section of the same name takes the place of one that is included.
TEST_F(ConfigGet, CircleThroughASectionOfTheSameName) {
  load("[a]\nk = 1\n[b]\ninclude = a\nm = b\n[a]\ninclude = b\nl = 2\n");
  EXPECT_EQ(get("a", "l"), "2");
  EXPECT_EQ(get("b", "l"), "2");
  EXPECT_EQ(get("a", "m"), "b");
  EXPECT_EQ(get("a", "k"), fail);
  EXPECT_EQ(get("b", "k"), fail);
  EXPECT_EQ(walk("a", "k"), Values{fail});
  // Every round has the value once more, until the walk is deeper than there are sections.
  EXPECT_EQ(walk("a", "l"), (Values{"2", "2", fail}));
}

// ---- failures ----

TEST_F(ConfigGet, EveryAllocationFails) {
  do_without_texts();
  const string file = "[a]\nk = 1\n[b]\ninclude = a\n[c]\nl = x\ninclude = b\n";
  const size_t failed = zrvtest::fail_each_allocation(
      [&] { cfg = open(file); },
      [&] {
        // The pool has room for some cursors; what fails is the region for more.
        std::vector<CS_VOID *> cursors;
        bool is_reported = false;
        for (int i = 0; i < 400 && !is_reported; ++i) {
          CS_VOID *next = nullptr;
          string value;
          const CS_RETCODE result = step(next, "c", "k", value);
          is_reported = result == CS_FAIL;
          EXPECT_EQ(result == CS_SUCCEED, next != nullptr);
          EXPECT_EQ(value, is_reported ? "" : "1");
          cursors.push_back(next);
        }
        for (CS_VOID *cursor : cursors)
          EXPECT_EQ(comn_nextdrop_cfg(cfg, cursor), CS_SUCCEED);
        EXPECT_EQ(take_numbers(), is_reported ? std::set<string>{"17040898"} : std::set<string>());
        return is_reported;
      },
      [&] { drop(std::exchange(cfg, nullptr)); });
  EXPECT_GT(failed, 2U);
}

TEST_F(ConfigGet, FailureOfAList) {
  load("[a]\nk = 1\n");
  auto *const section = const_cast<CfgSection *>(records<CfgSection>(data(cfg)->sections)[0]);
  for (CS_VOID **list : {&data(cfg)->sections, &section->entries}) {
    CS_VOID *const kept = std::exchange(*list, nullptr);
    char value[8] = "xyz";
    CS_INT length = -5;
    CS_VOID *next = nullptr;
    EXPECT_EQ(comn_get_cfg(cfg, text("a"), 1, text("k"), 1, &next, value, 8, &length), CS_FAIL);
    EXPECT_EQ(take_reported(), Values{"17040897 comn_get_cfg: list"});
    EXPECT_EQ(next, nullptr);
    EXPECT_EQ(length, -5);
    EXPECT_STREQ(value, "xyz");
    *list = kept;
  }
}

TEST_F(ConfigGet, ArgumentsAreChecked) {
  load("[a]\nk = 1\n");
  char value[8] = "xyz";
  const auto get = [&](CS_CONFIG *handle, CS_CHAR *section, CS_CHAR *entry, CS_CHAR *buffer) {
    return comn_get_cfg(handle, section, 1, entry, 1, nullptr, buffer, 8, nullptr);
  };
  EXPECT_NULL_POINTER_CHECK("comcfg_get.cpp", CS_FAIL, get(nullptr, text("a"), text("k"), value));
  EXPECT_NULL_POINTER_CHECK("comcfg_get.cpp", CS_FAIL, get(cfg, nullptr, text("k"), value));
  EXPECT_NULL_POINTER_CHECK("comcfg_get.cpp", CS_FAIL, get(cfg, text("a"), nullptr, value));
  EXPECT_NULL_POINTER_CHECK("comcfg_get.cpp", CS_FAIL, get(cfg, text("a"), text("k"), nullptr));
  for (const CS_INT length : {-1, CS_LEN_NULLTERM}) {
    EXPECT_NULL_POINTER_CHECK(
        "comcfg_get.cpp", CS_FAIL,
        comn_get_cfg(cfg, nullptr, length, text("k"), 1, nullptr, value, 8, nullptr));
    EXPECT_NULL_POINTER_CHECK(
        "comcfg_get.cpp", CS_FAIL,
        comn_get_cfg(cfg, text("a"), 1, nullptr, length, nullptr, value, 8, nullptr));
  }
  EXPECT_NULL_POINTER_CHECK("comcfg_get.cpp", CS_FAIL, comn_nextdrop_cfg(nullptr, nullptr));
  EXPECT_STREQ(value, "xyz");
}

} // namespace
