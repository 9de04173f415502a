#include "RawText.h"
#include "Support/Suite.h"

#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestRawText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bytesBecomeText_data()
    {
        QTest::addColumn<QByteArray>("raw");
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << QByteArray() << QString();
        QTest::newRow("text") << QByteArray("caf\xC3\xA9") << u"caf\u00e9"_s;
        QTest::newRow("not UTF-8") << QByteArray("caf\xE9") << u"caf\ufffd"_s;
        QTest::newRow("byte order mark") << QByteArray("\xEF\xBB\xBF.cache") << u"\ufeff.cache"_s;
        QTest::newRow("two of them") << QByteArray("\xEF\xBB\xBF\xEF\xBB\xBFx") << u"\ufeff\ufeffx"_s;
        QTest::newRow("one further on") << QByteArray("a\xEF\xBB\xBFx") << u"a\ufeffx"_s;
    }
    void bytesBecomeText()
    {
        QFETCH(QByteArray, raw);
        QTEST(repairedText(raw.toStdString()), "text");
    }

    void pathsBelowAFolderAreItsBytes_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QByteArray>("raw");
        QTest::newRow("the folder") << u"/home/jos\ufffd"_s << QByteArray("/home/jos\xE9");
        QTest::newRow("below it") << u"/home/jos\ufffd/\u00fc"_s << QByteArray("/home/jos\xE9/\xC3\xBC");
        QTest::newRow("of the same letters") << u"/home/jos\ufffd2"_s
                                             << QByteArray("/home/jos\xEF\xBF\xBD"
                                                           "2");
        QTest::newRow("elsewhere") << u"/srv/\u00fc"_s << QByteArray("/srv/\xC3\xBC");
    }
    void pathsBelowAFolderAreItsBytes()
    {
        QFETCH(QString, path);
        QTEST(QByteArray::fromStdString(rawPathBelow("/home/jos\xE9", path)), "raw");
        QCOMPARE(rawPathBelow("/", u"/etc"_s), std::string("/etc"));
    }
};

QUILLBROOK_SUITE(TestRawText, QCoreApplication)
#include "tst_RawText.moc"
