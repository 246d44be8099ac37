# cmake -DCLANG= -DSOURCE_DIR= -DWORK_DIR= -P: each public header, alone and in the umbrella, is
# without a warning what Microsoft's compiler takes, in each C++ from 11 to 20.
cmake_minimum_required(VERSION 3.25)
file(GLOB headers RELATIVE ${SOURCE_DIR}/include
    ${SOURCE_DIR}/include/*.h ${SOURCE_DIR}/include/tqipl/*.h)
set(sources "")
foreach(header IN LISTS headers)
    string(REPLACE "/" "_" name ${header})
    string(REGEX REPLACE "\\.h$" ".cpp" name ${name})
    file(WRITE ${WORK_DIR}/headers/${name} "#include <${header}>\n")
    list(APPEND sources ${WORK_DIR}/headers/${name})
endforeach()
list(LENGTH sources count)
if(count LESS 10)
    message(FATAL_ERROR "only ${count} headers were found")
endif()
foreach(standard 11 14 17 20)
    execute_process(COMMAND ${CLANG} --target=x86_64-pc-windows-msvc -std=c++${standard}
            -fms-extensions -fms-compatibility -nostdlibinc
            -isystem ${SOURCE_DIR}/cmake/msvc/include -I ${SOURCE_DIR}/include
            -Wall -Wextra -Wpedantic -Wshadow -Werror -fsyntax-only ${sources}
        RESULT_VARIABLE result)
    if(NOT result EQUAL 0)
        message(SEND_ERROR "C++${standard}: refused")
    endif()
endforeach()
message(STATUS "${count} headers")
