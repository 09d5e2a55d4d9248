#pragma once

#include "practice/control/Controls.h"

#include <QJsonObject>
#include <QObject>
#include <QUrlQuery>

namespace tarvo::practice {

/// The developer's hand on a running practice network: "GET /practice" tells its state, "POST /practice/<verb>" with
/// the arguments as query breaks something. On the account service's port.
class ControlService : public QObject
{
    Q_OBJECT

public:
    /// Adds its routes; must come before the network starts.
    explicit ControlService(PracticeNetwork &network, QObject *parent = nullptr);

    /// Does what the verb says. Returns false for an unknown verb, or when there was nothing to do it to.
    bool perform(const QString &verb, const QUrlQuery &arguments);
    QJsonObject state() const;

private:
    void addRoutes();

    PracticeNetwork &m_network;
    Controls m_controls;
};

} // namespace tarvo::practice
