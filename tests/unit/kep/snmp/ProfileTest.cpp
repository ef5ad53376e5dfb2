#include "Kep/Snmp/Profile.h"

#include <gtest/gtest.h>

using namespace Kep::Snmp;

namespace {

template <class Kind> std::shared_ptr<Kind> cloneOf(const Kind& profile)
{
    return std::dynamic_pointer_cast<Kind>(profile.clone());
}

template <class Kind> void expectCloneOfCommunities()
{
    Kind profile;
    profile.port = 1161;
    profile.readCommunity = "reads";
    profile.writeCommunity = "writes";
    const auto clone = cloneOf(profile);
    ASSERT_TRUE(clone);
    EXPECT_EQ(clone->port, 1161);
    EXPECT_EQ(clone->readCommunity, "reads");
    EXPECT_EQ(clone->writeCommunity, "writes");
}

} // namespace

TEST(Profiles, OfCommunitiesAreClonedWhole)
{
    expectCloneOfCommunities<ProfileV1>();
    expectCloneOfCommunities<ProfileV2>();
}

TEST(Profiles, OfUsersAreClonedWhole)
{
    ProfileV3 profile;
    profile.port = 161;
    profile.userName = "user";
    profile.authProtocol = 3;
    profile.privacyProtocol = 24;
    profile.authPassword = "auth";
    profile.privacyPassword = "privacy";
    profile.context = "context";
    const auto clone = cloneOf(profile);
    ASSERT_TRUE(clone);
    EXPECT_EQ(clone->port, 161);
    EXPECT_EQ(clone->userName, "user");
    EXPECT_EQ(clone->authProtocol, 3);
    EXPECT_EQ(clone->privacyProtocol, 24);
    EXPECT_EQ(clone->authPassword, "auth");
    EXPECT_EQ(clone->privacyPassword, "privacy");
    EXPECT_EQ(clone->context, "context");
}

TEST(Profiles, AreNotTiedToTheirClones)
{
    ProfileV2 profile;
    profile.readCommunity = "before";
    const auto clone = cloneOf(profile);
    profile.readCommunity = "after";
    EXPECT_EQ(clone->readCommunity, "before");
}

TEST(Profiles, BeginWithoutSecurity)
{
    const ProfileV3 profile;
    EXPECT_EQ(profile.authProtocol, 1);
    EXPECT_EQ(profile.privacyProtocol, 1);
}
