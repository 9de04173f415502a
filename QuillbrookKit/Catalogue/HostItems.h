#pragma once

// The members of findings that the host's table opens into items. Private to the catalogue.

#include "Catalogue/StorageCatalogue.h"

namespace Quillbrook::HostItems {

/// The row that opens `finding`; null without one. Lives as long as the host's tables.
[[nodiscard]] const HostItemisation *rowFor(const Finding &finding, const StorageCatalogue::Places &places);

/// Gives `item`, the member called `childName`, its name, what it is, and why it must stay, if it must.
void describe(const HostItemisation &row, const FileReading &reading, const StorageCatalogue::Places &places,
    const QString &childName, StorageItem &item);

} // namespace Quillbrook::HostItems
