# What the packages have beyond what is installed. CPack runs this when the files of all components
# have been laid out.
#
#   (1) the licences of works that are linked in, in NOTICES
#   (2) a stand-in that no package manager takes for the library of a host
#   .tar.gz: (3) README and copyright on top
#   .deb, for each component: (4) its copyright and changelog where Debian looks for them, and why a
#   finding of Debian's linter does not apply  (5) tools with Debian's own libraries, man pages
#   compressed
set(name ${CPACK_PACKAGE_NAME})

function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

function(finish_plugins root)
  run(python3 ${CPACK_VLT_FILES}/notices.py ${CPACK_VLT_SIMDJSON_LICENCE}
      ${root}/${CPACK_VLT_DOCUMENT_FOLDER}/NOTICES)
endfunction()

function(finish_tools root)
  run(python3 ${CPACK_VLT_FILES}/hide_soname.py
      ${root}/${CPACK_VLT_LIBRARY_FOLDER}/standin/libtvclient.so.10.15)
endfunction()

# Without name and time of the file, so that the same text gives the same bytes.
function(compress)
  run(gzip --best --no-name ${ARGN})
endfunction()

function(add_debian_files root package)
  set(documents ${root}/share/doc/${package})
  configure_file(${CPACK_VLT_FILES}/copyright ${documents}/copyright COPYONLY NO_SOURCE_PERMISSIONS)
  string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC) # SOURCE_DATE_EPOCH, when that is set
  configure_file(${CPACK_VLT_FILES}/changelog.in ${documents}/changelog @ONLY NO_SOURCE_PERMISSIONS)
  compress(${documents}/changelog)
  configure_file(${CPACK_VLT_FILES}/lintian-overrides.in ${root}/share/lintian/overrides/${package}
                 @ONLY NO_SOURCE_PERMISSIONS)
endfunction()

if(CPACK_GENERATOR STREQUAL "TGZ")
  set(root ${CPACK_TEMPORARY_DIRECTORY})
  finish_plugins(${root})
  finish_tools(${root})
  foreach(file IN ITEMS README.md copyright)
    configure_file(${CPACK_VLT_FILES}/${file} ${root}/${file} COPYONLY NO_SOURCE_PERMISSIONS)
  endforeach()
  return()
endif()

set(plugins ${CPACK_TEMPORARY_DIRECTORY}/plugins/usr)
set(tools ${CPACK_TEMPORARY_DIRECTORY}/tools/usr)
finish_plugins(${plugins})
finish_tools(${tools})
add_debian_files(${plugins} ${name})
add_debian_files(${tools} ${name}-tools)
add_debian_files(${CPACK_TEMPORARY_DIRECTORY}/dev/usr ${name}-dev)
file(GLOB programs RELATIVE ${tools}/bin/shared ${tools}/bin/shared/*)
foreach(program IN LISTS programs)
  file(RENAME ${tools}/bin/shared/${program} ${tools}/bin/${program})
endforeach()
file(REMOVE_RECURSE ${tools}/bin/shared)
file(GLOB pages ${tools}/${CPACK_VLT_MAN_FOLDER}/man1/*.1)
compress(${pages})
