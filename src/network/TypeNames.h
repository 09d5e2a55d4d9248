#pragma once

#include <QList>
#include <QString>
#include <QStringView>

namespace tarvo::network {

/// Only its letters and digits, upper-cased: "A-320neo" is "A320NEO".
QString compactName(QStringView text);

/// Which types have a maker and a model that hold all that was typed.
class TypeNames
{
public:
    /// A type's place among its designator's rows.
    struct Place
    {
        QString designator;
        qsizetype row = 0;

        bool operator==(const Place &) const = default;
    };

    void add(const Place &place, const QString &maker, const QString &model);
    /// Types whose maker or model holds each word of `query`, in whichever spelling. Each designator once; those first
    /// whose model begins with the query, then in the order in which they were added. At most `limit`; none for a
    /// single letter or digit.
    QList<Place> search(const QString &query, qsizetype limit) const;

private:
    struct Name
    {
        Place place;
        QString maker;
        QString model;
    };

    QList<Name> m_names;
};

} // namespace tarvo::network
