#pragma once

#include "ui/viewmodel/Message.h"
#include "ui/viewmodel/RowsModel.h"

namespace tarvo::ui {

/// A message on the page.
struct ShownMessage
{
    Message message;
    qint64 wallMs = 0;     ///< since the epoch
    bool expanded = false; ///< a long text is shown whole

    bool operator==(const ShownMessage &) const = default;
};

/// The active channel's messages, oldest first. Roles: "type", "direction", "directionLabel", "from", "to", "time",
/// "day", "message", "meta", "frequencies", "isDirect"; and "expanded", which a page may write.
class ShownMessages : public RowsModel<ShownMessage>
{
public:
    explicit ShownMessages(QObject *parent = nullptr);

    void append(ShownMessage message) { insert(rows().size(), std::move(message)); }
    /// The list mustn't be empty.
    void removeOldest() { remove(0); }

    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
};

} // namespace tarvo::ui
