#include "fsd/pdu/PlaneInfoResponse.h"

#include "fsd/pdu/Fields.h"

#include <utility>

namespace tarvo::fsd::pdu {

namespace {

/// The text after `key`, which ends in "=", in the first field that starts with it in any case; empty without one.
/// The sender's and the receiver's field are searched like the others.
QString valueOf(const QStringList &fields, QLatin1StringView key)
{
    for (const QString &field : fields) {
        if (field.startsWith(key, Qt::CaseInsensitive))
            return field.sliced(key.size());
    }
    return {};
}

void appendUnlessEmpty(QStringList &list, QLatin1StringView key, const QString &value)
{
    if (!value.isEmpty())
        list.append(key + value);
}

} // namespace

PlaneInfoResponse::PlaneInfoResponse(QString from, QString to, QString equipmentText, QString airlineText,
                                     QString liveryText, QString cslText)
    : PduBase{std::move(from), std::move(to)},
      equipment(std::move(equipmentText)),
      airline(std::move(airlineText)),
      livery(std::move(liveryText)),
      csl(std::move(cslText))
{
}

PlaneInfoResponse PlaneInfoResponse::parse(const QStringList &fields)
{
    fields::require(fields, 5, QLatin1StringView("PlaneInfoResponse"));
    QString csl = valueOf(fields, QLatin1StringView("CSL="));
    if (csl.isEmpty())
        csl = valueOf(fields, QLatin1StringView("M_CSL="));
    return {fields[0],
            fields[1],
            valueOf(fields, QLatin1StringView("EQUIPMENT=")),
            valueOf(fields, QLatin1StringView("AIRLINE=")),
            valueOf(fields, QLatin1StringView("LIVERY=")),
            std::move(csl)};
}

QStringList PlaneInfoResponse::serialize() const
{
    QStringList list{From, To, QStringLiteral("PI"), QStringLiteral("GEN"),
                     QLatin1StringView("EQUIPMENT=") + equipment};
    appendUnlessEmpty(list, QLatin1StringView("AIRLINE="), airline);
    appendUnlessEmpty(list, QLatin1StringView("LIVERY="), livery);
    appendUnlessEmpty(list, QLatin1StringView("CSL="), csl);
    return list;
}

} // namespace tarvo::fsd::pdu
