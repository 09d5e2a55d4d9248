#include "diagnosis/Finding.h"

#include <algorithm>

namespace tarvo::diagnosis {

namespace {

QString markText(Mark mark)
{
    switch (mark) {
    case Mark::Good:
        return QStringLiteral("✓");
    case Mark::Bad:
        return QStringLiteral("✗");
    case Mark::Skipped:
        break;
    }
    return QStringLiteral("–");
}

} // namespace

QString shown(const Finding &finding)
{
    const QString line = QStringLiteral("%1 %2：%3").arg(markText(finding.mark), finding.title, finding.detail);
    return finding.advice.isEmpty() ? line : QStringLiteral("%1\n    → %2").arg(line, finding.advice);
}

bool allGood(const Findings &findings)
{
    return std::none_of(findings.begin(), findings.end(),
                        [](const Finding &finding) { return finding.mark == Mark::Bad; });
}

} // namespace tarvo::diagnosis
