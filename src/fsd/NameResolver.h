#pragma once

#include "common/Worker.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace tarvo::fsd {

/// Turns a server name into an IPv4 address on a thread of its own. Neither the end of its owner nor that of the
/// program waits for it. The newest look-up wins. lookUp() makes one at a time, however many are asked for; resolve()
/// doesn't wait for one that was abandoned.
class NameResolver : public QObject
{
    Q_OBJECT

public:
    using Answer = std::function<void(const QString &address)>;

    explicit NameResolver(QObject *parent = nullptr);
    ~NameResolver() override;

    /// Calls `answer` with the address as text, empty when there is none. An IPv4 literal is its own answer, given
    /// inside the call; anything else, "localhost" and IPv6 literals too, is looked up. Never calls it when a newer
    /// look-up or abort() comes before.
    void lookUp(const QString &host, Answer answer);
    /// The address as text; empty when there is none; no value when a newer look-up or abort() came before, or the end
    /// of the program. Waits in a nested event loop: events go on being handled during the call.
    std::optional<QString> resolve(const QString &host);
    /// True while resolve() is on the stack.
    bool isBusy() const { return m_waiting > 0; }
    /// Ends the look-up that is under way.
    void abort();

private:
    struct Shared;

    void ask(const QByteArray &name);
    void leaveBusyWorker();
    void onAnswer(int request, const QString &address);

    std::shared_ptr<Shared> m_shared;
    std::optional<common::Worker> m_worker; ///< there for good, though not always the same
    Answer m_answer;                        ///< of the request that is under way
    int m_request = 0;
    int m_waiting = 0; ///< resolve() calls on the stack

signals:
    /// A request is over: nobody waits for it any more.
    void requestEnded();
};

} // namespace tarvo::fsd
