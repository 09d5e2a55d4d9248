#pragma once

#include <QObject>

namespace tarvo {
class StateFile;
}

namespace tarvo::ui {

/// Three short cards for a pilot who starts the program for the first time: mode, connection, messages. In QML it is
/// the context property "tourBackend".
class Tour : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int step READ step NOTIFY stepChanged)
    Q_PROPERTY(int steps READ stepCount CONSTANT)

public:
    static constexpr int steps = 3;

    /// `state` outlives it.
    explicit Tour(StateFile &state, QObject *parent = nullptr) : QObject(parent), m_state(state) {}

    /// From 1; 0: there is no tour.
    int step() const { return m_step; }
    int stepCount() const { return steps; }

    /// Shows the first card, but in the first run only, whether the tour is seen to its end or not.
    void begin();
    /// What the first card asks for is done.
    void modePicked();
    Q_INVOKABLE void next();
    Q_INVOKABLE void end();

signals:
    void stepChanged();

private:
    void setStep(int step);

    StateFile &m_state;
    int m_step = 0;
};

} // namespace tarvo::ui
