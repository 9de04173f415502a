# Another compiler or Qt than ours may warn about more; packages for those turn this off.
option(QUILLBROOK_WARNINGS_AS_ERRORS "Fail the build on a warning" ON)

# Warnings of our own targets; what Qt generates into them is not ours to warn about.
function(quillbrook_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wconversion $<$<BOOL:${QUILLBROOK_WARNINGS_AS_ERRORS}>:-Werror>)
    # GCC 12 warns falsely about coroutine frames and inlined std::string copies at -O2.
    target_compile_options(${target} PRIVATE -Wno-restrict)
    set_source_files_properties(${CMAKE_CURRENT_BINARY_DIR}/${target}_autogen/mocs_compilation.cpp
        PROPERTIES COMPILE_OPTIONS -Wno-error)
    get_target_property(compiled_qml ${target} SOURCES)
    list(FILTER compiled_qml INCLUDE REGEX "/qmlcache/.*_qml\\.cpp$")
    set_source_files_properties(${compiled_qml} PROPERTIES COMPILE_OPTIONS "-Wno-error;-Wno-conversion")
endfunction()
