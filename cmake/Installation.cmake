# The places of the files of `cmake --install`, below the prefix, each with the component that becomes
# a package of Debian's (Packaging.cmake):
#
#   plugins  lib/ostrovia-notifications/plugin/    codec and recorder, which a host loads by their paths
#            share/doc/ostrovia-notifications/     documents and samples, laid out as in the sources
#   tools    bin/, share/man/man1/, share/bash-completion/completions/
#            lib/ostrovia-notifications/standin/   the stand-in, for the tools alone
#   dev      include/ostrovia-notifications/       the headers of host/ and standin/
#            share/cmake/, share/pkgconfig/        where the headers and the client library are
#            share/doc/ostrovia-notifications-dev/examples/    hosts in C
#
# No linker searches the two folders in lib/. They are two because the stand-in bears the name of
# the host's client library: a host that searches the plug-in's folder must not find it there. The
# tools find both from their own place, so the whole installation can move.
include(GNUInstallDirs)
set(VLT_PACKAGE_NAME ostrovia-notifications)
set(VLT_LIBRARY_FOLDER ${CMAKE_INSTALL_LIBDIR}/${VLT_PACKAGE_NAME})
set(VLT_DOCUMENT_FOLDER ${CMAKE_INSTALL_DATAROOTDIR}/doc/${VLT_PACKAGE_NAME})
set(VLT_HEADER_FOLDER ${CMAKE_INSTALL_INCLUDEDIR}/${VLT_PACKAGE_NAME})
file(RELATIVE_PATH VLT_LIBRARIES_FROM_TOOLS ${CMAKE_INSTALL_FULL_BINDIR}
     ${CMAKE_INSTALL_FULL_LIBDIR}/${VLT_PACKAGE_NAME})

# vlt_add_tool(TOOL LIBRARY [LINK OPTION…]): the program TOOL, from main.cpp in this folder. For a
# package of a distribution, TOOL-shared is the same with shared libraries, in bin/shared/.
#
# The tool searches the stand-in's folder, then its own, where a build puts all; for a real client
# library, its folder at the link. The built tool has this run path already: where an installation
# changes one, CMake pads it with colons for that, each of which is the current folder.
function(vlt_add_tool tool library)
  foreach(program IN ITEMS ${tool} ${tool}-shared)
    add_executable(${program} main.cpp)
    target_link_libraries(${program} PRIVATE ${library})
    target_link_options(${program} PRIVATE ${ARGN})
    set_target_properties(${program} PROPERTIES BUILD_WITH_INSTALL_RPATH ON)
    if(TARGET standin)
      set_target_properties(${program} PROPERTIES
                            INSTALL_RPATH "$ORIGIN/${VLT_LIBRARIES_FROM_TOOLS}/standin;$ORIGIN")
    else()
      set_target_properties(${program} PROPERTIES INSTALL_RPATH_USE_LINK_PATH ON)
    endif()
  endforeach()
  vlt_link_statically(${tool})
  install(TARGETS ${tool} COMPONENT tools)
  set_target_properties(${tool}-shared PROPERTIES EXCLUDE_FROM_ALL ON OUTPUT_NAME ${tool}
                        RUNTIME_OUTPUT_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/shared)
  install(TARGETS ${tool}-shared DESTINATION ${CMAKE_INSTALL_BINDIR}/shared COMPONENT tools
          EXCLUDE_FROM_ALL)
endfunction()

function(vlt_install_programs)
  install(TARGETS OstroviaNotifications2Codec OstroviaNotificationsRecorder
          LIBRARY DESTINATION ${VLT_LIBRARY_FOLDER}/plugin COMPONENT plugins)
  if(TARGET standin)
    install(TARGETS standin LIBRARY DESTINATION ${VLT_LIBRARY_FOLDER}/standin COMPONENT tools)
  endif()
endfunction()

# The man page and the completion of a tool, both in `folder`.
function(vlt_install_manual tool folder)
  install(FILES ${folder}/${tool}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
  install(FILES ${folder}/${tool}.bash RENAME ${tool} COMPONENT tools
          DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/bash-completion/completions)
endfunction()

# README.md is the package's own. Documents for work on the sources stay with the sources.
function(vlt_install_documents)
  install(FILES packaging/README.md CHANGELOG.md SECURITY.md DESTINATION ${VLT_DOCUMENT_FOLDER}
          COMPONENT plugins)
  install(DIRECTORY docs samples DESTINATION ${VLT_DOCUMENT_FOLDER} COMPONENT plugins
          FILES_MATCHING PATTERN "*.md" PATTERN "*.json" PATTERN "*.ndjson" PATTERN "*.png"
          PATTERN docs/architecture.md EXCLUDE)
endfunction()

function(vlt_install_headers)
  install(DIRECTORY host standin DESTINATION ${VLT_HEADER_FOLDER} COMPONENT dev
          FILES_MATCHING PATTERN "*.h")
  file(GLOB hosts ${PROJECT_SOURCE_DIR}/tests/end_to_end/*.c)
  install(FILES packaging/dev/CMakeLists.txt ${hosts} COMPONENT dev
          DESTINATION ${VLT_DOCUMENT_FOLDER}-dev/examples)
  include(CMakePackageConfigHelpers)
  set(made ${PROJECT_BINARY_DIR}/dev)
  configure_file(packaging/dev/${VLT_PACKAGE_NAME}-config.cmake.in
                 ${made}/${VLT_PACKAGE_NAME}-config.cmake @ONLY)
  configure_file(packaging/dev/${VLT_PACKAGE_NAME}.pc.in ${made}/${VLT_PACKAGE_NAME}.pc @ONLY)
  write_basic_package_version_file(${made}/${VLT_PACKAGE_NAME}-config-version.cmake
                                   COMPATIBILITY SameMinorVersion ARCH_INDEPENDENT)
  install(FILES ${made}/${VLT_PACKAGE_NAME}-config.cmake
                ${made}/${VLT_PACKAGE_NAME}-config-version.cmake COMPONENT dev
          DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/cmake/${VLT_PACKAGE_NAME})
  install(FILES ${made}/${VLT_PACKAGE_NAME}.pc COMPONENT dev
          DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/pkgconfig)
endfunction()
