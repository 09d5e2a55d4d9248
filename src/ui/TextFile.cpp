#include "ui/TextFile.h"

#include "Logging.h"

#include <QSaveFile>

namespace tarvo::ui {

QString writeTextFile(const QString &path, const QString &text)
{
    QSaveFile file(path);
    // QSaveFile overlooks a full disk where only closing brings the last bytes there.
    const bool isDone = file.open(QIODevice::WriteOnly | QIODevice::Text) && file.write(text.toUtf8()) >= 0 &&
                        logging::flush(file) && file.commit();
    return isDone ? QString() : file.errorString();
}

} // namespace tarvo::ui
