#pragma once

// A made-up desktop machine on the real disk, for what knows of its applications.

#include "Support/BundleTree.h"
#include "Support/FakeProcessRunner.h"
#include "Uninstaller/Linux/LinuxApplications.h"

namespace Quillbrook {

struct DesktopMachine : BundleTree
{
    FakeProcessRunner processes;
    /// Set before `applications` is asked for.
    bool isSandboxed = false;

    DesktopMachine()
    {
        tree.folder("proc");
        for (const auto *tool : { "tools/dpkg-query", "tools/flatpak", "tools/tool", "home/bin/mine" }) {
            tree.fileWith(tool, "#!/bin/sh\n");
            tree.permissions(tool, 0755);
        }
    }

    [[nodiscard]] ApplicationPlaces places() const
    {
        return { .home = home(),
            .data = path("home/.local/share"),
            .config = path("home/.config"),
            .cache = path("home/.cache"),
            .state = path("home/.local/state"),
            .systemData = { path("usr/local/share"), path("usr/share") },
            .userFlatpak = path("home/.local/share/flatpak"),
            .systemFlatpak = path("var/lib/flatpak"),
            .snapd = path("var/lib/snapd"),
            .snaps = path("snap"),
            .programs = { path("tools"), path("home/bin") },
            .systemConfig = path("etc"),
            .systemState = path("var/lib"),
            .dpkgQuery = path("tools/dpkg-query"),
            .flatpak = path("tools/flatpak"),
            .desktops = { QStringLiteral("GNOME") },
            .ownFiles = { path("home/bin/quillbrook") } };
    }

    [[nodiscard]] LinuxApplications applications() const
    {
        return LinuxApplications({ .services = services(),
            .processes = processes,
            .places = places(),
            .isSandboxed = isSandboxed,
            .processFolder = path("proc") });
    }

    void entry(const std::string &folder, const std::string &id, const std::string &lines) const
    {
        tree.fileWith(folder + "/applications/" + id + ".desktop",
            "[Desktop Entry]\nType=Application\n" + lines + "\n");
    }
    void ownEntry(const std::string &id, const std::string &lines) const
    {
        entry("home/.local/share", id, lines);
    }
    void program(const std::string &name) const
    {
        tree.fileWith(name, "#!/bin/sh\n");
        tree.permissions(name, 0755);
    }

    /// An application of Flatpak in the installation at `folder`.
    void flatpak(const std::string &folder, const std::string &id, const std::string &name,
        const std::string &branch = "stable") const
    {
        const auto deployment = folder + "/app/" + id + "/x86_64/" + branch + "/active";
        tree.fileWith(
            deployment + "/metadata", "[Application]\nname=" + id + "\nruntime=org.base/x86_64/23\n");
        tree.file(deployment + "/files/program", 5000);
        tree.link(folder + "/app/" + id + "/current", "x86_64/" + branch);
        tree.file(folder + "/runtime/org.base/x86_64/23/active/files", 7000);
        entry(folder + "/exports/share", id,
            "Name=" + name + "\nExec=/usr/bin/flatpak run " + id + "\nX-Flatpak=" + id);
    }

    /// A process of this user that runs `program`.
    void runs(const std::string &program, const std::string &group = {}) const
    {
        const auto folder = "proc/" + std::to_string(1000 + m_processes++);
        tree.link(folder + "/exe", program);
        tree.fileWith(folder + "/cmdline", program + '\0');
        tree.fileWith(folder + "/cgroup", "0::/user.slice/app.slice/" + group + "\n");
    }

    [[nodiscard]] static const InstalledApp &app(const HostListing &listing, const QString &id)
    {
        for (const auto &app : listing.apps)
            if (app.app.bundleID == id)
                return app;
        qFatal("no application %s", qPrintable(id));
    }

private:
    mutable int m_processes = 0;
};

} // namespace Quillbrook
