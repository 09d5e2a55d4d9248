#pragma once

#include "ui/viewmodel/RowsModel.h"

#include <QString>

namespace tarvo::ui {

/// A channel that always stands.
struct ChannelRow
{
    QString key;
    int unread = 0;

    bool operator==(const ChannelRow &) const = default;
};

/// The channels that always stand, for the page. Roles: "key", "label", "unread".
class ChannelList : public RowsModel<ChannelRow>
{
public:
    explicit ChannelList(QObject *parent = nullptr);

    /// Does nothing for a key that isn't there.
    void setUnread(const QString &key, int unread);
};

} // namespace tarvo::ui
