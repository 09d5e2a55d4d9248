#include "diagnosis/ServiceCheck.h"

#include "ServiceEndpoints.h"
#include "diagnosis/TimeLimit.h"
#include "fsd/AddressLookup.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QHostAddress>
#include <QHostInfo>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTcpSocket>
#include <QTimer>

#include <algorithm>
#include <array>
#include <memory>

namespace tarvo::diagnosis {

namespace {

using std::chrono::milliseconds;

/// As the client looks it up: FSD servers by the name server alone, the others also by the system's own lists. Null
/// when there is no such name.
QHostAddress lookUp(ServiceKind kind, const QString &host)
{
    if (kind != ServiceKind::Fsd)
        return QHostInfo::fromName(host).addresses().value(0);
    const auto address = fsd::lookUpAddress(QUrl::toAce(host));
    return address ? QHostAddress(*address) : QHostAddress();
}

/// An address as it stands, or the name's.
std::optional<QHostAddress> addressOf(const Service &service, milliseconds limit)
{
    if (const QHostAddress literal(service.host); !literal.isNull())
        return literal;
    return within(limit, [kind = service.kind, host = service.host] { return lookUp(kind, host); });
}

int msOf(milliseconds limit)
{
    return static_cast<int>(limit.count());
}

/// The first line of an FSD server within the limit begins so.
bool greets(QTcpSocket &socket, milliseconds limit)
{
    constexpr qint64 worthReading = 1024; // bytes
    socket.setReadBufferSize(worthReading);
    const QByteArray wanted("$DI");
    const QDeadlineTimer deadline(limit); // not anew for each byte
    QByteArray said;
    while (said.size() < wanted.size()) {
        if (!socket.waitForReadyRead(static_cast<int>(deadline.remainingTime())))
            return false;
        said += socket.readAll();
    }
    return said.startsWith(wanted);
}

/// Only an answer by HTTP itself counts; a proxy that wants a sign-in answers in place of the service.
ServiceFacts factsOf(const QNetworkReply &reply, const QString &place)
{
    constexpr int firstFailure = 500;
    constexpr int askedByProxy = 407;
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const QString words = QStringLiteral("HTTP %1").arg(status);
    if (status == askedByProxy)
        return {ServiceStep::NoAnswer, words};
    if (status > 0) // without a sign-in "not found" and "forbidden" are answers like any other
        return {status < firstFailure ? ServiceStep::Answered : ServiceStep::Failing, words};
    if (reply.error() == QNetworkReply::SslHandshakeFailedError)
        return {ServiceStep::BadCertificate, reply.errorString()};
    return {ServiceStep::NoAnswer, reply.error() == QNetworkReply::NoError ? place : reply.errorString()};
}

/// The head of the answer is enough, and one timer for all of it: Qt's own begins anew with every byte.
ServiceFacts tryHttp(const QUrl &url, const QString &place, milliseconds limit)
{
    constexpr qint64 worthReading = 16 * 1024; // bytes
    QNetworkAccessManager manager;
    const std::unique_ptr<QNetworkReply> reply(manager.get(QNetworkRequest(url)));
    reply->setReadBufferSize(worthReading);
    QEventLoop loop;
    QObject::connect(reply.get(), &QNetworkReply::metaDataChanged, &loop, &QEventLoop::quit);
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(limit, &loop, &QEventLoop::quit);
    if (!reply->isFinished())
        loop.exec();
    ServiceFacts facts = factsOf(*reply, place);
    reply->abort();
    return facts;
}

ServiceFacts tryAddress(const Service &service, const QHostAddress &address, const ServiceLimits &limits)
{
    QTcpSocket socket;
    socket.connectToHost(address, service.port);
    if (!socket.waitForConnected(msOf(limits.connection))) {
        const bool isRefused = socket.error() == QAbstractSocket::ConnectionRefusedError;
        return {isRefused ? ServiceStep::Refused : ServiceStep::NoConnection, socket.errorString()};
    }
    const QString place = QStringLiteral("%1:%2").arg(address.toString()).arg(service.port);
    if (service.kind == ServiceKind::Http) // which makes a connection of its own and would not tell why it gets none
        return tryHttp(service.url, place, limits.answer);
    if (service.kind == ServiceKind::Fsd && !greets(socket, limits.answer))
        return {ServiceStep::NoAnswer, place};
    return {ServiceStep::Answered, place};
}

/// What is told of each step, and what a pilot can do about it.
struct Verdict
{
    ServiceStep step;
    const char *words;
    const char *advice;
};

constexpr std::array verdicts{
    Verdict{ServiceStep::NoName, QT_TRANSLATE_NOOP("tarvo::diagnosis", "域名无法解析"),
            QT_TRANSLATE_NOOP("tarvo::diagnosis", "检查网络连接和 DNS 设置；名称不对时向网络的技术人员询问。")},
    Verdict{ServiceStep::NameTooLate, QT_TRANSLATE_NOOP("tarvo::diagnosis", "域名解析超时"),
            QT_TRANSLATE_NOOP("tarvo::diagnosis", "DNS 没有应答：检查网络连接，或换一个 DNS 服务器。")},
    Verdict{ServiceStep::Refused, QT_TRANSLATE_NOOP("tarvo::diagnosis", "拒绝连接"),
            QT_TRANSLATE_NOOP("tarvo::diagnosis", "那里没有服务在运行：查看网络的公告，稍后再试。")},
    Verdict{ServiceStep::NoConnection, QT_TRANSLATE_NOOP("tarvo::diagnosis", "无法连接"),
            QT_TRANSLATE_NOOP("tarvo::diagnosis", "检查网络连接，并在防火墙中允许 TarvoClient 访问网络。")},
    Verdict{ServiceStep::NoAnswer, QT_TRANSLATE_NOOP("tarvo::diagnosis", "没有正确应答"),
            QT_TRANSLATE_NOOP("tarvo::diagnosis", "应答的可能是别的程序或代理：检查代理和防火墙，稍后再试。")},
    Verdict{ServiceStep::Failing, QT_TRANSLATE_NOOP("tarvo::diagnosis", "应答了错误"),
            QT_TRANSLATE_NOOP("tarvo::diagnosis", "服务暂时有故障：稍后再试，或告知网络的技术人员。")},
    Verdict{ServiceStep::BadCertificate, QT_TRANSLATE_NOOP("tarvo::diagnosis", "加密连接不可信"),
            QT_TRANSLATE_NOOP("tarvo::diagnosis", "检查电脑的日期和时间，以及会拦截加密连接的安全软件。")},
    Verdict{ServiceStep::Answered, QT_TRANSLATE_NOOP("tarvo::diagnosis", "正常"), nullptr},
};

const Verdict &verdictOn(ServiceStep step)
{
    return *std::find_if(verdicts.begin(), verdicts.end(), [step](const Verdict &v) { return v.step == step; });
}

} // namespace

QList<Service> servicesOf(const ServiceEndpoints &endpoints)
{
    const QUrl api(endpoints.apiBaseUrl);
    const bool isSecure = api.scheme() == QLatin1StringView("https");
    return {{ServiceKind::Http, Texts::tr("账户服务"), api.host(), static_cast<quint16>(api.port(isSecure ? 443 : 80)),
             api},
            {ServiceKind::Fsd, Texts::tr("网络服务器"), endpoints.fsdHost, endpoints.fsdPort},
            {ServiceKind::Voice, Texts::tr("语音服务器"), endpoints.voiceHost, endpoints.voiceTcpPort}};
}

ServiceFacts tryService(const Service &service, const ServiceLimits &limits)
{
    const std::optional<QHostAddress> address = addressOf(service, limits.name);
    if (!address)
        return {ServiceStep::NameTooLate};
    if (address->isNull())
        return {ServiceStep::NoName};
    return tryAddress(service, *address, limits);
}

Finding judgeService(const Service &service, const ServiceFacts &facts)
{
    const Verdict &verdict = verdictOn(facts.step);
    const QString words = Texts::tr(verdict.words);
    return {verdict.advice ? Mark::Bad : Mark::Good,
            Texts::tr("%1 %2:%3").arg(service.title, service.host).arg(service.port),
            facts.detail.isEmpty() ? words : Texts::tr("%1（%2）").arg(words, facts.detail),
            verdict.advice ? Texts::tr(verdict.advice) : QString()};
}

} // namespace tarvo::diagnosis
