#pragma once

#include "common/Worker.h"

#include <QObject>
#include <QStringList>

#include <memory>

namespace tarvo::ui::viewmodel {

/// Looks which folders are there, on a thread of its own: a server in the network may keep it waiting.
class FolderCheck : public QObject
{
    Q_OBJECT

public:
    explicit FolderCheck(QObject *parent = nullptr);
    ~FolderCheck() override;

    /// Asks about these, and no longer about those that were asked for before. The answer
    /// comes anew when the question is the same: a folder may have been made since.
    void ask(const QStringList &paths);

signals:
    /// The answer to the newest question: those that are no folders.
    void answered(QStringList missing);

private:
    struct Shared;

    std::shared_ptr<Shared> m_shared; ///< the worker's too, which may outlive this
    QStringList m_asked;
    common::Worker m_worker;
};

} // namespace tarvo::ui::viewmodel
