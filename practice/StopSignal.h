#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <memory>

namespace tarvo::practice {

/// Tells the event loop that the user wants the program to end: SIGINT or SIGTERM, or Ctrl+C on Windows. One object at
/// a time.
class StopSignal : public QObject
{
    Q_OBJECT

public:
    explicit StopSignal(QObject *parent = nullptr);
    ~StopSignal() override;

signals:
    void raised();

private:
    std::unique_ptr<QSocketNotifier> m_notifier; ///< POSIX only
};

} // namespace tarvo::practice
