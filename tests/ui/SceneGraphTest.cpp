#include "ui/SceneGraph.h"

#include "support/TestRegistry.h"

#include <QTest>

class SceneGraphTest : public QObject
{
    Q_OBJECT

private slots:
    void knowsAGlWithoutAGpu_data()
    {
        QTest::addColumn<QByteArray>("renderer");
        QTest::addColumn<bool>("isWithout");
        QTest::newRow("Mesa's usual one") << QByteArray("llvmpipe (LLVM 15.0.6, 256 bits)") << true;
        QTest::newRow("Mesa's other one") << QByteArray("softpipe") << true;
        QTest::newRow("Mesa's old one") << QByteArray("Software Rasterizer") << true;
        QTest::newRow("the X server's") << QByteArray("Mesa swrast") << true;
        QTest::newRow("a GPU") << QByteArray("Mesa Intel(R) UHD Graphics 620 (KBL GT2)") << false;
        QTest::newRow("another") << QByteArray("NVIDIA GeForce RTX 3060/PCIe/SSE2") << false;
        QTest::newRow("a virtual one") << QByteArray("virgl") << false;
        QTest::newRow("no GL at all") << QByteArray() << false; // Qt finds out by itself
    }
    void knowsAGlWithoutAGpu()
    {
        QFETCH(QByteArray, renderer);
        QFETCH(bool, isWithout);
        QCOMPARE(tarvo::ui::paintsWithProcessor(renderer), isWithout);
    }
};

TARVO_TEST(SceneGraphTest)
#include "SceneGraphTest.moc"
