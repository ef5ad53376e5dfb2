#include "Kep/Snmp/V3Engine.h"

#include "tests/unit/support/Environment.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <string>

TEST(Libraries, KeepNoFilesAndLeaveTheLocaleAlone)
{
    const auto folder = std::filesystem::path(testing::TempDir()) / "kep-snmp-persistent";
    TestSupport::setVariable("SNMP_PERSISTENT_DIR", folder.string());
    TestSupport::setVariable("LC_ALL", "C.UTF-8");
    const std::string locale = std::setlocale(LC_ALL, nullptr);
    Kep::Snmp::V3Engine::get();
    EXPECT_FALSE(std::filesystem::exists(folder));
    EXPECT_EQ(std::setlocale(LC_ALL, nullptr), locale);
}

TEST(Engines, AreOne)
{
    EXPECT_EQ(Kep::Snmp::V3Engine::get(), Kep::Snmp::V3Engine::get());
}
