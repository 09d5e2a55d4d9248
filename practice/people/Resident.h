#pragma once

#include "common/Clock.h"
#include "practice/fsd/FsdResident.h"
#include "practice/people/PeopleSettings.h"

#include "fsd/pdu/ClientQueryType.h"

#include <QList>
#include <QStringList>

namespace tarvo::practice {

class FsdServer;

/// A resident that behaves like a person: it answers what every client answers, and takes its time. What it is
/// given must outlive it.
class Resident : public FsdResident
{
public:
    Resident(FsdIdentity who, FsdServer &server, const ResidentSettings &settings, const common::Clock &clock);

    void hear(const QString &line) final;
    /// Does what is due by now.
    virtual void step();

protected:
    /// A question for this client: type and payload. By default it answers capabilities and real name.
    virtual void onQuery(const QString &from, fsd::pdu::ClientQueryType type, const QStringList &payload);
    virtual void onAnswer(const QString &from, fsd::pdu::ClientQueryType type, const QStringList &payload);
    virtual void onPlaneInfoRequest(const QString &from);
    /// A private text.
    virtual void onText(const QString &from, const QString &text);
    /// A text on frequencies, in kHz.
    virtual void onRadio(const QString &from, const QList<quint32> &frequencies, const QString &text);
    virtual void onWallop(const QString &from, const QString &text);
    virtual void onPilotComes(const QString &callsign);
    virtual void onPilotLeaves(const QString &callsign);
    /// The server starts or ends its wish for fast positions.
    virtual void onFastAsked();

    void say(const QString &line);
    /// Says the line after so long. A person who has too much to say already says no more.
    void sayLater(int delayMs, const QString &line);
    void answer(const QString &to, fsd::pdu::ClientQueryType type, const QStringList &payload);
    /// Private text, after the time that a person takes.
    void writeTo(const QString &to, const QString &text);

    qint64 now() const { return m_clock.steadyMs(); }
    const ResidentSettings &settings() const { return m_settings; }

private:
    struct Later
    {
        qint64 dueMs;
        QString line;
    };

    FsdServer &m_server;
    const ResidentSettings &m_settings;
    const common::Clock &m_clock;
    QList<Later> m_later;
};

} // namespace tarvo::practice
