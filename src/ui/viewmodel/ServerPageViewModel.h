#pragma once

#include "common/Clock.h"
#include "model/SimulatorMode.h"
#include "ui/viewmodel/ConnectionStatus.h"
#include "ui/viewmodel/LineLog.h"
#include "ui/viewmodel/RowsModel.h"

#include <QObject>
#include <QString>
#include <QVariantList>

namespace tarvo::network {
class SwiftAircraftIcaoService;
}

namespace tarvo::ui {

/// Something that happened to the session.
struct RecentEvent
{
    QString time; ///< local, "hh:mm:ss"
    QString title;
    QString detail;
    QString tag;

    bool operator==(const RecentEvent &) const = default;
};

/// An aircraft type that the pilot may mean.
struct TypeCodeSuggestion
{
    QString designator;
    QString title;
    QString detail;

    bool operator==(const TypeCodeSuggestion &) const = default;
};

/// What looks mistyped in a SELCAL code; empty for a good one, or none.
QString selcalHint(const QString &selcal);

/// The connect form, the server's state and its log. Holds presentation state only: MainWindow feeds it and acts on its
/// requests. In QML it is the context property "serverBackend".
class ServerPageViewModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool serverConnected READ serverConnected NOTIFY serverStateChanged)
    Q_PROPERTY(QString serverStatusText READ serverStatusText NOTIFY serverStateChanged)
    Q_PROPERTY(QString endpoint READ endpoint NOTIFY endpointChanged)
    Q_PROPERTY(QString protocolLabel READ protocolLabel NOTIFY protocolChanged)
    Q_PROPERTY(QString currentMode READ currentMode NOTIFY formChanged)
    Q_PROPERTY(QString platformLabel READ platformLabel NOTIFY formChanged)
    Q_PROPERTY(QString connectActionLabel READ connectActionLabel NOTIFY formChanged)
    Q_PROPERTY(QString modeHintText READ modeHintText NOTIFY formChanged)
    Q_PROPERTY(QString callsign READ callsign WRITE setCallsign NOTIFY formChanged)
    Q_PROPERTY(QString typeCode READ typeCode WRITE setTypeCode NOTIFY formChanged)
    Q_PROPERTY(QString selcal READ selcal WRITE setSelcal NOTIFY formChanged)
    Q_PROPERTY(int longestTypeCode READ longestTypeCode CONSTANT)
    Q_PROPERTY(int longestSelcal READ longestSelcal CONSTANT)
    Q_PROPERTY(bool observerMode READ observerMode WRITE setObserverMode NOTIFY formChanged)
    Q_PROPERTY(bool coordinatedVoice READ coordinatedVoice WRITE setCoordinatedVoice NOTIFY formChanged)
    Q_PROPERTY(bool typeCodeRequired READ typeCodeRequired NOTIFY formChanged)
    Q_PROPERTY(bool connectedAsObserver READ connectedAsObserver NOTIFY serverStateChanged)
    Q_PROPERTY(bool canConnect READ canConnect NOTIFY formChanged)
    Q_PROPERTY(QString formErrorText READ formErrorText NOTIFY formChanged)
    Q_PROPERTY(QString typeCodeHint READ typeCodeHint NOTIFY formChanged)
    Q_PROPERTY(QString selcalHint READ selcalHint NOTIFY formChanged)
    Q_PROPERTY(bool formErrorIsHint READ formErrorIsHint NOTIFY formChanged)
    Q_PROPERTY(QString buttonText READ buttonText NOTIFY formChanged)
    Q_PROPERTY(bool buttonEnabled READ buttonEnabled NOTIFY formChanged)
    Q_PROPERTY(bool buttonEnds READ buttonEnds NOTIFY formChanged)
    Q_PROPERTY(QString failureText READ failureText NOTIFY failureChanged)
    Q_PROPERTY(QString serverTone READ serverTone NOTIFY serverStateChanged)
    Q_PROPERTY(QString realName READ realName NOTIFY profileChanged)
    Q_PROPERTY(QString homeAirport READ homeAirport NOTIFY profileChanged)
    Q_PROPERTY(QString serverLog READ serverLog NOTIFY logChanged)
    Q_PROPERTY(QVariantList recentEvents READ recentEvents NOTIFY recentEventsChanged)
    Q_PROPERTY(QAbstractListModel *recentEventRows READ recentEventRows CONSTANT)
    Q_PROPERTY(QVariantList typeCodeSuggestions READ typeCodeSuggestions NOTIFY typeCodeSuggestionsChanged)
    Q_PROPERTY(QAbstractListModel *typeCodeSuggestionRows READ typeCodeSuggestionRows CONSTANT)

