#include "ui/viewmodel/ComposeRules.h"

#include <QCoreApplication>

#include <algorithm>

namespace tarvo::ui {

namespace {

struct ComposeTexts
{
    Q_DECLARE_TR_FUNCTIONS(tarvo::ui::ComposeRules)
};

constexpr char16_t lastOnTheWire = 0xFF; ///< of Latin-1

} // namespace

QString textOnTheWire(const QString &text)
{
    return QString::fromLatin1(text.toLatin1());
}

QString composeNote(const QString &draft, bool silent)
{
    if (silent)
        return ComposeTexts::tr("没有电台处于发射状态，文本不会发出。请先在模拟器中选择发射电台。");
    const auto lost = std::ranges::count_if(draft, [](QChar letter) { return letter.unicode() > lastOnTheWire; });
    return lost > 0 ? ComposeTexts::tr("%1 个字符无法传送，对方将看到：%2").arg(lost).arg(textOnTheWire(draft))
                    : QString();
}

} // namespace tarvo::ui
