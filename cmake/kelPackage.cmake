# What makes the installed libraries findable: find_package(kelCore) and pkg-config.

include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/kelCore)
configure_package_config_file(${CMAKE_SOURCE_DIR}/cmake/kelCoreConfig.cmake.in
  ${CMAKE_BINARY_DIR}/kelCoreConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/kelCoreConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/kelCoreConfig.cmake ${CMAKE_BINARY_DIR}/kelCoreConfigVersion.cmake
  DESTINATION ${package_dir})
install(EXPORT nubTargets NAMESPACE nub:: DESTINATION ${package_dir})
install(EXPORT kelTargets NAMESPACE kel:: DESTINATION ${package_dir})

if(KEL_QT_MAJOR EQUAL 6)
  set(pc_qt "Qt6Core Qt6Gui Qt6Widgets Qt6Xml")
else()
  set(pc_qt "Qt5Core Qt5Gui Qt5Widgets Qt5Xml")
endif()
# The prefix as seen from the folder of the .pc file: an installed tree can be moved.
file(RELATIVE_PATH pc_prefix /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
string(REGEX REPLACE "/$" "" pc_prefix "${pc_prefix}")
configure_file(${CMAKE_SOURCE_DIR}/cmake/kelCore.pc.in ${CMAKE_BINARY_DIR}/kelCore.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/kelCore.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
