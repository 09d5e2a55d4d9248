#pragma once

#include "ConfigCopy.h"
#include "ConfigKey.h"
#include "StateFile.h"

#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>

class QSettings;

namespace tarvo {

struct DataFolders;

/// The one place for settings: "config.ini" in the data root. Main thread only.
///
/// Reading never fails: a malformed value converts to the type's zero. Every write is synced to the file at once and
/// then announced. An unwritable file is not an error here: the values go on working in memory and are written with the
/// next one that can be. A start that reads the file well makes a copy of it, and what the file has lost at a later
/// start comes back from there.
class AppConfig : public QObject
{
    Q_OBJECT

public:
    /// The program's own settings, in its data root. Built at first use, after the application object.
    static AppConfig &instance();

    /// Settings in another folder, for tests. Writes missing defaults and detects the MSFS folders.
    explicit AppConfig(const QString &dataRoot, QObject *parent = nullptr);
    explicit AppConfig(const DataFolders &folders, QObject *parent = nullptr);
    ~AppConfig() override;

    QString get(const StringKey &key) const;
    bool get(const BoolKey &key) const;
    int get(const IntKey &key) const;
    double get(const RealKey &key) const;
    /// Trimmed, canonical paths of the folders that exist, each once.
    QStringList get(const PathListKey &key) const;
    /// The whole list as the file has it, for a pilot to edit: folders on a drive that is away now must stay in it.
    QStringList storedPaths(const PathListKey &key) const;
    /// What get() makes of a stored list. It looks at the disk, which may take long for a drive that is away; for any
    /// thread.
    static QStringList existingPaths(const QStringList &stored);

    void set(const StringKey &key, const QString &value);
    void set(const BoolKey &key, bool value);
    void set(const IntKey &key, int value);
    void set(const RealKey &key, double value);
    void set(const PathListKey &key, const QStringList &value);

    /// Sets a text key to its default.
    void reset(const StringKey &key);

    /// The settings that the file had lost at the start and that came back, in words for the log, which opens later.
    /// Empty when there were none; otherwise the pilot is told.
    QString startupWarning() const { return m_startupWarning; }

    /// False while the last write didn't reach the file: the disk is full, or the folder can't be written.
    bool isSaved() const { return m_saved; }

    /// What the program remembers by itself, in a file of its own beside these settings.
    StateFile &state() { return m_state; }

    /// "logs" in the data root.
    QString logsFolder() const;
    /// The folder that holds "config.ini".
    QString dataRoot() const { return m_dataRoot; }
    /// Where to look for data that came with the program: the data root first, each folder once.
    QStringList readFolders() const { return m_readFolders; }

signals:
    /// Raised after every set and reset, for volatile keys too. `key` is the key's text.
    void configChanged(const QString &key);

private:
    struct Decrypted
    {
        QString stored;
        QString plain;
    };

    bool bringBackWhatIsLost();
    void writeMissingDefaults();
    void sync();
    void detectFolders();
    QVariant read(const char *key, const QVariant &defaultValue = {}) const;
    QString decrypted(const char *key, const QString &stored) const;
    QString encrypted(const char *key, const QString &plain);
    void store(const char *key, const QVariant &value);
    void announce(const char *key);

    std::unique_ptr<QSettings> m_settings;
    QString m_dataRoot;
    QStringList m_readFolders;
    QString m_configPath;
    ConfigCopy m_copy;
    StateFile m_state;
    QString m_startupWarning;
    bool m_saved = true;
    QMap<QString, QVariant> m_volatile;
    /// The last plain text of each encrypted key: deriving the cipher's key is slow on purpose.
    mutable QMap<QString, Decrypted> m_decrypted;
};

} // namespace tarvo
