# cmake -DCLANG= -DNM= -DSOURCE_DIR= -DEXPORTS= -DDEF= -DOBJECTS=a;b -DALL_DEF= -DMSVC_DEF=
# -DMSVC_NAMES= -DGUARDS= -P: finds the name that Microsoft's compiler gives to each exported
# function, and writes the linker's list of all exports, the list for the import library, the bare
# names, and the source of the guards.
#
# Clang reads the public headers twice, for mingw-w64 and for Microsoft's compiler, and tells each
# function's name, type and linker name. Name and type pair the two linker names; a function of
# EXPORTS without exactly one pair is an error. A name that one of OBJECTS defines, which are
# compiled for Microsoft's compiler, is exported from there. Every other one stands for a guard, see
# frame/msvc_guard.h, or for the function itself if that cannot throw.
cmake_minimum_required(VERSION 3.25)

# Sets <prefix>_<name>|<type> to the linker name of each function of the headers, and <prefix>_keys.
function(read_functions prefix target)
    execute_process(COMMAND ${CLANG} --target=${target} -nostdlibinc -std=c++14 -fsyntax-only
            -isystem ${SOURCE_DIR}/cmake/msvc/include -I ${SOURCE_DIR}/include
            -Xclang -ast-dump=json
            -x c++ ${SOURCE_DIR}/include/TQIPLBaseLibU.h -Wno-pragma-once-outside-header
        OUTPUT_VARIABLE dump COMMAND_ERROR_IS_FATAL ANY)
    # The records of the outermost declarations stand three levels deep.
    string(REGEX MATCHALL
        "\n      \"(kind|name|mangledName)\": \"[^\"\n]*\"|\n        \"qualType\": \"[^\"\n]*\""
        fields "${dump}")
    set(keys "")
    foreach(field IN LISTS fields)
        string(REGEX REPLACE "^\n +\"([a-zA-Z]+)\": \"(.*)\"$" "\\1" what "${field}")
        string(REGEX REPLACE "^\n +\"([a-zA-Z]+)\": \"(.*)\"$" "\\2" value "${field}")
        if(what STREQUAL "kind")
            set(kind "${value}")
            set(name "")
            set(linkerName "")
        else()
            if(what STREQUAL "name")
                set(name "${value}")
            elseif(what STREQUAL "mangledName")
                set(linkerName "${value}")
            elseif(kind STREQUAL "FunctionDecl" AND linkerName)
                set(key "${name}|${value}")
                if(DEFINED ${prefix}_${key} AND NOT ${prefix}_${key} STREQUAL linkerName)
                    message(FATAL_ERROR "two functions are ${key}")
                endif()
                list(APPEND keys "${key}")
                set(${prefix}_${key} "${linkerName}")
                set(${prefix}_${key} "${linkerName}" PARENT_SCOPE)
            endif()
        endif()
    endforeach()
    list(REMOVE_DUPLICATES keys)
    set(${prefix}_keys "${keys}" PARENT_SCOPE)
endfunction()

read_functions(gnu x86_64-w64-windows-gnu)
read_functions(msvc x86_64-pc-windows-msvc)

file(STRINGS ${EXPORTS} exports)
set(classes "")
foreach(name IN LISTS exports)
    if(name MATCHES "^_ZTV[0-9]+(.*)$")
        list(APPEND classes ${CMAKE_MATCH_1})
    endif()
endforeach()

# Members and virtual tables of the exported classes, and functions of the headers.
set(defined "")
set(defined_data "")
foreach(object IN LISTS OBJECTS)
    execute_process(COMMAND ${NM} --defined-only --extern-only ${object}
        OUTPUT_VARIABLE out COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX MATCHALL "[^ \n]+ [A-Z] \\?[^\n]+" rows "${out}")
    foreach(row IN LISTS rows)
        string(REGEX REPLACE "^[^ ]+ [A-Z] " "" name "${row}")
        if(name MATCHES "^\\?\\?_7([A-Za-z0-9_]+)@@6B@$")
            if(CMAKE_MATCH_1 IN_LIST classes)
                list(APPEND defined_data "${name}")
            endif()
        elseif(name MATCHES "^\\?(\\?([0-9A-Z]|_[FUV])|[A-Za-z0-9_]+@)([A-Za-z0-9_]+)@@")
            # Members, and not the deleting destructors (_G), which every host makes for itself.
            if(CMAKE_MATCH_3 IN_LIST classes)
                list(APPEND defined "${name}")
            endif()
        elseif(name MATCHES "^\\?[A-Za-z0-9_]+@@Y")
            list(APPEND defined "${name}")
        endif()
    endforeach()
endforeach()

set(aliases "")
set(guards "")
set(msvc_names "")
foreach(key IN LISTS gnu_keys)
    set(gnu_name "${gnu_${key}}")
    list(FIND exports "${gnu_name}" index)
    if(index EQUAL -1)
        continue()
    endif()
    if(NOT DEFINED msvc_${key})
        message(FATAL_ERROR "no function of Microsoft's compiler for ${gnu_name}, ${key}")
    endif()
    set(msvc_name "${msvc_${key}}")
    if(msvc_name IN_LIST msvc_names)
        message(FATAL_ERROR "${msvc_name} stands for two functions, one of them ${gnu_name}")
    endif()
    list(APPEND msvc_names "${msvc_name}")
    list(REMOVE_AT exports ${index})
    if(msvc_name IN_LIST defined)
        continue()
    elseif(key MATCHES "noexcept$")
        string(APPEND aliases "\"${msvc_name}\" = ${gnu_name}\n")
    else()
        string(REPLACE "|" ", " arguments "${key}")
        string(APPEND guards "TQ_MSVC_GUARD(${gnu_name}, ${arguments})\n")
        string(APPEND aliases "\"${msvc_name}\" = MsvcGuard${gnu_name}\n")
    endif()
endforeach()
foreach(name IN LISTS exports)
    if(NOT name MATCHES "^_Z")  # the same for every compiler
        list(APPEND msvc_names "${name}")
    elseif(NOT name MATCHES "^_Z[NT]")
        message(FATAL_ERROR "no header declares the exported function ${name}")
    endif()
endforeach()
set(all "${aliases}")
foreach(name IN LISTS defined)
    string(APPEND all "\"${name}\"\n")
    list(APPEND msvc_names "${name}")
endforeach()
list(REMOVE_DUPLICATES msvc_names)
set(msvc "")
foreach(name IN LISTS msvc_names)
    string(APPEND msvc "${name}\n")
endforeach()
foreach(name IN LISTS defined_data)
    string(APPEND all "\"${name}\" DATA\n")
    string(APPEND msvc "${name} DATA\n")
    list(APPEND msvc_names "${name}")
endforeach()

file(READ ${DEF} itanium)
list(JOIN msvc_names "\n" names)
file(WRITE ${ALL_DEF} "${itanium}${all}")
file(WRITE ${MSVC_DEF} "EXPORTS\n${msvc}")
file(WRITE ${MSVC_NAMES} "${names}\n")
file(WRITE ${GUARDS}
    "// The guards of all functions; made by the build.\n"
    "#include <TQIPLBaseLibU.h>\n\n"
    "#include \"frame/msvc_guard.h\"\n\n${guards}")
