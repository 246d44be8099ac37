# cmake -DBUILD_DIR= -DSOURCE_DIR= -DWORK_DIR= -DTOOLCHAIN= -DEMULATOR= -DCXX= -DNM= -P: installs
# the library in a fresh prefix and builds and runs the examples against it, by find_package and,
# on Linux, by pkg-config.
file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)
function(run)
    execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE out ERROR_VARIABLE out RESULT_VARIABLE result)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${ARGN}\n${out}")
    endif()
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
# The tree must work from wherever it is moved to.
file(RENAME ${prefix} ${WORK_DIR}/moved)
set(prefix ${WORK_DIR}/moved)

set(toolchain)
if(TOOLCHAIN)
    set(toolchain -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN} -DCMAKE_FIND_ROOT_PATH_MODE_PACKAGE=BOTH)
endif()
run(${CMAKE_COMMAND} -S ${SOURCE_DIR}/examples -B ${WORK_DIR}/examples -G Ninja
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_PREFIX_PATH=${prefix} ${toolchain})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/examples)
file(GLOB dlls ${prefix}/bin/*.dll)
if(dlls)
    file(COPY ${dlls} DESTINATION ${WORK_DIR}/examples)
    set(suffix .exe)
endif()
foreach(name convert_frame zoom_plane own_pool)
    run(${EMULATOR} ${WORK_DIR}/examples/${name}${suffix})
endforeach()

if(NOT TOOLCHAIN)
    file(GLOB_RECURSE pc ${prefix}/*.pc)
    get_filename_component(pc_dir ${pc} DIRECTORY)
    execute_process(COMMAND ${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${pc_dir}
        pkg-config --cflags --libs TQIPLBaseLibU
        OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    separate_arguments(flags UNIX_COMMAND "${flags}")
    execute_process(COMMAND ${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${pc_dir}
        pkg-config --variable=libdir TQIPLBaseLibU
        OUTPUT_VARIABLE libdir OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    run(${CXX} -std=c++11 ${SOURCE_DIR}/examples/convert_frame.cpp ${flags}
        -o ${WORK_DIR}/convert_frame)
    run(${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${libdir} ${WORK_DIR}/convert_frame)
endif()
