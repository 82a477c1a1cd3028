#include "apps/desktop/workbench/settings.h"

#include <QSettings>
#include <QStandardPaths>
#include <utility>

#include "apps/desktop/base/text.h"

namespace brenvolt::desktop {
namespace {

constexpr qsizetype kMostRecentFiles = 12;

QVariant Kept(const QString& file, const QString& key) {
  return QSettings(file, QSettings::IniFormat).value(key);
}

void Keep(const QString& file, const QString& key, const QVariant& value) {
  QSettings(file, QSettings::IniFormat).setValue(key, value);
}

}  // namespace

Settings::Settings(std::filesystem::path folder) : folder_(std::move(folder)) {}

std::filesystem::path Settings::PersonalFolder() {
  return PathOf(QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation));
}

QString Settings::File() const {
  return ShownPath(folder_ / "window.ini");
}

QStringList Settings::RecentFiles() const {
  return Kept(File(), QStringLiteral("recent")).toStringList();
}

void Settings::AddRecentFile(const QString& file) {
  QStringList files = RecentFiles();
  files.removeAll(file);
  files.prepend(file);
  Keep(File(), QStringLiteral("recent"), QStringList(files.mid(0, kMostRecentFiles)));
}

QStringList Settings::SessionFiles() const {
  return Kept(File(), QStringLiteral("session")).toStringList();
}

void Settings::SetSessionFiles(const QStringList& files) {
  Keep(File(), QStringLiteral("session"), files);
}

ThemeChoice Settings::Theme() const {
  const int stored = Kept(File(), QStringLiteral("theme")).toInt();
  return stored == 1 ? ThemeChoice::kLight : stored == 2 ? ThemeChoice::kDark : ThemeChoice::kSystem;
}

void Settings::SetTheme(ThemeChoice theme) {
  Keep(File(), QStringLiteral("theme"), static_cast<int>(theme));
}

QByteArray Settings::Layout(const QString& part) const {
  return Kept(File(), QStringLiteral("layout/") + part).toByteArray();
}

void Settings::SetLayout(const QString& part, const QByteArray& layout) {
  Keep(File(), QStringLiteral("layout/") + part, layout);
}

}  // namespace brenvolt::desktop
