#include "simulator/xplane/PluginReceiver.h"

#include "common/Clock.h"
#include "common/TrafficLog.h"

#include <QDebug>

#include <utility>

namespace tarvo::simulator::xplane {

using Line = common::DropCount::Line;

PluginReceiver::PluginReceiver(nng_socket socket) : m_socket(socket)
{
    nng_aio_alloc(&m_receive, nullptr, nullptr);
}

PluginReceiver::~PluginReceiver()
{
    nng_aio_free(m_receive);
}

void PluginReceiver::run()
{
    while (m_receive && !m_stopped) {
        nng_recv_aio(m_socket, m_receive);
        nng_aio_wait(m_receive);
        if (const int result = nng_aio_result(m_receive); result != 0) {
            if (!m_stopped)
                qWarning() << "X-Plane plugin receive thread ends:" << nng_strerror(result);
            return;
        }
        nng_msg *message = nng_aio_get_msg(m_receive);
        handleMessage(QByteArrayView(static_cast<const char *>(nng_msg_body(message)),
                                     static_cast<qsizetype>(nng_msg_len(message))));
        nng_msg_free(message);
    }
}

void PluginReceiver::stop()
{
    m_stopped = true;
    if (m_receive)
        nng_aio_stop(m_receive);
}

void PluginReceiver::handleMessage(QByteArrayView message)
{
    PluginReport report = unpackReport(message);
    if (const auto *malformed = std::get_if<report::Malformed>(&report)) {
        if (m_malformed.add(common::systemClock().steadyMs()) != Line::None)
            qWarning().noquote() << "X-Plane plugin message dropped:" << malformed->why << "total"
                                 << m_malformed.total();
    } else if (!std::holds_alternative<report::Unknown>(report)) {
        putIntoInbox(std::move(report), static_cast<size_t>(message.size()));
    }
}

void PluginReceiver::putIntoInbox(PluginReport report, size_t bytes)
{
    switch (m_inbox.put(std::move(report), bytes)) {
    case ReportInbox::Put::Kept:
        break;
    case ReportInbox::Put::KeptFirst:
        emit inboxFilled();
        break;
    case ReportInbox::Put::Refused:
        tellRefused();
        break;
    }
}

void PluginReceiver::tellRefused()
{
    static constexpr char text[] = "X-Plane plugin message dropped: the inbox is full, total";
    const Line line = m_refused.add(common::systemClock().steadyMs());
    if (line == Line::Warning)
        qCWarning(common::trafficLog) << text << m_refused.total();
    else if (line == Line::Debug)
        qCDebug(common::trafficLog) << text << m_refused.total();
}

} // namespace tarvo::simulator::xplane
