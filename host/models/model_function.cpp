#include "host/models/model_function.h"

#include <map>
#include <utility>

#include "host/base/error.h"

namespace brenvolt {
namespace {

using Provided = std::map<std::string, std::shared_ptr<const ModelFunction>, std::less<>>;

// Of the process, which does one thing at a time.
Provided& Functions() {
  static Provided functions;
  return functions;
}

}  // namespace

ProvidedModel::ProvidedModel(std::shared_ptr<const ModelFunction> function) : address_(AddressOf(*function)) {
  if (!Functions().emplace(address_, std::move(function)).second)
    throw Error("two functions are called alike", address_);
}

ProvidedModel::~ProvidedModel() {
  Functions().erase(address_);
}

std::shared_ptr<const ModelFunction> FindProvidedModel(const std::string& address) {
  const auto found = Functions().find(address);
  return found == Functions().end() ? nullptr : found->second;
}

}  // namespace brenvolt
