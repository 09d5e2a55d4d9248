#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

#include <optional>

class QDnsLookup;

namespace tarvo::fsd {

/// Turns a server name into an IPv4 address.
class NameResolver : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// The address as text; empty when there is none; no value when the look-up was aborted, or cut short by the end of
    /// the program. An IPv4 literal is its own answer. Anything else, "localhost" and IPv6 literals too, is looked up
    /// in a nested event loop: events go on being handled during the call.
    std::optional<QString> resolve(const QString &host);
    /// True while resolve() is on the stack.
    bool isBusy() const { return !m_lookups.isEmpty(); }
    /// Ends every look-up that is under way.
    void abort();

private:
    QList<QPointer<QDnsLookup>> m_lookups; ///< under way; more than one when look-ups are nested
};

} // namespace tarvo::fsd
