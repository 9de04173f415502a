#pragma once

// The ledger as a file: one JSON array of objects, compact, with "/" written as "\/", and points in time as
// seconds since 2001-01-01 00:00:00 UTC. "byRule" is left out where it is absent.
//
// JSON is text and a path is bytes. A path that is valid UTF-8 is written as that text, exactly. One that
// isn't is written twice: as text with U+FFFD for what is no text, for readers that know no better, and
// whole as base64 under the same key followed by "Bytes". So nothing is lost, no two paths are written alike,
// and a file in which every path is text holds no key besides the seven of a row.

#include "JsonValues.h"
#include "Removal/TrashedItem.h"

#include <QByteArray>
#include <QByteArrayView>

#include <vector>

namespace Quillbrook::LedgerFormat {

[[nodiscard]] QByteArray encode(const std::vector<TrashedItem> &items);

/// Absent when `json` is anything else than an array of whole rows. Keys that are not known are passed over;
/// a moment is rounded to the millisecond, and one beyond 270,000 years is taken as that.
[[nodiscard]] std::optional<std::vector<TrashedItem>> decode(QByteArrayView json);

/// One row; its identity is no part of it.
[[nodiscard]] JsonValues::Json encodeRow(const TrashedItem &item);
[[nodiscard]] std::optional<TrashedItem> decodeRow(const JsonValues::Json &row);

} // namespace Quillbrook::LedgerFormat
