# Windows hosts of Microsoft's compiler. It names functions, builds classes and throws exceptions in
# its own way. So the module that mingw-w64 makes also exports each function under the name that
# this compiler gives it, behind a guard that throws as it does, and the exported classes as it
# builds them. Clang knows both ways and tells the names from the public headers; no list of them is
# kept. Sets TQ_MSVC_IMPORT_LIBRARY, the import library for such hosts, which the target
# tqipl_msvc_library makes.
set(tools TQ_CLANG=clang++ TQ_DLLTOOL=llvm-dlltool TQ_LLVM_NM=llvm-nm)
if(BUILD_TESTING)
    list(APPEND tools TQ_LLD_LINK=lld-link TQ_UNDNAME=llvm-undname TQ_CXXFILT=llvm-cxxfilt)
endif()
set(missing "")
foreach(tool IN LISTS tools)
    string(REPLACE "=" ";" tool ${tool})
    list(POP_FRONT tool variable)
    set(names ${tool})
    foreach(version RANGE 22 14 -1)
        list(APPEND names ${tool}-${version})
    endforeach()
    find_program(${variable} NAMES ${names})
    mark_as_advanced(${variable})
    if(NOT ${variable})
        list(APPEND missing ${tool})
    endif()
endforeach()

# For code and headers as Microsoft's compiler sees them, without any system's C++ library.
set(TQ_MSVC_FLAGS --target=x86_64-pc-windows-msvc -fms-extensions -fms-compatibility -nostdlibinc
    -isystem ${PROJECT_SOURCE_DIR}/cmake/msvc/include -I ${PROJECT_SOURCE_DIR}/include
    -Wall -Wextra $<$<BOOL:${TQIPL_WERROR}>:-Werror>)

if(WIN32)
    if(missing)
        set(have_tools OFF)
    else()
        set(have_tools ON)
    endif()
    list(JOIN missing ", " missing)
    option(TQIPL_MSVC_HOSTS
        "Export for hosts of Microsoft's compiler too (needs clang, llvm, and lld for the tests)"
        ${have_tools})
    if(TQIPL_MSVC_HOSTS AND NOT have_tools)
        message(FATAL_ERROR "TQIPL_MSVC_HOSTS is ON, but these were not found: ${missing}")
    elseif(TQIPL_MSVC_HOSTS)
        message(STATUS "Hosts of Microsoft's compiler: served, with names by ${TQ_CLANG}")
    elseif(have_tools)
        message(STATUS "Hosts of Microsoft's compiler: not served (TQIPL_MSVC_HOSTS is OFF)")
    else()
        message(STATUS "Hosts of Microsoft's compiler: not served (not found: ${missing})")
    endif()
endif()

if(WIN32 AND TQIPL_MSVC_HOSTS)
    # The exported classes as Microsoft's compiler builds them.
    set(bridge ${PROJECT_BINARY_DIR}/msvc_bridge.obj)
    add_custom_command(OUTPUT ${bridge}
        COMMAND ${TQ_CLANG} ${TQ_MSVC_FLAGS} -std=c++20 -O2 -ffp-contract=off -DTQIPL_BUILDING
            -fno-addrsig -fno-threadsafe-statics -I ${PROJECT_SOURCE_DIR}
            -MD -MF ${bridge}.d -MT ${bridge}
            -c ${PROJECT_SOURCE_DIR}/frame/msvc_bridge_msvc.cpp -o ${bridge}
        DEPENDS frame/msvc_bridge_msvc.cpp
        DEPFILE ${bridge}.d
        COMMENT "Building the exported classes for Microsoft's compiler"
        VERBATIM COMMAND_EXPAND_LISTS)
    set_source_files_properties(${bridge} PROPERTIES EXTERNAL_OBJECT ON GENERATED ON)
    set(TQ_MSVC_OBJECTS ${bridge})

    set(names_def ${PROJECT_BINARY_DIR}/TQIPLBaseLibU_all.def)
    set(msvc_def ${PROJECT_BINARY_DIR}/TQIPLBaseLibU_msvc.def)
    set(msvc_names ${PROJECT_BINARY_DIR}/exports_msvc.txt)
    file(GLOB headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/include/*.h
        ${PROJECT_SOURCE_DIR}/include/tqipl/*.h ${PROJECT_SOURCE_DIR}/cmake/msvc/include/*)
    set(guards ${PROJECT_BINARY_DIR}/msvc_guards.cpp)
    add_custom_command(OUTPUT ${names_def} ${msvc_def} ${msvc_names} ${guards}
        COMMAND ${CMAKE_COMMAND} -DCLANG=${TQ_CLANG} -DNM=${TQ_LLVM_NM}
            -DSOURCE_DIR=${PROJECT_SOURCE_DIR} -DEXPORTS=${TQ_EXPORTS} -DDEF=${TQ_EXPORTS_DEF}
            "-DOBJECTS=${TQ_MSVC_OBJECTS}" -DALL_DEF=${names_def} -DMSVC_DEF=${msvc_def}
            -DMSVC_NAMES=${msvc_names} -DGUARDS=${guards}
            -P ${PROJECT_SOURCE_DIR}/cmake/msvc/names.cmake
        DEPENDS cmake/msvc/names.cmake ${headers} ${TQ_EXPORTS} ${TQ_EXPORTS_DEF}
            ${TQ_MSVC_OBJECTS}
        COMMENT "Naming the exports as Microsoft's compiler does"
        VERBATIM)
    set(TQ_MSVC_SOURCES frame/msvc_bridge_mingw.cpp ${guards})
    set(TQ_EXPORTS_DEF ${names_def})
    list(APPEND TQ_EXPORTS ${msvc_names})

    set(TQ_MSVC_IMPORT_LIBRARY ${PROJECT_BINARY_DIR}/TQIPLBaseLibU.lib)
    add_custom_command(OUTPUT ${TQ_MSVC_IMPORT_LIBRARY}
        COMMAND ${TQ_DLLTOOL} -m i386:x86-64 -d ${msvc_def} -D TQIPLBaseLibU.dll
            -l ${TQ_MSVC_IMPORT_LIBRARY}
        DEPENDS ${msvc_def}
        COMMENT "Building the import library TQIPLBaseLibU.lib"
        VERBATIM)
    add_custom_target(tqipl_msvc_library ALL DEPENDS ${TQ_MSVC_IMPORT_LIBRARY})
    # Which makes the list of names; no two targets may do so at once.
    add_dependencies(tqipl_msvc_library TQIPLBaseLibU)
endif()
