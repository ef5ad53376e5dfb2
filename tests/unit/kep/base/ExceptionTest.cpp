#include "Kep/Exception.h"
#include "Kep/Assert.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace {

TEST(Exceptions, CarryTheirMessage)
{
    EXPECT_STREQ(Kep::GenericException("what happened").what(), "what happened");
    EXPECT_STREQ(Kep::NotFoundException("no such thing").what(), "no such thing");
    EXPECT_STREQ(Kep::NoFactoryException("nobody makes it").what(), "nobody makes it");
}

TEST(Exceptions, InvalidOperationNamesTheFunction)
{
    EXPECT_STREQ(Kep::InvalidOperationException("createPdExecutor").what(),
                 "Invalid operation occurred in the function: createPdExecutor");
}

TEST(Exceptions, AllDescendFromGenericException)
{
    static_assert(std::is_base_of_v<std::exception, Kep::GenericException>);
    static_assert(std::is_base_of_v<Kep::GenericException, Kep::NotFoundException>);
    static_assert(std::is_base_of_v<Kep::GenericException, Kep::NoFactoryException>);
    static_assert(std::is_base_of_v<Kep::GenericException, Kep::InvalidOperationException>);
    static_assert(!std::is_base_of_v<Kep::NotFoundException, Kep::NoFactoryException>);
    EXPECT_THROW(throw Kep::InvalidOperationException("x"), Kep::GenericException);
}

TEST(Exceptions, ACopyOutlivesTheOriginalAndCannotThrow)
{
    static_assert(std::is_nothrow_copy_constructible_v<Kep::GenericException>);
    Kep::GenericException copy("another");
    {
        const Kep::GenericException original(std::string(100, 'm'));
        copy = original;
    }
    EXPECT_EQ(copy.what(), std::string(100, 'm'));
}

TEST(Assertions, ReportOnStandardErrorAndReturn)
{
    testing::internal::CaptureStderr();
    Kep::assertionFailed("g_plugin", "Kep\\Platform\\DllApi", 42);
    const std::string report = testing::internal::GetCapturedStderr();
    EXPECT_NE(report.find("\"g_plugin\""), std::string::npos) << report;
    EXPECT_NE(report.find("Kep\\Platform\\DllApi"), std::string::npos) << report;
    EXPECT_NE(report.find("42"), std::string::npos) << report;
}

} // namespace
