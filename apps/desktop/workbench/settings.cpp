#include "apps/desktop/workbench/settings.h"

#include <QApplication>
#include <QPalette>
#include <QSettings>
#include <QStandardPaths>
#include <QStyle>
#include <QStyleFactory>
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

QPalette DarkPalette() {
  const QColor window(0x25, 0x28, 0x2d);
  const QColor base(0x1b, 0x1d, 0x21);
  const QColor text(0xe4, 0xe6, 0xe9);
  const QColor faint(0x8a, 0x90, 0x99);
  const QColor accent(0x3d, 0x8f, 0xd6);
  QPalette palette(text, window, window.lighter(150), window.darker(150), window.lighter(120), text,
                   Qt::white, base, window);
  palette.setColor(QPalette::Button, window.lighter(115));
  palette.setColor(QPalette::AlternateBase, base.lighter(125));
  palette.setColor(QPalette::ToolTipBase, window.lighter(130));
  palette.setColor(QPalette::ToolTipText, text);
  palette.setColor(QPalette::PlaceholderText, faint);
  palette.setColor(QPalette::Highlight, accent);
  palette.setColor(QPalette::HighlightedText, Qt::white);
  palette.setColor(QPalette::Link, accent.lighter(140));
  palette.setColor(QPalette::LinkVisited, accent.lighter(140));
  for (const auto role :
       {QPalette::Text, QPalette::WindowText, QPalette::ButtonText, QPalette::HighlightedText})
    palette.setColor(QPalette::Disabled, role, faint);
  palette.setColor(QPalette::Disabled, QPalette::Highlight, window.lighter(140));
  return palette;
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

void ApplyTheme(ThemeChoice theme) {
  if (theme == ThemeChoice::kSystem) {
    QApplication::setPalette(QPalette());
    return;
  }
  // The style of the system may not follow the colours.
  QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
  QApplication::setPalette(theme == ThemeChoice::kDark ? DarkPalette()
                                                       : QApplication::style()->standardPalette());
}

}  // namespace brenvolt::desktop
