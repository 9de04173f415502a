// Writes the texts of the Kit's tables as a source file that the extraction of texts can read: it finds what
// stands in a call, and a table is none.

#include "Automation/AutomationPreset.h"
#include "Catalogue/Linux/LinuxCatalogue.h"
#include "Catalogue/Safety.h"
#include "Catalogue/StorageCatalogue.h"
#include "Offload/Suitability.h"
#include "Platform/Linux/Files/LinuxErrorText.h"
#include "Removal/Linux/LinuxGuards.h"
#include "Removal/PathGuards.h"
#include "Uninstaller/Linux/LinuxApplications.h"
#include "Uninstaller/Uninstaller.h"

#include <QSet>
#include <QTextStream>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

class Listing
{
public:
    void add(const QString &text)
    {
        if (text.isEmpty() || m_seen.contains(text))
            return;
        m_seen.insert(text);
        auto quoted = text;
        quoted.replace(u'\\', u"\\\\"_s).replace(u'"', u"\\\""_s).replace(u'\n', u"\\n"_s);
        m_out << "    QT_TRANSLATE_NOOP(\"Tables\", \"" << quoted << "\"),\n";
    }

    void add(const ReclaimRule &rule)
    {
        add(rule.title);
        add(rule.what);
        add(rule.regenerates);
    }

private:
    QTextStream m_out{ stdout };
    QSet<QString> m_seen;
};

} // namespace

int main()
{
    QTextStream(stdout) << "const char *const texts[] = {\n";
    {
        Listing listing;
        for (const auto &rule : StorageCatalogue::rules())
            listing.add(rule);
        const auto host = LinuxCatalogue::catalogue({}, u"/home/nobody"_s);
        for (const auto &row : host.rules)
            listing.add(row.rule);
        for (const auto &row : host.rules)
            for (const auto &location : row.locations)
                listing.add(location.label);
        for (const auto &row : host.locations)
            for (const auto &location : row.locations)
                listing.add(location.label);
        for (const auto &row : host.itemisations) {
            listing.add(row.detail);
            listing.add(row.blockedReason.value_or(QString()));
        }
        for (const auto &rule : StorageCatalogue::rules())
            listing.add(Offload::suitability(rule.id).hotReason.value_or(QString()));
        for (const auto &row : host.suitability)
            listing.add(row.hotReason.value_or(QString()));
        for (const auto &preset : AutomationPreset::all(host)) {
            listing.add(preset.title);
            listing.add(preset.blurb);
        }
        for (const auto &guard : PathGuards::builtIn())
            listing.add(guard.sentence);
        for (const auto &guard : LinuxGuards::guards({}).guards)
            listing.add(guard.sentence);
        for (const auto safety : { Safety::safe, Safety::careful, Safety::reportOnly })
            listing.add(label(safety));
        for (const auto &kind : leftoverKinds()) {
            listing.add(kind.rawValue);
            listing.add(kind.explanation);
        }
        for (const auto &sentence :
            Uninstaller::sentences() + LinuxApplications::blockedSentences() + LinuxErrorText::sentences())
            listing.add(sentence);
    }
    QTextStream(stdout) << "};\n";
}
