// Captions of controls as templates write them.
#pragma once

#include <QString>
#include <string_view>

namespace brenvolt::desktop {

// What a caption's mark stands for: captions of buttons may begin with one, a small letter or a grave accent right
// before the capital that begins the words ("g&OK", "`Open D&ata").
enum class CaptionMark { kNone, kAccept, kOpen, kVariables };

struct Caption {
  QString text;  // with its access key after '&', without the mark and the blanks around it
  CaptionMark mark = CaptionMark::kNone;
};
Caption ReadCaption(std::string_view caption);

// The words alone, as a screen reader says them: without the sign of the access key and without a colon at the end.
QString Spoken(const QString& caption);

}  // namespace brenvolt::desktop
