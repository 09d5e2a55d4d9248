#pragma once

#include "AppConfig.h"
#include "diagnosis/Finding.h"
#include "diagnosis/StoredSettings.h"

#include <QStringList>
#include <QTemporaryDir>

namespace tarvo::test {

/// What AppConfig writes into a fresh folder.
inline diagnosis::StoredSettings freshSettings()
{
    const QTemporaryDir folder;
    const AppConfig config(folder.path());
    return diagnosis::readSettings(folder.path());
}

/// Marks and titles in order, such as "✗ X-Plane".
inline QStringList marksOf(const diagnosis::Findings &findings)
{
    QStringList marks;
    for (const diagnosis::Finding &finding : findings)
        marks << diagnosis::shown(finding).section(QChar(0xff1a), 0, 0); // up to the colon
    return marks;
}

} // namespace tarvo::test
