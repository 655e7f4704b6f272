// Result edit 0980 off its normal path, which Astm0980Test runs end to end.

#include "edits/MdlEdit009.h"

#include "common/AnsiCodec.h"
#include "common/Logging.h"
#include "common/Paths.h"
#include "common/RunContext.h"
#include "edits/PieceFiles.h"
#include "support/TestSite.h"

#include <gtest/gtest.h>

#include <QDir>

using namespace Qt::StringLiterals;
using namespace orbline;
using orbline::test::TestSite;

namespace {

// STX, frame number, record, CR, ETX, checksum, CR LF.
QByteArray Frame(int number, const QByteArray& record) {
    const QByteArray body = QByteArray::number(number % 8) + record + "\r\x03";
    unsigned sum = 0;
    for (const char b : body) sum += static_cast<unsigned char>(b);
    return "\x02" + body + QByteArray::number(sum % 256, 16).toUpper().rightJustified(2, '0') +
           "\r\n";
}

QList<QByteArray> Message(const QList<QByteArray>& records) {
    QList<QByteArray> reads{"\x05"};
    for (qsizetype i = 0; i < records.size(); ++i)
        reads.append(Frame(static_cast<int>(i + 1), records[i]));
    return reads << "\x04";
}

class Edit0980 : public ::testing::Test {
  protected:
    Edit0980() {
        Ctx().InstrumentCode = u"0980"_s;
        Ctx().IniPrefix = u"GH"_s;
        Ctx().JyusinWKPath = site.path(u"wk"_s);
        Ctx().JyusinDataPath = site.path(u"data"_s);
    }

    // Saves each read as the dialogue does and runs the edit on them.
    void Edit(const QList<QByteArray>& reads) {
        const QString folder = PieceFolder(u"c980"_s);
        if (!FolderExists(folder)) MakeFolder(folder);  // pieces past the count are not read
        for (qsizetype i = 0; i < reads.size(); ++i) {
            Ctx().ReceiveBuffer.put(0, PortText(reads[i]));
            BlockFileOut(folder, u"c980"_s, u"%1"_s.arg(i + 1, 4, 10, QChar(u'0')));
        }
        EditResult0980(static_cast<std::int16_t>(reads.size()));
    }

    QStringList Files(const QString& d) const {
        return QDir(site.native(d)).entryList(QDir::Files);
    }

    // The lines of the file delivered last.
    QStringList Delivered() const {
        const QString last = Files(u"data"_s).value(Files(u"data"_s).size() - 1);
        return DecodeAnsi(site.readFile(u"data/"_s + last)).split(u"\r\n"_s, Qt::SkipEmptyParts);
    }

    TestSite site;
};

}  // namespace

// A query keeps what the answer needs and writes nothing; a message without R records makes
// the work file, finds it empty and deletes it.
TEST_F(Edit0980, NoResultsNoFile) {
    Edit(Message({"H|\\^&|||TOSOH^HLC-723G11|||||||||1394-97", "Q|1| 0012-34 ^R05^P3||ALL"}));
    const RunContext& c = Ctx();
    EXPECT_EQ((QStringList{c.QueryMark0980, *c.RecordFields.get(0, 20), *c.RecordFields.get(0, 23),
                           *c.RecordFields.get(0, 22), c.EchoSender, c.EchoVersion}),
              (QStringList{u"Q"_s, u"0012-34"_s, u"R05"_s, u"P3"_s, u"TOSOH^HLC-723G11"_s,
                           u"1394-97"_s}));
    EXPECT_FALSE(site.exists(u"wk"_s) || site.exists(u"data"_s));

    Ctx().QueryMark0980.clear();  // as the dialogue does after answering
    Edit(Message({"P|1", "O|1|001234^FASTING|2", "L|1|N"}));
    EXPECT_TRUE(DecodeAnsi(site.readFile(u"Tesvane0980.log"_s))
                    .contains(u"Size=0のため出力なし -- 0980-1234-0:2025-04-16 09:30:15"_s));
    EXPECT_TRUE(Files(u"wk"_s).isEmpty() && Files(u"data"_s).isEmpty());
}

TEST_F(Edit0980, SampleNumberRules) {
    // IDEntry "2" takes the fixed number even when it is empty; a long barcode stays exact.
    const struct {
        QByteArray field;
        QString idEntry, fixed, expected;
    } cases[] = {{"0012-34^X", {}, {}, u"1234"_s},
                 {"", {}, {}, u"0"_s},
                 {"00012345678901234567890", {}, {}, u"12345678901234567890"_s},
                 {"001234", u"2"_s, {}, {}},
                 {"001234", {}, u"F77"_s, u"F77"_s}};
    for (const auto& c : cases) {
        Ctx().IDEntry = c.idEntry;
        Ctx().FixedSampleId = c.fixed;
        Edit(Message({"O|1|" + c.field, "R|1|^^^HbA1cValue|5.6|%", "L|1|N"}));
        EXPECT_EQ(Delivered().value(0).section(u',', 3, 3), c.expected) << c.field.data();
    }
}

// A read that cuts r1 in its name makes a row without value and a text that is no record; a
// cut inside field 0 of r2 leaves its second read whole. ADCount is no result.
TEST_F(Edit0980, RowsOfAMessageInCutReads) {
    const QByteArray r1 = Frame(2, "R|1|^^^HbA1cValue|5.60|%|||||||20250416104233");
    const QByteArray r2 = Frame(3, "R|2|^^^GLU^Value|98|mg/dL");
    const qsizetype cut = r1.indexOf("1cValue");
    Edit({"\x05", Frame(1, "O|1|001234"), r1.left(cut), r1.mid(cut), r2.left(2), r2.mid(2),
          Frame(4, "R|3|^^^ADCount^Value|1234|"), "\x04"});
    QStringList items;
    for (const QString& line : Delivered()) items.append(line.section(u',', 7, 14));
    EXPECT_EQ(items, (QStringList{u"HbA,HbA,,,,,,"_s, u"0980040,GLU,,,,,98,mg/dL"_s}));
    // The delivery name burns one serial past the work file's.
    EXPECT_EQ(Files(u"data"_s), QStringList{u"0980-GH-2025041609301600003~KVB.csv"_s});
}
