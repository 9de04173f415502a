#include "Uninstaller/Linux/FlatpakInstallation.h"

#include "Platform/FileReading.h"
#include "Platform/Linux/Files/FlatpakInfo.h"
#include "RawText.h"
#include "Uninstaller/FolderNames.h"
#include "Uninstaller/Linux/DesktopEntry.h"

#include <QRegularExpression>
#include <QXmlStreamReader>

#include <filesystem>
#include <glib.h>
#include <memory>

namespace Quillbrook::FlatpakInstallation {

using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

namespace {

constexpr qsizetype longestNote = qsizetype{ 4 } * 1024 * 1024;
constexpr qsizetype longestVersion = 60;

bool isFolder(const std::string &path)
{
    std::error_code error;
    return fs::is_directory(path, error);
}

QString version(const FileReading &reading, const std::string &deployment, const std::string &id)
{
    for (const auto *place : { "/files/share/metainfo/", "/files/share/appdata/" }) {
        for (const auto *suffix : { ".metainfo.xml", ".appdata.xml" }) {
            const auto text = reading.contents(deployment + place + id + suffix, longestNote);
            if (const auto told = text ? versionOf(*text) : QString(); !told.isEmpty())
                return told;
        }
    }
    return {};
}

QString runtimeOf(const QByteArray &metadata)
{
    const auto ref = u"runtime/"_s + parseFlatpakInfo(metadata).runtime;
    return isRef(ref) ? ref : QString();
}

struct Branch
{
    QString ref{};
    std::string deployment{};
};

std::vector<Branch> branches(const std::string &folder, const std::string &id)
{
    std::vector<Branch> found;
    for (const auto &arch : FolderNames::in(folder)) {
        // "current" is a link to one of the others.
        if (arch == "current")
            continue;
        for (const auto &branch : FolderNames::in(folder + '/' + arch)) {
            const auto deployment = folder + '/' + arch + '/' + branch + "/active";
            const auto ref
                = u"app/"_s + repairedText(id) + u'/' + repairedText(arch) + u'/' + repairedText(branch);
            if (isFolder(deployment) && isRef(ref))
                found.push_back({ .ref = ref, .deployment = deployment });
        }
    }
    return found;
}

} // namespace

bool isRef(const QString &ref)
{
    static const QRegularExpression form(u"\\A(app|runtime)(/[A-Za-z0-9_][A-Za-z0-9_.-]*){3}\\z"_s);
    return form.match(ref).hasMatch();
}

QString originOf(const QByteArray &deploy)
{
    using Variant = std::unique_ptr<GVariant, decltype(&g_variant_unref)>;
    const Variant note(g_variant_ref_sink(g_variant_new_from_data(G_VARIANT_TYPE("(ssasta{sv})"),
                           deploy.constData(), static_cast<gsize>(deploy.size()), FALSE, nullptr, nullptr)),
        g_variant_unref);
    const Variant origin(g_variant_get_child_value(note.get(), 0), g_variant_unref);
    return plainLine(QString::fromUtf8(g_variant_get_string(origin.get(), nullptr)));
}

QString versionOf(const QByteArray &metainfo)
{
    QXmlStreamReader reader(metainfo);
    while (!reader.atEnd())
        if (reader.readNext() == QXmlStreamReader::StartElement && reader.name() == u"release")
            return plainLine(reader.attributes().value(u"version"_s).toString().left(longestVersion));
    return {};
}

std::vector<App> apps(const FileReading &reading, const std::string &folder)
{
    std::vector<App> found;
    for (const auto &id : FolderNames::in(folder + "/app")) {
        const auto own = folder + "/app/" + id;
        const auto all = branches(own, id);
        if (all.empty())
            continue;
        App app{ .id = repairedText(id), .folder = own, .deployment = own + "/current/active" };
        for (const auto &branch : all) {
            app.refs.append(branch.ref);
            const auto runtime = runtimeOf(
                reading.contents(branch.deployment + "/metadata", longestNote).value_or(QByteArray()));
            if (!runtime.isEmpty() && !app.runtimes.contains(runtime))
                app.runtimes.append(runtime);
        }
        if (!isFolder(app.deployment))
            app.deployment = all.front().deployment;
        app.version = version(reading, app.deployment, id);
        if (app.version.isEmpty())
            app.version = app.refs.constFirst().section(u'/', -1);
        app.origin
            = originOf(reading.contents(app.deployment + "/deploy", longestNote).value_or(QByteArray()));
        found.push_back(std::move(app));
    }
    return found;
}

QStringList allIds(const std::string &folder)
{
    QStringList ids;
    for (const auto *kind : { "/app", "/runtime" })
        for (const auto &id : FolderNames::in(folder + kind))
            ids.append(repairedText(id));
    return ids;
}

std::string folderOf(const std::string &folder, const QString &ref)
{
    return folder + '/' + ref.toStdString();
}

} // namespace Quillbrook::FlatpakInstallation
