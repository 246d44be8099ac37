# cmake -DNM= -DOBJDUMP= -DLIBRARY= -DMODULE= -P: every name of the import library for Microsoft's
# compiler is exported by the module, and holds all that the module exports but mingw-w64's names.
cmake_minimum_required(VERSION 3.25)
execute_process(COMMAND ${NM} --defined-only ${LIBRARY}
    OUTPUT_VARIABLE out COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL " __imp_[^ \n]+" imports "${out}")
list(TRANSFORM imports REPLACE "^ __imp_" "")
list(REMOVE_DUPLICATES imports)

execute_process(COMMAND ${OBJDUMP} -p ${MODULE} OUTPUT_VARIABLE out COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCH "\\[Ordinal/Name Pointer\\] Table(\n[ \t]*\\[[^\n]*)*" out "${out}")
string(REGEX REPLACE "\\[[^]]*\\]( Table)?" "" out "${out}")
string(REGEX MATCHALL "[^ \t\n]+" exports "${out}")
list(FILTER exports EXCLUDE REGEX "^_Z")  # mingw-w64's

list(LENGTH imports count)
list(LENGTH exports exported)
if(count LESS 300 OR exported LESS 300)
    message(SEND_ERROR "${count} names in ${LIBRARY}, ${exported} in ${MODULE}")
endif()
set(unresolved ${imports})
set(unreachable ${exports})
list(REMOVE_ITEM unresolved ${exports})
list(REMOVE_ITEM unreachable ${imports})
foreach(name IN LISTS unresolved)
    message(SEND_ERROR "in the import library, but not exported: ${name}")
endforeach()
foreach(name IN LISTS unreachable)
    message(SEND_ERROR "exported, but not in the import library: ${name}")
endforeach()
message(STATUS "${count} names")
