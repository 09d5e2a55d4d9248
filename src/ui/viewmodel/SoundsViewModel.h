#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

class QUrl;

namespace tarvo {
class StateFile;
}

namespace tarvo::ui {

/// Whether and how loud the program's sounds are heard, and a sign for each, which is seen even when it isn't heard. In
/// QML it is the context property "soundsBackend". The switch is remembered at once, the volume when it has rested.
class SoundsViewModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool on READ isOn WRITE setOn NOTIFY changed)
    Q_PROPERTY(int volume READ volume WRITE setVolume NOTIFY changed)
    Q_PROPERTY(bool audible READ isAudible NOTIFY changed)
    Q_PROPERTY(QString signText READ signText NOTIFY signChanged)
    Q_PROPERTY(QString signTone READ signTone NOTIFY signChanged)

public:
    /// `state` outlives it.
    explicit SoundsViewModel(StateFile &state, QObject *parent = nullptr);
    ~SoundsViewModel() override;

    bool isOn() const;
    void setOn(bool on);
    /// Percent.
    int volume() const { return m_volume; }
    void setVolume(int percent);
    bool isAudible() const { return isOn() && m_volume > 0; }
    QString signText() const { return m_signText; } ///< empty: there is no sign
    QString signTone() const { return m_signTone; } ///< "pending", "good" or "failed"

    /// Shows for a moment what `sound` tells. Nothing for a sound that isn't known.
    void showSign(const QUrl &sound);

    Q_INVOKABLE void toggle() { setOn(!isOn()); }
    /// Lets the pilot hear how loud it is.
    Q_INVOKABLE void tryOut() { emit trialRequested(); }

signals:
    void changed();
    void signChanged();
    /// A sign is shown, maybe the same again.
    void signShown();
    void trialRequested();

private:
    void setSign(const QString &text, const QString &tone);
    void saveVolume();

    StateFile &m_state;
    int m_volume;
    QTimer m_saveTimer; ///< a slider that is dragged writes no file at each step
    QString m_signText;
    QString m_signTone;
    QTimer m_signTimer;
};

} // namespace tarvo::ui
