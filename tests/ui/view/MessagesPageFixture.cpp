#include "MessagesPageFixture.h"

#include <QWheelEvent>

namespace tarvo::test {

using ui::MessagesPageViewModel;

network::RadioMessageReceived radioText(const QString &from, const QString &message, bool direct)
{
    return {.from = from,
            .message = message,
            .frequencies = QVariant::fromValue(QList<uint>{118025}),
            .direct = direct,
            .dualReceive = false};
}

model::Controller stationCalled(const QString &callsign, quint32 frequency, const QString &name)
{
    model::Controller controller;
    controller.callsign = callsign;
    controller.frequency = frequency;
    controller.normalisedFrequency = frequency;
    controller.realName = name;
    return controller;
}

void fillMessages(MessagesPageViewModel &model)
{
    model.setOwnCallsign(QStringLiteral("CES2352"));
    model.setNetworkConnected(true);
    model.setNearbyController(stationCalled(QStringLiteral("ZSPD_TWR"), 118800, QStringLiteral("李想")));
    model.setNearbyController(stationCalled(QStringLiteral("ZSPD_GND"), 121700, QStringLiteral("Unknown")));
    model.setNearbyController(stationCalled(QStringLiteral("ZSHA_CTR"), 134775, QStringLiteral("Zhang Wei")));
    model.addServerMessage(QStringLiteral("欢迎来到网络。"));
    model.addSystemNote(QStringLiteral("ZSPD_TWR ATIS:"));
    model.addRadioReceived(radioText(QStringLiteral("CCA1831"), QStringLiteral("浦东塔台，CCA1831，17L 盲降已建立。")));
    model.addRadioSent(QStringLiteral("浦东塔台，CES2352，请求推出开车，停机位 215。"), {118025});
    model.addRadioReceived(radioText(QStringLiteral("ZSPD_TWR"),
                                     QStringLiteral("CES2352，浦东塔台，同意推出开车，朝向东，跑道 16R，应答机 3401。"
                                                    "修正海压 1013，风向 170，4 米每秒，能见度大于 10 公里。"),
                                     true));
    model.addRadioSent(QStringLiteral("同意推出开车，朝向东，跑道 16R，应答机 3401，CES2352。"), {118025});
    model.addPrivateReceived(QStringLiteral("ZSHA_CTR"), QStringLiteral("请确认飞行计划中的备降场。"));
    model.addPrivateSent(QStringLiteral("ZSHA_CTR"), QStringLiteral("备降场 ZSNJ。"));
    model.addPrivateReceived(QStringLiteral("CSN3388"), QStringLiteral("晚上好！今晚去哪里？"));
    model.addBroadcast(QStringLiteral("ADMIN_SUP"), QStringLiteral("服务器将在 22:00 维护十分钟。"));
    model.addWallopSent(QStringLiteral("有人在 121.500 上占频。"));
    model.addSelcal(QStringLiteral("ZSHA_CTR"), {134775});
}

void MessagesPageFixture::open(QSize size)
{
    m_harness = std::make_unique<PageHarness>(QStringLiteral("XPLANE"), size);
    m_harness->fillAccount();
    m_harness->openSection(QStringLiteral("消息"));
}

QQuickItem *MessagesPageFixture::senderOf(const QString &callsign)
{
    QQuickItem *text = nullptr;
    const QList<QQuickItem *> texts = m_harness->texts();
    for (QQuickItem *candidate : texts)
        if (candidate->property("text").toString() == callsign &&
            candidate->parentItem()->objectName() == QLatin1String("sender"))
            text = candidate;
    return text ? text->parentItem() : nullptr;
}

void MessagesPageFixture::addRadioTexts(int count)
{
    for (int i = 0; i < count; ++i)
        model().addRadioReceived(radioText(QStringLiteral("CCA1"), QString::number(i)));
}

bool MessagesPageFixture::atEnd()
{
    const QQuickItem *view = list();
    const qreal end = view->property("originY").toReal() + view->property("contentHeight").toReal();
    return view->property("contentY").toReal() + view->height() >= end - 1;
}

QQuickItem *MessagesPageFixture::bodyInSight()
{
    const QRectF sight = list()->mapRectToScene(QRectF(0, 100, list()->width(), list()->height() - 200));
    const QList<QQuickItem *> texts = m_harness->texts();
    for (QQuickItem *text : texts)
        if (text->objectName() == QLatin1String("body") && sight.contains(text->mapToScene({})))
            return text;
    return nullptr;
}

void MessagesPageFixture::wheel(int angle)
{
    const QPointF centre = list()->mapToScene(QPointF(list()->width() / 2, list()->height() / 2));
    QWheelEvent event(centre, m_harness->view.mapToGlobal(centre.toPoint()), {}, {0, angle}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    event.setTimestamp(m_wheelTime += 100); // without time between them, turns of a wheel are none
    QCoreApplication::sendEvent(&m_harness->view, &event);
}

} // namespace tarvo::test
