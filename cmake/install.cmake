# cmake --install: the module and its headers, a CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS TQIPLBaseLibU EXPORT TQIPLBaseLibU
    RUNTIME COMPONENT runtime
    LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
    ARCHIVE COMPONENT development)
install(FILES include/TQIPLBaseLibU.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
install(DIRECTORY include/tqipl DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/TQIPLBaseLibU)
install(EXPORT TQIPLBaseLibU NAMESPACE TQIPLBaseLibU:: FILE TQIPLBaseLibUConfig.cmake
    DESTINATION ${package_dir} COMPONENT development)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TQIPLBaseLibUConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TQIPLBaseLibUConfigVersion.cmake
    DESTINATION ${package_dir} COMPONENT development)

# The prefix is found from the file's own place, so the tree may be moved.
file(RELATIVE_PATH TQIPL_PC_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/TQIPLBaseLibU.pc.in ${PROJECT_BINARY_DIR}/TQIPLBaseLibU.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/TQIPLBaseLibU.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
