#include "ui/viewmodel/LabelPlacer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <span>
#include <utility>
#include <vector>

namespace tarvo::ui {

namespace {

constexpr double clearance = 2; ///< pixels around a new label, so that the next small movement doesn't take it away
constexpr double besideSymbol = 11;
constexpr double ringStep = 13;
constexpr double ringDiagonal = 10;
constexpr double aboveSymbol = 7; ///< clear of a callsign beside it
constexpr int evicts = 1000;      ///< the cost of taking a farther contact's label away
constexpr std::size_t pushy = 12; ///< so many of the nearest may do so, or stand off; the others want a free place
constexpr int ringCount = 11;     ///< places beside the symbol, and ever farther off
constexpr int muchNearer = 2;     ///< so many rings nearer a label that stands off comes back

/// QRectF asks at each test whether its sizes are negative; these never are.
struct Box
{
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;

    Box(const QPointF &corner, const QSizeF &size)
        : left(corner.x()), top(corner.y()), right(left + size.width()), bottom(top + size.height())
    {
    }
    explicit Box(const QRectF &area) : Box(area.topLeft(), area.size()) {}

    bool meets(const Box &other) const
    {
        return left < other.right && other.left < right && top < other.bottom && other.top < bottom;
    }
    bool isInside(const Box &other) const
    {
        return left >= other.left && right <= other.right && top >= other.top && bottom <= other.bottom;
    }
    Box grownBy(double margin) const
    {
        return Box({left - margin, top - margin}, {right - left + 2 * margin, bottom - top + 2 * margin});
    }
};

/// Where a callsign may stand: beside the symbol, at its corners, over and under it. Sides are -1, 0 or 1.
struct Side
{
    int across;
    int down;
};
constexpr int sideCount = 8;
constexpr std::array<Side, sideCount> sides{{{1, 0}, {-1, 0}, {1, -1}, {1, 1}, {-1, -1}, {-1, 1}, {0, -1}, {0, 1}}};
/// The order of choice right of the middle, where labels go to the right; left of it they go to the left.
constexpr std::array<int, sideCount> rightFirst{0, 2, 3, 1, 4, 5, 6, 7};
constexpr std::array<int, sideCount> leftFirst{1, 4, 5, 0, 2, 3, 6, 7};

/// The upper left corner of a text at this place, seen from the symbol's middle. Places count the sides, ring by ring.
QPointF nameCorner(const QSizeF &text, int place)
{
    const Side &side = sides.at(static_cast<std::size_t>(place % sideCount));
    const int ring = place / sideCount;
    const double off = ring * (side.across != 0 && side.down != 0 ? ringDiagonal : ringStep);
    const double gap = side.down == 0 ? besideSymbol : LabelPlacer::symbolReach + 1;
    const double x = side.across == 0 ? -text.width() / 2 : side.across > 0 ? gap : -gap - text.width();
    const double y = side.down == 0  ? -text.height() / 2
                     : side.down > 0 ? LabelPlacer::symbolReach - 3 * std::abs(side.across)
                                     : -LabelPlacer::symbolReach - text.height() + 3 * std::abs(side.across);
    return {x + off * side.across, y + off * side.down};
}

bool isFinite(const QPointF &point)
{
    return std::isfinite(point.x()) && std::isfinite(point.y());
}

/// Empty for what can't be drawn.
QSizeF sane(const QSizeF &text)
{
    if (!(text.width() > 0 && text.height() > 0 && std::isfinite(text.height())))
        return {};
    return {std::min(text.width(), LabelPlacer::longestLabel), text.height()};
}

} // namespace

/// One placing: who chooses when, and what is already in the way.
class LabelPlacer::Placing
{
public:
    Placing(const QList<PlotSymbol> &symbols, const QHash<QString, Held> &held, const QRectF &glass,
            const QList<QRectF> &taken);
    QList<PlotLabel> run();
    QHash<QString, Held> held() const;

private:
    struct Contact
    {
        qsizetype row;
        double distance;
        QPointF at;
        QSizeF name;
        QSizeF altitude;
        Held before;
        Held now;
    };
    /// A label that wants a place.
    struct Wish
    {
        std::size_t owner;
        bool isName;
        double turn;              ///< the lowest chooses first
        std::optional<Box> keeps; ///< where it was, until it has chosen
    };
    struct Label
    {
        std::size_t owner;
        Box box;
    };

