#include "voice/engine/DeviceWishes.h"

#include "voice/engine/Mailbox.h"
#include "voice/engine/SoundThread.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <optional>
#include <utility>

namespace tarvo::voice {

namespace {

/// Between two looks whether all streams still run; a sound system doesn't always say that one has ended.
constexpr std::chrono::seconds watchInterval{5};

DeviceWishes::Roles without(const DeviceWishes::Roles &roles, const DeviceWishes::Roles &others)
{
    DeviceWishes::Roles rest;
    std::copy_if(roles.begin(), roles.end(), std::back_inserter(rest),
                 [&others](StreamRole role) { return std::find(others.begin(), others.end(), role) == others.end(); });
    return rest;
}

DeviceWishes::Roles within(const DeviceWishes::Roles &roles, const DeviceWishes::Roles &others)
{
    return without(roles, without(roles, others));
}

} // namespace

DeviceWishes::DeviceWishes(std::shared_ptr<SoundThread> sound, SoundAccess access, QObject *parent)
    : QObject(parent),
      m_sound(std::move(sound)),
      m_mailbox(std::make_shared<Mailbox>(this)),
      m_lease(m_sound),
      m_streams(std::make_shared<DeviceStreams>(std::move(access),
                                                [this, mailbox = m_mailbox] { mailbox->send([this] { work(); }); }))
{
    m_next.setObjectName(QStringLiteral("next"));
    m_next.setSingleShot(true);
    connect(&m_next, &QTimer::timeout, this, &DeviceWishes::work);
}

DeviceWishes::~DeviceWishes()
{
    m_mailbox->close();
    m_sound->post([streams = m_streams] { streams->fulfil({}, Opening::None); }); // before the lease ends
}

void DeviceWishes::stopWaiting()
{
    m_isWaiting = false;
    change();
}

void DeviceWishes::setDevice(StreamRole role, int device)
{
    at(role).device = device;
    change();
}

void DeviceWishes::start(const Roles &roles, std::function<void()> whenTried)
{
    for (const StreamRole role : roles)
        at(role).isOpen = true;
    if (whenTried)
        m_round.whenTried.push_back(std::move(whenTried));
    m_round.isAnew = m_round.isAnew || m_isAnyMissed;
    change();
}

void DeviceWishes::stop(const Roles &roles)
{
    for (const StreamRole role : roles)
        at(role).isOpen = false;
    change();
}

/// What is wanted in one turn of the event loop is done at once.
void DeviceWishes::change()
{
    m_retries.reset();
    ++m_round.change;
    m_round.opening = Opening::Wanted;
    m_next.start(0);
}

/// One task at a time: what is wanted while the sound system hangs waits here, and not on the sound thread.
void DeviceWishes::work()
{
    m_isBehind = m_isWorking;
    if (m_isWorking || m_isWaiting)
        return;
    m_next.stop();
    m_isWorking = m_sound->post([this, mailbox = m_mailbox, streams = m_streams, round = m_round] {
        const StreamsReport report = streams->fulfil(round.wishes, round.isAnew ? Opening::Anew : round.opening);
        mailbox->send([=, this] { onWorked(report, round); });
    });
    if (m_isWorking)
        forgetTold();
    else // everything is still to be done
        m_next.start(m_retries.next(false).value_or(watchInterval));
}

void DeviceWishes::forgetTold()
{
    m_round.opening = Opening::None;
    m_round.isAnew = false;
    m_round.whenTried.clear();
    for (StreamWish &wish : m_round.wishes)
        wish.device.reset();
}

void DeviceWishes::onWorked(const StreamsReport &report, const Round &round)
{
    m_isWorking = false;
    goOn(report, round.opening);
    tellEnded(report);
    if (report.haveDevicesChanged) { // the next round tells what has become of it all
        Calls &next = m_round.whenTried;
        next.insert(next.begin(), round.whenTried.begin(), round.whenTried.end());
        emit devicesChanged();
        return;
    }
    tellOutcome(report, round.change);
    for (const std::function<void()> &call : round.whenTried)
        call();
}

void DeviceWishes::goOn(const StreamsReport &report, Opening opening)
{
    if (std::exchange(m_isBehind, false))
        m_next.start(0);
    if (m_next.isActive())
        return;
    const bool isWell = report.missing.empty();
    if (isWell && opening == Opening::None)
        m_retries.reset(); // since the last look
    const std::optional<std::chrono::milliseconds> retry = isWell ? std::nullopt : m_retries.next(report.anyRuns);
    m_round.opening = retry ? Opening::Searched : Opening::None;
    if (retry || report.anyRuns)
        m_next.start(retry.value_or(watchInterval));
}

void DeviceWishes::tellEnded(const StreamsReport &report)
{
    const Roles ended = without(wanted(report.ended), m_missing);
    m_missing.insert(m_missing.end(), ended.begin(), ended.end());
    tell(DeviceEvent::Ended, ended);
}

/// What is new, and still of interest.
void DeviceWishes::tellOutcome(const StreamsReport &report, int change)
{
    const bool isChanged = std::exchange(m_toldChange, change) != change;
    const Roles missing = wanted(report.missing);
    const Roles known = std::exchange(m_missing, missing);
    const Roles told = isChanged ? report.ended : known;
    const Roles back = wanted(without(known, missing));
    tell(DeviceEvent::Failed, without(missing, told));
    tell(DeviceEvent::Back, without(back, report.replaced));
    tell(DeviceEvent::Replaced, within(back, report.replaced));
}

void DeviceWishes::tell(DeviceEvent event, const Roles &roles)
{
    if (!roles.empty())
        emit happened(event, roles);
}

DeviceWishes::Roles DeviceWishes::wanted(const Roles &roles)
{
    Roles result;
    std::copy_if(roles.begin(), roles.end(), std::back_inserter(result),
                 [this](StreamRole role) { return at(role).isOpen; });
    return result;
}

} // namespace tarvo::voice
