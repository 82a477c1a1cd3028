// A formula made ready to run: a list of kernels over blocks of cases.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "host/formula/block.h"

namespace brenvolt {

// Where a kernel finds an argument.
struct Operand {
  enum class Kind : std::uint8_t { kConstant, kVariable, kSlot };
  Kind kind = Kind::kConstant;
  std::size_t index = 0;  // of a constant; of a variable in Program::Variables(); of a slot
};

// Built by its Append functions in the order of evaluation, then run by any number of threads at once.
class Program {
 public:
  // Cases that a kernel takes at once: a few such columns lie in the nearest cache.
  static constexpr std::size_t kBlock = 512;

  Operand AppendConstant(double value);
  // `variable` is whatever number the caller knows a variable by.
  Operand AppendVariable(std::size_t variable);
  // The result of a kernel; operands that are slots are the last ones that were appended. A kernel of
  // constants runs at once.
  Operand AppendCall(BlockKernel kernel, std::span<const Operand> operands);
  void SetResult(Operand result) { result_ = result; }

  // The numbers of the variables used, in the order in which they were first met.
  std::span<const std::size_t> Variables() const { return variables_; }

  // What Run needs besides its arguments; one for each thread, any number of runs.
  struct Workspace {
    std::vector<double> slots;
  };
  Workspace MakeWorkspace() const { return {std::vector<double>(slotCount_ * kBlock)}; }

  // The values of the program for out.size() cases, kBlock at most, from a column for each of Variables().
  void Run(std::span<const double* const> columns, Workspace& workspace, std::span<double> out) const;

 private:
  struct Call {
    BlockKernel kernel;
    std::size_t firstOperand;
    std::size_t operandCount;
    std::size_t slot;
  };
  BlockArgument Resolve(Operand operand, std::span<const double* const> columns, Workspace& workspace) const;

  std::vector<double> constants_;
  std::vector<std::size_t> variables_;
  std::vector<Operand> operands_;
  std::vector<Call> calls_;
  std::size_t liveSlots_ = 0;
  std::size_t slotCount_ = 0;
  Operand result_;
};

}  // namespace brenvolt
