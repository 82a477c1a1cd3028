// Who moves the limits that a picture shows: the analysis that made it, whose results follow.
#pragma once

#include <QString>
#include <memory>
#include <string>
#include <vector>

namespace brenvolt {
class CAnalysisGraphDoc;
class CAnalysisTableDoc;
}  // namespace brenvolt

namespace brenvolt::desktop {

// A specification limit or a target in a picture.
struct PictureLimit {
  std::size_t panel = 0;
  std::string name;   // "USL"
  std::string about;  // what the axis shows, on which it lies
};

// What became of a limit that was moved.
struct MovedLimit {
  std::shared_ptr<CAnalysisGraphDoc> graph;                // null if the limit was refused
  std::vector<std::shared_ptr<CAnalysisTableDoc>> tables;  // of rates
  QString words;                                           // the rates, or why it was refused
};

class LimitMover {
 public:
  virtual ~LimitMover() = default;
  virtual bool CanMove(const CAnalysisGraphDoc& graph, const PictureLimit& limit) = 0;
  // While a limit is being moved it has passing values; only the last one is a step of a macro.
  virtual MovedLimit Move(const CAnalysisGraphDoc& graph, const PictureLimit& limit, double value,
                          bool isLast) = 0;
};

}  // namespace brenvolt::desktop
