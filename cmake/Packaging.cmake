# The packages that `./dev package` makes with CPack from the files of `cmake --install`: a .deb for
# Debian 12, and a .tar.gz that works unpacked anywhere. Stripped, and the same bytes for the same
# commit (scripts/package.sh).
#
# Only a host provides libtvclient.so.10.15, so the package depends on no package with it. For
# dpkg-shlibdeps, which would otherwise stop there, the stand-in is a private library without
# dependencies.
#
# A build against a host's own library is for its machine alone, since its tools name the folder of
# that library: there is no package of it.
if(NOT TARGET standin)
  return()
endif()

set(VLT_PACKAGE_MAINTAINER
    "Ostrovia Notifications maintainers <maintainers@ostrovia-notifications.example>"
    CACHE STRING "Who answers for the packages: name and address, as Debian writes them")

set(CPACK_GENERATOR DEB TGZ)
set(CPACK_PACKAGE_NAME ${VLT_PACKAGE_NAME})
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_FILE_NAME ${VLT_PACKAGE_NAME}-${PROJECT_VERSION}-linux-${CMAKE_SYSTEM_PROCESSOR})
set(CPACK_PACKAGE_CONTACT "${VLT_PACKAGE_MAINTAINER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "codec plug-in for Ostrovia notifications, with its tools")
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/debian_files.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/sorted_archive.cmake)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS bash-completion)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
file(READ packaging/description.txt CPACK_DEBIAN_PACKAGE_DESCRIPTION)

# For packaging/debian_files.cmake: CPack hands on variables that begin with its name.
set(CPACK_VLT_FILES ${PROJECT_SOURCE_DIR}/packaging)
set(CPACK_VLT_DOCUMENT_FOLDER ${VLT_DOCUMENT_FOLDER})
set(CPACK_VLT_MAN_FOLDER ${CMAKE_INSTALL_MANDIR})
include(CPack)
