#pragma once

#include "Peers.h"
#include "support/ManualClock.h"

#include <memory>

namespace tarvo::test {

/// A pilot AB1 who stands at Beijing's field, on a network whose clock stands still.
class FieldBench
{
protected:
    static constexpr double fieldLatitude = 40.0725;
    static constexpr double fieldLongitude = 116.5975;

    /// Starts a network, and logs AB1 in.
    void open(const practice::PracticeSettings &settings)
    {
        m_a.reset();
        m_network = std::make_unique<practice::PracticeNetwork>(settings, m_clock);
        QVERIFY(m_network->start());
        m_a = std::make_unique<FsdLineClient>(m_network->fsd());
        m_a->logIn("AB1");
        m_a->report("AB1", fieldLatitude, fieldLongitude);
        settle(*m_a, "AB1");
    }
    /// Lets time pass, with `step` after each piece of it.
    template <class Step>
    void passWith(qint64 ms, qint64 stepMs, const Step &step)
    {
        for (qint64 gone = 0; gone < ms; gone += stepMs) {
            m_clock.advance(stepMs);
            step();
        }
        settle(*m_a, "AB1");
    }
    /// The lines that AB1 got and that begin so.
    QByteArrayList lines(const QByteArray &start) const
    {
        QByteArrayList found;
        for (const QByteArray &line : m_a->all().split('\n')) {
            if (line.startsWith(start))
                found.append(line.trimmed());
        }
        return found;
    }

    ManualClock m_clock;
    std::unique_ptr<practice::PracticeNetwork> m_network;
    std::unique_ptr<FsdLineClient> m_a;
};

/// AB1 among the residents.
class ResidentsBench : protected FieldBench
{
protected:
    void start(int broadcastIntervalMs = 0, double fastRangeNm = 0)
    {
        practice::PracticeSettings settings = quietSettings();
        settings.fsd.silenceMs = 1 << 30;
        settings.fsd.fastRangeNm = fastRangeNm;
        settings.residents.present = true;
        settings.residents.broadcastIntervalMs = broadcastIntervalMs;
        open(settings);
        m_network->residents()->step(); // what is due at the very start
        settle(*m_a, "AB1");
    }
    /// Lets time pass in steps of the residents.
    void pass(qint64 ms, qint64 stepMs = 100)
    {
        passWith(ms, stepMs, [this] {
            m_network->residents()->step();
            m_network->fsd().keepAlive();
        });
    }
    /// Asks and waits for a line that begins like this.
    void ask(const QByteArray &question, const QByteArray &answer)
    {
        m_a->forget();
        m_a->send(question);
        settle(*m_a, "AB1");
        QVERIFY2(m_a->got(answer), m_a->all().constData());
    }
};

} // namespace tarvo::test
