#pragma once

#include <functional>
#include <string>

#include "device/picture.h"
#include "device/scaler.h"

// Measurements of a scaler by what it makes of pictures. All results are lines of text without an
// end of line; where the two axes behave alike, one text serves both.
namespace zavri::device {

using Gaussian = decltype(Scaler::gaussian);
using Scale = std::function<int(const Picture& from, const Picture& to)>;

// What an impulse of 255 becomes, five lines.
std::string gaussian_response(Gaussian gaussian);

// The formula that gives every sample of a noisy picture.
std::string gaussian_rounding(Gaussian gaussian);

// What the outer two pixels are made of.
std::string gaussian_border(Gaussian gaussian, int blur_border);

// Where the samples of the result lie in the source.
std::string scale_mapping(const Scale& scale);

// The weights by distance from a sample, and the interpolation that has them.
std::string scale_taps(const Scale& scale);

using Sink = std::function<void(const std::string& line)>;

// All of it, line by line, and the verdict.
void probe(const Scaler& scaler, const Sink& sink);

}  // namespace zavri::device
