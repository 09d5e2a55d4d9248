#pragma once

class QJsonObject;

namespace tarvo::model {

/// Base of the account service's records. Reading never fails: a missing or mistyped key leaves its default.
struct Parseable
{
    Parseable() = default;
    Parseable(const Parseable &) = default;
    Parseable &operator=(const Parseable &) = default;
    virtual ~Parseable() = default;

    /// Replaces the record's fields by those of `object`.
    virtual void parse(const QJsonObject &object) = 0;
};

} // namespace tarvo::model
