# The Debian package that `cpack` makes of what is installed.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zavricustpro)
set(CPACK_PACKAGE_CONTACT "The maintainers of zavricustpro <root@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Post-processing of 8-bit YUV 4:2:0 camera frames")
set(CPACK_PACKAGE_DESCRIPTION
    "The library that a camera HAL loads, its header, and the program zavri that runs its operations \
on files.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The libraries of this package come with it.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})
include(CPack)
