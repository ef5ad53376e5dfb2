// The exported functions: texts in, values through the plug-in, texts out.
#include "plugin/include/PrinterDiscovery.h"

#include "Kep/CoTaskMem.h"
#include "Kep/Platform/ServiceException.h"
#include "plugin/Attach.h"

#include <cstring>
#include <string>

namespace PrinterDiscoveryPlugin {
namespace {

namespace Platform = Kep::Platform;

// What a Variant's type code says of a text, which then is an answer already written out.
constexpr int textTypeCode = 10;

char* copyForHost(const std::string& text)
{
    const std::size_t size = text.size() + 1;
    auto* block = static_cast<char*>(CoTaskMemAlloc(size));
    std::memcpy(block, text.c_str(), size);
    return block;
}

std::string answerText(const Kep::Variant& answer)
{
    return answer.type() == textTypeCode ? static_cast<std::string>(answer) : answer.toJson();
}

} // namespace
} // namespace PrinterDiscoveryPlugin

using namespace PrinterDiscoveryPlugin;

char* dakPluginInit(const char* config)
{
    return copyForHost(g_plugin->init(config).toJson());
}

void dakPluginCall(const char* service, size_t serviceLength, const char* operation, size_t operationLength,
                   const char* params, size_t paramsLength, char** result, size_t* resultSize)
{
    std::string text;
    try {
        text = answerText(g_plugin->call(std::string(service, serviceLength), std::string(operation, operationLength),
                                         std::string(params, paramsLength)));
    } catch (const Platform::ServiceException& error) {
        text = error.toJson();
    } catch (const Kep::NotFoundException& error) {
        text = Platform::NotFoundException(error.what(), Kep::Variant(), Platform::Operation()).toJson();
    } catch (const std::exception& error) {
        text = Platform::InternalServerErrorException(error.what(), Kep::Variant(), Platform::Operation()).toJson();
    }
    *resultSize = text.size() + 1;
    *result = copyForHost(text);
}

void dakPluginDeinit()
{
    g_plugin->deinit();
}
