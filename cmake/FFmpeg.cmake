# Pictures and streams of the program `zavri` are read and written by FFmpeg's libraries, as
# PkgConfig::FFmpeg, and labelled by FreeType's, as PkgConfig::FreeType. A cross build has none for
# its target: there, and where they are not installed, the program is left out.
if(NOT ZAVRI_TOOLS)
  return()
endif()
if(NOT CMAKE_CROSSCOMPILING)
  find_package(PkgConfig QUIET)
  if(PkgConfig_FOUND)
    pkg_check_modules(FFmpeg QUIET IMPORTED_TARGET
                      libavformat libavcodec libswscale libavutil)
    pkg_check_modules(FreeType QUIET IMPORTED_TARGET freetype2)
  endif()
endif()
if(NOT FFmpeg_FOUND OR NOT FreeType_FOUND)
  message(STATUS "zavri is not built: no libraries of FFmpeg and FreeType for ${CMAKE_SYSTEM_PROCESSOR}")
  set(ZAVRI_TOOLS OFF)
endif()
