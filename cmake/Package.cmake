# A Debian package by CPack: cmake --build <folder> --target package.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME trelm)
set(CPACK_PACKAGE_VENDOR "The trelm developers")
set(CPACK_PACKAGE_CONTACT "The trelm developers <trelm@localhost>" CACHE STRING "Maintainer field of the package")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "alignment from structures and residual dipolar couplings")
set(CPACK_PACKAGE_DESCRIPTION
    "trelm fits alignment tensors to residual dipolar couplings and a structure,
estimates their errors, searches assignments, and predicts alignment and
couplings from the shape and the charges of a molecule.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/package)
set(CPACK_STRIP_FILES TRUE)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/DebianPlaces.cmake)
include(CPack)
