#include "manager/SelcalCode.h"

#include <QRegularExpression>

namespace tarvo::manager {

namespace {

QString plainCode(QString code)
{
    return code.remove(QLatin1Char('-')).toUpper();
}

} // namespace

std::optional<QString> calledSelcal(const QString &message)
{
    static const QRegularExpression call(QStringLiteral("^SELCAL ([A-Za-z][A-Za-z]-?[A-Za-z][A-Za-z])$"));
    const QRegularExpressionMatch match = call.match(message);
    if (!match.hasMatch())
        return {};
    return plainCode(match.captured(1));
}

bool isOwnSelcal(const QString &called, const QString &own)
{
    return !own.isEmpty() && plainCode(own) == called;
}

} // namespace tarvo::manager
