# The packages that `./dev package` makes with CPack from the files of `cmake --install`: a .deb of each
# component, with a -dbgsym package where there is code, and a .tar.gz of all that works unpacked
# anywhere. The same bytes for the same commit (scripts/package.sh).
#
# Only a host provides libtvclient.so.10.15, so no package depends on one with it. For
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
set(CPACK_COMPONENTS_ALL plugins tools dev)
set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_SOURCE_DIR}/packaging/generators.cmake)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/staged_files.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/sorted_archive.cmake)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_DEBUGINFO_PACKAGE ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# CPack knows this machine and its programs only. Dependencies come from the libraries of the other one.
set(CPACK_OBJCOPY_EXECUTABLE ${CMAKE_OBJCOPY})
set(CPACK_READELF_EXECUTABLE ${CMAKE_READELF})
if(CMAKE_CROSSCOMPILING)
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE arm64)
  list(APPEND CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_SYSROOT}/lib/aarch64-linux-gnu
       ${CMAKE_SYSROOT}/usr/lib/aarch64-linux-gnu)
endif()

# vlt_describe(COMPONENT NAME SECTION SUMMARY)
macro(vlt_describe component name section summary)
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name})
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section})
  file(READ packaging/description-${component}.txt text)
  set(CPACK_COMPONENT_${upper}_DESCRIPTION "${summary}\n${text}")
endmacro()
vlt_describe(plugins ${VLT_PACKAGE_NAME} utils "codec and recorder plug-ins for Ostrovia notifications")
vlt_describe(tools ${VLT_PACKAGE_NAME}-tools utils "tools for the plug-ins of Ostrovia notifications")
vlt_describe(dev ${VLT_PACKAGE_NAME}-dev devel "host interface of the Ostrovia notifications plug-ins")
set(same_version "${VLT_PACKAGE_NAME} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_PLUGINS_PACKAGE_SUGGESTS ${VLT_PACKAGE_NAME}-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${same_version}")
set(CPACK_DEBIAN_TOOLS_PACKAGE_SUGGESTS bash-completion)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "${same_version}")
set(CPACK_DEBIAN_DEV_PACKAGE_RECOMMENDS ${VLT_PACKAGE_NAME}-tools)
set(CPACK_DEBIAN_DEV_PACKAGE_ARCHITECTURE all)

# For packaging/staged_files.cmake: CPack hands on variables that begin with its name.
set(CPACK_VLT_FILES ${PROJECT_SOURCE_DIR}/packaging)
set(CPACK_VLT_SIMDJSON_LICENCE ${PROJECT_SOURCE_DIR}/build/simdjson/copyright)
set(CPACK_VLT_DOCUMENT_FOLDER ${VLT_DOCUMENT_FOLDER})
set(CPACK_VLT_LIBRARY_FOLDER ${VLT_LIBRARY_FOLDER})
set(CPACK_VLT_MAN_FOLDER ${CMAKE_INSTALL_MANDIR})
include(CPack)
