#include "dialogues/Dialogue1671.h"

#include "common/AwCommText.h"
#include "common/BoundedStore.h"
#include "common/Clock.h"
#include "common/EventYield.h"
#include "common/Form.h"
#include "common/Logging.h"
#include "common/Numbers.h"
#include "common/Paths.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "dialogues/CommCycle.h"
#include "dialogues/LinkRules.h"

#include <QTimer>

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

// The silence after which a test is taken to be complete.
constexpr int kSilenceMs = 5000;
// The pieces of a transmission, from index 1.
constexpr qsizetype kMaxPieces = 5000;

QChar MarkerOf(const QString& line) {
    return line.size() >= 3 ? line.at(2) : QChar();
}

// The folder emptied at the first file of a transmission.
void MakeFolderAnew(const QString& folder) {
    if (FolderExists(folder)) DeleteFolderTree(folder);
    MakeFolder(folder);
}

// What the loop holds between the reads and the silence.
struct Run1671 {
    BoundedArray<QString> pieces{kMaxPieces};
    std::int16_t pieceCount = 0;
    QTimer timer2;

    // The silence has come: the lines are repaired, kept for inspection and edited.
    void OnSilence() {
        timer2.stop();
        Form().Timer2Enabled = false;
        QStringList held;
        for (qsizetype i = 1; i <= pieceCount; ++i) held.append(pieces.checked(i));
        pieceCount = 0;
        pieces.clear();
        const QStringList lines = RepairLines1671(held);
        const QString folder = Ctx().AppPath + u"\\c1671_Rep"_s;
        for (qsizetype j = 0; j < lines.size(); ++j) {
            if (j == 0) MakeFolderAnew(folder);
            Ctx().ReceiveBuffer.checked(0) = lines.at(j);
            BlockFileOut(folder, u"c1671"_s, FormatNumber(QString::number(j + 1), u"0000"_s));
        }
        for (const ScanCall1671& c : ScanLines1671(lines))
            EditResult1671(lines.mid(c.first, c.count), c.call);
    }

    void TakePiece(const QString& piece) {
        // A stop or a close may come in this yield; the timer cannot, it was just restarted.
        YieldToEvents();
        Sleep(100);
        const QString folder = Ctx().AppPath + u"\\c1671"_s;
        if (pieceCount == 0) MakeFolderAnew(folder);
        // The number is always 0000: the lines are counted only when the silence comes.
        const QString text = u"受信データ出力(Write) -- "_s + Ctx().InstrumentCode +
                             u" -ASC-0000 : "_s + NowText(u"YYYY-MM-DD HH:MM:SS"_s);
        GLogEdit(u"0"_s, text);
        QString line = text;
        GLogWrite(u"0"_s, line);
        CountUp(pieceCount);
        // Past the last index the piece cannot be held: a run-time error, the abnormal end.
        pieces.checked(pieceCount) = piece;
        BlockFileOut(folder, u"c1671"_s, FormatNumber(QString::number(pieceCount), u"0000"_s));
    }
};

}  // namespace

QStringList RepairLines1671(const QStringList& pieces) {
    QStringList lines;
    QString line;
    for (QString piece : pieces) {
        piece.remove(u"\r\n"_s);
        const qsizetype etx = piece.indexOf(ctl::ETX);
        if (etx < 0) {
            line += piece;
            continue;
        }
        lines.append(line + piece.left(etx + 1));
        line = piece.mid(etx + 1);
    }
    return lines;
}

std::vector<ScanCall1671> ScanLines1671(const QStringList& lines) {
    std::vector<ScanCall1671> calls;
    for (qsizetype i = 0; i < lines.size();) {
        const QChar marker = MarkerOf(lines.at(i));
        if (marker == u'J' && i + 1 < lines.size() && MarkerOf(lines.at(i + 1)) == u'J') {
            calls.push_back({Call1671::BothEars, i, 2});
            i += 2;
        } else if (marker == u'M') {
            calls.push_back({Call1671::Reflex, i, lines.size() - i});
            i = lines.size();
        } else {
            // One ear, or a stray line that the edit reports; either way the scan goes on.
            calls.push_back({Call1671::OneEar, i, 1});
            i += 1;
        }
    }
    return calls;
}

void BeginCommLoop1671() {
    Run1671 run;
    run.timer2.setSingleShot(true);
    run.timer2.setInterval(ScaledMilliseconds(kSilenceMs));
    // The event runs in the loop's yields, between two reads, never inside one.
    QObject::connect(&run.timer2, &QTimer::timeout, [&run] {
        // No exception may leave an event; a run-time error is the abnormal end.
        try {
            run.OnSilence();
        } catch (const RuntimeError& error) {
            ErrorExit(error.description());
        }
    });

    while (Form().Connected) {
        EndSessionIfPortGone();
        if (!NextCycleHasBytes()) continue;
        ErasePaneArrays();
        // Each read restarts the silence.
        run.timer2.start();
        Form().Timer2Enabled = true;
        const QString piece = ReadText1(Form().comm());
        Ctx().ReceiveBuffer.checked(0) = piece;
        try {
            run.TakePiece(piece);
        } catch (const RuntimeError& error) {
            ErrorExit(error.description());
        }
    }
    // A stop is no silence, but the test that came before it is not to be lost.
    if (run.pieceCount > 0) run.OnSilence();
}

}  // namespace orbline
