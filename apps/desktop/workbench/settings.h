// What the window keeps from one start to the next, and where.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <filesystem>

#include "apps/desktop/base/theme.h"

namespace brenvolt::desktop {

class Settings {
 public:
  // A folder of the person's own: that of the person, or of a test. It is made when something is first kept.
  explicit Settings(std::filesystem::path folder);
  static std::filesystem::path PersonalFolder();

  std::filesystem::path Journals() const { return folder_ / "unsaved"; }
  std::filesystem::path Macros() const { return folder_ / "macros"; }

  // Files, the one opened last first; a file that is added again moves to the front.
  QStringList RecentFiles() const;
  void AddRecentFile(const QString& file);
  // What was open when the window was closed.
  QStringList SessionFiles() const;
  void SetSessionFiles(const QStringList& files);

  ThemeChoice Theme() const;
  void SetTheme(ThemeChoice theme);
  // The places of the window and of its parts, as the toolkit describes them.
  QByteArray Layout(const QString& part) const;
  void SetLayout(const QString& part, const QByteArray& layout);

 private:
  QString File() const;

  std::filesystem::path folder_;
};

}  // namespace brenvolt::desktop
