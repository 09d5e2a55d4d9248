// What one message costs the messages page, from the network's event to rows that stand where they will be painted;
// with a few rows and with a full list. Beside it, in the same run: a bare list view with the page's own delegate over
// a model. And what holds the page when 200 or 2,000 stations go in one turn. Painting isn't counted.
#include "model/Controller.h"
#include "model/RadioMessageReceived.h"
#include "ui/viewmodel/MessagesPageViewModel.h"

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickRenderControl>
#include <QQuickWindow>
#include <QStandardItemModel>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <memory>
#include <vector>

using namespace tarvo;
using ui::MessagesPageViewModel;

namespace {

constexpr int rounds = 101;
constexpr int few = 5;
constexpr int full = 300;

/// An item in a window that is laid out, never painted.
class ShownPage
{
public:
    ShownPage(QQmlEngine &engine, const char *qml, const QVariantMap &properties) : m_window(&m_control)
    {
        QQmlComponent component(&engine);
        component.setData(QByteArray("import QtQuick\nimport 'qrc:/src/ui/view'\n") + qml, QUrl());
        m_item.reset(qobject_cast<QQuickItem *>(component.createWithInitialProperties(properties)));
        if (!m_item)
            qFatal("%s", qPrintable(component.errorString()));
        m_window.resize(1000, 760);
        m_item->setParentItem(m_window.contentItem());
        m_item->setSize(QSizeF(1000, 760));
        settle();
    }

    /// Until nothing of this turn is left to do.
    void settle()
    {
        for (int i = 0; i < 3; ++i) {
            QCoreApplication::processEvents();
            m_control.polishItems();
        }
    }

private:
    QQuickRenderControl m_control;
    QQuickWindow m_window;
    std::unique_ptr<QQuickItem> m_item;
};

/// Of this process; other programs on the machine don't count.
double processorMs()
{
    return 1000.0 * static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

/// Median of milliseconds. `prepare` isn't counted.
double measure(ShownPage &page, int times, const std::function<void()> &prepare, const std::function<void()> &event)
{
    std::vector<double> taken;
    for (int i = 0; i < times; ++i) {
        prepare();
        page.settle();
        const double began = processorMs();
        event();
        page.settle();
        taken.push_back(processorMs() - began);
    }
    std::sort(taken.begin(), taken.end());
    return taken[taken.size() / 2];
}

struct Costs
{
    double atFew = 0;
    double atFull = 0;
};

/// `add` and `clear` act on what the page shows.
Costs costOfOne(ShownPage &page, const std::function<void()> &add, const std::function<void()> &clear)
{
    const auto fill = [&](int rows) {
        for (int i = 0; i < rows; ++i)
            add();
    };
    Costs costs;
    costs.atFew = measure(
        page, rounds,
        [&] {
            clear();
            fill(few);
        },
        add);
    fill(full);
    costs.atFull = measure(
        page, rounds, [] {}, add);
    return costs;
}

network::RadioMessageReceived text()
{
    return {.from = QStringLiteral("CCA1831"),
            .message = QStringLiteral("ZSPD_TWR, CCA1831, established on the ILS approach of runway 17L."),
            .frequencies = QVariant::fromValue(QList<uint>{118800}),
            .direct = false,
            .dualReceive = false};
}

Costs costOnThePage(QQmlEngine &engine)
{
    MessagesPageViewModel model;
    model.setNetworkConnected(true);
    ShownPage page(engine, "MessagesPage {}", {{QStringLiteral("messages"), QVariant::fromValue<QObject *>(&model)}});
    return costOfOne(
        page, [&] { model.addRadioReceived(text()); }, [&] { model.clearMessages(); });
}

Costs costInABareList(QQmlEngine &engine)
{
    const QVariantMap row = ui::Message::radioReceived(text()).row(1, 0, false);
    QHash<int, QByteArray> names;
    int role = Qt::UserRole;
    for (const QString &key : row.keys())
        names.insert(++role, key.toUtf8());
    names.insert(++role, "expanded");
    QStandardItemModel model;
    model.setItemRoleNames(names);
    const auto add = [&] {
        auto item = std::make_unique<QStandardItem>();
        for (auto name = names.cbegin(); name != names.cend(); ++name)
            item->setData(row.value(QString::fromUtf8(name.value()), false), name.key());
        model.appendRow(item.release());
        if (model.rowCount() > full)
            model.removeRow(0);
    };
    ShownPage page(
        engine,
        "ListView { id: list; cacheBuffer: 600; spacing: 12; delegate: MessageBubble { width: 700; sightTop: "
        "list.contentY - y; sightBottom: sightTop + list.height }\n"
        "Connections { target: list.model; function onRowsInserted() { Qt.callLater(list.positionViewAtEnd) } } }",
        {{QStringLiteral("model"), QVariant::fromValue<QObject *>(&model)}});
    return costOfOne(page, add, [&] { model.clear(); });
}

double costOfStationsThatGo(QQmlEngine &engine, int count, int stride)
{
    MessagesPageViewModel model;
    ShownPage page(engine, "MessagesPage {}", {{QStringLiteral("messages"), QVariant::fromValue<QObject *>(&model)}});
    const auto callsign = [stride](int i) {
        return QStringLiteral("S%1_TWR").arg(i * stride % 100003, 6, 10, QChar(u'0'));
    };
    return measure(
        page, 5,
        [&] {
            for (int i = 0; i < count; ++i)
                model.setNearbyController(
                    {.callsign = callsign(i), .frequency = 118000, .normalisedFrequency = 118000});
            model.setNearbyController({.callsign = QStringLiteral("ZZ"), .frequency = 118000});
        },
        [&] {
            for (int i = 0; i < count; ++i)
                model.removeNearbyController(callsign(i));
        });
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    const QGuiApplication application(argc, argv);
    QQmlEngine engine;
    const Costs bare = costInABareList(engine);
    const Costs page = costOnThePage(engine);
    std::printf("one message, medians of %d: bare list %.2f ms with %d rows, %.2f with %d: ratio %.2f\n", rounds,
                bare.atFew, few, bare.atFull, full, bare.atFull / bare.atFew);
    std::printf("the page %.2f ms with %d rows, %.2f with %d: ratio %.2f; against the bare list %.2f and %.2f\n",
                page.atFew, few, page.atFull, full, page.atFull / page.atFew, page.atFew / bare.atFew,
                page.atFull / bare.atFull);
    for (int stride : {1, 7919}) {
        const double some = costOfStationsThatGo(engine, 200, stride);
        const double many = costOfStationsThatGo(engine, 2000, stride);
        std::printf("stations that go in one turn, %s: 200 in %.1f ms, 2,000 in %.1f: ratio %.1f\n",
                    stride == 1 ? "in order" : "in no order", some, many, many / some);
    }
    return 0;
}
