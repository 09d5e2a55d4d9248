#pragma once

#include "ui/viewmodel/ConnectionStatus.h"
#include "ui/viewmodel/RowsModel.h"

#include <QObject>

#include <array>

namespace tarvo::ui {

/// What is always in sight: how the connections are, and a banner when one of them is lost. In QML it is the context
/// property "statusBackend".
class StatusViewModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QAbstractListModel *lineRows READ lineRows CONSTANT)
    Q_PROPERTY(QString bannerText READ bannerText NOTIFY bannerChanged)
    Q_PROPERTY(QString bannerActionText READ bannerActionText NOTIFY bannerChanged)

public:
    explicit StatusViewModel(QObject *parent = nullptr);

    /// Rows with "section", "name", "word", "tone" and "reason".
    QAbstractListModel *lineRows() { return &m_lines; }
    const QList<StatusLine> &lines() const { return m_lines.rows(); }
    QString bannerText() const { return m_banner.text; } ///< empty: there is no banner
    QString bannerActionText() const { return m_banner.actionText; }

    // The program's side.
    void setNetwork(bool connected, LinkState state) { setState(Network, connected, state); }
    void setSimulator(bool connected, LinkState state) { setState(Simulator, connected, state); }
    void setVoice(bool connected, LinkState state) { setState(Voice, connected, state); }
    /// The connection has ended, or an attempt has failed, by nobody's wish. `reason`: as pages show it; it is cut to
    /// what the banner has room for.
    void networkFailed(const QString &reason) { fail(Network, reason); }
    void simulatorFailed(const QString &reason) { fail(Simulator, reason); }
    void voiceFailed(const QString &reason) { fail(Voice, reason); }
    /// The pilot has asked for a new beginning, or an end: what failed before is of no interest any more, nor that the
    /// connection was there before it.
    void forgetNetwork() { forget(Network); }
    void forgetSimulator() { forget(Simulator); }
    void forgetVoice() { forget(Voice); }

    /// The page that is open. To open or leave the one that tells of a failure is to know of it.
    Q_INVOKABLE void setCurrentSection(const QString &section);
    Q_INVOKABLE void dismissBanner();
    /// What the banner's button says.
    Q_INVOKABLE void act();

signals:
    void bannerChanged();
    void networkReconnectRequested();
    void simulatorReconnectRequested();
    void voiceReconnectRequested();
    void sectionRequested(QString section);

private:
    /// In the order of the lines.
    enum Kind
    {
        Network,
        Simulator,
        Voice
    };

    void setState(Kind kind, bool connected, LinkState state);
    void fail(Kind kind, const QString &reason);
    void forget(Kind kind);
    void see(const QString &section);
    void update();

    std::array<Link, 3> m_links;
    QString m_section;
    Banner m_banner;
    RowsModel<StatusLine> m_lines;
};

} // namespace tarvo::ui