public:
    explicit ServerPageViewModel(network::SwiftAircraftIcaoService &icao, QObject *parent = nullptr,
                                 const common::Clock &clock = common::systemClock());

    bool serverConnected() const { return m_serverConnected; }
    LinkState serverState() const { return m_serverState; }
    QString serverStatusText() const { return textOf(m_serverState); }
    QString endpoint() const { return m_endpoint; }
    QString protocolLabel() const { return m_protocolLabel; }
    QString currentMode() const { return m_currentMode; }
    QString platformLabel() const { return m_platformLabel; }
    QString connectActionLabel() const { return m_connectActionLabel; }
    QString modeHintText() const { return m_modeHintText; }
    QString callsign() const { return m_callsign; }
    QString typeCode() const { return m_typeCode; }
    /// Characters that the fields take. A type may be written out; a callsign has a rule of its own.
    static int longestTypeCode() { return 40; }
    static int longestSelcal() { return 12; }
    QString selcal() const { return m_selcal; }
    bool observerMode() const { return m_observerMode; }
    bool coordinatedVoice() const { return m_coordinatedVoice; }
    bool typeCodeRequired() const { return m_typeCodeRequired; }
    bool connectedAsObserver() const { return m_connectedAsObserver; }
    bool canConnect() const { return m_canConnect; }
    QString formErrorText() const { return m_formErrorText; }
    // What looks mistyped. Nothing is refused for it.
    QString typeCodeHint() const;
    QString selcalHint() const { return ui::selcalHint(m_selcal); }
    /// The form's problem is only that something is still to come: a field to fill, an end to wait for.
    bool formErrorIsHint() const { return m_formErrorIsHint; }
    // The one button connects, calls an attempt off, or disconnects.
    QString buttonText() const;
    bool buttonEnabled() const { return buttonEnds() || m_canConnect; }
    /// It ends something: requestDisconnect(), not requestConnect().
    bool buttonEnds() const { return m_serverConnected || m_serverState == LinkState::Connecting; }
    /// Why the last attempt failed or the connection ended; empty from the next attempt on.
    QString failureText() const { return m_failureText; }
    QString serverTone() const { return toneText(toneOf(m_serverState)); }
    QString realName() const { return m_realName; }
    QString homeAirport() const { return m_homeAirport; }
    QString serverLog() const { return m_serverLog.text(); }
    /// Newest first; maps with "time", "title", "detail" and "tag". The oldest rows go beyond 2,000.
    QVariantList recentEvents() const { return m_recentEvents.toList(); }
    QAbstractListModel *recentEventRows() { return &m_recentEvents; }
    /// Maps with "designator", "title" and "detail".
    QVariantList typeCodeSuggestions() const { return m_typeCodeSuggestions.toList(); }
    QAbstractListModel *typeCodeSuggestionRows() { return &m_typeCodeSuggestions; }

    void setCallsign(const QString &callsign);
    void setTypeCode(const QString &typeCode);
    void setSelcal(const QString &selcal);
    void setObserverMode(bool observer);
    void setCoordinatedVoice(bool coordinated);

    // The program's side. Each emits only on a change.
    void setServerState(bool connected, LinkState state);
    void setConnectedAsObserver(bool observer);
    /// "host:port" while connected, else empty.
    void setEndpoint(const QString &endpoint);
    void setVatsimProtocol(bool vatsim);
    void setCurrentMode(const QString &mode);
    void setProfile(const QString &realName, const QString &homeAirport);
    void setFailure(const QString &reason);
    /// Adds a line with the local time in front. The oldest lines go beyond 2,000.
    void appendLog(const QString &text);
    /// Each text becomes one line, cut to what the list shows of it.
    void addRecentEvent(const QString &title, const QString &detail, const QString &tag);

    Q_INVOKABLE void requestConnect();
    Q_INVOKABLE void requestDisconnect();
    Q_INVOKABLE void clearServerLog();
    Q_INVOKABLE void refreshTypeCodeSuggestions(const QString &query);
    Q_INVOKABLE void applyTypeCodeSuggestion(const QString &designator);

signals:
    void serverStateChanged();
    void endpointChanged();
    void protocolChanged();
    void formChanged();
    void profileChanged();
    void logChanged();
    /// Goes before logChanged, so that a page can add one line instead of laying out the whole log again.
    void logLineAdded(QString line);
    void logCleared();
    void recentEventsChanged();
    void typeCodeSuggestionsChanged();
    void connectRequested(QString callsign, QString typeCode, QString selcal, bool observer);
    void disconnectRequested();
    void failureChanged();

private:
    void formEdited();
    void updateModeTexts();
    void updateFormError();
    struct FormProblem
    {
        QString text;
        bool isHint = false;
    };
    /// The first rule of the form that is broken; empty when there is none.
    FormProblem firstFormProblem() const;
    void setSuggestions(const QList<TypeCodeSuggestion> &suggestions);

    network::SwiftAircraftIcaoService &m_icao;
    const common::Clock &m_clock;
    bool m_serverConnected = false;
    LinkState m_serverState = LinkState::Absent;
    QString m_endpoint;
    QString m_protocolLabel = tr("经典协议");
    QString m_currentMode = model::modeText(model::SimulatorMode::None);
    QString m_platformLabel = tr("未选择平台");
    QString m_connectActionLabel = tr("连接网络");
    /// Differs by one character from the text that the mode table gives for the same situation: kept on purpose.
    QString m_modeHintText = tr("请先选择模拟平台。");
    QString m_callsign;
    QString m_typeCode;
    QString m_selcal;
    bool m_observerMode = false;
    bool m_coordinatedVoice = false;
    bool m_typeCodeRequired = true;
    bool m_connectedAsObserver = false;
    bool m_canConnect = false;
    QString m_formErrorText;
    bool m_formErrorIsHint = false;
    QString m_failureText;
    QString m_realName;
    QString m_homeAirport;
    LineLog m_serverLog;
    RowsModel<RecentEvent> m_recentEvents;
    RowsModel<TypeCodeSuggestion> m_typeCodeSuggestions;
};

} // namespace tarvo::ui
