#pragma once

#include <memory>
#include <utility>

namespace brevanta {

// Held by an object whose callbacks may arrive after it has gone. Everything happens on one thread.
class LifeToken {
public:
    LifeToken() = default;
    LifeToken(const LifeToken&) = delete;
    LifeToken& operator=(const LifeToken&) = delete;

    // The callback, which does nothing once the token has been destroyed.
    template <typename Callback> [[nodiscard]] auto guard(Callback callback) const
    {
        return [weak = std::weak_ptr(m_life), callback = std::move(callback)]<typename... Arguments>(
                   Arguments&&... arguments) {
            if (!weak.expired())
                callback(std::forward<Arguments>(arguments)...);
        };
    }

    // For a callback that has to answer: expired once the token has been destroyed.
    [[nodiscard]] std::weak_ptr<const void> watch() const { return m_life; }

private:
    std::shared_ptr<char> m_life { std::make_shared<char>() };
};

}
