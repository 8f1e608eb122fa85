#pragma once

namespace brevanta {

class PageDelivery;

// The request that the page forward the user's token. A page that is still loading has nobody to hear it, so a request
// stays open until it has been delivered to a document that is complete. Main thread only.
class TokenRequest {
public:
    // The delivery outlives this.
    explicit TokenRequest(PageDelivery& delivery);

    void make();

    // The token is no longer wanted.
    void withdraw() { m_isOpen = false; }

    // The document is another one, or gone.
    void documentChanged() { m_isDocumentComplete = false; }

    // The document has been loaded as far as it will be.
    void documentEnded();

private:
    PageDelivery& m_delivery;
    bool m_isDocumentComplete { false };
    bool m_isOpen { false };
};

}
