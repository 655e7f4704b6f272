// Random and mutated bytes through every reader, cut into reads at random times: no crash, no
// hang, and every byte accounted for: what a reader gives plus what it holds is exactly what it
// was fed (the report chain, which replaces its frames, gives and holds no more than that). A
// fixed seed keeps a failure reproducible; KV_ORBLINE_FUZZ_ROUNDS runs longer.

#include "common/AnsiCodec.h"
#include "dialogues/PieceReaders.h"
#include "dialogues/ReadWindow.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include <cstdlib>
#include <random>

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
    std::mt19937 random(20261123);
    const auto pick = [&](int below) {
        return std::uniform_int_distribution<int>(0, std::max(0, below - 1))(random);
    };
    // Half of the random bytes are the control bytes the readers look for.
    const auto byte = [&] {
        static constexpr char kControls[] = {0x02, 0x03, 0x04, 0x05, 0x06, 0x0A, 0x0D, 0x15, 0x17};
        return pick(2) == 0 ? kControls[pick(sizeof kControls)] : static_cast<char>(pick(256));
    };
    const char* rounds = std::getenv("KV_ORBLINE_FUZZ_ROUNDS");
    for (int round = 0, last = rounds != nullptr ? std::atoi(rounds) : 2000; round < last;
         ++round) {
        // Random bytes, or a capture with bytes changed, inserted and dropped.
        const bool randomBytes = pick(3) == 0;
        QByteArray bytes = randomBytes ? QByteArray(pick(600), '\0')
                                       : captures.at(pick(static_cast<int>(captures.size())));
        for (char& b : bytes)
            if (randomBytes || pick(50) == 0) b = byte();
        for (int n = pick(6); n > 0; --n)
            bytes.insert(pick(static_cast<int>(bytes.size())), byte());
        for (int n = pick(6); n > 0 && !bytes.isEmpty(); --n)
            bytes.remove(pick(static_cast<int>(bytes.size())), 1);

        ReadWindow window{.waitMs = pick(3) * 50, .restMs = pick(2) * 100};
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
