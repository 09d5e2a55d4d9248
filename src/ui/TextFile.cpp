#include "ui/TextFile.h"

#include <QSaveFile>

namespace tarvo::ui {

QString writeTextFile(const QString &path, const QString &text)
{
    QSaveFile file(path);
    const bool isDone =
        file.open(QIODevice::WriteOnly | QIODevice::Text) && file.write(text.toUtf8()) >= 0 && file.commit();
    return isDone ? QString() : file.errorString();
}

} // namespace tarvo::ui
