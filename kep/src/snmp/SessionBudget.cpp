#include "snmp/SessionBudget.h"

#include "Kep/Snmp/Exception.h"

namespace Kep::Snmp {

void SessionBudget::charge()
{
    if (charged_ == requests)
        throw Exception("the session has made its " + std::to_string(requests) + " get-next requests");
    if (left() <= Duration::zero())
        throw Exception("the session has used up its " + std::to_string(time.count()) + " s for get-next requests");
    ++charged_;
}

} // namespace Kep::Snmp
