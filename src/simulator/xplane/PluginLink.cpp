#include "simulator/xplane/PluginLink.h"

#include "common/nng/SocketCloser.h"
#include "simulator/xplane/MessagePool.h"
#include "simulator/xplane/PipeWatch.h"
#include "simulator/xplane/PluginReceiver.h"

#include <nng/protocol/pair1/pair.h>

#include <QDebug>
#include <QMetaObject>
#include <QPointer>

#include <optional>

namespace tarvo::simulator::xplane {

namespace {

constexpr int socketBufferMessages = 8192;

/// While messages keep pouring in, the event loop gets its turn after so many.
constexpr int reportsPerTurn = 256;

QString errorText(int result)
{
    return QString::fromUtf8(nng_strerror(result));
}

} // namespace

PluginLink::PluginLink(const common::Clock &clock, QObject *parent)
    : QObject(parent), m_sender(clock, this), m_receiveWorker("plugin receive", 1)
{
    connect(&m_sender, &PluginSender::messagesLost, this, &PluginLink::messagesLost);
}

PluginLink::~PluginLink()
{
    if (m_receiver)
        m_receiver->stop();
    m_receiveWorker.finish();
    if (m_opened)
        common::closeInBackground(m_socket, m_sender.end(), m_pipes);
}

bool PluginLink::isConnected() const
{
    return m_pipes && m_pipes->isConnected();
}

void PluginLink::open(const PluginAddress &address)
{
    Q_ASSERT(!m_ready);
    m_ready = true;
    m_address = address;
    openSocket();
    if (const int result = dial(); result != 0) {
        emit socketError(address.local
                             ? QStringLiteral("Error dialing socket: %1").arg(errorText(result))
                             : QStringLiteral("Error dialing socket (%1): %2").arg(address.url, errorText(result)));
    }
    if (!m_opened)
        return;
    startReceiving();
    m_sender.start(m_socket);
}

void PluginLink::openSocket()
{
    limitMessagePool();
    const int result = nng_pair1_open(&m_socket);
    m_opened = result == 0;
    if (!m_opened) {
        emit socketError(QStringLiteral("Error opening socket: %1").arg(errorText(result)));
        return;
    }
    nng_socket_set_int(m_socket, NNG_OPT_RECVBUF, socketBufferMessages);
    nng_socket_set_int(m_socket, NNG_OPT_SENDBUF, socketBufferMessages);
    nng_socket_set_size(m_socket, NNG_OPT_RECVMAXSZ, largestReceived);
    m_pipes = std::make_shared<PipeWatch>(m_socket);
    connect(m_pipes.get(), &PipeWatch::changed, this, &PluginLink::onConnectionChanged, Qt::QueuedConnection);
}

int PluginLink::dial()
{
    return nng_dial(m_socket, m_address.url.toUtf8().constData(), &m_dialer, NNG_FLAG_NONBLOCK);
}

void PluginLink::dialAnew()
{
    if (!m_opened || isConnected())
        return;
    nng_dialer_close(m_dialer);
    dial(); // an address that can't be was told at the first time
}

void PluginLink::startReceiving()
{
    m_receiver = std::make_shared<PluginReceiver>(m_socket);
    connect(m_receiver.get(), &PluginReceiver::inboxFilled, this, &PluginLink::drainInbox, Qt::QueuedConnection);
    if (!m_receiveWorker.post([receiver = m_receiver] { receiver->run(); }))
        qWarning() << "X-Plane plugin receive thread does not start"; // the attempts end in their time-out
}

void PluginLink::onConnectionChanged(bool connected)
{
    if (connected) {
        qInfo() << "X-Plane plugin is connected";
        const bool first = !m_hadPlugin;
        m_hadPlugin = true;
        emit pluginConnected(first);
    } else {
        // nng doesn't tell which of the two it was.
        qWarning() << "X-Plane plugin connection has ended: the plugin went, or it sent more than" << largestReceived
                   << "bytes at once";
    }
}

void PluginLink::drainInbox()
{
    const QPointer<PluginLink> alive(this);
    ReportInbox &inbox = m_receiver->inbox();
    // Not only at the end: a receiver that runs an event loop of its own gets the later reports there.
    inbox.beginDrain();
    for (int i = 0; i < reportsPerTurn; ++i) {
        const std::optional<PluginReport> report = inbox.take();
        if (!report)
            return;
        emit reportReceived(*report);
        if (!alive)
            return;
    }
    if (inbox.stopDrain())
        QMetaObject::invokeMethod(this, &PluginLink::drainInbox, Qt::QueuedConnection);
}

} // namespace tarvo::simulator::xplane
