#include "web/TokenRequest.h"

#include "web/PageDelivery.h"
#include "web/PageScripts.h"

namespace brevanta {

TokenRequest::TokenRequest(PageDelivery& delivery)
    : m_delivery(delivery)
{
}

void TokenRequest::make()
{
    const auto delivery = m_delivery.deliver(std::string(PageScripts::tokenRefresh));
    m_isOpen = delivery == ScriptDelivery::refused || !m_isDocumentComplete;
}

void TokenRequest::documentEnded()
{
    m_isDocumentComplete = true;
    if (m_isOpen)
        make();
}

}
