#pragma once

// Places that no table can name, because a person's own applications and profiles name them: the folders are
// asked, one level deep. Nothing in them is opened.

#include "Catalogue/HostCatalogue.h"

#include <string>

namespace Quillbrook {

class FileReading;

namespace LinuxFoundPlaces {

/// The caches of the Flatpak applications that have folders below `home` (raw bytes), as places of
/// "flatpak.caches", each with its application's ID. Left out are applications with a place of their own in
/// `catalogue`, and those known to keep more than copies in such a folder.
[[nodiscard]] QList<HostLocation> flatpakCaches(
    const HostCatalogue &catalogue, const FileReading &reading, const std::string &home);

/// What websites keep for browsers' further profiles, as places of "browser.offline", beside those of the
/// first profile that `catalogue` names.
[[nodiscard]] QList<HostLocation> furtherProfiles(const HostCatalogue &catalogue, const std::string &home);

} // namespace LinuxFoundPlaces

} // namespace Quillbrook
