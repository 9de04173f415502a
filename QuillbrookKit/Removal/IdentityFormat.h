#pragma once

// By what the rows of the ledger know their things, as a file beside it: one JSON object, from a row's id to
// { "inode", "born", "note", "mode" }, without the first two where the file system does not keep both, and
// with the last one, a whole number, for folders that their owner may not write to alone. "born" is in
// nanoseconds since 1970-01-01 00:00:00 UTC. The ledger's own file stays as it is told there.

#include "JsonValues.h"
#include "Removal/TrashedItem.h"

#include <QByteArray>
#include <QHash>

#include <vector>

namespace Quillbrook::IdentityFormat {

[[nodiscard]] QByteArray encode(const std::vector<TrashedItem> &items);
/// By id. What is no identity is left out.
[[nodiscard]] QHash<QString, ThingIdentity> decode(QByteArrayView json);

[[nodiscard]] JsonValues::Json encodeOne(const ThingIdentity &identity);
[[nodiscard]] std::optional<ThingIdentity> decodeOne(const JsonValues::Json &json);

} // namespace Quillbrook::IdentityFormat
