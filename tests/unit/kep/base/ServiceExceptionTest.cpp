#include "Kep/Platform/ServiceException.h"

#include <gtest/gtest.h>

using namespace Kep::Platform;
using Kep::Variant;

namespace {

TEST(CallRecords, WriteServiceOperationAndRawParams)
{
    Operation operation;
    operation.service = "Printer\"Discovery";
    operation.operation = "getStatus";
    operation.params = R"({"cookie":"c"})";
    EXPECT_EQ(operation.toJson(),
              R"({"service":"Printer\"Discovery","operation":"getStatus","params":{"cookie":"c"}})");
}

TEST(CallRecords, AnEmptyOneIsStillJson)
{
    EXPECT_EQ(Operation().toJson(), R"({"service":"","operation":"","params":null})");
}

TEST(ErrorDocuments, HoldCodeMessageDataAndOperation)
{
    const InternalServerErrorException internal("it \"failed\"", Variant(), Operation());
    EXPECT_STREQ(internal.what(), "it \"failed\"");
    EXPECT_EQ(internal.toJson(), R"({"code":"internalServerError","message":"it \"failed\"","data":null,)"
                                 R"("operation":{"service":"","operation":"","params":null}})");
    const NotFoundException missing("none", Variant(Variant::Object{{"x", Variant(1)}}), Operation());
    EXPECT_EQ(missing.toJson(), R"({"code":"notFound","message":"none","data":{"x":1},)"
                                R"("operation":{"service":"","operation":"","params":null}})");
}

TEST(ErrorDocuments, CarryTheCodeOfTheirMaker)
{
    const ServiceException busy("busy", "later", Variant("soon"), Operation());
    EXPECT_EQ(busy.toJson(), R"({"code":"busy","message":"later","data":"soon",)"
                             R"("operation":{"service":"","operation":"","params":null}})");
}

TEST(ErrorDocuments, AreServiceAndGenericExceptionsButNotTheFrameworksNotFound)
{
    static_assert(std::is_base_of_v<Kep::GenericException, ServiceException>);
    static_assert(std::is_base_of_v<ServiceException, NotFoundException>);
    static_assert(std::is_base_of_v<ServiceException, InternalServerErrorException>);
    static_assert(!std::is_base_of_v<Kep::NotFoundException, NotFoundException>);
    EXPECT_THROW(throw NotFoundException("x", Variant(), Operation()), ServiceException);
}

} // namespace
