// Any bytes as messages of the simulator, one behind the other, for a session that is open and asks for everything.
#include "practice/simconnect/SimConnectStandIn.h"
#include "simulator/msfs/session/SimConnectSession.h"
#include "simulator/msfs/simconnect/SimConnectBinding.h"
#include "simulator/msfs/simconnect/SimConnectLibrary.h"

#include <QMetaObject>

#include <algorithm>
#include <cstdlib>
#include <cstring>

using namespace tarvo::simulator::msfs;

namespace {

/// As long as the first message says, if it can be; or else all bytes.
qsizetype firstMessage(const QByteArray &bytes)
{
    quint32 size = 0;
    std::memcpy(&size, bytes.constData(), std::min(sizeof size, static_cast<size_t>(bytes.size())));
    return size >= sizeof(SIMCONNECT_RECV) && size <= bytes.size() ? static_cast<qsizetype>(size) : bytes.size();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    tarvo::practice::SimConnectStandIn standIn;
    standIn.setLogging(false);
    SimConnectSession session(std::make_shared<SimConnectBinding>(standIn.library()));
    session.setTrafficEnabled(true);
    session.open();
    session.registerDefinitions();
    QObject::connect(&session, &SimConnectSession::dataReceived, &session,
                     [](UpdateGroup group, const QVariantMap &sample) {
                         constexpr qsizetype largestGroup = 27;
                         if (group > UpdateGroup::Environment || sample.size() > largestGroup)
                             std::abort();
                     });
    for (QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)); !bytes.isEmpty();) {
        const qsizetype first = firstMessage(bytes);
        standIn.queue(bytes.first(first));
        bytes.remove(0, first);
    }
    QMetaObject::invokeMethod(session.findChild<QTimer *>(QStringLiteral("dispatch")), "timeout", Qt::DirectConnection);
    return 0;
}
