// The stack walk: real frames, made-up ones, and memory that is not there.
//
// This unit is built without tail calls and its functions are exported, so that the frames are the
// ones written here and have names.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <regex>
#include <string>
#include <vector>

#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "check_trap.h"
#include "zrvcomn/comnlib.h"

namespace {

std::vector<std::string> lines;
size_t stop_after; // lines to take before the walk is told to stop; 0 takes all

CS_RETCODE take_line(CS_CHAR *text, CS_INT len) {
  EXPECT_EQ(std::strlen(text), static_cast<size_t>(len));
  lines.emplace_back(text, static_cast<size_t>(len));
  return lines.size() == stop_after ? CS_FAIL : CS_SUCCEED;
}

const std::vector<std::string> &walk(CS_VOID *fp, CS_INT depth, size_t stop = 0) {
  lines.clear();
  stop_after = stop;
  EXPECT_EQ(comn_dbg_stack(nullptr, fp, depth, take_line), CS_SUCCEED);
  return lines;
}

std::string hex(uintptr_t value) {
  char text[32];
  std::snprintf(text, sizeof text, "0x%8.8lx", static_cast<unsigned long>(value));
  return text;
}

bool contains(const std::string &text, const std::string &part) {
  return text.find(part) != std::string::npos;
}

// A stack of our own making: each frame has a saved frame pointer, a return address and some words.
struct Frame {
  uintptr_t saved, return_address, words[6];
};

uintptr_t address_of(const void *object) {
  return reinterpret_cast<uintptr_t>(object);
}

} // namespace

// The known chain: zrvtest_outer calls zrvtest_recurse, which calls itself `levels` times and
// walks.
extern "C" {
__attribute__((noinline)) void zrvtest_recurse(int levels, CS_INT depth) {
  if (levels > 1)
    zrvtest_recurse(levels - 1, depth);
  else
    walk(nullptr, depth);
  asm volatile("" ::: "memory");
}

__attribute__((noinline)) void zrvtest_outer(int levels, CS_INT depth) {
  zrvtest_recurse(levels, depth);
  asm volatile("" ::: "memory");
}

// Walks from its own frame, which is handed over.
__attribute__((noinline)) void zrvtest_from_own_frame(CS_INT depth) {
  walk(__builtin_frame_address(0), depth);
  asm volatile("" ::: "memory");
}

__attribute__((noinline)) void zrvtest_print_to_stderr(CS_INT depth) {
  comn_dbg_stack(nullptr, nullptr, depth, nullptr);
  asm volatile("" ::: "memory");
}
}

// The caller of comn_dbg_stack is walk(), so the frames begin with where walk() returns to.
TEST(StackWalk, RealFrames) {
  zrvtest_outer(5, 100);
  ASSERT_GE(lines.size(), 9U);
  EXPECT_TRUE(std::regex_match(lines[0], std::regex("FramePointer: 0x[0-9a-f]{8,16}"))) << lines[0];
  for (size_t i = 1; i <= 5; ++i)
    EXPECT_TRUE(contains(lines[i], "zrvtest_recurse ")) << i << ": " << lines[i];
  EXPECT_TRUE(contains(lines[6], "zrvtest_outer ")) << lines[6];
  EXPECT_TRUE(contains(lines[7], "StackWalk_RealFrames")) << lines[7];
  const std::regex pattern("0x[0-9a-f]{8,16} zrvtest_recurse      "
                           "\\((0x[0-9a-f]{8,16}, ){4}0x[0-9a-f]{8,16}\\) \\+0x[1-9a-f][0-9a-f]*");
  EXPECT_TRUE(std::regex_match(lines[1], pattern)) << lines[1];
}

TEST(StackWalk, LongRecursion) {
  zrvtest_outer(500, 1000);
  ASSERT_GT(lines.size(), 502U);
  EXPECT_TRUE(contains(lines[500], "zrvtest_recurse "));
  EXPECT_TRUE(contains(lines[501], "zrvtest_outer "));
}

TEST(StackWalk, DepthCountsFrames) {
  zrvtest_outer(5, 1);
  EXPECT_EQ(lines.size(), 2U);
  zrvtest_outer(5, 3);
  EXPECT_EQ(lines.size(), 4U);
  zrvtest_outer(5, 0);
  EXPECT_EQ(lines.size(), 0U) << "not even the first line";
}

