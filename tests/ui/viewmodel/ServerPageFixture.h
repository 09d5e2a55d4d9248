#pragma once

#include "AppConfig.h"
#include "network/SwiftAircraftIcaoService.h"
#include "support/ManualClock.h"
#include "ui/viewmodel/ServerPageViewModel.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace tarvo::test {

/// A server page model over type data of its own, at 21:04:07 local time.
class ServerPageFixture
{
public:
    /// `typeData` is a Doc8643 table; empty for a service without any data.
    explicit ServerPageFixture(const QByteArray &typeData = {})
        : m_config(write(m_folder.path(), typeData)), m_icao(m_config)
    {
        if (!typeData.isEmpty())
            m_icao.ensureLoaded();
    }

private:
    static QString write(const QString &folder, const QByteArray &typeData)
    {
        QDir(folder).mkpath(u"resources"_qs);
        QFile file(folder + u"/resources/Doc8643.txt"_qs);
        if (!typeData.isEmpty() && file.open(QIODevice::WriteOnly))
            file.write(typeData);
        return folder;
    }

    QTemporaryDir m_folder;
    AppConfig m_config;
    network::SwiftAircraftIcaoService m_icao;

public:
    ManualClock clock{QDateTime(QDate(2024, 3, 9), QTime(21, 4, 7)).toMSecsSinceEpoch()};
    ui::ServerPageViewModel model{m_icao, nullptr, clock};
};

} // namespace tarvo::test
