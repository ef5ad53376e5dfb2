#include "host/SnmpConf.h"

#include <gtest/gtest.h>

#include <string>

namespace Host {
namespace {

std::string valueOf(const std::optional<Given>& given)
{
    return given ? given->value : "none";
}

Credentials read(std::string_view text)
{
    return parseSnmpConf(text, "/etc/snmp/snmp.conf");
}

TEST(SnmpConf, GivesEveryDefault)
{
    const Credentials all = read("defVersion 3\ndefCommunity private\ndefSecurityName admin\n"
                                 "defSecurityLevel authPriv\ndefAuthType SHA\ndefAuthPassphrase authentic\n"
                                 "defPrivType AES\ndefPrivPassphrase privately\ndefContext floor2\n");
    EXPECT_EQ(valueOf(all.version), "3");
    EXPECT_EQ(valueOf(all.community), "private");
    EXPECT_EQ(valueOf(all.user), "admin");
    EXPECT_EQ(valueOf(all.level), "authPriv");
    EXPECT_EQ(valueOf(all.authProtocol), "SHA");
    EXPECT_EQ(valueOf(all.authPassword), "authentic");
    EXPECT_EQ(valueOf(all.privProtocol), "AES");
    EXPECT_EQ(valueOf(all.privPassword), "privately");
    EXPECT_EQ(valueOf(all.context), "floor2");
    EXPECT_EQ(all.authProtocol->by, "defAuthType of /etc/snmp/snmp.conf");
}

TEST(SnmpConf, OnePassphraseMayServeForBoth)
{
    const Credentials both = read("defPassphrase everything\n");
    EXPECT_EQ(valueOf(both.authPassword), "everything");
    EXPECT_EQ(valueOf(both.privPassword), "everything");
    EXPECT_EQ(both.privPassword->by, "defPassphrase of /etc/snmp/snmp.conf");
    const Credentials one = read("defPrivPassphrase privately\ndefPassphrase everything\n");
    EXPECT_EQ(valueOf(one.authPassword), "everything");
    EXPECT_EQ(valueOf(one.privPassword), "privately");
}

TEST(SnmpConf, EverythingElseIsPassedOver)
{
    const Credentials none = read("# defVersion 3\nmibs :\n\npersistentDir /var/lib/snmp\ndefVersions 3\ndef 3\n"
                                  "includeFile other.conf\ndefaultPort 1161\n\xff\xfe\x01\n]\n[\ndefVersion\n");
    EXPECT_EQ(valueOf(none.version) + valueOf(none.community) + valueOf(none.user), "nonenonenone");
}

TEST(SnmpConf, NamesAreWrittenInAnyCase)
{
    EXPECT_EQ(valueOf(read("DEFVERSION 1\n").version), "1");
    EXPECT_EQ(valueOf(read("defversion 2c\n").version), "2c");
}

TEST(SnmpConf, TheLastOneHolds)
{
    EXPECT_EQ(valueOf(read("defVersion 1\ndefVersion 2c\n").version), "2c");
}

TEST(SnmpConf, BlanksAroundValuesDoNotCount)
{
    EXPECT_EQ(valueOf(read("  defCommunity \t my community  \r\n").community), "my community");
}

TEST(SnmpConf, ValuesMayStandInQuotes)
{
    EXPECT_EQ(valueOf(read("defCommunity \" with blanks \" # rest\n").community), " with blanks ");
    EXPECT_EQ(valueOf(read(R"(defCommunity "a\"b\\c")").community), R"(a"b\c)");
    EXPECT_EQ(valueOf(read("defCommunity \"open\n").community), "open");
    EXPECT_EQ(valueOf(read("defCommunity it\"s\n").community), "it\"s");
    EXPECT_EQ(valueOf(read("defCommunity a#b\n").community), "a#b");
}

TEST(SnmpConf, LinesForOtherProgramsArePassedOver)
{
    EXPECT_EQ(valueOf(read("[snmpd]\ndefVersion 1\n[snmp]\ndefVersion 2c\n[snmptrapd]\ndefVersion 3\n").version), "2c");
    EXPECT_EQ(valueOf(read("[snmpd] defVersion 1\ndefCommunity x\n").version), "none");
    EXPECT_EQ(valueOf(read("[snmpd] defVersion 1\ndefCommunity x\n").community), "x");
    EXPECT_EQ(valueOf(read("[snmpd]\n[SNMP] defVersion 1\ndefCommunity x\n").version), "1");
    EXPECT_EQ(valueOf(read("[snmpd]\n[snmp] defVersion 1\ndefCommunity x\n").community), "none");
}

} // namespace
} // namespace Host
