#include "host/tables/numpy_archive.h"

#include <archive.h>
#include <archive_entry.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <stdexcept>
#include <vector>

#include "host/base/error.h"
#include "host/base/files/temporary_folder_support_test.h"

namespace brenvolt {
namespace {

// The files of a zip file by name, read by the library that others read it with.
std::map<std::string, std::string> FilesOf(const std::filesystem::path& path) {
  std::map<std::string, std::string> files;
  archive* zip = archive_read_new();
  archive_read_support_format_zip(zip);
  EXPECT_EQ(archive_read_open_filename(zip, path.c_str(), 10240), ARCHIVE_OK) << archive_error_string(zip);
  archive_entry* entry = nullptr;
  // A warning says that a name cannot be shown in the language of the tests.
  for (int result = 0; (result = archive_read_next_header(zip, &entry)) != ARCHIVE_EOF;) {
    if (result < ARCHIVE_WARN) throw std::runtime_error(archive_error_string(zip));
    std::string bytes(static_cast<std::size_t>(archive_entry_size(entry)), ' ');
    EXPECT_EQ(archive_read_data(zip, bytes.data(), bytes.size()), static_cast<la_ssize_t>(bytes.size()));
    files[archive_entry_pathname(entry)] = bytes;
  }
  archive_read_free(zip);
  return files;
}

// The values of a .npy file, whose header must be as NumPy writes it.
std::vector<double> ValuesOf(const std::string& file, std::size_t length) {
  const std::string begin = "\x93NUMPY" + std::string("\1\0v\0", 4) +
                            "{'descr': '<f8', 'fortran_order': False, 'shape': (" + std::to_string(length) +
                            ",), }";
  EXPECT_EQ(file.substr(0, begin.size()), begin);
  EXPECT_EQ(file.size(), 128 + length * sizeof(double));
  EXPECT_EQ(file[127], '\n');
  std::vector<double> values(length);
  std::memcpy(values.data(), file.data() + 128, length * sizeof(double));
  return values;
}

// Whoever unpacks an archive gets files in one folder, one for each column.
TEST(NumpyArchive, NamesOfEntriesLeadNowhereAndAreDifferent) {
  const TemporaryFolder folder;
  const auto path = folder.Path() / "samples.npz";
  NumpyArchive file(path);
  for (const char* const name :
       {"../../x", "/etc/x", "..", "a/b", "a\\b", "a:b", "a", "a", "a_2", "line\nbreak", "x.y"})
    file.BeginColumn(name, 0);
  file.Commit();
  std::vector<std::string> names;
  for (const auto& [name, bytes] : FilesOf(path)) names.push_back(name);
  std::vector<std::string> expected{"_.._.._x.npy", "_etc_x.npy",     "_...npy", "a_b.npy",
                                    "a_b_2.npy",    "a_b_3.npy",      "a.npy",   "a_2.npy",
                                    "a_2_2.npy",    "line_break.npy", "x.y.npy"};
  std::ranges::sort(expected);
  EXPECT_EQ(names, expected);
}

TEST(NumpyArchive, ColumnsComeBackFromWhatWasWrittenInPieces) {
  const TemporaryFolder folder;
  const auto path = folder.Path() / "samples.npz";
  std::vector<double> values;
  for (int i = 0; i < 100'000; ++i) values.push_back(1.0 / (1 + i));
  NumpyArchive file(path);
  file.BeginColumn("size in mm", values.size());
  file.Append(std::span(values).first(70'001));
  file.Append(std::span(values).subspan(70'001));
  file.BeginColumn("empty", 0);
  file.Commit();
  const auto files = FilesOf(path);
  ASSERT_EQ(files.size(), 2U);
  EXPECT_EQ(ValuesOf(files.at("size in mm.npy"), values.size()), values);
  ValuesOf(files.at("empty.npy"), 0);
}

TEST(NumpyArchive, MissingValuesOfASheetAreNotNumbers) {
  const TemporaryFolder folder;
  const auto path = folder.Path() / "sheet.npz";
  Spreadsheet sheet("s", 3);
  Variable variable("x", 3);
  variable.SetMissingCode(-9);
  variable.AssignValues({1, -9, 2});
  sheet.AddVariable(std::move(variable));
  WriteNumpyArchive(sheet, path);
  const auto values = ValuesOf(FilesOf(path).at("x.npy"), 3);
  EXPECT_EQ(values[0], 1);
  EXPECT_TRUE(std::isnan(values[1]));
  EXPECT_EQ(values[2], 2);
}

TEST(NumpyArchive, LeavesTheTargetAloneUntilItIsComplete) {
  const TemporaryFolder folder;
  const auto path = folder.Path() / "samples.npz";
  {
    NumpyArchive file(path);
    file.BeginColumn("x", 10);
    file.Append(std::vector<double>(5, 1.0));
  }
  EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST(NumpyArchive, AFullDeviceIsAnErrorThatNamesIt) {
  const std::vector<double> values(1 << 20, 1.0);
  try {
    NumpyArchive file("/dev/full");
    file.BeginColumn("x", values.size());
    file.Append(values);
    file.Commit();
    FAIL() << "a full device took everything";
  } catch (const Error& error) {
    EXPECT_EQ(error.Where(), "/dev/full");
    EXPECT_NE(std::string(error.what()).find("No space left"), std::string::npos) << error.what();
  }
}

}  // namespace
}  // namespace brenvolt
