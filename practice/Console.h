#pragma once

#include <QMap>
#include <QObject>
#include <QTextStream>
#include <QTimer>

namespace tarvo::practice {

class FsdServer;
class PracticeNetwork;
class ReplayServer;
class ScriptPlayer;
class VoicePeople;
class VoiceServer;
class XPlaneStandIn;

/// What the practice network does, one line each, with the secrets masked and nothing that a terminal would obey.
class Console : public QObject
{
    Q_OBJECT

public:
    /// Writes to `out`, which must outlive it. Every line is flushed.
    explicit Console(QTextStream &out, QObject *parent = nullptr);

    /// Says what is served and where.
    void announce(PracticeNetwork &network);
    /// From now on says what happens.
    void follow(PracticeNetwork &network);
    void follow(const ScriptPlayer &player);
    void say(const QString &area, const QString &text);

private:
    void followReplay(const ReplayServer &server);
    void followFsd(const QString &area, FsdServer &server);
    void followVoice(VoiceServer &server);
    void followVoices(VoicePeople &people);
    void followXPlane(XPlaneStandIn &xplane);
    void countSubscription(const QString &client, int ratePerSecond);
    void saySubscriptions();

    QTextStream &m_out;
    QMap<QString, int> m_subscriptions; ///< how often who did what in the burst that is under way
    QTimer m_burst;
};

} // namespace tarvo::practice
