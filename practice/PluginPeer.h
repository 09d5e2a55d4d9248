#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <QString>
#include <QVariantList>

#include <memory>

namespace tarvo::practice {

/// The plugin's end of the message socket (nng pair version 1, MessagePack). Answers VER, CSL, ADD and DEL by itself.
class PluginPeer : public QObject
{
    Q_OBJECT

public:
    explicit PluginPeer(QObject *parent = nullptr);
    ~PluginPeer() override;

    /// Listens at an nng address. Returns false when it can't be had; see errorString().
    bool listen(const QString &url);
    void close();
    QString url() const;
    QString errorString() const;

    /// What VER is answered with; -1 answers with no argument. 65536 by default.
    void setVersion(qint64 version);
    /// What CSL is answered with; true by default.
    void setCslValid(bool valid);
    /// Leaves everything unanswered while set.
    void setMute(bool mute);

    // What the plugin says of its own accord. False when nobody is there to take it.
    bool sendRadioMessage(const QString &message);                      ///< RDIOSENT
    bool sendPrivateMessage(const QString &to, const QString &message); ///< PRIVSENT
    bool requestStation(const QString &callsign);                       ///< REQSTATION
    bool forceDisconnect(const QString &reason);                        ///< FORCEDISC
    bool shutDown();                                                    ///< SHUTDOWN
    /// Any message; arguments are strings, numbers, booleans, lists of them, or invalid for nil.
    bool send(const QString &name, const QVariantList &arguments);
    /// Any bytes.
    bool sendRaw(const QByteArray &bytes);

signals:
    /// A message of the client; nil arguments are invalid variants.
    void messageReceived(const QString &name, const QVariantList &arguments);
    void messageSent(const QString &name, const QVariantList &arguments);
    /// Bytes that are no message.
    void malformed(const QString &reason);

private:
    struct Socket;

    void receiveAll();
    void receive(const QByteArray &bytes);
    void answer(const QString &name, const QVariantList &arguments);

    std::unique_ptr<Socket> m_socket;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QString m_url;
    QString m_error;
    qint64 m_version = 65536;
    bool m_cslValid = true;
    bool m_mute = false;
};

} // namespace tarvo::practice
