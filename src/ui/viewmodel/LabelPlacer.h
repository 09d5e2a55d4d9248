#pragma once

#include <QHash>
#include <QList>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QString>

#include <optional>

namespace tarvo::ui {

/// A contact of the plot as it wants to be labelled. Lengths are in pixels, y downwards; an empty size is no label.
struct PlotSymbol
{
    QString callsign;    ///< who it is, from one placing to the next
    QPointF at;          ///< the symbol's middle; one that isn't finite is neither labelled nor in the way
    double distance = 0; ///< the lowest chooses first: from the own aircraft, in any unit; what isn't a number is last
    QSizeF name;         ///< of the callsign's text
    QSizeF altitude;     ///< of the text above the symbol, or under it
    bool below = false;  ///< the altitude's text stands under the symbol
};

/// What of a contact is labelled, and where.
struct PlotLabel
{
    std::optional<QPointF> name; ///< the callsign's upper left corner, seen from the symbol's middle
    bool altitude = false;

    bool operator==(const PlotLabel &) const = default;
};

/// Finds room for the labels of the plot. None lies on another label, on another contact's symbol or outside the glass.
/// The nearest contacts choose first; without room at their symbol the very nearest stand off from it, for a line to
/// lead there. Who has a label keeps it there while it fits, so that labels don't flicker while everything moves.
class LabelPlacer
{
public:
    /// The labels of these symbols, in their order. `taken` is where none may lie.
    QList<PlotLabel> place(const QList<PlotSymbol> &symbols, const QRectF &glass, const QList<QRectF> &taken);

    /// The upper left corner of an altitude's text, seen from the symbol's middle.
    static QPointF altitudeCorner(const QSizeF &text, bool below);

    static constexpr double symbolReach = 6;    ///< from a symbol's middle to its tips
    static constexpr double longestLabel = 90;  ///< a wider text is cut to this
    static constexpr double keptNearness = 0.8; ///< who has a label counts as this much nearer than it is

private:
    struct Held
    {
        std::optional<int> place;
        bool altitude = false;
    };

    class Placing;

    QHash<QString, Held> m_held; ///< by callsign, of the last placing alone
};

} // namespace tarvo::ui
