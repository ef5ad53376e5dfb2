#include "Kep/Snmp/V3Engine.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <string>

TEST(Libraries, KeepNoFilesAndLeaveTheLocaleAlone)
{
    const auto folder = std::filesystem::path(testing::TempDir()) / "kep-snmp-persistent";
    ASSERT_EQ(setenv("SNMP_PERSISTENT_DIR", folder.c_str(), 1), 0);
    ASSERT_EQ(setenv("LC_ALL", "C.UTF-8", 1), 0);
    const std::string locale = std::setlocale(LC_ALL, nullptr);
    Kep::Snmp::V3Engine::get();
    EXPECT_FALSE(std::filesystem::exists(folder));
    EXPECT_EQ(std::setlocale(LC_ALL, nullptr), locale);
}

TEST(Engines, AreOne)
{
    EXPECT_EQ(Kep::Snmp::V3Engine::get(), Kep::Snmp::V3Engine::get());
}
