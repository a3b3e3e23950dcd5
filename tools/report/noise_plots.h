#pragma once

#include <vector>

#include "tools/images/frame.h"
#include "tools/report/page.h"
#include "tools/sensor/noise_fit.h"

namespace zavri::tools {

// Of a frame before and after, held against the clean one: the noise of flat parts by their level,
// of luma and of chroma. `fit`, if there is one, says that the target is noisy, too, and how much.
std::vector<PagePlot> noise_by_level(const Frame& target, const Frame& before, const Frame& after,
                                     const NoiseFit* fit = nullptr);

// What zavri noise measured, and the lines that it fitted.
PagePlot fitted_noise(const NoiseFit& fit);

}  // namespace zavri::tools
