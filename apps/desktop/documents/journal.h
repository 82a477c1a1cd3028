// What was done to a project since it was last saved, in a file of its own, so that a killed process loses nothing: each
// edit is in the file before the next one is made. The file goes when the project is saved or closed. The process that
// writes it holds its lock, so that other processes see whether it was left.
#pragma once

#include <QFile>
#include <filesystem>
#include <memory>
#include <optional>

#include "apps/desktop/documents/edit.h"
#include "apps/desktop/documents/file_state.h"

namespace brenvolt::desktop {

// What the edits of a journal are made to.
struct JournalBase {
  std::filesystem::path file;  // absolute; empty: a new project
  bool decimalComma = false;   // of a file that is no project
  FileState state;             // as it was when it was read or last saved
};

class Journal {
 public:
  // Begins a journal in a folder, which is made if it is missing. Throws Error.
  Journal(const std::filesystem::path& folder, const JournalBase& base);
  // Removes the journal. A process that is killed leaves it.
  ~Journal();
  Journal(const Journal&) = delete;
  Journal& operator=(const Journal&) = delete;

  // Throws Error, and the edits before stay in the journal.
  void Append(Edits& edits);
  // Says that the project is about to be saved in a file: if it is another one afterwards, it holds all edits.
  void BeginSave(const std::filesystem::path& target);
  // The last record does not count: its edits turned out to be impossible, or its save failed.
  void TakeBack();

 private:
  bool Begin(const std::filesystem::path& folder);
  void Finish(qint64 begin);

  qint64 last_ = 0;  // where the last record stands
  QFile file_;
};

// A journal that a process left, which is held as long as this lives: no other process takes it meanwhile.
class LeftJournal {
 public:
  // Nothing if the journal belongs to a process that runs or to another version of the program, holds no edits, or all of
  // it was saved; of the latter two nothing is left behind.
  static std::unique_ptr<LeftJournal> Take(const std::filesystem::path& journal);

  // True for a journal that a process of another version left, which only that version can read.
  static bool IsOfOtherVersion(const std::filesystem::path& journal);

  const JournalBase& Base() const { return base_; }
  std::size_t EditCount() const { return count_; }
  std::filesystem::path Path() const { return path_; }
  // True if the file that the edits were made to is as it was; asked once it was read, which undoes a save that was cut
  // short.
  bool FitsFile() const;

  // Hands the edits out in turn; the last one is followed by nothing. What is damaged counts as not there.
  std::optional<Edits> Next();
  void Remove();

 private:
  explicit LeftJournal(const std::filesystem::path& journal);
  bool IsOfOtherVersion();
  bool ReadHeader();
  bool SkipRecords();
  bool IsSaved() const;

  std::filesystem::path path_;
  QFile file_;
  JournalBase base_;
  qint64 first_ = 0;  // where the first record stands
  std::size_t count_ = 0;
  std::optional<JournalBase> save_;  // that was begun last, with the state of its target before
};

// The journals in a folder that can be taken.
std::vector<std::unique_ptr<LeftJournal>> LeftJournals(const std::filesystem::path& folder);
// Those in it that wait for the version that wrote them.
std::vector<std::filesystem::path> JournalsOfOtherVersions(const std::filesystem::path& folder);

}  // namespace brenvolt::desktop
