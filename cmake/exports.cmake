# The names that the module exports stand in exports.txt, and in exports_posix.txt those that only
# POSIX systems have. There the sources mark them, and a test compares; on Windows the list is what
# the linker exports: marks in the sources would let type information of other classes through.
set(TQ_EXPORTS ${PROJECT_SOURCE_DIR}/cmake/exports.txt)
if(WIN32)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${TQ_EXPORTS})
    file(STRINGS ${TQ_EXPORTS} names)
    list(TRANSFORM names REPLACE "^_ZT[ISV].*" "\\0 DATA")
    list(JOIN names "\n" names)
    set(TQ_EXPORTS_DEF ${PROJECT_BINARY_DIR}/TQIPLBaseLibU.def)
    file(CONFIGURE OUTPUT ${TQ_EXPORTS_DEF} CONTENT "EXPORTS\n${names}\n" @ONLY)
else()
    list(APPEND TQ_EXPORTS ${PROJECT_SOURCE_DIR}/cmake/exports_posix.txt)
endif()
