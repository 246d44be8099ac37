# Where cmake --install and packages put things. Libraries go where Debian keeps those of each
# processor, if this is Debian and nobody asked otherwise, so that both make the same tree.
if(PROJECT_IS_TOP_LEVEL AND CMAKE_SYSTEM_NAME STREQUAL "Linux" AND NOT CMAKE_CROSSCOMPILING AND
   CMAKE_LIBRARY_ARCHITECTURE AND EXISTS /etc/debian_version)
    set(CMAKE_INSTALL_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE} CACHE PATH
        "Folder of libraries under the prefix")
endif()
include(GNUInstallDirs)
