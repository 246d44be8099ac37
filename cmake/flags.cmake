# tq_warnings: for all sources of the project.
add_library(tq_warnings INTERFACE)
target_compile_options(tq_warnings INTERFACE -Wall -Wextra $<$<BOOL:${TQIPL_WERROR}>:-Werror>)

# tq_build: what every source of the library is compiled with.
add_library(tq_build INTERFACE)
target_link_libraries(tq_build INTERFACE tq_warnings)
target_include_directories(tq_build INTERFACE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
target_compile_definitions(tq_build INTERFACE TQIPL_BUILDING)
target_compile_options(tq_build INTERFACE
    # The same bytes from every build: one rounding for each float operation. The last two change
    # no value and let loops vectorise.
    -ffp-contract=off -fno-fast-math -fno-trapping-math -fno-math-errno
    -fvisibility=hidden -fvisibility-inlines-hidden
    -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.
    # A unique symbol would keep the module in the process after dlclose.
    $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)
if(TQIPL_SANITIZE)
    add_compile_options(-fsanitize=${TQIPL_SANITIZE} -fno-omit-frame-pointer -g)
    add_link_options(-fsanitize=${TQIPL_SANITIZE})
    if(TQIPL_SANITIZE MATCHES "undefined")
        add_compile_options(-fno-sanitize-recover=all)
    endif()
endif()

find_package(Threads REQUIRED)
if(WIN32)
    set(TQ_SYSTEM_LIBRARIES "")
else()
    set(TQ_SYSTEM_LIBRARIES Threads::Threads)
endif()
