#pragma once

#include <QString>

namespace tarvo::network {

/// When a JWT expires, in Unix seconds: "exp" of its middle part. 0 when that can't be read. The signature is the
/// service's to check, not ours.
qint64 jwtExpiry(const QString &jwt);

/// Milliseconds from `nowSeconds` to the refresh of a token that expires at `expiry` (both Unix seconds), which is due
/// 300 s before the expiry. 0 when it is due already or the expiry is unknown (0): then no timer is armed.
qint64 refreshDelayMs(qint64 expiry, qint64 nowSeconds);

/// The interval for one run of a timer that is to wait `delayMs`: at most 24 days, which is what a timer can hold. A
/// longer wait takes several runs.
int timerIntervalMs(qint64 delayMs);

/// True when the token must be refreshed before it is used: its expiry is known and at most 60 s away.
bool expiresSoon(qint64 expiry, qint64 nowSeconds);

} // namespace tarvo::network
