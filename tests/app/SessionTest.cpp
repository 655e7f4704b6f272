#include "app/Session.h"
#include "common/AnsiCodec.h"
#include "common/Form.h"
#include "common/FormLists.h"
#include "common/RunContext.h"
#include "support/TestSite.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace orbline;
using orbline::test::TestSite;

TEST(LineLists, SettingsSelectTheirEntriesAndAMismatchKeepsTheList) {
    TestSite site;
    FillLineLists();
    RunContext& c = Ctx();
    c.PortNo = 3;
    c.BaudRateNo = 14400;
    c.DataBitsNo = 7;
    c.ParityCode = u"e"_s;
    c.StopBitsNo = 1.5F;
    c.HandshakeCode = u"R"_s;
    c.TimeOutMs = 5000;
    SelectLineLists();
    const QString selected =
        u"通信条件(Condition) 3:baud=14400 parity=偶数 data=7 stop=1.5:RTS/CTS:5000"_s;
    EXPECT_EQ(ConditionText(), selected);

    // Letters are case-sensitive, and a number that no entry has leaves the list as it was.
    c.PortNo = 256;
    c.BaudRateNo = 9601;
    c.ParityCode = u"E"_s;
    c.HandshakeCode = u"n"_s;
    c.StopBitsNo = 3;
    SelectLineLists();
    EXPECT_EQ(ConditionText(), selected);
    c.PortNo = 255;
    c.ParityCode = u"s"_s;
    SelectLineLists();
    EXPECT_EQ(Form().comboPort.position, 254);
    EXPECT_EQ(Form().comboParity.text(), u"スペース"_s);
}

TEST(SessionDeathTest, ACloseRequestWhileStoppedLogsOneLineAndEndsByTheAbendFlag) {
    TestSite site;
    std::int16_t cancel = 0;
    EXPECT_EXIT(Form_QueryUnload(cancel), ::testing::ExitedWithCode(0), "");
    EXPECT_EQ(
        DecodeAnsi(site.readFile(u"Tesvane2620.log"_s)),
        u"【検査： 2620-0-2025-04-16 09:30:15】プログラム終了(Query) -- 2620:2025-04-16 09:30:15\r\n"_s);
    Ctx().AbendFlag = 1;
    EXPECT_EXIT(Form_QueryUnload(cancel), ::testing::ExitedWithCode(1), "");
}
