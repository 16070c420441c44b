# Writes OUTPUT from TEMPLATE with the name of the build, unless OUTPUT has it already. NAME and
# VERSION are the project's, SOURCE is its folder, INPUTS its parts that builds are made from, and GIT
# may be empty.
#
#   cmake -D NAME=… -D VERSION=… -D SOURCE=… -D INPUTS=… -D GIT=… -D TEMPLATE=… -D OUTPUT=… -P …

# git_says(RESULT ARGS…): the output of git in SOURCE; empty when it fails.
function(git_says result)
  set(${result} "" PARENT_SCOPE)
  if(GIT)
    execute_process(
      COMMAND ${GIT} --no-optional-locks -c safe.directory=${SOURCE} -C ${SOURCE} ${ARGN}
      OUTPUT_VARIABLE output ERROR_QUIET OUTPUT_STRIP_TRAILING_WHITESPACE)
    set(${result} "${output}" PARENT_SCOPE)
  endif()
endfunction()

set(commit "unknown commit")
git_says(prefix rev-parse --show-prefix)
git_says(hash rev-parse --short=12 HEAD)
# With a prefix, the folder is a part of somebody else's sources.
if(hash AND NOT prefix)
  set(commit "commit ${hash}")
  git_says(changes status --porcelain -- ${INPUTS})
  if(changes)
    string(APPEND commit ", modified")
  endif()
endif()
set(VLT_BUILD_NAME "${NAME} ${VERSION}, ${commit}")
configure_file(${TEMPLATE} ${OUTPUT} @ONLY)
