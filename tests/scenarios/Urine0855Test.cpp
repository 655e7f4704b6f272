// The urine analyser 0855 against the running process: reports read in pieces cut inside their
// frames, of each model, of one the link does not know and one without a print line.

#include "support/AstmInstrument.h"

#include <gtest/gtest.h>

#include <tuple>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace orbline::test;

TEST(Urine0855, ReportsOfEachModelAndOfAnUnknownOne) {
    // Print lines: the name in 6 columns, the mark, then grade, value (right-aligned) and unit.
    const std::string first =
        "GLU    NEG.              <CR><LF>PRO   *2+*      100mg/dL <CR><LF>"
        "URO    NORMAL   0.2EU/dL <CR><LF>";
    const std::string second =
        "BLD    1+                <CR><LF>CRE             <LT>10mg/dL <CR><LF>"
        "A/C    NORMAL   030mg/gCr<CR><LF>";
    const QStringList records = {
        u"0850150,GLU(定性),,,,,-,,MIN,,,"_s,   u"0850020,PRO,,,,,100,mg/dL,MIN,,,"_s,
        u"0850160,PRO(定性),H,,,,++,,MIN,,,"_s, u"0850040,URO,,,,,0.2,EU/dL,MIN,,,"_s,
        u"0850180,URO(定性),,,,,N,,MIN,,,"_s,   u"0850210,BLD(定性),,,,,+,,MIN,,,"_s,
        u"0850110,CRE,,,,,＜10,mg/dL,MIN,,,"_s, u"0850130,A/C,,,,,30,mg/gCr,MIN,,,"_s,
        u"0850270,A/C(定性),,,,,-,,MIN,,,"_s};
    // Model, identifier, whether print lines follow the header, and the SampleId and RunMark of
    // the log line ("-" ends it when records came). Without print lines the file is still made.
    const std::tuple<std::string, std::string, bool, QString> reports[] = {
        {"VPU-4210", "0000012345", true, u"12345-"_s},
        {"VPU-4010", "A-0042", true, u"A-0042-"_s},
        {"VAE-4020", "", true, u"0-"_s},
        {"VPU-3000", "12", true, u"0-0"_s},
        {"VPU-4010", "9", false, u"9-0"_s}};
    const QString stamp = u":2025-04-16 09:30:15"_s;
    LinkProcess link;
    link.timeScale = u"0.1"_s;
    StartInstrument(link, u"0855"_s, u"UA"_s);
    QStringList log;
    int delivered = 0;
    for (const auto& [model, id, printed, logged] : reports) {
        SCOPED_TRACE(logged.toStdString());
        // Model from column 2, identifier from 20, date, time and the sequence number from 54.
        const std::string header = model + "    ID No." + id + std::string(13 - id.size(), ' ') +
                                   " 2020/04/16 12:34 SEQ  12<CR><LF>";
        for (const std::string& read :
             {"<STX>" + header.substr(0, 4), header.substr(4) + (printed ? first : "") + "<ETB>",
              "<STX>" + (printed ? second : "") + "<ETX>"})
            Exchange(link, read, "");
        ASSERT_TRUE(link.waitForDeliveries(++delivered));
        QStringList file;
        if (model == "VPU-3000") file = {u"ERROR:検査機器が違います。VPU-3000,0855,UA"_s};
        for (const QString& record : logged.endsWith(u'-') ? records : QStringList())
            file.append(u"20200416,123400,,"_s + logged.chopped(1) + u",0855,UA,000012,"_s +
                        record);
        EXPECT_EQ(link.readDelivery(link.deliveries().last()).split(u"\r\n"_s),
                  file + QStringList{{}});
        log.append(u"出力完了(Write) -- 0855-"_s + logged + stamp);
    }
    EXPECT_EQ(Drained(link, 300ms), "");
    EXPECT_EQ(link.close(), 0);
    // Between the three lines of the start and the three of the close, the edits' lines alone.
    const QStringList messages = link.logMessages();
    EXPECT_EQ(messages.mid(3, messages.size() - 6), log);
    EXPECT_TRUE(link.workFiles().isEmpty());
}
