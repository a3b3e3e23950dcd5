#pragma once

#include "include/zavricustpro.h"

// Some hosts declare the pool's free functions with C++ linkage. The alias exports a C function of
// the including file under the name that it has there, too.
#define ZAVRI_MANGLED_ALIAS(result, function, parameters, mangled) \
  extern "C" ZAVRI_EXPORT __attribute__((alias(#function)))        \
  result function##_with_cxx_linkage parameters __asm__(mangled)
