#pragma once

// The few questions that are offered before the first one is asked, written from what the last scan found. No
// model takes part. Main thread only; the scans outlive it.

#include "Catalogue/ReclaimReport.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace Quillbrook {

class ScanDriver;
struct HostCatalogue;

class QuestionDriver : public QObject
{
    Q_OBJECT

public:
    struct Facts
    {
        const std::optional<ReclaimReport> &report;
        /// How many items a finding opens into.
        std::function<qsizetype(const Finding &)> itemCount;
        /// Null: the built-in tables alone.
        const HostCatalogue *host = nullptr;
    };

    explicit QuestionDriver(const ScanDriver &scans, QObject *parent = nullptr);

    /// At the end of a scan. Returns at once; the questions follow, unless the scan did not end well.
    void refreshSuggestedQuestions();
    /// In the order in which they are shown, three at most.
    [[nodiscard]] static QStringList computeSuggestedQuestions(const Facts &facts);

    [[nodiscard]] const QStringList &suggestedQuestions() const { return m_suggestedQuestions; }

Q_SIGNALS:
    void suggestedQuestionsChanged();

private:
    void publish();

    const ScanDriver &m_scans;
    QStringList m_suggestedQuestions;
};

} // namespace Quillbrook
