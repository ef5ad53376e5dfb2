#include "plugin/Attach.h"

namespace PrinterDiscoveryPlugin {

std::shared_ptr<Kep::Platform::Plugin> g_plugin;

namespace {

// Static objects of one file are destroyed in reverse order: standing after `g_plugin`, this one detaches before it
// goes, at exit as at dlclose.
class Attachment {
public:
    Attachment() { attach(); }
    ~Attachment() { detach(); }
    Attachment(const Attachment&) = delete;
    Attachment& operator=(const Attachment&) = delete;
};

const Attachment attachment;

} // namespace
} // namespace PrinterDiscoveryPlugin
