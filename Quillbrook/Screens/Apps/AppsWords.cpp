#include "Screens/Apps/AppsWords.h"

#include "Core/Translation.h"
#include "RawText.h"
#include "Scan/Format.h"
#include "Screens/SingleLine.h"

#include <QFile>
#include <QUrl>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

QString friendly(const std::string &path, const QString &home)
{
    return singleLine(Format::friendlyPath(repairedText(path), home));
}

bool goesForGood(const InstalledApp &app)
{
    return app.origin == AppOrigin::flatpakOfUser;
}

} // namespace

AppRow AppsWords::row(const InstalledApp &app)
{
    QStringList details{ singleLine(app.app.version.value_or(QString())) };
    if (app.sharesPackage)
        details.append(tr("size of the whole package %1").arg(singleLine(app.originName)));
    details.removeAll(QString());
    AppRow row{ .name = singleLine(app.app.name),
        .detail = details.join(u" · "_s),
        .size = app.isMeasured ? Format::bytes(app.app.bytes) : u"–"_s };
    if (app.app.fromAppStore)
        row.tag = app.originName.isEmpty() ? app.origin == AppOrigin::bundle ? tr("App Store") : tr("Flatpak")
                                           : singleLine(app.originName);
    const auto icon = QFile::decodeName(QByteArray::fromStdString(app.iconFile));
    if (!icon.isEmpty())
        row.icon = QUrl::fromLocalFile(icon).toString(QUrl::FullyEncoded);
    QStringList words{ row.name, row.detail, row.tag, app.isMeasured ? row.size : QString() };
    words.removeAll(QString());
    row.spoken = words.join(u", "_s);
    return row;
}

LeftoverRow AppsWords::row(const FoundOrphan &found, const QString &home, const QDateTime &now)
{
    const auto &orphan = found.orphan;
    LeftoverRow row{ .title = singleLine(orphan.guessedApp()),
        .note = tr("%1 · Last changed %2")
                    .arg(translatedTableText(rawValue(orphan.kind)), Format::age(orphan.lastModified, now)),
        .path = friendly(orphan.path, home),
        .size = Format::bytes(orphan.bytes),
        .evidence = evidence(found, now).join(u'\n') };
    row.spoken = QStringList{ row.title, row.note, row.size, row.path }.join(u", "_s);
    return row;
}

LeftoverRow AppsWords::row(const Leftover &leftover, const InstalledApp &app, const QString &home)
{
    LeftoverRow row{ .title = translatedTableText(leftover.label()),
        .path = friendly(leftover.path, home),
        .what = translatedTableText(explanation(leftover.kind)),
        .size = Format::bytes(leftover.bytes),
        .evidence = evidence(leftover, app),
        .isLocked = leftover.needsAdministrator };
    row.spoken = QStringList{ row.title, row.size, row.path }.join(u", "_s);
    return row;
}

QStringList AppsWords::evidence(const FoundOrphan &found, const QDateTime &now)
{
    const auto id = singleLine(found.orphan.bundleID);
    QStringList lines{ tr("No application here has the identifier %1, or one that it begins with.").arg(id) };
    if (found.isInHostPlace) {
        lines.append(tr("No entry of a menu is named so, not even a hidden one."));
        lines.append(tr("No Flatpak application, runtime or extension is named so."));
        lines.append(tr("No snap and no service on D-Bus is named so."));
    }
    lines.append(
        tr("The folder itself was last changed %1.").arg(Format::age(found.orphan.lastModified, now)));
    if (found.newestInside)
        lines.append(tr("The newest thing in it was changed %1.").arg(Format::age(found.newestInside, now)));
    lines.append(tr("It takes %1.").arg(Format::bytes(found.orphan.bytes)));
    return lines;
}

QString AppsWords::evidence(const Leftover &leftover, const InstalledApp &app)
{
    const auto name = repairedText(std::string_view(leftover.path).substr(leftover.path.rfind('/') + 1));
    // Of keys that hold each other, the longest is the one it was found by.
    auto key = app.app.name;
    qsizetype longest = 0;
    for (const auto &own : { app.app.bundleID, app.app.name, app.programName }) {
        if (own.size() <= longest || !name.contains(own, Qt::CaseInsensitive))
            continue;
        key = own;
        longest = own.size();
    }
    // What others would claim is looked for among the kinds that the host has.
    return (app.origin == AppOrigin::bundle
            ? tr("It is named after %1.")
            : tr("It is named after %1, and nothing else that is listed here could claim it."))
        .arg(singleLine(key));
}

QString AppsWords::origin(const InstalledApp &app)
{
    if (app.origin == AppOrigin::bundle && app.app.fromAppStore)
        return tr("From the App Store — you can reinstall it any time, free.");
    if (app.app.fromAppStore)
        return tr("From %1 — you can install it again any time.")
            .arg(app.originName.isEmpty() ? tr("Flatpak") : singleLine(app.originName));
    return tr("Keep the installer if you might want it back.");
}

QString AppsWords::itself(const UninstallPlan &plan)
{
    const auto &app = plan.target;
    if (app.programStays)
        return tr(
            "The entry that starts it. The program stays where it is: Quillbrook can't tell that nothing "
            "else uses it.");
    auto text = tr("The program. Everything below is what it wrote elsewhere while you used it.");
    if (!app.runtimes.isEmpty() && plan.runtimeBytes > 0)
        text += u' '
            + tr("Its runtime, %1, stays, though nothing else here uses it.")
                  .arg(Format::bytes(plan.runtimeBytes));
    return text;
}

QString AppsWords::total(const InstalledApp &app, const std::vector<Leftover> &ticked)
{
    qint64 bytes = 0;
    for (const auto &leftover : ticked)
        bytes += leftover.bytes;
    if (!goesForGood(app))
        return tr("%1 goes to the Trash").arg(Format::bytes(app.app.bytes + bytes));
    if (ticked.empty())
        return tr("%1 is removed for good").arg(Format::bytes(app.app.bytes));
    return tr("%1 goes to the Trash, %2 is removed for good")
        .arg(Format::bytes(bytes), Format::bytes(app.app.bytes));
}

QString AppsWords::confirmMessage(const InstalledApp &app, const std::vector<Leftover> &ticked)
{
    if (goesForGood(app) && ticked.empty())
        return tr("The app itself is removed for good, and can be installed again.");
    if (goesForGood(app))
        return tr("Everything ticked goes to the Trash, so it can be put back. The app itself is removed for "
                  "good, and can be installed again.");
    return tr(
        "Everything ticked goes to the Trash, so it can be put back. The space comes back when the Trash "
        "is emptied — Quillbrook will offer to do that for just these items.");
}

QString AppsWords::confirmAction(const InstalledApp &app)
{
    return goesForGood(app) ? tr("Uninstall") : tr("Move to Trash");
}

} // namespace Quillbrook
