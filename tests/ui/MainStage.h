#pragma once

#include "manager/ControllerManager.h"
#include "manager/NetworkManager.h"
#include "manager/SimulatorData.h"
#include "network/SwiftAircraftIcaoService.h"
#include "support/Patience.h"
#include "ui/AccountStage.h"
#include "ui/MainWindow.h"

#include <QCoreApplication>
#include <QEvent>
#include <QQuickItem>
#include <QQuickView>
#include <QTcpServer>
#include <QTest>

#include <memory>

namespace tarvo::test {

/// A main window over a session of its own; the FSD server at its far end only listens.
struct MainStage : AccountStage
{
    QTcpServer fsd;
    ServiceEndpoints endpoints = endpointsOf(peer, fsd);
    network::SwiftAircraftIcaoService icao{config};
    std::shared_ptr<manager::NetworkManager> network =
        std::make_shared<manager::NetworkManager>(config, api, icao, endpoints);
    std::shared_ptr<manager::ControllerManager> controllers = std::make_shared<manager::ControllerManager>(network);
    ui::MainWindow window{network, controllers, config, api, icao, endpoints};

    static ServiceEndpoints endpointsOf(const AccountPeer &peer, QTcpServer &server)
    {
        server.listen(QHostAddress::LocalHost);
        ServiceEndpoints endpoints = peer.endpoints();
        endpoints.fsdHost = u"127.0.0.1"_qs;
        endpoints.fsdPort = server.serverPort();
        endpoints.voiceHost = u"127.0.0.1"_qs;
        endpoints.voiceTcpPort = 1; // where nobody is
        return endpoints;
    }
    ui::ServerPageViewModel &server() { return window.server(); }
    ui::DashboardViewModel &dashboard() { return window.dashboard(); }
    /// The newest event row as "title|detail|tag".
    QString event()
    {
        const QVariantMap row = server().recentEvents().value(0).toMap();
        return QStringList{row[u"title"_qs].toString(), row[u"detail"_qs].toString(), row[u"tag"_qs].toString()}.join(
            u'|');
    }
    /// An observer's request, which needs no simulator.
    void observe(const QString &callsign)
    {
        emit server().connectRequested(callsign, u"B738"_qs, u"AB-CD"_qs, true);
        answer();
    }
    /// Lets what the pages have asked for happen.
    static void answer() { QCoreApplication::sendPostedEvents(nullptr, QEvent::MetaCall); }
};

/// The visible item with this object name, `from` included; null when there is none.
inline QQuickItem *itemNamed(QQuickItem *from, const QString &name)
{
    if (from->objectName() == name && from->isVisible())
        return from;
    for (QQuickItem *child : from->childItems()) {
        if (QQuickItem *found = itemNamed(child, name))
            return found;
    }
    return nullptr;
}
inline QQuickItem *itemNamed(const ui::MainWindow &window, const QString &name)
{
    return itemNamed(window.view()->contentItem(), name);
}

inline void click(const ui::MainWindow &window, const QString &name)
{
    TRY_VERIFY(itemNamed(window, name));
    const QQuickItem *item = itemNamed(window, name);
    QTest::mouseClick(window.view(), Qt::LeftButton, {},
                      item->mapToScene({item->width() / 2, item->height() / 2}).toPoint());
}

/// A sample of a connected simulator.
inline manager::SimulatorData headingFor(double degrees)
{
    manager::SimulatorData sample;
    sample.simConnected = true;
    sample.aircraft.heading = degrees;
    return sample;
}

} // namespace tarvo::test
