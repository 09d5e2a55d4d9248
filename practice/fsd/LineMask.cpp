#include "practice/fsd/LineMask.h"

#include <QStringList>

namespace tarvo::practice {

QString maskSecrets(const QString &line)
{
    // In any case and after blanks: a client that gets the identifier wrong still must not have its password printed.
    const QString start = line.trimmed().left(3).toUpper();
    const bool pilot = start == QLatin1String("#AP");
    if (!pilot && start != QLatin1String("#AA"))
        return line;
    QStringList fields = line.split(QLatin1Char(':'));
    const qsizetype secret = pilot ? 3 : 4;
    const qsizetype expected = pilot ? 8 : 7;
    if (fields.size() <= secret)
        return line;
    // A password with a colon in it shifts the fields; then all that could be part of it is masked.
    const qsizetype last = secret + qMax<qsizetype>(0, fields.size() - expected);
    for (qsizetype i = secret; i <= last; ++i) {
        if (!fields.at(i).isEmpty())
            fields[i] = QStringLiteral("******");
    }
    return fields.join(QLatin1Char(':'));
}

} // namespace tarvo::practice
