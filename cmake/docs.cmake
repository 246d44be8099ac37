# The documentation site, in docs/html of the build folder: target `docs`. The pictures of its pages
# are made by the built command-line host.
if(TQIPL_TEST_DOCS)
    find_package(Doxygen 1.9.4 REQUIRED)
else()
    find_package(Doxygen 1.9.4 QUIET)
endif()

if(DOXYGEN_FOUND AND TARGET tqipl)
    set(TQ_DOCS_DIR ${PROJECT_BINARY_DIR}/docs)
    set(awk_dir ${PROJECT_SOURCE_DIR}/docs/site)
    set(TQ_DOCS_AWK "awk -v root=${PROJECT_SOURCE_DIR} -f ${awk_dir}/names.awk -f ${awk_dir}")
    configure_file(docs/site/Doxyfile.in ${TQ_DOCS_DIR}/Doxyfile @ONLY)
    add_custom_target(docs
        COMMAND ${CMAKE_COMMAND} -DSOURCE_DIR=${PROJECT_SOURCE_DIR} -DTQIPL=$<TARGET_FILE:tqipl>
            -DDEMO_DIR=${TQ_DOCS_DIR}/demo -P ${PROJECT_SOURCE_DIR}/cmake/docs_pictures.cmake
        COMMAND ${CMAKE_COMMAND} -E rm -rf ${TQ_DOCS_DIR}/html ${TQ_DOCS_DIR}/xml
        COMMAND Doxygen::doxygen ${TQ_DOCS_DIR}/Doxyfile
        WORKING_DIRECTORY ${TQ_DOCS_DIR} VERBATIM USES_TERMINAL)
    add_dependencies(docs tqipl)
    install(DIRECTORY ${TQ_DOCS_DIR}/html DESTINATION ${CMAKE_INSTALL_DOCDIR}
        COMPONENT documentation EXCLUDE_FROM_ALL OPTIONAL)
endif()

if(TQIPL_TEST_DOCS)
    enable_testing()
    add_subdirectory(tests/docs)
endif()
