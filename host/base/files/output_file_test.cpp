#include "host/base/files/output_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <set>
#include <thread>

#include "host/base/error.h"
#include "host/base/files/mapped_file.h"
#include "host/base/files/temporary_folder_support_test.h"

namespace brenvolt {
namespace {

using std::filesystem::path;

class Files : public testing::Test {
 protected:
  path Put(const std::string& name, const std::string& content) const {
    WriteBytes(folder_ / name, content);
    return folder_ / name;
  }
  // The names in the folder: shows temporary files left behind.
  std::set<std::string> Names() const {
    const auto names = folder_.Names();
    return {names.begin(), names.end()};
  }

  TemporaryFolder folder_;
};

using OutputFiles = Files;
using MappedFiles = Files;

std::string Content(const path& file) {
  return MappedFile(file).Use([](std::string_view text) { return std::string(text); });
}

void WriteWhole(const path& target, std::string_view bytes) {
  OutputFile file(target);
  file.Write(bytes);
  file.Commit();
}

std::string WhereOfFailure(const path& target) {
  try {
    WriteWhole(target, "x");
  } catch (const Error& error) {
    return error.Where();
  }
  return "no failure";
}

TEST_F(OutputFiles, AppearsOnlyWithCommit) {
  const path target = folder_ / "new";
  {
    OutputFile file(target);
    file.Write("first ");
    file.Write("second");
    EXPECT_FALSE(std::filesystem::exists(target));
    file.Commit();
  }
  EXPECT_EQ(Content(target), "first second");
  EXPECT_EQ(Names(), std::set<std::string>{"new"});
}

TEST_F(OutputFiles, WithoutCommitTheOldFileIsIntact) {
  const path target = Put("old", "former");
  try {
    OutputFile file(target);
    file.Write("latter");
    throw Error("the job failed");
  } catch (const Error&) {
  }
  EXPECT_EQ(Content(target), "former");
  EXPECT_EQ(Names(), std::set<std::string>{"old"});
}

TEST_F(OutputFiles, ReplacementKeepsPermissions) {
  const path target = Put("old", "former");
  ASSERT_EQ(chmod(target.c_str(), 0640), 0);
  WriteWhole(target, "");
  struct stat status {};
  ASSERT_EQ(stat(target.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0640u);
  EXPECT_EQ(status.st_size, 0);
}

TEST_F(OutputFiles, LinksStayLinksAlsoWhenTheirFileIsYetToCome) {
  std::filesystem::create_directory(folder_ / "sub");
  Put("sub/file", "former");
  std::filesystem::create_symlink("sub/file", folder_ / "link");
  std::filesystem::create_symlink("link", folder_ / "link to link");
  std::filesystem::create_symlink("sub/coming", folder_ / "dangling");
  WriteWhole(folder_ / "link to link", "latter");
  WriteWhole(folder_ / "dangling", "came");
  EXPECT_EQ(Content(folder_ / "sub/file"), "latter");
  EXPECT_EQ(Content(folder_ / "sub/coming"), "came");
  for (const char* link : {"link", "link to link", "dangling"}) {
    EXPECT_TRUE(std::filesystem::is_symlink(folder_ / link)) << link;
  }
}

TEST_F(OutputFiles, FailuresNameTheTargetAsTheCallerWroteIt) {
  std::filesystem::create_directory(folder_ / "folder");
  Put("file", "former");
  std::filesystem::create_symlink("round", folder_ / "round");
  std::filesystem::create_symlink("/dev/full", folder_ / "full");
  const path targets[] = {
      folder_ / "file/below",           // in a file instead of a folder
      folder_ / "none/new",             // a missing folder
      folder_ / "folder",               // a folder itself
      folder_ / "new/",                 // no file name
      "",                               //
      "/proc/new",                      // a folder in which nothing can be made
      "/dev/full",                      // a full device
      folder_ / "full",                 // the same by a link
      folder_ / "round",                // a link to itself
      folder_ / std::string(300, 'n'),  // a name too long for a file
  };
  for (const path& target : targets) EXPECT_EQ(WhereOfFailure(target), target.string());
  EXPECT_EQ(Content(folder_ / "file"), "former");
  EXPECT_EQ(Names(), (std::set<std::string>{"folder", "file", "round", "full"}));
}

TEST_F(OutputFiles, LongestPossibleNameIsWritten) {
  const path target = folder_ / std::string(255, 'n');
  WriteWhole(target, "x");
  EXPECT_EQ(Content(target), "x");
}

TEST_F(OutputFiles, WritersOfOneTargetDoNotMeet) {
  const path target = folder_ / "shared";
  OutputFile first(target);
  OutputFile second(target);
  second.Write("second");
  first.Write("first");
  second.Commit();
  first.Commit();
  EXPECT_EQ(Content(target), "first");
}

TEST_F(OutputFiles, PipesAreWrittenDirectly) {
  const path pipe = folder_ / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  std::string received;
  std::thread reader([&] { received = Content(pipe); });
  const std::string bytes(200'000, 'x');  // more than a pipe holds
  WriteWhole(pipe, bytes);
  reader.join();
  EXPECT_EQ(received, bytes);
  EXPECT_TRUE(std::filesystem::is_fifo(pipe));
  EXPECT_EQ(Names(), std::set<std::string>{"pipe"});
}

TEST_F(MappedFiles, ReadWhatClaimsToBeEmpty) {
  EXPECT_EQ(Content(Put("empty", "")), "");
  EXPECT_EQ(Content("/dev/null"), "");
  EXPECT_NE(Content("/proc/self/status").find("Pid:"), std::string::npos);
}

// Touching what is gone raised a signal that ended the program.
TEST_F(MappedFiles, AFileShortenedWhileItIsReadIsAnError) {
  const std::string bytes(std::size_t{1} << 20, 'x');
  for (const std::size_t left : {std::size_t{0}, std::size_t{5000}, bytes.size() - 1}) {
    const path file = Put("file", bytes);
    const MappedFile mapped(file);
    std::ptrdiff_t kept = 0;
    try {
      mapped.Use([&](std::string_view text) {
        std::filesystem::resize_file(file, left);
        std::thread([&] { kept = std::ranges::count(text, 'x'); }).join();
        return 0;
      });
      ADD_FAILURE() << left;
    } catch (const Error& error) {
      EXPECT_STREQ(error.what(), "another program shortened the file while it was read; try again");
      EXPECT_EQ(error.Where(), file.string());
    }
    EXPECT_EQ(kept, static_cast<std::ptrdiff_t>(left));
  }
  EXPECT_EQ(Content(Put("file", "whole")), "whole") << "no guard is left behind";
}

TEST_F(MappedFiles, FailuresNameTheFile) {
  Put("file", "x");
  for (const path& file :
       {folder_.Path(), folder_ / "none", folder_ / "file/below", path("/proc/self/mem"), path()}) {
    try {
      MappedFile{file};
      ADD_FAILURE() << file;
    } catch (const Error& error) {
      EXPECT_EQ(error.Where(), file.string());
    }
  }
}

}  // namespace
}  // namespace brenvolt
