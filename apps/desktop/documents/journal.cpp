#include "apps/desktop/documents/journal.h"

#include <QDataStream>
#include <QDir>
#include <QUuid>
#include <algorithm>

#include "apps/desktop/base/text.h"
#include "apps/desktop/documents/edit_stream.h"
#include "host/base/error.h"

namespace brenvolt::desktop {
namespace {

// The file: a header, then records. A record is its length, written last, so that one that was cut short has none; its
// kind; its content.
constexpr quint32 kMagic = 0x4252564A;
constexpr quint32 kVersion = 1;
constexpr qint64 kLengthBytes = sizeof(qint64);

enum class RecordKind : quint8 { kEdits = 1, kSave = 2 };

constexpr char kEnding[] = ".journal";

constexpr QLatin1String kLockEnding(".lock");

QString LockOf(const QString& journal) {
  return journal + kLockEnding;
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

Journal::Journal(const std::filesystem::path& folder, const JournalBase& base)
    : lock_(LockOf(NewName(folder))), file_(lock_.fileName().chopped(kLockEnding.size())) {
  lock_.setStaleLockTime(0);
  if (!lock_.tryLock() || !file_.open(QIODevice::ReadWrite | QIODevice::NewOnly))
    throw Error("unsaved edits cannot be kept for the case of a crash", Utf8(file_.fileName()));
  QDataStream stream(&file_);
  stream << kMagic << kVersion << base;
  if (stream.status() != QDataStream::Ok || !file_.flush())
    throw Error("unsaved edits cannot be kept for the case of a crash: " + Utf8(file_.errorString()),
                Utf8(file_.fileName()));
}

Journal::~Journal() {
  file_.remove();
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

LeftJournal::LeftJournal(const std::filesystem::path& journal)
    : path_(journal), lock_(LockOf(ShownPath(journal))), file_(ShownPath(journal)) {
  lock_.setStaleLockTime(0);
}

std::unique_ptr<LeftJournal> LeftJournal::Take(const std::filesystem::path& journal) {
  std::unique_ptr<LeftJournal> left(new LeftJournal(journal));
  if (!left->lock_.tryLock() || !left->file_.open(QIODevice::ReadOnly)) return nullptr;
  if (left->ReadHeader() && left->SkipRecords() && !left->IsSaved()) return left;
  left->Remove();
  return nullptr;
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
  file_.remove();
}

namespace {

// A process may be killed between taking a lock and beginning its journal.
void RemoveLocksWithoutJournal(const QDir& folder) {
  const QStringList locks =
      folder.entryList({QStringLiteral("*") + LockOf(QLatin1String(kEnding))}, QDir::Files);
  for (const QString& name : locks) {
    if (folder.exists(name.chopped(kLockEnding.size()))) continue;
    QLockFile lock(folder.filePath(name));
    lock.setStaleLockTime(0);
    if (lock.tryLock()) lock.unlock();
  }
}

}  // namespace

std::vector<std::unique_ptr<LeftJournal>> LeftJournals(const std::filesystem::path& folder) {
  RemoveLocksWithoutJournal(QDir(ShownPath(folder)));
  std::vector<std::unique_ptr<LeftJournal>> left;
  const QDir files(ShownPath(folder), QStringLiteral("*") + QLatin1String(kEnding), QDir::Time, QDir::Files);
  for (const QString& name : files.entryList()) {
    if (auto journal = LeftJournal::Take(PathOf(files.filePath(name)))) left.push_back(std::move(journal));
  }
  return left;
}

}  // namespace brenvolt::desktop
