#include "tools/command_line.h"
#include "tools/error.h"

namespace zavri::tools {
namespace {

class View : public Command {
 public:
  using Command::Command;

  void declare(Options& options) override {
    input_.declare(options, "frame");
    output_.declare(options);
  }

  int run(Console& console) override {
    output_.prepare(console);
    const std::vector<Frame> frames = load_frames(input_.paths, input_.options, 1);
    if (frames.size() > 1) throw Error("IN: one frame is turned at a time");
    save(frames.front(), output_.path);
    console.print({{"output", output_.path}, {"size", frames.front().size()}});
    return kDone;
  }

 private:
  Input input_;
  Output output_;
};

View g_view("view", "turn a frame into a picture, or one format into another",
            "view dump_4000x3000.nv21 -o dump.png");

}  // namespace
}  // namespace zavri::tools
