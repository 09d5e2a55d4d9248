#pragma once

#include <QByteArray>
#include <QProcess>
#include <QStringList>

#include <functional>

namespace tarvo::bench {

/// This program again in another role, in a process of its own that answers questions, each with one line. This one's
/// event loop goes on meanwhile.
class Role
{
public:
    explicit Role(const QStringList &words);
    ~Role();
    Role(const Role &) = delete;
    Role &operator=(const Role &) = delete;

    /// The answer; empty when there is none in time.
    QByteArray ask(const QByteArray &question);
    /// So far, of all its threads.
    double cpuSeconds() const;

private:
    QProcess m_process;
};

/// Lets the event loop run for that time.
void pass(int ms);

using Answer = std::function<QByteArray(const QByteArray &question)>;

/// In the other process: runs the application, which answers the questions until nobody asks any more.
int answerQuestions(const Answer &answer);

} // namespace tarvo::bench
