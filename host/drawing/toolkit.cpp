#include "host/drawing/toolkit.h"

#include <QApplication>
#include <clocale>
#include <memory>
#include <string>

namespace brenvolt {
namespace {

// The toolkit needs an application, of which a process may have one; it would take the process's number format
// along with the user's language, and would write its own remarks to standard error.
class Toolkit {
 public:
  Toolkit() {
    if (QCoreApplication::instance() != nullptr) return;
    const std::string former = std::setlocale(LC_ALL, nullptr);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    application_ = std::make_unique<QApplication>(count_, arguments_);
    std::setlocale(LC_ALL, former.c_str());
  }

 private:
  int count_ = 3;
  char name_[9] = "brenvolt";
  char option_[10] = "-platform";
  char platform_[10] = "offscreen";
  char* arguments_[4] = {name_, option_, platform_, nullptr};
  std::unique_ptr<QApplication> application_;
};

}  // namespace

void RequireToolkit() {
  static const Toolkit toolkit;
}

}  // namespace brenvolt
