#pragma once

#include "practice/PracticeNetwork.h"

#include <QObject>
#include <QTextStream>

namespace tarvo::practice {

/// What the practice network does, one line each, with the secrets masked and nothing that a terminal would obey.
class Console : public QObject
{
    Q_OBJECT

public:
    /// Writes to `out`, which must outlive it. Every line is flushed.
    explicit Console(QTextStream &out, QObject *parent = nullptr);

    /// Says what is served and where.
    void announce(PracticeNetwork &network);
    /// From now on says what happens.
    void follow(PracticeNetwork &network);
    void say(const QString &area, const QString &text);

private:
    void followFsd(const QString &area, FsdServer &server);
    void followXPlane(XPlaneStandIn &xplane);

    QTextStream &m_out;
};

} // namespace tarvo::practice
