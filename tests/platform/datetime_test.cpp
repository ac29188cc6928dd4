// The date section of a language, through the reader.
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "guarded_buffer.h"
#include "io_probe.h"
#include "text_file.h"
#include "zrvcomn/zrvintl.h"

namespace {

using namespace zrvtest;

// The entries of a section, each of which a test can change.
struct Section {
  std::string months = "m1, m2, m3, m4, m5, m6, m7, m8, m9, m10, m11, m12";
  std::string shortmonths = "s1, s2, s3, s4, s5, s6, s7, s8, s9, s10, s11, s12";
  std::string days = "d1, d2, d3, d4, d5, d6, d7";
  std::string firstday = "7", dateorder = "dmy", is12hour = "true";

  std::string text() const {
    return "[datetime]\nmonths = " + months + "\nshortmonths = " + shortmonths +
           "\ndays = " + days + "\nfirstday = " + firstday + "\ndateorder = " + dateorder +
           "\nis12hour = " + is12hour + "\n";
  }
};

// The status of a file's first section, and what the record has then.
int read(const std::string &text, intl_dateinfo &info) {
  const TextFile file(text);
  INTL_LOCFILE reader;
  EXPECT_EQ(intl_open(file.path(), &reader), 0);
  int status = 0;
  EXPECT_NE(intl_nextsection(&reader, &status), nullptr);
  GuardedBuffer record(sizeof info);
  const int result = intl_datetime(&reader, reinterpret_cast<intl_dateinfo *>(record.data()));
  info = record.value<intl_dateinfo>();
  EXPECT_EQ(intl_close(&reader), 0);
  return result;
}

int read(const std::string &text) {
  intl_dateinfo info;
  return read(text, info);
}

template <class Change>
int read_changed(Change change) {
  Section section;
  change(section);
  return read(section.text());
}

TEST(DateSection, Whole) {
  intl_dateinfo info;
  ASSERT_EQ(read(Section().text(), info), 0);
  for (int i = 0; i < 12; ++i) {
    EXPECT_EQ(info.months[i], "m" + std::to_string(i + 1));
    EXPECT_EQ(info.shortmonths[i], "s" + std::to_string(i + 1));
  }
  for (int i = 0; i < 7; ++i)
    EXPECT_EQ(info.days[i], "d" + std::to_string(i + 1)); // in the order of the file
  EXPECT_EQ(info.firstday, 7);
  EXPECT_STREQ(info.dateorder, "dmy");
  EXPECT_EQ(info.is12hour, 1);
}

TEST(DateSection, Layout) {
  EXPECT_EQ(sizeof(intl_dateinfo::months), 12U * 21);
  EXPECT_EQ(sizeof(intl_dateinfo::shortmonths), 12U * 10);
  EXPECT_EQ(sizeof(intl_dateinfo::days), 7U * 31);
  EXPECT_EQ(offsetof(intl_dateinfo, firstday), 592U);
  EXPECT_EQ(offsetof(intl_dateinfo, dateorder), 596U);
  EXPECT_EQ(offsetof(intl_dateinfo, is12hour), 600U);
  EXPECT_EQ(sizeof(intl_dateinfo), 604U);
}

TEST(DateSection, AnyOrderAndOtherKeys) {
  intl_dateinfo info;
  const Section section;
  ASSERT_EQ(
      read("[datetime]\nis12hour = false\nfirstday = 1\nother = a, b\ndateorder = ymd\ndays = " +
               section.days + "\nshortmonths = " + section.shortmonths +
               "\nmonths = " + section.months + "\n[next]\nfirstday = 9\n",
           info),
      0);
  EXPECT_EQ(info.firstday, 1);
  EXPECT_STREQ(info.dateorder, "ymd");
  EXPECT_EQ(info.is12hour, 0);
  EXPECT_STREQ(info.months[11], "m12");
}

TEST(DateSection, TheLastOfARepeatedKeyCounts) {
  intl_dateinfo info;
  ASSERT_EQ(read(Section().text() + "firstday = 2\ndateorder =\"\"\n", info), 0);
  EXPECT_EQ(info.firstday, 2);
  EXPECT_STREQ(info.dateorder, "");
}

TEST(DateSection, IncompleteSections) {
  const std::string text = Section().text();
  for (const char *key : {"months", "shortmonths", "days", "firstday", "dateorder", "is12hour"}) {
    const size_t begin = text.find("\n" + std::string(key) + " =") + 1;
    const size_t end = text.find('\n', begin) + 1;
    EXPECT_EQ(read(text.substr(0, begin) + text.substr(end)), -8) << key;
    EXPECT_EQ(read(text.substr(0, begin) + key + " =\n" + text.substr(end)), -8) << key;
  }
  EXPECT_EQ(read("[datetime]\n"), -8);
}

TEST(DateSection, CountsOfValues) {
  EXPECT_EQ(read_changed([](Section &s) { s.months = "1,2,3,4,5,6,7,8,9,10,11"; }), -8);
  EXPECT_EQ(read_changed([](Section &s) { s.months += ", m13"; }), -8);
  EXPECT_EQ(read_changed([](Section &s) { s.shortmonths = "1,2,3,4,5,6,7,8,9,10,11"; }), -8);
  EXPECT_EQ(read_changed([](Section &s) { s.shortmonths += ","; }), -8);
  EXPECT_EQ(read_changed([](Section &s) { s.days = "1,2,3,4,5,6"; }), -8);
  EXPECT_EQ(read_changed([](Section &s) { s.days += ", d8"; }), -8);
  EXPECT_EQ(read_changed([](Section &s) { s.firstday += ", 1"; }), -8);
  EXPECT_EQ(read_changed([](Section &s) { s.dateorder += ", dmy"; }), -8);
  EXPECT_EQ(read_changed([](Section &s) { s.is12hour += ", true"; }), -8);
}

TEST(DateSection, Values) {
  for (const char *day : {"0", "8", "9", "17", "1x", "x", "-1", "\"\""})
    EXPECT_EQ(read_changed([&](Section &s) { s.firstday = day; }), -8) << day;
  for (const char *day : {"1", "2", "7"})
    EXPECT_EQ(read_changed([&](Section &s) { s.firstday = day; }), 0) << day;
  for (const char *clock : {"1", "True", "tru", "truex", "falsex", "\"\""})
    EXPECT_EQ(read_changed([&](Section &s) { s.is12hour = clock; }), -8) << clock;
  // Which orders there are is not known here.
  EXPECT_EQ(read_changed([](Section &s) { s.dateorder = "xyz"; }), 0);
}

TEST(DateSection, LengthsOfTheTexts) {
  const auto list = [](int count, size_t length) {
    std::string text;
    for (int i = 1; i < count; ++i)
      text += "x, ";
    return text + std::string(length, 'y');
  };
  intl_dateinfo info;
  Section section;
  section.months = list(12, 20);
  section.shortmonths = list(12, 9);
  section.days = list(7, 30);
  ASSERT_EQ(read(section.text(), info), 0);
  EXPECT_EQ(info.months[11], std::string(20, 'y'));
  EXPECT_EQ(info.shortmonths[11], std::string(9, 'y'));
  EXPECT_EQ(info.days[6], std::string(30, 'y'));
  EXPECT_EQ(read_changed([&](Section &s) { s.months = list(12, 21); }), -5);
  EXPECT_EQ(read_changed([&](Section &s) { s.shortmonths = list(12, 10); }), -5);
  EXPECT_EQ(read_changed([&](Section &s) { s.days = list(7, 31); }), -5);
  EXPECT_EQ(read_changed([](Section &s) { s.dateorder = "dmyx"; }), -5);
}

TEST(DateSection, ErrorsOfTheReader) {
  EXPECT_EQ(read_changed([](Section &s) { s.days = "\"d1"; }), -6);
  EXPECT_EQ(read_changed([](Section &s) { s.months = std::string(1024, 'x'); }), -3);
  EXPECT_EQ(read("[datetime]\nno entry\n"), -6);
  EXPECT_EQ(read(Section().text() + "no entry\n"), -6);
  INTL_LOCFILE reader;
  intl_dateinfo info;
  EXPECT_EQ(intl_open(nullptr, &reader), -1);
  EXPECT_EQ(intl_datetime(&reader, &info), -7);
  EXPECT_EQ(intl_datetime(nullptr, &info), -7);
  EXPECT_EQ(intl_datetime(&reader, nullptr), -9);
}

TEST(DateSection, EachReadFails) {
  // Longer than what is read at once.
  const TextFile file(Section().text() + "; " + std::string(900, 'x') + "\n; " +
                      std::string(900, 'x') + "\n; " + std::string(900, 'x') + "\n; " +
                      std::string(900, 'x') + "\n; " + std::string(900, 'x') + "\n");
  const auto failed = [&] {
    INTL_LOCFILE reader;
    intl_dateinfo info;
    int status = intl_open(file.path(), &reader);
    if (status != 0)
      return true;
    if (intl_nextsection(&reader, &status) != nullptr)
      status = intl_datetime(&reader, &info);
    const int closed = intl_close(&reader);
    EXPECT_TRUE(status == 0 || status == -2);
    return status != 0 || closed != 0;
  };
  EXPECT_GE(fail_each_io(failed), 4U);
}

} // namespace
