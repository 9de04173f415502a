#include "Catalogue/HostItems.h"

#include "Catalogue/ApplicationNames.h"
#include "StandardisedPath.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace Quillbrook::HostItems {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype hashLength = 8;

// Pipenv: NAME-XXXXXXXX. Poetry: NAME-XXXXXXXX-py3.12. The hash itself may hold hyphens.
QString withoutHash(const QString &name)
{
    static const QRegularExpression version(u"-py[0-9]+(\\.[0-9]+)*$"_s);
    auto text = name;
    text.remove(version);
    const auto hyphen = text.size() - hashLength - 1;
    return hyphen > 0 && text[hyphen] == u'-' ? text.first(hyphen) : name;
}

QString withBlankBeforeVersion(const QString &name)
{
    static const QRegularExpression digit(u"[0-9]"_s);
    const auto at = name.indexOf(digit);
    return at > 0 && name[at - 1] != u' ' ? name.first(at) + u' ' + name.sliced(at) : name;
}

void describeHubRepository(const QString &childName, StorageItem &item)
{
    struct Kind
    {
        QStringView prefix;
        const char16_t *detail;
    };
    static constexpr std::array<Kind, 3> kinds{ {
        { u"models", u"AI model" },
        { u"datasets", u"Data set" },
        { u"spaces", u"AI app" },
    } };
    const auto pieces = childName.split(u"--"_s);
    const auto kind = std::ranges::find(kinds, QStringView(pieces.first()), &Kind::prefix);
    if (kind == kinds.end() || pieces.size() < 2)
        return;
    item.name = pieces.sliced(1).join(u'/');
    item.detail = QString::fromUtf16(kind->detail);
}

QString steamGame(const FileReading &reading, const QString &childName, const StorageItem &item)
{
    static const QRegularExpression number(u"\\A[0-9]+\\z"_s);
    if (!number.match(childName).hasMatch())
        return childName;
    return ApplicationNames::ofSteamGame(reading, parentOf(parentOf(item.rawPath)), childName)
        .value_or(u"Steam game %1"_s.arg(childName));
}

} // namespace

const HostItemisation *rowFor(const Finding &finding, const StorageCatalogue::Places &places)
{
    if (!places.host)
        return nullptr;
    const auto start = places.homeDirectory + u'/';
    const auto path = finding.path.startsWith(start) ? finding.path.sliced(start.size()) : finding.path;
    const auto fits = [&](const HostItemisation &row) {
        return row.ruleId == finding.rule.id && (row.paths.isEmpty() || row.paths.contains(path));
    };
    const auto row = std::ranges::find_if(places.host->itemisations, fits);
    return row == places.host->itemisations.end() ? nullptr : &*row;
}

void describe(const HostItemisation &row, const FileReading &reading, const StorageCatalogue::Places &places,
    const QString &childName, StorageItem &item)
{
    item.name = childName;
    item.detail = row.detail;
    item.blockedReason = row.blockedReason;
    item.removable = !row.blockedReason;
    switch (row.naming) {
    case HostItemNaming::childName:
        break;
    case HostItemNaming::hashedEnvironment:
        item.name = withoutHash(childName);
        break;
    case HostItemNaming::productAndVersion:
        item.name = withBlankBeforeVersion(childName);
        break;
    case HostItemNaming::hubRepository:
        describeHubRepository(childName, item);
        break;
    case HostItemNaming::dataSet:
        item.name = QString(childName).replace(u"___"_s, u"/"_s);
        break;
    case HostItemNaming::steamGame:
        item.name = steamGame(reading, childName, item);
        break;
    case HostItemNaming::vagrantBox:
        item.name = QString(childName).replace(u"-VAGRANTSLASH-"_s, u"/"_s);
        break;
    case HostItemNaming::flatpakApplication:
        item.name = ApplicationNames::ofFlatpak(reading, *places.host, places.home(), childName);
        break;
    }
}

} // namespace Quillbrook::HostItems
