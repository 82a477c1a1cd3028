#include "apps/desktop/workbench/macro_process.h"

#include <QCoreApplication>

#include "apps/desktop/base/text.h"

namespace brenvolt::desktop {

MacroProcess::MacroProcess(QObject* parent) : QObject(parent) {
  process_.setProcessChannelMode(QProcess::MergedChannels);
  connect(&process_, &QProcess::readyRead, this,
          [this] { emit printed(QString::fromUtf8(process_.readAll())); });
  connect(&process_, &QProcess::finished, this, [this](int status, QProcess::ExitStatus how) {
    emit ended(how == QProcess::NormalExit && status == 0);
  });
  connect(&process_, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
    if (error != QProcess::FailedToStart) return;
    emit printed(tr("The command %1 that runs macros cannot be started: %2\n")
                     .arg(process_.program(), process_.errorString()));
    emit ended(false);
  });
}

void MacroProcess::Start(const std::filesystem::path& macro) {
  process_.start(QCoreApplication::applicationDirPath() + QStringLiteral("/brenvolt"),
                 {QStringLiteral("macro"), ShownPath(macro)});
}

void MacroProcess::Stop() {
  process_.kill();
}

}  // namespace brenvolt::desktop
