#pragma once

#include "manager/Session.h"

namespace tarvo::test {

/// A pilot who is on the network, with everything that the login sent already read.
struct OnlineSession : Session
{
    explicit OnlineSession(const QString &selcal = QStringLiteral("EF-GH"))
    {
        addSimulator();
        online = manager->connectToNetwork(u"ab1"_qs, u"b738"_qs, selcal, false);
        online = online && peer.skip(4);
        peer.inject(QStringLiteral("$CRSERVER:AB1:IP:10.0.0.9"));
        online = online && peer.expectNothing() && takeEvents() == QStringList{QStringLiteral("connected AB1")};
        takeNotifications();
        sim->takeCalls();
    }

    bool online = false;
};

} // namespace tarvo::test
