#include "Support/Suite.h"

#include <cstdio>
#include <utility>

using namespace Quillbrook;

Suite *Suite::s_last = nullptr;

Suite::Suite(std::string_view file, Run run, Preparation prepare)
    : m_file(file)
    , m_run(run)
    , m_prepare(prepare)
    , m_before(std::exchange(s_last, this))
{
}

int Suite::runNamed(int argc, char **argv)
{
    const std::string_view wanted = argc > 1 ? argv[1] : "";
    for (const auto *suite = s_last; suite != nullptr; suite = suite->m_before) {
        if (suite->m_file.substr(0, suite->m_file.rfind('.')) != wanted)
            continue;
        if (suite->m_prepare != nullptr)
            suite->m_prepare();
        return suite->m_run(argc - 1, argv + 1);
    }
    std::fputs("One of these is to be named:\n", stderr);
    for (const auto *suite = s_last; suite != nullptr; suite = suite->m_before)
        std::fprintf(stderr, "    %.*s\n", static_cast<int>(suite->m_file.rfind('.')), suite->m_file.data());
    return 2;
}

int main(int argc, char **argv)
{
    return Suite::runNamed(argc, argv);
}
