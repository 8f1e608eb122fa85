#include "setup/DeviceSetupLinkInbox.h"
#include "setup/DeviceSetupNavigation.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

const std::string first = "6F9619FF-8B86-D011-B42D-00C04FC964FF";
const std::string second = "00000000-0000-4000-8000-000000000000";

Url link(const char* scheme, const char* host, const char* path)
{
    return { .text = {}, .scheme = scheme, .host = host, .path = path };
}

}

TEST(DeviceSetupNavigation, OnlyThePlainLinkIsADeviceSetupLink)
{
    for (const auto& accepted :
        { link("brevanta", "open", "/device-setup"), link("BREVANTA", "OPEN", "/device-setup/") })
        EXPECT_TRUE(DeviceSetupNavigation::isDeviceSetupLink(accepted));
    auto withUser = link("brevanta", "open", "/device-setup");
    withUser.user = "";
    auto withPassword = link("brevanta", "open", "/device-setup");
    withPassword.password = "secret";
    auto withPort = link("brevanta", "open", "/device-setup");
    withPort.port = 80;
    for (const auto& refused : { withUser, withPassword, withPort, link("https", "open", "/device-setup"),
             link("brevanta", "opens", "/device-setup"), link("brevanta", "", "/device-setup"),
             link("brevanta", "open", "/device-setup//"), link("brevanta", "open", "/Device-Setup"),
             link("brevanta", "open", "/device-setup/x"), link("brevanta", "open", "/"), link("brevanta", "open", "") })
        EXPECT_FALSE(DeviceSetupNavigation::isDeviceSetupLink(refused)) << refused.host << refused.path;
}

TEST(DeviceSetupNavigation, OneLinkInTwoSecondsIsLetThrough)
{
    DeviceSetupNavigation::Throttle throttle;
    EXPECT_TRUE(throttle.accepts(100));
    EXPECT_FALSE(throttle.accepts(101.9));
    EXPECT_TRUE(throttle.accepts(102)); // A refused link does not start the wait anew.
    EXPECT_FALSE(throttle.accepts(103));
    EXPECT_TRUE(throttle.accepts(50)); // The machine was started again.
    EXPECT_FALSE(throttle.accepts(51));
}

TEST(DeviceSetupLinkInbox, ANavigationIsAnsweredUntilItIsConfirmedReplacedOrOld)
{
    DeviceSetupLinkInbox inbox;
    EXPECT_EQ(inbox.take(0), std::nullopt);
    inbox.put(first, 0);
    EXPECT_EQ(inbox.take(1), first);
    EXPECT_EQ(inbox.take(120), first);
    EXPECT_EQ(inbox.take(120.1), std::nullopt);
    EXPECT_EQ(inbox.take(1), std::nullopt);

    inbox.put(first, 200);
    inbox.put(second, 201);
    EXPECT_EQ(inbox.take(202), second);
    inbox.acknowledge(first, 202);
    EXPECT_EQ(inbox.take(203), second);
    inbox.acknowledge(second, 203);
    EXPECT_EQ(inbox.take(204), std::nullopt);
}

TEST(DeviceSetupLinkInbox, AConfirmationMustBeAUuidAndAnOldNavigationGoesWithAnyOfThem)
{
    DeviceSetupLinkInbox inbox;
    inbox.put("no uuid at all", 0);
    inbox.acknowledge("no uuid at all", 1);
    EXPECT_EQ(inbox.take(2), "no uuid at all");
    inbox.acknowledge(second, 121);
    EXPECT_EQ(inbox.take(3), std::nullopt);

    for (const char* text :
        { "", "6F9619FF", "6F9619FF-8B86-D011-B42D-00C04FC964F", "6F9619FF-8B86-D011-B42D-00C04FC964FFF",
            "6F9619FF8B86D011B42D00C04FC964FF", "6F9619FG-8B86-D011-B42D-00C04FC964FF" })
        EXPECT_FALSE(isUuid(text)) << text;
    EXPECT_TRUE(isUuid(first) && isUuid("6f9619ff-8b86-d011-b42d-00c04fc964ff"));
}

}
