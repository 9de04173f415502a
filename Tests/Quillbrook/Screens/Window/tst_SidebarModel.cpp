#include "Screens/Window/SidebarModel.h"
#include "Support/FakeServices.h"
#include "Support/Suite.h"
#include "Support/WindowContent.h"

#include <QAbstractItemModelTester>
#include <QKeySequence>
#include <QSignalSpy>
#include <QTest>

#include <utility>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using Role = SidebarModel::Role;

class TestSidebarModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_machine = std::make_unique<FakeServices>();
        m_model = std::make_unique<AppModel>(m_machine->services);
        m_window = std::make_unique<WindowContent>(*m_model);
        m_content = &m_window->content;
        m_rows = std::make_unique<SidebarModel>(*m_content);
        m_tester = std::make_unique<QAbstractItemModelTester>(
            m_rows.get(), QAbstractItemModelTester::FailureReportingMode::QtTest);
    }

    void cleanup()
    {
        m_tester.reset();
        m_rows.reset();
        m_window.reset();
        m_model.reset();
        m_machine.reset();
    }

    void rowsAreThePanesInOrder_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("symbol");
        QTest::addColumn<QString>("digit");
        QTest::newRow("warden") << 0 << "Free up space"
                                << "shield.lefthalf.filled"
                                << "1";
        QTest::newRow("map") << 1 << "What's using space"
                             << "square.grid.2x2"
                             << "2";
        QTest::newRow("largest") << 2 << "Biggest files"
                                 << "arrow.up.arrow.down"
                                 << "3";
        QTest::newRow("search") << 3 << "Find a file"
                                << "magnifyingglass"
                                << "4";
        QTest::newRow("photos") << 4 << "Photos by date"
                                << "photo.on.rectangle.angled"
                                << "5";
        QTest::newRow("rules") << 5 << "Automatic rules"
                               << "wand.and.stars"
                               << "6";
        QTest::newRow("offload") << 6 << "Move to another drive"
                                 << "externaldrive.badge.plus"
                                 << "7";
        QTest::newRow("apps") << 7 << "Apps"
                              << "app.badge"
                              << "8";
        QTest::newRow("stats") << 8 << "This Mac"
                               << "gauge.with.dots.needle.33percent"
                               << "9";
        QTest::newRow("advisor") << 9 << "Past answers"
                                 << "clock.arrow.circlepath"
                                 << "0";
    }

    void rowsAreThePanesInOrder()
    {
        QFETCH(int, row);
        QFETCH(QString, title);
        QFETCH(QString, symbol);
        QFETCH(QString, digit);
        QCOMPARE(m_rows->rowCount(), 10);
        QCOMPARE(value(row, Role::title).toString(), title);
        QCOMPARE(value(row, Role::symbol).toString(), symbol);
        QCOMPARE(value(row, Role::hint).toString(), u"^"_s + digit);
        const QKeySequence keys(value(row, Role::shortcut).toString());
        QCOMPARE(keys, QKeySequence(u"Ctrl+"_s + digit));
        QCOMPARE(value(row, Role::isSelected).toBool(), row == 0);
    }

    void rowIsSelectedAlone_data()
    {
        QTest::addColumn<bool>("isChosen");
        QTest::newRow("chosen") << true;
        QTest::newRow("walked to") << false;
    }

    // Only what is chosen may take the keyboard.
    void rowIsSelectedAlone()
    {
        QFETCH(bool, isChosen);
        QSignalSpy choices(m_content, &ContentState::paneChosen);
        for (int chosen = 9; chosen >= 0; --chosen) {
            if (isChosen)
                m_rows->choose(chosen);
            else
                m_rows->walkTo(chosen);
            QCOMPARE(m_content->pane(), Pane(chosen));
            QCOMPARE(m_rows->selectedRow(), chosen);
            for (int row = 0; row < m_rows->rowCount(); ++row)
                QCOMPARE(value(row, Role::isSelected).toBool(), row == chosen);
        }
        QCOMPARE(choices.count(), isChosen ? 10 : 0);
    }

    void rowThatDoesNotExistChoosesNothing()
    {
        m_rows->choose(4);
        m_rows->choose(-1);
        m_rows->choose(10);
        m_rows->walkTo(-1);
        m_rows->walkTo(10);
        QCOMPARE(m_content->pane(), Pane::photos);
    }

    void changeElsewhereIsTold()
    {
        QSignalSpy data(m_rows.get(), &QAbstractItemModel::dataChanged);
        QSignalSpy selected(m_rows.get(), &SidebarModel::selectedRowChanged);
        m_content->setPane(Pane::apps);
        QCOMPARE(selected.count(), 1);
        QCOMPARE(data.count(), 2);
        QCOMPARE(data.at(0).at(0).toModelIndex().row(), 0);
        QCOMPARE(data.at(1).at(0).toModelIndex().row(), 7);
    }

    void rolesAreNamed()
    {
        const auto names = m_rows->roleNames().values();
        for (const auto *name : { "title", "symbol", "shortcut", "hint", "isSelected" })
            QVERIFY(names.contains(name));
    }

private:
    [[nodiscard]] QVariant value(int row, Role role) const
    {
        return m_rows->data(m_rows->index(row), std::to_underlying(role));
    }

    std::unique_ptr<FakeServices> m_machine;
    std::unique_ptr<AppModel> m_model;
    std::unique_ptr<WindowContent> m_window;
    ContentState *m_content = nullptr;
    std::unique_ptr<SidebarModel> m_rows;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
};

QUILLBROOK_SUITE(TestSidebarModel, QCoreApplication)
#include "tst_SidebarModel.moc"
