#pragma once

#include "AppConfig.h"
#include "network/ApiService.h"
#include "support/AccountPeer.h"
#include "support/Patience.h"

#include <QTemporaryDir>
#include <QTest>

namespace tarvo::test {

/// A configuration in a folder of its own, and an account service at the other end.
struct AccountStage
{
    QTemporaryDir folder;
    AppConfig config{folder.path()};
    AccountPeer peer;
    network::ApiService api{config, peer.endpoints()};

    AccountStage() { config.state().set(state::tourSeen, true); } // it would lie over the pages

    /// As user 1001, whom the service knows from then on.
    void signIn()
    {
        peer.acceptLogin();
        bool done = false;
        api.login(u"1001"_qs, u"practice"_qs, [&done](bool success, const QString &) { done = success; });
        TRY_VERIFY(done);
    }
};

} // namespace tarvo::test
