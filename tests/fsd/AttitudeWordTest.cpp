#include "fsd/pdu/AttitudeWord.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <cmath>
#include <limits>

using namespace tarvo::fsd::pdu;

class AttitudeWordTest : public QObject
{
    Q_OBJECT

private slots:
    void pack_data()
    {
        tarvo::test::columns<double, double, double, bool, quint32>("pitch", "heading", "bank", "onGround", "word");
        constexpr double nan = std::numeric_limits<double>::quiet_NaN();
        constexpr double infinity = std::numeric_limits<double>::infinity();
        QTest::newRow("level on the ground") << 0.0 << 0.0 << 0.0 << true << 2U;
        QTest::newRow("level in the air") << 0.0 << 0.0 << 0.0 << false << 0U;
        QTest::newRow("nose up is stored negative") << 10.0 << 0.0 << 0.0 << false << (quint32(-29) << 22);
        QTest::newRow("nose down") << -10.0 << 0.0 << 0.0 << false << (28U << 22);
        QTest::newRow("bank 25") << 0.0 << 0.0 << 25.0 << false << ((quint32(-72) & 0x3FF) << 12);
        QTest::newRow("bank -25") << 0.0 << 0.0 << -25.0 << false << (71U << 12);
        QTest::newRow("a little nose up is a whole step") << 0.1 << 0.0 << 0.0 << false << (0x3FFU << 22);
        QTest::newRow("a little nose down is none") << -0.1 << 0.0 << 0.0 << false << 0U;
        QTest::newRow("heading 90") << 0.0 << 90.0 << 0.0 << false << (256U << 2);
        QTest::newRow("heading 359.9 is step 1023") << 0.0 << 359.9 << 0.0 << false << (1023U << 2);
        QTest::newRow("heading 360 wraps to 0") << 0.0 << 360.0 << 0.0 << false << 0U;
        QTest::newRow("heading 720.4 wraps") << 0.0 << 720.4 << 0.0 << false << (1U << 2);
        QTest::newRow("a small negative heading is cut, not rounded down") << 0.0 << -0.2 << 0.0 << false << 0U;
        QTest::newRow("heading -90 wraps to 270") << 0.0 << -90.0 << 0.0 << false << (768U << 2);
        QTest::newRow("all at once") << 2.5 << 87.3 << -12.7 << false << 4261561312U;
        QTest::newRow("one degree of each on the ground") << 1.0 << 1.0 << 1.0 << true << 4286566410U;
        QTest::newRow("pitch 180") << 180.0 << 0.0 << 0.0 << false << 0x80000000U;
        QTest::newRow("pitch 360 falls off") << 360.0 << 0.0 << 0.0 << false << 0U;
        QTest::newRow("no numbers") << nan << nan << nan << true << 2U;
        QTest::newRow("infinite") << infinity << -infinity << infinity << false << 0U;
        QTest::newRow("beyond any integer") << 1e300 << -1e300 << -1e300 << false << 0U;
    }
    void pack()
    {
        QFETCH(double, pitch);
        QFETCH(double, heading);
        QFETCH(double, bank);
        QFETCH(bool, onGround);
        QFETCH(quint32, word);
        QCOMPARE(packAttitude({.pitch = pitch, .heading = heading, .bank = bank, .onGround = onGround}), word);
    }

    void unpack_data()
    {
        tarvo::test::columns<quint32, double, double, double, bool>("word", "pitch", "heading", "bank", "onGround");
        QTest::newRow("zero") << 0U << 0.0 << 0.0 << 0.0 << false;
        QTest::newRow("on the ground") << 2U << 0.0 << 0.0 << 0.0 << true;
        QTest::newRow("bit 0 says nothing") << 1U << 0.0 << 0.0 << 0.0 << false;
        QTest::newRow("pitch -29 is 10 degrees") << (quint32(-29) << 22) << 10.0 << 0.0 << 0.0 << false;
        QTest::newRow("pitch 28 is -10 degrees") << (28U << 22) << -10.0 << 0.0 << 0.0 << false;
        QTest::newRow("pitch -1 is rounded down to 0") << (0x3FFU << 22) << 0.0 << 0.0 << 0.0 << false;
        QTest::newRow("pitch 1 is rounded down to -1") << (1U << 22) << -1.0 << 0.0 << 0.0 << false;
        QTest::newRow("bank -72 is 25 degrees") << ((quint32(-72) & 0x3FF) << 12) << 0.0 << 0.0 << 25.0 << false;
        QTest::newRow("bank 71 is -25 degrees") << (71U << 12) << 0.0 << 0.0 << -25.0 << false;
        QTest::newRow("bank 512 is 180 degrees") << (512U << 12) << 0.0 << 0.0 << 180.0 << false;
        QTest::newRow("heading keeps its step") << (1U << 2) << 0.0 << 0.3515625 << 0.0 << false;
        QTest::newRow("highest heading") << (1023U << 2) << 0.0 << 359.6484375 << 0.0 << false;
        QTest::newRow("all bits") << 0xFFFFFFFFU << 0.0 << 359.6484375 << 0.0 << true;
        QTest::newRow("all at once") << 4261561312U << 2.0 << 87.1875 << -13.0 << false;
    }
    void unpack()
    {
        QFETCH(quint32, word);
        QFETCH(double, pitch);
        QFETCH(double, heading);
        QFETCH(double, bank);
        QFETCH(bool, onGround);
        QCOMPARE(unpackAttitude(word),
                 (Attitude{.pitch = pitch, .heading = heading, .bank = bank, .onGround = onGround}));
    }

    void noAngleComesBackAsMinusZero()
    {
        const Attitude level = unpackAttitude(0);
        QVERIFY(!std::signbit(level.pitch) && !std::signbit(level.heading) && !std::signbit(level.bank));
    }

    void aRoundTripLosesAtMostADegreeDownwards()
    {
        for (int tenths = -1790; tenths < 1790; ++tenths) {
            const double angle = tenths / 10.0;
            const Attitude back = unpackAttitude(packAttitude({.pitch = angle, .bank = angle}));
            QVERIFY2(back.pitch > angle - 1.0 && back.pitch < angle + 0.36, qPrintable(QString::number(angle)));
            QCOMPARE(back.bank, back.pitch);
        }
    }
};

TARVO_TEST(AttitudeWordTest)
#include "AttitudeWordTest.moc"
