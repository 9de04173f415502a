// What is promised of all shared controls alike, tried on the gallery, which holds each in every state.

#include "Support/QuickItems.h"
#include "Support/Suite.h"

#include <QAccessible>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QSignalSpy>
#include <QTest>
#include <QtQml/QQmlExtensionPlugin>

#include <memory>

Q_IMPORT_QML_PLUGIN(QuillbrookPlugin)

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

QStringList *warnings = nullptr;

void keepWarnings(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type == QtWarningMsg && warnings)
        warnings->append(message);
}

bool isPressable(QQuickItem *item)
{
    return QList{ QAccessible::Button, QAccessible::CheckBox, QAccessible::ListItem }.contains(
        accessibleRole(item));
}

} // namespace

class TestGallery : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_warnings.clear();
        warnings = &m_warnings;
        qInstallMessageHandler(keepWarnings);
        QAccessible::setActive(true);
        m_view = std::make_unique<QQuickView>();
        m_view->engine()->addImportPath(u"qrc:/qt/qml"_s);
        m_view->setSource(QUrl::fromLocalFile(QStringLiteral(GALLERY_FILE)));
        m_view->show();
        m_view->requestActivate();
        QVERIFY(QTest::qWaitForWindowActive(m_view.get()));
    }

    void cleanup()
    {
        m_view.reset();
        qInstallMessageHandler(nullptr);
        warnings = nullptr;
    }

    void loadsWithoutAWarning()
    {
        QCOMPARE(m_view->status(), QQuickView::Ready);
        QTest::qWait(50);
        QCOMPARE(m_warnings, QStringList());
    }

    void everythingThatCanBePressedHasAName()
    {
        int count = 0;
        for (auto *item : items()) {
            if (!isPressable(item))
                continue;
            ++count;
            QVERIFY2(!accessibleName(item).isEmpty(), item->metaObject()->className());
        }
        QVERIFY(count > 30);
    }

    void accessiblePressActs()
    {
        for (const auto &name : { "Plain", "Prominent", "Destructive", "Link", "Close", "A row" }) {
            auto *item = named(QString::fromLatin1(name));
            QSignalSpy clicks(item, SIGNAL(clicked()));
            pressAccessibly(item);
            QCOMPARE(clicks.count(), 1);
        }
    }

    void accessiblePressOfADisabledControlDoesNothing()
    {
        auto *item = named(u"Plain disabled"_s);
        QSignalSpy clicks(item, SIGNAL(clicked()));
        pressAccessibly(item);
        QCOMPARE(clicks.count(), 0);

        auto *box = named(u"Off, disabled"_s);
        QAccessible::queryAccessibleInterface(box)->actionInterface()->doAction(
            QAccessibleActionInterface::toggleAction());
        QVERIFY(!box->property("checked").toBool());
    }

    void accessibleToggleTicks()
    {
        for (const auto &name : { "Off", "Switch off" }) {
            auto *item = named(QString::fromLatin1(name));
            QSignalSpy toggles(item, SIGNAL(toggled()));
            QAccessible::queryAccessibleInterface(item)->actionInterface()->doAction(
                QAccessibleActionInterface::toggleAction());
            QVERIFY(item->property("checked").toBool());
            QCOMPARE(toggles.count(), 1);
            QVERIFY(QAccessible::queryAccessibleInterface(item)->state().checked);
        }
    }

    void tabReachesEveryEnabledControlInReadingOrder()
    {
        QList<QQuickItem *> expected;
        for (auto *item : items())
            if ((isPressable(item) || accessibleRole(item) == QAccessible::EditableText) && item->isEnabled())
                expected.append(item);

        QList<QQuickItem *> reached;
        for (qsizetype i = 0; i < expected.size(); ++i) {
            QTest::keyClick(m_view.get(), Qt::Key_Tab);
            reached.append(m_view->activeFocusItem());
        }
        QCOMPARE(reached, expected);
    }

    void keyboardFocusShowsTheRing()
    {
        QSet<QQuickItem *> seen;
        for (;;) {
            QTest::keyClick(m_view.get(), Qt::Key_Tab);
            auto *item = m_view->activeFocusItem();
            QVERIFY(item);
            if (seen.contains(item))
                break;
            seen.insert(item);
            int rings = 0;
            for (auto *part : visibleItemsBelow(*item))
                rings += part->objectName() == u"focusRing"_s ? 1 : 0;
            QVERIFY2(rings == 1, qPrintable(accessibleName(item)));
        }
        QVERIFY(seen.size() > 20);
    }

    void clickLeavesTheRingAway()
    {
        auto *item = named(u"Plain"_s);
        QSignalSpy clicks(item, SIGNAL(clicked()));
        QTest::mouseClick(m_view.get(), Qt::LeftButton, {}, centreOf(*item));
        QCOMPARE(clicks.count(), 1);
        for (auto *part : visibleItemsBelow(*item))
            QVERIFY(part->objectName() != u"focusRing"_s);
    }

    void keysPress_data()
    {
        QTest::addColumn<int>("key");
        QTest::newRow("space") << int(Qt::Key_Space);
        QTest::newRow("return") << int(Qt::Key_Return);
        QTest::newRow("enter") << int(Qt::Key_Enter);
    }

    void keysPress()
    {
        QFETCH(int, key);
        for (const auto &name :
            { "Plain", "Prominent", "Destructive", "Link", "Close", "A row", "Off", "Switch off" }) {
            auto *item = named(QString::fromLatin1(name));
            const bool isChoice = accessibleRole(item) == QAccessible::CheckBox;
            QSignalSpy acts(item, isChoice ? SIGNAL(toggled()) : SIGNAL(clicked()));
            item->forceActiveFocus(Qt::TabFocusReason);
            QTest::keyClick(m_view.get(), Qt::Key(key));
            QVERIFY2(acts.count() == 1, name);
        }
    }

    void dialogGivesTheKeyboardToCancelAndEscapeCloses()
    {
        auto *question = m_view->rootObject()->findChild<QObject *>(u"question"_s);
        QVERIFY(question);
        QSignalSpy closed(question, SIGNAL(closed()));
        QMetaObject::invokeMethod(question, "open");
        QTRY_VERIFY(question->property("opened").toBool());
        QTRY_VERIFY(m_view->activeFocusItem());
        QTRY_COMPARE(m_view->activeFocusItem()->objectName(), u"cancelButton"_s);

        QTest::keyClick(m_view.get(), Qt::Key_Escape);
        QTRY_COMPARE(closed.count(), 1);

        QMetaObject::invokeMethod(question, "open");
        QTRY_COMPARE(m_view->activeFocusItem()->objectName(), u"cancelButton"_s);
        QTRY_VERIFY(question->property("opened").toBool());
        QTest::keyClick(m_view.get(), Qt::Key_Return);
        QTRY_COMPARE(closed.count(), 2);
    }

private:
    [[nodiscard]] QList<QQuickItem *> items() const { return visibleItemsBelow(*m_view->rootObject()); }

    [[nodiscard]] QQuickItem *named(const QString &name) const
    {
        for (auto *item : items())
            if (isPressable(item) && accessibleName(item) == name)
                return item;
        qFatal("No control is called %s", qPrintable(name));
    }

    QStringList m_warnings;
    std::unique_ptr<QQuickView> m_view;
};

QUILLBROOK_SUITE(TestGallery, QGuiApplication)
#include "tst_Gallery.moc"
