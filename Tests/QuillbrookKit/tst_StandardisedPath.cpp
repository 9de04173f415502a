#include "StandardisedPath.h"
#include "Support/Suite.h"

#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestStandardisedPath : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pathHasOneSpelling_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("standardised");
        QTest::newRow("already standard") << u"/home/someone/x"_s << u"/home/someone/x"_s;
        QTest::newRow("root") << u"/"_s << u"/"_s;
        QTest::newRow("empty") << QString() << QString();
        QTest::newRow("trailing slash") << u"/a/"_s << u"/a"_s;
        QTest::newRow("trailing slashes") << u"/a//"_s << u"/a"_s;
        QTest::newRow("doubled slashes") << u"//a///b"_s << u"/a/b"_s;
        QTest::newRow("slashes only") << u"///"_s << u"/"_s;
        QTest::newRow("dots") << u"/./a/./b/."_s << u"/a/b"_s;
        QTest::newRow("up") << u"/a/../b"_s << u"/b"_s;
        QTest::newRow("up at the end") << u"/a/b/.."_s << u"/a"_s;
        QTest::newRow("up to the root") << u"/a/.."_s << u"/"_s;
        QTest::newRow("up from the root") << u"/.."_s << u"/"_s;
        QTest::newRow("up past the root") << u"/../../etc"_s << u"/etc"_s;
        QTest::newRow("names of dots") << u"/.../..a/a.."_s << u"/.../..a/a.."_s;
        QTest::newRow("home") << u"~"_s << u"/home/someone"_s;
        QTest::newRow("home with a slash") << u"~/"_s << u"/home/someone"_s;
        QTest::newRow("below home") << u"~/x/../y"_s << u"/home/someone/y"_s;
        QTest::newRow("above home") << u"~/.."_s << u"/home"_s;
        QTest::newRow("another user's home") << u"~other/x"_s << u"~other/x"_s;
        QTest::newRow("tilde inside") << u"/a/~/b"_s << u"/a/~/b"_s;
        QTest::newRow("relative") << u"a//b/./c"_s << u"a/b/c"_s;
        QTest::newRow("relative, up inside") << u"a/../b"_s << u"b"_s;
        QTest::newRow("relative, up and out") << u"../../a/.."_s << u"../.."_s;
        QTest::newRow("relative, nothing left") << u"a/.."_s << u"."_s;
        QTest::newRow("line feed and blanks") << u"/a b/\n/c "_s << u"/a b/\n/c "_s;
        QTest::newRow("decomposed letters stay") << u"/e\u0301/"_s << u"/e\u0301"_s;
    }

    void pathHasOneSpelling()
    {
        QFETCH(QString, path);
        QFETCH(QString, standardised);
        const auto home = u"/home//someone/"_s;
        QCOMPARE(standardisedPath(path, home), standardised);
        QCOMPARE(standardisedPath(standardised, home), standardised);
        QCOMPARE(standardisedPath(path.toStdString(), home.toStdString()), standardised.toStdString());
    }

    void rawBytesAreKept()
    {
        QCOMPARE(standardisedPath(std::string("/\xFF//\xC3/"), std::string("/h")), std::string("/\xFF/\xC3"));
    }

    void tildeStaysWithoutAHome() { QCOMPARE(standardisedPath(u"~/x"_s, QString()), u"~/x"_s); }
};

QUILLBROOK_SUITE(TestStandardisedPath, QCoreApplication)
#include "tst_StandardisedPath.moc"
