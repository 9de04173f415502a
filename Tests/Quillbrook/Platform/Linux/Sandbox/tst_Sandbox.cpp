#include "Platform/Linux/Sandbox/Sandbox.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

using Variables = QList<std::pair<QString, QString>>;

class TestSandbox : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void markersTell_data()
    {
        QTest::addColumn<QByteArray>("flatpakInfo");
        QTest::addColumn<Variables>("variables");
        QTest::addColumn<Sandbox::Kind>("kind");
        QTest::addColumn<QString>("application");
        const Variables strictSnap{ { u"SNAP"_s, u"/snap/quillbrook/7"_s },
            { u"SNAP_NAME"_s, u"quillbrook"_s }, { u"SNAP_USER_DATA"_s, u"/home/someone/snap/q/7"_s },
            { u"HOME"_s, u"/home/someone/snap/q/7"_s } };
        auto classicSnap = strictSnap;
        classicSnap.last().second = u"/home/someone"_s;
        const QByteArray info = "[Application]\nname=com.tarnwick.Quillbrook\n[Context]\nfilesystems=home;\n";
        QTest::newRow("nothing") << QByteArray() << Variables() << Sandbox::Kind::none << QString();
        QTest::newRow("Flatpak") << info << Variables() << Sandbox::Kind::flatpak
                                 << u"com.tarnwick.Quillbrook"_s;
        QTest::newRow("Flatpak without a name")
            << QByteArray("[Instance]\n") << Variables() << Sandbox::Kind::flatpak << QString();
        QTest::newRow("started by a program in a Flatpak, outside of it")
            << QByteArray() << Variables{ { u"FLATPAK_ID"_s, u"org.example.Terminal"_s } }
            << Sandbox::Kind::none << QString();
        QTest::newRow("strict Snap") << QByteArray() << strictSnap << Sandbox::Kind::snap << u"quillbrook"_s;
        QTest::newRow("classic Snap, or started by one")
            << QByteArray() << classicSnap << Sandbox::Kind::none << QString();
        QTest::newRow("AppImage") << QByteArray() << Variables{ { u"APPIMAGE"_s, u"/a/Quillbrook"_s } }
                                  << Sandbox::Kind::none << QString();
    }
    void markersTell()
    {
        QFETCH(QByteArray, flatpakInfo);
        QFETCH(Variables, variables);
        const TempTree root;
        if (!flatpakInfo.isEmpty())
            root.fileWith(".flatpak-info", flatpakInfo.toStdString());
        QProcessEnvironment environment;
        for (const auto &[name, value] : variables)
            environment.insert(name, value);
        const auto sandbox = Sandbox::detect(root.text(), environment);
        QTEST(sandbox.kind, "kind");
        QTEST(sandbox.application, "application");
        QCOMPARE(sandbox.isNone(), sandbox == Sandbox());
    }
};

QUILLBROOK_SUITE(TestSandbox, QCoreApplication)
#include "tst_Sandbox.moc"
