#include "Screens/Lists/SearchState.h"

#include "Core/AppModel.h"

namespace Quillbrook {

namespace {

constexpr qsizetype rowLimit = 300;
constexpr qsizetype shortestQuery = 2;

} // namespace

SearchState::SearchState(AppModel &model, QObject *parent)
    : NodeTableState(model, parent)
{
    connect(&model.navigation(), &Navigation::searchTextChanged, this, [this] {
        invalidateRows();
        Q_EMIT textChanged();
        Q_EMIT emptyMessageChanged();
    });
}

QString SearchState::text() const
{
    return model().navigation().searchText();
}

void SearchState::setText(const QString &text)
{
    model().navigation().setSearchText(text);
}

QString SearchState::emptyMessage() const
{
    return text().size() < shortestQuery ? tr("Type at least two characters.") : tr("No files found.");
}

QList<NodeSnapshot> SearchState::fetch() const
{
    return model().navigation().search(text(), rowLimit);
}

} // namespace Quillbrook
