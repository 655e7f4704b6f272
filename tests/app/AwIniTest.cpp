#include "app/AwIni.h"
#include "app/Settings.h"
#include "common/AnsiCodec.h"
#include "common/RunContext.h"
#include "support/TestSite.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace orbline;
using orbline::test::TestSite;

TEST(ProfileString, NamesWithoutCaseValuesTrimmedAndUnquoted) {
    const QByteArray ini =
        "; site settings\r\n"
        "[User]\r\n"
        "DbPath = C:\\kv\\db  \r\n"
        "[tnMC]\n"
        "  name\t=  TOMEY  \n"
        "Quoted=\"  a b  \"\n"
        "Half='x\n"
        "Empty=\n"
        "[TNMC]\r\n"
        "Extra=second section of the same name is not read\r\n";
    EXPECT_EQ(ProfileString(ini, u"user"_s, u"DBPATH"_s, u"d"_s), u"C:\\kv\\db"_s);
    EXPECT_EQ(ProfileString(ini, u"TNMC"_s, u"Name"_s, QString()), u"TOMEY"_s);
    EXPECT_EQ(ProfileString(ini, u"TNMC"_s, u"Quoted"_s, QString()), u"a b"_s);
    EXPECT_EQ(ProfileString(ini, u"TNMC"_s, u"Half"_s, QString()), u"'x"_s);
    EXPECT_EQ(ProfileString(ini, u"TNMC"_s, u"Empty"_s, u"dflt"_s), QString());
    EXPECT_EQ(ProfileString(ini, u"TNMC"_s, u"Extra"_s, u"dflt"_s), u"dflt"_s);
    EXPECT_EQ(ProfileString(ini, u"NoSuch"_s, u"Name"_s, u"dflt"_s), u"dflt"_s);
    EXPECT_EQ(ProfileString(QByteArray(), u"User"_s, u"DbPath"_s, u"dflt"_s), u"dflt"_s);
}

TEST(ProfileString, ValuesAreCutAt255BytesOfTheCodePage) {
    const QByteArray value(300, 'v');
    const QByteArray ini = "[S]\r\nK=" + value + "\r\n";
    EXPECT_EQ(ProfileString(ini, u"S"_s, u"K"_s, QString()), QString(255, u'v'));
    // Kanji are two bytes each: 127 of them and half of the 128th fit.
    const QByteArray kanji = EncodeAnsi(QString(200, u'検'));
    const QString cut = ProfileString("[S]\r\nK=" + kanji + "\r\n", u"S"_s, u"K"_s, QString());
    EXPECT_EQ(cut, QString(127, u'検') + u"・"_s);
    // Japanese section and key names.
    const QByteArray jp = EncodeAnsi(u"[検査MC]\r\n名前=眼圧計\r\n"_s);
    EXPECT_EQ(ProfileString(jp, u"検査MC"_s, u"名前"_s, QString()), u"眼圧計"_s);
}

TEST(Settings, AnEmptySectionGivesTheDefaults) {
    TestSite site;
    Ctx().IniPrefix = u"TN"_s;
    site.writeFile(u"KV_Orbline.ini"_s, "[User]\r\n[TNMC]\r\n");
    ReadSettings(AwIni());
    const RunContext& c = Ctx();
    EXPECT_EQ(
        (QStringList{QString::number(c.PortNo), QString::number(c.StopBitsNo), c.Tusin, c.HbA1c,
                     c.LogMeisai, c.OrderPT, c.OutIP, c.FT01Format, c.Log, FormCaption()}),
        (QStringList{u"0"_s, u"0"_s, u"1"_s, u"0"_s, u"0"_s, u"0"_s, u"0"_s, u"0"_s, QString(),
                     u"(2620) "_s}));
}

// The keys the scenario tests do not write (they write the line settings, Name,
// Device, the work and data folders, OrderPT, OrderPath, OutIP and FT01Format
// and read them back through the log and the delivered files).
TEST(Settings, EveryKeyIsReadIntoItsField) {
    TestSite site;
    Ctx().IniPrefix = u"AB"_s;
    Ctx().InstrumentCode = u"1190"_s;
    site.writeFile(u"KV_Orbline.ini"_s,
                   EncodeAnsi(u"[User]\r\nDbPath=\\db\r\nDbConnect=DSN=orders\r\n"
                              u"JyusinDataPath2=\\data2\r\n[ABMC]\r\nName=血球計数\r\n"
                              u"Parity=e\r\nStopBits=1.5\r\nTimeOut=abc\r\nDelimiter=2\r\n"
                              u"IDEntry=2\r\nLog=1\r\nTusin=0\r\nFT01Format=1\r\n"_s));
    Ctx().TimeOutMs = 77;
    ReadSettings(AwIni());
    const RunContext& c = Ctx();
    // TimeOut is not a number: the field stays. FT01Format is read for the
    // tonometer only.
    EXPECT_EQ(
        (QStringList{c.DbPath, c.DbConnect, c.JyusinDataPath2, c.CrpName, FormCaption(),
                     c.ParityCode, QString::number(c.StopBitsNo), QString::number(c.TimeOutMs),
                     c.DelimiterNo, c.IDEntry, c.Log, c.Tusin, c.FT01Format}),
        (QStringList{u"\\db"_s, u"DSN=orders"_s, u"\\data2"_s, u"血球計数"_s, u"(1190) 血球計数"_s,
                     u"e"_s, u"1.5"_s, u"77"_s, u"2"_s, u"2"_s, u"1"_s, u"0"_s, QString()}));
}
