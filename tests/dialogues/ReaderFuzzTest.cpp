// Random and mutated bytes through every reader, cut into reads at random times: no crash, no
// hang, and every byte accounted for: what a reader gives plus what it holds is exactly what it
// was fed (the report chain, which replaces its frames, gives and holds no more than that).

#include "common/AnsiCodec.h"
#include "dialogues/PieceReaders.h"
#include "dialogues/ReadWindow.h"
#include "support/Fuzz.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;
using namespace orbline;

TEST(ReaderFuzz, EveryByteIsGivenOrHeldAndNoneIsMadeUp) {
    QList<QByteArray> captures;
    const QDir dir(QStringLiteral(ORBLINE_FIXTURES_DIR "/captures"));
    for (const QString& name : dir.entryList({u"*.bin"_s}, QDir::Files)) {
        QFile file(dir.filePath(name));
        if (file.open(QIODevice::ReadOnly)) captures.append(file.readAll());
    }
    ASSERT_FALSE(captures.isEmpty());
    test::Fuzz pick{std::mt19937(20261123)};
    const auto byte = [&] { return pick.byte("\x02\x03\x04\x05\x06\x0A\x0D\x15\x17"); };
    for (int round = 0, last = test::Fuzz::Rounds(2000); round < last; ++round) {
        // Random bytes, or a capture with bytes changed, inserted and dropped.
        const bool randomBytes = pick(3) == 0;
        QByteArray bytes =
            randomBytes ? QByteArray(pick(600), '\0') : captures.at(pick(captures.size()));
        pick.scatter(bytes, randomBytes ? 1 : 50, byte);
        pick.edit(bytes, pick(12), byte);

        ReadWindow window{.waitMs = pick(3) * 50LL, .restMs = pick(2) * 100LL};
        JoinToEnd etx{.mark = QChar(0x03)};
        JoinToCrLf crlf;
        BlockReader blocks;
        EtbChain chain;
        SecondByteFrames frames;
        QString fed, read, joinedEtx, joinedCrLf, blocked;
        qsizetype chained = 0;
        std::int64_t now = 0;
        for (qsizetype at = 0, length = 0; at < bytes.size(); at += length) {
            length = 1 + pick(40);
            const QString part = PortText(bytes.mid(at, length));
            fed += part;
            now += pick(120);
            const std::optional<QString> r = TakeRead(window, now, part);
            if (!r) continue;
            ASSERT_FALSE(r->isEmpty());
            read += *r;
            if (auto piece = Join(etx, *r)) joinedEtx += *piece;
            if (auto piece = Join(crlf, *r)) joinedCrLf += *piece;
            if (const BlockStep step = Join(blocks, *r); step.block) blocked += step.block->text;
            if (auto report = Join(chain, *r))
                for (const QString& frame : *report) chained += frame.size();
            ClassifyFrame(frames, *r);
        }
        ASSERT_EQ(read + window.held, fed) << "round " << round;
        ASSERT_EQ(joinedEtx + etx.text, read) << "round " << round;
        ASSERT_EQ(joinedCrLf + crlf.text, read) << "round " << round;
        ASSERT_EQ(blocked + blocks.text, read) << "round " << round;
        ASSERT_LE(chained, read.size()) << "round " << round;
        ASSERT_LE(chain.frames.join(QString()).size(), read.size()) << "round " << round;
    }
}
