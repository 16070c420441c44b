# The places of the files of `cmake --install`, below the prefix:
#
#   bin/                                  the tools
#   lib/ostrovia-notifications/plugin/    codec and recorder, which a host loads by their paths
#   lib/ostrovia-notifications/standin/   the stand-in, for the tools alone
#   share/man/man1/, share/bash-completion/completions/
#   share/doc/ostrovia-notifications/     documents, their programs with headers, and samples, laid
#                                         out as in the sources
#
# No linker searches the two folders in lib/. They are two because the stand-in bears the name of
# the host's client library: a host that searches the plug-in's folder must not find it there. The
# tools find both from their own place, so the whole installation can move.
include(GNUInstallDirs)
set(VLT_PACKAGE_NAME ostrovia-notifications)
set(VLT_LIBRARY_FOLDER ${CMAKE_INSTALL_LIBDIR}/${VLT_PACKAGE_NAME})
set(VLT_DOCUMENT_FOLDER ${CMAKE_INSTALL_DATAROOTDIR}/doc/${VLT_PACKAGE_NAME})
file(RELATIVE_PATH VLT_LIBRARIES_FROM_TOOLS ${CMAKE_INSTALL_FULL_BINDIR}
     ${CMAKE_INSTALL_FULL_LIBDIR}/${VLT_PACKAGE_NAME})

# The tool searches the stand-in's folder, then its own, where a build puts all; for a real client
# library, its folder at the link. The built tool has this run path already: where an installation
# changes one, CMake pads it with colons for that, each of which is the current folder.
function(vlt_install_tool tool)
  install(TARGETS ${tool})
  set_target_properties(${tool} PROPERTIES BUILD_WITH_INSTALL_RPATH ON)
  if(TARGET standin)
    set_target_properties(${tool} PROPERTIES
                          INSTALL_RPATH "$ORIGIN/${VLT_LIBRARIES_FROM_TOOLS}/standin;$ORIGIN")
  else()
    set_target_properties(${tool} PROPERTIES INSTALL_RPATH_USE_LINK_PATH ON)
  endif()
endfunction()

function(vlt_install_programs)
  install(TARGETS OstroviaNotifications2Codec OstroviaNotificationsRecorder
          LIBRARY DESTINATION ${VLT_LIBRARY_FOLDER}/plugin)
  vlt_install_tool(ostrovia-replay)
  if(TARGET standin)
    install(TARGETS standin LIBRARY DESTINATION ${VLT_LIBRARY_FOLDER}/standin)
    vlt_install_tool(ostrovia-check-plugin)
  endif()
endfunction()

# The man page and the completion of a tool, both in `folder`.
function(vlt_install_manual tool folder)
  install(FILES ${folder}/${tool}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES ${folder}/${tool}.bash RENAME ${tool}
          DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/bash-completion/completions)
endfunction()

function(vlt_install_documents)
  install(FILES README.md CHANGELOG.md CONTRIBUTING.md SECURITY.md
          DESTINATION ${VLT_DOCUMENT_FOLDER})
  install(DIRECTORY docs samples DESTINATION ${VLT_DOCUMENT_FOLDER} FILES_MATCHING
          PATTERN "*.md" PATTERN "*.json" PATTERN "*.ndjson" PATTERN "*.png")
  # What the programs of the documents include, and the programs.
  install(DIRECTORY host standin DESTINATION ${VLT_DOCUMENT_FOLDER} FILES_MATCHING PATTERN "*.h")
  install(DIRECTORY tests/end_to_end DESTINATION ${VLT_DOCUMENT_FOLDER}/tests
          FILES_MATCHING PATTERN "*.c")
endfunction()
