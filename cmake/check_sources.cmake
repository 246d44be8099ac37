# cmake -DSOURCE_DIR= -DCLANG_FORMAT= -P: who includes whom, ASCII, and format.
set(families "memory|color|zoom|morph|filter|wavelet")
set(sources "")
foreach(folder include frame memory color zoom morph filter wavelet tests fuzz bench examples tools)
    file(GLOB_RECURSE found RELATIVE ${SOURCE_DIR}
        ${SOURCE_DIR}/${folder}/*.h ${SOURCE_DIR}/${folder}/*.cpp)
    if(NOT found)
        message(SEND_ERROR "no source in ${folder}")
    endif()
    list(APPEND sources ${found})
endforeach()
list(LENGTH sources count)
if(count LESS 20)
    message(SEND_ERROR "only ${count} sources were found")
endif()

foreach(source IN LISTS sources)
    # Read as bytes: anything beyond printable ASCII, tab or carriage return included, stands out.
    file(READ ${SOURCE_DIR}/${source} hex HEX)
    string(REGEX MATCHALL ".." bytes "${hex}")
    list(REMOVE_DUPLICATES bytes)
    foreach(byte IN LISTS bytes)
        if(NOT byte MATCHES "^(0a|[2-6][0-9a-f]|7[0-9a-e])$")
            message(SEND_ERROR "${source}: byte 0x${byte}")
        endif()
    endforeach()

    file(STRINGS ${SOURCE_DIR}/${source} includes REGEX "^#include")
    foreach(include IN LISTS includes)
        string(REGEX REPLACE "^#include *[<\"]([^>\"]*)[>\"].*" "\\1" header "${include}")
        set(allowed TRUE)
        string(REGEX MATCH "^[a-z]+" folder "${source}")
        if(header MATCHES "^(windows\\.h|process\\.h|pthread\\.h|unistd\\.h|sys/)" AND
           folder MATCHES "^(include|frame|${families})$" AND
           NOT source MATCHES "^frame/(platform_|module_entry)")
            set(allowed FALSE)
        elseif(source MATCHES "^include/tqipl/" AND
               NOT header MATCHES "^(tqipl/[a-z_]+\\.h|cstddef|cstdint|cstring|new)$")
            set(allowed FALSE)
        elseif(source MATCHES "^frame/" AND header MATCHES "^(${families}|tests|tools|bench)/")
            # One object of a family is made at load, after the frame's own.
            if(NOT "${source} ${header}" STREQUAL "frame/module.cpp zoom/weights.h")
                set(allowed FALSE)
            endif()
        elseif(source MATCHES "_kernels\\.cpp$")
            string(REGEX REPLACE "\\.cpp$" ".h" own "${source}")
            # What kernels of a family share is a header of formulas, which nobody else includes.
            if(NOT header STREQUAL own AND NOT header MATCHES "^[a-z]+/[a-z0-9_]+_formulas\\.h$" AND
               NOT header MATCHES "^(color/coefficients|frame/simd)\\.h$" AND
               NOT header MATCHES "^(cstdint|cstddef|cstring)$")
                set(allowed FALSE)
            endif()
        elseif(folder MATCHES "^(${families})$")
            if(header MATCHES "^frame/simd(_[a-z]+)?\\.h$|_formulas\\.h$" AND NOT source MATCHES "_formulas\\.h$")
                set(allowed FALSE)
            elseif(header MATCHES "^(${families}|tests|tools|bench)/" AND
                   NOT header MATCHES "^${folder}/")
                set(allowed FALSE)
            endif()
        elseif(source MATCHES "^tests/reference/")
            if(header MATCHES "/" AND NOT header MATCHES "^(tqipl/types\\.h|reference/)")
                set(allowed FALSE)
            endif()
        endif()
        if(NOT allowed)
            message(SEND_ERROR "${source} may not include ${header}")
        endif()
    endforeach()
endforeach()

if(CLANG_FORMAT)
    execute_process(COMMAND ${CLANG_FORMAT} --dry-run -Werror ${sources}
        WORKING_DIRECTORY ${SOURCE_DIR} RESULT_VARIABLE result ERROR_VARIABLE error)
    if(NOT result EQUAL 0)
        message(SEND_ERROR "${error}")
    endif()
endif()
message(STATUS "${count} sources")
