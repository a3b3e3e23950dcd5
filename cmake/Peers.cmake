# Benchmarks compare the library with others, where those are installed. Their targets are
# zavri_libyuv and zavri_opencv.
if(CMAKE_CROSSCOMPILING)
  return()
endif()

function(zavri_find_peer name header suffix)
  find_path(${name}_INCLUDE ${header} PATH_SUFFIXES ${suffix})
  add_library(${name} INTERFACE IMPORTED)
  foreach(library ${ARGN})
    find_library(${name}_${library} ${library})
    if(NOT ${name}_INCLUDE OR NOT ${name}_${library})
      return()
    endif()
    target_link_libraries(${name} INTERFACE ${${name}_${library}})
  endforeach()
  target_include_directories(${name} SYSTEM INTERFACE ${${name}_INCLUDE})
  set(${name}_FOUND TRUE PARENT_SCOPE)
endfunction()

zavri_find_peer(zavri_libyuv libyuv.h "" yuv)
zavri_find_peer(zavri_opencv opencv2/imgproc.hpp opencv4 opencv_imgproc opencv_core)
