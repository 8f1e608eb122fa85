#pragma once

#include "fakes/FakeAnswers.h"
#include "platform/FilterSystem.h"

#include <deque>
#include <memory>
#include <utility>

namespace brevanta {

// Queries are answered with what `preferences.result` and its like hold; requests wait until the test goes on with
// them. What is told is posted to the main loop.
class FakeFilterSystem final : public FilterSystem {
public:
    enum class RequestKind { activation, deactivation };

    // A request that the client has made. Each call below tells its observer something; nothing is told after `end`.
    class Request {
    public:
        Request(Executor& mainLoop, RequestKind requestKind, ExtensionRequestObserver observer)
            : kind(requestKind)
            , m_mainLoop(mainLoop)
            , m_state(std::make_shared<State>(State { std::move(observer), std::nullopt, false }))
        {
        }

        // A cancel ends the request, as the system does it.
        void askWhetherToReplace(const ExtensionRecord& existing, const ExtensionRecord& candidate)
        {
            tell([existing, candidate](State& state) {
                state.replacement = state.observer.replacing(existing, candidate);
                if (state.replacement == ExtensionReplacement::cancel)
                    endNow(state,
                        std::unexpected(FilterError { "OSSystemExtensionErrorDomain", requestCanceledCode, {} }));
            });
        }

        void needUserApproval()
        {
            tell([](State& state) { state.observer.needsUserApproval(); });
        }

        void end(const std::expected<ExtensionRequestResult, FilterError>& result)
        {
            tell([result](State& state) { endNow(state, result); });
        }

        // What the observer answered; nothing before it was asked.
        [[nodiscard]] std::optional<ExtensionReplacement> replacement() const { return m_state->replacement; }
        [[nodiscard]] bool hasEnded() const { return m_state->hasEnded; }

        RequestKind kind;

    private:
        struct State {
            ExtensionRequestObserver observer;
            std::optional<ExtensionReplacement> replacement;
            bool hasEnded { false };
        };

        template <typename Action> void tell(Action action)
        {
            m_mainLoop.post([weak = std::weak_ptr(m_state), action] {
                const auto state = weak.lock();
                if (state && !state->hasEnded)
                    action(*state);
            });
        }

        static void endNow(State& state, const std::expected<ExtensionRequestResult, FilterError>& result)
        {
            if (!std::exchange(state.hasEnded, true))
                state.observer.ended(result);
        }

        Executor& m_mainLoop;
        std::shared_ptr<State> m_state;
    };

    explicit FakeFilterSystem(Executor& mainLoop)
        : preferences(mainLoop)
        , enabling(mainLoop)
        , removal(mainLoop)
        , properties(mainLoop)
        , m_mainLoop(mainLoop)
    {
    }

    void loadPreferences(std::function<void(std::expected<FilterPreferences, FilterError>)> onEnd) override
    {
        preferences.ask(std::move(onEnd));
    }

    void enable(std::function<void(std::expected<void, FilterError>)> onEnd) override
    {
        enabling.ask(std::move(onEnd));
    }

    void removeConfiguration(std::function<void(std::expected<void, FilterError>)> onEnd) override
    {
        removal.ask(std::move(onEnd));
    }

    void queryProperties(std::function<void(std::expected<std::vector<ExtensionRecord>, FilterError>)> onEnd) override
    {
        properties.ask(std::move(onEnd));
    }

    void requestActivation(ExtensionRequestObserver observer) override
    {
        requests.emplace_back(m_mainLoop, RequestKind::activation, std::move(observer));
    }

    void requestDeactivation(ExtensionRequestObserver observer) override
    {
        requests.emplace_back(m_mainLoop, RequestKind::deactivation, std::move(observer));
    }

    [[nodiscard]] std::optional<ExtensionRecord> bundledExtension() const override { return bundled; }

    FakeAnswers<std::expected<FilterPreferences, FilterError>> preferences;
    FakeAnswers<std::expected<void, FilterError>> enabling;
    FakeAnswers<std::expected<void, FilterError>> removal;
    FakeAnswers<std::expected<std::vector<ExtensionRecord>, FilterError>> properties;
    std::optional<ExtensionRecord> bundled;
    std::deque<Request> requests; // All that were made, the newest last.

private:
    Executor& m_mainLoop;
};

}
