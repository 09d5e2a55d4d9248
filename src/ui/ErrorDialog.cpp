#include "ui/ErrorDialog.h"

#include <QBitmap>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPropertyAnimation>
#include <QPushButton>
#include <QShowEvent>
#include <QVBoxLayout>

namespace tarvo::ui {

namespace {
constexpr int contentWidth = 360; ///< pixels; the text wraps
constexpr int cornerRadius = 16;  ///< as in the style sheets
constexpr int badgeSide = 44;
constexpr int fadeMs = 180;

constexpr qsizetype longestMessage = 500; ///< characters

/// A server's text may be of any length and have any number of lines; the dialog has to fit the screen.
QString shortened(const QString &message)
{
    const QString shown = message.left(longestMessage).simplified();
    return message.size() <= longestMessage ? shown : shown + QStringLiteral("…");
}

QLabel *makeBadge(QWidget *parent)
{
    auto *badge = new QLabel(QStringLiteral("!"), parent);
    badge->setObjectName(QStringLiteral("iconBadge"));
    badge->setAlignment(Qt::AlignCenter);
    badge->setFixedSize(badgeSide, badgeSide);
    badge->setStyleSheet(QStringLiteral("background: rgba(241, 196, 15, 0.15); color: #F1C40F;"
                                        "border-radius: %1px; font-size: 24px; font-weight: 700;")
                             .arg(badgeSide / 2));
    return badge;
}
} // namespace

ErrorDialog::ErrorDialog(const QString &title, const QString &message, QWidget *parent) : QDialog(parent)
{
    setWindowFlags(Qt::Dialog | Qt::FramelessWindowHint);
    setAttribute(Qt::WA_TranslucentBackground);
    setWindowTitle(title);
    build(title, message);
}

ErrorDialog *ErrorDialog::open(const QString &title, const QString &message, QWidget *parent)
{
    auto *dialog = new ErrorDialog(title, message, parent);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->QDialog::open();
    return dialog;
}

void ErrorDialog::build(const QString &title, const QString &message)
{
    auto *content = new QWidget(this);
    content->setObjectName(QStringLiteral("contentWidget"));
    content->setAttribute(Qt::WA_StyledBackground);
    content->setFixedWidth(contentWidth);
    auto *outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->setSizeConstraint(QLayout::SetFixedSize);
    outer->addWidget(content);

    auto *titleLabel = new QLabel(title, content);
    titleLabel->setObjectName(QStringLiteral("titleLabel"));
    auto *messageLabel = new QLabel(shortened(message), content);
    messageLabel->setObjectName(QStringLiteral("messageLabel"));
    messageLabel->setTextFormat(Qt::PlainText); // it may quote what a server said
    messageLabel->setWordWrap(true);
    messageLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto *okButton = new QPushButton(tr("确定"), content);
    okButton->setObjectName(QStringLiteral("okButton"));
    okButton->setProperty("type", QStringLiteral("primary"));
    okButton->setDefault(true);
    okButton->setFocus();
    connect(okButton, &QPushButton::clicked, this, &QDialog::accept);

    auto *heading = new QHBoxLayout;
    heading->setSpacing(14);
    heading->addWidget(makeBadge(content));
    heading->addWidget(titleLabel, 1);
    auto *column = new QVBoxLayout(content);
    column->setContentsMargins(28, 26, 28, 24);
    column->setSpacing(18);
    column->addLayout(heading);
    column->addWidget(messageLabel);
    column->addWidget(okButton);
}

void ErrorDialog::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    if (event->spontaneous())
        return;
    centreOnParent();
    setWindowOpacity(0);
    auto *fade = new QPropertyAnimation(this, "windowOpacity", this);
    fade->setDuration(fadeMs);
    fade->setEndValue(1.0);
    fade->start(QAbstractAnimation::DeleteWhenStopped);
}

void ErrorDialog::resizeEvent(QResizeEvent *event)
{
    QDialog::resizeEvent(event);
    // Where nothing composes the screen, translucent corners would be black: they are cut off as well.
    QBitmap shape(size());
    shape.fill(Qt::color0);
    QPainter painter(&shape);
    painter.setBrush(Qt::color1);
    painter.setPen(Qt::NoPen);
    painter.drawRoundedRect(rect(), cornerRadius, cornerRadius);
    painter.end();
    setMask(shape);
}

void ErrorDialog::centreOnParent()
{
    if (!parentWidget())
        return;
    const QWidget *window = parentWidget()->window();
    move(window->mapToGlobal(window->rect().center()) - rect().center());
}

} // namespace tarvo::ui
