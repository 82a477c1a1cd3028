#include "host/base/work_watch.h"

#include <utility>

namespace brenvolt {
namespace {

thread_local const WorkWatch* current = nullptr;

}  // namespace

WorkWatch::WorkWatch(Tell tell) : tell_(std::move(tell)), outer_(std::exchange(current, this)) {}

WorkWatch::~WorkWatch() {
  current = outer_;
}

const WorkWatch* WorkWatch::Current() {
  return current;
}

}  // namespace brenvolt
