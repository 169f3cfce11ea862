# cmake -DFILE=<library or program> -DQT_MAJOR=<5 or 6> -P checkDependencies.cmake
# Fails unless all that FILE loads, and what that loads in turn, names this Qt alone.
execute_process(COMMAND ldd ${FILE} OUTPUT_VARIABLE loaded COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "libQt[0-9]+" qts "${loaded}")
list(REMOVE_DUPLICATES qts)
if(NOT qts STREQUAL "libQt${QT_MAJOR}")
  message(FATAL_ERROR "${FILE} loads ${qts}, not libQt${QT_MAJOR} alone:\n${loaded}")
endif()
