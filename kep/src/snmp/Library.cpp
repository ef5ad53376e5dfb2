#include "snmp/Library.h"

#include "Kep/Snmp/Exception.h"

#include <openssl/crypto.h>

namespace Kep::Snmp {

namespace {

constexpr const char* applicationName = "Kep";

void setFlag(int flag) KEP_REQUIRES(libraryMutex)
{
    netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, flag, 1);
}

void keepToItself() KEP_REQUIRES(libraryMutex)
{
    netsnmp_register_loghandler(NETSNMP_LOGHANDLER_NONE, LOG_DEBUG);
    setFlag(NETSNMP_DS_LIB_DONT_READ_CONFIGS);
    setFlag(NETSNMP_DS_LIB_DONT_PERSIST_STATE);
    setFlag(NETSNMP_DS_LIB_DISABLE_PERSISTENT_LOAD);
    setFlag(NETSNMP_DS_LIB_DISABLE_PERSISTENT_SAVE);
    setFlag(NETSNMP_DS_LIB_DONT_LOAD_HOST_FILES);
    setFlag(NETSNMP_DS_LIB_NO_DISCOVERY); // otherwise it would answer engine discoveries that agents send us
    netsnmp_ds_set_string(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_APPTYPE, applicationName);
}

// The parts of init_snmp that sessions need. init_snmp itself would also scan MIB folders, make a persistent folder
// and change the process's locale.
bool startParts() KEP_REQUIRES(libraryMutex)
{
    netsnmp_session session;
    snmp_sess_init(&session);
    init_callbacks();
    init_snmpv3(applicationName);
    snmp_call_callbacks(SNMP_CALLBACK_LIBRARY, SNMP_CALLBACK_POST_PREMIB_READ_CONFIG, nullptr);
    snmp_call_callbacks(SNMP_CALLBACK_LIBRARY, SNMP_CALLBACK_POST_READ_CONFIG, nullptr);
    return find_sec_mod(SNMP_SEC_MODEL_USM) != nullptr;
}

bool initialiseOnce() KEP_EXCLUDES(libraryMutex)
{
    const MutexLock lock(libraryMutex);
    // Its clean-up at exit would come while probes still use it: they are waited for later, when plug-ins are detached.
    OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT, nullptr);
    keepToItself();
    return startParts();
}

} // namespace

void initialiseLibrary()
{
    static const bool usable = initialiseOnce();
    if (!usable)
        throw Exception("the SNMP library offers no user-based security model");
}

} // namespace Kep::Snmp
