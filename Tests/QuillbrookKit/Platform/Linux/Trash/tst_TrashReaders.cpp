// Other programs' view of the Trash: what they list and put back is what was moved, and what they moved can
// be put back and erased here. Asks GLib's gio and trash-cli; where one is missing, its tests are skipped.

#include "Support/RootGivenUp.h"
#include "Support/Suite.h"
#include "Support/TrashFixture.h"

#include <QCoreApplication>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

constexpr int longestRun = 30'000;

// Text, so that every tool can print it; an odd one is looked at by its bytes below.
const std::vector<std::string> textNames{ "plain.txt", "with blank", "per%cent %41", "-rf", "line\nfeed",
    "quote\"'\\", "a;b&c#d?e", ".hidden" };

struct ReadersFixture : TrashFixture
{
    ReadersFixture()
    {
        for (const auto *folder : { "run", ".cache", "things" })
            home.folder(folder);
        home.permissions("run", 0700);
    }

    [[nodiscard]] QByteArray run(const QStringList &command, const QByteArray &input = {}) const
    {
        QProcess process;
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"HOME"_s, home.text());
        environment.insert(u"XDG_DATA_HOME"_s, home.text(".local/share"));
        environment.insert(u"XDG_CACHE_HOME"_s, home.text(".cache"));
        environment.insert(u"XDG_RUNTIME_DIR"_s, home.text("run"));
        environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
        environment.remove(u"DBUS_SESSION_BUS_ADDRESS"_s);
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(home.text());
        process.start(command.first(), command.sliced(1));
        process.write(input);
        process.closeWriteChannel();
        if (!process.waitForFinished(longestRun)) {
            process.kill();
            process.waitForFinished(longestRun);
            return "took too long";
        }
        return process.exitCode() == 0 ? process.readAllStandardOutput()
                                       : "failed: " + process.readAllStandardError();
    }

    void moveAll()
    {
        for (const auto &name : textNames) {
            home.fileWith("things/" + name, "content of " + name);
            const auto moved = trash.move(home.path("things/" + name));
            QVERIFY2(moved, name.c_str());
        }
    }
};

bool isMissing(std::initializer_list<const char *> programs)
{
    return std::ranges::any_of(programs, [](const auto *program) {
        return QStandardPaths::findExecutable(QString::fromLatin1(program)).isEmpty();
    });
}

QStringList gio(const QStringList &arguments)
{
    return QStringList{ u"dbus-run-session"_s, u"--"_s, u"gio"_s, u"trash"_s } + arguments;
}

// As gio prints the path something came from.
QByteArray escaped(const std::string &path)
{
    QByteArray result;
    for (const char byte : path) {
        const auto value = static_cast<unsigned char>(byte);
        if (byte == '\\')
            result += "\\x5c";
        else if (value < 0x20 || value >= 0x7f)
            result += "\\x" + QByteArray::number(value, 16).rightJustified(2, '0');
        else
            result += byte;
    }
    return result;
}

QByteArray addressOf(const std::string &name)
{
    return "trash:///" + QByteArray::fromStdString(name).toPercentEncoding("!$&'()*+,:;=@");
}

} // namespace

