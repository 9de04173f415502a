// Runs the tst_*.qml suites of this folder, one for each control that has habits of its own.

#include <QQmlEngine>
#include <QtQml/QQmlExtensionPlugin>
#include <QtQuickTest>

Q_IMPORT_QML_PLUGIN(QuillbrookPlugin)

using namespace Qt::StringLiterals;

class Setup : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void qmlEngineAvailable(QQmlEngine *engine) { engine->addImportPath(u"qrc:/qt/qml"_s); }
};

QUICK_TEST_MAIN_WITH_SETUP(Controls, Setup)
#include "tst_Controls.moc"