    void wish();
    void choose(Wish &wish);
    std::optional<int> placeFor(std::size_t owner) const;
    std::optional<int> nameCost(std::size_t owner, int place, double margin) const;
    std::optional<int> costOf(const Box &label, std::size_t owner, double margin) const;
    Box nameBox(const Contact &contact, int place) const;
    Box altitudeBox(const Contact &contact) const;

    const QList<PlotSymbol> &m_symbols;
    Box m_glass;
    std::vector<Contact> m_contacts; ///< nearest first
    std::vector<Box> m_marks;        ///< their symbols
    std::vector<Box> m_fixed;        ///< what no label may hide
    std::vector<Wish> m_wishes;
    std::vector<Label> m_labels; ///< placed
};

LabelPlacer::Placing::Placing(const QList<PlotSymbol> &symbols, const QHash<QString, Held> &held, const QRectF &glass,
                              const QList<QRectF> &taken)
    : m_symbols(symbols), m_glass(glass)
{
    for (const QRectF &area : taken)
        m_fixed.emplace_back(area);
    for (qsizetype row = 0; row < symbols.size(); ++row) {
        const PlotSymbol &symbol = symbols.at(row);
        const double distance = std::isnan(symbol.distance) ? std::numeric_limits<double>::infinity() : symbol.distance;
        if (isFinite(symbol.at))
            m_contacts.push_back({row, distance, symbol.at, sane(symbol.name), sane(symbol.altitude),
                                  held.value(symbol.callsign), Held()});
    }
    std::stable_sort(m_contacts.begin(), m_contacts.end(),
                     [](const Contact &one, const Contact &other) { return one.distance < other.distance; });
    for (const Contact &contact : m_contacts)
        m_marks.emplace_back(contact.at - QPointF(symbolReach, symbolReach), QSizeF(2 * symbolReach, 2 * symbolReach));
    wish();
}

void LabelPlacer::Placing::wish()
{
    for (std::size_t owner = 0; owner < m_contacts.size(); ++owner) {
        const Contact &contact = m_contacts[owner];
        std::optional<Box> name;
        std::optional<Box> altitude;
        if (contact.before.place)
            name = nameBox(contact, *contact.before.place);
        if (contact.before.altitude)
            altitude = altitudeBox(contact);
        if (!contact.altitude.isEmpty())
            m_wishes.push_back({owner, false, contact.distance * (altitude ? keptNearness : 1), altitude});
        if (!contact.name.isEmpty())
            m_wishes.push_back({owner, true, contact.distance * (name ? keptNearness : 1), name});
    }
    std::stable_sort(m_wishes.begin(), m_wishes.end(),
                     [](const Wish &one, const Wish &other) { return one.turn < other.turn; });
}

QList<PlotLabel> LabelPlacer::Placing::run()
{
    for (Wish &wish : m_wishes)
        choose(wish);
    QList<PlotLabel> labels(m_symbols.size());
    for (const Contact &contact : m_contacts) {
        PlotLabel &label = labels[contact.row];
        label.altitude = contact.now.altitude;
        if (contact.now.place)
            label.name = nameCorner(contact.name, *contact.now.place);
    }
    return labels;
}

QHash<QString, LabelPlacer::Held> LabelPlacer::Placing::held() const
{
    QHash<QString, Held> held;
    for (const Contact &contact : m_contacts) {
        const QString &callsign = m_symbols.at(contact.row).callsign;
        const bool isLabelled = contact.now.place || contact.now.altitude;
        if (isLabelled && !held.contains(callsign)) // of namesakes the nearest
            held.insert(callsign, contact.now);
    }
    return held;
}

void LabelPlacer::Placing::choose(Wish &wish)
{
    Contact &contact = m_contacts[wish.owner];
    const bool had = std::exchange(wish.keeps, std::nullopt).has_value();
    if (wish.isName) {
        contact.now.place = placeFor(wish.owner);
        if (contact.now.place)
            m_labels.push_back({wish.owner, nameBox(contact, *contact.now.place)});
        return;
    }
    const Box box = altitudeBox(contact);
    const std::optional<int> cost = costOf(box, wish.owner, had ? 0 : clearance);
    contact.now.altitude = cost && *cost < evicts;
    if (contact.now.altitude)
        m_labels.push_back({wish.owner, box});
}

std::optional<int> LabelPlacer::Placing::placeFor(std::size_t owner) const
{
    const Contact &contact = m_contacts[owner];
    std::optional<int> kept;
    if (contact.before.place)
        kept = nameCost(owner, *contact.before.place, 0);
    if (kept == 0)
        return contact.before.place;
    const std::array<int, sideCount> &order = contact.at.x() >= 0 ? rightFirst : leftFirst;
    std::optional<int> best;
    std::optional<int> place;
    for (int ring = 0; ring < (owner < pushy ? ringCount : 1) && best.value_or(evicts) > ring; ++ring) {
        for (const int side : order) {
            const int candidate = ring * sideCount + side;
            const std::optional<int> cost = nameCost(owner, candidate, clearance);
            if (!cost || (best && *cost >= *best) || (*cost > 0 && owner >= pushy))
                continue;
            best = cost;
            place = candidate;
            if (best == ring)
                break; // there is none that costs less
        }
    }
    // A label changes its place only for one that is wholly free, or much nearer.
    const bool stays = kept && best != 0 && best.value_or(evicts) > *kept - muchNearer;
    return stays ? contact.before.place : place;
}

/// What a callsign costs there; nothing when it must not be there.
std::optional<int> LabelPlacer::Placing::nameCost(std::size_t owner, int place, double margin) const
{
    const std::optional<int> cost = costOf(nameBox(m_contacts[owner], place), owner, margin);
    return cost ? std::optional<int>(*cost + place / sideCount) : std::nullopt;
}

/// What a label costs there; nothing when it must not be there.
std::optional<int> LabelPlacer::Placing::costOf(const Box &label, std::size_t owner, double margin) const
{
    const auto hides = [&label](const Box &other) { return label.meets(other); };
    if (!label.isInside(m_glass) || std::any_of(m_fixed.begin(), m_fixed.end(), hides))
        return std::nullopt;
    const Box grown = label.grownBy(margin);
    const auto meets = [&grown](const Box &other) { return grown.meets(other); };
    // One's own two labels may stand closely together.
    const auto meetsLabel = [&](std::size_t other, const Box &box) { return other == owner ? hides(box) : meets(box); };
    const std::span marks(m_marks);
    const auto nearer = marks.first(owner);
    const auto farther = marks.subspan(owner + 1);
    if (std::any_of(nearer.begin(), nearer.end(), meets) || std::any_of(farther.begin(), farther.end(), meets) ||
        std::any_of(m_labels.begin(), m_labels.end(), [&](const Label &one) { return meetsLabel(one.owner, one.box); }))
        return std::nullopt;
    const auto evicted = std::count_if(m_wishes.begin(), m_wishes.end(),
                                       [&](const Wish &one) { return one.keeps && meetsLabel(one.owner, *one.keeps); });
    return static_cast<int>(evicted) * evicts;
}

Box LabelPlacer::Placing::nameBox(const Contact &contact, int place) const
{
    return Box(contact.at + nameCorner(contact.name, place), contact.name);
}

Box LabelPlacer::Placing::altitudeBox(const Contact &contact) const
{
    const bool below = m_symbols.at(contact.row).below;
    return Box(contact.at + altitudeCorner(contact.altitude, below), contact.altitude);
}

QPointF LabelPlacer::altitudeCorner(const QSizeF &text, bool below)
{
    return {-text.width() / 2, below ? aboveSymbol : -aboveSymbol - text.height()};
}

QList<PlotLabel> LabelPlacer::place(const QList<PlotSymbol> &symbols, const QRectF &glass, const QList<QRectF> &taken)
{
    Placing placing(symbols, m_held, glass, taken);
    QList<PlotLabel> labels = placing.run();
    m_held = placing.held();
    return labels;
}

} // namespace tarvo::ui
