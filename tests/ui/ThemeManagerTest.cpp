#include "ui/ThemeManager.h"

#include "support/TestRegistry.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTest>

using tarvo::ui::ThemeManager;

class ThemeManagerTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanupTestCase() { qApp->setStyleSheet(QString()); }

    void appliesTheThemesSheet_data()
    {
        QTest::addColumn<ThemeManager::Theme>("theme");
        QTest::addColumn<QString>("colour");
        QTest::newRow("dark") << ThemeManager::Theme::Dark << u"#5865F2"_qs;
        QTest::newRow("light") << ThemeManager::Theme::Light << u"#1A2B47"_qs;
    }
    void appliesTheThemesSheet()
    {
        QFETCH(ThemeManager::Theme, theme);
        QFETCH(QString, colour);
        ThemeManager manager;
        const QSignalSpy changed(&manager, &ThemeManager::themeChanged);

        manager.applyTheme(theme);

        QCOMPARE(manager.theme(), theme);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(changed[0][0].value<ThemeManager::Theme>(), theme);
        QVERIFY(qApp->styleSheet().contains(colour));
    }

    void thereIsOneForTheProgram() { QCOMPARE(&ThemeManager::instance(), &ThemeManager::instance()); }
};

TARVO_TEST(ThemeManagerTest)
#include "ThemeManagerTest.moc"
