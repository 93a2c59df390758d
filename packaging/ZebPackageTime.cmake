# Read by cpack. Unless the caller sets another time, every file in a package carries the time of the newest changelog
# entry, so that the same sources give the same package.
if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
  execute_process(
    COMMAND sed -n "s/^ -- .*>  //p;/^ --/q" ${CMAKE_CURRENT_LIST_DIR}/debian/changelog
    OUTPUT_VARIABLE zeb_changelog_time OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  execute_process(
    COMMAND date --date=${zeb_changelog_time} +%s
    OUTPUT_VARIABLE zeb_changelog_epoch OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  set(ENV{SOURCE_DATE_EPOCH} ${zeb_changelog_epoch})
endif()
