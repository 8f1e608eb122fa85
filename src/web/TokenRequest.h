#pragma once

namespace brevanta {

class PageDelivery;
struct DocumentMemory;

// The request that the page forward the user's token. A page that is still loading has nobody to hear it, so a request
// stays open until it has been delivered to a document that is complete. Main thread only.
class TokenRequest {
public:
    // Both outlive this.
    TokenRequest(PageDelivery& delivery, const DocumentMemory& document);

    void make();

    // The token is no longer wanted.
    void withdraw() { m_isOpen = false; }

    // The document has become complete.
    void documentCompleted();

private:
    PageDelivery& m_delivery;
    const DocumentMemory& m_document;
    bool m_isOpen { false };
};

}
