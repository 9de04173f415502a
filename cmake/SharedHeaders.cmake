# Headers of the standard library and of Qt that most files read, compiled once a library and once for all suites of a
# module: they take more than half of the time off a build. A file still includes all that it uses; the dev preset with
# -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON shows whether it does. One that is built with other definitions than the one it
# shares with reads them as text.
set(CMAKE_PCH_WARN_INVALID OFF)

set(QUILLBROOK_HEADERS
    <algorithm> <array> <chrono> <expected> <functional> <memory> <mutex> <optional> <span> <string> <string_view>
    <utility> <vector>
    <QByteArray> <QDateTime> <QFuture> <QList> <QString> <QStringList> <QUrl>)
set(QUILLBROOK_TEST_HEADERS ${QUILLBROOK_HEADERS}
    <QDir> <QFile> <QObject> <QSignalSpy> <QTest> <QTimer> <QVariant> <QVariantMap>)

# quillbrook_headers(<library> HEADER...): these, and those named.
function(quillbrook_headers library)
    target_precompile_headers(${library} PRIVATE ${QUILLBROOK_HEADERS} ${ARGN})
    # The standard library switches these off around its strings, of which they say what isn't so; GCC forgets that over
    # a header compiled beforehand.
    target_compile_options(${library} PRIVATE -Wno-array-bounds -Wno-stringop-overflow -Wno-stringop-overread)
endfunction()

# quillbrook_test_headers(<program> HEADER...): those of tests, and those named.
function(quillbrook_test_headers program)
    # It holds nothing for most, and takes longer to compile with them.
    set_source_files_properties(${CMAKE_CURRENT_BINARY_DIR}/${program}_autogen/mocs_compilation.cpp
        PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
    get_property(owner DIRECTORY PROPERTY QUILLBROOK_HEADERS_OWNER)
    if(owner)
        target_precompile_headers(${program} REUSE_FROM ${owner})
    else()
        target_precompile_headers(${program} PRIVATE ${QUILLBROOK_TEST_HEADERS} ${ARGN})
        set_property(DIRECTORY PROPERTY QUILLBROOK_HEADERS_OWNER ${program})
    endif()
endfunction()
