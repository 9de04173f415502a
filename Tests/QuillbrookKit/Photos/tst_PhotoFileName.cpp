#include "Photos/PhotoFileName.h"
#include "Support/Suite.h"

#include <QTest>

using namespace Quillbrook;

class TestPhotoFileName : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nameTellsWhatAFileIs_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QByteArray>("stem");
        QTest::addColumn<int>("kind");
        const auto row = [](const char *name, const char *stem, int kind) {
            QTest::newRow(name) << QByteArray(name) << QByteArray(stem) << kind;
        };
        constexpr int image = 1;
        constexpr int video = 2;
        constexpr int sidecar = 0;
        row("a.jpg", "a", image);
        row("A.JPEG", "A", image);
        row("a.b.CR2", "a.b", image);
        row("a.heic", "a", image);
        row("a.mov", "a", video);
        row("a.MP4", "a", video);
        row("a.xmp", "a", sidecar);
        row("a.CR2.xmp", "a", sidecar);
        row("a.b.xmp", "a.b", sidecar);
        row("a.THM", "a", sidecar);
        row("a.jpg.nextcloud", "a", image);
        row("odd\xff.png", "odd\xff", image);
    }

    void nameTellsWhatAFileIs()
    {
        QFETCH(QByteArray, name);
        QFETCH(QByteArray, stem);
        QFETCH(int, kind);
        const auto text = name.toStdString();
        const auto parts = PhotoFileName::of(text);
        QVERIFY(parts);
        QCOMPARE(std::string(parts->stem), stem.toStdString());
        QCOMPARE(parts->kind ? int(*parts->kind) : 0, kind);
        QCOMPARE(parts->isPlaceholder, name.endsWith("nextcloud"));
    }

    void otherFilesAreNone()
    {
        for (const char *name : { "", "jpg", ".jpg", ".hidden.jpg", "a.txt", "a.svg", "a.psd", "a.jpg.part",
                 "digikam4.db", "a.", "a.nextcloud", "Thumbs.db", "a.jpgx" })
            QVERIFY2(!PhotoFileName::of(name), name);
    }

    void foldersOfPreviewsAreLeftOut()
    {
        for (const char *name : { ".dtrash", ".thumbnails", ".a", "Thumbnails", "thumbs", "@eaDir",
                 "Catalog Previews.lrdata", "lost+found" })
            QVERIFY2(PhotoFileName::isLeftOut(name), name);
        for (const char *name : { "2019", "Thumbnails of mine", "Holiday.d", "data" })
            QVERIFY2(!PhotoFileName::isLeftOut(name), name);
    }
};

QUILLBROOK_SUITE(TestPhotoFileName, NoApplication)
#include "tst_PhotoFileName.moc"
