// What is promised of all shared controls alike, tried on the gallery, which holds each in every state.

#include "Support/QuickItems.h"
#include "Support/Suite.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QSignalSpy>
#include <QTest>
#include <QTranslator>
#include <QtQml/QQmlExtensionPlugin>

#include <algorithm>
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

// A row that only groups its controls is a list item too.
bool isPressable(QQuickItem *item)
{
    const auto role = accessibleRole(item);
    return role == QAccessible::Button || role == QAccessible::CheckBox || role == QAccessible::RadioButton
        || role == QAccessible::PageTab
        || (role == QAccessible::ListItem && item->inherits("QQuickAbstractButton"));
}

// Of several words to pick one from only that which holds is a stop of the Tab key.
bool takesTab(QQuickItem *item)
{
    const auto role = accessibleRole(item);
    if (role == QAccessible::RadioButton || role == QAccessible::PageTab)
        return item->isEnabled() && QAccessible::queryAccessibleInterface(item)->state().selected;
    return item->isEnabled() && item->activeFocusOnTab()
        && (isPressable(item) || role == QAccessible::EditableText || role == QAccessible::Slider);
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
        load();
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

    void longerTextsAreWhole()
    {
        QTranslator language;
        QVERIFY(language.load(QStringLiteral(MADE_UP_LANGUAGE)));
        QCoreApplication::installTranslator(&language);
        load();
        int count = 0;
        for (auto *item : items()) {
            const auto text = item->property("text").toString();
            if (!item->property("truncated").isValid() || !text.startsWith(u'['))
                continue;
            ++count;
            QVERIFY2(!item->property("truncated").toBool(), qPrintable(text));
        }
        QVERIFY(count > 30);
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
            if (takesTab(item))
                expected.append(item);
        QVERIFY(expected.size() > 40);

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

    void oneOfSeveralIsPicked_data()
    {
        QTest::addColumn<QString>("which");
        QTest::addColumn<QAccessible::Role>("role");
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("second");
        QTest::newRow("segments") << u"picker"_s << QAccessible::RadioButton << u"Every time"_s
                                  << u"Just once"_s;
        QTest::newRow("tabs") << u"tabs"_s << QAccessible::PageTab << u"Apps on this Mac"_s << u"Leftovers"_s;
    }

    void oneOfSeveralIsPicked()
    {
        QFETCH(QString, which);
        QFETCH(QAccessible::Role, role);
        QFETCH(QString, first);
        QFETCH(QString, second);
        const auto *picker = part(which);
        const auto current = [picker] { return picker->property("current").toInt(); };
        auto *one = findAccessible(*picker, role, first);
        auto *other = findAccessible(*picker, role, second);
        QVERIFY(one && other);
        QVERIFY(!accessibleName(part(which)).isEmpty());
        const auto holds
            = [](QQuickItem *item) { return QAccessible::queryAccessibleInterface(item)->state(); };

        pressAccessibly(other);
        QCOMPARE(current(), 1);
        QVERIFY(holds(other).selected && !holds(one).selected);
        QCOMPARE(bool(holds(other).checked), role == QAccessible::RadioButton);
        QTest::mouseClick(m_view.get(), Qt::LeftButton, {}, centreOf(*one));
        QCOMPARE(current(), 0);

        one->forceActiveFocus(Qt::TabFocusReason);
        press(Qt::Key_Left);
        QCOMPARE(current(), 0);
        press(Qt::Key_Right);
        QCOMPARE(current(), 1);
        QVERIFY(other->hasActiveFocus());
        press(Qt::Key_Home);
        QCOMPARE(current(), 0);
        QVERIFY(one->hasActiveFocus());
        press(Qt::Key_End);
        QCOMPARE(current(), picker->property("options").toStringList().size() - 1);

        auto *disabled = findAccessible(*m_view->rootObject(), QAccessible::RadioButton, u"Off"_s);
        pressAccessibly(disabled);
        QVERIFY(!holds(disabled).checked);
    }

    void sliderGoesByKeysAndAccessibly()
    {
        auto *slider = part(u"slider"_s);
        const auto value = [slider] { return slider->property("value").toInt(); };
        auto *face = QAccessible::queryAccessibleInterface(slider);
        QCOMPARE(face->role(), QAccessible::Slider);
        QCOMPARE(face->valueInterface()->currentValue().toInt(), 96);
        QCOMPARE(face->valueInterface()->minimumValue().toInt(), 70);
        QCOMPARE(face->valueInterface()->maximumValue().toInt(), 99);
        QSignalSpy moves(slider, SIGNAL(moved()));
        face->actionInterface()->doAction(QAccessibleActionInterface::increaseAction());
        QCOMPARE(value(), 97);
        QCOMPARE(face->text(QAccessible::Name), u"Clear it when the disk reaches 97%"_s);
        face->actionInterface()->doAction(QAccessibleActionInterface::decreaseAction());
        QCOMPARE(moves.count(), 2);

        slider->forceActiveFocus(Qt::TabFocusReason);
        const QList<std::pair<Qt::Key, int>> steps{ { Qt::Key_Right, 97 }, { Qt::Key_Up, 98 },
            { Qt::Key_PageUp, 99 }, { Qt::Key_Up, 99 }, { Qt::Key_Left, 98 }, { Qt::Key_Down, 97 },
            { Qt::Key_PageDown, 92 }, { Qt::Key_Home, 70 }, { Qt::Key_Left, 70 }, { Qt::Key_End, 99 } };
        for (const auto &[key, expected] : steps) {
            press(key);
            QCOMPARE(value(), expected);
        }
        QTest::mouseClick(m_view.get(), Qt::LeftButton, {},
            slider->mapToScene({ slider->width() / 2, slider->height() - 14 }).toPoint());
        QVERIFY(value() == 84 || value() == 85);
    }

    // What comes of a press is for others to say; here it comes true.
    void switchRowShowsWhatIsTrue()
    {
        auto *row = part(u"switchRow"_s);
        auto *toggle = named(u"Keep build tools in check"_s);
        QCOMPARE(accessibleName(row), u"Keep build tools in check"_s);
        pressAccessibly(toggle);
        QVERIFY(row->property("on").toBool());
        QVERIFY(QAccessible::queryAccessibleInterface(toggle)->state().checked);
        row->setProperty("on", false);
        QVERIFY(!QAccessible::queryAccessibleInterface(toggle)->state().checked);
    }

    void progressRowIsToldAndStopped()
    {
        auto *row = part(u"runningRow"_s);
        auto *bar = findAccessible(*row, QAccessible::ProgressBar, u"Downloaded AI models"_s);
        QVERIFY(bar);
        QCOMPARE(bar->property("value").toDouble(), 0.337);
        QSignalSpy stops(row, SIGNAL(stopped()));
        pressAccessibly(named(u"Stop"_s));
        QCOMPARE(stops.count(), 1);
        const auto running = row->implicitHeight();
        row->setProperty("running", false);
        QVERIFY(!bar->isVisible());
        QTRY_VERIFY(row->implicitHeight() < running);
        QVERIFY(!findAccessible(*row, QAccessible::Button, u"Stop"_s));
    }

    void chipsGoOnInTheNextLine()
    {
        auto *chips = part(u"chips"_s);
        QSignalSpy choices(chips, SIGNAL(chosen(int)));
        pressAccessibly(named(u"What changed?"_s));
        QCOMPARE(choices, QList<QVariantList>{ { 3 } });
        const auto height = chips->height();
        chips->setProperty("texts", QStringList(12, u"What is using the most space?"_s));
        QTRY_VERIFY(chips->height() > height);
        for (const auto *chip : visibleItemsBelow(*chips))
            QVERIFY(chip->mapRectToItem(chips, chip->boundingRect()).right() <= chips->width() + 4);
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

    // Letters are wider in one font than in the next, and words longer in one language than in another.
    void dialogHasEqualMarginsHoweverWideItsButtons_data()
    {
        QTest::addColumn<int>("times");
        QTest::newRow("usual") << 1;
        QTest::newRow("wider than the dialog usually is") << 2;
    }

    void dialogHasEqualMarginsHoweverWideItsButtons()
    {
        QFETCH(int, times);
        auto *question = m_view->rootObject()->findChild<QObject *>(u"question"_s);
        QMetaObject::invokeMethod(question, "open");
        QTRY_VERIFY(question->property("opened").toBool());
        const auto *ground = question->property("contentItem").value<QQuickItem *>();
        const auto usual = ground->width();
        for (auto *button : visibleItemsBelow(*ground))
            if (isPressable(button))
                button->setProperty("text", button->property("text").toString().repeated(times));
        const auto margins = [ground] {
            qreal left = ground->width();
            qreal right = 0;
            for (auto *part : visibleItemsBelow(*ground)) {
                if (accessibleName(part).isEmpty())
                    continue;
                const auto place = part->mapRectToItem(ground, part->boundingRect());
                left = std::min(left, place.left());
                right = std::max(right, place.right());
            }
            return QList<int>{ qRound(left), qRound(ground->width() - right) };
        };
        // The layout settles within some frames.
        QTRY_COMPARE(ground->width() > usual, times > 1);
        QTRY_COMPARE(margins(), QList<int>({ 20, 20 }));
        for (auto *part : visibleItemsBelow(*ground))
            QVERIFY2(!part->property("truncated").toBool(), qPrintable(accessibleName(part)));
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

    [[nodiscard]] QQuickItem *part(const QString &objectName) const
    {
        return m_view->rootObject()->findChild<QQuickItem *>(objectName);
    }
    void press(Qt::Key key) { QTest::keyClick(m_view.get(), key); }

    void load()
    {
        m_view = std::make_unique<QQuickView>();
        m_view->engine()->addImportPath(u"qrc:/qt/qml"_s);
        m_view->setSource(QUrl::fromLocalFile(QStringLiteral(GALLERY_FILE)));
        m_view->show();
        m_view->requestActivate();
        QVERIFY(QTest::qWaitForWindowActive(m_view.get()));
    }

    QStringList m_warnings;
    std::unique_ptr<QQuickView> m_view;
};

QUILLBROOK_SUITE(TestGallery, QGuiApplication)
#include "tst_Gallery.moc"
