#pragma once

#include "input/PttKey.h"

#include <QObject>

namespace tarvo::input {

class PttHandler;
struct PttBinding;

/// Push-to-talk for the rest of the program: the binding as a text, and its capture.
class PttService : public QObject
{
    Q_OBJECT

public:
    /// `handler` outlives the service.
    explicit PttService(PttHandler &handler, QObject *parent = nullptr);
    /// Nobody listens any more, and nothing is bound.
    ~PttService() override;

    /// The bound control; empty when there is none.
    PttKey boundKey() const { return m_key; }
    /// Its name for the pilot; empty when there is none.
    Q_INVOKABLE QString boundKeyName() const;

    /// The text if it begins as a binding does, in either case of letters; empty otherwise.
    static PttKey normalizeKey(const QString &text);

public slots:
    /// Binds a control by its text. Any text that names none clears the binding.
    void setBoundKey(const tarvo::input::PttKey &serialized);
    void clearBinding();
    /// The next press, which keys nothing, becomes the binding. Escape ends the listening instead.
    void startListening();
    void stopListening();

signals:
    void activeChanged(bool active);
    void listeningChanged(bool listening);
    void boundKeyChanged(const tarvo::input::PttKey &key);
    void keyCaptured(const tarvo::input::PttKey &key);

private:
    QString keyName(int virtualKey) const;
    static QString buttonName(int mask);
    void onBindingCaptured(const PttBinding &binding);

    PttHandler &m_handler;
    PttKey m_key;
};

} // namespace tarvo::input