TEST(StackWalk, NegativeDepthHasNoFrames) {
  zrvtest_outer(5, -1);
  EXPECT_EQ(lines.size(), 1U);
}

TEST(StackWalk, GivenFramePointer) {
  zrvtest_from_own_frame(1);
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_TRUE(contains(lines[1], "StackWalk_GivenFramePointer")) << lines[1];
}

TEST(StackWalk, CallbackEndsTheWalk) {
  void *fp = __builtin_frame_address(0);
  EXPECT_EQ(walk(fp, 100, 1).size(), 1U);
  EXPECT_EQ(walk(fp, 100, 2).size(), 2U);
  EXPECT_EQ(walk(fp, 100, 3).size(), 3U);
}

// Only 0 ends the walk; a negative result does not.
TEST(StackWalk, OtherResultsGoOn) {
  static int calls;
  calls = 0;
  const auto fail = [](CS_CHAR *, CS_INT) -> CS_RETCODE {
    ++calls;
    return CS_MEM_ERROR;
  };
  EXPECT_EQ(comn_dbg_stack(nullptr, __builtin_frame_address(0), 2, fail), CS_SUCCEED);
  EXPECT_EQ(calls, 3);
}

TEST(StackWalk, DefaultWritesLinesToStandardError) {
  zrvtest::DescriptorCapture capture(2);
  zrvtest_print_to_stderr(1);
  const std::string text = capture.finish();
  const std::regex pattern(
      "FramePointer: 0x[0-9a-f]{8,16}\n"
      "0x[0-9a-f]{8,16} \\w*StackWalk_DefaultWritesLines\\w*TestBody\\w* "
      "\\((0x[0-9a-f]{8,16}, ){4}0x[0-9a-f]{8,16}\\) \\+0x[1-9a-f][0-9a-f]*\n");
  EXPECT_TRUE(std::regex_match(text, pattern)) << text;
  zrvtest::DescriptorCapture nothing(2);
  EXPECT_EQ(comn_dbg_stack(nullptr, nullptr, 0, nullptr), CS_SUCCEED);
  EXPECT_EQ(nothing.finish(), "");
}

TEST(StackWalk, MadeUpFrames) {
  Frame frames[3] = {{address_of(&frames[1]), 0x11, {1, 2, 3, 4, 5, 6}},
                     {address_of(&frames[2]), 0x22, {0xa, 0xb, 0xc, 0xd, 0xe, 0xf}},
                     {0, 0x33, {}}};
  const auto &text = walk(frames, 10);
  ASSERT_EQ(text.size(), 3U);
  EXPECT_EQ(text[0], "FramePointer: " + hex(address_of(frames)));
  // Nothing lies at 0x11, so no symbol: the address and the words behind it.
  EXPECT_EQ(text[1], "0x00000011 (0x00000001, 0x00000002, 0x00000003, 0x00000004, 0x00000005)");
  EXPECT_EQ(text[2], "0x00000022 (0x0000000a, 0x0000000b, 0x0000000c, 0x0000000d, 0x0000000e)");
}

// A symbol stands in 20 columns, with the distance from where it begins.
TEST(StackWalk, SymbolOfAFrame) {
  Frame next = {0, 0, {}};
  const uintptr_t in_function = address_of(reinterpret_cast<void *>(&comn_typelen)) + 0x1b;
  Frame frame = {address_of(&next), in_function, {1, 2, 3, 4, 5, 6}};
  EXPECT_EQ(walk(&frame, 1)[1],
            hex(in_function) +
                " comn_typelen         "
                "(0x00000001, 0x00000002, 0x00000003, 0x00000004, 0x00000005) +0x1b");
}

// A chain that leads back is walked until the depth is used up.
TEST(StackWalk, CyclicChainEndsWithTheDepth) {
  Frame frames[2] = {{address_of(&frames[1]), 0x11, {}}, {address_of(&frames[0]), 0x22, {}}};
  EXPECT_EQ(walk(frames, 7).size(), 8U);
  Frame self = {address_of(&self), 0x11, {}};
  EXPECT_EQ(walk(&self, 7).size(), 8U);
}

