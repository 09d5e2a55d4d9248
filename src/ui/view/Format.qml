pragma Singleton
import QtQuick

/// How figures are written on the pages. Whoever calls has made sure that there is a figure.
QtObject {
    readonly property real feetPerMetre: 3.28084

    /// With so many decimals, and never as a negative nothing.
    function fixed(value: real, decimals: int): string {
        const scale = Math.pow(10, decimals)
        return (Math.round(value * scale) / scale + 0).toFixed(decimals)
    }

    /// A whole number in groups of three: 32,150.
    function grouped(value: real): string {
        return (Math.round(value) + 0).toLocaleString(Qt.locale("en_US"), "f", 0)
    }

    /// A heading or bearing in three figures; north is 360.
    function course(degrees: real): string {
        return String((Math.round(degrees) % 360 + 360) % 360 || 360).padStart(3, "0")
    }

    function latitude(degrees: real): string {
        return angle(degrees, "N", "S", 2)
    }

    function longitude(degrees: real): string {
        return angle(degrees, "E", "W", 3)
    }

    /// Degrees and minutes, as charts and flight plans have them: N40°04.8′
    function angle(degrees: real, positive: string, negative: string, digits: int): string {
        const tenths = Math.round(Math.abs(degrees) * 600)
        const whole = String(Math.floor(tenths / 600)).padStart(digits, "0")
        const minutes = (tenths % 600 / 10).toFixed(1).padStart(4, "0")
        return (degrees < 0 ? negative : positive) + whole + "°" + minutes + "′"
    }
}
