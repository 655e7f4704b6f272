// The soak's end checks on a made-up site: each fault they are there for is named, and a clean
// site passes.

#include "MainLogReader.h"
#include "SoakChecks.h"
#include "common/AnsiCodec.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace orbline::soak {
namespace {

const SoakInstrument kTympanometer{
    u"1671"_s, u"tympanometer-1671.sim"_s, u"TYMP"_s, 2, true, QString(), false};
// Each record names the pass's chart, whose serial goes up.
QByteArray Result(int serial) {
    return "1671,\\chart\\1671-T-20250416093015" + QByteArray::number(serial) +
           "~KVB.csv\r\n1671,b\r\n";
}

class SoakSiteFolder {
  public:
    SoakSiteFolder() {
        for (const QString& folder : {u"data"_s, u"chart"_s, u"wk"_s, u"orders"_s})
            QDir(root()).mkpath(folder);
    }
    QString root() const { return dir_.path(); }
    void write(const QString& relative, const QByteArray& bytes) const {
        QFile file(root() + u'/' + relative);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    // Result files and charts of `passes` passes, all alike.
    void deliver(int passes) const {
        for (int i = 1; i <= passes; ++i) {
            write(u"data/1671-S1671-20250416093015%1~KVB.csv"_s.arg(i, 5, 10, QChar(u'0')),
                  Result(i));
            write(u"chart/1671-%1.csv"_s.arg(i), "chart");
        }
    }

  private:
    QTemporaryDir dir_;
};

TEST(SoakChecks, DeliveriesCountWholeAndAlike) {
    struct Case {
        const char* what;
        void (*spoil)(const SoakSiteFolder&);
        QString failure;  // empty: passes
    };
    const Case cases[] = {
        {"every pass delivered", [](const SoakSiteFolder&) {}, QString()},
        {"one result lost",
         [](const SoakSiteFolder& s) {
             QFile::remove(s.root() + u"/data/1671-S1671-2025041609301500002~KVB.csv"_s);
         },
         u"1671: 2 result files for 3 passes"_s},
        {"one result twice",
         [](const SoakSiteFolder& s) { s.write(u"data/1671-S1671-x~KVB.csv"_s, Result(4)); },
         u"1671: 4 result files for 3 passes"_s},
        {"a chart lost",
         [](const SoakSiteFolder& s) { QFile::remove(s.root() + u"/chart/1671-3.csv"_s); },
         u"1671: 2 charts for 3 passes"_s},
        {"a result cut short",
         [](const SoakSiteFolder& s) {
             s.write(u"data/1671-S1671-2025041609301500003~KVB.csv"_s, Result(3).chopped(2));
         },
         u"1671: 1671-S1671-2025041609301500003~KVB.csv differs from "
         u"1671-S1671-2025041609301500001~KVB.csv"_s},
        {"every result a record short",
         [](const SoakSiteFolder& s) {
             for (int i = 1; i <= 3; ++i)
                 s.write(u"data/1671-S1671-202504160930150000%1~KVB.csv"_s.arg(i), "1671,a\r\n");
         },
         u"1671: 1671-S1671-2025041609301500001~KVB.csv holds 1 records, not 2 ended by CR LF"_s},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        SoakSiteFolder site;
        site.deliver(3);
        c.spoil(site);
        QStringList failures;
        const Delivered delivered = CheckDeliveries(site.root(), kTympanometer, 3, failures);
        if (c.failure.isEmpty()) {
            EXPECT_EQ(failures, QStringList());
            EXPECT_EQ(delivered.files, 3);
            EXPECT_EQ(delivered.charts, 3);
        } else {
            EXPECT_EQ(failures, QStringList{c.failure});
        }
    }
}

TEST(SoakChecks, LogsAndWorkFolderShowNoFailure) {
    struct Case {
        const char* what;
        QString file;
        QString text;
        QString failure;  // empty: passes
    };
    const Case cases[] = {
        {"a clean main log", u"Tesvane1671.log"_s, u"【検査： 1671-0-】受信開始(Wait)\r\n"_s,
         QString()},
        {"a lookup that failed", u"Tesvane1671.log"_s,
         u"【検査： 1671-0-】オーダデータ検索失敗(DB) -- Key: K1\r\n"_s,
         u"1671: 1 × \"オーダデータ検索失敗(DB)\" in the main log"_s},
        {"another code's log is not this one's", u"Tesvane0980.log"_s, u"回線切断 -- \r\n"_s,
         QString()},
        {"a diagnostic line", u"KV_Orbline1671.diag"_s,
         u"2025-04-16 09:30:15 1671 order store busy\r\n"_s,
         u"1671: KV_Orbline1671.diag: 2025-04-16 09:30:15 1671 order store busy"_s},
        {"standard error", u"kv_orbline1671.stderr"_s, u"QSqlDatabase: warning\n"_s,
         u"1671: kv_orbline1671.stderr: QSqlDatabase: warning"_s},
        {"a result left in the work folder", u"wk/work.csv"_s, u"x"_s,
         u"work folder holds 1 undelivered files"_s},
        {"an empty work file, as the 1160's query leaves", u"wk/work.csv"_s, QString(), QString()},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        SoakSiteFolder site;
        site.write(c.file, EncodeAnsi(c.text));
        MainLogReader mainLog(site.root(), u"1671"_s);
        mainLog.poll();
        QStringList failures;
        CheckLogs(site.root(), u"1671"_s, mainLog.failures(), failures);
        CheckWorkFolder(site.root(), failures);
        EXPECT_EQ(failures, c.failure.isEmpty() ? QStringList() : QStringList{c.failure});
    }
}

// Lines are counted once each, a line still being written when it is whole, and the lines
// written just before a rotation from the day's copy.
TEST(SoakChecks, MainLogReaderMissesNoLineOfARotatedLog) {
    SoakSiteFolder site;
    MainLogReader mainLog(site.root(), u"1671"_s);
    const auto append = [&](const QString& relative, const QString& text) {
        QFile file(site.root() + u'/' + relative);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Append));
        file.write(EncodeAnsi(text));
    };
    append(u"Tesvane1671.log"_s, u"回線切断 -- \r\n受信開始 -- \r\n回線"_s);
    mainLog.poll();
    append(u"Tesvane1671.log"_s, u"切断 -- \r\n"_s);
    mainLog.poll();
    append(u"Tesvane1671.log"_s, u"回線切断 -- \r\n"_s);
    ASSERT_TRUE(QFile::rename(site.root() + u"/Tesvane1671.log"_s,
                              site.root() + u"/Tesvane_ 1671_2025-04-16.log"_s));
    append(u"Tesvane1671.log"_s, u"回線切断 -- \r\n"_s);
    mainLog.poll();
    mainLog.poll();
    EXPECT_EQ(mainLog.failures(), (std::map<QString, int>{{u"回線切断"_s, 4}}));
}

TEST(SoakChecks, EveryOrderLineIsARowAndNoFileIsLeft) {
    SoakSiteFolder site;
    const QStringList folders{site.root() + u"/orders"_s};
    const std::map<QString, int> lines{{u"0980"_s, 120}, {u"1660"_s, 40}};
    QStringList failures;
    CheckOrders(folders, lines, {{u"0980"_s, 120}, {u"1660"_s, 40}}, failures);
    EXPECT_EQ(failures, QStringList());

    site.write(u"orders/0980-soak-000001.failed"_s, "x");
    CheckOrders(folders, lines, {{u"0980"_s, 119}, {u"9999"_s, 1}}, failures);
    EXPECT_EQ(failures, (QStringList{u"order file left: "_s + site.root() +
                                         u"/orders/0980-soak-000001.failed"_s,
                                     u"0980: 119 order rows for 120 lines written"_s,
                                     u"1660: 0 order rows for 40 lines written"_s,
                                     u"9999: 1 order rows for 0 lines written"_s}));
}

}  // namespace
}  // namespace orbline::soak
