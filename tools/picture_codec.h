#pragma once

#include <string>

#include "tools/files.h"
#include "tools/frame.h"

namespace zavri::tools {

// By its first bytes: PNG, JPEG or PPM.
bool is_picture(const Bytes& bytes);

// PNG, JPEG or PPM; `name` stands in the error.
Picture decode_picture(const Bytes& bytes, const std::string& name);

Bytes encode_png(const Picture& picture);
Bytes encode_jpeg(const Picture& picture);
Bytes encode_ppm(const Picture& picture);

}  // namespace zavri::tools
