#include "web/TokenRequest.h"

#include "web/DocumentMemory.h"
#include "web/PageDelivery.h"
#include "web/PageScripts.h"

namespace brevanta {

TokenRequest::TokenRequest(PageDelivery& delivery, const DocumentMemory& document)
    : m_delivery(delivery)
    , m_document(document)
{
}

void TokenRequest::make()
{
    const auto delivery = m_delivery.deliver(std::string(PageScripts::tokenRefresh));
    m_isOpen = delivery == ScriptDelivery::refused || !m_document.isComplete;
}

void TokenRequest::documentCompleted()
{
    if (m_isOpen)
        make();
}

}
