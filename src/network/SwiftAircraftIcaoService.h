#pragma once

#include "common/Clock.h"
#include "network/IcaoDatabase.h"
#include "network/IcaoSnapshot.h"
#include "network/SwiftAircraftIcaoRow.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>

namespace tarvo {
class AppConfig;
}

namespace tarvo::network {

/// Knows the ICAO aircraft type designators. Loaded once from an SQLite file; every look-up is answered from memory.
/// Main thread only. Never refuses a call: without data normalize() passes the text through.
class SwiftAircraftIcaoService : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool ready READ isReady NOTIFY readyChanged)

public:
    /// The program's own service, over AppConfig::instance().
    static SwiftAircraftIcaoService &instance();

    explicit SwiftAircraftIcaoService(AppConfig &config, QObject *parent = nullptr,
                                      const common::Clock &clock = common::systemClock());
    ~SwiftAircraftIcaoService() override;

    /// Runs the load order once, synchronously; later calls do nothing.
    void ensureLoaded();
    bool isReady() const { return m_ready; }

    /// The designator that a free text names.
    SwiftAircraftIcaoResult normalize(const QString &text) const;
    /// All rows of a designator; empty for an unknown one.
    QList<SwiftAircraftIcaoRow> rowsFor(const QString &designator) const;
    /// At most `limit` designators that fit what the pilot has typed so far, best first.
    QStringList suggest(const QString &query, int limit) const;
    /// At most `limit` types whose maker and model have every word that the pilot has typed, each designator once.
    QList<SwiftAircraftIcaoRow> searchByName(const QString &query, int limit) const;
    /// Calls back with normalize()'s result, now when loaded, else after the load. Doesn't start the load.
    void normalizeAsync(const QString &text, std::function<void(const SwiftAircraftIcaoResult &)> callback);

signals:
    void readyChanged();

private:
    struct PendingText
    {
        QString text;
        std::function<void(const SwiftAircraftIcaoResult &)> callback;
    };

    /// Goes through the sources until one has made the service ready.
    void loadFromSources();
    /// Keeps the writable database under another name when it has shown to be damaged, so that the next source can make
    /// a new one.
    void setDamagedAside();
    /// Opens the writable database if it isn't open for writing yet, making it when it is missing.
    bool switchToWritable();
    /// Reads the open database into memory. True when that made the service ready.
    bool loadSnapshot();
    bool migrateDatabase(const QString &label, const QString &source);
    bool copyDatabase(const QString &label, const QString &source);
    void migrateLegacyJson();
    QString doc8643Path() const;
    void importDoc8643();
    bool importRows(const IcaoImport &import);
    void runPending();
    QString underDataRoot(const QString &path) const;
    QString importTime() const;

    AppConfig &m_config;
    const common::Clock &m_clock;
    IcaoDatabase m_database;
    bool m_ready = false;
    bool m_loading = false;
    bool m_loadAttempted = false;
    bool m_migrationTried = false;
    IcaoSnapshot m_snapshot;
    QList<PendingText> m_pending;
};

} // namespace tarvo::network
