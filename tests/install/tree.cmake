# cmake --install, in a tree that is then moved: it must work from wherever it is.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/steps.cmake)

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${WORK_DIR}/made)
file(RENAME ${WORK_DIR}/made ${WORK_DIR}/moved)
set(prefix ${WORK_DIR}/moved)

list_headers(headers)
expect_files(${prefix} FILES ${headers})
use_by_cmake(${prefix} ${WORK_DIR}/by_cmake)
if(NOT TOOLCHAIN)
    use_by_pkg_config(${prefix} ${WORK_DIR}/by_pkg_config)
endif()
if(TOOLS)
    use_tools(${prefix})
endif()
