#pragma once

#include <optional>
#include <string>

namespace brevanta::service {

// The sign-in token that the service holds, and which tokens it takes.
class Credential {
public:
    enum class Verdict { accepted, refused };

    void acceptAll();
    void rejectAll();
    void acceptOnly(std::string token);

    // A refused token leaves the held one in place and marks it invalid, so that the client is asked for another.
    Verdict offer(const std::string& token);
    void invalidate() { m_isInvalid = true; }
    void forget();
    void restore();

    [[nodiscard]] const std::optional<std::string>& token() const { return m_token; }
    [[nodiscard]] bool isInvalid() const { return m_isInvalid; }

private:
    enum class Policy { all, none, one };

    Policy m_policy = Policy::all;
    std::string m_onlyToken;
    std::optional<std::string> m_token = "stand-in-token";
    bool m_isInvalid = false;
};

}
