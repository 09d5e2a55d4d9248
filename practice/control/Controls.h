#pragma once

#include <QHash>
#include <QMap>
#include <QStringList>

#include <functional>

namespace tarvo::practice {

class PracticeNetwork;

/// What a verb is told: argument names and their values.
using ControlArguments = QMap<QString, QString>;

/// The verbs that break something in a running practice network; README.md lists them.
class Controls
{
public:
    /// The network must outlive it.
    explicit Controls(PracticeNetwork &network);
    Controls(const Controls &) = delete;
    Controls &operator=(const Controls &) = delete;

    /// Does what the verb says. Returns false for an unknown verb, or when there was nothing to do it to.
    bool perform(const QString &verb, const ControlArguments &arguments) const;
    bool knows(const QString &verb) const { return m_actions.contains(verb); }
    /// In alphabetical order.
    QStringList verbs() const;

private:
    using Action = std::function<bool(const ControlArguments &)>;

    void addClientVerbs();
    void addReplayVerb();
    void addScriptedClientVerbs();
    void addLoginVerbs();
    void addSimulatorVerbs();
    void addPluginVerbs();
    void addSayVerbs();
    void addVoiceVerbs();
    void addVoiceLineVerbs();
    bool jump(const ControlArguments &arguments);

    PracticeNetwork &m_network;
    QHash<QString, Action> m_actions;
};

} // namespace tarvo::practice
