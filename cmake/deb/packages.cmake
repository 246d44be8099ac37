# The Debian packages: libtqiplbaselibu<major> for programs that run, libtqiplbaselibu-dev for those
# that are built, tqipl-tools with the command-line host.
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)  # package_version_architecture.deb
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${TQIPL_PACKAGE_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# What other packages' builds take their dependency from.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})

set(same_version "${TQ_DEB_RUNTIME} (= ${PROJECT_VERSION})")
set(description "Copies and fills by pixel format, conversions between the formats of broadcast
video, masks, filters, wavelets and scaling, on raw image memory. The same bytes
come from every build, on every processor, at every thread count.")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${TQ_DEB_RUNTIME})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "${description}
.
This package holds the module that programs load.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME ${TQ_DEB_DEVELOPMENT})
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${same_version}")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "${description}
.
This package holds what a host is built with: headers, CMake package, pkg-config
file, and the examples.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME ${TQ_DEB_TOOLS})
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION video)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${same_version}")
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "${description}
.
This package holds tqipl, which calls the routines on pictures and frames.")

# Each package has its copyright file and the changes, as Debian places them; a plain installation
# does not.
configure_file(CHANGELOG.md ${PROJECT_BINARY_DIR}/deb/changelog COPYONLY)
execute_process(COMMAND ${TQ_GZIP} -9nkf ${PROJECT_BINARY_DIR}/deb/changelog
    COMMAND_ERROR_IS_FATAL ANY)
file(READ samples/README.md samples_licence)
string(REGEX REPLACE "\n+$" "" samples_licence "${samples_licence}")
string(REPLACE "\n" "\n " samples_licence "${samples_licence}")
foreach(component runtime development tools)
    string(TOUPPER ${component} upper)
    set(name ${TQ_DEB_${upper}})
    set(copyright ${PROJECT_BINARY_DIR}/deb/${name}.copyright)
    if(component STREQUAL "tools")
        configure_file(cmake/deb/copyright_tools.in ${copyright} @ONLY)
    else()
        configure_file(cmake/deb/copyright.in ${copyright} @ONLY)
    endif()
    install(FILES ${copyright} DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name} RENAME copyright
        COMPONENT ${component} EXCLUDE_FROM_ALL)
    install(FILES ${PROJECT_BINARY_DIR}/deb/changelog.gz
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name}
        COMPONENT ${component} EXCLUDE_FROM_ALL)
endforeach()
