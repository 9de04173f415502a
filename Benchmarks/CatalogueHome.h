#pragma once

// What the catalogue asks of this machine, and made-up trees of a million nodes for it to read.

#include "Catalogue/Linux/LinuxCatalogue.h"
#include "Catalogue/StorageCatalogue.h"
#include "Platform/Clock.h"
#include "Platform/Linux/Files/LinuxFileFacts.h"
#include "Platform/Linux/Files/LinuxFileReading.h"
#include "Platform/Linux/Folders/LinuxDirectoryReading.h"
#include "Platform/Linux/Folders/LinuxVolumes.h"
#include "Platform/Linux/Processes/LinuxProcessRunner.h"
#include "Platform/Linux/Processes/LinuxProcessors.h"
#include "Platform/Linux/Processes/LinuxRunningApps.h"
#include "Scan/FileTree.h"

#include <map>
#include <memory>
#include <random>
#include <string>

namespace Quillbrook::Benchmarks {

class CatalogueMachine
{
public:
    [[nodiscard]] CatalogueServices services()
    {
        return { m_directories, m_processors, m_volumes, m_files, m_reading, m_processes, m_runningApps,
            m_clock };
    }

private:
    LinuxDirectoryReading m_directories;
    LinuxProcessors m_processors;
    LinuxVolumes m_volumes;
    LinuxFileFacts m_files;
    LinuxFileReading m_reading;
    LinuxProcessRunner m_processes;
    LinuxRunningApps m_runningApps{ m_reading, {} };
    SystemClock m_clock;
};

/// Makes the tree of a home folder that is on no disk, folder by folder.
class CatalogueHome
{
public:
    static constexpr qsizetype nodes = 1'000'000;

    explicit CatalogueHome(const QString &home)
        : m_tree(std::make_unique<FileTree>(nodes))
    {
        m_known[{}] = m_tree->addNode(FileTree::noNode, home.toStdString(), 0, FileTree::Flags::directory);
    }

    /// The folder of that path below home, made with those above it; home itself for an empty path.
    qint32 folder(const std::string &path)
    {
        const auto known = m_known.find(path);
        if (known != m_known.end())
            return known->second;
        const auto slash = path.rfind('/');
        const bool isTop = slash == std::string::npos;
        const auto parent = folder(isTop ? std::string() : path.substr(0, slash));
        return m_known[path]
            = m_tree->addNode(parent, isTop ? path : path.substr(slash + 1), 0, FileTree::Flags::directory);
    }

    void file(qint32 parent, const std::string &name)
    {
        m_tree->addNode(parent, name, static_cast<qint64>(m_random() % 1'000'000), FileTree::Flags::none);
    }

    void addEveryLocation(const HostCatalogue &host)
    {
        for (const auto &rule : StorageCatalogue::rules())
            addLocations(rule.paths);
        for (const auto &row : host.rules)
            addLocations(row.rule.paths);
        for (const auto &row : host.locations)
            for (const auto &location : row.locations)
                addLocations({ location.path });
    }

    /// Fills the tree up with files in folders of fifty, and finishes it.
    [[nodiscard]] std::shared_ptr<const FileTree> finish()
    {
        while (m_tree->nodeCount() < nodes) {
            const auto parent = m_tree->addNode(folder("Projects"),
                "project-" + std::to_string(m_tree->nodeCount()), 0, FileTree::Flags::directory);
            for (int i = 0; i < 50; ++i)
                file(parent, "file-" + std::to_string(i) + ".txt");
        }
        m_tree->rollUp();
        m_tree->sortChildrenBySize();
        return std::move(m_tree);
    }

private:
    void addLocations(const QStringList &paths)
    {
        for (const auto &path : paths)
            file(folder(path.toStdString()), "content");
    }

    std::unique_ptr<FileTree> m_tree;
    std::map<std::string, qint32> m_known;
    std::mt19937 m_random{ 20240615 };
};

} // namespace Quillbrook::Benchmarks
