#pragma once

#include "simulator/msfs/simconnect/SimConnectApi.h"
#include "simulator/msfs/simconnect/SimConnectBinding.h"

#include <QByteArrayView>
#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>

namespace tarvo::simulator::msfs {

/// "text (HRESULT: 0x80004005)".
QString withResult(const QString &text, HRESULT result);

/// The handle of the open session and the calls upon it, for all parts of the session.
class SimConnectLink : public QObject
{
    Q_OBJECT

public:
    explicit SimConnectLink(std::shared_ptr<SimConnectBinding> binding, QObject *parent = nullptr);
    ~SimConnectLink() override;

    /// Opens through the first library that lets itself be opened. Says why each one before it didn't.
    QStringList open();
    /// The library stays.
    void close();
    bool isOpen() const { return m_handle != nullptr; }
    /// Of the library that is held.
    QString libraryName() const { return m_binding->name(); }

    /// Calls one of SimConnectFunctions with the handle. Only while it is open, and only what has().
    template <auto function, class... Arguments>
    HRESULT call(Arguments... arguments) const
    {
        return (m_binding->functions().*function)(m_handle, arguments...);
    }
    /// False for a function that an older library lacks.
    template <auto function>
    bool has() const
    {
        return m_binding->functions().*function != nullptr;
    }
    /// One more field of a data definition. `unit` may be null.
    HRESULT addField(DWORD definition, const char *variable, const char *unit, DWORD type) const;
    /// The next message, good until the one after it; null when there is none.
    QByteArrayView nextMessage() const;

    /// Logs `text` with the result, and raises failed().
    void fail(const QString &text, HRESULT result);

signals:
    /// A call failed that the session's owner wants to know of.
    void failed(const QString &text);

private:
    std::shared_ptr<SimConnectBinding> m_binding;
    HANDLE m_handle = nullptr;
};

} // namespace tarvo::simulator::msfs
