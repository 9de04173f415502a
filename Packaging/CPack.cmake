# The Debian package: `cpack --preset release` after a build writes it into the build folder.

# packages_of(<variable> <section>): the packages of a section of packages.txt.
function(packages_of variable section)
    set(list ${PROJECT_SOURCE_DIR}/Packaging/packages.txt)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${list})
    # A semicolon in a reason, or a bracket, would mean something to CMake's lists.
    file(READ ${list} text)
    string(REPLACE "[" "<" text "${text}")
    string(REPLACE "]" ">" text "${text}")
    string(REGEX REPLACE "#[^\n]*" "" text "${text}")
    string(REPLACE "\n" ";" lines "${text}")
    set(packages)
    set(inside FALSE)
    foreach(line IN LISTS lines)
        string(STRIP "${line}" line)
        if(line MATCHES "^<(.*)>$")
            string(COMPARE EQUAL "${CMAKE_MATCH_1}" "${section}" inside)
        elseif(inside AND NOT line STREQUAL "")
            list(APPEND packages ${line})
        endif()
    endforeach()
    if(NOT packages)
        message(FATAL_ERROR "packages.txt has no packages in [${section}]")
    endif()
    set(${variable} ${packages} PARENT_SCOPE)
endfunction()

packages_of(depends run)
packages_of(recommends recommended)
list(JOIN depends ", " CPACK_DEBIAN_PACKAGE_DEPENDS)
list(JOIN recommends ", " CPACK_DEBIAN_PACKAGE_RECOMMENDS)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quillbrook)
set(CPACK_PACKAGE_VENDOR "The Quillbrook developers")
set(CPACK_PACKAGE_CONTACT "The Quillbrook developers <packages@quillbrook.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "disk usage analyser that helps take the space back")
set(CPACK_PACKAGE_DESCRIPTION "\
Quillbrook measures a home folder with a parallel scanner, without reading the
contents of a file, and says in plain words what in it is known to come back
by itself, what would cost something, and what may be the only copy.

It shows everything as a treemap, as the biggest files and through a search by
name. What is cleared goes to the Trash, a ledger remembers it, and the next
scan measures how much space really came back.")

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE https://quillbrook.example/)
# The linked libraries; what is loaded by name at run time comes from packages.txt.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# Installed below a folder instead of with another prefix: files that name the program have to say /usr.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
# Compresses, strips and sets permissions; it is told where the package's own files are.
set(CPACK_QUILLBROOK_DEBIAN ${PROJECT_SOURCE_DIR}/Packaging/debian)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/Packaging/PrepareDebianPackage.cmake)

include(CPack)
