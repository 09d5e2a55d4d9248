#include "pages/Role.h"

#include "traffic/ProcessCost.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QFile>
#include <QSocketNotifier>
#include <QTimer>

#include <cstdio>

namespace tarvo::bench {

namespace {

constexpr int longestAnswerMs = 240'000;
constexpr int lookEveryMs = 20;
constexpr int longestEndMs = 10'000;

} // namespace

Role::Role(const QStringList &words)
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(QCoreApplication::applicationFilePath(), words);
}

Role::~Role()
{
    m_process.closeWriteChannel();
    if (m_process.waitForFinished(longestEndMs))
        return;
    m_process.kill();
    m_process.waitForFinished();
}

QByteArray Role::ask(const QByteArray &question)
{
    m_process.write(question + '\n');
    const QDeadlineTimer deadline(longestAnswerMs);
    while (!m_process.canReadLine() && m_process.state() != QProcess::NotRunning && !deadline.hasExpired())
        pass(lookEveryMs);
    return m_process.readLine().trimmed();
}

double Role::cpuSeconds() const
{
    return costOf(m_process.processId()).cpuSeconds;
}

void pass(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

int answerQuestions(const Answer &answer)
{
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly | QIODevice::Unbuffered))
        return 1;
    QSocketNotifier notifier(input.handle(), QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, &notifier, [&] {
        const QByteArray question = input.readLine();
        if (question.isEmpty()) {
            notifier.setEnabled(false);
            QCoreApplication::quit();
            return;
        }
        std::printf("%s\n", answer(question.trimmed()).constData());
        std::fflush(stdout);
    });
    return QCoreApplication::exec();
}

} // namespace tarvo::bench
