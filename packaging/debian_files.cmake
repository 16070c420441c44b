# What a .deb has beyond what is installed: copyright and changelog where Debian looks for them, man
# pages compressed, and why some of its linter's findings do not apply. CPack runs this when the
# files of a package have been laid out.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()
set(root ${CPACK_TEMPORARY_DIRECTORY}${CPACK_PACKAGING_INSTALL_PREFIX})
set(documents ${root}/${CPACK_VLT_DOCUMENT_FOLDER})

# Without name and time of the file, so that the same text gives the same bytes.
function(compress)
  execute_process(COMMAND gzip --best --no-name ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(GLOB pages ${root}/${CPACK_VLT_MAN_FOLDER}/man1/*.1)
compress(${pages})

configure_file(${CPACK_VLT_FILES}/copyright ${documents}/copyright COPYONLY NO_SOURCE_PERMISSIONS)
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC) # SOURCE_DATE_EPOCH, when that is set
configure_file(${CPACK_VLT_FILES}/changelog.in ${documents}/changelog @ONLY NO_SOURCE_PERMISSIONS)
compress(${documents}/changelog)
configure_file(${CPACK_VLT_FILES}/lintian-overrides
               ${root}/share/lintian/overrides/${CPACK_PACKAGE_NAME} COPYONLY
               NO_SOURCE_PERMISSIONS)
