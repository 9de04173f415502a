#pragma once

// The words of the screen "Apps" that hang on an application or a folder. Pure functions, in the person's
// language.

#include "Core/UninstallDriver.h"
#include "Screens/Apps/AppsRows.h"

#include <QCoreApplication>
#include <QDateTime>

namespace Quillbrook {

class AppsWords
{
    Q_DECLARE_TR_FUNCTIONS(AppsWords)

public:
    [[nodiscard]] static AppRow row(const InstalledApp &app);
    /// `home` shortens paths; `now` is what ages are counted to.
    [[nodiscard]] static LeftoverRow row(const FoundOrphan &found, const QString &home, const QDateTime &now);
    [[nodiscard]] static LeftoverRow row(
        const Leftover &leftover, const InstalledApp &app, const QString &home);
    /// What was looked for and not found, and what was found, a line each.
    [[nodiscard]] static QStringList evidence(const FoundOrphan &found, const QDateTime &now);
    /// By which name a leftover is this application's.
    [[nodiscard]] static QString evidence(const Leftover &leftover, const InstalledApp &app);

    /// What stands on the sheet of an application: under its name, and under "The app itself".
    [[nodiscard]] static QString origin(const InstalledApp &app);
    [[nodiscard]] static QString itself(const UninstallPlan &plan);
    /// In its foot, and in the question before it goes, for the leftovers that are ticked.
    [[nodiscard]] static QString total(const InstalledApp &app, const std::vector<Leftover> &ticked);
    [[nodiscard]] static QString confirmMessage(const InstalledApp &app, const std::vector<Leftover> &ticked);
    [[nodiscard]] static QString confirmAction(const InstalledApp &app);
};

} // namespace Quillbrook
