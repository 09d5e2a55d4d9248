#include "ui/viewmodel/FolderCheck.h"

#include <QFileInfo>

#include <algorithm>
#include <mutex>
#include <utility>

namespace tarvo::ui::viewmodel {

namespace {

QStringList missingOf(QStringList paths)
{
    const auto isThere = [](const QString &path) { return QFileInfo(path).isDir(); };
    paths.erase(std::remove_if(paths.begin(), paths.end(), isThere), paths.end());
    return paths;
}

} // namespace

struct FolderCheck::Shared
{
    std::mutex mutex;
    FolderCheck *owner = nullptr; ///< null once it has gone

    /// On the worker's thread.
    void report(const QStringList &asked, const QStringList &missing)
    {
        const std::lock_guard lock(mutex);
        if (!owner)
            return;
        const auto tell = [to = owner, asked, missing] {
            if (to->m_asked == asked)
                emit to->answered(missing);
        };
        QMetaObject::invokeMethod(owner, tell, Qt::QueuedConnection);
    }
};

FolderCheck::FolderCheck(QObject *parent)
    : QObject(parent), m_shared(std::make_shared<Shared>()), m_worker("folder check", 1)
{
    m_shared->owner = this;
}

FolderCheck::~FolderCheck()
{
    const std::lock_guard lock(m_shared->mutex);
    m_shared->owner = nullptr;
    m_worker.clear();
}

void FolderCheck::ask(const QStringList &paths)
{
    m_asked = paths;
    m_worker.clear();
    m_worker.post([shared = m_shared, paths] { shared->report(paths, missingOf(paths)); });
}

} // namespace tarvo::ui::viewmodel
