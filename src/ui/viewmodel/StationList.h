#pragma once

#include "model/NearbyAtc.h"
#include "ui/viewmodel/RowsModel.h"

#include <QString>

namespace tarvo::ui {

/// The stations nearby, by callsign. Roles: "callsign", "type" ("atc"), "frequency", "name".
class StationList : public RowsModel<model::NearbyAtc>
{
public:
    /// More are not listed.
    static constexpr qsizetype maximumStations = 2000;

    explicit StationList(QObject *parent = nullptr);

    /// Adds or updates the station; false when that changes nothing.
    bool set(const model::NearbyAtc &station);
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
