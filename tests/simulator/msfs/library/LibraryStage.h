#pragma once

#include "AppConfig.h"
#include "PackageTree.h"
#include "network/SwiftAircraftIcaoService.h"
#include "simulator/msfs/library/MsfsAircraftLibrary.h"
#include "support/Patience.h"

#include <memory>
#include <stdexcept>

namespace tarvo::test {

/// A library over a configuration, type data and packages of its own.
class LibraryStage
{
public:
    using Profile = simulator::msfs::MsfsRuntimeProfile;

    LibraryStage()
    {
        m_tree.write(QStringLiteral("root/resources/Doc8643.txt"),
                     "BOEING\t737-800\tB738\tL2J\tM\nAIRBUS\tA-320\tA320\tL2J\tM\nCESSNA\t172\tC172\tL1P\tL\n");
        m_config = std::make_unique<AppConfig>(m_tree.path(QStringLiteral("root")));
        m_types = std::make_unique<network::SwiftAircraftIcaoService>(*m_config);
        m_types->ensureLoaded();
        for (const Profile profile : {Profile::Msfs2020, Profile::Msfs2024})
            useFolderInstead(profile, folderOf(profile));
        m_library = std::make_unique<simulator::msfs::MsfsAircraftLibrary>(*m_config, *m_types,
                                                                           m_tree.path(QStringLiteral("nothing")));
    }

    simulator::msfs::MsfsAircraftLibrary &library() { return *m_library; }
    /// The library, scanned.
    simulator::msfs::MsfsAircraftLibrary &readyLibrary()
    {
        m_library->ensureLoaded();
        if (!waitFor([this] { return m_library->isReady(); }))
            throw std::runtime_error("no library");
        return *m_library;
    }
    void forgetLibrary() { m_library.reset(); }

    /// Configures another community folder, and has the next models put there.
    void useFolderInstead(Profile profile, const QString &folder)
    {
        m_tree.makeFolder(folder);
        (profile == Profile::Msfs2020 ? m_folder2020 : m_folder2024) = folder;
        m_config->set(profile == Profile::Msfs2020 ? config::msfsCommunityPath2020 : config::msfsCommunityPath2024,
                      m_tree.path(folder));
    }

    void write(Profile profile, const QString &folder, const QByteArray &text)
    {
        m_tree.write(folderOf(profile) + u'/' + folder + QStringLiteral("/aircraft.cfg"), text);
    }
    void addModel(Profile profile, const QString &title, const QByteArray &designator)
    {
        write(profile, title + QStringLiteral("/SimObjects"),
              "[GENERAL]\nicao_type_designator=" + designator + "\n[FLTSIM.0]\ntitle=" + title.toUtf8());
    }
    void addMany(Profile profile, int count)
    {
        for (int i = 0; i < count; ++i)
            addModel(profile, QString::number(i), "A320");
    }

private:
    const QString &folderOf(Profile profile) const
    {
        return profile == Profile::Msfs2020 ? m_folder2020 : m_folder2024;
    }

    PackageTree m_tree;
    QString m_folder2020 = QStringLiteral("2020");
    QString m_folder2024 = QStringLiteral("2024");
    std::unique_ptr<AppConfig> m_config;
    std::unique_ptr<network::SwiftAircraftIcaoService> m_types;
    std::unique_ptr<simulator::msfs::MsfsAircraftLibrary> m_library;
};

} // namespace tarvo::test
