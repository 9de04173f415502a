// The guards that hold on every platform: each row beside what it only nearly meets, and in their order.

#include "Removal/PathGuards.h"
#include "Removal/PathRemoval.h"
#include "Support/Suite.h"

#include <QTest>

#include <set>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using PathRemoval::refusal;

namespace {

const std::string home = "/Users/anna";

const auto noPath = u"That is not a path Quillbrook can act on."_s;
const auto drive = u"That is an entire drive, not something on it."_s;
const auto cloud
    = u"That is in iCloud Drive. Removing it here removes it from every device on your account, so it is not Quillbrook's to take."_s;
const auto itself = u"That is Quillbrook itself."_s;

QString system(const QString &path, const QString &root)
{
    return path + u" belongs to macOS. Quillbrook does not remove anything inside "_s + root + u'.';
}

QString skeleton(const QString &name)
{
    return name
        + u" is one of your Mac's own folders. Quillbrook can clear things inside it, but will not remove the folder itself."_s;
}

QString package(const QString &name)
{
    return name
        + u" looks like a folder but is one single file. It belongs to the app that made it, so Quillbrook leaves it alone."_s;
}

QString inside(const QString &name)
{
    return u"That is inside "_s + name
        + u", which looks like a folder but is one single file. Taking a piece out of it breaks the whole thing."_s;
}

} // namespace

