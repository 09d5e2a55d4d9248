#pragma once

#include "ui/viewmodel/RowsModel.h"

#include <QString>
#include <QVariantMap>

namespace tarvo::ui {

/// A station nearby.
struct Station
{
    QString callsign;  ///< upper-case
    QString frequency; ///< MHz, three decimals
    QString name;      ///< empty while unknown

    bool operator==(const Station &) const = default;
    /// With "type" ("atc") beside the three.
    QVariantMap toMap() const;
};

/// The stations nearby, by callsign. Roles: "callsign", "frequency", "name".
class StationList : public RowsModel<Station>
{
public:
    /// More are not listed.
    static constexpr qsizetype maximumStations = 2000;

    explicit StationList(QObject *parent = nullptr);

    /// Adds or updates the station; false when that changes nothing.
    bool set(const Station &station);
    /// False when it wasn't there.
    bool remove(const QString &callsign);
    /// False when there was none.
    bool clear();

private:
    /// Where the callsign stands or would stand.
    qsizetype place(const QString &callsign) const;
    bool standsAt(qsizetype at, const QString &callsign) const;
};

} // namespace tarvo::ui
