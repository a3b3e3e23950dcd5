#pragma once

#include "tools/command_line.h"
#include "tools/operations/operation.h"

namespace zavri::tools {

// This kind of command runs one operation on frames of files and writes what it makes.
class OperateCommand : public Command {
 public:
  using Command::Command;

  void declare(Options& options) override;
  int run(Console& console) override;

 protected:
  virtual Operation& operation() = 0;

 private:
  Input input_;
  Output output_;
};

// This command has its operation's name.
template <class AnyOperation>
class Operate : public OperateCommand {
 public:
  Operate(const char* what, const char* example)
      : OperateCommand(AnyOperation::kName, what, example) {}

 protected:
  Operation& operation() override { return operation_; }

 private:
  AnyOperation operation_;
};

}  // namespace zavri::tools
