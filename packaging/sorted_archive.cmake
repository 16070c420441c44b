# Makes the .tar.gz anew so that it does not tell who made it when on what file system: sorted, of
# root, with the time of the commit. A .deb is so already. CPack runs this when a package is made.
if(NOT CPACK_GENERATOR STREQUAL "TGZ")
  return()
endif()
string(TIMESTAMP time "%s") # SOURCE_DATE_EPOCH, when that is set
string(REGEX REPLACE "\\.gz$" "" archive "${CPACK_PACKAGE_FILES}")
execute_process(
  COMMAND tar --create --file ${archive} --directory ${CPACK_TEMPORARY_DIRECTORY}/.. --format=gnu
          --sort=name --owner=root:0 --group=root:0 --mtime=@${time} ${CPACK_PACKAGE_FILE_NAME}
          COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND gzip --best --no-name --force ${archive} COMMAND_ERROR_IS_FATAL ANY)
