#pragma once

#include <QTest>

namespace tarvo::test {

/// How long a test waits for what goes over sockets or takes another program's doing, in ms. Far more than that takes,
/// so that a test fails for its reason and not because the machine is busy.
inline constexpr int patienceMs = 30'000;

} // namespace tarvo::test

/// QTRY_COMPARE and QTRY_VERIFY with that patience.
#define TRY_COMPARE(actual, expected) QTRY_COMPARE_WITH_TIMEOUT(actual, expected, tarvo::test::patienceMs)
#define TRY_VERIFY(condition) QTRY_VERIFY_WITH_TIMEOUT(condition, tarvo::test::patienceMs)
