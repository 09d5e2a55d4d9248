#pragma once

#include "practice/PracticeNetwork.h"

#include <QHash>
#include <QJsonObject>
#include <QUrlQuery>

#include <functional>

namespace tarvo::practice {

/// The developer's hand on a running practice network: "GET /practice" tells its state, "POST /practice/<verb>" with
/// the arguments as query breaks something. On the account service's port; README.md lists the verbs.
class ControlService : public QObject
{
    Q_OBJECT

public:
    /// Adds its routes; must come before the network starts.
    explicit ControlService(PracticeNetwork &network, QObject *parent = nullptr);

    /// Does what the verb says. Returns false for an unknown verb, or when there was nothing to do it to.
    bool perform(const QString &verb, const QUrlQuery &arguments);
    QJsonObject state() const;
    QStringList verbs() const;

private:
    using Action = std::function<bool(const QUrlQuery &)>;

    void addRoutes();
    void addClientVerbs();
    void addLoginVerbs();
    void addSimulatorVerbs();
    void addPluginVerbs();
    bool jump(const QUrlQuery &arguments);

    PracticeNetwork &m_network;
    QHash<QString, Action> m_actions;
};

} // namespace tarvo::practice
