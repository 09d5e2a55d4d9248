#include "fsd/NameResolver.h"

#include "fsd/AddressLookup.h"

#include <QByteArray>
#include <QEventLoop>
#include <QHostAddress>
#include <QUrl>

#include <chrono>
#include <mutex>
#include <utility>

namespace tarvo::fsd {

namespace {

constexpr const char *workerName = "name look-up";

bool isIPv4Literal(const QString &host)
{
    QHostAddress address;
    return address.setAddress(host) && address.protocol() == QAbstractSocket::IPv4Protocol;
}

} // namespace

/// What the resolver shares with its worker, which may outlive it: a look-up can't be called off.
struct NameResolver::Shared
{
    std::mutex mutex;
    NameResolver *owner = nullptr; ///< null once it has gone

    /// On the worker's thread.
    void report(int request, const QString &address)
    {
        const std::lock_guard lock(mutex);
        if (!owner)
            return;
        QMetaObject::invokeMethod(
            owner, [to = owner, request, address] { to->onAnswer(request, address); }, Qt::QueuedConnection);
    }
};

NameResolver::NameResolver(QObject *parent) : QObject(parent), m_shared(std::make_shared<Shared>())
{
    m_shared->owner = this;
    m_worker.emplace(workerName, 1);
}

NameResolver::~NameResolver()
{
    {
        const std::lock_guard lock(m_shared->mutex);
        m_shared->owner = nullptr;
    }
    m_worker->clear();
    leaveBusyWorker();
}

void NameResolver::lookUp(const QString &host, Answer answer)
{
    abort();
    const QString name = host.trimmed();
    if (isIPv4Literal(name)) {
        answer(name);
        return;
    }
    m_answer = std::move(answer);
    ask(QUrl::toAce(name));
}

std::optional<QString> NameResolver::resolve(const QString &host)
{
    abort();
    leaveBusyWorker();
    std::optional<QString> address;
    lookUp(host, [&address](const QString &found) { address = found; });
    if (address)
        return address;
    const int request = m_request;
    QEventLoop loop;
    connect(this, &NameResolver::requestEnded, &loop, &QEventLoop::quit);
    ++m_waiting;
    loop.exec();
    --m_waiting;
    if (request != m_request) // the answer may have come, and then the abort in the same turn
        return std::nullopt;
    if (!address) // the end of the program ends the loop, too
        abort();
    return address;
}

void NameResolver::abort()
{
    ++m_request;
    m_answer = {};
    m_worker->clear();
    emit requestEnded();
}

/// A look-up that is at work can't be called off. It is left behind with its thread, so that nobody waits for it.
void NameResolver::leaveBusyWorker()
{
    if (m_worker->isIdle())
        return;
    m_worker->leave();
    m_worker.emplace(workerName, 1);
}

void NameResolver::ask(const QByteArray &name)
{
    const bool isAsked = m_worker->post([shared = m_shared, request = m_request, name] {
        const std::optional<quint32> found = name.isEmpty() ? std::nullopt : lookUpAddress(name);
        shared->report(request, found ? QHostAddress(*found).toString() : QString());
    });
    if (!isAsked) // no thread is to be had
        m_shared->report(m_request, {});
}

void NameResolver::onAnswer(int request, const QString &address)
{
    if (request != m_request)
        return;
    std::exchange(m_answer, {})(address);
    emit requestEnded();
}

} // namespace tarvo::fsd
