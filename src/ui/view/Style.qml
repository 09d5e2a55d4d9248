pragma Singleton
import QtQuick

/// Every colour, radius, distance and type size of the pages.
QtObject {
    // Surface
    readonly property color bgGradientStart: "#F0F4F9"
    readonly property color background: "#F0F4F9"
    readonly property color bgGradientMiddle: "#E8F0F8"
    readonly property color bgGradientEnd: "#D9E5F3"
    readonly property color windowBackground: "#eef2f6"
    readonly property color sidebarBg: "transparent"
    readonly property color sidebarItemSelected: "#FFFFFF"
    readonly property color sidebarItemHover: "#20FFFFFF"

    // Cards
    readonly property color cardBackground: "#A0FFFFFF"
    readonly property color cardBg: "#A0FFFFFF"
    readonly property color cardBorder: "#20FFFFFF"
    readonly property color cardShadow: "#0F172A"
    readonly property color divider: "#15000000"

    // Brand
    readonly property color primary: "#1A2B47"
    readonly property color accent: "#0F172A"
    readonly property color accentSoft: "#E2EAF3"

    // Text
    readonly property color textPrimary: "#1E293B"
    readonly property color textSecondary: "#64748B"
    readonly property color textMuted: "#94A3B8"
    readonly property color textActive: "#0F172A"
    /// On the page's own ground, where textSecondary is too pale for small print.
    readonly property color textCaption: "#52627A"
    readonly property color textWarning: "#92500B"
    readonly property color textError: "#BE123C"

    // Status
    readonly property color statusSuccess: "#10B981"
    readonly property color statusError: "#F43F5E"
    readonly property color statusPending: "#F59E0B"
    readonly property color statusTransmit: "#EF4444"
    readonly property color endsSession: "#C81E45"
    readonly property color dim: "#800F172A"
    readonly property color noticeBg: "#FFF1F3"
    readonly property color noticeBorder: "#FBC9D2"

    // Radius
    readonly property int radiusLarge: 28
    readonly property int radiusCard: 24
    readonly property int radiusButton: 14
    readonly property int radiusPill: 24
    readonly property int radiusSmall: 8

    // Spacing
    readonly property int spacingTiny: 4
    readonly property int spacingSmall: 8
    readonly property int spacingMedium: 12
    readonly property int spacingLarge: 20
    readonly property int paddingPage: 24
    readonly property int spacingGrid: 20

    // Controls
    readonly property color controlBg: "#F8FAFC"
    readonly property color controlBgDisabled: "#EDF2F7"
    readonly property color controlBorder: "#E2E8F0"
    readonly property color controlBorderActive: "#3B82F6"
    readonly property color controlSelection: "#BFDBFE"
    readonly property color buttonText: "#FFFFFF"
    readonly property int controlHeight: 42

    // Messages
    readonly property color bubbleIncoming: "#FFFFFF"
    readonly property color bubbleOutgoing: primary
    readonly property color bubbleSystem: accentSoft
    readonly property color bubbleOutgoingText: buttonText
    readonly property color sheet: "#60FFFFFF"

    // On photographs
    readonly property color imageFilm: "#70000000"
    readonly property color imageFoot: "#B0000000"
    readonly property color glass: "#28FFFFFF"
    readonly property color glassHover: "#3CFFFFFF"
    readonly property color glassBorder: "#50FFFFFF"
    readonly property color onImage: "#FFFFFF"
    readonly property color onImageSoft: "#D8E1EC"

    // Instruments: a dark glass in the bright page
    readonly property color instrumentBezel: "#0B1220"
    readonly property color instrumentGlass: "#111B2E"
    readonly property color instrumentFilm: "#70060B16"
    readonly property color instrumentGrid: "#2B3B57"
    readonly property color instrumentLine: "#F1F5F9"
    readonly property color instrumentDim: "#8CA0BC"
    readonly property color instrumentOwn: "#FACC15"
    readonly property color instrumentActive: "#4ADE80"
    readonly property color instrumentTransmit: "#FB7185"
    readonly property color instrumentTraffic: "#67E8F9"
    readonly property int radarLabelHeight: 13
    readonly property color skyHigh: "#123A8C"
    readonly property color skyLow: "#7DB7F0"
    readonly property color groundNear: "#A0713F"
    readonly property color groundFar: "#3F2A17"

    // Type
    readonly property int fontSmall: 12
    readonly property int fontBody: 14
    readonly property int fontTitle: 16
    readonly property int fontValue: 22
    readonly property int fontHeading: 26
    readonly property int fontDisplay: 36
    /// A family with simplified Chinese forms; without it some systems fall back to Japanese ones.
    readonly property string fontFamily: firstOf(["Microsoft YaHei UI", "Noto Sans CJK SC", "Noto Sans SC",
                                                  "Source Han Sans SC", "WenQuanYi Micro Hei"])

    readonly property int animationShort: 120

    /// Of "quiet", "pending", "good" or "failed".
    function toneColor(tone: string): color {
        return ({ pending: statusPending, good: statusSuccess, failed: statusError })[tone] ?? textMuted
    }

    function firstOf(families: list<string>): string {
        const installed = Qt.fontFamilies()
        return families.find(family => installed.includes(family)) ?? Qt.application.font.family
    }
}
