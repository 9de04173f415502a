#include "Screens/Lists/SearchState.h"

#include "Core/AppModel.h"
#include "Scan/TreeQueries.h"

namespace Quillbrook {

namespace {

constexpr qsizetype rowLimit = 300;

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
    return TreeQueries::isLongEnough(text()) ? tr("No files found.") : tr("Type at least two characters.");
}

QList<NodeSnapshot> SearchState::fetch() const
{
    return model().navigation().search(text(), rowLimit);
}

} // namespace Quillbrook
