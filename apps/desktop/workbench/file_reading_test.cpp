#include "apps/desktop/workbench/file_reading.h"

#include <QElapsedTimer>
#include <QThread>
#include <cstdlib>

#include "apps/desktop/documents/document.h"
#include "apps/desktop/port/desktop_support_test.h"
#include "host/base/files/temporary_folder_support_test.h"
#include "host/base/work_watch.h"
#include "host/tables/formats/data_file_writer.h"
#include "host/tables/workbook.h"

namespace brenvolt::desktop::test {
namespace {

struct FileReadingTest : WithToolkit, testing::Test {
  QWidget owner;
  FileReading reading{owner};
};

TEST_F(FileReadingTest, CancelIsAnsweredWithinASecondAndTheWindowStaysAlive) {
  QElapsedTimer since;
  const Hand cancel("progress", [&](QWidget& shown) {
    EXPECT_EQ(shown.windowModality(), Qt::ApplicationModal) << "nothing else is begun meanwhile";
    since.start();
    QTest::mouseClick(&Child<QPushButton>(shown, "cancel"), Qt::LeftButton);
  });
  int beats = 0;
  QTimer heart;
  QObject::connect(&heart, &QTimer::timeout, [&] { ++beats; });
  heart.start(10);
  const auto work = [] {
    WatchedSteps steps(10'000);
    for (int i = 0; i < 10'000; ++i) {
      QThread::msleep(1);
      steps.Done();
    }
  };
  EXPECT_THROW(reading.Run(QStringLiteral("Reading a.csv"), work), UserCancelled);
  ASSERT_TRUE(cancel.HasActed());
  EXPECT_LT(since.elapsed(), 1000);
  EXPECT_GT(beats, 5);

  bool isRead = false;
  reading.Run(QStringLiteral("Reading b.csv"), [&] { isRead = true; });
  EXPECT_TRUE(isRead) << "what was cancelled is over";
  EXPECT_THROW(reading.Run({}, [] { throw Error("no table", "b.csv"); }), Error);
}

// A reader that swallows the end of the work, or takes it for a fault of the file, would not end.
TEST_F(FileReadingTest, FilesOfEveryKindThatTakesTimeCanBeLeftHalfRead) {
  const TemporaryFolder folder;
  auto sheet = std::make_unique<Spreadsheet>("Data", 9000, 9);
  for (std::size_t v = 0; v < sheet->VariableCount(); ++v) {
    std::span<double> values = sheet->VariableAt(v).MutableValues();
    for (std::size_t i = 0; i < values.size(); ++i) values[i] = static_cast<double>((i * (v + 3)) % 997);
  }
  for (const char* const name : {"a.csv", "a.xlsx", "a.sav", "a.dta"}) WriteDataFile(*sheet, folder / name);
  std::string lines;
  for (int i = 0; i < 9000; ++i) lines += "{\"x\": " + std::to_string(i % 97) + "}\n";
  WriteBytes(folder / "a.jsonl", lines);
  Workbook workbook;
  workbook.Add(std::move(sheet));
  workbook.Save(folder / "a.bvw");
  for (const char* const name : {"a.csv", "a.xlsx", "a.sav", "a.dta", "a.jsonl", "a.bvw"}) {
    std::atomic<int> told = 0;
    {
      const WorkWatch watch([&](std::int64_t done, std::int64_t total) {
        ++told;
        if (total > 0 && done > total) throw Error("more is done than there is");
      });
      EXPECT_NO_THROW(Document::Read(folder / name, false)) << name;
    }
    EXPECT_GT(told, 0) << name;
    const WorkWatch watch([](std::int64_t, std::int64_t) { throw UserCancelled(); });
    EXPECT_THROW(Document::Read(folder / name, false), UserCancelled) << name;
  }
}

// What is measured is printed, of the file that BRENVOLT_DATA names.
TEST_F(FileReadingTest, AFileIsReadWhileTheWindowBeats) {
  const TemporaryFolder folder;
  const char* const asked = std::getenv("BRENVOLT_DATA");
  if (asked == nullptr) WriteBytes(folder / "a.csv", "a,b\n1,2\n3,4\n");
  const std::filesystem::path file = asked != nullptr ? std::filesystem::path(asked) : folder / "a.csv";
  QElapsedTimer since;
  qint64 longest = 0;
  QTimer heart;
  QElapsedTimer beat;
  QObject::connect(&heart, &QTimer::timeout, [&] { longest = std::max(longest, beat.restart()); });
  heart.start(4);
  const auto measure = [&](const char* what) {
    longest = 0;
    since.start();
    beat.start();
    Document::FileRead read;
    try {
      reading.Run(QStringLiteral("Reading"), [&] { read = Document::Read(file, false); });
      EXPECT_GT(read.data.workbook.SheetCount(), 0U);
    } catch (const UserCancelled&) {
    }
    std::printf("%s: %lld ms, longest gap %lld ms\n", what, static_cast<long long>(since.elapsed()),
                static_cast<long long>(longest));
  };
  measure("read");
  if (asked == nullptr) return;
  for (const int after : {1, 400, 1200}) {
    QElapsedTimer pressed;
    const Hand cancel("progress", [&](QWidget& shown) {
      QTimer::singleShot(after, &shown, [&] {
        pressed.start();
        QTest::mouseClick(&Child<QPushButton>(shown, "cancel"), Qt::LeftButton);
      });
    });
    measure("cancelled");
    if (pressed.isValid())
      std::printf("  %lld ms after the press\n", static_cast<long long>(pressed.elapsed()));
  }
}

}  // namespace
}  // namespace brenvolt::desktop::test
