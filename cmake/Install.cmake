# What `cmake --install` installs of the library, and how a host's build finds it: as the CMake package
# zavricustpro with the target zavricustpro::zavricustpro, and by pkg-config.
include(CMakePackageConfigHelpers)

install(DIRECTORY include/ TYPE INCLUDE)
install(FILES examples/host.c DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples)
if(ANDROID)
  # A phone has the vendor's libfastcvopt.so, and its builds link the library itself.
  install(TARGETS zavricustpro)
  return()
endif()

install(TARGETS zavricustpro zavri_fastcv EXPORT zavricustpro)
get_target_property(log_is_imported zavri_log IMPORTED)
if(NOT log_is_imported)
  install(TARGETS zavri_log EXPORT zavricustpro)
endif()
set(package ${CMAKE_INSTALL_LIBDIR}/cmake/zavricustpro)
install(EXPORT zavricustpro NAMESPACE zavricustpro:: DESTINATION ${package}
        FILE zavricustproConfig.cmake)
set(version_file ${PROJECT_BINARY_DIR}/zavricustproConfigVersion.cmake)
write_basic_package_version_file(${version_file} COMPATIBILITY SameMinorVersion)
install(FILES ${version_file} DESTINATION ${package})

# The installed tree may be moved: the file says where it is from its own place.
file(RELATIVE_PATH zavri_prefix_from_pc
     /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(cmake/zavricustpro.pc.in zavricustpro.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zavricustpro.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
