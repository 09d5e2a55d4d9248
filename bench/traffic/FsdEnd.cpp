#include "traffic/FsdEnd.h"

#include "common/Callsign.h"
#include "fsd/pdu/ClientQuery.h"
#include "fsd/pdu/ClientQueryResponse.h"
#include "fsd/pdu/FsdLine.h"
#include "fsd/pdu/PlaneInfoResponse.h"
#include "traffic/Crowd.h"
#include "traffic/Ledger.h"

#include <QHostAddress>

#include <utility>

namespace tarvo::bench {

using namespace fsd::pdu;

namespace {
constexpr double nsPerSecond = 1e9;
constexpr double nsPerMs = 1e6;
constexpr int startInterval = 1000; ///< ms between slow reports until the crowd is there
} // namespace

FsdEnd::FsdEnd(int pilots, double rate, Ledger &ledger)
    : m_pilots(pilots), m_nsPerFast(nsPerSecond / (pilots * rate)), m_ledger(ledger)
{
    setSlowInterval(startInterval);
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setInterval(1);
    connect(&m_timer, &QTimer::timeout, this, &FsdEnd::sendDue);
    connect(&m_server, &QTcpServer::newConnection, this, &FsdEnd::onNewConnection);
}

bool FsdEnd::listen()
{
    return m_server.listen(QHostAddress::LocalHost);
}

void FsdEnd::setSlowInterval(int ms)
{
    m_nsPerSlow = ms * nsPerMs / m_pilots;
}

void FsdEnd::hangUp()
{
    m_timer.stop();
    if (m_socket)
        m_socket->close();
}

void FsdEnd::onNewConnection()
{
    m_socket = m_server.nextPendingConnection();
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    connect(m_socket, &QTcpSocket::readyRead, this, &FsdEnd::onReadyRead);
    send(QStringLiteral("$DISERVER:CLIENT:Load 1:0123456789abcdef\r\n"));
}

void FsdEnd::onReadyRead()
{
    m_received += m_socket->readAll();
    qsizetype start = 0;
    for (qsizetype end = m_received.indexOf("\r\n"); end >= 0; end = m_received.indexOf("\r\n", start)) {
        handle(QString::fromLatin1(QByteArrayView(m_received).sliced(start, end - start)));
        start = end + 2;
    }
    m_received.remove(0, start);
}

void FsdEnd::handle(const QString &line)
{
    if (line.startsWith(QLatin1StringView("#AP")))
        m_client = line.sliced(3).section(QLatin1Char(':'), 0, 0);
    else if (line.startsWith(QLatin1StringView("$CQ")))
        answerQuery(line);
    else if (line.startsWith(QLatin1StringView("#SB")) && line.endsWith(QLatin1StringView(":PIR")))
        send(fsd::toLine(PlaneInfoResponse(line.section(QLatin1Char(':'), 1, 1), m_client, QStringLiteral("B738"),
                                           QStringLiteral("TST"), {}, {})));
}

void FsdEnd::answerQuery(const QString &line)
{
    const ClientQuery query = ClientQuery::parse(line.sliced(3).split(QLatin1Char(':')));
    if (query.To != common::serverCallsign)
        return answerAsPilot(query);
    if (query.queryType == ClientQueryType::FlightPlan) {
        const QStringList plan{QStringLiteral("CALLSIGN=") + query.payload.value(0), QStringLiteral("TYPE=B738/L")};
        send(fsd::toLine(ClientQueryResponse(common::serverCallsign, m_client, query.queryType, plan)));
    } else if (query.queryType == ClientQueryType::PublicAddress) {
        send(fsd::toLine(
            ClientQueryResponse(common::serverCallsign, m_client, query.queryType, {QStringLiteral("127.0.0.1")})));
        send(QStringLiteral("$SFSERVER:%1:1\r\n").arg(m_client));
        m_loggedIn = true;
    }
}

void FsdEnd::answerAsPilot(const ClientQuery &query)
{
    if (query.queryType == ClientQueryType::Capabilities)
        send(fsd::toLine(ClientQueryResponse(query.To, m_client, query.queryType,
                                             {QStringLiteral("VERSION=1"), QStringLiteral("ACCONFIG=1")})));
    else if (query.queryType == ClientQueryType::AircraftConfiguration && crowd::pilotOf(query.To.toStdString()) >= 0)
        send(fsd::toLine(ClientQuery(query.To, m_client, query.queryType, {crowd::configuration()})));
}

void FsdEnd::startTraffic()
{
    m_nextFastNs = m_nextSlowNs = static_cast<double>(steadyNs());
    m_timer.start();
}

void FsdEnd::sendDue()
{
    const auto now = static_cast<double>(steadyNs());
    while (m_nextFastNs <= now || m_nextSlowNs <= now) {
        if (m_nextSlowNs <= m_nextFastNs)
            sendSlow();
        else
            sendFast();
    }
}

void FsdEnd::sendFast()
{
    const int pilot = std::exchange(m_nextFastPilot, (m_nextFastPilot + 1) % m_pilots);
    m_nextFastNs += m_nsPerFast;
    const int number = m_ledger.nextFast(pilot);
    const QByteArray line = crowd::fastLine(pilot, number);
    m_ledger.noteFast(pilot, number);
    write(line);
}

void FsdEnd::sendSlow()
{
    const int pilot = std::exchange(m_nextSlowPilot, (m_nextSlowPilot + 1) % m_pilots);
    m_nextSlowNs += m_nsPerSlow;
    const int number = m_ledger.nextSlow(pilot);
    const QByteArray line = crowd::slowLine(pilot, number);
    m_ledger.noteSlow(pilot, number);
    write(line);
}

void FsdEnd::send(const QString &line)
{
    write(line.toLatin1());
}

void FsdEnd::write(const QByteArray &line)
{
    if (!m_socket)
        return;
    m_socket->write(line);
    m_socket->flush();
}

} // namespace tarvo::bench
