#include "practice/voice/Speech.h"

#include "practice/voice/Transmission.h"
#include "support/TestRegistry.h"

#include <QFile>
#include <QTest>

#include <cmath>

using namespace tarvo::practice;

class SpeechTest : public QObject
{
    Q_OBJECT

    static QByteArray file(const QString &name)
    {
        QFile opened(QStringLiteral(":/practice/speech/%1.opus").arg(name));
        return opened.open(QIODevice::ReadOnly) ? opened.readAll() : QByteArray();
    }
    static Speech numbers(std::size_t count)
    {
        SpeechFrames frames;
        for (std::size_t i = 0; i < count; ++i)
            frames.push_back({static_cast<std::uint8_t>(i)});
        return std::make_shared<const SpeechFrames>(frames);
    }

private slots:
    void hasEveryPhrase()
    {
        const SpeechBook book;
        QCOMPARE(book.names(), (QStringList{u"atis"_qs, u"pilot-call"_qs, u"radio-check"_qs, u"tower-answer-1"_qs,
                                            u"tower-answer-2"_qs, u"tower-answer-3"_qs, u"tower-greeting"_qs}));
        QVERIFY(!book.find(u"nothing"_qs));
    }

    void readsFramesUndecoded()
    {
        const QByteArray bytes = file(u"radio-check"_qs);
        const SpeechFrames frames = readOggOpus(bytes);
        QVERIFY2(frames.size() > 100, qPrintable(QString::number(frames.size()))); // some 3 s
        std::size_t sum = 0;
        for (const auto &frame : frames) {
            const QByteArray text(reinterpret_cast<const char *>(frame.data()), static_cast<qsizetype>(frame.size()));
            QVERIFY(frame.size() < 254 ? bytes.contains(text) : true); // a longer one may lie across two pages
            sum += frame.size();
        }
        const double bitsPerSecond = static_cast<double>(sum) * 8 / (static_cast<double>(frames.size()) * 0.02);
        QVERIFY2(std::abs(bitsPerSecond - 24'000) < 6'000, qPrintable(QString::number(bitsPerSecond)));
    }

    void readsNothingElse_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        const QByteArray good = file(u"radio-check"_qs);
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("text") << QByteArray("OggS and nothing more");
        QTest::newRow("the head alone") << good.left(60);
    }

    void readsNothingElse()
    {
        QFETCH(QByteArray, bytes);
        QVERIFY(readOggOpus(bytes).empty());
    }

    void aFrameIsDueEach20Ms()
    {
        Transmission one("ZBAA_TWR", 118'500, numbers(3), 1'000);
        QVERIFY(!one.takeDue(999));
        const auto first = one.takeDue(1'000);
        QVERIFY(first);
        QCOMPARE(first->callsign, std::string("ZBAA_TWR"));
        QCOMPARE(first->frequency, 118'500);
        QCOMPARE(first->payload, std::vector<std::uint8_t>{0});
        QVERIFY(!one.takeDue(1'019));
        QVERIFY(one.takeDue(1'045)); // late
        QVERIFY(one.takeDue(1'045)); // the third was due at 1040
        QVERIFY(one.isOver());
        QVERIFY(!one.takeDue(2'000));
    }

    void framesThatAreVeryLateAreNotRushed()
    {
        Transmission one("A", 118'500, numbers(10), 1'000);
        QVERIFY(one.takeDue(1'000));
        QVERIFY(one.takeDue(5'000));
        QVERIFY(!one.takeDue(5'019));
        QVERIFY(one.takeDue(5'020));
    }

    void aLoopNeverEnds()
    {
        Transmission one("A", 118'500, numbers(3), 0);
        one.loop(5);
        QList<int> heard;
        for (qint64 now = 0; now < 100; now += 20)
            heard.append(one.takeDue(now)->payload.front());
        QCOMPARE(heard, (QList<int>{2, 0, 1, 2, 0}));
        QVERIFY(!one.isOver());
    }
};

TARVO_TEST(SpeechTest)
#include "SpeechTest.moc"
