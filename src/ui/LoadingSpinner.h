#pragma once

#include <QTimer>
#include <QWidget>

namespace tarvo::ui {

/// A ring of arcs that turns while something is under way. Hidden until start().
class LoadingSpinner : public QWidget
{
    Q_OBJECT

public:
    explicit LoadingSpinner(QWidget *parent = nullptr);

    void start();
    /// Halts and hides.
    void stop();
    bool isSpinning() const { return m_timer.isActive(); }

    QSize sizeHint() const override { return {22, 22}; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QTimer m_timer;
    int m_angle = 0; ///< degrees, clockwise
};

} // namespace tarvo::ui
