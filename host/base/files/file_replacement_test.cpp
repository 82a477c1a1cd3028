#include "host/base/files/file_replacement.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <set>
#include <string>

#include "host/base/error.h"
#include "host/base/files/output_file.h"
#include "host/base/files/temporary_folder_support_test.h"

namespace brenvolt {
namespace {

namespace fs = std::filesystem;

class FileReplacementTest : public testing::Test {
 protected:
  std::set<std::string> Names() const {
    const auto names = temporary_.Names();
    return {names.begin(), names.end()};
  }
  static std::string Text(const fs::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  TemporaryFolder temporary_;
  const fs::path folder_ = temporary_.Path();
};

TEST_F(FileReplacementTest, OnlyFilesOfKilledWritersAreRemoved) {
  const fs::path target = folder_ / "out.txt";
  const pid_t child = fork();
  if (child == 0) {
    const FileReplacement killed(target);
    raise(SIGKILL);
  }
  waitpid(child, nullptr, 0);
  ASSERT_EQ(Names().size(), 1U);

  const FileReplacement writing(target);
  const std::set<std::string> kept = {writing.Temporary().filename(),
                                      "out.txt",
                                      ".out.txt.1-1-1.tmp",
                                      ".out.txt..tmp",
                                      ".out.txt.a-1.tmp",
                                      ".other.txt.1-1.tmp"};
  for (const std::string& name : kept) std::ofstream(folder_ / name, std::ios::app) << "";
  OutputFile output(target);
  output.Write("done");
  output.Commit();
  EXPECT_EQ(Names(), kept);
  EXPECT_EQ(Text(target), "done");
}

TEST_F(FileReplacementTest, WithoutCommitNothingIsLeftBehind) {
  { const FileReplacement abandoned(folder_ / "out.txt"); }
  EXPECT_TRUE(Names().empty());
}

TEST_F(FileReplacementTest, FollowsRelativeLinksAlsoToFilesThatAreNotThereYet) {
  fs::create_directories(folder_ / "a/b");
  fs::create_symlink("b/two", folder_ / "a/one");
  fs::create_symlink("../../real", folder_ / "a/b/two");
  EXPECT_EQ(FollowLinks(folder_ / "a/one"), folder_ / "real");
  fs::create_directory_symlink("a/b", folder_ / "short");
  EXPECT_EQ(FollowLinks(folder_ / "short/two"), folder_ / "real");
  EXPECT_EQ(FollowLinks(folder_ / "short/new"), folder_ / "a/b/new");
  std::ofstream(folder_ / "real") << "x";
  EXPECT_EQ(FollowLinks(folder_ / "short/../b/two"), folder_ / "real");
}

TEST_F(FileReplacementTest, OutputToAPipeOrDeviceIsWrittenDirectly) {
  OutputFile null("/dev/null");
  null.Write("gone");
  null.Commit();
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
  OutputFile full("/dev/full");
  EXPECT_THROW(full.Write("x"), Error);
  EXPECT_THROW(OutputFile{folder_}, Error);
}

}  // namespace
}  // namespace brenvolt
