#pragma once

#include "manager/ControllerManager.h"
#include "manager/Session.h"

#include <functional>
#include <utility>

namespace tarvo::test {

inline const QString twr = u"ZBAA_TWR"_qs;
inline const QString gnd = u"ZBAA_GND"_qs;

/// "ZBAA_TWR 118500 Unknown", with "valid" and "pending" behind it where they hold.
inline QString textOf(const model::Controller &controller)
{
    QString text = u"%1 %2 %3"_qs.arg(controller.callsign).arg(controller.frequency).arg(controller.realName);
    if (controller.valid)
        text += u" valid"_qs;
    if (controller.deletePending)
        text += u" pending"_qs;
    return text;
}

/// A pilot's session with the manager under test. Stations report by the NetworkManager's own signals unless a test
/// sends lines.
struct ControlledSession : Session
{
    tarvo::manager::ControllerManager controllers{manager, clock};
    /// "added ...", "deleted ..." and "updated ...", in order.
    QStringList changes;

    ControlledSession()
    {
        const auto note = [this](const QString &what) {
            return [this, what](const model::Controller &controller) { changes << what + u' ' + textOf(controller); };
        };
        QObject::connect(&controllers, &tarvo::manager::ControllerManager::controllerAdded, manager.get(),
                         note(u"added"_qs));
        QObject::connect(&controllers, &tarvo::manager::ControllerManager::controllerDeleted, manager.get(),
                         note(u"deleted"_qs));
        QObject::connect(&controllers, &tarvo::manager::ControllerManager::controllerUpdated, manager.get(),
                         note(u"updated"_qs));
    }

    void report(const QString &callsign, quint32 frequency, double latitude = 40, double longitude = 116) const
    {
        emit manager->controllerUpdateReceived(callsign, frequency, latitude, longitude);
    }
    void confirm(const QString &callsign) const { emit manager->isValidAtcReceived(callsign); }
    void name(const QString &callsign, const QString &name) const { emit manager->realNameReceived(callsign, name); }
    void leave(const QString &callsign) const { emit manager->controllerDeleted(callsign); }

    QTimer *timer() const { return controllers.findChild<QTimer *>(QStringLiteral("controllerTimer")); }
    void tick() const { QMetaObject::invokeMethod(timer(), "timeout"); }

    void tune(quint32 com1, quint32 com2) const
    {
        emit sim->radioStackStateChanged({.com1Frequency = com1, .com2Frequency = com2});
    }

    QStringList takeChanges()
    {
        QStringList taken;
        taken.swap(changes);
        return taken;
    }
    QStringList known() const
    {
        QStringList texts;
        for (const model::Controller &controller : controllers.controllers())
            texts.append(textOf(controller));
        return texts;
    }
    QStringList callsigns() const
    {
        QStringList texts;
        for (const model::Controller &controller : controllers.controllers())
            texts.append(controller.callsign);
        return texts;
    }
};

/// The same with a simulator in place.
struct SimulatedSession : ControlledSession
{
    SimulatedSession() { addSimulator(); }
};

/// A simulator that does something, once, when it is given the list.
struct BusySimulator : FakeSimulator
{
    std::function<void()> action;

    void setControllers(const QList<model::Controller> &list) override
    {
        FakeSimulator::setControllers(list);
        if (const auto once = std::exchange(action, {}))
            once();
    }
};

inline QString tuned(int radio, const QString &callsign)
{
    return u"setStationCallsign %1 %2"_qs.arg(radio).arg(callsign);
}

} // namespace tarvo::test
