#pragma once

// The suites of a folder share a program, and each runs in a process of its own: the first argument names it,
// as "tst_Format", and the others are for Qt Test.

#include <QCoreApplication>
#include <QTest>

#include <string_view>

namespace Quillbrook {

/// For suites that use nothing of an application object.
struct NoApplication
{
    NoApplication(int & /*argc*/, char ** /*argv*/) { }
};

class Suite
{
public:
    using Run = int (*)(int argc, char **argv);
    using Preparation = void (*)();

    /// A static object; `file` is the base name of the suite's source file.
    Suite(std::string_view file, Run run, Preparation prepare = nullptr);

    /// What main does: the exit code of the suite named, and a list of all to stderr where none has that
    /// name.
    [[nodiscard]] static int runNamed(int argc, char **argv);

    template <typename Test, typename Application>
    static int runOn(int argc, char **argv)
    {
        QCoreApplication::setAttribute(Qt::AA_Use96Dpi, true);
        const Application application(argc, argv);
        Test test;
        return QTest::qExec(&test, argc, argv);
    }

private:
    static Suite *s_last;

    std::string_view m_file;
    Run m_run;
    Preparation m_prepare;
    Suite *m_before;
};

} // namespace Quillbrook

/// Once a source file, after the class: the application object that the suite stands on (NoApplication,
/// QCoreApplication, QGuiApplication or QApplication), and what is to be done before that one is made, as
/// void(). Inside the class a raw literal must hold neither two slashes nor an odd number of quotes: moc
/// reads such a one wrongly, and then sees no class.
#define QUILLBROOK_SUITE(Test, Application, ...)                                                             \
    static const Quillbrook::Suite suite(                                                                    \
        __FILE_NAME__, &Quillbrook::Suite::runOn<Test, Application> __VA_OPT__(, ) __VA_ARGS__);
