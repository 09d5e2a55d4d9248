#pragma once

#include <QTest>

#include <cstddef>
#include <utility>

namespace tarvo::test {

/// The columns of a test's table, a type for each name: columns<QString, int>("line", "count").
template <class... Type, std::size_t... Length>
void columns(const char (&...name)[Length])
{
    static_assert(sizeof...(Type) == sizeof...(Length), "a type for each name");
    (QTest::addColumn<Type>(name), ...);
}

} // namespace tarvo::test
