// Texts of the host as the toolkit holds them, and back.
#pragma once

#include <QFile>
#include <QString>
#include <filesystem>
#include <string>
#include <string_view>

namespace brenvolt::desktop {

// Bytes that are not UTF-8 become replacement characters.
inline QString Shown(std::string_view utf8) {
  return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

inline QString ShownPath(const std::filesystem::path& path) {
  return QFile::decodeName(path.c_str());
}

inline std::string Utf8(const QString& text) {
  return text.toStdString();
}

inline std::filesystem::path PathOf(const QString& text) {
  return QFile::encodeName(text).toStdString();
}

}  // namespace brenvolt::desktop
