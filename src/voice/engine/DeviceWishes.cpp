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

} // namespace

DeviceWishes::DeviceWishes(std::shared_ptr<SoundThread> sound, OpenSound open, QObject *parent)
    : QObject(parent),
      m_sound(std::move(sound)),
      m_mailbox(std::make_shared<Mailbox>(this)),
      m_lease(m_sound),
      m_streams(std::make_shared<DeviceStreams>(std::move(open),
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
        m_whenTried.push_back(std::move(whenTried));
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
    m_tellsAgain = true;
    m_opening = Opening::Wanted;
    m_next.start(0);
}

/// One task at a time: what is wanted while the sound system hangs waits here, and not on the sound thread.
void DeviceWishes::work()
{
    m_isBehind = m_isWorking;
    if (m_isWorking || m_isWaiting)
        return;
    m_next.stop();
    m_isWorking = m_sound->post([this, mailbox = m_mailbox, streams = m_streams, wishes = m_wishes, opening = m_opening,
                                 whenTried = m_whenTried] {
        const StreamsReport report = streams->fulfil(wishes, opening);
        mailbox->send([=, this] { onWorked(report, opening, whenTried); });
    });
    if (m_isWorking)
        forgetTold();
    else // everything is still to be done
        m_next.start(m_retries.next(false).value_or(watchInterval));
}

void DeviceWishes::forgetTold()
{
    m_opening = Opening::None;
    m_whenTried.clear();
    for (StreamWish &wish : m_wishes)
        wish.device.reset();
}

void DeviceWishes::onWorked(const StreamsReport &report, Opening opening, const Calls &whenTried)
{
    m_isWorking = false;
    goOn(report, opening);
    tell(report);
    if (report.haveDevicesChanged)
        emit devicesChanged();
    for (const std::function<void()> &call : whenTried)
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
    m_opening = retry ? Opening::Again : Opening::None;
    if (retry || report.anyRuns)
        m_next.start(retry.value_or(watchInterval));
}

/// What is new, and still of interest.
void DeviceWishes::tell(const StreamsReport &report)
{
    const Roles missing = wanted(report.missing);
    Roles known = std::exchange(m_missing, missing);
    const Roles ended = without(wanted(report.ended), known);
    known.insert(known.end(), ended.begin(), ended.end());
    const Roles told = std::exchange(m_tellsAgain, false) ? ended : known;
    const std::pair<DeviceEvent, Roles> events[] = {{DeviceEvent::Ended, ended},
                                                    {DeviceEvent::Failed, without(missing, told)},
                                                    {DeviceEvent::Back, wanted(without(known, missing))}};
    for (const auto &[event, roles] : events) {
        if (!roles.empty())
            emit happened(event, roles);
    }
}

DeviceWishes::Roles DeviceWishes::wanted(const Roles &roles)
{
    Roles result;
    std::copy_if(roles.begin(), roles.end(), std::back_inserter(result),
                 [this](StreamRole role) { return at(role).isOpen; });
    return result;
}

} // namespace tarvo::voice
