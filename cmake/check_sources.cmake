# cmake -DSOURCE_DIR= -DCLANG_FORMAT= -P: who includes whom, ASCII, and format.
file(GLOB_RECURSE sources RELATIVE ${SOURCE_DIR}
    ${SOURCE_DIR}/include/*.h ${SOURCE_DIR}/frame/*.h ${SOURCE_DIR}/frame/*.cpp
    ${SOURCE_DIR}/memory/*.h ${SOURCE_DIR}/memory/*.cpp ${SOURCE_DIR}/color/*.h
    ${SOURCE_DIR}/color/*.cpp ${SOURCE_DIR}/zoom/*.h ${SOURCE_DIR}/zoom/*.cpp
    ${SOURCE_DIR}/tests/*.h ${SOURCE_DIR}/tests/*.cpp ${SOURCE_DIR}/bench/*.h
    ${SOURCE_DIR}/bench/*.cpp ${SOURCE_DIR}/examples/*.cpp ${SOURCE_DIR}/tools/*.h
    ${SOURCE_DIR}/tools/*.cpp)
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
           folder MATCHES "^(include|frame|memory|color|zoom)$" AND
           NOT source MATCHES "^frame/(platform_|module_entry)")
            set(allowed FALSE)
        elseif(source MATCHES "^include/tqipl/" AND
               NOT header MATCHES "^(tqipl/[a-z_]+\\.h|cstddef|cstdint|cstring|new)$")
            set(allowed FALSE)
        elseif(source MATCHES "^frame/" AND header MATCHES "^(memory|color|zoom|tests|tools|bench)/")
            set(allowed FALSE)
        elseif(source MATCHES "_kernels\\.cpp$")
            string(REGEX REPLACE "\\.cpp$" ".h" own "${source}")
            # What kernels of a family share is a header of formulas, which nobody else includes.
            if(NOT header STREQUAL own AND NOT header MATCHES "^[a-z]+/[a-z0-9_]+_formulas\\.h$" AND
               NOT header MATCHES "^(color/coefficients|frame/simd)\\.h$" AND
               NOT header MATCHES "^(cstdint|cstddef|cstring)$")
                set(allowed FALSE)
            endif()
        elseif(folder MATCHES "^(memory|color|zoom)$")
            if(header MATCHES "^frame/simd\\.h$|_formulas\\.h$" AND NOT source MATCHES "_formulas\\.h$")
                set(allowed FALSE)
            elseif(header MATCHES "^(memory|color|zoom|tests|tools|bench)/" AND
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
