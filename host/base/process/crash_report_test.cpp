#include "host/base/process/crash_report.h"

#include <gtest/gtest.h>

#include <cmath>
#include <csignal>
#include <cstdlib>
#include <fstream>

#include "host/base/files/temporary_folder_support_test.h"
#include "host/base/process/dynamic_library.h"

namespace brenvolt {
namespace {

constexpr const char* kLibrary = BRENVOLT_BUILD_DIR "/lib/libtest_crash_library.so";

struct CrashReports : testing::Test {
  TemporaryFolder folder;
  std::filesystem::path errors = folder.Path() / "data/Brenvolt/Errors";

  CrashReports() { setenv("BRENVOLT_DATA", (folder.Path() / "data").c_str(), 1); }
  ~CrashReports() override { unsetenv("BRENVOLT_DATA"); }
};

TEST_F(CrashReports, FatalSignalIsReportedAndThenTakesItsCourse) {
  const auto log = folder.Path() / "log";
  const auto died = [](int status) { return !WIFEXITED(status) || WEXITSTATUS(status) != 0; };
  EXPECT_EXIT(
      {
        setenv("BRENVOLT_LOG", log.c_str(), 1);
        if (!InstallCrashReports(kLibrary) || !InstallCrashReports(kLibrary)) _exit(0);
        raise(SIGSEGV);
        _exit(0);
      },
      died, "");
  const std::string number = std::to_string(SIGSEGV);
  EXPECT_EQ(BytesOf(errors / "report.txt"),
            "depth 9999, signal " + number + ", record of signal " + number + "\n");
  EXPECT_EQ(BytesOf(log), "Process dump was generated in [" + errors.string() + "]\n");
}

TEST_F(CrashReports, NothingIsWrittenWithoutTheLibraryOrItsEntries) {
  EXPECT_FALSE(InstallCrashReports("libNoSuchCrashLibrary.so"));
  EXPECT_FALSE(CrashReporter("libNoSuchCrashLibrary.so").Report(nullptr, "context"));
  EXPECT_FALSE(CrashReporter("libm.so.6").IsAvailable())
      << "found by the loader, in no folder that was named";
  const CrashReporter empty(
      LibraryFileOf(reinterpret_cast<const void*>(static_cast<double (*)(double)>(&std::erf))));
  EXPECT_TRUE(empty.IsAvailable());
  EXPECT_FALSE(empty.Report(nullptr, "context"));
  EXPECT_FALSE(std::filesystem::exists(errors));
}

TEST_F(CrashReports, FoldersAreMadeOneByOneUnlessAFileStandsInTheWay) {
  EXPECT_EQ(ErrorFolder(), errors);
  EXPECT_TRUE(std::filesystem::is_directory(errors));
  EXPECT_TRUE(MakeFolders(errors)) << "again";
  std::ofstream(errors / "file") << "x";
  EXPECT_FALSE(MakeFolders(errors / "file/below"));
  setenv("BRENVOLT_DATA", (errors / "file").c_str(), 1);
  EXPECT_EQ(ErrorFolder(), std::nullopt);
  EXPECT_FALSE(CrashReporter(kLibrary).Report(nullptr, "context"));
}

}  // namespace
}  // namespace brenvolt
