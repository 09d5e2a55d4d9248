#pragma once

namespace tarvo::voice {

/// What a stream of the engine is for.
enum class StreamRole
{
    Input,
    Headphone,
    Speaker,
};

} // namespace tarvo::voice
