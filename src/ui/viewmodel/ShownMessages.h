#pragma once

#include "ui/viewmodel/Message.h"
#include "ui/viewmodel/RowsModel.h"

namespace tarvo::ui {

/// A message on the page.
struct ShownMessage
{
    Message message;
    qint64 id = 0;         ///< the store's number
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
    /// The message with this number is gone. It had a row, the first, or none.
    void forget(qint64 id);

    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
};

} // namespace tarvo::ui
