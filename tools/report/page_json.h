#pragma once

#include <string>

#include "tools/report/page.h"

namespace zavri::tools {

// The page's data in ASCII, fit to stand between the tags of an HTML script element.
std::string to_json(const ReportPage& page);

}  // namespace zavri::tools
