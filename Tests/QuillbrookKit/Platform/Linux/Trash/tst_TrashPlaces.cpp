#include "Platform/Linux/Trash/TrashPlaces.h"
#include "Support/FakeHomeFolder.h"
#include "Support/Suite.h"

#include <QTest>

#include <unistd.h>
#include <utility>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

using Variables = QList<std::pair<QByteArray, QByteArray>>;

const Variables none{ { "FLATPAK_ID", {} }, { "HOST_XDG_DATA_HOME", {} }, { "SNAP", {} },
    { "SNAP_USER_DATA", {} }, { "XDG_DATA_HOME", {} } };

/// Sets variables of this process, and sets them back. An empty value is none.
class Surroundings
{
public:
    explicit Surroundings(const Variables &variables)
    {
        for (const auto &[name, value] : none + variables) {
            m_before.prepend({ name, qgetenv(name.constData()) });
            set(name, value);
        }
    }
    ~Surroundings()
    {
        for (const auto &[name, value] : m_before)
            set(name, value);
    }
    Q_DISABLE_COPY_MOVE(Surroundings)

private:
    static void set(const QByteArray &name, const QByteArray &value)
    {
        value.isEmpty() ? qunsetenv(name.constData()) : qputenv(name.constData(), value);
    }

    Variables m_before;
};

} // namespace

class TestTrashPlaces : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void trashIsWhereTheUsersOtherProgramsLook_data()
    {
        QTest::addColumn<Variables>("variables");
        QTest::addColumn<QByteArray>("trash");
        const QByteArray usual = "/home/someone/.local/share/Trash";
        QTest::newRow("usual") << Variables{} << usual;
        QTest::newRow("moved") << Variables{ { "XDG_DATA_HOME", "/home/someone//.data/" } }
                               << QByteArray("/home/someone/.data/Trash");
        QTest::newRow("not UTF-8") << Variables{ { "XDG_DATA_HOME", "/d\xFF" } }
                                   << QByteArray("/d\xFF/Trash");
        QTest::newRow("no absolute path") << Variables{ { "XDG_DATA_HOME", "data" } } << usual;
        const std::pair<QByteArray, QByteArray> flatpak{ "FLATPAK_ID", "com.tarnwick.Quillbrook" };
        QTest::newRow("Flatpak") << Variables{ flatpak, { "XDG_DATA_HOME", "/home/someone/.var/app/x/data" } }
                                 << usual;
        QTest::newRow("Flatpak, moved")
            << Variables{ flatpak, { "XDG_DATA_HOME", "/home/someone/.var/app/x/data" },
                   { "HOST_XDG_DATA_HOME", "/home/someone/.data" } }
            << QByteArray("/home/someone/.data/Trash");
        const QByteArray snap = "/home/someone/snap/quillbrook/1";
        const Variables snapped{ { "SNAP", "/snap/quillbrook/1" }, { "SNAP_USER_DATA", snap } };
        QTest::newRow("strict Snap") << snapped
                + Variables{ { "HOME", snap }, { "XDG_DATA_HOME", snap + "/.local/share" } }
                                     << usual;
        QTest::newRow("classic Snap")
            << snapped + Variables{ { "HOME", "/home/someone" }, { "XDG_DATA_HOME", "/home/someone/.data" } }
            << QByteArray("/home/someone/.data/Trash");
    }

    void trashIsWhereTheUsersOtherProgramsLook()
    {
        QFETCH(Variables, variables);
        const Surroundings surroundings(variables);
        const auto places = TrashPlaces::ofThisUser(FakeHomeFolder());
        QTEST(QByteArray::fromStdString(places.homeTrash), "trash");
        QCOMPARE(places.user, ::getuid());
    }

    void volumeThatIsNotThereIsToldFromOneThatIs_data()
    {
        QTest::addColumn<std::string>("path");
        QTest::addColumn<bool>("isAway");
        QTest::newRow("of no volume") << std::string("/nowhere/stick/.Trash-7/files/a") << true;
        QTest::newRow("of no volume, shared") << std::string("/nowhere/stick/.Trash/7/files/a") << true;
        QTest::newRow("of the root") << std::string("/.Trash-7/files/a") << false;
        QTest::newRow("of the home folder") << std::string("/home/someone/Trash/files/a") << false;
        QTest::newRow("another user's") << std::string("/nowhere/stick/.Trash-77/files/a") << false;
        QTest::newRow("no trash at all") << std::string("/nowhere/stick/files/a") << false;
    }
    void volumeThatIsNotThereIsToldFromOneThatIs()
    {
        QFETCH(std::string, path);
        const TrashPlaces places{ .homeTrash = "/home/someone/Trash", .user = 7 };
        QTEST(places.isOnAbsentVolume(path), "isAway");
    }
};

QUILLBROOK_SUITE(TestTrashPlaces, NoApplication)
#include "tst_TrashPlaces.moc"
