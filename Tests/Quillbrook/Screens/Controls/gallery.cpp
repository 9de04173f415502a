// Shows every shared control in every state, for looking at them: quillbrook-gallery

#include <QGuiApplication>
#include <QQmlEngine>
#include <QQuickView>
#include <QtQml/QQmlExtensionPlugin>

using namespace Qt::StringLiterals;

Q_IMPORT_QML_PLUGIN(QuillbrookPlugin)

int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);
    QQuickView view;
    view.engine()->addImportPath(u"qrc:/qt/qml"_s);
    view.setResizeMode(QQuickView::SizeRootObjectToView);
    view.setTitle(u"Gallery"_s);
    view.setSource(QUrl::fromLocalFile(QStringLiteral(GALLERY_FILE)));
    view.show();
    return view.status() == QQuickView::Ready ? QGuiApplication::exec() : 1;
}
