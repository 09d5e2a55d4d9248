#include "fsd/AddressLookup.h"

#include <algorithm>
#include <vector>

#include <arpa/nameser.h>
#include <netinet/in.h>
#include <resolv.h>

namespace tarvo::fsd {

namespace {

using Answer = std::vector<unsigned char>;

/// Empty when there is none.
Answer ask(const QByteArray &name)
{
    struct __res_state state = {};
    if (res_ninit(&state) != 0)
        return {};
    Answer answer(NS_MAXMSG);
    const int size = res_nquery(&state, name.constData(), ns_c_in, ns_t_a, answer.data(), NS_MAXMSG);
    res_nclose(&state);
    answer.resize(static_cast<std::size_t>(std::clamp(size, 0, NS_MAXMSG)));
    return answer;
}

} // namespace

std::optional<quint32> lookUpAddress(const QByteArray &name)
{
    const Answer answer = ask(name);
    ns_msg message;
    if (ns_initparse(answer.data(), static_cast<int>(answer.size()), &message) != 0)
        return std::nullopt;
    for (int i = 0; i < ns_msg_count(message, ns_s_an); ++i) { // aliases stand before the addresses
        ns_rr record;
        if (ns_parserr(&message, ns_s_an, i, &record) == 0 && ns_rr_type(record) == ns_t_a &&
            ns_rr_rdlen(record) == sizeof(quint32))
            return ns_get32(ns_rr_rdata(record));
    }
    return std::nullopt;
}

} // namespace tarvo::fsd
