#include "practice/control/ScriptPlayer.h"

#include "practice/PracticeNetwork.h"

#include <QFile>

#include <algorithm>

namespace tarvo::practice {

namespace {
constexpr int tickMs = 20;
constexpr qsizetype mostHeard = 10'000; // older things are forgotten
const QLatin1StringView waitFor("wait-for");
const QLatin1StringView notHeard("not-heard");
const QLatin1StringView heardKinds[] = {QLatin1StringView("line"), QLatin1StringView("plugin"),
                                        QLatin1StringView("login"), QLatin1StringView("left")};

QString place(const QString &fileName, const ScriptEvent &event, const QString &text)
{
    return QStringLiteral("%1:%2: %3: %4").arg(fileName).arg(event.line).arg(event.verb, text);
}

/// How long a wait is to wait; nothing when that is no number.
std::optional<qint64> patience(const ScriptEvent &event)
{
    const QString text = event.arguments.value(QStringLiteral("timeout"));
    if (text.isNull())
        return ScriptPlayer::patienceMs;
    bool ok = false;
    const double seconds = text.toDouble(&ok);
    if (!ok || !(seconds > 0 && seconds <= ScriptFile::longestSeconds))
        return std::nullopt;
    return static_cast<qint64>(seconds * 1000);
}

/// Verbs about what is heard; the others do something.
bool listens(const ScriptEvent &event)
{
    return event.verb == waitFor || event.verb == notHeard;
}

/// True when the whole text must be as it is written, false when its beginning must; nothing for anything but 1 and 0.
std::optional<bool> isExact(const ScriptEvent &event)
{
    const QString value = event.arguments.value(QStringLiteral("exactly"), QStringLiteral("0"));
    const bool known = value == QLatin1StringView("1") || value == QLatin1StringView("0");
    return known ? std::optional(value == QLatin1StringView("1")) : std::nullopt;
}

bool knowsArgument(const ScriptEvent &event, const QString &name)
{
    return (name == QLatin1StringView("timeout") && event.verb == waitFor) || name == QLatin1StringView("from") ||
           name == QLatin1StringView("exactly") ||
           std::find(std::begin(heardKinds), std::end(heardKinds), name) != std::end(heardKinds);
}

/// What is wrong with an event that listens; empty when nothing is.
QString flaw(const ScriptEvent &event)
{
    if (!patience(event))
        return QStringLiteral("timeout is no number of seconds");
    if (!isExact(event))
        return QStringLiteral("exactly is 1 or 0");
    const auto kinds = std::count_if(std::begin(heardKinds), std::end(heardKinds),
                                     [&](QLatin1StringView kind) { return event.arguments.contains(kind); });
    if (kinds != 1)
        return QStringLiteral("listens for one of line, plugin, login and left");
    for (const QString &name : event.arguments.keys()) {
        if (!knowsArgument(event, name))
            return QStringLiteral("doesn't know %1").arg(name);
    }
    return {};
}
} // namespace

ScriptPlayer::ScriptPlayer(PracticeNetwork &network, const common::Clock &clock, QObject *parent)
    : QObject(parent), m_network(network), m_controls(network), m_clock(clock)
{
    m_timer.setInterval(tickMs);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &ScriptPlayer::step);
    follow(network.fsd());
    if (network.secondFsd())
        follow(*network.secondFsd());
    connect(&network.xplane().plugin(), &PluginStandIn::messageReceived, this,
            [this](const QString &name, const QVariantList &arguments) {
                hear({QStringLiteral("plugin"), PluginMessage{name, arguments}.toText(), {}});
            });
}

void ScriptPlayer::follow(FsdServer &server)
{
    connect(&server, &FsdServer::lineReceived, this, [this](const QString &client, const QString &line) {
        hear({QStringLiteral("line"), line, client});
    });
    connect(&server, &FsdServer::clientLoggedIn, this, [this](const QString &callsign) {
        if (m_pilot.isEmpty())
            m_pilot = callsign;
        hear({QStringLiteral("login"), callsign, callsign});
    });
    connect(&server, &FsdServer::clientLeft, this, [this](const QString &client) {
        hear({QStringLiteral("left"), client, client});
    });
}

bool ScriptPlayer::loadFile(const QString &path)
{
    QFile file(path);
    if (file.open(QIODevice::ReadOnly))
        return load(QString::fromUtf8(file.readAll()), path);
    finish(State::Failed);
    m_error = QStringLiteral("%1: %2").arg(path, file.errorString());
    return false;
}

bool ScriptPlayer::load(const QString &text, const QString &fileName)
{
    finish(State::Failed);
    m_error.clear();
    const std::optional<ScriptFile> file = ScriptFile::parse(text, fileName, &m_error);
    if (!file || !check(*file, fileName))
        return false;
    m_file = *file;
    m_fileName = fileName;
    m_state = State::Awaiting;
    m_next = 0;
    m_pilot = m_network.fsd().callsigns().value(0);
    if (m_file.start == ScriptFile::Start::Now || !m_pilot.isEmpty())
        begin();
    return true;
}

