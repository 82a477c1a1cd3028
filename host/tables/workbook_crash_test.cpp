// Saves that do not come to their end: killed processes, full devices, folders without permission. The file
// holds its old or its new content.
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <exception>
#include <random>
#include <thread>
#include <utility>

#include "host/base/files/file_turn.h"
#include "host/tables/workbook.h"
#include "host/tables/workbook_support_test.h"

namespace brenvolt {
namespace {

constexpr std::size_t kCases = 200'000;
constexpr int kKills = 100;

// A project all of whose parts say which of two contents it is; one column is common to both.
void SetContent(Workbook& workbook, int content) {
  Spreadsheet& sheet = workbook.SheetAt(0);
  sheet.SetTitle(std::to_string(content));
  std::ranges::fill(sheet.VariableAt(0).MutableValues(), content);
  sheet.VariableAt(1).SetProperty("content", std::to_string(content));
}

Workbook WithContent(int content) {
  Workbook workbook = PlainWorkbook(kCases, 3);
  SetContent(workbook, content);
  return workbook;
}

// The content that every part of the file speaks of; -1 for a mixture.
int ContentOf(const std::filesystem::path& path) {
  const Workbook workbook = Workbook::Open(path);
  const Spreadsheet& sheet = workbook.SheetAt(0);
  const int content = std::stoi(sheet.Title());
  const bool whole = std::ranges::count(sheet.VariableAt(0).Values(), content) == kCases &&
                     sheet.VariableAt(1).Property("content") == std::to_string(content) &&
                     sheet.VariableAt(2).Values()[kCases - 1] == kCases * 3 - 1;
  return whole ? content : -1;
}

// Saves one content after the other, telling after the first save.
using EndlessSaving = void (*)(const std::filesystem::path& path, int content,
                               const std::function<void()>& saved);

void SaveInPlaceForever(const std::filesystem::path& path, int content, const std::function<void()>& saved) {
  Workbook workbook = Workbook::Open(path);
  for (;; content = 3 - content) {
    SetContent(workbook, content);
    workbook.Save(path);
    saved();
  }
}

// Projects that do not know the file replace it.
void SaveAnewForever(const std::filesystem::path& path, int content, const std::function<void()>& saved) {
  Workbook contents[] = {WithContent(1), WithContent(2)};
  for (;; content = 3 - content) {
    Workbook stranger;
    stranger.Add(std::make_unique<Spreadsheet>(contents[content - 1].SheetAt(0)));
    stranger.Save(path);
    saved();
  }
}

// A process that saves endlessly, after its first save.
pid_t StartSaving(EndlessSaving save, const std::filesystem::path& path, int content) {
  int ends[2] = {};
  EXPECT_EQ(pipe(ends), 0);
  const pid_t child = fork();
  if (child == 0) {
    close(ends[0]);
    try {
      save(path, content, [&] {
        if (ends[1] >= 0 && write(ends[1], "", 1) == 1) close(std::exchange(ends[1], -1));
      });
    } catch (const std::exception& error) {
      std::fprintf(stderr, "%s\n", error.what());
    }
    _exit(1);
  }
  close(ends[1]);
  char first = 0;
  EXPECT_EQ(read(ends[0], &first, 1), 1);
  close(ends[0]);
  return child;
}

ino_t FileNumber(const std::filesystem::path& path) {
  struct stat state {};
  stat(path.c_str(), &state);
  return state.st_ino;
}

void KillRepeatedly(EndlessSaving save, bool inPlace) {
  const TemporaryFolder folder;
  const auto path = folder / "p.bvw";
  WithContent(1).Save(path);
  std::mt19937 generator(20240607);
  std::uniform_int_distribution<int> microseconds(0, 15'000);
  int seen[3] = {};
  const ino_t file = FileNumber(path);
  bool replaced = false;
  for (int i = 0; i < kKills; ++i) {
    const pid_t child = StartSaving(save, path, 1 + i % 2);
    std::this_thread::sleep_for(std::chrono::microseconds(microseconds(generator)));
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << "the child ended by itself";
    const int content = ContentOf(path);
    ASSERT_TRUE(content == 1 || content == 2) << "kill " << i;
    ++seen[content];
    replaced = replaced || FileNumber(path) != file;
  }
  EXPECT_EQ(replaced, !inPlace);
  EXPECT_GT(seen[1], 0);
  EXPECT_GT(seen[2], 0);

  WithContent(2).Save(path);
  EXPECT_EQ(ContentOf(path), 2);
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"p.bvw"}) << "what killed saves left behind stays";
}

TEST(WorkbookCrashTest, KilledUpdateInPlaceLeavesOldOrNewContent) {
  KillRepeatedly(&SaveInPlaceForever, true);
}

TEST(WorkbookCrashTest, KilledReplacementLeavesOldOrNewContent) {
  KillRepeatedly(&SaveAnewForever, false);
}

// Half of a transaction is in the file, its undoing in the journal next to it.
TEST(WorkbookCrashTest, JournalOfAKilledWriterNeverHarmsTheFileThatReplacesItsOwn) {
  const TemporaryFolder folder;
  const auto path = folder / "p.bvw";
  const auto killWriter = [&] {
    return RunInChild([&] {
      sqlite3* database = nullptr;
      sqlite3_open(path.c_str(), &database);
      sqlite3_exec(database,
                   "PRAGMA cache_size = 2; BEGIN; UPDATE column_chunk SET doubles = zeroblob(400000)",
                   nullptr, nullptr, nullptr);
      return raise(SIGKILL);
    });
  };
  WithContent(1).Save(path);
  const std::string before = BytesOf(path);
  ASSERT_EQ(killWriter(), -SIGKILL);
  ASSERT_TRUE(std::filesystem::exists(folder / "p.bvw-journal"));
  ASSERT_NE(BytesOf(path), before);
  EXPECT_EQ(ContentOf(path), 1);

  ASSERT_EQ(killWriter(), -SIGKILL);
  WithContent(2).Save(path);
  EXPECT_EQ(ContentOf(path), 2);

  // The file itself was removed or overwritten by another tool; its journal was not.
  for (const char* const replacedBy : {"", "text"}) {
    ASSERT_EQ(killWriter(), -SIGKILL);
    std::filesystem::remove(path);
    if (*replacedBy != 0) WriteBytes(path, replacedBy);
    WithContent(1).Save(path);
    EXPECT_EQ(ContentOf(path), 1);
  }
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"p.bvw"});
}

