#include "ui/viewmodel/ChannelList.h"

#include "ui/viewmodel/MessageChannels.h"

namespace tarvo::ui {

namespace {
constexpr Role<ChannelRow> channelRoles[] = {
    {"key", member<&ChannelRow::key>},
    {"label", [](const ChannelRow &row) -> QVariant { return channels::label(row.key); }},
    {"unread", member<&ChannelRow::unread>},
};
} // namespace

ChannelList::ChannelList(QObject *parent) : RowsModel(channelRoles, parent)
{
    for (const QString &key : channels::fixed())
        insert(rows().size(), {.key = key});
}

void ChannelList::setUnread(const QString &key, int unread)
{
    for (qsizetype i = 0; i < rows().size(); ++i)
        if (rows().at(i).key == key)
            replace(i, {.key = key, .unread = unread});
}

} // namespace tarvo::ui
