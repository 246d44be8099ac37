# What the tests of installed libraries have in common. All take -DBUILD_DIR= -DSOURCE_DIR=
# -DWORK_DIR= -DVERSION= -DLIBDIR= -DTOOLCHAIN= -DEMULATOR= -DCXX= -DTOOLS=.
cmake_minimum_required(VERSION 3.25)

# Runs a command, which must succeed; `output` is what it wrote.
function(run)
    execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE out ERROR_VARIABLE err RESULT_VARIABLE result)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${ARGN}\nends with ${result}\n${out}\n${err}")
    endif()
    set(output "${out}" PARENT_SCOPE)
endfunction()

# The texts are the same.
function(expect_text what found expected)
    if(NOT found STREQUAL expected)
        message(FATAL_ERROR "${what} is '${found}', not '${expected}'")
    endif()
endfunction()

function(expect_match what found pattern)
    if(NOT found MATCHES "${pattern}")
        message(FATAL_ERROR "${what} is '${found}', which does not match '${pattern}'")
    endif()
endfunction()

# These files, links included, are under the folder, and with EXACT no others.
function(expect_files folder)
    cmake_parse_arguments(PARSE_ARGV 1 wanted "EXACT" "" "FILES")
    file(GLOB_RECURSE found RELATIVE ${folder} ${folder}/*)
    foreach(file IN LISTS wanted_FILES)
        if(NOT file IN_LIST found)
            message(FATAL_ERROR "${folder} lacks ${file}; it has ${found}")
        endif()
    endforeach()
    list(REMOVE_ITEM found ${wanted_FILES})
    if(wanted_EXACT AND found)
        message(FATAL_ERROR "${folder} has ${found} too")
    endif()
endfunction()

# The headers of the source tree, as they stand under the prefix.
function(list_headers list)
    file(GLOB headers RELATIVE ${SOURCE_DIR} ${SOURCE_DIR}/include/*.h
        ${SOURCE_DIR}/include/tqipl/*.h)
    set(${list} ${headers} PARENT_SCOPE)
endfunction()

function(expect_version_program)
    run(${ARGN})
    string(STRIP "${output}" output)
    expect_text("what ${ARGN} prints" "${output}" "${VERSION} ${VERSION}")
endfunction()

# Builds the installed examples and a program of our own by the CMake package under the prefix, and
# runs them.
function(use_by_cmake prefix build)
    set(toolchain)
    if(TOOLCHAIN)
        set(toolchain -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN}
            -DCMAKE_FIND_ROOT_PATH_MODE_PACKAGE=BOTH)
    endif()
    run(${CMAKE_COMMAND} -S ${SOURCE_DIR}/tests/install/consumer -B ${build} -G Ninja
        -DVERSION=${VERSION} -DEXAMPLES=${prefix}/share/doc/TQIPLBaseLibU/examples
        -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_PREFIX_PATH=${prefix}
        -DCMAKE_CXX_STANDARD=11 -DCMAKE_CXX_EXTENSIONS=OFF
        "-DCMAKE_CXX_FLAGS=-Wall -Wextra -Wpedantic -Werror" ${toolchain})
    file(STRINGS ${build}/CMakeCache.txt place REGEX "^TQIPLBaseLibU_DIR:")
    expect_text("the package that was found" "${place}"
        "TQIPLBaseLibU_DIR:PATH=${prefix}/${LIBDIR}/cmake/TQIPLBaseLibU")
    run(${CMAKE_COMMAND} --build ${build})
    file(GLOB dlls ${prefix}/bin/*.dll)
    set(suffix)
    if(dlls)
        file(COPY ${dlls} DESTINATION ${build})
        set(suffix .exe)
    endif()
    file(STRINGS ${build}/programs.txt programs)
    list(LENGTH programs count)
    if(count LESS 3)
        message(FATAL_ERROR "only these examples were built: ${programs}")
    endif()
    foreach(program IN LISTS programs)
        run(${EMULATOR} ${build}/${program}${suffix})
    endforeach()
    expect_version_program(${EMULATOR} ${build}/print_version${suffix})
endfunction()

# The same by the pkg-config file, for two of the programs.
function(use_by_pkg_config prefix build)
    set(pkg_config ${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${prefix}/${LIBDIR}/pkgconfig pkg-config)
    run(${pkg_config} --modversion TQIPLBaseLibU)
    string(STRIP "${output}" output)
    expect_text("pkg-config's version" "${output}" ${VERSION})
    run(${pkg_config} --cflags --libs TQIPLBaseLibU)
    separate_arguments(flags UNIX_COMMAND "${output}")
    file(MAKE_DIRECTORY ${build})
    foreach(source ${prefix}/share/doc/TQIPLBaseLibU/examples/convert_frame.cpp
            ${SOURCE_DIR}/tests/install/consumer/print_version.cpp)
        get_filename_component(name ${source} NAME_WE)
        run(${CXX} -std=c++11 ${source} ${flags} -o ${build}/${name})
        run(${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${prefix}/${LIBDIR} ${build}/${name})
    endforeach()
    expect_version_program(${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${prefix}/${LIBDIR}
        ${build}/print_version)
endfunction()

# The command-line host under the prefix finds the module and the photographs from its own place.
function(use_tools prefix)
    run(${prefix}/bin/tqipl info)
    expect_match("tqipl info" "${output}" "^version: +${VERSION}\nmodule: +${VERSION}\n")
    expect_files(${prefix}/share/TQIPLBaseLibU/samples EXACT
        FILES README.md astronaut.png coffee.png raccoon.png)
    file(SIZE ${prefix}/share/TQIPLBaseLibU/samples/README.md size)
    if(size EQUAL 0)
        message(FATAL_ERROR "the photographs have no licence")
    endif()
    # No photograph is worked on: the host cannot make this folder.
    execute_process(COMMAND ${prefix}/bin/tqipl demo /dev/null/pictures
        ERROR_VARIABLE complaint OUTPUT_QUIET RESULT_VARIABLE result)
    expect_text("the exit code" "${result}" 1)
    expect_match("the complaint" "${complaint}" "^tqipl: cannot make the folder /dev/null/pictures")
endfunction()

file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR})
