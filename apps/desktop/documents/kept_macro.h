// The text of a macro while it is in no file of the person's, in a file of its own, so that a killed process loses
// nothing. The process that keeps it holds a lock beside it, so that other processes see whether it was left.
#pragma once

#include <QFile>
#include <QString>
#include <filesystem>
#include <memory>
#include <vector>

namespace brenvolt::desktop {

struct MacroText {
  std::filesystem::path file;  // that the macro was read from; empty: a new one
  QString text;
};

class KeptMacro {
 public:
  // In a folder, which is made when something is first kept.
  explicit KeptMacro(std::filesystem::path folder) : folder_(std::move(folder)) {}
  // Nothing is left, unless the process is killed.
  ~KeptMacro() { Forget(); }
  KeptMacro(const KeptMacro&) = delete;
  KeptMacro& operator=(const KeptMacro&) = delete;

  // In place of what was kept before, which stays until this is whole. Throws Error.
  void Keep(const MacroText& macro);
  void Forget();

 private:
  std::filesystem::path folder_;
  QFile lock_;  // open as long as something is kept
};

// A text that a process left, which no other process takes as long as this lives.
class LeftMacro {
 public:
  // Nothing for a text that belongs to a process that runs. One that is damaged is removed.
  static std::unique_ptr<LeftMacro> Take(const QString& lock);

  const MacroText& Content() const { return content_; }
  void Remove();

 private:
  explicit LeftMacro(const QString& lock) : lock_(lock) {}
  bool Read();

  QFile lock_;
  MacroText content_;
};

// Those in a folder that can be taken.
std::vector<std::unique_ptr<LeftMacro>> LeftMacros(const std::filesystem::path& folder);

}  // namespace brenvolt::desktop