TEST(WorkbookCrashTest, FileInUseIsNotTouched) {
  const TemporaryFolder folder;
  const auto path = folder / "p.bvw";
  WithContent(1).Save(path);
  sqlite3* other = nullptr;
  ASSERT_EQ(sqlite3_open(path.c_str(), &other), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(other, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);
  SetTurnPatience({0.1, {}});
  const Error error = ErrorOf([&] { WithContent(2).Save(path); });
  SetTurnPatience({});
  EXPECT_STREQ(error.what(), "the project cannot be written: it is in use by another program");
  EXPECT_EQ(error.Where(), path.string());
  EXPECT_EQ(ContentOf(path), 1) << "reading beside a writer";
  sqlite3_close(other);
  EXPECT_EQ(ContentOf(path), 1);
}

TEST(WorkbookCrashTest, FullDeviceLeavesTheOldFile) {
  const TemporaryFolder folder;
  const auto path = folder / "p.bvw";
  WithContent(1).Save(path);
  const auto saveWithin = [&](bool inPlace, rlim_t limit) {
    return RunInChild([&] {
      Workbook workbook = inPlace ? Workbook::Open(path) : PlainWorkbook(kCases, 3);
      SetContent(workbook, 2);
      workbook.SheetAt(0).AddVariable(Variable("More", kCases));
      signal(SIGXFSZ, SIG_IGN);
      const rlimit bound{limit, limit};
      setrlimit(RLIMIT_FSIZE, &bound);
      try {
        workbook.Save(path);
      } catch (const Error& error) {
        return error.Where() == path.string() &&
                       std::string_view(error.what()).starts_with("the project cannot be written: ")
                   ? 7
                   : 8;
      }
      return 0;
    });
  };
  const auto size = std::filesystem::file_size(path);
  for (const bool inPlace : {true, false}) {
    for (const rlim_t limit : {rlim_t{0}, rlim_t{5000}, rlim_t{size / 2}, rlim_t{size}}) {
      EXPECT_EQ(saveWithin(inPlace, limit), 7) << inPlace << " " << limit;
      EXPECT_EQ(ContentOf(path), 1);
      EXPECT_EQ(folder.Names(), std::vector<std::string>{"p.bvw"});
    }
  }
}

TEST(WorkbookCrashTest, RefusesTargetsThatAreNoFilesOfTheUser) {
  const TemporaryFolder folder;
  std::filesystem::create_directories(folder / "folder.bvw");
  std::filesystem::create_symlink("b.bvw", folder / "a.bvw");
  std::filesystem::create_symlink("a.bvw", folder / "b.bvw");
  ASSERT_EQ(mkfifo((folder / "pipe.bvw").c_str(), 0600), 0);
  const std::pair<std::filesystem::path, const char*> targets[] = {
      {folder / "folder.bvw", "the target is a folder, not a file"},
      {folder / "pipe.bvw", "the target is a device or pipe, which cannot be replaced by a file"},
      {"/dev/full", "the target is a device or pipe, which cannot be replaced by a file"},
      {"/dev/null", "the target is a device or pipe, which cannot be replaced by a file"},
      {folder / "none/p.bvw", "the file cannot be written: No such file or directory"},
      {folder / "a.bvw", "the file cannot be used: too many links"},
      {"", "the file cannot be used: Invalid argument"},
  };
  const std::vector<std::string> before = folder.Names();
  for (const auto& [target, message] : targets) {
    const Error error = ErrorOf([&path = target] { WithContent(1).Save(path); });
    EXPECT_STREQ(error.what(), message) << target;
    EXPECT_EQ(error.Where(), target.string());
  }
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/full"));
  EXPECT_EQ(folder.Names(), before);
}

TEST(WorkbookCrashTest, WithoutPermissionTheOldFileStays) {
  const TemporaryFolder folder;
  std::filesystem::permissions(folder.Path(), std::filesystem::perms(0755));
  std::filesystem::create_directory(folder / "closed");
  const auto path = folder / "closed/p.bvw";
  WithContent(1).Save(path);
  std::filesystem::permissions(path, std::filesystem::perms(0666));
  const std::string before = BytesOf(path);

  // Permissions do not bind the administrator.
  const auto asUser = [](const std::function<void()>& action) {
    return RunInChild([&] {
      if (geteuid() == 0 && setuid(65534) != 0) return 1;
      try {
        action();
      } catch (const Error& error) {
        return std::string_view(error.what()).ends_with(": Permission denied") ? 7 : 8;
      }
      return 0;
    });
  };
  const auto saveInPlace = [&] {
    Workbook workbook = Workbook::Open(path);
    SetContent(workbook, 2);
    workbook.Save(path);
  };
  std::filesystem::permissions(folder / "closed", std::filesystem::perms(0555));
  EXPECT_EQ(asUser([&] { Workbook::Open(path); }), 0) << "reading needs no permission to write";
  EXPECT_EQ(asUser(saveInPlace), 7);
  EXPECT_EQ(asUser([&] { WithContent(2).Save(path); }), 7);

  std::filesystem::permissions(folder / "closed", std::filesystem::perms(0777));
  std::filesystem::permissions(path, std::filesystem::perms(0444));
  EXPECT_EQ(asUser(saveInPlace), 7) << "a write-protected file";
  EXPECT_EQ(asUser([&] { WithContent(2).Save(path); }), 7) << "a write-protected file";

  std::filesystem::permissions(path, std::filesystem::perms(0));
  EXPECT_EQ(asUser([&] { Workbook::Open(path); }), 7);
  std::filesystem::permissions(path, std::filesystem::perms(0644));
  EXPECT_EQ(BytesOf(path), before);
}

}  // namespace
}  // namespace brenvolt
