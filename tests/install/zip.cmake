# The archive for Windows: what it holds, and hosts built from it with mingw-w64 and, where the
# import library for hosts of Microsoft's compiler was built (MSVC_LIBRARY), with Clang for those.
# Takes -DMSVC_LIBRARY= -DCLANG= -DDLLTOOL= -DRC= -DCPU= too.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/steps.cmake)

run(${CMAKE_CPACK_COMMAND} --config ${BUILD_DIR}/CPackConfig.cmake -G ZIP -B ${WORK_DIR}/made)
file(GLOB archives RELATIVE ${WORK_DIR}/made ${WORK_DIR}/made/*.zip)
string(TOLOWER ${CPU} cpu)
set(name TQIPLBaseLibU-${VERSION}-windows-${cpu})
expect_text("the list of archives" "${archives}" ${name}.zip)
file(ARCHIVE_EXTRACT INPUT ${WORK_DIR}/made/${name}.zip DESTINATION ${WORK_DIR}/unpacked)
file(GLOB top RELATIVE ${WORK_DIR}/unpacked ${WORK_DIR}/unpacked/*)
expect_text("what the archive unpacks to" "${top}" ${name})
set(prefix ${WORK_DIR}/unpacked/${name})

expect_files(${prefix}/bin EXACT FILES TQIPLBaseLibU.dll)
set(libraries libTQIPLBaseLibU.dll.a)
if(MSVC_LIBRARY)
    list(APPEND libraries TQIPLBaseLibU.lib)
endif()
file(GLOB found RELATIVE ${prefix}/lib ${prefix}/lib/*.a ${prefix}/lib/*.lib)
list(SORT found)
list(SORT libraries)
expect_text("the list of libraries" "${found}" "${libraries}")
list_headers(headers)
expect_files(${prefix} FILES ${headers}
    lib/cmake/TQIPLBaseLibU/TQIPLBaseLibUConfig.cmake
    lib/cmake/TQIPLBaseLibU/TQIPLBaseLibUConfigVersion.cmake
    share/doc/TQIPLBaseLibU/README.md share/doc/TQIPLBaseLibU/CHANGELOG.md
    share/doc/TQIPLBaseLibU/licences/mingw-w64-x86-64-dev.txt
    share/doc/TQIPLBaseLibU/licences/gcc-mingw-w64-x86-64-posix-runtime.txt)

use_by_cmake(${prefix} ${WORK_DIR}/by_cmake)

# configure_msvc_host(<build>): `result` and `output` of CMake for a host of Microsoft's kind.
function(configure_msvc_host build)
    set(shims ${SOURCE_DIR}/cmake/msvc/include)
    execute_process(COMMAND ${CMAKE_COMMAND} -S ${SOURCE_DIR}/tests/install/msvc_consumer
        -B ${build} -G Ninja -DCMAKE_SYSTEM_NAME=Windows -DCMAKE_SYSTEM_PROCESSOR=${CPU}
        -DCMAKE_CXX_COMPILER=${CLANG} -DCMAKE_CXX_COMPILER_TARGET=x86_64-pc-windows-msvc
        -DCMAKE_RC_COMPILER=${RC} -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_STANDARD=14
        "-DCMAKE_CXX_FLAGS=-nostdlibinc -isystem ${shims} -fno-builtin -fno-threadsafe-statics"
        -DCMAKE_CXX_STANDARD_LIBRARIES= -DCMAKE_PREFIX_PATH=${prefix}
        -DRUNTIME=${SOURCE_DIR}/tests/msvc -DKERNEL32=${WORK_DIR}/kernel32.lib
        OUTPUT_VARIABLE out ERROR_VARIABLE out RESULT_VARIABLE result)
    set(result "${result}" PARENT_SCOPE)
    set(output "${out}" PARENT_SCOPE)
endfunction()
if(MSVC_LIBRARY)
    run(${DLLTOOL} -m i386:x86-64 -d ${SOURCE_DIR}/tests/msvc/kernel32.def
        -l ${WORK_DIR}/kernel32.lib)
    set(build ${WORK_DIR}/for_microsoft)
    configure_msvc_host(${build})
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${output}")
    endif()
    file(READ ${build}/import_library.txt library)
    expect_text("the import library" "${library}" ${prefix}/lib/TQIPLBaseLibU.lib)
    run(${CMAKE_COMMAND} --build ${build})
    file(COPY ${prefix}/bin/TQIPLBaseLibU.dll DESTINATION ${build})
    expect_version_program(${EMULATOR} ${build}/version_host.exe)

    file(REMOVE ${prefix}/lib/TQIPLBaseLibU.lib)
    configure_msvc_host(${WORK_DIR}/refused)
    expect_match("CMake's answer without TQIPLBaseLibU.lib" "${result}:${output}"
        "^1:.*built without[ \n]+TQIPLBaseLibU\\.lib")
endif()
