#include "ui/ErrorDialog.h"

#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTest>

using tarvo::ui::ErrorDialog;

class ErrorDialogTest : public QObject
{
    Q_OBJECT

private slots:
    void hasItsNamedParts()
    {
        const ErrorDialog dialog(u"登录失败"_qs, u"用户名或密码错误"_qs);
        const auto *content = dialog.findChild<QWidget *>(u"contentWidget"_qs);
        QVERIFY(content);
        QCOMPARE(content->findChild<QLabel *>(u"titleLabel"_qs)->text(), u"登录失败"_qs);
        QCOMPARE(content->findChild<QLabel *>(u"messageLabel"_qs)->text(), u"用户名或密码错误"_qs);
        const auto *button = content->findChild<QPushButton *>(u"okButton"_qs);
        QCOMPARE(button->text(), u"确定"_qs);
        QCOMPARE(button->property("type").toString(), u"primary"_qs);
        QVERIFY(dialog.windowFlags().testFlag(Qt::FramelessWindowHint));
        const QString badge = content->findChild<QLabel *>(u"iconBadge"_qs)->styleSheet();
        QVERIFY(badge.contains(u"rgba(241, 196, 15, 0.15)"_qs) && badge.contains(u"#F1C40F"_qs));
    }

    void showsMarkupFromAServerAsText()
    {
        const ErrorDialog dialog(u"登录失败"_qs, u"<b>x</b>"_qs);
        QCOMPARE(dialog.findChild<QLabel *>(u"messageLabel"_qs)->textFormat(), Qt::PlainText);
    }

    void wrapsALongMessageWithoutCuttingIt()
    {
        ErrorDialog dialog(u"登录失败"_qs, u"无法连接到服务器，请检查网络连接。"_qs.repeated(12));
        dialog.show();
        const auto *label = dialog.findChild<QLabel *>(u"messageLabel"_qs);
        QVERIFY(label->height() >= label->heightForWidth(label->width()));
    }

    void cutsAMessageThatWouldOutgrowTheScreen()
    {
        const ErrorDialog whole(u"登录失败"_qs, QString(500, u'x'));
        QCOMPARE(whole.findChild<QLabel *>(u"messageLabel"_qs)->text(), QString(500, u'x'));
        const ErrorDialog cut(u"登录失败"_qs, QString(100'000, u'x'));
        QCOMPARE(cut.findChild<QLabel *>(u"messageLabel"_qs)->text(), QString(500, u'x') + u"…"_qs);
        const ErrorDialog lines(u"登录失败"_qs, u"code: x"_qs + QString(400, u'\n') + u"y"_qs);
        QCOMPARE(lines.findChild<QLabel *>(u"messageLabel"_qs)->text(), u"code: x y"_qs);
    }

    void opensFadingInOnTheMiddleOfItsParentAndGoesWithTheButton()
    {
        QWidget parent;
        parent.setGeometry(100, 100, 600, 400);
        parent.show();
        ErrorDialog::open(u"登录失败"_qs, u"连接超时，请稍后重试"_qs, &parent);
        const QPointer<ErrorDialog> dialog = parent.findChild<ErrorDialog *>();
        QVERIFY(dialog && dialog->isVisible() && dialog->isModal());
        QVERIFY((dialog->geometry().center() - parent.geometry().center()).manhattanLength() <= 2);
        TRY_COMPARE(dialog->windowOpacity(), 1.0);

        dialog->findChild<QPushButton *>(u"okButton"_qs)->click();

        TRY_VERIFY(!dialog);
    }
};

TARVO_TEST(ErrorDialogTest)
#include "ErrorDialogTest.moc"
