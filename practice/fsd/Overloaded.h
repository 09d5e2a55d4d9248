#pragma once

namespace tarvo::practice {

/// Several lambdas as one visitor, for std::visit.
template <class... Functions>
struct Overloaded : Functions...
{
    using Functions::operator()...;
};

template <class... Functions>
Overloaded(Functions...) -> Overloaded<Functions...>;

} // namespace tarvo::practice
