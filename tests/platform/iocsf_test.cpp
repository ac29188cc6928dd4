// Files that are read byte by byte.
#include <climits>

#include "allocation_probe.h"
#include "guarded_buffer.h"
#include "io_probe.h"
#include "text_file.h"
#include "zrvcomn/zrvintl.h"

namespace {

using std::string;

string read_all(INTL_IOCS *iocs, size_t size, size_t count) {
  string result;
  for (;;) {
    zrvtest::GuardedBuffer buffer(size * count);
    const int items = intl_iocsfread(buffer.data(), size, count, iocs);
    if (items <= 0)
      return items == 0 ? result : "status " + std::to_string(items);
    result.append(reinterpret_cast<const char *>(buffer.data()), static_cast<size_t>(items) * size);
  }
}

TEST(Iocsf, ReadsItems) {
  string bytes;
  for (int i = 0; i < 10'000; ++i)
    bytes += static_cast<char>(i * 7);
  const zrvtest::TextFile file(bytes);
  for (const auto &[size, count] : std::initializer_list<std::pair<size_t, size_t>>{
           {1, 1}, {1, 3}, {3, 1}, {7, 11}, {4096, 1}, {1, 4096}, {1, 5000}, {1, 20'000}}) {
    INTL_IOCS *const iocs = intl_iocsfopen(file.path(), INTL_IOCS_READ);
    ASSERT_NE(iocs, nullptr);
    // What is left at the end is less than an item.
    EXPECT_EQ(read_all(iocs, size, count), bytes.substr(0, bytes.size() / size * size)) << size;
    EXPECT_EQ(read_all(iocs, 1, 1), "");
    EXPECT_EQ(intl_iocsfclose(iocs), 0);
  }
}

TEST(Iocsf, OpensToReadAlone) {
  const zrvtest::TextFile file("x");
  for (int mode : {0, 1, 3, -2})
    EXPECT_EQ(intl_iocsfopen(file.path(), mode), nullptr);
  EXPECT_EQ(intl_iocsfopen("/no/such/file", INTL_IOCS_READ), nullptr);
  EXPECT_EQ(intl_iocsfopen(nullptr, INTL_IOCS_READ), nullptr);
}

TEST(Iocsf, ArgumentsAreChecked) {
  const zrvtest::TextFile file("xyz");
  INTL_IOCS *const iocs = intl_iocsfopen(file.path(), INTL_IOCS_READ);
  char byte = 'b';
  EXPECT_EQ(intl_iocsfread(nullptr, 1, 1, iocs), ZRVINTL_EINVAL);
  EXPECT_EQ(intl_iocsfread(&byte, 1, 1, nullptr), ZRVINTL_EINVAL);
  EXPECT_EQ(intl_iocsfread(&byte, 2, INT_MAX, iocs), ZRVINTL_EINVAL);
  EXPECT_EQ(intl_iocsfread(&byte, SIZE_MAX, 2, iocs), ZRVINTL_EINVAL);
  EXPECT_EQ(intl_iocsfread(&byte, 0, 1, iocs), 0);
  EXPECT_EQ(intl_iocsfread(&byte, 1, 0, iocs), 0);
  EXPECT_EQ(byte, 'b');
  EXPECT_EQ(intl_iocsfread(&byte, 1, 1, iocs), 1);
  EXPECT_EQ(byte, 'x');
  EXPECT_EQ(intl_iocsfclose(iocs), 0);
  EXPECT_EQ(intl_iocsfclose(nullptr), ZRVINTL_ECLOSED);
}

TEST(Iocsf, FailureOfReadingIsFinal) {
  const zrvtest::TextFile file(string(5000, 'x'));
  zrvtest::IoProbe probe;
  INTL_IOCS *const iocs = intl_iocsfopen(file.path(), INTL_IOCS_READ);
  probe.fail(2);
  char buffer[6000];
  // What was read before the failure counts.
  EXPECT_EQ(intl_iocsfread(buffer, 1, sizeof buffer, iocs), 4096);
  EXPECT_EQ(intl_iocsfread(buffer, 1, 1, iocs), ZRVINTL_EREAD);
  EXPECT_EQ(intl_iocsfread(buffer, 1, 1, iocs), ZRVINTL_EREAD);
  EXPECT_EQ(intl_iocsfclose(iocs), 0);
  EXPECT_EQ(probe.open_files(), 0U);
}

TEST(Iocsf, InterruptedReadsAreMadeAgain) {
  const zrvtest::TextFile file("xyz");
  zrvtest::IoProbe probe;
  INTL_IOCS *const iocs = intl_iocsfopen(file.path(), INTL_IOCS_READ);
  probe.fail(1, EINTR);
  EXPECT_EQ(read_all(iocs, 1, 1), "xyz");
  probe.fail(1);
  EXPECT_EQ(intl_iocsfclose(iocs), ZRVINTL_EREAD);
}

TEST(Iocsf, FailedOpenLeavesNothing) {
  const zrvtest::TextFile file("x");
  zrvtest::AllocationProbe memory;
  zrvtest::IoProbe probe;
  probe.fail(1);
  EXPECT_EQ(intl_iocsfopen(file.path(), INTL_IOCS_READ), nullptr);
  memory.fail(1);
  EXPECT_EQ(intl_iocsfopen(file.path(), INTL_IOCS_READ), nullptr);
  EXPECT_EQ(memory.live_blocks(), 0U);
  EXPECT_EQ(probe.open_files(), 0U);
}

} // namespace
