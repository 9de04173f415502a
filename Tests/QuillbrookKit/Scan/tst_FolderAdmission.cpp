#include "Scan/FolderAdmission.h"
#include "Support/Suite.h"

#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestFolderAdmission : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textsAreFoundByCanonicalEquivalence_data()
    {
        QTest::addColumn<QString>("listed");
        QTest::addColumn<QByteArray>("raw");
        QTest::addColumn<bool>("found");
        QTest::newRow("ascii") << u"Library"_s << QByteArray("Library") << true;
        QTest::newRow("other case") << u"Library"_s << QByteArray("library") << false;
        QTest::newRow("longer") << u"Library"_s << QByteArray("Library2") << false;
        QTest::newRow("composed, decomposed on disk") << u"Gr\u00FCn"_s << QByteArray("Gru\xCC\x88n") << true;
        QTest::newRow("decomposed, composed on disk") << u"Gru\u0308n"_s << QByteArray("Gr\xC3\xBCn") << true;
        QTest::newRow("accent missing on disk") << u"Gr\u00FCn"_s << QByteArray("Grun") << false;
        QTest::newRow("kelvin sign listed") << u"\u212A"_s << QByteArray("K") << true;
        QTest::newRow("kelvin sign on disk") << u"K"_s << QByteArray("\xE2\x84\xAA") << true;
        QTest::newRow("broken name by its repaired text") << u"caf\uFFFD"_s << QByteArray("caf\xE9") << true;
        QTest::newRow("byte order mark on disk")
            << u"Library"_s << QByteArray("\xEF\xBB\xBFLibrary") << false;
        QTest::newRow("byte order mark in both")
            << u"\uFEFFLibrary"_s << QByteArray("\xEF\xBB\xBFLibrary") << true;
        QTest::newRow("broken name by another encoding") << u"caf\u00E9"_s << QByteArray("caf\xE9") << false;
    }

    void textsAreFoundByCanonicalEquivalence()
    {
        QFETCH(QString, listed);
        QFETCH(QByteArray, raw);
        QFETCH(bool, found);
        QCOMPARE(CanonicalTextSet({ listed }).contains(raw.toStdString()), found);
        const FolderAdmission admission({ u"/r/"_s + listed }, { { u"/r/"_s + listed, {} } });
        QCOMPARE(admission.isExcluded("/r/" + raw.toStdString()), found);
        QCOMPARE(admission.namesAllowedIn("/r/" + raw.toStdString()) != nullptr, found);
    }

    void exclusionsHoldForThatPathAlone_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("excluded");
        QTest::newRow("the path") << u"/net"_s << true;
        QTest::newRow("below it") << u"/net/host"_s << false;
        QTest::newRow("begins alike") << u"/network"_s << false;
        QTest::newRow("trailing slash") << u"/net/"_s << false;
    }

    void exclusionsHoldForThatPathAlone()
    {
        QFETCH(QString, path);
        QFETCH(bool, excluded);
        const FolderAdmission admission({ u"/net"_s, u"/dev"_s }, {});
        QCOMPARE(admission.isExcluded(path.toStdString()), excluded);
    }

    void parentThatIsNoKeyIsUnrestricted()
    {
        const FolderAdmission admission({}, { { u"/home/someone"_s, { u"Library"_s, u"go"_s } } });
        QVERIFY(admission.namesAllowedIn("/home/someone/Library") == nullptr);
        QVERIFY(admission.namesAllowedIn("/home") == nullptr);
        const auto *names = admission.namesAllowedIn("/home/someone");
        QVERIFY(names != nullptr);
        QVERIFY(names->contains("go"));
        QVERIFY(!names->contains("Documents"));
    }

    void emptySetOfNamesAdmitsNone()
    {
        const FolderAdmission admission({}, { { u"/home/someone"_s, {} } });
        const auto *names = admission.namesAllowedIn("/home/someone");
        QVERIFY(names != nullptr);
        QVERIFY(!names->contains("Library"));
    }
};

QUILLBROOK_SUITE(TestFolderAdmission, QCoreApplication)
#include "tst_FolderAdmission.moc"
