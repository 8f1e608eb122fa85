#pragma once

#include "platform/UserDefaults.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>

namespace brevanta {

// What holds for every UserDefaults. A bench gives:
//   UserDefaults& defaults();
//   void startAnew();          as the next start of the application would find the store
template <typename Bench> class UserDefaultsContract : public testing::Test {
protected:
    Bench m_bench;
};

TYPED_TEST_SUITE_P(UserDefaultsContract);

TYPED_TEST_P(UserDefaultsContract, KeepsEveryValueExactlyAndOfItsKindToTheNextStart)
{
    using Integers = std::vector<std::int64_t>;
    constexpr auto least = std::numeric_limits<std::int64_t>::min();
    constexpr auto greatest = std::numeric_limits<std::int64_t>::max();
    const DefaultsValue values[] = { true, false, std::int64_t { 0 }, std::int64_t { 1 }, std::int64_t { -1 }, least,
        greatest, (std::int64_t { 1 } << 53) + 1, 0.0, 1.0, -2.5, 0.1, 1e300, std::numeric_limits<double>::denorm_min(),
        std::string(), std::string("text"), std::string("1"), std::string("true"), std::string("Grüße \"→\" \n\\ 🛡"),
        std::string("a\0b", 3), Integers {}, Integers { 1 }, Integers { greatest, least, 0, 0 }, DefaultsDate { 0 },
        DefaultsDate { 1795262400 }, DefaultsDate { 1795262400.123 }, DefaultsDate { -0.001 },
        DefaultsDate { -62135596800 } };
    for (const auto& value : values) {
        this->m_bench.defaults().set("key", value);
        EXPECT_EQ(this->m_bench.defaults().get("key"), value) << "alternative " << value.index();
        this->m_bench.startAnew();
        EXPECT_EQ(this->m_bench.defaults().get("key"), value) << "alternative " << value.index();
    }
}

TYPED_TEST_P(UserDefaultsContract, KeysAreTakenAsTheyStand)
{
    const std::string keys[] = { "", "a", "A", "a.b", "a/b", "~1", "Schlüssel", "with \"quotes\"" };
    for (std::int64_t number = 0; const auto& key : keys)
        this->m_bench.defaults().set(key, number++);
    this->m_bench.startAnew();
    for (std::int64_t number = 0; const auto& key : keys)
        EXPECT_EQ(this->m_bench.defaults().get(key), DefaultsValue(number++)) << key;
}

TYPED_TEST_P(UserDefaultsContract, AbsentKeysHaveNoValueAndMayBeRemoved)
{
    auto& defaults = this->m_bench.defaults();
    EXPECT_EQ(defaults.get("key"), std::nullopt);
    defaults.remove("key");
    EXPECT_EQ(defaults.get("key"), std::nullopt);
}

TYPED_TEST_P(UserDefaultsContract, ARemovedKeyStaysAwayAndLeavesTheOthers)
{
    this->m_bench.defaults().set("kept", true);
    this->m_bench.defaults().set("removed", true);
    this->m_bench.defaults().remove("removed");
    EXPECT_EQ(this->m_bench.defaults().get("removed"), std::nullopt);
    this->m_bench.startAnew();
    EXPECT_EQ(this->m_bench.defaults().get("removed"), std::nullopt);
    EXPECT_EQ(this->m_bench.defaults().get("kept"), DefaultsValue(true));
}

TYPED_TEST_P(UserDefaultsContract, ThePersistentDomainHoldsWhatWasStoredAndNotRemoved)
{
    auto& defaults = this->m_bench.defaults();
    EXPECT_EQ(defaults.persistent("key"), StoredDefault());
    for (const auto& value : { DefaultsValue(false), DefaultsValue(DefaultsDate { 1.5 }), DefaultsValue("text") }) {
        defaults.set("key", value);
        EXPECT_EQ(defaults.persistent("key"), (StoredDefault { true, value })) << "alternative " << value.index();
    }
    defaults.remove("key");
    EXPECT_EQ(defaults.persistent("key"), StoredDefault());
}

REGISTER_TYPED_TEST_SUITE_P(UserDefaultsContract, KeepsEveryValueExactlyAndOfItsKindToTheNextStart,
    KeysAreTakenAsTheyStand, AbsentKeysHaveNoValueAndMayBeRemoved, ARemovedKeyStaysAwayAndLeavesTheOthers,
    ThePersistentDomainHoldsWhatWasStoredAndNotRemoved);

}
