#pragma once

#include <functional>
#include <string>

#include "device/picture.h"
#include "device/scaler.h"

// These functions measure a scaler by what it makes of pictures. All results are lines of text
// without an end of line; where the two axes behave alike, one text serves both.
namespace zavri::device {

using Gaussian = decltype(Scaler::gaussian);
using Scale = std::function<int(const Picture& from, const Picture& to)>;

// Tells in five lines what an impulse of 255 becomes.
std::string gaussian_response(Gaussian gaussian);

// Names the formula that gives every sample of a noisy picture.
std::string gaussian_rounding(Gaussian gaussian);

// Tells what the outer two pixels are made of.
std::string gaussian_border(Gaussian gaussian, int blur_border);

// Tells where the samples of the result lie in the source.
std::string scale_mapping(const Scale& scale);

// Tells the weights by distance from a sample, and the interpolation that has them.
std::string scale_taps(const Scale& scale);

using Sink = std::function<void(const std::string& line)>;

// Hands all measurements to the sink, line by line, and the verdict.
void probe(const Scaler& scaler, const Sink& sink);

}  // namespace zavri::device
