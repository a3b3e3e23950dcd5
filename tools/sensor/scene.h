#pragma once

#include <cstdint>
#include <vector>

#include "tools/images/frame.h"
#include "tools/images/mask.h"

namespace zavri::tools {

// Says what differs from capture to capture besides the noise.
struct Changes {
  // By hand shake the picture moves from frame to frame by a normal step of so many pixels an axis.
  double shake = 0;
  bool object = false;      // something moves through the picture
  double object_speed = 0;  // pixels a frame; 0 is a third of the object's size
  double flicker = 0;       // the light changes by at most so many percent
};

// Says how the scene shows in one frame.
struct View {
  double x = 0;  // the picture's shift, in pixels
  double y = 0;
  int object_x = 0;  // the object's left top corner, before the shift
  int object_y = 0;
  double light = 1;
};

// A scene is a photograph, and before it perhaps an object.
class Scene {
 public:
  Scene(const Picture& photograph, const Changes& changes);

  // Draws the views of a number of frames, the first of which is not shifted and has the light 1.
  // The same seed gives the same views.
  std::vector<View> views(int frames, uint64_t seed) const;

  Picture seen(const View& view) const;

  // Returns everywhere that the object is in any of the views, and so everywhere that it uncovers.
  Mask moving(const std::vector<View>& views) const;

 private:
  double from_middle(double x, double y) const;
  void draw_object(const View& view, Picture& picture) const;

  Picture photograph_;
  Changes changes_;
  int size_ = 0;  // of the object, which is a disc; 0 without one
  Picture texture_;
};

}  // namespace zavri::tools
