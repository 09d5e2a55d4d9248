#include "ServiceEndpoints.h"

namespace tarvo {

ServiceEndpoints::ServiceEndpoints()
    : apiBaseUrl(QStringLiteral(TARVO_API_BASE_URL)),
      fsdHost(QStringLiteral(TARVO_FSD_HOST)),
      voiceHost(QStringLiteral(TARVO_VOICE_HOST)),
      registerUrl(QStringLiteral(TARVO_REGISTER_URL)),
      updateUrl(QStringLiteral(TARVO_UPDATE_URL)),
      docsUrl(QStringLiteral(TARVO_DOCS_URL))
{
}

QByteArray configSecret()
{
    return QByteArray::fromHex(TARVO_CONFIG_SECRET);
}

} // namespace tarvo
