// Records over images in memory.
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "allocation_probe.h"
#include "guarded_buffer.h"
#include "traced_exit.h"
#include "zrvcomn/charset.h"
#include "zrvcomn/zrvintl.h"

namespace {

using namespace zrvtest;

// What a call must leave alone is recognised by this.
CS_ATTRIB filled_record() {
  CS_ATTRIB record;
  std::memset(&record, 0xA5, sizeof record);
  return record;
}

bool is_untouched(const CS_ATTRIB &record) {
  const CS_ATTRIB filled = filled_record();
  return std::memcmp(&record, &filled, sizeof record) == 0;
}

char name[] = "test_set";

TEST(BuildCharAttrib, Class1) {
  for (const size_t misalignment : {0U, 1U, 3U}) {
    GuardedBuffer image(1285, misalignment);
    CS_ATTRIB record = filled_record();
    ASSERT_EQ(com_build_char_attrib(1001, 258, name, image.data(), &record), CS_SUCCEED);
    EXPECT_EQ(record.cs_status, 0);
    EXPECT_EQ(record.cs_class, 1);
    EXPECT_EQ(record.cs_id, 2); // a byte of it
    EXPECT_STREQ(record.cs_name, "test_set");
    EXPECT_EQ(record.cs_namelen, 8);
    EXPECT_EQ(record.cs_maxcharlen, 1);
    EXPECT_EQ(record.cs_ncharsize, 1);
    EXPECT_EQ(record.cs_nnorm, 0);
    EXPECT_EQ(record.cs_ntype, 1);
    EXPECT_EQ(record.cs_nsoundex, 1);
    EXPECT_EQ(record.cs_width_map, nullptr);
    EXPECT_EQ(record.cs_norm_map, nullptr);
    EXPECT_EQ(static_cast<void *>(record.cs_type_map), image.data());
    EXPECT_EQ(static_cast<void *>(record.cs_soundex), image.data() + 1028);
    EXPECT_TRUE(image.is_untouched());
  }
}

// A header with tables at the told offsets, in bytes.
void write_header(GuardedBuffer &image, unsigned width_size, unsigned norm_size) {
  const unsigned char header[44] = {0x12, 0x34, 2, 4, 1, 3, 5, 2, 9, 9, 9, 9};
  std::memcpy(image.data(), header, sizeof header);
  const unsigned numbers[] = {44, width_size, 300, norm_size, 0x0240, 3 * 1024, 0x00012345, 512};
  for (size_t i = 0; i < 8; ++i)
    for (size_t byte = 0; byte < 4; ++byte)
      image.data()[12 + 4 * i + byte] = static_cast<unsigned char>(numbers[i] >> (24 - 8 * byte));
}

TEST(BuildCharAttrib, Class2) {
  for (const size_t misalignment : {0U, 1U, 3U}) {
    GuardedBuffer image(44, misalignment);
    write_header(image, 256, 1280);
    CS_ATTRIB record = filled_record();
    ASSERT_EQ(com_build_char_attrib(1002, 190, name, image.data(), &record), CS_SUCCEED);
    EXPECT_EQ(record.cs_status, 0x3412); // in the host's order, as it stands
    EXPECT_EQ(record.cs_class, 2);
    EXPECT_EQ(record.cs_id, 190);
    EXPECT_STREQ(record.cs_name, "test_set");
    EXPECT_EQ(record.cs_namelen, 8);
    EXPECT_EQ(record.cs_maxcharlen, 4);
    EXPECT_EQ(record.cs_ncharsize, 1);
    EXPECT_EQ(record.cs_ntype, 3);
    EXPECT_EQ(record.cs_nnorm, 5);
    EXPECT_EQ(record.cs_nsoundex, 2);
    EXPECT_EQ(record.cs_width_map, image.data() + 44);
    EXPECT_EQ(static_cast<void *>(record.cs_norm_map), image.data() + 300);
    EXPECT_EQ(static_cast<void *>(record.cs_type_map), image.data() + 0x240);
    EXPECT_EQ(static_cast<void *>(record.cs_soundex), image.data() + 0x12345);
    // The numbers of the header are the host's now, all else is as it was.
    const CS_INT numbers[] = {44, 256, 300, 1280, 0x240, 3072, 0x12345, 512};
    EXPECT_EQ(std::memcmp(image.data() + 12, numbers, sizeof numbers), 0);
    EXPECT_EQ(image.contents(12),
              std::string("\x12\x34\x02\x04\x01\x03\x05\x02\x09\x09\x09\x09", 12));
  }
}

TEST(BuildCharAttrib, Class2WithoutTheMapsThatMayBeMissing) {
  GuardedBuffer image(44);
  CS_ATTRIB record = filled_record();
  write_header(image, 0, 256);
  ASSERT_EQ(com_build_char_attrib(1002, 1, name, image.data(), &record), CS_SUCCEED);
  EXPECT_EQ(record.cs_width_map, nullptr);
  EXPECT_NE(record.cs_norm_map, nullptr);
  write_header(image, 256, 0);
  ASSERT_EQ(com_build_char_attrib(1002, 1, name, image.data(), &record), CS_SUCCEED);
  EXPECT_NE(record.cs_width_map, nullptr);
  EXPECT_EQ(record.cs_norm_map, nullptr);
}

TEST(BuildCharAttrib, LongNames) {
  GuardedBuffer image(1285);
  for (const size_t length : {0U, 28U, 29U, 30U, 31U, 100U, 300U}) {
    std::string long_name(length, 'n');
    CS_ATTRIB record = filled_record();
    ASSERT_EQ(com_build_char_attrib(1001, 1, long_name.data(), image.data(), &record), CS_SUCCEED);
    EXPECT_EQ(record.cs_name, std::string(std::min<size_t>(length, 29), 'n'));
    EXPECT_EQ(record.cs_namelen, static_cast<int>(length)); // whole, deliberately
  }
}

TEST(BuildCharAttrib, Refusals) {
  GuardedBuffer image(1285);
  CS_ATTRIB record = filled_record();
  for (const CS_INT type : {1000, 1003, 0, 1, 2, -1001, CS_UNUSED})
    EXPECT_EQ(com_build_char_attrib(type, 1, name, image.data(), &record), CS_FAIL) << type;
  for (const CS_INT type : {1001, 1002, 1003}) {
    EXPECT_EQ(com_build_char_attrib(type, 1, name, nullptr, &record), CS_FAIL);
    EXPECT_EQ(com_build_char_attrib(type, 1, nullptr, image.data(), &record), CS_FAIL);
    EXPECT_EQ(com_build_char_attrib(type, 1, name, image.data(), nullptr), CS_FAIL);
  }
  EXPECT_TRUE(is_untouched(record));
  EXPECT_TRUE(image.is_untouched());
}

TEST(BuildCharAttrib, IsTraced) {
  GuardedBuffer image(1285);
  CS_ATTRIB record{};
  EXPECT_EQ(exit_of(CS_SUCCEED,
                    [&] { return com_build_char_attrib(1001, 1, name, image.data(), &record); }),
            "(CS_SUCCEED) file charset_build.cpp");
}

TEST(AllocCharAttrib, TakesAndReleases) {
  AllocationProbe probe;
  CS_ATTRIB *const record = com_alloc_char_attrib();
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(probe.live_blocks(), 1U);
  EXPECT_EQ(probe.last_size(), sizeof(CS_ATTRIB));
  // The tables are the caller's.
  record->cs_type_map = com_get_typemap();
  EXPECT_EQ(com_free_char_attrib(record), CS_SUCCEED);
  EXPECT_EQ(probe.live_blocks(), 0U);
  EXPECT_EQ(com_free_char_attrib(nullptr), CS_SUCCEED);
  probe.fail(1);
  EXPECT_EQ(com_alloc_char_attrib(), nullptr);
}

} // namespace
