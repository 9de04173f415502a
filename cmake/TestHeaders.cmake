# Headers of the standard library and of Qt that most tests read, compiled once a module: they take more than half of the
# time off the tests' build. A test still includes all that it uses. One that is built with other definitions than the
# one it shares with reads them as text.
set(CMAKE_PCH_WARN_INVALID OFF)

set(QUILLBROOK_TEST_HEADERS
    <algorithm> <array> <chrono> <expected> <functional> <memory> <mutex> <optional> <span> <string> <string_view>
    <utility> <vector>
    <QByteArray> <QDateTime> <QDir> <QFile> <QFuture> <QList> <QObject> <QSignalSpy> <QString> <QStringList> <QTest>
    <QTimer> <QUrl> <QVariant> <QVariantMap>)

# quillbrook_test_headers(<target> HEADER...): these, and those named.
function(quillbrook_test_headers target)
    # It holds nothing for most, and takes longer to compile with them.
    set_source_files_properties(${CMAKE_CURRENT_BINARY_DIR}/${target}_autogen/mocs_compilation.cpp
        PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
    get_property(owner DIRECTORY PROPERTY QUILLBROOK_HEADERS_OWNER)
    if(owner)
        target_precompile_headers(${target} REUSE_FROM ${owner})
    else()
        target_precompile_headers(${target} PRIVATE ${QUILLBROOK_TEST_HEADERS} ${ARGN})
        set_property(DIRECTORY PROPERTY QUILLBROOK_HEADERS_OWNER ${target})
    endif()
endfunction()
