// Reports as Markdown (CommonMark with tables), with pictures as files beside it.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/reporting/report.h"

namespace brenvolt {

struct MarkdownReport {
  std::string text;
  std::vector<std::pair<std::string, std::string>> pictures;  // names and bytes of SVG files
};

// The text shows pictures of a folder beside it. Without pictures a note says which packages bring what draws them.
MarkdownReport MarkdownOf(const Report& report, const std::string& pictureFolder, bool withPictures);

}  // namespace brenvolt
