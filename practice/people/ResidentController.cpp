#include "practice/people/ResidentController.h"

#include "fsd/pdu/ATCPosition.h"
#include "fsd/pdu/ClientQuery.h"
#include "fsd/pdu/FsdLine.h"
#include "fsd/pdu/RadioMessage.h"
#include "fsd/pdu/TextMessage.h"
#include "practice/people/Due.h"

#include <QRegularExpression>

#include <cmath>

namespace tarvo::practice {

using fsd::toLine;
using fsd::pdu::ClientQueryType;

namespace {
constexpr quint32 frequencyOffset = 100'000; ///< kHz; a position carries the frequency without it
constexpr qsizetype mostCodes = 200;         ///< SELCAL codes that he keeps in mind
constexpr int tellFrequencyMs = 5'000;

QString megahertz(quint32 frequency)
{
    return QString::number(frequency / 1000.0, 'f', 3);
}
} // namespace

ResidentController::ResidentController(const ControllerProfile &profile, FsdServer &server,
                                       const ResidentSettings &settings, const common::Clock &clock)
    : Resident(controller(profile.callsign, profile.cid, profile.realName), server, settings, clock),
      m_profile(profile),
      m_nextPositionMs(now())
{
    position = FsdPosition{profile.latitude, profile.longitude};
    visibilityRangeNm = profile.rangeNm;
    facility = profile.facility;
}

void ResidentController::step()
{
    Resident::step();
    callThoseWhoDidNotAnswer();
    if (isDue(m_nextPositionMs, settings().slowIntervalMs, now()))
        reportPosition();
}

void ResidentController::reportPosition()
{
    fsd::pdu::ATCPosition report;
    report.From = callsign();
    report.frequencies = {m_profile.frequency - frequencyOffset};
    report.facility = static_cast<fsd::pdu::NetworkFacility>(m_profile.facility);
    report.visibilityRange = m_profile.rangeNm;
    report.rating = fsd::pdu::NetworkRating::Observer;
    report.latitude = m_profile.latitude;
    report.longitude = m_profile.longitude;
    say(toLine(report));
}

void ResidentController::onQuery(const QString &from, ClientQueryType type, const QStringList &payload)
{
    if (type == ClientQueryType::Atis)
        giveAtis(from);
    else if (type == ClientQueryType::Com1Frequency)
        answer(from, type, {megahertz(m_profile.frequency)});
    else
        Resident::onQuery(from, type, payload);
}

void ResidentController::giveAtis(const QString &to)
{
    for (const QString &line : m_profile.atis)
        answer(to, ClientQueryType::Atis, {QStringLiteral("T"), line});
    if (!m_profile.logoff.isEmpty())
        answer(to, ClientQueryType::Atis, {QStringLiteral("Z"), m_profile.logoff});
    answer(to, ClientQueryType::Atis, {QStringLiteral("E"), QString::number(m_profile.atis.size() + 1)});
}

void ResidentController::onText(const QString &from, const QString &text)
{
    static const QRegularExpression selcal(QStringLiteral("^SELCAL(?:\\s+([A-Z]{2})-?([A-Z]{2}))?$"),
                                           QRegularExpression::CaseInsensitiveOption);
    if (!m_profile.talks)
        return;
    const QRegularExpressionMatch match = selcal.match(text.trimmed());
    if (!match.hasMatch()) {
        writeTo(from, QStringLiteral("%1, %2, I read you. Text me SELCAL and your code, and SELCAL again for a call.")
                          .arg(from, callsign()));
    } else if (match.hasCaptured(1)) {
        const QString code = (match.captured(1) + u'-' + match.captured(2)).toUpper();
        if (m_selcal.size() < mostCodes || m_selcal.contains(from))
            m_selcal.insert(from, code);
        writeTo(from, QStringLiteral("%1, your SELCAL is %2.").arg(from, code));
    } else if (!m_selcal.contains(from)) {
        writeTo(from, QStringLiteral("%1, tell me your code first, such as SELCAL AB-CD.").arg(from));
    } else {
        askFrequency(from);
    }
}

void ResidentController::askFrequency(const QString &pilot)
{
    m_toCall.insert(pilot, now() + tellFrequencyMs);
    say(toLine(fsd::pdu::ClientQuery(callsign(), pilot, ClientQueryType::Com1Frequency, {})));
}

void ResidentController::onAnswer(const QString &from, ClientQueryType type, const QStringList &payload)
{
    if (type != ClientQueryType::Com1Frequency || m_toCall.remove(from) == 0)
        return;
    const double frequency = payload.value(0).toDouble() * 1000;
    const bool isOne = frequency >= frequencyOffset && frequency < 2 * frequencyOffset;
    call(from, isOne ? static_cast<quint32>(std::lround(frequency)) : m_profile.frequency);
}

void ResidentController::callThoseWhoDidNotAnswer()
{
    const QHash<QString, qint64> waiting = m_toCall;
    for (auto it = waiting.cbegin(); it != waiting.cend(); ++it) {
        if (now() < it.value())
            continue;
        m_toCall.remove(it.key());
        call(it.key(), m_profile.frequency);
    }
}

void ResidentController::call(const QString &pilot, quint32 frequency)
{
    const QString code = m_selcal.value(pilot);
    if (!code.isEmpty())
        say(toLine(fsd::pdu::RadioMessage(callsign(), {frequency}, QStringLiteral("SELCAL %1").arg(code))));
}

void ResidentController::onRadio(const QString &from, const QList<quint32> &frequencies, const QString &)
{
    if (m_profile.talks && frequencies.contains(m_profile.frequency))
        sayLater(settings().answerMs,
                 toLine(fsd::pdu::RadioMessage(callsign(), {m_profile.frequency},
                                               QStringLiteral("%1, %2, roger.").arg(from, callsign()))));
}

void ResidentController::onPilotComes(const QString &pilot)
{
    if (m_profile.talks)
        sayLater(settings().greetingMs,
                 toLine(fsd::pdu::TextMessage(callsign(), pilot,
                                              QStringLiteral("Good day %1, welcome to Beijing. I am on %2.")
                                                  .arg(pilot, megahertz(m_profile.frequency)))));
}

void ResidentController::onPilotLeaves(const QString &pilot)
{
    m_selcal.remove(pilot);
    m_toCall.remove(pilot);
}

} // namespace tarvo::practice
