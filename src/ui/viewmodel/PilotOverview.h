#pragma once

#include <QList>
#include <QObject>
#include <QString>

namespace tarvo::model {
struct NearbyAtc;
}

namespace tarvo::ui {

/// What the pilot flies and on which frequencies, as texts. "--" for what isn't known.
struct FlightSummary
{
    QString callsign = QStringLiteral("--");
    QString detail = {}; ///< type, or that he observes; the simulator
    QString com1 = QStringLiteral("--");
    QString com1Station = {}; ///< who is tuned there; empty: nobody that is known
    QString com2 = QStringLiteral("--");
    QString com2Station = {};
    QString transponder = QStringLiteral("--");
    QString online = QStringLiteral("--"); ///< how long he has been connected

    bool operator==(const FlightSummary &) const = default;
};

/// What is known of the flight.
struct FlightFacts
{
    QString callsign = {};
    QString typeCode = {};
    bool observer = false;
    QString simulator = {}; ///< its name
    bool live = false;      ///< the simulator is there
    QString com1 = {};      ///< "121.800"
    QString com2 = {};
    QString transponder = {};
    qint64 connectedForMs = -1; ///< negative while not connected
};

FlightSummary summaryOf(const FlightFacts &facts, const QList<model::NearbyAtc> &stations);

/// The first station on this frequency ("121.800"), and how many others are there: "ZBAA_TWR +2".
QString stationsOn(const QString &frequency, const QList<model::NearbyAtc> &stations);

/// "3 分钟", "1 小时 05 分". Negative spans count as none.
QString onlineText(qint64 ms);

/// The head of the overview page. In QML it is the context property "overviewBackend".
class PilotOverview : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString callsign READ callsign NOTIFY changed)
    Q_PROPERTY(QString detail READ detail NOTIFY changed)
    Q_PROPERTY(QString com1 READ com1 NOTIFY changed)
    Q_PROPERTY(QString com1Station READ com1Station NOTIFY changed)
    Q_PROPERTY(QString com2 READ com2 NOTIFY changed)
    Q_PROPERTY(QString com2Station READ com2Station NOTIFY changed)
    Q_PROPERTY(QString transponder READ transponder NOTIFY changed)
    Q_PROPERTY(QString online READ online NOTIFY changed)

public:
    using QObject::QObject;

    QString callsign() const { return m_shown.callsign; }
    QString detail() const { return m_shown.detail; }
    QString com1() const { return m_shown.com1; }
    QString com1Station() const { return m_shown.com1Station; }
    QString com2() const { return m_shown.com2; }
    QString com2Station() const { return m_shown.com2Station; }
    QString transponder() const { return m_shown.transponder; }
    QString online() const { return m_shown.online; }

    void show(const FlightSummary &summary);

signals:
    void changed();

private:
    FlightSummary m_shown;
};

} // namespace tarvo::ui
