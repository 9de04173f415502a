#pragma once

// A made-up home folder with a few projects in it, and a model that has scanned it. For tests of what the
// screens make of a finished tree.

#include "Core/AppModel.h"
#include "Support/FakeServices.h"

#include <QTest>

#include <deque>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace Quillbrook {

struct ScannedHome : FakeServices
{
    ScannedHome()
    {
        addFolder("Projects");
        addFolder("Projects/renderer");
        addFile("Projects/renderer/scene.glb", 60);
        addFile("Projects/renderer/model.bin", 40);
        addFile("Projects/notes.txt", 20);
        addFolder("Videos");
        addFile("Videos/film.mp4", 80);
        addFile("lab.txt", 10);
    }

    /// Names are relative to the home folder; the folder above has been added before.
    void addFolder(const std::string &name)
    {
        m_folders.insert(name);
        add(name, FakeDirectories::aFolder(lastComponent(name)));
        directories.folder(path(name), {});
    }
    void addFile(const std::string &name, qint64 mebibytes)
    {
        add(name, FakeDirectories::aFile(lastComponent(name), mebibytes * 1024 * 1024));
    }
    /// A link, which takes a block of its own.
    void addLink(const std::string &name)
    {
        auto record = FakeDirectories::aFile(lastComponent(name), 4096);
        record.type = DirectoryRecord::Type::symlink;
        add(name, record);
        files.entries[path(name)] = { .kind = FileKind::symlink };
    }
    /// A folder of one file at one of the catalogue's places.
    void addPlace(const std::string &name, qint64 mebibytes, const std::optional<FileDates> &dates = {})
    {
        for (auto slash = name.find('/'); slash != std::string::npos; slash = name.find('/', slash + 1))
            if (!m_folders.contains(name.substr(0, slash)))
                addFolder(name.substr(0, slash));
        addFolder(name);
        addFile(name + "/content", mebibytes);
        files.entries[path(name)] = { .dates = dates };
    }
    [[nodiscard]] std::string path(const std::string &name = {}) const
    {
        const auto base = home.realHome.toStdString();
        return name.empty() ? base : base + '/' + name;
    }

    void scan(Scope scope = Scope::complete)
    {
        model.scans().scan({ .scope = scope });
        QTRY_COMPARE(model.scans().phase().kind, Phase::Kind::ready);
    }

    /// The node of a path below the home folder; -1 when there is none.
    [[nodiscard]] qint32 node(const std::string &name) const
    {
        return model.scans().tree()->find(QString::fromStdString(path(name)), model.scans().rootNode());
    }
    /// What a screen keeps of it. REQUIRES: it is there.
    [[nodiscard]] NodeSnapshot snapshot(const std::string &name) const
    {
        return model.scans().tree()->snapshot(node(name)).value();
    }

private:
    // Records refer to their names, which therefore have to stay where they are.
    std::string_view lastComponent(const std::string &name)
    {
        return m_names.emplace_back(name.substr(name.rfind('/') + 1));
    }
    void add(const std::string &name, const DirectoryRecord &record)
    {
        const auto slash = name.rfind('/');
        const auto parent = slash == std::string::npos ? path() : path(name.substr(0, slash));
        m_records[parent].push_back(record);
        directories.folder(parent, m_records[parent]);
    }

    std::deque<std::string> m_names;
    std::set<std::string> m_folders;
    std::map<std::string, std::vector<DirectoryRecord>> m_records;

public:
    AppModel model{ services };
};

} // namespace Quillbrook
