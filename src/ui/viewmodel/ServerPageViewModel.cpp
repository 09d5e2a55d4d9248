#include "ui/viewmodel/ServerPageViewModel.h"

#include "common/Callsign.h"
#include "common/Clock.h"
#include "network/SwiftAircraftIcaoService.h"
#include "ui/viewmodel/ShownText.h"

#include <QDateTime>
#include <QRegularExpression>
#include <QStringList>

namespace tarvo::ui {

namespace {

constexpr int maximumSuggestions = 10;
constexpr qsizetype maximumEvents = 2000;
// Characters that a page has room for.
constexpr qsizetype longestTitle = 200;
constexpr qsizetype longestDetail = 500;
constexpr qsizetype longestTypeShown = 8;
constexpr qsizetype longestProfileText = 64;

constexpr Role<RecentEvent> eventRoles[] = {
    {"time", member<&RecentEvent::time>},
    {"title", member<&RecentEvent::title>},
    {"detail", member<&RecentEvent::detail>},
    {"tag", member<&RecentEvent::tag>},
};
constexpr Role<TypeCodeSuggestion> suggestionRoles[] = {
    {"designator", member<&TypeCodeSuggestion::designator>},
    {"title", member<&TypeCodeSuggestion::title>},
    {"detail", member<&TypeCodeSuggestion::detail>},
};

/// What the page says in one simulator mode. The first of each pair is for an observer.
struct ModeTexts
{
    QString platform;
    QString action[2];
    QString hint[2];
};

ModeTexts textsFor(model::SimulatorMode mode)
{
    if (mode == model::SimulatorMode::Msfs)
        return {QStringLiteral("Microsoft Flight Simulator"),
                {ServerPageViewModel::tr("以观察员连接 MSFS"), ServerPageViewModel::tr("连接 MSFS 网络")},
                {ServerPageViewModel::tr("观察员模式会自动规范呼号，并跳过机型代码要求。"),
                 ServerPageViewModel::tr("MSFS 飞行模式需要填写呼号和机型代码。")}};
    if (mode == model::SimulatorMode::XPlane)
        return {QStringLiteral("X-Plane"),
                {ServerPageViewModel::tr("以观察员连接 X-Plane"), ServerPageViewModel::tr("连接 X-Plane 网络")},
                {ServerPageViewModel::tr("适合监听和观察，同时保持 X-Plane 插件在线。"),
                 ServerPageViewModel::tr("连接前建议先确认插件版本、CSL 配置和无线电状态。")}};
    const QString action = ServerPageViewModel::tr("连接网络");
    const QString hint = ServerPageViewModel::tr("请先选择模拟器平台。");
    return {ServerPageViewModel::tr("未选择平台"), {action, action}, {hint, hint}};
}

TypeCodeSuggestion suggestionFor(const QString &designator, const network::SwiftAircraftIcaoRow &row)
{
    QStringList title{row.manufacturer, row.model};
    title.removeAll(QString());
    QStringList detail;
    if (!row.type.isEmpty())
        detail << row.type;
    if (!row.wakeTurbulenceCategory.isEmpty())
        detail << QStringLiteral("WTC %1").arg(row.wakeTurbulenceCategory);
    return {designator, title.join(u' '), detail.join(QStringLiteral(" · "))};
}

} // namespace

QString selcalHint(const QString &selcal)
{
    static const QRegularExpression fourLetters(QStringLiteral("^[A-S]{2}-?[A-S]{2}$"));
    const QString code = selcal.trimmed().toUpper();
    if (code.isEmpty() || fourLetters.match(code).hasMatch())
        return {};
    return ServerPageViewModel::tr("通常是 A 至 S 的四个字母，如 AB-CD。");
}

ServerPageViewModel::ServerPageViewModel(network::SwiftAircraftIcaoService &icao, QObject *parent,
                                         const common::Clock &clock)
    : QObject(parent), m_icao(icao), m_clock(clock), m_recentEvents(eventRoles), m_typeCodeSuggestions(suggestionRoles)
{
}

void ServerPageViewModel::setCallsign(const QString &callsign)
{
    if (callsign == m_callsign)
        return;
    m_callsign = callsign;
    formEdited();
}

void ServerPageViewModel::setTypeCode(const QString &typeCode)
{
    if (typeCode == m_typeCode)
        return;
    m_typeCode = typeCode;
    formEdited();
}

void ServerPageViewModel::setSelcal(const QString &selcal)
{
    if (selcal == m_selcal)
        return;
    m_selcal = selcal;
    formEdited();
}

void ServerPageViewModel::setObserverMode(bool observer)
{
    if (observer == m_observerMode)
        return;
    m_observerMode = observer;
    updateModeTexts();
    formEdited();
}

void ServerPageViewModel::setCoordinatedVoice(bool coordinated)
{
    if (coordinated == m_coordinatedVoice)
        return;
    m_coordinatedVoice = coordinated;
    formEdited();
}

void ServerPageViewModel::setServerState(bool connected, LinkState state)
{
    if (connected == m_serverConnected && state == m_serverState)
        return;
    m_serverConnected = connected;
    m_serverState = state;
    updateFormError();
    emit serverStateChanged();
    emit formChanged();
}

void ServerPageViewModel::setConnectedAsObserver(bool observer)
{
    if (observer == m_connectedAsObserver)
        return;
    m_connectedAsObserver = observer;
    emit serverStateChanged();
}

void ServerPageViewModel::setEndpoint(const QString &endpoint)
{
    if (endpoint == m_endpoint)
        return;
    m_endpoint = endpoint;
    emit endpointChanged();
}

void ServerPageViewModel::setVatsimProtocol(bool vatsim)
{
    const QString label = vatsim ? tr("VATSIM 协议") : tr("经典协议");
    if (label == m_protocolLabel)
        return;
    m_protocolLabel = label;
    emit protocolChanged();
}

void ServerPageViewModel::setCurrentMode(const QString &mode)
{
    if (mode == m_currentMode)
        return;
    m_currentMode = mode;
    updateModeTexts();
    formEdited();
}

void ServerPageViewModel::setProfile(const QString &realName, const QString &homeAirport)
{
    const QString shownName = shownText(realName, longestProfileText);
    if (shownName == m_realName && homeAirport == m_homeAirport)
        return;
    m_realName = shownName;
    m_homeAirport = homeAirport;
    emit profileChanged();
}

QString ServerPageViewModel::typeCodeHint() const
{
    const QString code = m_typeCode.trimmed().toUpper();
    const bool known = code.size() < 2 || !m_icao.isReady() || !m_icao.rowsFor(code).isEmpty();
    return known ? QString() : tr("机型库中没有 %1。").arg(code.left(longestTypeShown));
}

void ServerPageViewModel::setFailure(const QString &reason)
{
    const QString shown = shownText(reason, longestDetail);
    if (shown == m_failureText)
        return;
    m_failureText = shown;
    emit failureChanged();
}

QString ServerPageViewModel::buttonText() const
{
    if (m_serverConnected)
        return tr("断开连接");
    return buttonEnds() ? tr("取消连接") : m_connectActionLabel;
}

void ServerPageViewModel::appendLog(const QString &text)
{
    const QString line = m_serverLog.append(m_clock.wallMs(), text);
    emit logLineAdded(line);
    emit logChanged();
}

void ServerPageViewModel::addRecentEvent(const QString &title, const QString &detail, const QString &tag)
{
    const QString time = QDateTime::fromMSecsSinceEpoch(m_clock.wallMs()).toString(QStringLiteral("hh:mm:ss"));
    m_recentEvents.prepend({time, shownText(title, longestTitle), shownText(detail, longestDetail), tag},
                           maximumEvents);
    emit recentEventsChanged();
}

void ServerPageViewModel::requestConnect()
{
    if (m_canConnect)
        emit connectRequested(m_callsign, m_typeCode, m_selcal, m_observerMode);
}

void ServerPageViewModel::requestDisconnect()
{
    emit disconnectRequested();
}

void ServerPageViewModel::clearServerLog()
{
    if (!m_serverLog.isEmpty()) {
        m_serverLog.clear();
        emit logCleared();
        emit logChanged();
    }
    m_recentEvents.setRows({});
    addRecentEvent(tr("日志已清空"), tr("服务器日志和最近事件已重置。"), tr("系统"));
}

void ServerPageViewModel::refreshTypeCodeSuggestions(const QString &query)
{
    QList<TypeCodeSuggestion> suggestions;
    const QString text = query.trimmed();
    const QStringList designators = text.isEmpty() ? QStringList() : m_icao.suggest(text, maximumSuggestions);
    for (const QString &designator : designators)
        suggestions << suggestionFor(designator, m_icao.rowsFor(designator).value(0));
    // A pilot may know the aeroplane's name alone. As many as there may be in all, as some may stand there already.
    const QList<network::SwiftAircraftIcaoRow> named = m_icao.searchByName(text, maximumSuggestions);
    for (const network::SwiftAircraftIcaoRow &row : named)
        if (suggestions.size() < maximumSuggestions && !designators.contains(row.designator))
            suggestions << suggestionFor(row.designator, row);
    setSuggestions(suggestions);
}

void ServerPageViewModel::applyTypeCodeSuggestion(const QString &designator)
{
    m_typeCode = designator;
    setSuggestions({});
    formEdited();
}

void ServerPageViewModel::setSuggestions(const QList<TypeCodeSuggestion> &suggestions)
{
    if (m_typeCodeSuggestions.setRows(suggestions))
        emit typeCodeSuggestionsChanged();
}

void ServerPageViewModel::formEdited()
{
    updateFormError();
    emit formChanged();
}

void ServerPageViewModel::updateModeTexts()
{
    const ModeTexts texts = textsFor(model::modeFromText(m_currentMode));
    const int role = m_observerMode ? 0 : 1;
    m_platformLabel = texts.platform;
    m_connectActionLabel = texts.action[role];
    m_modeHintText = texts.hint[role];
    m_typeCodeRequired = !m_observerMode;
}

void ServerPageViewModel::updateFormError()
{
    const FormProblem problem = m_serverConnected ? FormProblem{} : firstFormProblem();
    m_formErrorText = problem.text;
    m_formErrorIsHint = problem.isHint;
    m_canConnect = m_formErrorText.isEmpty() && !m_serverConnected;
}

ServerPageViewModel::FormProblem ServerPageViewModel::firstFormProblem() const
{
    if (m_serverState == LinkState::Connecting)
        return {tr("正在连接服务器，请等待当前连接完成。"), true};
    if (m_serverState == LinkState::Disconnecting)
        return {tr("正在断开服务器，请稍后再连接。"), true};
    if (m_callsign.isEmpty())
        return {tr("请先填写呼号。"), true};
    if (!common::isCallsign(m_callsign.toUpper()))
        return {tr("呼号只能包含 A-Z、0-9 和下划线，长度 2-12 位，不能包含空格或中文。"), false};
    if (m_typeCodeRequired && m_typeCode.isEmpty())
        return {tr("飞行员模式需要填写机型代码。"), true};
    return {};
}

} // namespace tarvo::ui
