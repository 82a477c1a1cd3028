// Which file something is saved in.
#pragma once

#include <QString>

class QWidget;

namespace brenvolt::desktop {

// Whether every name gets the ending of the chosen format, or only one without an ending.
enum class NameEnding { kIfMissing, kAlways };

// Asks for a file; the filters name formats with one ending each, as "PDF (*.pdf);;HTML (*.html)". The name has its
// ending before it is asked whether a file of that name may be replaced, so that none is replaced unasked. Empty if the
// person cancelled.
QString AskFileToSave(QWidget* parent, const QString& title, const QString& proposed, const QString& filters,
                      NameEnding ending = NameEnding::kIfMissing);

}  // namespace brenvolt::desktop
