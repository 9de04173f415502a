#include "Platform/Linux/Notifications/NotificationSettingsPage.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestNotificationSettingsPage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachDesktopHasItsPage_data()
    {
        QTest::addColumn<QString>("desktops");
        QTest::addColumn<QStringList>("installed");
        QTest::addColumn<QStringList>("command");
        const auto gnome = u"gnome-control-center"_s;
        const auto budgie = u"budgie-control-center"_s;
        const auto kde = u"systemsettings"_s;
        const auto page = u"notifications"_s;
        QTest::newRow("GNOME") << u"GNOME"_s << QStringList{ gnome } << QStringList{ gnome, page };
        QTest::newRow("GNOME of a distribution")
            << u"ubuntu:GNOME"_s << QStringList{ gnome } << QStringList{ gnome, page };
        QTest::newRow("Unity") << u"Unity:Unity7:ubuntu"_s << QStringList{ gnome }
                               << QStringList{ gnome, page };
        QTest::newRow("Budgie") << u"Budgie:GNOME"_s << QStringList{ gnome, budgie }
                                << QStringList{ budgie, page };
        QTest::newRow("Budgie of old")
            << u"Budgie:GNOME"_s << QStringList{ gnome } << QStringList{ gnome, page };
        QTest::newRow("KDE") << u"KDE"_s << QStringList{ kde, u"systemsettings5"_s }
                             << QStringList{ kde, u"kcm_notifications"_s };
        QTest::newRow("KDE of old") << u"KDE"_s << QStringList{ u"systemsettings5"_s }
                                    << QStringList{ u"systemsettings5"_s, u"kcm_notifications"_s };
        QTest::newRow("Xfce") << u"XFCE"_s << QStringList{ u"xfce4-notifyd-config"_s }
                              << QStringList{ u"xfce4-notifyd-config"_s };
        QTest::newRow("Cinnamon") << u"X-Cinnamon"_s << QStringList{ u"cinnamon-settings"_s }
                                  << QStringList{ u"cinnamon-settings"_s, page };
        QTest::newRow("MATE") << u"MATE"_s << QStringList{ u"mate-notification-properties"_s }
                              << QStringList{ u"mate-notification-properties"_s };
        QTest::newRow("other letter case") << u"xfce"_s << QStringList{ u"xfce4-notifyd-config"_s }
                                           << QStringList{ u"xfce4-notifyd-config"_s };
        QTest::newRow("not installed") << u"GNOME"_s << QStringList{ kde } << QStringList();
        QTest::newRow("another desktop") << u"sway"_s << QStringList{ gnome, kde } << QStringList();
        QTest::newRow("no desktop") << QString() << QStringList{ gnome, kde } << QStringList();
    }
    void eachDesktopHasItsPage()
    {
        QFETCH(QString, desktops);
        QFETCH(QStringList, installed);
        QFETCH(QStringList, command);
        const TempTree tree;
        tree.folder("bin");
        for (const auto &name : installed) {
            tree.fileWith("bin/" + name.toStdString(), "#!/bin/sh\n");
            tree.permissions("bin/" + name.toStdString(), 0755);
        }
        DesktopSession session{ .desktops = desktops.split(u':', Qt::SkipEmptyParts),
            .programFolders = { tree.text("bin") } };
        const auto page = NotificationSettingsPage::of(session);
        QCOMPARE(page.has_value(), !command.isEmpty());
        if (page)
            QCOMPARE(QStringList(page->program) + page->arguments,
                QStringList(tree.text("bin/" + command.constFirst().toStdString())) + command.mid(1));
        session.sandbox.kind = Sandbox::Kind::flatpak;
        QVERIFY(!NotificationSettingsPage::of(session).has_value());
    }
};

QUILLBROOK_SUITE(TestNotificationSettingsPage, QCoreApplication)
#include "tst_NotificationSettingsPage.moc"
