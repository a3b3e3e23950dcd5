#pragma once

#include <string_view>

namespace zavri::tools {

// page.html, with style, script and libraries in their places, before and behind the page's data;
// empty where the libraries were absent from the build.
extern const std::string_view kPageHead;
extern const std::string_view kPageTail;

}  // namespace zavri::tools
