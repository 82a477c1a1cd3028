#include "apps/desktop/documents/kept_macro.h"

#include <QDataStream>
#include <QDir>
#include <QSaveFile>
#include <QUuid>
#include <utility>

#include "apps/desktop/base/text.h"
#include "host/base/error.h"
#include "host/base/files/file_lock.h"

namespace brenvolt::desktop {
namespace {

constexpr char kLockEnding[] = ".macrolock";
constexpr quint32 kMagic = 0x4252564D;
constexpr quint32 kVersion = 1;

// The file of the text that a lock belongs to.
QString TextFileOf(const QString& lock) {
  return lock.chopped(static_cast<qsizetype>(sizeof kLockEnding) - 1) + QStringLiteral(".macro");
}

// As long as the text is there its lock is.
void RemoveBoth(QFile& lock) {
  QFile::remove(TextFileOf(lock.fileName()));
  lock.remove();
}

[[noreturn]] void Refuse(const QFileDevice& file) {
  throw Error("the macro cannot be kept for the case of a crash: " + Utf8(file.errorString()),
              Utf8(file.fileName()));
}

}  // namespace

void KeptMacro::Keep(const MacroText& macro) {
  if (!lock_.isOpen()) {
    QDir().mkpath(ShownPath(folder_));
    lock_.setFileName(ShownPath(folder_) + QLatin1Char('/') +
                      QUuid::createUuid().toString(QUuid::WithoutBraces) + QLatin1String(kLockEnding));
    if (!lock_.open(QIODevice::ReadWrite | QIODevice::NewOnly)) Refuse(lock_);
    LockOpenFile(lock_.handle());
  }
  QSaveFile file(TextFileOf(lock_.fileName()));
  if (!file.open(QIODevice::WriteOnly)) Refuse(file);
  QDataStream stream(&file);
  stream << kMagic << kVersion << QFile::encodeName(ShownPath(macro.file)) << macro.text;
  if (stream.status() != QDataStream::Ok || !file.commit()) Refuse(file);
}

void KeptMacro::Forget() {
  if (lock_.isOpen()) RemoveBoth(lock_);
}

std::unique_ptr<LeftMacro> LeftMacro::Take(const QString& lock) {
  std::unique_ptr<LeftMacro> left(new LeftMacro(lock));
  if (!left->lock_.open(QIODevice::ReadOnly) || !LockOpenFile(left->lock_.handle()) || !left->lock_.exists())
    return nullptr;
  if (left->Read()) return left;
  left->Remove();
  return nullptr;
}

bool LeftMacro::Read() {
  QFile file(TextFileOf(lock_.fileName()));
  if (!file.open(QIODevice::ReadOnly)) return false;
  QDataStream stream(&file);
  quint32 magic = 0;
  quint32 version = 0;
  QByteArray name;
  stream >> magic >> version >> name >> content_.text;
  content_.file = name.toStdString();
  return magic == kMagic && version == kVersion && stream.status() == QDataStream::Ok;
}

void LeftMacro::Remove() {
  RemoveBoth(lock_);
}

std::vector<std::unique_ptr<LeftMacro>> LeftMacros(const std::filesystem::path& folder) {
  std::vector<std::unique_ptr<LeftMacro>> all;
  const QDir files(ShownPath(folder), QStringLiteral("*") + QLatin1String(kLockEnding), QDir::Time,
                   QDir::Files);
  for (const QString& name : files.entryList()) {
    if (auto left = LeftMacro::Take(files.filePath(name))) all.push_back(std::move(left));
  }
  return all;
}

}  // namespace brenvolt::desktop