class TestPathGuards : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refuses_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<QString>("sentence");
        const auto row = [](const char *path, const QString &sentence) {
            QTest::newRow(path) << QByteArray(path) << sentence;
        };

        row("", noPath);
        row("relative/path", noPath);
        row(".", noPath);
        row("../etc", noPath);
        row("~anna", noPath);
        row(" /tmp/a", noPath);

        row("/", u"That is the whole disk."_s);
        row("//", u"That is the whole disk."_s);
        row("/..", u"That is the whole disk."_s);
        row("/Users/../.", u"That is the whole disk."_s);

        row("/Users/anna", u"That is your home folder."_s);
        row("/Users/anna/", u"That is your home folder."_s);
        row("~", u"That is your home folder."_s);
        row("~/", u"That is your home folder."_s);
        row("/Users//./anna/Music/..", u"That is your home folder."_s);

        for (const auto &root : PathGuards::systemRoots) {
            const auto text = QString::fromStdString(std::string(root));
            for (const auto &path : { text, text + u"/inside/deep"_s })
                QTest::addRow("%s", qPrintable(path)) << path.toUtf8() << system(path, text);
        }
        row("/../etc/passwd", system(u"/etc/passwd"_s, u"/etc"_s));
        row("/Users/anna/../../usr//lib/", system(u"/usr/lib"_s, u"/usr"_s));
        row("/dev/x.band", system(u"/dev/x.band"_s, u"/dev"_s));

        row("/Volumes/Data", drive);
        row("/Volumes/Data/", drive);
        row("/Volumes/x.band", drive);

        for (const auto &name : PathGuards::homeSkeleton) {
            const auto text = QString::fromStdString(std::string(name));
            QTest::addRow("~/%s", qPrintable(text)) << ("/Users/anna/" + text).toUtf8() << skeleton(text);
        }
        row("~/Music/", skeleton(u"Music"_s));

        row("/Users/anna/Library/Mobile Documents", cloud);
        row("/Users/anna/Library/Mobile Documents/a/b", cloud);
        row("/Users/anna/Library/Mobile Documents/x.band", cloud);

        for (const auto &extension : PathGuards::libraryBundles) {
            const auto name = u"Some Thing."_s + extension.toString();
            QTest::addRow("%s", qPrintable(name)) << ("/Users/anna/a/" + name).toUtf8() << package(name);
            QTest::addRow("inside %s", qPrintable(name))
                << ("/Users/anna/a/" + name + "/originals/1").toUtf8() << inside(name);
        }
        row("~/Documents/LIBRARY.PhotosLibrary", package(u"LIBRARY.PhotosLibrary"_s));
        row("/Volumes/Data/Stuff.BAND/x", inside(u"Stuff.BAND"_s));
        row("/a.band/b.rtfd", package(u"b.rtfd"_s));
        row("/a.band/b.rtfd/c", inside(u"a.band"_s));
        row("/a/.hidden.utm", package(u".hidden.utm"_s));
        row("/a/x.bac\u212Aupbundle", package(u"x.bacKupbundle"_s));
        row("/a/{named}.band/b", inside(u"{named}.band"_s));

        row("/Applications/Quillbrook.app", itself);
        row("/Users/anna/Desktop/Quillbrook.app/", itself);
    }

    void refuses()
    {
        QFETCH(QByteArray, path);
        QFETCH(QString, sentence);
        QCOMPARE(refusal(path.toStdString(), home).value_or(u"(let)"_s), sentence);
    }

    void lets_data()
    {
        QTest::addColumn<QByteArray>("path");
        for (const auto *path : { "/Users/anna/Library/Caches", "/Users/anna/Documents/a",
                 "/Users/anna/desktop", "/Users/anna/Desktop2", "/Users/anna/deep/Desktop", "/Users/bob",
                 "/Users/bob/Desktop", "/Users", "/Users/annabel", "/Users/anna2/Music", "/usr2", "/users/x",
                 "/varx/y", "/private/tmp/x", "/private", "/Library", "/Library/Apples", "/Volumes",
                 "/Volumes/Data/x", "/tmp/Volumes/Data", "/tmp/etc", "/Users/anna/Library/Mobile Documents 2",
                 "/Users/anna/Library/Mobile", "/Users/bob/Library/Mobile Documents/a", "/a/x.bands",
                 "/a/xband", "/a/.band", "/a/.band/b", "/a/band", "/a/x.band.txt", "/a/x.", "/a/x.band /b",
                 "/Applications/Other Quillbrook.app", "/Applications/Quillbrook.app/Contents",
                 "/Applications/quillbrook.app", "/Quillbrook.apps", "~/Library/Caches", "/Users/anna/~" })
            QTest::newRow(path) << QByteArray(path);
    }

    void lets()
    {
        QFETCH(QByteArray, path);
        QCOMPARE(refusal(path.toStdString(), home).value_or(u"(let)"_s), u"(let)"_s);
    }

    void homeIsStandardisedToo()
    {
        QCOMPARE(refusal("/Users/anna", "/Users//anna/"), u"That is your home folder."_s);
        QCOMPARE(refusal("~/Music", "/Users/./anna/"), skeleton(u"Music"_s));
        // A home that is the root of the disk makes the whole disk no one's.
        QCOMPARE(refusal("/etc/x", "/"), system(u"~/etc/x"_s, u"/etc"_s));
        QCOMPARE(refusal("/Music", "/"), skeleton(u"Music"_s));
    }

    void textOfOneSpellingIsTheOther()
    {
        QCOMPARE(refusal("/Users/jose\u0301/Music", "/Users/jos\u00e9"), skeleton(u"Music"_s));
        QCOMPARE(refusal("/Users/jos\u00e9", "/Users/jose\u0301"), u"That is your home folder."_s);
        QVERIFY(!refusal("/Users/jose/Music", "/Users/jos\u00e9"));
    }

    void namesThatAreNotTextAreJudgedToo()
    {
        QCOMPARE(refusal("/a\xff/x.band/b\xfe", home), inside(u"x.band"_s));
        QCOMPARE(refusal("/a/\xff.band", home), package(u"\ufffd.band"_s));
        QCOMPARE(refusal("/Users/an\xff/Music", "/Users/an\xff"), skeleton(u"Music"_s));
        QVERIFY(!refusal("/Users/an\xfe/Music", "/Users/an\xff"));
        QVERIFY(!refusal("/a/line\nfeed", home));
    }

    void namesAreFilledIntoTheWordingOfAnotherLanguage()
    {
        HostGuards host;
        host.wording
            = [](const QString &sentence) { return sentence.toUpper().replace(u"{NAMED}"_s, u"{named}"_s); };
        QCOMPARE(refusal("/a/x.band/b", home, &host),
            inside(u"x.band"_s).toUpper().replace(u"X.BAND"_s, u"x.band"_s));
        QCOMPARE(refusal("/", home, &host), u"THAT IS THE WHOLE DISK."_s);
    }

    void tablesAreAsTheyAre()
    {
        QCOMPARE(PathGuards::builtIn().size(), size_t(11));
        const std::set<std::string_view> names(
            PathGuards::homeSkeleton.begin(), PathGuards::homeSkeleton.end());
        QVERIFY(names
            == (std::set<std::string_view>{ "Applications", "Desktop", "Developer", "Documents", "Downloads",
                "Library", "Movies", "Music", "Pictures", "Public", "Sites" }));
        QStringList endings;
        for (const auto &ending : PathGuards::libraryBundles)
            endings += ending.toString();
        QCOMPARE(endings.join(u' '),
            u"photoslibrary photolibrary aplibrary musiclibrary tvlibrary fcpbundle logicx band sparsebundle backupbundle pvm utm vmwarevm rtfd"_s);
        QStringList roots;
        for (const auto &root : PathGuards::systemRoots)
            roots += QString::fromStdString(std::string(root));
        QCOMPARE(roots.join(u' '),
            u"/System /usr /bin /sbin /etc /var /private/var /private/etc /cores /dev /Volumes/Recovery /Library/Apple"_s);
    }
};

QUILLBROOK_SUITE(TestPathGuards, NoApplication)
#include "tst_PathGuards.moc"
