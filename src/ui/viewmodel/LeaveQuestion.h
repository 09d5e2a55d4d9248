#pragma once

#include <QObject>
#include <QString>

namespace tarvo::ui {

/// What would end a connection to the network.
enum class Leaving
{
    Disconnect,
    LogOut,
    Close
};

/// The words of the question before it.
struct LeaveTexts
{
    QString title;
    QString text;
    QString action; ///< the button that does it
};

LeaveTexts leaveTexts(Leaving what, const QString &callsign);

/// Asks before a connection is ended. In QML it is the context property "leaveBackend".
class LeaveQuestion : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool open READ isOpen NOTIFY openChanged)
    Q_PROPERTY(QString title READ title NOTIFY openChanged)
    Q_PROPERTY(QString text READ text NOTIFY openChanged)
    Q_PROPERTY(QString actionText READ actionText NOTIFY openChanged)

public:
    using QObject::QObject;

    bool isOpen() const { return m_open; }
    QString title() const { return m_texts.title; }
    QString text() const { return m_texts.text; }
    QString actionText() const { return m_texts.action; }

    /// Under what callsign the pilot is on the network; empty while he isn't. Without a connection an open question has
    /// become pointless and goes.
    void setOnline(const QString &callsign);
    bool mustAsk() const { return !m_callsign.isEmpty() && !m_neverAgain; }
    /// Holds until the program's end, which is later than this object's: whoever makes the next one hands it on.
    bool isSilenced() const { return m_neverAgain; }
    void setSilenced(bool silenced) { m_neverAgain = silenced; }

    /// Each asks, or does it at once when there is nothing to ask.
    Q_INVOKABLE void disconnectFromNetwork() { ask(Leaving::Disconnect); }
    Q_INVOKABLE void logOut() { ask(Leaving::LogOut); }
    void close() { ask(Leaving::Close); }

    /// `neverAgain`: see isSilenced().
    Q_INVOKABLE void accept(bool neverAgain);
    Q_INVOKABLE void reject();

signals:
    void openChanged();
    void disconnectConfirmed();
    void logOutConfirmed();
    void closeConfirmed();

private:
    void ask(Leaving what);
    void confirm(Leaving what);
    void shut();

    QString m_callsign;
    LeaveTexts m_texts;
    Leaving m_what = Leaving::Disconnect;
    bool m_open = false;
    bool m_neverAgain = false;
};

} // namespace tarvo::ui
