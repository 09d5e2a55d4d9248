#include "manager/AircraftTypeRules.h"

#include "network/SwiftAircraftIcaoService.h"

#include <QRegularExpression>

#include <algorithm>

namespace tarvo::manager {

namespace {

constexpr qsizetype longestTypeCode = 4;

bool isLetter(QChar character)
{
    return character >= u'A' && character <= u'Z';
}

bool isDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

} // namespace

QString knownDesignator(const network::SwiftAircraftIcaoService &icao, const QString &text)
{
    const network::SwiftAircraftIcaoResult result = icao.normalize(text.left(TypeNormalizer::longestText));
    return result.found ? result.canonical : QString();
}

QString typeCodeFromText(const QString &text)
{
    static const QRegularExpression code(QStringLiteral("([A-Z0-9]{2,4})"));
    const QString upper = text.trimmed().toUpper();
    if (upper.isEmpty())
        return QStringLiteral("ZZZZ");
    const QRegularExpressionMatch match = code.match(upper);
    return match.hasMatch() ? match.captured(1) : upper.left(longestTypeCode);
}

QString typeFromFlightPlan(const QString &aircraftField)
{
    static const QRegularExpression wakeCategory(QStringLiteral("^/?[A-Z]\\s*/"));
    static const QRegularExpression separators(QStringLiteral("[/_-]+"));
    static const QRegularExpression code(QStringLiteral("\\b[A-Z0-9]{2,4}\\b"));
    QString field = aircraftField.trimmed().toUpper();
    if (field.isEmpty())
        return {};
    field.remove(wakeCategory);
    field.replace(separators, QStringLiteral(" "));
    const QRegularExpressionMatch match = code.match(field);
    return match.hasMatch() ? match.captured(0) : field.left(longestTypeCode);
}

QString airlineOfCallsign(const QString &callsign)
{
    constexpr qsizetype letters = 3;
    const bool isFlight = callsign.size() > letters &&
                          std::all_of(callsign.begin(), callsign.begin() + letters, isLetter) &&
                          isDigit(callsign.at(letters));
    return isFlight ? callsign.left(letters) : QString();
}

QString TypeNormalizer::normalized(const QString &text)
{
    // A fuller answer replaces what was found without the data, or the memory has grown to what no traffic needs.
    if (m_rememberedReady != m_icao.isReady() || m_remembered.size() >= maximumRemembered)
        m_remembered.clear();
    m_rememberedReady = m_icao.isReady();

    const QString key = text.size() > longestText ? text.left(longestText) : text;
    if (const auto found = m_remembered.constFind(key); found != m_remembered.constEnd())
        return *found;
    QString result = knownDesignator(m_icao, key);
    if (result.isEmpty())
        result = typeCodeFromText(key);
    m_remembered.insert(key, result);
    return result;
}

} // namespace tarvo::manager
