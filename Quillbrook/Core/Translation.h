#pragma once

// The program in another language. Its own texts are English; a translation of them is a file
// `quillbrook/translations/quillbrook_<language>.qm` in one of the folders where programs keep their data.

#include <QTranslator>

namespace Quillbrook {

/// Loads the translation for the languages that the user has asked the desktop for, and installs it in the
/// running application for as long as this lives. Where there is none, everything stays English. Main thread;
/// made before the first text is shown.
class Translation
{
public:
    Translation();

private:
    QTranslator m_translator;
};

/// What a person reads of a text that one of the Kit's tables holds. The tables stay English, and with them
/// what is stored of them.
[[nodiscard]] QString translatedTableText(const QString &text);

} // namespace Quillbrook
