#pragma once

#include <QString>

#include <optional>

namespace tarvo::manager {

/// The code that a radio text such as "SELCAL ab-cd" calls, as "ABCD"; nothing when the text is no such call. The word
/// itself counts in upper case only.
std::optional<QString> calledSelcal(const QString &message);

/// True when `called`, from calledSelcal(), is the code `own`, such as "AB-CD" or "abcd". An empty one is never called.
bool isOwnSelcal(const QString &called, const QString &own);

} // namespace tarvo::manager
