// The haematology analyser 1190 against the running process: the Sysmex XN-550 capture as a
// result message, with and without its flags, and the cobas e411 query capture answered with
// the patient and the tests of an order.

#include "support/AstmInstrument.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace orbline::test;

// Every frame of the capture is acknowledged, the EOT too. OutIP "0" keeps the measured items
// (IG% and IG# are not among them); OutIP "1" adds the flags the flag groups name, in the
// order they came, with the flag's name as the value.
TEST(Astm1190, TheXn550CaptureDeliversItsMeasuredItemsAndWithOutIpItsFlags) {
    const QStringList measured = {
        u"1190010,WBC,8.13,10*3/uL,,"_s,    u"1190020,RBC,2.60,10*6/uL,,"_s,
        u"1190030,HGB,8.0,g/dL,,"_s,        u"1190040,HCT,22.7,%,L,"_s,
        u"1190050,MCV,87.3,fL,,"_s,         u"1190060,MCH,30.8,pg,,"_s,
        u"1190070,MCHC,35.2,g/dL,,"_s,      u"1190080,PLT,99,10*3/uL,,"_s,
        u"1190090,NEUT%,57.4,%,,"_s,        u"1190100,LYMPH%,12.8,%,L,"_s,
        u"1190110,MONO%,7.3,%,,"_s,         u"1190120,EO%,22.1,%,H,"_s,
        u"1190130,BASO%,0.4,%,,"_s,         u"1190140,NEUT#,4.67,10*3/uL,,"_s,
        u"1190150,LYMPH#,1.04,10*3/uL,,"_s, u"1190160,MONO#,0.59,10*3/uL,,"_s,
        u"1190170,EO#,1.80,10*3/uL,H,"_s,   u"1190180,BASO#,0.03,10*3/uL,,"_s,
        u"1190190,RDW-SD,47.5,fL,,"_s,      u"1190200,RDW-CV,14.8,%,,"_s,
        u"1190220,MPV,8.1,fL,L,"_s,
    };
    const QStringList flags = {
        u"1190330,WBC Abnormal_9,Eosinophilia,,,"_s,
        u"1190470,RBC Abnormal_7,Anemia,,,"_s,
        u"1190370,WBC Suspect_3,Left_Shift?,,,"_s,
        u"1190390,WBC Suspect_5,Atypical_Lympho?,,,"_s,
        u"1190380,WBC Suspect_4,NRBC?,,,"_s,
        u"1190490,RBC Suspect_1,RBC_Agglutination?,,,"_s,
        u"1190500,RBC Suspect_2,Turbidity/HGB_Interference?,,,"_s,
        u"1190510,RBC Suspect_3,Iron_Deficiency?,,,"_s,
        u"1190520,RBC Suspect_4,HGB_Defect?,,,"_s,
        u"1190530,RBC Suspect_5,Fragments?,,,"_s,
        u"1190580,PLT Suspect_1,PLT_Clumps?,,,"_s,
    };
    for (const QString& outIp : {u"0"_s, u"1"_s}) {
        SCOPED_TRACE(outIp.toStdString());
        LinkProcess link;
        StartInstrument(link, u"1190"_s, u"XN-550"_s, u"OutIP="_s + outIp + u"\r\n"_s);
        SendAcked(link, Capture("sysmex-xn550-result.bin"));
        EXPECT_EQ(Received(link, 1), "<ACK>");
        ASSERT_TRUE(link.waitForDeliveries(1));
        EXPECT_EQ(Drained(link, 300ms), "");
        EXPECT_EQ(link.close(), 0);

        const QStringList records = DeliveredRecords(link);
        EXPECT_EQ(RecordFields(records, {7, 8, 13, 14, 9, 18}),
                  outIp == u"0"_s ? measured : measured + flags);
        EXPECT_TRUE(records.value(0).startsWith(u"20240627,135407,,27,1190,XN-550,,"_s));
        EXPECT_TRUE(link.logMessages().contains(u"出力完了(Write) -- 1190-27-"_s + kStamp));
    }
}

// The host sends ENQ and then the ACK to the EOT piece. The order record carries the query's
// rack and position, the tests and the time of the lookup. A NAK to the order record brings
// ENQ, and its ACK the terminator: the refused record is lost. Without an order: the
// simulator's haematology-1190 script and the lookup tests.
TEST(Astm1190, TheE411QueryIsAnsweredWithThePatientAndTheTestsOfItsOrder) {
    LinkProcess link;
    StoreOrder(link, {u"KENSAKIKICD"_s, u"1190"_s, u"ORDERCD"_s, u"0000000387"_s, u"KANJYAKANA"_s,
                      u"ﾔﾏﾀﾞ ﾀﾛｳ"_s, u"KANJYAID"_s, u"P001"_s, u"SEX"_s, u"1"_s, u"KENSACNT"_s,
                      u"2"_s, u"KENSA1"_s, u"1190010"_s, u"KENSA2"_s, u"1190020"_s});
    StartInstrument(link, u"1190"_s, u"XN-550"_s);
    SendAcked(link, Capture("cobas-e411-query.bin"));
    EXPECT_EQ(Received(link, 2), "<ENQ><ACK>");
    Exchange(link, "<ACK>", Frame("1H|\\^&|||||||||||E1394-97<CR>"));
    Exchange(link, "<ACK>",
             Frame("2P|1|||P001|^<xD4><xCF><xC0><xDE>^<xC0><xDB><xB3>|||M|||||^||||||||||||<CR>"));
    Exchange(
        link, "<ACK>",
        Frame("3O|1|^^0000000387^B||^^^^WBC\\^^^^RBC||20250416093015|||||N||||||||||||||Q<CR>"));
    Exchange(link, "<NAK>", "<ENQ>");
    Exchange(link, "<ACK>", Frame("4L|1|N<CR>"));
    Exchange(link, "<ACK>", "<EOT>");
    EXPECT_EQ(link.close(), 0);
}

// Three replies that are not ACK end the phase with EOT whatever came between, and the next
// ENQ is a normal reception.
TEST(Astm1190, TheThirdReplyThatIsNotAckEndsThePhase) {
    LinkProcess link;
    CreateOrderStore(link);
    StartInstrument(link, u"1190"_s, u"XN-550"_s);
    SendAcked(link, Capture("cobas-e411-query.bin"));
    EXPECT_EQ(Received(link, 2), "<ENQ><ACK>");
    Exchange(link, "<NAK>", "<ENQ>");
    Exchange(link, "<ACK>", Frame("1H|\\^&|||||||||||E1394-97<CR>"));
    Exchange(link, "<ENQ>", "<ENQ>");
    Exchange(link, "garbage", "<EOT>");
    Exchange(link, "<ENQ>", "<ACK>");
    EXPECT_EQ(link.close(), 0);
    EXPECT_EQ(link.logMessages().filter(u"問合情報送信完了"_s).size(), 0);
}
