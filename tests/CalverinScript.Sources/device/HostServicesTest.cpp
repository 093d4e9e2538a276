#include "HostServices.h"

#include <gtest/gtest.h>

#include "FakeRemotes.h"
#include "PlainHost.h"

namespace {

TEST(HostServicesOfADevice, AreMissingWithoutAHost) {
    const HostServices services = HostServices::Find(nullptr, nullptr);
    EXPECT_EQ(services.link, nullptr);
    EXPECT_EQ(services.newerLink, nullptr);
    EXPECT_EQ(services.folders, nullptr);
    EXPECT_EQ(services.variables, nullptr);
    EXPECT_EQ(services.names, nullptr);
    EXPECT_EQ(services.resources, nullptr);
}

TEST(HostServicesOfADevice, AreAskedForOnceAndInTheirOrder) {
    plain::Host host;
    HostServices::Find(host.Root(), nullptr);
    EXPECT_EQ(host.asked, (std::vector<std::string>{"IManagerRemoteManager", "IManagerRemoteManager2", "IFolderManager",
                                                    "IVariableManager", "IObjectNameTools", "IResourceProvider"}));
}

TEST(HostServicesOfADevice, HoldTheLinksThatTheManagersGive) {
    plain::Host host;
    FakeRemote older;
    FakeRemote2 newer;
    host.offerRemoteManager = true;
    host.offerRemoteManager2 = true;
    host.remote = &older;
    host.remote2 = &newer;
    const HostServices services = HostServices::Find(host.Root(), nullptr);
    EXPECT_EQ(services.link, &older);
    EXPECT_EQ(services.newerLink, &newer);
    EXPECT_NE(services.folders, nullptr);
}

TEST(HostServicesOfADevice, MayBeAnsweredWithSuccessAndNothing) {
    plain::Host host;
    host.nullFaces = {"IManagerRemoteManager", "IManagerRemoteManager2", "IFolderManager"};
    const HostServices services = HostServices::Find(host.Root(), nullptr);
    EXPECT_EQ(services.link, nullptr);
    EXPECT_EQ(services.newerLink, nullptr);
    EXPECT_EQ(services.folders, nullptr);
}

} // namespace
