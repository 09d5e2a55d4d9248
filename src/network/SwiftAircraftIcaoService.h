#pragma once

#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>

namespace tarvo {
class AppConfig;
}

namespace tarvo::network {

/// One aircraft type of the database.
struct SwiftAircraftIcaoRow
{
    qint64 id = 0;
    QString designator; ///< ICAO type designator, such as "B738"
    QString manufacturer;
    QString model;
    QString type; ///< description such as "L2J"
    QString engine;
    int engineCount = 0;
    QString wakeTurbulenceCategory;
    int rank = 0;
    bool realWorld = false;
    bool legacy = false;
    bool military = false;
    QString created;
    QString lastUpdated;

    bool operator==(const SwiftAircraftIcaoRow &) const = default;
};

/// What normalize() made of a text.
struct SwiftAircraftIcaoResult
{
    QString text;       ///< as given
    QString canonical;  ///< the designator, or the trimmed upper-cased text when not found
    bool exact = false; ///< the trimmed upper-cased text was itself the designator
    bool found = false;

    bool operator==(const SwiftAircraftIcaoResult &) const = default;
};

/// Knows the ICAO aircraft type designators. Loaded once from an SQLite file; every look-up is answered from memory.
/// Main thread only. Never refuses a call: without data normalize() passes the text through.
class SwiftAircraftIcaoService : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool ready READ isReady NOTIFY readyChanged)

public:
    /// The program's own service, over AppConfig::instance().
    static SwiftAircraftIcaoService &instance();

    explicit SwiftAircraftIcaoService(AppConfig &config, QObject *parent = nullptr);
    ~SwiftAircraftIcaoService() override;

    /// Runs the load order once, synchronously; later calls do nothing.
    void ensureLoaded();
    bool isReady() const;

    /// The designator that a free text names.
    SwiftAircraftIcaoResult normalize(const QString &text) const;
    /// All rows of a designator; empty for an unknown one.
    QList<SwiftAircraftIcaoRow> rowsFor(const QString &designator) const;
    /// At most `limit` designators that fit what the pilot has typed so far, best first.
    QStringList suggest(const QString &query, int limit) const;
    /// Calls back with normalize()'s result, now when loaded, else after the load.
    void normalizeAsync(const QString &text, std::function<void(const SwiftAircraftIcaoResult &)> callback);

signals:
    void readyChanged();
};

} // namespace tarvo::network
