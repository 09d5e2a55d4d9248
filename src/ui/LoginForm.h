#pragma once

#include <QFrame>

class QLabel;
class QLineEdit;
class QPushButton;

namespace tarvo::ui {

class CheckBox;
class LoadingSpinner;

/// The fields and buttons of the login, on the frosted panel.
class LoginForm : public QFrame
{
    Q_OBJECT

public:
    explicit LoginForm(QWidget *parent = nullptr);

    QString username() const; ///< trimmed
    QString password() const;
    bool remember() const;
    bool autoLogin() const;
    void setUsername(const QString &username);
    void setPassword(const QString &password);
    void setRemember(bool remember);
    void setAutoLogin(bool automatic);

    /// While busy the spinner turns in the login button, and all that can be done is to call the login off.
    void setBusy(bool busy);
    bool isBusy() const { return m_busy; }

    /// Puts the cursor where the pilot types next.
    void focusFirstEmptyField();
    /// After a refusal: the whole password is typed anew.
    void focusPassword();
    /// Takes text that an input method still composes into the fields.
    void commitComposition();

    static constexpr int cornerRadius = 24; ///< pixels, of the panel

signals:
    void loginRequested();
    void registerRequested();
    /// By the button in place of the registration's, or Escape; only while busy.
    void cancelRequested();

private:
    void build();
    QLineEdit *makeField(const QString &name, const QString &placeholder);
    void makeLoginButton();
    void connectKeys();

    QLineEdit *m_username;
    QLineEdit *m_password;
    CheckBox *m_remember;
    CheckBox *m_autoLogin;
    QPushButton *m_loginButton;
    QPushButton *m_registerButton;
    QPushButton *m_cancelButton;
    QLabel *m_loginLabel = nullptr;
    LoadingSpinner *m_spinner = nullptr;
    bool m_busy = false;
};

} // namespace tarvo::ui
