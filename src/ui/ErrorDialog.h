#pragma once

#include <QDialog>

namespace tarvo::ui {

/// A frameless message with one button. Fades in, centred on its parent.
class ErrorDialog : public QDialog
{
    Q_OBJECT

public:
    ErrorDialog(const QString &title, const QString &message, QWidget *parent = nullptr);

    /// Shows a dialog that is modal to `parent` and destroys itself when closed. Returns it at once.
    static ErrorDialog *open(const QString &title, const QString &message, QWidget *parent);

protected:
    void showEvent(QShowEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void build(const QString &title, const QString &message);
    void centreOnParent();
};

} // namespace tarvo::ui
