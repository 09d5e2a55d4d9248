#include "input/NoInputSource.h"

namespace tarvo::input {

std::unique_ptr<InputSource> InputSource::ofSystem()
{
    return std::make_unique<NoInputSource>();
}

} // namespace tarvo::input
