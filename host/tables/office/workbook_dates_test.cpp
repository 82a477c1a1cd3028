#include "host/tables/office/workbook_dates.h"

#include <gtest/gtest.h>

namespace brenvolt {
namespace {

// Codes that spreadsheet programs offer.
TEST(WorkbookDates, CodesTellDatesTimesAndNumbersApart) {
  const struct {
    const char* code;
    Shown shown;
  } rows[] = {
      {"General", Shown::kNumber},
      {"0.00", Shown::kNumber},
      {"#,##0.00", Shown::kNumber},
      {"[Red]0.0;[Blue]-0.0", Shown::kNumber},
      {"\"days\" 0", Shown::kNumber},
      {"yyyy-mm-dd", Shown::kDate},
      {"dd.mm.yyyy hh:mm", Shown::kDate},
      {"mmm yy", Shown::kDate},
      {"mmmm", Shown::kDate},
      {"[$-409]d-mmm-yy;@", Shown::kDate},
      {"h:mm AM/PM", Shown::kTime},
      {"hh:mm:ss.000", Shown::kTime},
      {"[h]:mm:ss;@", Shown::kTime},
      {"mm:ss", Shown::kTime},
      {"[mm]:ss", Shown::kTime},
      {"0.00E+00", Shown::kNumber},
  };
  for (const auto& row : rows) EXPECT_EQ(ShownBy(row.code), row.shown) << row.code;
}

TEST(WorkbookDates, DurationsAreHours) {
  const struct {
    const char* text;
    double hours;
  } rows[] = {{"PT01H30M00S", 1.5}, {"PT26H15M00S", 26.25}, {"P1DT12H", 36},
              {"-PT0.5H", -0.5},    {"PT36S", 0.01},        {"PT0S", 0}};
  for (const auto& row : rows)
    EXPECT_DOUBLE_EQ(HoursOfDuration(row.text).value_or(-1), row.hours) << row.text;
  for (const char* text : {"", "P", "PT", "P1Y", "P1M", "1H", "PTH", "PT1", "PT1.2.3S", "PT1X"})
    EXPECT_FALSE(HoursOfDuration(text)) << text;
}

// The origins are those of the packages' manuals: 14 October 1582, 1 January 1960.
TEST(WorkbookDates, FormatsOfPackagesTellHowTheyCountTime) {
  const struct {
    Package package;
    const char* format;
    double value;
    const char* text;
  } rows[] = {
      {Package::kSpss, "DATE11", 13928544000, "2024-02-29"},
      {Package::kSpss, "DATETIME20", 13928581800, "2024-02-29 10:30:00"},
      {Package::kStata, "%td", 23435, "2024-02-29"},
      {Package::kStata, "%tdDD/NN/CCYY", -1, "1959-12-31"},
      {Package::kStata, "%-td", 0, "1960-01-01"},
      {Package::kStata, "%d", 1, "1960-01-02"},
      {Package::kStata, "%tc", 86400000, "1960-01-02"},
      {Package::kSas, "DATE9.", 23435, "2024-02-29"},
      {Package::kSas, "MMDDYY10", 23435, "2024-02-29"},
      {Package::kSas, "E8601DA10.", 23435, "2024-02-29"},
      {Package::kSas, "DATETIME22.3", 86400, "1960-01-02"},
  };
  for (const auto& row : rows) {
    const auto scale = TimeScaleOf(row.package, row.format);
    ASSERT_TRUE(scale) << row.format;
    EXPECT_EQ(DateText(row.value / scale->unitsOfDay, scale->origin), row.text) << row.format;
  }
  EXPECT_EQ(TimeScaleOf(Package::kSas, "TIME8.")->shown, Shown::kTime);
  EXPECT_EQ(TimeScaleOf(Package::kSpss, "DTIME9")->unitsOfDay, 86400);
  for (const char* format : {"F8.2", "", "DOLLAR8", "DATELINE", "%9.2f", "%"}) {
    for (const Package package : {Package::kSpss, Package::kStata, Package::kSas})
      EXPECT_FALSE(TimeScaleOf(package, format)) << format;
  }
}

}  // namespace
}  // namespace brenvolt
