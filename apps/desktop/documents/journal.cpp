#include "apps/desktop/documents/journal.h"

#include <QDataStream>
#include <QDir>
#include <QUuid>
#include <algorithm>

#include "apps/desktop/base/text.h"
#include "apps/desktop/documents/edit_stream.h"
#include "host/base/error.h"
#include "host/base/files/file_lock.h"

namespace brenvolt::desktop {
namespace {

// The file: a header, then records. A record is its length, written last, so that one that was cut short has none; its
// kind; its content.
constexpr quint32 kMagic = 0x4252564A;
constexpr quint32 kVersion = 1;
constexpr qint64 kLengthBytes = sizeof(qint64);

enum class RecordKind : quint8 { kEdits = 1, kSave = 2 };

constexpr char kEnding[] = ".journal";

// The file is this one's alone, and still there: who looked for left journals may have removed it before.
bool IsOwned(const QFile& file) {
  return LockOpenFile(file.handle()) && file.exists();
}

// As long as the file is there it is locked.
void RemoveOwned(QFile& file) {
  QFile::remove(file.fileName());
  file.close();
}

QString NewName(const std::filesystem::path& folder) {
  QDir().mkpath(ShownPath(folder));
  return ShownPath(folder) + QLatin1Char('/') + QUuid::createUuid().toString(QUuid::WithoutBraces) +
         QLatin1String(kEnding);
}

QDataStream& operator<<(QDataStream& stream, const JournalBase& base) {
  return stream << QFile::encodeName(ShownPath(base.file)) << base.decimalComma
                << static_cast<qint64>(base.state.size) << static_cast<qint64>(base.state.modified)
                << static_cast<quint32>(base.state.changes);
}

QDataStream& operator>>(QDataStream& stream, JournalBase& base) {
  QByteArray file;
  qint64 size = 0;
  qint64 modified = 0;
  quint32 changes = 0;
  stream >> file >> base.decimalComma >> size >> modified >> changes;
  base.file = file.toStdString();
  base.state = {size, modified, changes};
  return stream;
}

// A project whose save was cut short is as it was before once it is opened: what the killed process left beside it
// undoes the save.
bool IsSaveCutShort(const std::filesystem::path& target) {
  std::filesystem::path rollback = target;
  rollback += "-journal";
  std::error_code ignored;
  return std::filesystem::exists(rollback, ignored) && std::filesystem::file_size(rollback, ignored) > 0;
}

}  // namespace

Journal::Journal(const std::filesystem::path& folder, const JournalBase& base) {
  constexpr int kAttempts = 3;
  bool hasBegun = false;
  for (int i = 0; i < kAttempts && !hasBegun; ++i) hasBegun = Begin(folder);
  if (!hasBegun)
    throw Error("unsaved edits cannot be kept for the case of a crash: " + Utf8(file_.errorString()),
                Utf8(file_.fileName()));
  QDataStream stream(&file_);
  stream << kMagic << kVersion << base;
  if (stream.status() == QDataStream::Ok && file_.flush()) return;
  const Error error("unsaved edits cannot be kept for the case of a crash: " + Utf8(file_.errorString()),
                    Utf8(file_.fileName()));
  RemoveOwned(file_);
  throw error;
}

bool Journal::Begin(const std::filesystem::path& folder) {
  file_.setFileName(NewName(folder));
  if (!file_.open(QIODevice::ReadWrite | QIODevice::NewOnly)) return false;
  if (IsOwned(file_)) return true;
  file_.close();
  return false;
}

Journal::~Journal() {
  RemoveOwned(file_);
}

void Journal::Append(Edits& edits) {
  const qint64 begin = file_.size();
  file_.seek(begin);
  QDataStream stream(&file_);
  stream << qint64{0} << static_cast<quint8>(RecordKind::kEdits);
  try {
    WriteEdits(edits, file_);
    Finish(begin);
  } catch (const Error&) {
    file_.resize(begin);
    throw Error("unsaved edits cannot be kept for the case of a crash: " + Utf8(file_.errorString()),
                Utf8(file_.fileName()));
  }
}

void Journal::BeginSave(const std::filesystem::path& target) {
  const qint64 begin = file_.size();
  file_.seek(begin);
  QDataStream stream(&file_);
  stream << qint64{0} << static_cast<quint8>(RecordKind::kSave)
         << JournalBase{target, false, FileState::Of(target)};
  Finish(begin);
}

void Journal::Finish(qint64 begin) {
  const qint64 end = file_.pos();
  last_ = begin;
  if (!file_.flush() || !file_.seek(begin)) throw Error(Utf8(file_.errorString()));
  QDataStream stream(&file_);
  stream << (end - begin);
  if (stream.status() != QDataStream::Ok || !file_.flush()) throw Error(Utf8(file_.errorString()));
}

// Needs no room on the device, which may be full.
void Journal::TakeBack() {
  file_.resize(last_);
}

LeftJournal::LeftJournal(const std::filesystem::path& journal) : path_(journal), file_(ShownPath(journal)) {}

std::unique_ptr<LeftJournal> LeftJournal::Take(const std::filesystem::path& journal) {
  std::unique_ptr<LeftJournal> left(new LeftJournal(journal));
  if (!left->file_.open(QIODevice::ReadOnly) || !IsOwned(left->file_)) return nullptr;
  if (left->IsOfOtherVersion()) return nullptr;
  if (left->ReadHeader() && left->SkipRecords() && !left->IsSaved()) return left;
  left->Remove();
  return nullptr;
}

// One that was cut short within its header has no edits, and no version.
bool LeftJournal::IsOfOtherVersion() {
  QDataStream stream(&file_);
  quint32 magic = 0;
  quint32 version = 0;
  stream >> magic >> version;
  const bool isWhole = stream.status() == QDataStream::Ok;
  file_.seek(0);
  return isWhole && magic == kMagic && version != kVersion;
}

bool LeftJournal::IsOfOtherVersion(const std::filesystem::path& journal) {
  LeftJournal left(journal);
  return left.file_.open(QIODevice::ReadOnly) && IsOwned(left.file_) && left.IsOfOtherVersion();
}

bool LeftJournal::ReadHeader() {
  QDataStream stream(&file_);
  quint32 magic = 0;
  quint32 version = 0;
  stream >> magic >> version >> base_;
  first_ = file_.pos();
  return magic == kMagic && version == kVersion && stream.status() == QDataStream::Ok;
}

// Counts the records, and finds whether the last one began a save; true if there are edits.
bool LeftJournal::SkipRecords() {
  QDataStream stream(&file_);
  for (qint64 begin = first_;;) {
    qint64 length = 0;
    quint8 kind = 0;
    if (!file_.seek(begin)) break;
    stream >> length >> kind;
    if (stream.status() != QDataStream::Ok || length <= kLengthBytes || begin + length > file_.size()) break;
    save_.reset();
    if (kind == static_cast<quint8>(RecordKind::kEdits)) {
      ++count_;
    } else {
      stream >> save_.emplace();
    }
    begin += length;
  }
  file_.seek(first_);
  return count_ > 0;
}

bool LeftJournal::IsSaved() const {
  if (!save_ || IsSaveCutShort(save_->file)) return false;
  const FileState now = FileState::Of(save_->file);
  return now.size >= 0 && now != save_->state;
}

bool LeftJournal::FitsFile() const {
  const FileState now = FileState::Of(base_.file);
  if (!save_) return now == base_.state;
  return now.size == base_.state.size && now.changes == base_.state.changes;
}

std::optional<Edits> LeftJournal::Next() {
  QDataStream stream(&file_);
  for (;;) {
    const qint64 begin = file_.pos();
    qint64 length = 0;
    quint8 kind = 0;
    stream >> length >> kind;
    if (stream.status() != QDataStream::Ok || length <= kLengthBytes || begin + length > file_.size())
      return std::nullopt;
    std::optional<Edits> edits;
    if (kind == static_cast<quint8>(RecordKind::kEdits)) edits = ReadEdits(file_);
    file_.seek(begin + length);
    if (edits) return edits;
  }
}

void LeftJournal::Remove() {
  RemoveOwned(file_);
}

namespace {

// The one written to last first.
std::vector<std::filesystem::path> JournalsIn(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> paths;
  const QDir files(ShownPath(folder), QStringLiteral("*") + QLatin1String(kEnding), QDir::Time, QDir::Files);
  for (const QString& name : files.entryList()) paths.push_back(PathOf(files.filePath(name)));
  return paths;
}

}  // namespace

std::vector<std::unique_ptr<LeftJournal>> LeftJournals(const std::filesystem::path& folder) {
  std::vector<std::unique_ptr<LeftJournal>> left;
  for (const auto& path : JournalsIn(folder)) {
    if (auto journal = LeftJournal::Take(path)) left.push_back(std::move(journal));
  }
  return left;
}

std::vector<std::filesystem::path> JournalsOfOtherVersions(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> others = JournalsIn(folder);
  std::erase_if(others, [](const auto& path) { return !LeftJournal::IsOfOtherVersion(path); });
  return others;
}

}  // namespace brenvolt::desktop
