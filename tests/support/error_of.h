#pragma once

#include <string>

#include "tools/error.h"

namespace zavri::tools {

// The text of the Error that the function throws.
template <class Function>
std::string error_of(Function function) {
  try {
    function();
  } catch (const Error& error) {
    return error.what();
  }
  return "no error";
}

}  // namespace zavri::tools
