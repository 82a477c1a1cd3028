// The right to change a file, for which programs wait their turn: of several that read a file, add to it and write it
// back, one after the other does so.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

namespace brenvolt {

// How long this process waits for its turn, and for files in use by other programs.
struct TurnPatience {
  double seconds = 60;
  // Takes a word about a file for which the process has been waiting for a while; may be empty.
  std::function<void(const std::string& file)> tell;
};
void SetTurnPatience(TurnPatience patience);
TurnPatience CurrentTurnPatience();

// One wait within the patience of the process: pauses between attempts, at first short.
class TurnWait {
 public:
  explicit TurnWait(std::string file);
  // Starts anew.
  void Begin() noexcept;
  // Pauses; false if the time is over. Throws nothing: after an interruption (interruption.h) it says false as well.
  bool Pause() noexcept;

 private:
  std::string file_;
  TurnPatience patience_;
  double waited_ = 0;
  double pause_ = 0;
  bool told_ = false;
};

class FileTurn {
 public:
  // Waits until no other process or thread has the turn of the file that `path` names, which need not be there. Where
  // the folder takes no new file, or its file system knows no locks, there is nothing to wait for. A thread that has
  // the turn may take it again. Throws Error naming `path` when the patience is at its end, and UserCancelled once an
  // interruption was noted.
  explicit FileTurn(const std::filesystem::path& path);
  ~FileTurn();
  FileTurn(const FileTurn&) = delete;
  FileTurn& operator=(const FileTurn&) = delete;

 private:
  std::filesystem::path file_;
};

}  // namespace brenvolt
