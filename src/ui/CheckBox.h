#pragma once

#include <QCheckBox>
#include <QColor>

namespace tarvo::ui {

/// A check box whose box and tick are drawn here, sharp at every scale. The style sheet sets its colours.
class CheckBox : public QCheckBox
{
    Q_OBJECT
    Q_PROPERTY(QColor accentColor MEMBER m_accentColor)
    Q_PROPERTY(QColor boxColor MEMBER m_boxColor)
    Q_PROPERTY(QColor frameColor MEMBER m_frameColor)

public:
    explicit CheckBox(const QString &text, QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;
    bool hitButton(const QPoint &position) const override { return rect().contains(position); }

private:
    void paintBox(QPainter &painter, const QRectF &box) const;

    QColor m_accentColor{0x3B, 0x82, 0xF6};
    QColor m_boxColor{0xFF, 0xFF, 0xFF};
    QColor m_frameColor{0x94, 0xA3, 0xB8};
};

} // namespace tarvo::ui
