# cmake --install: the module and its headers, a CMake package, a pkg-config file, the texts, and
# the command-line host where it is built.
include(CMakePackageConfigHelpers)

# The names of the Debian packages.
set(TQ_DEB_RUNTIME libtqiplbaselibu${PROJECT_VERSION_MAJOR})
set(TQ_DEB_DEVELOPMENT libtqiplbaselibu-dev)
set(TQ_DEB_TOOLS tqipl-tools)

install(TARGETS TQIPLBaseLibU EXPORT TQIPLBaseLibU
    RUNTIME COMPONENT runtime
    LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
    ARCHIVE COMPONENT development)
if(TQ_MSVC_IMPORT_LIBRARY)
    install(FILES ${TQ_MSVC_IMPORT_LIBRARY} DESTINATION ${CMAKE_INSTALL_LIBDIR}
        COMPONENT development)
endif()
install(FILES include/TQIPLBaseLibU.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
install(DIRECTORY include/tqipl DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/TQIPLBaseLibU)
install(EXPORT TQIPLBaseLibU NAMESPACE TQIPLBaseLibU:: FILE TQIPLBaseLibUTargets.cmake
    DESTINATION ${package_dir} COMPONENT development)
configure_package_config_file(cmake/TQIPLBaseLibUConfig.cmake.in
    ${PROJECT_BINARY_DIR}/TQIPLBaseLibUConfig.cmake INSTALL_DESTINATION ${package_dir}
    PATH_VARS CMAKE_INSTALL_LIBDIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TQIPLBaseLibUConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TQIPLBaseLibUConfig.cmake
    ${PROJECT_BINARY_DIR}/TQIPLBaseLibUConfigVersion.cmake
    DESTINATION ${package_dir} COMPONENT development)

# The prefix is found from the file's own place, so the tree may be moved.
file(RELATIVE_PATH TQIPL_PC_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/TQIPLBaseLibU.pc.in ${PROJECT_BINARY_DIR}/TQIPLBaseLibU.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/TQIPLBaseLibU.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

set(texts_dir ${CMAKE_INSTALL_DOCDIR})
install(FILES README.md CHANGELOG.md DESTINATION ${texts_dir} COMPONENT development)
install(DIRECTORY docs DESTINATION ${texts_dir} COMPONENT development
    FILES_MATCHING PATTERN *.md PATTERN site EXCLUDE)
install(DIRECTORY examples DESTINATION ${texts_dir} COMPONENT development)
# The module for Windows holds parts of its compiler's run-time libraries: their licences go along.
if(MINGW)
    foreach(package mingw-w64-x86-64-dev gcc-mingw-w64-x86-64-posix-runtime)
        set(licence /usr/share/doc/${package}/copyright)
        if(EXISTS ${licence})
            install(FILES ${licence} DESTINATION ${texts_dir}/licences RENAME ${package}.txt
                COMPONENT runtime)
        else()
            message(WARNING "${licence} was not found: the licence of a run-time library that the "
                "module holds will be missing beside it")
        endif()
    endforeach()
endif()
