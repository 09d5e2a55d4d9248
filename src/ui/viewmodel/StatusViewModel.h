#pragma once

#include "ui/viewmodel/ConnectionStatus.h"
#include "ui/viewmodel/RowsModel.h"

#include <QObject>

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
    void setNetwork(bool connected, LinkState state);
    void setSimulator(bool connected, LinkState state);
    void setVoice(bool connected, LinkState state);
    /// The network's connection has ended, or an attempt has failed, by nobody's wish. `reason`: as pages show it.
    void networkFailed(const QString &reason);
    /// The simulator was lost, or could not be reached.
    void simulatorFailed(const QString &reason);
    /// Voice was lost, or an attempt has failed, by nobody's wish.
    void voiceFailed(const QString &reason);
    /// The pilot has asked for a new beginning, or an end: what failed before is of no interest any more.
    void forgetNetwork();
    void forgetSimulator();
    void forgetVoice();

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
    void setState(Link &link, bool connected, LinkState state);
    void fail(Link &link, const QString &reason);
    void forget(Link &link);
    void see(const QString &section);
    void update();

    Link m_network;
    Link m_simulator;
    Link m_voice;
    QString m_section;
    Banner m_banner;
    RowsModel<StatusLine> m_lines;
};

} // namespace tarvo::ui
