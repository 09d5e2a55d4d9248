#pragma once

#include <QCoreApplication>
#include <QList>
#include <QString>

namespace tarvo::diagnosis {

enum class Mark
{
    Good,
    Bad,
    Skipped ///< doesn't concern this pilot or this system; never a fault
};

/// What one check has found, in the pilot's words.
struct Finding
{
    Mark mark = Mark::Good;
    QString title;
    QString detail;
    QString advice = {}; ///< what to do; empty unless Bad

    bool operator==(const Finding &) const = default;
};

using Findings = QList<Finding>;

/// "✓ title：detail"; below a ✗ a line with what to do.
QString shown(const Finding &finding);

/// True when no check has found a fault.
bool allGood(const Findings &findings);

/// The context of the texts here.
struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(tarvo::diagnosis)
};

} // namespace tarvo::diagnosis
