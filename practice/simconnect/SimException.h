#pragma once

#include <QtGlobal>

namespace tarvo::practice {

/// What the stand-in finds wrong with a call, by the SDK's numbers.
enum SimException : quint32
{
    NoException = 0,
    UnrecognizedId = 3,
    NameUnrecognized = 7,
    EventIdDuplicate = 9,
    TooManyObjects = 11,
    TooManyRequests = 12,
    InvalidDataType = 18,
    DataError = 20,
    CreateObjectFailed = 22,
    OperationInvalidForObjectType = 24,
    InvalidEnum = 27,
    DefinitionError = 28,
    OutOfBounds = 31
};

} // namespace tarvo::practice
