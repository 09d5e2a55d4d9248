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
    model.setOwnCallsign(u"CES2352"_qs);
    model.setNetworkConnected(true);
    model.setNearbyController(stationCalled(u"ZSPD_TWR"_qs, 118800, u"李想"_qs));
    model.setNearbyController(stationCalled(u"ZSPD_GND"_qs, 121700, u"Unknown"_qs));
    model.setNearbyController(stationCalled(u"ZSHA_CTR"_qs, 134775, u"Zhang Wei"_qs));
    model.addServerMessage(u"欢迎来到网络。"_qs);
    model.addSystemNote(u"ZSPD_TWR ATIS:"_qs);
    model.addRadioReceived(radioText(u"CCA1831"_qs, u"浦东塔台，CCA1831，17L 盲降已建立。"_qs));
    model.addRadioSent(u"浦东塔台，CES2352，请求推出开车，停机位 215。"_qs, {118025});
    model.addRadioReceived(radioText(u"ZSPD_TWR"_qs,
                                     QStringLiteral("CES2352，浦东塔台，同意推出开车，朝向东，跑道 16R，应答机 3401。"
                                                    "修正海压 1013，风向 170，4 米每秒，能见度大于 10 公里。"),
                                     true));
    model.addRadioSent(u"同意推出开车，朝向东，跑道 16R，应答机 3401，CES2352。"_qs, {118025});
    model.addPrivateReceived(u"ZSHA_CTR"_qs, u"请确认飞行计划中的备降场。"_qs);
    model.addPrivateSent(u"ZSHA_CTR"_qs, u"备降场 ZSNJ。"_qs);
    model.addPrivateReceived(u"CSN3388"_qs, u"晚上好！今晚去哪里？"_qs);
    model.addBroadcast(u"ADMIN_SUP"_qs, u"服务器将在 22:00 维护十分钟。"_qs);
    model.addWallopSent(u"有人在 121.500 上占频。"_qs);
    model.addSelcal(u"ZSHA_CTR"_qs, {134775});
}

void MessagesPageFixture::open(QSize size)
{
    m_harness = std::make_unique<PageHarness>(u"XPLANE"_qs, size);
    m_harness->fillAccount();
    m_harness->openSection(u"消息"_qs);
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
        model().addRadioReceived(radioText(u"CCA1"_qs, QString::number(i)));
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
