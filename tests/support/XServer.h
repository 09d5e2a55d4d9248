#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QTest>

namespace tarvo::test {

/// An X server of the test's own, without a screen that anybody sees.
class XServer
{
public:
    ~XServer() { kill(); }

    void start()
    {
        m_process.start(u"Xvfb"_qs, {u"-displayfd"_qs, u"1"_qs, u"-screen"_qs, u"0"_qs, u"640x480x24"_qs,
                                     u"-nolisten"_qs, u"tcp"_qs, u"-noreset"_qs});
        QVERIFY(m_process.waitForStarted());
        while (!m_process.canReadLine())
            QVERIFY(m_process.waitForReadyRead()); // it writes the number when it is ready
        m_display = ':' + m_process.readLine().trimmed();
    }
    /// Such as ":3".
    QByteArray display() const { return m_display; }

    void kill()
    {
        if (m_process.state() == QProcess::NotRunning)
            return;
        m_process.kill();
        m_process.waitForFinished();
    }

private:
    QProcess m_process;
    QByteArray m_display;
};

} // namespace tarvo::test
