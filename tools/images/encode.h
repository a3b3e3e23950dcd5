#pragma once

#include <string>

#include "tools/images/frame.h"
#include "tools/images/storage.h"

namespace zavri::tools {

// For people: ".png, .jpg ... or .yv12".
std::string output_extensions();

// Whether encode() knows the extension, which is in lower case.
bool is_output_extension(const std::string& extension);

// The bytes of a file with this extension.
Bytes encode(const Frame& frame, const std::string& extension);
Bytes encode(const Picture& picture, const std::string& extension);

}  // namespace zavri::tools
