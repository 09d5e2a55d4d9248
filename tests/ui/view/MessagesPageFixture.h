#pragma once

#include "PageHarness.h"
#include "model/Controller.h"
#include "model/RadioMessageReceived.h"

#include <memory>

namespace tarvo::test {

network::RadioMessageReceived radioText(const QString &from, const QString &message, bool direct = false);
model::Controller stationCalled(const QString &callsign, quint32 frequency, const QString &name);
/// An evening's messages.
void fillMessages(ui::MessagesPageViewModel &model);

/// The messages page, open, and what the tests look for on it.
class MessagesPageFixture
{
protected:
    void open(QSize size = {1280, 800});
    ui::MessagesPageViewModel &model() { return m_harness->messages(); }
    QQuickItem *field(const char *name) { return m_harness->item(QString::fromLatin1(name)); }
    QQuickItem *list() { return field("messageList"); }
    QString composed() { return field("composeField")->property("text").toString(); }
    /// The sender's name above a message of theirs; null for none.
    QQuickItem *senderOf(const QString &callsign);
    /// Many short messages on the radio.
    void addRadioTexts(int count);

    bool atEnd();
    /// A message's text in the middle of the list; null for none.
    QQuickItem *bodyInSight();
    /// Turns the mouse wheel over the list; 120 is a notch away from the user.
    void wheel(int angle);

    std::unique_ptr<PageHarness> m_harness;

private:
    quint64 m_wheelTime = 1000; ///< ms
};

} // namespace tarvo::test