class TestTrashReaders : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void gioListsWhatWasMoved()
    {
        if (isMissing({ "gio", "dbus-run-session" }))
            QSKIP("gio is not installed");
        ReadersFixture f;
        f.moveAll();
        const std::string odd = "odd\xff";
        f.home.file("things/" + odd);
        QVERIFY(f.trash.move(f.home.path("things/" + odd)));
        auto listed = f.run(gio({ u"--list"_s })).split('\n');
        listed.removeAll({});
        QList<QByteArray> expected{ "trash:///odd%FF\t" + escaped(f.home.path("things/" + odd)) };
        for (const auto &name : textNames)
            expected += addressOf(name) + '\t' + escaped(f.home.path("things/" + name));
        std::ranges::sort(listed);
        std::ranges::sort(expected);
        QCOMPARE(listed, expected);
    }

    void gioPutsBackWhatWasMoved()
    {
        if (isMissing({ "gio", "dbus-run-session" }))
            QSKIP("gio is not installed");
        ReadersFixture f;
        f.moveAll();
        for (const auto *name : { "plain.txt", "with blank", "per%cent %41" }) {
            QCOMPARE(f.run(gio({ u"--restore"_s, QString::fromLatin1(addressOf(name)) })), QByteArray());
            QCOMPARE(
                f.content(f.home.path(std::string("things/") + name)), std::string("content of ") + name);
            QVERIFY(!f.isThere(f.note(name)));
        }
    }

    void trashCliListsWhatWasMoved()
    {
        if (isMissing({ "trash-list" }))
            QSKIP("trash-cli is not installed");
        ReadersFixture f;
        f.moveAll();
        const auto listed = f.run({ u"trash-list"_s });
        qsizetype length = 0;
        for (const auto &name : textNames) {
            const auto line = "2024-06-15 12:00:00 " + f.home.path("things/" + name) + '\n';
            QVERIFY2(listed.contains(line.c_str()), name.c_str());
            length += static_cast<qsizetype>(line.size());
        }
        QCOMPARE(listed.size(), length);
    }

    void trashCliPutsBackWhatWasMoved()
    {
        if (isMissing({ "trash-restore" }))
            QSKIP("trash-cli is not installed");
        ReadersFixture f;
        f.home.file("alone/per%cent \u00e4\nb", 5);
        QVERIFY(f.trash.move(f.home.path("alone/per%cent \u00e4\nb")));
        std::ignore = f.run({ u"trash-restore"_s, f.home.text("alone") }, "0\n");
        QCOMPARE(f.content(f.home.path("alone/per%cent \u00e4\nb")), std::string("qqqqq"));
        QVERIFY(f.names(f.places.homeTrash + "/info").empty());
        QVERIFY(f.names(f.places.homeTrash + "/files").empty());
    }

    void notesTellTheSameOrigin_data()
    {
        QTest::addColumn<QByteArray>("name");
        for (const auto &name : textNames)
            QTest::newRow(name.c_str()) << QByteArray::fromStdString(name);
        QTest::newRow("no text") << QByteArray("odd\xff");
        QTest::newRow("text") << QByteArray("\u00e4\u20ac");
    }

    // But for the date, and for the few characters that GLib leaves as they are and the rules for notes do
    // not ask to be written otherwise.
    void notesTellTheSameOrigin()
    {
        if (isMissing({ "gio" }))
            QSKIP("gio is not installed");
        QFETCH(QByteArray, name);
        const auto raw = name.toStdString();
        ReadersFixture f;
        f.home.file("things/" + raw);
        const auto output = f.run({ u"find"_s, u"things"_s, u"-mindepth"_s, u"1"_s, u"-exec"_s, u"gio"_s,
            u"trash"_s, u"--"_s, u"{}"_s, u"+"_s });
        if (output.contains("not supported"))
            QSKIP("gio keeps no trash on this file system");
        QCOMPARE(output, QByteArray());
        const auto decoded = [&](const std::string &note) {
            const auto text = QByteArray::fromStdString(f.content(note)).split('\n').value(1);
            return QByteArray::fromPercentEncoding(text);
        };
        const auto theirs = decoded(f.note(raw));
        QCOMPARE(theirs, QByteArray::fromStdString("Path=" + f.home.path("things/" + raw)));
        f.home.file("things/" + raw);
        const auto moved = f.trash.move(f.home.path("things/" + raw));
        QVERIFY(moved);
        const auto ours = f.places.homeTrash + "/info/" + moved->substr(moved->rfind('/') + 1) + ".trashinfo";
        QCOMPARE(decoded(ours), theirs);
    }

    void whatOthersMovedIsPutBackAndErased_data()
    {
        QTest::addColumn<QStringList>("command");
        QTest::newRow("gio") << QStringList{ u"gio"_s, u"trash"_s };
        QTest::newRow("trash-cli") << QStringList{ u"trash-put"_s };
    }

    void whatOthersMovedIsPutBackAndErased()
    {
        QFETCH(QStringList, command);
        if (isMissing({ qPrintable(command.first()) }))
            QSKIP("not installed");
        ReadersFixture f;
        f.home.fileWith("things/per%cent \u00e4\nb", "content");
        f.home.fileWith("things/folder/a", "a");
        f.home.link("things/link", "nowhere");
        for (const auto *name : { "per%cent \u00e4\nb", "folder", "link" }) {
            const auto output = f.run(command + QStringList{ f.home.text(std::string("things/") + name) });
            if (output.contains("not supported"))
                QSKIP("no trash on this file system");
        }
        QVERIFY(f.names(f.home.path("things")).empty());
        const auto items = f.trash.items(f.places.homeTrash);
        QCOMPARE(items.size(), size_t(3));
        for (const auto &item : items) {
            QVERIFY(f.isThere(item.note));
            const auto name = item.path.substr(item.path.rfind('/') + 1);
            QVERIFY(f.trash.restore(item.path, f.home.path("things/" + name)));
        }
        QCOMPARE(f.content(f.home.path("things/per%cent \u00e4\nb")), std::string("content"));
        QCOMPARE(f.content(f.home.path("things/folder/a")), std::string("a"));
        QVERIFY(f.isThere(f.home.path("things/link")));
        QVERIFY(f.names(f.places.homeTrash + "/info").empty());

        std::ignore = f.run(command + QStringList{ f.home.text("things/folder") });
        for (const auto &item : f.trash.items(f.places.homeTrash))
            QVERIFY(f.trash.erase(item.path));
        QVERIFY(f.names(f.places.homeTrash + "/files").empty());
        QVERIFY(f.names(f.places.homeTrash + "/info").empty());
        QVERIFY(!f.isThere(f.home.path("things/folder")));
    }

    void trashCliEmptiesWhatWasMoved()
    {
        if (isMissing({ "trash-empty" }))
            QSKIP("trash-cli is not installed");
        ReadersFixture f;
        f.moveAll();
        std::ignore = f.run({ u"trash-empty"_s }, "y\n");
        QVERIFY(f.trash.items(f.places.homeTrash).empty());
        QVERIFY(f.names(f.places.homeTrash + "/info").empty());
    }
};

QUILLBROOK_SUITE(TestTrashReaders, QCoreApplication, giveUpRoot)
#include "tst_TrashReaders.moc"
