#pragma once

#include "input/InputSource.h"

namespace tarvo::input {

/// Where nothing tells of other programs' keys. Says so in the log, once.
class NoInputSource : public InputSource
{
public:
    void start(InputListener &listener) override;
    QString keyName(int virtualKey) const override;
};

} // namespace tarvo::input
