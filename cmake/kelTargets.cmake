# How every target of the project is compiled, and how its libraries are made, exported and installed.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_AUTOMOC ON)

find_program(KEL_CCACHE ccache)
mark_as_advanced(KEL_CCACHE)
if(KEL_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${KEL_CCACHE})
endif()

# Installed programs find the libraries beside them, wherever the prefix is moved.
set(CMAKE_INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")

# Fused multiply-adds would change the last bit of matrix products; results are the same on every machine.
add_compile_options(-Wall -Wextra -Wpedantic -Woverloaded-virtual -Wnon-virtual-dtor -Wshadow -ffp-contract=off)
add_compile_definitions(QT_NO_CAST_FROM_BYTEARRAY QT_DEPRECATED_WARNINGS)
if(KEL_WERROR)
  add_compile_options(-Werror)
endif()
if(KEL_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
  add_compile_definitions(_GLIBCXX_ASSERTIONS)
endif()

# kel_add_library(<name> NAMESPACE <ns> EXPORT_BASE <BASE> SOURCES <files...>)
# A shared library <name> with the target alias <ns>::<name>, its generated export header
# <name/nameExport.h>, and its headers installed under the folder of its name.
function(kel_add_library name)
  cmake_parse_arguments(ARG "" "NAMESPACE;EXPORT_BASE" "SOURCES" ${ARGN})
  include(GenerateExportHeader)

  add_library(${name} SHARED ${ARG_SOURCES})
  add_library(${ARG_NAMESPACE}::${name} ALIAS ${name})
  generate_export_header(${name} BASE_NAME ${ARG_EXPORT_BASE}
    EXPORT_FILE_NAME ${CMAKE_BINARY_DIR}/include/${name}/${name}Export.h)
  set_target_properties(${name} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
    INSTALL_RPATH "$ORIGIN")
  target_compile_features(${name} PUBLIC cxx_std_17)
  target_include_directories(${name} PUBLIC
    $<BUILD_INTERFACE:${CMAKE_SOURCE_DIR}/src>
    $<BUILD_INTERFACE:${CMAKE_BINARY_DIR}/include>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)

  install(TARGETS ${name} EXPORT ${ARG_NAMESPACE}Targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(DIRECTORY ${CMAKE_SOURCE_DIR}/src/${name} ${CMAKE_BINARY_DIR}/include/${name}
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h"
    PATTERN internal EXCLUDE)
endfunction()
