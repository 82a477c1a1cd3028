#include "apps/desktop/dialogs/caption.h"

#include "apps/desktop/base/text.h"

namespace brenvolt::desktop {
namespace {

CaptionMark MarkOf(QChar letter) {
  switch (letter.unicode()) {
    case u'g':
      return CaptionMark::kAccept;
    case u'`':
      return CaptionMark::kOpen;
    case u'h':
      return CaptionMark::kVariables;
    default:
      return CaptionMark::kNone;
  }
}

}  // namespace

Caption ReadCaption(std::string_view caption) {
  const QString text = Shown(caption).trimmed();
  const CaptionMark mark = text.isEmpty() ? CaptionMark::kNone : MarkOf(text.front());
  const qsizetype words = text.size() > 1 && text[1] == u'&' ? 2 : 1;
  if (mark == CaptionMark::kNone || words >= text.size() || !text[words].isUpper()) return {text};
  return {text.mid(1), mark};
}

QString Spoken(const QString& caption) {
  QString words = caption;
  words.remove(u'&');
  if (words.endsWith(u':')) words.chop(1);
  return words.trimmed();
}

}  // namespace brenvolt::desktop
