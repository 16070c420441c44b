# What differs between the kinds of packages. CPack reads this once for each.
#
# A .deb's programs lose their debug information to its -dbgsym package, which needs it first.
if(CPACK_GENERATOR STREQUAL "DEB")
  set(CPACK_STRIP_FILES OFF)
else()
  set(CPACK_STRIP_FILES ON)
endif()
