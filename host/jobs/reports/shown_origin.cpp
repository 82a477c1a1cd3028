#include "host/jobs/reports/shown_origin.h"

#include <utility>

#include "host/jobs/reports/repeating_command.h"

namespace brenvolt {

ShownOrigin OriginOf(const FitJob& job, std::string obstacle) {
  return {CommandOf(job), std::move(obstacle)};
}

ShownOrigin OriginOf(const SimulateJob& job, std::string obstacle) {
  return {CommandOf(job, job.method.value(), AsInteger(job.seed.value())), std::move(obstacle)};
}

ShownOrigin OriginOf(const ProfileJob& job, std::string obstacle) {
  return {CommandOf(job, AsInteger(job.seed.value())), std::move(obstacle)};
}

}  // namespace brenvolt
