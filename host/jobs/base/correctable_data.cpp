#include "host/jobs/base/correctable_data.h"

#include "host/base/quoted.h"

namespace brenvolt {

DataFile OpenCorrectable(JobData& data) {
  try {
    return OpenJobData(data);
  } catch (const TextsAmongNumbers& found) {
    std::vector<std::string>& texts = data.text.text;
    texts.insert(texts.end(), found.Columns().begin(), found.Columns().end());
  }
  return OpenJobData(data);
}

std::vector<std::string> FoundIn(const DataFile& file, const JobData& data) {
  std::vector<std::string> found;
  if (std::string text = ReadAsText(file); !text.empty()) found.push_back(std::move(text));
  for (const ReadingNote& doubt : file.doubts) found.push_back(doubt.message);
  for (const std::string& column : data.text.text)
    found.push_back("the values of " + Quoted(column) +
                    " are read as texts, since some of them are not numbers");
  return found;
}

}  // namespace brenvolt
