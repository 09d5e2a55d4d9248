#pragma once

#include "common/Clock.h"
#include "practice/control/Controls.h"
#include "practice/control/ScriptFile.h"

#include <QObject>
#include <QTimer>

#include <optional>

namespace tarvo::practice {

class FsdServer;

/// Plays a script in a practice network. Its verbs are those of Controls, "wait-for", which holds the script until
/// something was heard, and "not-heard", which ends it when something was. "{pilot}" in a value is the callsign of the
/// client that logged in first, and a verb without the argument "callsign" is for him.
class ScriptPlayer : public QObject
{
    Q_OBJECT

public:
    enum class State
    {
        Idle,     ///< nothing loaded
        Awaiting, ///< for the first login
        Playing,
        Finished,
        Failed ///< see error()
    };

    static constexpr qint64 patienceMs = 30'000; ///< how long a wait-for waits, unless it says otherwise

    /// The network must outlive it. The clock rules the time of the script.
    explicit ScriptPlayer(PracticeNetwork &network, const common::Clock &clock = common::systemClock(),
                          QObject *parent = nullptr);

    /// Loads a script and begins it: at once or at the first login, as it says. Returns false when it is malformed or
    /// names an unknown verb; see error(). A script under way ends.
    bool load(const QString &text, const QString &fileName = QStringLiteral("script"));
    /// load() with what a file holds.
    bool loadFile(const QString &path);

    State state() const { return m_state; }
    /// What went wrong, after the name of the file and the line's number; empty when nothing did.
    QString error() const { return m_error; }
    /// The callsign of the client that the script is played for; empty before the first login.
    QString pilot() const { return m_pilot; }
    /// True while a wait-for holds the script.
    bool isWaiting() const { return m_waiting; }
    /// Milliseconds of the script. They stand still in a wait-for, and are 0 before the start.
    qint64 timeMs() const;

    /// Does what is due by now. Called by a timer and whenever something was heard; a test with a clock of its own may
    /// call it.
    void step();

signals:
    /// An event was carried out, or a wait ended: the line as it is played.
    void played(const QString &text);
    void finished();
    /// The script ends here, because an event could not be carried out or nothing was heard in time.
    void failed(const QString &error);

private:
    /// Something that a wait-for may wait for.
    struct Heard
    {
        QString kind; ///< the argument's name that stands for it: "line", "plugin", "login" or "left"
        QString text;
        QString from; ///< the callsign, of a line
    };

    bool check(const ScriptFile &file, const QString &fileName);
    void follow(FsdServer &server);
    void hear(const Heard &heard);
    void begin();
    /// Plays the next event. False when it is a wait that goes on, or the script has failed.
    bool play(const ScriptEvent &event);
    bool waited(const ScriptEvent &event, const ControlArguments &arguments);
    /// The first thing heard that an event listens for.
    QList<Heard>::iterator find(const ScriptEvent &event, const ControlArguments &arguments);
    ControlArguments filled(const ScriptEvent &event) const;
    void fail(const ScriptEvent &event, const QString &reason);
    void finish(State state);

    PracticeNetwork &m_network;
    Controls m_controls;
    const common::Clock &m_clock;
    QTimer m_timer;
    ScriptFile m_file;
    QString m_fileName;
    QString m_error;
    QString m_pilot;
    State m_state = State::Idle;
    QList<Heard> m_heard; ///< since the waits before the last
    qsizetype m_next = 0; ///< the event to play next
    qint64 m_startMs = 0; ///< steady time at which the script's time was 0
    qint64 m_waitMs = 0;  ///< steady time since which a wait goes on
    bool m_waiting = false;
    bool m_lastListened = false; ///< the event before was about what is heard
};

} // namespace tarvo::practice
