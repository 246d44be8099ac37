# The one place of the version is include/tqipl/version.h; TQIPL_VERSION comes from there.
set(version_line "#define TQIPL_VERSION_")
file(STRINGS include/tqipl/version.h numbers REGEX "^${version_line}(MAJOR|MINOR|PATCH) [0-9]+$")
list(TRANSFORM numbers REPLACE "^${version_line}[A-Z]+ " "")
list(JOIN numbers . TQIPL_VERSION)
file(STRINGS include/tqipl/version.h text REGEX "^${version_line}STRING ")
if(NOT text STREQUAL "${version_line}STRING \"${TQIPL_VERSION}\"" OR
   NOT TQIPL_VERSION MATCHES "^[0-9]+\\.[0-9]+\\.[0-9]+$")
    message(FATAL_ERROR "include/tqipl/version.h: numbers ${TQIPL_VERSION}, but ${text}")
endif()
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS include/tqipl/version.h)
# mingw-w64's resource compiler does not tell what it includes.
set_property(SOURCE frame/version.rc APPEND PROPERTY OBJECT_DEPENDS
    ${CMAKE_CURRENT_SOURCE_DIR}/include/tqipl/version.h)
