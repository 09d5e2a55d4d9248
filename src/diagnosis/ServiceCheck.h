#pragma once

#include "diagnosis/Finding.h"

#include <QUrl>
#include <QtGlobal>

#include <chrono>

namespace tarvo {
struct ServiceEndpoints;
}

namespace tarvo::diagnosis {

enum class ServiceKind
{
    Http, ///< answers a request
    Fsd,  ///< greets, "$DI"
    Voice ///< says nothing before the sign-in
};

/// One of the network's services, as the client reaches it.
struct Service
{
    ServiceKind kind;
    QString title;
    QString host;
    quint16 port;
    QUrl url = {}; ///< what is asked of an HTTP service
};

QList<Service> servicesOf(const ServiceEndpoints &endpoints);

/// How far one came on the way to a service.
enum class ServiceStep
{
    NoName,       ///< the name server knows no such name
    NameTooLate,  ///< the name server says nothing
    Refused,      ///< nobody listens there
    NoConnection, ///< nothing comes back, or no way leads there
    NoAnswer,     ///< connected, and then silence or something else, such as a proxy
    Failing,      ///< an HTTP status from 500 on
    BadCertificate,
    Answered
};

struct ServiceFacts
{
    ServiceStep step = ServiceStep::NoName;
    QString detail = {}; ///< an address, a status, or the system's words
};

/// How long each step may take.
struct ServiceLimits
{
    std::chrono::milliseconds name{3000};
    std::chrono::milliseconds connection{3000};
    std::chrono::milliseconds answer{4000};
};

/// Goes the client's way up to the first answer, without signing in. Waits, in an event loop.
ServiceFacts tryService(const Service &service, const ServiceLimits &limits = {});
Finding judgeService(const Service &service, const ServiceFacts &facts);

} // namespace tarvo::diagnosis
