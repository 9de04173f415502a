#include "Core/Translation.h"

#include <QCoreApplication>
#include <QLocale>
#include <QStandardPaths>

#include <algorithm>

namespace Quillbrook {

using namespace Qt::StringLiterals;

Translation::Translation()
{
    const auto folders = QStandardPaths::locateAll(
        QStandardPaths::GenericDataLocation, u"quillbrook/translations"_s, QStandardPaths::LocateDirectory);
    const bool found = std::ranges::any_of(folders, [this](const QString &folder) {
        return m_translator.load(QLocale(), u"quillbrook"_s, u"_"_s, folder);
    });
    if (found)
        QCoreApplication::installTranslator(&m_translator);
}

QString translatedTableText(const QString &text)
{
    return QCoreApplication::translate("Tables", text.toUtf8().constData());
}

} // namespace Quillbrook
