#include "Platform/Linux/Sandbox/FolderBookmark.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

constexpr int presentVersion = 1;
const auto versionKey = u"version"_s;
const auto pathKey = u"path"_s;
const auto idKey = u"document"_s;
const auto restKey = u"below"_s;

// The mount point also shows the documents of each program, below this name.
constexpr std::string_view documentsByProgram = "by-app";

// Names are bytes, which JSON can't hold as they are.
QString armoured(const std::string &bytes)
{
    return QString::fromLatin1(QByteArray::fromStdString(bytes).toBase64());
}

std::optional<std::string> bare(const QJsonValue &value)
{
    if (!value.isString())
        return std::nullopt;
    const auto decoded = QByteArray::fromBase64Encoding(
        value.toString().toUtf8(), QByteArray::Base64Encoding | QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded || (*decoded).contains('\0'))
        return std::nullopt;
    return (*decoded).toStdString();
}

bool isPlainName(std::string_view name)
{
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string_view::npos;
}

bool isPlainRelative(std::string_view path)
{
    while (true) {
        const auto slash = path.find('/');
        if (!isPlainName(path.substr(0, slash)))
            return false;
        if (slash == std::string_view::npos)
            return true;
        path.remove_prefix(slash + 1);
    }
}

} // namespace

QByteArray encode(const FolderBookmark &bookmark)
{
    QJsonObject object{ { versionKey, presentVersion }, { pathKey, armoured(bookmark.path) } };
    if (bookmark.document) {
        object.insert(idKey, armoured(bookmark.document->id));
        object.insert(restKey, armoured(bookmark.document->rest));
    }
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

std::optional<FolderBookmark> decodeFolderBookmark(const QByteArray &data)
{
    const auto object = QJsonDocument::fromJson(data).object();
    const auto path = bare(object.value(pathKey));
    if (object.value(versionKey) != presentVersion || !path || !path->starts_with('/'))
        return std::nullopt;
    if (!object.contains(idKey) && !object.contains(restKey))
        return FolderBookmark{ .path = *path };
    const auto id = bare(object.value(idKey));
    const auto rest = bare(object.value(restKey));
    if (!id || !rest || !isPlainName(*id) || !isPlainRelative(*rest))
        return std::nullopt;
    return FolderBookmark{ .path = *path, .document = PortalDocument{ .id = *id, .rest = *rest } };
}

std::optional<PortalDocument> portalDocument(const std::string &path, const std::string &mountPoint)
{
    if (mountPoint.empty() || !path.starts_with(mountPoint + '/'))
        return std::nullopt;
    const auto below = path.substr(mountPoint.size() + 1);
    const auto slash = below.find('/');
    if (slash == std::string::npos)
        return std::nullopt;
    PortalDocument document{ .id = below.substr(0, slash), .rest = below.substr(slash + 1) };
    if (document.id == documentsByProgram || !isPlainName(document.id) || !isPlainRelative(document.rest))
        return std::nullopt;
    return document;
}

} // namespace Quillbrook
