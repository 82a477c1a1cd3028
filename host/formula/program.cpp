#include "host/formula/program.h"

#include <algorithm>
#include <array>
#include <cassert>

namespace brenvolt {

Operand Program::AppendConstant(double value) {
  constants_.push_back(value);
  return {Operand::Kind::kConstant, constants_.size() - 1};
}

Operand Program::AppendVariable(std::size_t variable) {
  const auto found = std::ranges::find(variables_, variable);
  const auto index = static_cast<std::size_t>(found - variables_.begin());
  if (found == variables_.end()) variables_.push_back(variable);
  return {Operand::Kind::kVariable, index};
}

Operand Program::AppendCall(BlockKernel kernel, std::span<const Operand> operands) {
  assert(operands.size() <= kMostArguments);
  const auto isConstant = [](Operand operand) { return operand.kind == Operand::Kind::kConstant; };
  if (std::ranges::all_of(operands, isConstant)) {
    std::array<BlockArgument, kMostArguments> arguments{};
    for (std::size_t i = 0; i < operands.size(); ++i) arguments[i] = {&constants_[operands[i].index], true};
    double value = 0;
    kernel({arguments.data(), operands.size()}, {&value, 1});
    return AppendConstant(value);
  }
  const auto isSlot = [](Operand operand) { return operand.kind == Operand::Kind::kSlot; };
  // The result takes the place of the first slot that the call uses up.
  const std::size_t slot = liveSlots_ - static_cast<std::size_t>(std::ranges::count_if(operands, isSlot));
  calls_.push_back({kernel, operands_.size(), operands.size(), slot});
  operands_.insert(operands_.end(), operands.begin(), operands.end());
  liveSlots_ = slot + 1;
  slotCount_ = std::max(slotCount_, liveSlots_);
  return {Operand::Kind::kSlot, slot};
}

BlockArgument Program::Resolve(Operand operand, std::span<const double* const> columns,
                               Workspace& workspace) const {
  switch (operand.kind) {
    case Operand::Kind::kConstant:
      return {&constants_[operand.index], true};
    case Operand::Kind::kVariable:
      return {columns[operand.index], false};
    case Operand::Kind::kSlot:
      break;
  }
  return {workspace.slots.data() + operand.index * kBlock, false};
}

void Program::Run(std::span<const double* const> columns, Workspace& workspace, std::span<double> out) const {
  assert(out.size() <= kBlock);
  std::array<BlockArgument, kMostArguments> arguments{};
  for (const Call& call : calls_) {
    for (std::size_t i = 0; i < call.operandCount; ++i) {
      arguments[i] = Resolve(operands_[call.firstOperand + i], columns, workspace);
    }
    call.kernel({arguments.data(), call.operandCount},
                {workspace.slots.data() + call.slot * kBlock, out.size()});
  }
  const BlockArgument result = Resolve(result_, columns, workspace);
  for (std::size_t i = 0; i < out.size(); ++i) out[i] = result.At(i);
}

}  // namespace brenvolt
