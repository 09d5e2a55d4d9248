#pragma once

#include "input/InputSource.h"

class QByteArray;

namespace tarvo::input {

/// Raw events of an X server with XInput 2.2, over a connection of its own. They come without focus, and while another
/// program has grabbed the keyboard. A server that goes away takes nothing with it: the source is silent from then on,
/// and says so.
class X11InputSource : public InputSource
{
public:
    /// Keys from the server's XTEST devices come from programs, unless a test says that they are a finger's.
    enum class XTest
    {
        IsInjected,
        IsAFinger,
    };

    /// `display`: as in DISPLAY, which an empty one stands for.
    X11InputSource(const QByteArray &display, XTest xtest);
    ~X11InputSource() override;

    void start(InputListener &listener) override;
    QString keyName(int virtualKey) const override;

private:
    class Connection;

    std::unique_ptr<Connection> m_connection; ///< null without a server
};

} // namespace tarvo::input
