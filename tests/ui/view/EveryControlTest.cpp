#include "MessagesPageFixture.h"
#include "PageHarness.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QObject>
#include <QQuickWindow>
#include <QTest>

#include <memory>

using tarvo::test::PageHarness;
using tarvo::ui::LinkState;

namespace {

struct ControlRole
{
    const char *type;
    QAccessible::Role role;
};

/// What each kind of control is to a screen reader.
constexpr ControlRole controlRoles[] = {
    {"QQuickCheckBox", QAccessible::CheckBox},      {"QQuickAbstractButton", QAccessible::Button},
    {"QQuickTextField", QAccessible::EditableText}, {"QQuickTextArea", QAccessible::EditableText},
    {"QQuickComboBox", QAccessible::ComboBox},      {"QQuickSpinBox", QAccessible::SpinBox},
    {"QQuickSlider", QAccessible::Slider},
};

} // namespace

/// A screen reader's view of every page: whatever the keyboard can go to has a name and a role.
class EveryControlTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QAccessible::setActive(true); // as a screen reader does: the controls tell what they are from then on
        m_harness = std::make_unique<PageHarness>(u"XPLANE"_qs, QSize(1280, 1300));
        m_harness->fillAccount();
        m_harness->fillSimulator(u"XPLANE"_qs);
        m_harness->fillFlight();
        m_harness->fillTraffic(6);
        m_harness->fillVoice();
        m_harness->fillVoiceSettings();
        m_harness->status().setNetwork(true, LinkState::Connected);
        m_harness->status().networkFailed(u"服务器断开了连接"_qs); // the banner's controls are there, too
        tarvo::test::fillMessages(m_harness->messages());
    }

    void everyControlHasANameAndARole_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<int>("atLeast");
        QTest::newRow("overview") << Qt::Key_1 << 14;
        QTest::newRow("simulator") << Qt::Key_2 << 18;
        QTest::newRow("server") << Qt::Key_3 << 16;
        QTest::newRow("voice") << Qt::Key_4 << 14;
        QTest::newRow("messages") << Qt::Key_5 << 24;
        QTest::newRow("settings") << Qt::Key_6 << 34;
    }
    void everyControlHasANameAndARole()
    {
        QFETCH(Qt::Key, key);
        QFETCH(int, atLeast);
        QTest::keyClick(&m_harness->view, key, Qt::ControlModifier);
        m_harness->settle();
        look(m_harness->view, atLeast);
    }

    void soHasWhatLiesOverThePages()
    {
        m_harness->tour().begin();
        m_harness->tour().modePicked();
        look(m_harness->view, 16);
        m_harness->tour().end();
        QTest::keyClick(&m_harness->view, Qt::Key_F1);
        TRY_VERIFY(m_harness->item(u"shortcutSheetClose"_qs));
        look(m_harness->view, 15);
        QTest::keyClick(&m_harness->view, Qt::Key_Escape);
        m_harness->leave().setOnline(u"CES2352"_qs);
        m_harness->leave().logOut();
        TRY_VERIFY(m_harness->item(u"leaveNeverAgain"_qs));
        look(m_harness->view, 15);
        m_harness->leave().reject();
    }

    void soHaveTheSmallWindows()
    {
        m_harness->compact().setOpen(true);
        m_harness->voice().setMiniMode(true);
        TRY_VERIFY(windowCalled(u"compactWindow"_qs) && windowCalled(u"voiceMiniWindow"_qs));
        look(*windowCalled(u"compactWindow"_qs), 4);
        look(*windowCalled(u"voiceMiniWindow"_qs), 2);
        m_harness->compact().setOpen(false);
        m_harness->voice().setMiniMode(false);
    }

    void soHasTheModePage()
    {
        m_harness->dashboard().setCurrentMode(u"NONE"_qs);
        m_harness->settle();
        look(m_harness->view, 3);
    }

    void cleanupTestCase()
    {
        m_harness.reset();
        QAccessible::setActive(false);
    }

private:
    static QQuickWindow *windowCalled(const QString &name)
    {
        const QList<QWindow *> all = QGuiApplication::topLevelWindows();
        for (QWindow *window : all)
            if (window->objectName() == name && window->isVisible())
                return qobject_cast<QQuickWindow *>(window);
        return nullptr;
    }

    static void look(const QQuickWindow &window, int atLeast)
    {
        QStringList wrong;
        const int controls = inspect(window.contentItem(), wrong);
        QCOMPARE(wrong.join(u"; "_qs), QString());
        QVERIFY2(controls >= atLeast, qPrintable(QString::number(controls)));
    }

    /// How many controls there are; notes those that a screen reader can't tell apart.
    static int inspect(QQuickItem *item, QStringList &wrong)
    {
        if (!item->isVisible())
            return 0;
        int controls = 0;
        if (item->isEnabled() && (item->activeFocusOnTab() || item->property("focusPolicy").toInt() != Qt::NoFocus)) {
            ++controls;
            const QString fault = faultOf(item);
            if (!fault.isEmpty())
                wrong << QString::fromLatin1(item->metaObject()->className()) + u' ' + item->objectName() + fault;
        }
        const QList<QQuickItem *> children = item->childItems();
        for (QQuickItem *child : children)
            controls += inspect(child, wrong);
        return controls;
    }

    static QString faultOf(QQuickItem *item)
    {
        QAccessibleInterface *told = QAccessible::queryAccessibleInterface(item);
        if (!told)
            return u": nothing is told"_qs;
        if (told->text(QAccessible::Name).trimmed().isEmpty())
            return u": no name"_qs;
        for (const ControlRole &known : controlRoles)
            if (item->inherits(known.type))
                return told->role() == known.role ? QString() : u": role %1"_qs.arg(told->role());
        return told->role() == QAccessible::NoRole ? u": no role"_qs : QString();
    }

    std::unique_ptr<PageHarness> m_harness;
};

TARVO_TEST(EveryControlTest)
#include "EveryControlTest.moc"
