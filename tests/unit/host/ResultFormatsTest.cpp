#include "host/ResultFormats.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>

namespace Host {
namespace {

Printer printer(const std::string& ip, const std::string& name = "", const std::string& sn = "",
                const std::vector<std::string>& mac = {}, const std::string& hostname = "")
{
    return {hostname, ip, mac, name, sn};
}

RunResult found(const std::vector<Printer>& printers)
{
    RunResult result;
    result.step = 254;
    result.total = 254;
    result.printers = printers;
    return result;
}

const Printer Office = printer("10.0.0.9", "Office", "S1", {"00:11:22:33:44:55", "00:11:22:33:44:56"}, "OFFICE");

TEST(JsonFormat, IsExactlyTheAgreedDocument)
{
    EXPECT_EQ(jsonText(found({Office})),
              R"({"step":254,"total":254,"state":1,"printers":[{"hostname":"OFFICE","ip":"10.0.0.9",)"
              R"("mac":["00:11:22:33:44:55","00:11:22:33:44:56"],"name":"Office","sn":"S1"}]})"
              "\n");
}

TEST(JsonFormat, NothingFoundIsAnEmptyArray)
{
    EXPECT_EQ(jsonText(found({})), "{\"step\":254,\"total\":254,\"state\":1,\"printers\":[]}\n");
    EXPECT_EQ(jsonText(found({printer("10.0.0.1")})),
              "{\"step\":254,\"total\":254,\"state\":1,\"printers\":"
              "[{\"hostname\":\"\",\"ip\":\"10.0.0.1\",\"mac\":[],\"name\":\"\",\"sn\":\"\"}]}\n");
}

TEST(JsonFormat, AnInterruptedRunSaysSo)
{
    RunResult result = found({});
    result.step = 7;
    result.state = 2;
    result.interrupted = true;
    EXPECT_EQ(jsonText(result), "{\"step\":7,\"total\":254,\"state\":2,\"printers\":[],\"interrupted\":true}\n");
}

TEST(JsonFormat, LargeCountsStayPositive)
{
    RunResult result = found({});
    result.total = 4261412864U;
    EXPECT_NE(jsonText(result).find("\"total\":4261412864,"), std::string::npos);
}

TEST(JsonFormat, KeepsTextsButEscapesWhatTerminalsActOn)
{
    const std::string name = "B\u00fcro \"1\" \x1b[2J \x7f \u009b\u0080\u009f \u00a0";
    const std::string text = jsonText(found({printer("10.0.0.1", name)}));
    EXPECT_EQ(nlohmann::json::parse(text)["printers"][0]["name"], name);
    EXPECT_NE(text.find("B\u00fcro"), std::string::npos);
    for (const char* raw : {"\x1b", "\x7f", "\u009b", "\u0080", "\u009f"})
        EXPECT_EQ(text.find(raw), std::string::npos);
}

TEST(Formats, PrintersAreSortedByAddressAsNumbers)
{
    const RunResult result = found(
        {printer("10.0.0.10"), printer("192.0.2.1"), printer("9.255.0.1"), printer("10.0.0.9"), printer("10.0.0.100")});
    EXPECT_EQ(csvText(result), "ip,name,sn,mac,hostname\r\n9.255.0.1,,,,\r\n10.0.0.9,,,,\r\n10.0.0.10,,,,\r\n"
                               "10.0.0.100,,,,\r\n192.0.2.1,,,,\r\n");
    EXPECT_EQ(tableText(result), "ADDRESS     NAME  SERIAL  MAC  HOST NAME\n9.255.0.1\n10.0.0.9\n10.0.0.10\n"
                                 "10.0.0.100\n192.0.2.1\n");
    EXPECT_LT(jsonText(result).find("9.255.0.1"), jsonText(result).find("10.0.0.9"));
}

TEST(TableFormat, AlignsColumnsAsTheTerminalShowsThem)
{
    EXPECT_EQ(tableText(found({Office, printer("10.0.0.10", "プリンタ", "12", {}, "b"), printer("10.0.0.11", "Büro")})),
              "ADDRESS    NAME      SERIAL  MAC                                  HOST NAME\n"
              "10.0.0.9   Office    S1      00:11:22:33:44:55 00:11:22:33:44:56  OFFICE\n"
              "10.0.0.10  プリンタ  12                                           b\n"
              "10.0.0.11  Büro\n");
}

TEST(TableFormat, ShowsControlCharactersHarmlessly)
{
    EXPECT_EQ(tableText(found({printer("10.0.0.1", "a\x1b]0;x\x07\nb", "\u009b", {"\r"}, "\u202e")})),
              "ADDRESS   NAME                SERIAL  MAC   HOST NAME\n"
              "10.0.0.1  a\\x1B]0;x\\x07\\x0Ab  \\x9B    \\x0D  \\u202E\n");
}

TEST(TableFormat, NothingFoundIsTheHeaderAlone)
{
    EXPECT_EQ(tableText(found({})), "ADDRESS  NAME  SERIAL  MAC  HOST NAME\n");
}

TEST(CsvFormat, JoinsMacAddressesWithABlank)
{
    EXPECT_EQ(csvText(found({Office})), "ip,name,sn,mac,hostname\r\n"
                                        "10.0.0.9,Office,S1,00:11:22:33:44:55 00:11:22:33:44:56,OFFICE\r\n");
}

TEST(CsvFormat, QuotesWhatNeedsIt)
{
    EXPECT_EQ(csvText(found({printer("10.0.0.1", "say \"hi\"", "a,b", {}, "two\r\nlines")})),
              "ip,name,sn,mac,hostname\r\n10.0.0.1,\"say \"\"hi\"\"\",\"a,b\",,\"two\r\nlines\"\r\n");
}

TEST(CsvFormat, SpreadsheetsSeeNoFormula)
{
    EXPECT_EQ(csvText(found({printer("10.0.0.1", "=1+1", "+4", {}, "@x")})),
              "ip,name,sn,mac,hostname\r\n10.0.0.1,'=1+1,'+4,,'@x\r\n");
    EXPECT_EQ(csvText(found({printer("10.0.0.1", "-1", "\t=1", {}, "\r=1")})),
              "ip,name,sn,mac,hostname\r\n10.0.0.1,'-1,'\\x09=1,,\"'\r=1\"\r\n");
    EXPECT_EQ(csvText(found({printer("10.0.0.1", "a=b", "1-2")})), "ip,name,sn,mac,hostname\r\n10.0.0.1,a=b,1-2,,\r\n");
}

TEST(CsvFormat, OtherControlCharactersBecomeVisible)
{
    EXPECT_EQ(csvText(found({printer("10.0.0.1", "a\x1b[2J\nb")})),
              "ip,name,sn,mac,hostname\r\n10.0.0.1,\"a\\x1B[2J\nb\",,,\r\n");
}

TEST(StreamFormat, EndsWithTheCounts)
{
    RunResult result = found({Office, printer("10.0.0.1")});
    EXPECT_EQ(streamEnd(result), "{\"step\":254,\"total\":254,\"state\":1,\"found\":2}\n");
    result.interrupted = true;
    EXPECT_EQ(streamEnd(result), "{\"step\":254,\"total\":254,\"state\":1,\"found\":2,\"interrupted\":true}\n");
}

} // namespace
} // namespace Host
