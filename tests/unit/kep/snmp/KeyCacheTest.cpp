#include "snmp/KeyCache.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>

using Kep::Snmp::AuthProtocol;
using Kep::Snmp::deriveKey;
using Kep::Snmp::KeyCache;

namespace {

std::string hex(const std::vector<unsigned char>& bytes)
{
    std::string text;
    for (const unsigned char byte : bytes) {
        text += "0123456789abcdef"[byte >> 4];
        text += "0123456789abcdef"[byte & 15];
    }
    return text;
}

// Derives for show and counts.
struct Counted {
    std::atomic<int> derivations = 0;
    KeyCache cache{[this](AuthProtocol, const std::string& password) {
        ++derivations;
        return std::vector<unsigned char>(password.begin(), password.end());
    }};

    void ask(const std::string& password) { cache.get(AuthProtocol::md5, password); }
};

std::string password(std::size_t number)
{
    return "password-" + std::to_string(number);
}

void onThreads(int count, const std::function<void()>& action)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i)
        threads.emplace_back(action);
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace

// The vectors of RFC 3414, appendices A.3.1 and A.3.2.
TEST(Keys, AreThoseOfTheStandard)
{
    EXPECT_EQ(hex(deriveKey(AuthProtocol::md5, "maplesyrup")), "9faf3283884e92834ebc9847d8edd963");
    EXPECT_EQ(hex(deriveKey(AuthProtocol::sha1, "maplesyrup")), "9fb5cc0381497b3793528939ff788d5d79145211");
}

TEST(Keys, OfLongPasswordsUseAllOfThem)
{
    const std::string longPassword(5000, 'x');
    EXPECT_NE(deriveKey(AuthProtocol::sha1, longPassword + "a"), deriveKey(AuthProtocol::sha1, longPassword + "b"));
}

TEST(KeyCaches, DeriveOncePerPassword)
{
    Counted counted;
    counted.ask("one");
    counted.ask("one");
    EXPECT_EQ(counted.derivations, 1);
    counted.ask("two");
    EXPECT_EQ(counted.derivations, 2);
}

TEST(KeyCaches, KeepProtocolsApart)
{
    KeyCache cache;
    EXPECT_EQ(hex(cache.get(AuthProtocol::md5, "maplesyrup")->bytes()), "9faf3283884e92834ebc9847d8edd963");
    EXPECT_EQ(hex(cache.get(AuthProtocol::sha1, "maplesyrup")->bytes()), "9fb5cc0381497b3793528939ff788d5d79145211");
}

TEST(KeyCaches, DeriveOnceWhenManyAskAtTheSameTime)
{
    std::atomic<int> derivations = 0;
    std::atomic<int> waiting = 0;
    constexpr int threads = 200;
    KeyCache cache([&](AuthProtocol, const std::string&) {
        ++derivations;
        while (waiting < threads)
            std::this_thread::yield();
        return std::vector<unsigned char>{1, 2, 3};
    });
    onThreads(threads, [&] {
        ++waiting;
        EXPECT_EQ(hex(cache.get(AuthProtocol::sha1, "same for all")->bytes()), "010203");
    });
    EXPECT_EQ(derivations, 1);
}

TEST(KeyCaches, DeriveDifferentPasswordsSideBySide)
{
    std::atomic<int> inside = 0;
    KeyCache cache([&](AuthProtocol, const std::string&) {
        ++inside;
        while (inside < 2) // hangs if one derivation waits for the other
            std::this_thread::yield();
        return std::vector<unsigned char>{1};
    });
    std::thread other([&] { cache.get(AuthProtocol::md5, "one password"); });
    cache.get(AuthProtocol::md5, "another password");
    other.join();
    EXPECT_EQ(inside, 2);
}

TEST(KeyCaches, AreBoundedAndForgetWhatIsUnusedForLongest)
{
    Counted counted;
    for (std::size_t i = 0; i < KeyCache::capacity; ++i)
        counted.ask(password(i));
    counted.ask(password(0));
    counted.ask("one too many");
    const int before = counted.derivations;
    counted.ask(password(0));
    EXPECT_EQ(counted.derivations, before);
    counted.ask(password(1));
    EXPECT_EQ(counted.derivations, before + 1);
}

TEST(KeyCaches, PassAFailureOnAndTryAgain)
{
    int derivations = 0;
    KeyCache cache([&](AuthProtocol, const std::string&) -> std::vector<unsigned char> {
        if (++derivations == 1)
            throw std::runtime_error("no digest");
        return {7};
    });
    EXPECT_THROW(cache.get(AuthProtocol::md5, "password"), std::runtime_error);
    EXPECT_EQ(hex(cache.get(AuthProtocol::md5, "password")->bytes()), "07");
}
