#include "host/graphs/framed_picture.h"

#include "host/base/process/dynamic_library.h"

namespace brenvolt {

FramedPicture DrawFramedPicture(const Graph& graph, const PictureStyle& style) {
  static FramedPictureFunction* const draw =
      DrawingLibrary().Symbol<FramedPictureFunction*()>(kFramedPictureSymbol)();
  return draw(graph, style);
}

}  // namespace brenvolt
