import QtQuick

/// Turns the wheel into steps of a range, positive towards the pilot. A mouse's wheel goes 120 a notch, a touch pad a
/// little at a time.
WheelHandler {
    property real turned: 0

    signal stepped(int steps)

    acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad
    onActiveChanged: turned = 0
    onWheel: event => {
        turned += event.angleDelta.y
        const notches = Math.trunc(turned / 120)
        turned -= 120 * notches
        if (notches !== 0)
            stepped(-notches)
    }
}
