// Shows every shared control in every state, for looking at them: quillbrook-gallery

#include <QGuiApplication>
#include <QQmlEngine>
#include <QQuickView>
#include <QtQml/QQmlExtensionPlugin>

Q_IMPORT_QML_PLUGIN(QuillbrookPlugin)

int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);
    QQuickView view;
    view.engine()->addImportPath(QStringLiteral("qrc:/qt/qml"));
    view.setResizeMode(QQuickView::SizeRootObjectToView);
    view.setTitle(QStringLiteral("Gallery"));
    view.setSource(QUrl::fromLocalFile(QStringLiteral(GALLERY_FILE)));
    view.show();
    return view.status() == QQuickView::Ready ? QGuiApplication::exec() : 1;
}