bool ScriptPlayer::check(const ScriptFile &file, const QString &fileName)
{
    for (const ScriptEvent &event : file.events) {
        QString wrong;
        if (listens(event))
            wrong = flaw(event);
        else if (!m_controls.knows(event.verb))
            wrong = QStringLiteral("there is no such verb");
        if (!wrong.isEmpty()) {
            m_error = place(fileName, event, wrong);
            return false;
        }
    }
    return true;
}

void ScriptPlayer::begin()
{
    m_state = State::Playing;
    m_startMs = m_clock.steadyMs();
    m_timer.start();
    QMetaObject::invokeMethod(this, &ScriptPlayer::step, Qt::QueuedConnection);
}

qint64 ScriptPlayer::timeMs() const
{
    if (m_waiting)
        return m_file.events.at(m_next).atMs;
    return m_state == State::Playing ? m_clock.steadyMs() - m_startMs : 0;
}

void ScriptPlayer::hear(const Heard &heard)
{
    if (m_state == State::Awaiting && heard.kind == QLatin1StringView("login"))
        begin();
    if (m_state != State::Playing)
        return;
    if (m_heard.size() >= mostHeard)
        m_heard.removeFirst();
    m_heard.append(heard);
    if (m_waiting) // queued: the network is in the middle of what it was told
        QMetaObject::invokeMethod(this, &ScriptPlayer::step, Qt::QueuedConnection);
}

void ScriptPlayer::step()
{
    while (m_state == State::Playing && m_next < m_file.events.size() && m_file.events.at(m_next).atMs <= timeMs()) {
        const ScriptEvent event = m_file.events.at(m_next); // a copy: what it does may load another script
        if (!play(event))
            return;
    }
    if (m_state == State::Playing && m_next >= m_file.events.size()) {
        finish(State::Finished);
        emit finished();
    }
}

bool ScriptPlayer::play(const ScriptEvent &event)
{
    const ControlArguments arguments = filled(event);
    if (event.verb == waitFor && !waited(event, arguments))
        return false;
    if (event.verb == notHeard && find(event, arguments) != m_heard.end()) {
        fail(event, QStringLiteral("it was heard"));
        return false;
    }
    if (!listens(event) && m_lastListened)
        m_heard.clear();
    m_lastListened = listens(event);
    ++m_next;
    if (!listens(event) && !m_controls.perform(event.verb, arguments)) {
        fail(event, QStringLiteral("there is nothing to do it to, or an argument is no good"));
        return false;
    }
    QStringList words{event.verb};
    for (auto it = arguments.begin(); it != arguments.end(); ++it)
        words.append(QStringLiteral("%1=%2").arg(it.key(), it.value()));
    emit played(words.join(u' '));
    return true;
}

bool ScriptPlayer::waited(const ScriptEvent &event, const ControlArguments &arguments)
{
    const qint64 now = m_clock.steadyMs();
    if (!m_waiting)
        m_waitMs = now;
    m_waiting = true;
    const auto found = find(event, arguments);
    if (found == m_heard.end()) {
        if (now - m_waitMs >= patience(event).value_or(patienceMs))
            fail(event, QStringLiteral("nothing was heard within %1 s").arg((now - m_waitMs) / 1000));
        return false;
    }
    m_heard.erase(found);
    m_waiting = false;
    m_startMs = now - event.atMs;
    return true;
}

QList<ScriptPlayer::Heard>::iterator ScriptPlayer::find(const ScriptEvent &event, const ControlArguments &arguments)
{
    const QString from = arguments.value(QStringLiteral("from"));
    const bool exactly = isExact(event).value_or(false);
    return std::find_if(m_heard.begin(), m_heard.end(), [&](const Heard &heard) {
        const QString wanted = arguments.value(heard.kind);
        return arguments.contains(heard.kind) && (exactly ? heard.text == wanted : heard.text.startsWith(wanted)) &&
               (from.isEmpty() || heard.from == from);
    });
}

ControlArguments ScriptPlayer::filled(const ScriptEvent &event) const
{
    ControlArguments arguments = event.arguments;
    for (QString &value : arguments)
        value.replace(QLatin1StringView("{pilot}"), m_pilot);
    if (!listens(event) && !arguments.contains(QStringLiteral("callsign")))
        arguments.insert(QStringLiteral("callsign"), m_pilot);
    return arguments;
}

void ScriptPlayer::fail(const ScriptEvent &event, const QString &reason)
{
    m_error = place(m_fileName, event, reason);
    finish(State::Failed);
    emit failed(m_error);
}

void ScriptPlayer::finish(State state)
{
    m_state = state;
    m_waiting = false;
    m_lastListened = false;
    m_heard.clear();
    m_timer.stop();
}

} // namespace tarvo::practice
