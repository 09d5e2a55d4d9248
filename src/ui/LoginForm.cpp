#include "ui/LoginForm.h"

#include "ui/CheckBox.h"
#include "ui/LoadingSpinner.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QInputMethod>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

namespace tarvo::ui {

namespace {
constexpr int controlHeight = 46;
constexpr int longestInput = 4096; ///< characters; what is beyond is cut
constexpr QColor placeholderText{255, 255, 255, 170};

QLabel *makeLabel(const QString &text, const char *type, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setProperty("type", QLatin1String(type));
    return label;
}

QPushButton *makeButton(const QString &name, const char *type, QWidget *parent)
{
    auto *button = new QPushButton(parent);
    button->setObjectName(name);
    button->setProperty("type", QLatin1String(type));
    button->setCursor(Qt::PointingHandCursor);
    button->setAutoDefault(true); // outside of dialogs Enter presses no other
    return button;
}
} // namespace

LoginForm::LoginForm(QWidget *parent)
    : QFrame(parent),
      m_username(makeField(QStringLiteral("usernameEdit"), tr("CID 或用户名"))),
      m_password(makeField(QStringLiteral("passwordEdit"), tr("密码"))),
      m_remember(new CheckBox(tr("记住密码"), this)),
      m_autoLogin(new CheckBox(tr("自动登录"), this)),
      m_loginButton(makeButton(QStringLiteral("loginButton"), "primary", this)),
      m_registerButton(makeButton(QStringLiteral("registerButton"), "secondary", this)),
      m_cancelButton(makeButton(QStringLiteral("cancelButton"), "secondary", this))
{
    setObjectName(QStringLiteral("GlassPanel"));
    setStyleSheet(QStringLiteral("#GlassPanel { background: rgba(24, 25, 30, 0.65); border-radius: %1px;"
                                 " border: 1px solid rgba(255, 255, 255, 0.14); }")
                      .arg(cornerRadius));
    m_password->setEchoMode(QLineEdit::Password);
    m_remember->setObjectName(QStringLiteral("rememberCheck"));
    m_autoLogin->setObjectName(QStringLiteral("autoLoginCheck"));
    m_registerButton->setText(tr("注册账号"));
    m_cancelButton->setText(tr("取消登录"));
    m_cancelButton->hide();
    makeLoginButton();
    build();
    connectKeys();
}

QLineEdit *LoginForm::makeField(const QString &name, const QString &placeholder)
{
    auto *field = new QLineEdit(this);
    field->setObjectName(name);
    field->setPlaceholderText(placeholder);
    field->setAccessibleName(placeholder);
    field->setMinimumHeight(controlHeight);
    field->setMaxLength(longestInput);
    QPalette palette = field->palette();
    palette.setColor(QPalette::PlaceholderText, placeholderText); // style sheets can't set it yet
    field->setPalette(palette);
    return field;
}

void LoginForm::makeLoginButton()
{
    m_loginButton->setAccessibleName(tr("登录"));
    auto *row = new QHBoxLayout(m_loginButton);
    m_loginLabel = makeLabel(tr("登录"), "button", m_loginButton);
    m_loginLabel->setAlignment(Qt::AlignCenter);
    m_loginLabel->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_spinner = new LoadingSpinner(m_loginButton);
    row->addWidget(m_loginLabel, 0, Qt::AlignCenter);
    row->addWidget(m_spinner, 0, Qt::AlignCenter);
}

void LoginForm::build()
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(40, 40, 40, 36);
    column->setSpacing(0);
    column->addWidget(makeLabel(tr("欢迎登机"), "title", this));
    column->addSpacing(8);
    column->addWidget(makeLabel(tr("登录 TARVO 账户，开始今天的航程"), "subtitle", this));
    column->addSpacing(32);
    column->addWidget(m_username);
    column->addSpacing(14);
    column->addWidget(m_password);
    column->addSpacing(18);
    auto *checks = new QHBoxLayout;
    checks->addWidget(m_remember);
    checks->addStretch();
    checks->addWidget(m_autoLogin);
    column->addLayout(checks);
    column->addSpacing(26);
    column->addWidget(m_loginButton);
    column->addSpacing(12);
    column->addWidget(m_registerButton);
    column->addWidget(m_cancelButton); // one or the other
}

void LoginForm::connectKeys()
{
    connect(m_loginButton, &QPushButton::clicked, this, &LoginForm::loginRequested);
    connect(m_registerButton, &QPushButton::clicked, this, &LoginForm::registerRequested);
    connect(m_username, &QLineEdit::returnPressed, this, &LoginForm::loginRequested);
    connect(m_password, &QLineEdit::returnPressed, this, &LoginForm::loginRequested);
    connect(m_cancelButton, &QPushButton::clicked, this, &LoginForm::cancelRequested);
    const auto *escape = new QShortcut(Qt::Key_Escape, this);
    connect(escape, &QShortcut::activated, this, [this] {
        if (m_busy)
            emit cancelRequested();
    });
    setFocusProxy(m_username);
    setTabOrder(m_username, m_password);
    setTabOrder(m_password, m_remember);
    setTabOrder(m_remember, m_autoLogin);
    setTabOrder(m_autoLogin, m_loginButton);
    setTabOrder(m_loginButton, m_registerButton);
}

QString LoginForm::username() const
{
    return m_username->text().trimmed();
}

QString LoginForm::password() const
{
    return m_password->text();
}

bool LoginForm::remember() const
{
    return m_remember->isChecked();
}

bool LoginForm::autoLogin() const
{
    return m_autoLogin->isChecked();
}

void LoginForm::setUsername(const QString &username)
{
    m_username->setText(username);
}

void LoginForm::setPassword(const QString &password)
{
    m_password->setText(password);
}

void LoginForm::setRemember(bool remember)
{
    m_remember->setChecked(remember);
}

void LoginForm::setAutoLogin(bool automatic)
{
    m_autoLogin->setChecked(automatic);
}

void LoginForm::setBusy(bool busy)
{
    if (busy == m_busy)
        return;
    m_busy = busy;
    m_loginLabel->setVisible(!busy);
    if (busy)
        m_spinner->start();
    else
        m_spinner->stop();
    for (QWidget *control :
         std::initializer_list<QWidget *>{m_username, m_password, m_registerButton, m_remember, m_autoLogin})
        control->setEnabled(!busy);
    m_registerButton->setVisible(!busy);
    m_cancelButton->setVisible(busy);
}

void LoginForm::focusFirstEmptyField()
{
    if (m_username->text().isEmpty())
        m_username->setFocus();
    else if (m_password->text().isEmpty())
        m_password->setFocus();
    else
        m_loginButton->setFocus();
}

void LoginForm::focusPassword()
{
    m_password->setFocus();
    m_password->selectAll();
}

void LoginForm::commitComposition()
{
    QGuiApplication::inputMethod()->commit();
}

} // namespace tarvo::ui