TEST(StackWalk, BadFramePointersPrintTheFirstLineAlone) {
  const uintptr_t bad[] = {
      1, 4095, 4096, 0x10000, UINTPTR_MAX, UINTPTR_MAX - sizeof(void *), UINTPTR_MAX / 2 + 1};
  for (const uintptr_t fp : bad) {
    const auto &text = walk(reinterpret_cast<CS_VOID *>(fp), 10);
    ASSERT_EQ(text.size(), 1U) << fp;
    EXPECT_EQ(text[0], "FramePointer: " + hex(fp));
  }
}

TEST(StackWalk, ChainIntoUnmappedMemoryEnds) {
  for (const uintptr_t next : {uintptr_t{0x10000}, UINTPTR_MAX - 3, uintptr_t{4096}}) {
    Frame frame = {next, 0x11, {1, 2, 3, 4, 5, 6}};
    const auto &text = walk(&frame, 10);
    ASSERT_EQ(text.size(), 2U);
    // The next frame does not look valid, so the words are left out.
    EXPECT_EQ(text[1], "0x00000011 ()");
  }
}

namespace {

// Two pages of which the second cannot be read.
class Boundary : public testing::Test {
protected:
  Boundary() : page(static_cast<size_t>(sysconf(_SC_PAGESIZE))) {
    base = static_cast<char *>(
        mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    EXPECT_NE(base, MAP_FAILED);
    mprotect(base + page, page, PROT_NONE);
  }
  ~Boundary() override { munmap(base, 2 * page); }

  // Makes a frame of two words that ends `bytes_left` bytes before the unreadable page.
  char *frame_before_end(size_t bytes_left, uintptr_t saved) {
    char *frame = base + page - bytes_left - 2 * sizeof(uintptr_t);
    const uintptr_t words[2] = {saved, 0x11};
    std::memcpy(frame, words, sizeof words);
    return frame;
  }

  size_t page;
  char *base;
};

using FrameInfo = Boundary;

} // namespace

TEST_F(FrameInfo, ReadsNoByteBehindTheMapping) {
  Frame next = {0, 0, {}};
  for (size_t left = 0; left < 7 * sizeof(uintptr_t); ++left) {
    COMN_FRAME_INFO info;
    CS_VOID *following = nullptr;
    ASSERT_EQ(comn__get_frame_info(frame_before_end(left, address_of(&next)), &info, &following),
              CS_SUCCEED)
        << left;
    EXPECT_EQ(info.fi_address, reinterpret_cast<CS_VOID *>(uintptr_t{0x11}));
    EXPECT_EQ(following, &next);
    EXPECT_EQ(info.fi_args[0] != '\0', left >= 5 * sizeof(uintptr_t)) << left;
  }
}

TEST_F(FrameInfo, FrameAcrossTheEndOfTheMappingFails) {
  COMN_FRAME_INFO info;
  for (size_t inside = 0; inside < 2 * sizeof(uintptr_t); ++inside)
    EXPECT_EQ(comn__get_frame_info(base + page - inside, &info, nullptr), CS_FAIL) << inside;
}

// Any value can stand in a frame pointer, an odd one too.
TEST_F(FrameInfo, UnalignedFrame) {
  Frame next = {0, 0, {}};
  for (size_t left = 0; left < sizeof(uintptr_t); ++left) {
    COMN_FRAME_INFO info;
    EXPECT_EQ(comn__get_frame_info(frame_before_end(101 + left, address_of(&next)), &info, nullptr),
              CS_SUCCEED);
  }
}

TEST_F(FrameInfo, FieldByField) {
  Frame next = {0, 0, {}};
  const uintptr_t inside_function = address_of(reinterpret_cast<void *>(&comn_typelen)) + 1;
  Frame frame = {address_of(&next), inside_function, {1, 0xabcdef, 3, 4, 0xffffffff, 6}};
  COMN_FRAME_INFO info;
  std::memset(&info, 0x5A, sizeof info);
  CS_VOID *following = nullptr;
  ASSERT_EQ(comn__get_frame_info(&frame, &info, &following), CS_SUCCEED);
  EXPECT_EQ(info.fi_address, reinterpret_cast<CS_VOID *>(inside_function));
  EXPECT_STREQ(info.fi_symbol, "comn_typelen");
  EXPECT_EQ(info.fi_offset, 1U);
  EXPECT_TRUE(contains(info.fi_module, "libzrvcomn.so")) << info.fi_module;
  EXPECT_STREQ(info.fi_args, "0x00000001, 0x00abcdef, 0x00000003, 0x00000004, 0xffffffff");
  EXPECT_EQ(following, &next);
}

TEST_F(FrameInfo, WidestWordsFit) {
  Frame next = {0, 0, {}};
  Frame frame = {address_of(&next), UINTPTR_MAX, {}};
  std::memset(frame.words, 0xFF, sizeof frame.words);
  COMN_FRAME_INFO info;
  ASSERT_EQ(comn__get_frame_info(&frame, &info, nullptr), CS_SUCCEED);
  const std::string word = hex(UINTPTR_MAX);
  EXPECT_EQ(info.fi_args, word + ", " + word + ", " + word + ", " + word + ", " + word);
  EXPECT_EQ(info.fi_address, reinterpret_cast<CS_VOID *>(UINTPTR_MAX));
}

TEST_F(FrameInfo, UnknownModule) {
  Frame next = {0, 0, {}};
  Frame frame = {address_of(&next), 0x11, {}};
  COMN_FRAME_INFO info;
  ASSERT_EQ(comn__get_frame_info(&frame, &info, nullptr), CS_SUCCEED);
  EXPECT_STREQ(info.fi_module, "<unknown>");
  EXPECT_EQ(info.fi_symbol, nullptr);
  EXPECT_EQ(info.fi_offset, 0U);
}

// The words stand only where the next frame looks valid.
TEST_F(FrameInfo, NoWordsWithoutANextFrame) {
  Frame frame = {0x10000, 0x11, {1, 2, 3, 4, 5, 6}};
  COMN_FRAME_INFO info;
  CS_VOID *following = nullptr;
  ASSERT_EQ(comn__get_frame_info(&frame, &info, &following), CS_SUCCEED);
  EXPECT_STREQ(info.fi_args, "");
  EXPECT_EQ(following, reinterpret_cast<CS_VOID *>(uintptr_t{0x10000}));
}

TEST_F(FrameInfo, BadFrames) {
  Frame next = {0, 0, {}};
  const struct {
    uintptr_t saved, return_address;
    CS_RETCODE result;
  } cases[] = {{0, 0x11, CS_FAIL},
               {1, 0x11, CS_FAIL},
               {4095, 0x11, CS_FAIL},
               {4096, 0x11, CS_SUCCEED},
               {address_of(&next), 0, CS_FAIL},
               {address_of(&next), 1, CS_SUCCEED}};
  for (const auto &row : cases) {
    Frame frame = {row.saved, row.return_address, {}};
    COMN_FRAME_INFO info;
    std::memset(&info, 0x5A, sizeof info);
    CS_VOID *following = &frame;
    EXPECT_EQ(comn__get_frame_info(&frame, &info, &following), row.result) << row.saved;
    if (row.result == CS_FAIL) {
      EXPECT_EQ(following, &frame) << "written on failure";
    }
  }
  COMN_FRAME_INFO info;
  for (const uintptr_t fp : {uintptr_t{0}, uintptr_t{1}, uintptr_t{4095}, uintptr_t{4096}})
    EXPECT_EQ(comn__get_frame_info(reinterpret_cast<CS_VOID *>(fp), &info, nullptr), CS_FAIL);
}

TEST_F(FrameInfo, NullInfoIsChecked) {
  Frame frame = {4096, 0x11, {}};
  EXPECT_NULL_POINTER_CHECK("lin32stack.cpp", CS_FAIL,
                            comn__get_frame_info(&frame, nullptr, nullptr));
}

// Reading takes no descriptor, so a process that has none left can still be looked at.
TEST_F(FrameInfo, NeedsNoDescriptor) {
  rlimit limit;
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
  const rlimit none = {0, limit.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
  EXPECT_EQ(dup(2), -1);
  const size_t frames = walk(__builtin_frame_address(0), 3).size();
  EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
  EXPECT_EQ(frames, 4U);
}
