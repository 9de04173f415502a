#include "Screens/Window/AskBarState.h"

#include "Screens/Window/ContentState.h"

namespace Quillbrook {

AskBarState::AskBarState(ContentState &content, QObject *parent)
    : QObject(parent)
    , m_content(content)
{
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
    if (m_draft.trimmed().isEmpty())
        return false;
    setDraft({});
    openConversation();
    return true;
}

void AskBarState::openConversation()
{
    m_content.setPane(Pane::advisor);
}

} // namespace Quillbrook
