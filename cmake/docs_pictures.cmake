# cmake -DSOURCE_DIR= -DTQIPL= -DDEMO_DIR= -P: the pictures that the pages of docs/ name, made by
# `tqipl demo`, which fails for a name that it does not know. Those that stand from an earlier run
# and are not older than the host are kept.
cmake_minimum_required(VERSION 3.25)
file(GLOB_RECURSE pages ${SOURCE_DIR}/docs/*.md)
list(APPEND pages ${SOURCE_DIR}/README.md)
set(pictures "")
foreach(page IN LISTS pages)
    file(READ ${page} text)
    string(REGEX MATCHALL "!\\[[^]]*\\]\\([^)]*\\)" found "${text}")
    foreach(picture IN LISTS found)
        string(REGEX REPLACE "^.*\\(([^)]*)\\)$" "\\1" name "${picture}")
        list(APPEND pictures ${name})
    endforeach()
endforeach()
list(REMOVE_DUPLICATES pictures)

set(missing "")
foreach(name IN LISTS pictures)
    if(NOT EXISTS ${DEMO_DIR}/${name} OR ${TQIPL} IS_NEWER_THAN ${DEMO_DIR}/${name})
        list(APPEND missing ${name})
    endif()
endforeach()
file(GLOB stale RELATIVE ${DEMO_DIR} ${DEMO_DIR}/*.png)
list(REMOVE_ITEM stale ${pictures})
foreach(name IN LISTS stale)
    file(REMOVE ${DEMO_DIR}/${name})
endforeach()
file(MAKE_DIRECTORY ${DEMO_DIR})
if(missing)
    execute_process(
        COMMAND ${TQIPL} demo ${DEMO_DIR} --samples ${SOURCE_DIR}/samples --pictures ${missing}
        COMMAND_ERROR_IS_FATAL ANY)
endif()
