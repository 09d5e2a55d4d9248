#include "support/TestRegistry.h"
#include "ui/AccountStage.h"
#include "ui/LoginWindow.h"
#include "ui/ThemeManager.h"

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QScopeGuard>
#include <QTest>
#include <QWidget>

using namespace tarvo;

/// The login window as drawn, with its stylesheet.
class LoginLookTest : public QObject
{
    Q_OBJECT

private slots:
    void everyTextIsWhole_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<bool>("busy");
        QTest::newRow("smallest") << QSize(1000, 700) << false;
        QTest::newRow("smallest, signing in") << QSize(1000, 700) << true;
        QTest::newRow("large") << QSize(1920, 1080) << false;
    }
    void everyTextIsWhole()
    {
        QFETCH(QSize, size);
        QFETCH(bool, busy);
        ui::ThemeManager::instance().applyTheme(ui::ThemeManager::Theme::Dark);
        const auto plain = qScopeGuard([] { qApp->setStyleSheet({}); });
        test::AccountStage stage;
        ui::LoginWindow window(stage.config, stage.api, stage.peer.endpoints());
        window.show();
        window.resize(size);
        window.findChild<QLineEdit *>(u"usernameEdit"_qs)->setText(u"1001"_qs);
        window.findChild<QLineEdit *>(u"passwordEdit"_qs)->setText(u"practice"_qs);
        if (busy)
            window.findChild<QPushButton *>(u"loginButton"_qs)->click();
        keep(window, u"login-%1-%2"_qs.arg(size.width()).arg(busy));
        const QList<QWidget *> parts = window.findChildren<QWidget *>();
        int seen = 0;
        for (const QWidget *part : parts) {
            const QString text = part->property("text").toString();
            if (!part->isVisible() || text.isEmpty() || qobject_cast<const QLineEdit *>(part))
                continue;
            ++seen;
            QVERIFY2(part->sizeHint().width() <= part->width() && part->sizeHint().height() <= part->height(),
                     qPrintable(text));
            QVERIFY2(window.rect().contains(QRect(part->mapTo(&window, QPoint()), part->size())), qPrintable(text));
        }
        QVERIFY(seen >= 5);
    }

private:
    static void keep(QWidget &window, const QString &name)
    {
        const QString folder = qEnvironmentVariable("TARVO_SHOTS");
        if (folder.isEmpty())
            return;
        window.findChild<QWidget *>(u"GlassPanel"_qs)->setGraphicsEffect(nullptr); // it would still be fading in
        window.grab().save(folder + u'/' + name + u".png"_qs);
    }
};

TARVO_TEST(LoginLookTest)
#include "LoginLookTest.moc"
