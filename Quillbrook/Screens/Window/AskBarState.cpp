#include "Screens/Window/AskBarState.h"

#include "Advisor/Advisor.h"
#include "Core/AppModel.h"
#include "Screens/Window/ContentState.h"

namespace Quillbrook {

AskBarState::AskBarState(AppModel &model, Advisor &advisor, ContentState &content, QObject *parent)
    : QObject(parent)
    , m_model(model)
    , m_advisor(advisor)
    , m_content(content)
{
    connect(&m_advisor, &Advisor::availabilityChanged, this, &AskBarState::changed);
    connect(&m_advisor, &Advisor::messagesChanged, this, &AskBarState::changed);
    connect(&m_model.questions(), &QuestionDriver::suggestedQuestionsChanged, this, &AskBarState::changed);
}

void AskBarState::setDraft(const QString &draft)
{
    if (m_draft == draft)
        return;
    m_draft = draft;
    Q_EMIT draftChanged();
}

bool AskBarState::submit()
{
    const auto question = m_draft.trimmed();
    if (question.isEmpty())
        return false;
    setDraft({});
    openConversation();
    m_advisor.ask(question);
    return true;
}

void AskBarState::tryQuestion(int index)
{
    setDraft(questions().value(index));
    submit();
}

void AskBarState::openConversation()
{
    m_content.setPane(Pane::advisor);
}

void AskBarState::focusIn()
{
    m_advisor.refreshAvailability();
}

QString AskBarState::prompt() const
{
    return m_advisor.isAvailable() ? tr("Ask Quillbrook anything about this Mac")
                                   : tr("On-device model unavailable — every other screen still works");
}

bool AskBarState::hasHistory() const
{
    return !m_advisor.messages().isEmpty();
}

QStringList AskBarState::questions() const
{
    return m_advisor.isAvailable() && !hasHistory() ? m_model.questions().suggestedQuestions()
                                                    : QStringList();
}

} // namespace Quillbrook
