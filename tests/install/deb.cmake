# The Debian packages: what they say and hold, and hosts built from them, unpacked and not
# installed. Takes -DARCHITECTURE= -DREADELF= too.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/steps.cmake)

# The date of the packages is given, so both runs must make the same bytes.
foreach(folder made again)
    run(${CMAKE_COMMAND} -E env SOURCE_DATE_EPOCH=1000000000
        ${CMAKE_CPACK_COMMAND} --config ${BUILD_DIR}/CPackConfig.cmake -G DEB
        -B ${WORK_DIR}/${folder})
endforeach()

string(REGEX MATCH "^[0-9]+" major ${VERSION})
set(runtime libtqiplbaselibu${major})
set(development libtqiplbaselibu-dev)
set(packages ${runtime} ${development})
if(TOOLS)
    list(APPEND packages tqipl-tools)
endif()

file(GLOB files RELATIVE ${WORK_DIR}/made ${WORK_DIR}/made/*.deb)
set(expected_files ${packages})
list(TRANSFORM expected_files APPEND _${VERSION}_${ARCHITECTURE}.deb)
list(SORT files)
list(SORT expected_files)
expect_text("the list of packages" "${files}" "${expected_files}")
foreach(file IN LISTS files)
    file(SHA256 ${WORK_DIR}/made/${file} first)
    file(SHA256 ${WORK_DIR}/again/${file} second)
    expect_text("the digest of ${file}" ${second} ${first})
endforeach()

# package_field(PACKAGE FIELD): `field` is what the package says of itself.
function(package_field package name)
    run(dpkg-deb -f ${WORK_DIR}/made/${package}_${VERSION}_${ARCHITECTURE}.deb ${name})
    string(STRIP "${output}" output)
    set(field "${output}" PARENT_SCOPE)
endfunction()
set(all_files "")
foreach(package IN LISTS packages)
    set(deb ${WORK_DIR}/made/${package}_${VERSION}_${ARCHITECTURE}.deb)
    package_field(${package} Package)
    expect_text("Package" "${field}" ${package})
    package_field(${package} Version)
    expect_text("Version" "${field}" ${VERSION})
    package_field(${package} Maintainer)
    expect_match("Maintainer" "${field}" "^.+ <.+@.+>$")
    package_field(${package} Description)
    expect_match("Description" "${field}" "^[^\n]+\n [^\n]+\n.*This package holds")

    run(dpkg-deb -x ${deb} ${WORK_DIR}/${package})
    run(dpkg-deb -e ${deb} ${WORK_DIR}/${package}.control)
    run(dpkg-deb -x ${deb} ${WORK_DIR}/root)
    file(GLOB_RECURSE own_files RELATIVE ${WORK_DIR}/${package} ${WORK_DIR}/${package}/*)
    foreach(file IN LISTS own_files)
        if(file IN_LIST all_files)
            message(FATAL_ERROR "${file} is in two packages")
        endif()
    endforeach()
    list(APPEND all_files ${own_files})
    expect_files(${WORK_DIR}/${package}/usr/share/doc/${package} EXACT
        FILES copyright changelog.gz)
    run(gzip -dc ${WORK_DIR}/${package}/usr/share/doc/${package}/changelog.gz)
    file(READ ${SOURCE_DIR}/CHANGELOG.md changelog)
    expect_text("the list of changes" "${output}" "${changelog}")
endforeach()

package_field(${runtime} Section)
expect_text("Section" "${field}" libs)
package_field(${runtime} Depends)
expect_match("Depends" "${field}" "libc6 \\(>= [0-9.]+\\).*libstdc\\+\\+6 \\(>= [0-9.]+\\)")
file(READ ${WORK_DIR}/${runtime}.control/shlibs shlibs)
string(STRIP "${shlibs}" shlibs)
expect_text("shlibs" "${shlibs}" "libTQIPLBaseLibU ${major} ${runtime} (>= ${VERSION})")
file(READ ${WORK_DIR}/${runtime}.control/postinst postinst)
expect_match("postinst" "${postinst}" "ldconfig")
# Debian's place for libraries of several processors.
expect_match("the folder of libraries" "${LIBDIR}" "^lib/[a-z0-9_]+-linux-gnu[a-z0-9]*$")
set(library usr/${LIBDIR}/libTQIPLBaseLibU.so)
expect_files(${WORK_DIR}/${runtime} EXACT FILES ${library}.${major} ${library}.${VERSION}
    usr/share/doc/${runtime}/copyright usr/share/doc/${runtime}/changelog.gz)
file(READ_SYMLINK ${WORK_DIR}/${runtime}/${library}.${major} link)
expect_text("the library's link" ${link} libTQIPLBaseLibU.so.${VERSION})
run(${READELF} -d ${WORK_DIR}/${runtime}/${library}.${VERSION})
expect_match("the dynamic section" "${output}"
    "SONAME[^\n]*\\[libTQIPLBaseLibU\\.so\\.${major}\\]")

package_field(${development} Section)
expect_text("Section" "${field}" libdevel)
package_field(${development} Depends)
expect_text("Depends" "${field}" "${runtime} (= ${VERSION})")
list_headers(headers)
list(TRANSFORM headers PREPEND usr/)
expect_files(${WORK_DIR}/${development} FILES ${headers} ${library}
    usr/${LIBDIR}/pkgconfig/TQIPLBaseLibU.pc
    usr/${LIBDIR}/cmake/TQIPLBaseLibU/TQIPLBaseLibUConfig.cmake
    usr/${LIBDIR}/cmake/TQIPLBaseLibU/TQIPLBaseLibUConfigVersion.cmake)
file(READ_SYMLINK ${WORK_DIR}/${development}/${library} link)
expect_text("the development link" ${link} libTQIPLBaseLibU.so.${major})

use_by_cmake(${WORK_DIR}/root/usr ${WORK_DIR}/by_cmake)
use_by_pkg_config(${WORK_DIR}/root/usr ${WORK_DIR}/by_pkg_config)
if(TOOLS)
    package_field(tqipl-tools Depends)
    expect_match("Depends" "${field}" "^${runtime} \\(= ${VERSION}\\), .*libpng16")
    file(READ ${WORK_DIR}/root/usr/share/doc/tqipl-tools/copyright copyright)
    expect_match("the copyright file" "${copyright}" "raccoon\\.png.*public domain")
    use_tools(${WORK_DIR}/root/usr)
endif()
