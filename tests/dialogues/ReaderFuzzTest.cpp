// Random and mutated bytes through every reader, cut into reads at random times: no crash, no
// hang, and every byte accounted for: what a reader gives plus what it holds is exactly what it
// was fed (the report chain, which replaces its frames, gives and holds no more than it was fed). A
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

namespace {

int Rounds() {
    const char* text = std::getenv("KV_ORBLINE_FUZZ_ROUNDS");
    return text != nullptr ? std::max(1, std::atoi(text)) : 2000;
}

// Inputs of three sorts: bytes rich in control bytes, a capture with bytes changed, inserted or
// dropped, and two captures spliced.
class Inputs {
  public:
    explicit Inputs(std::uint32_t seed) : random_(seed) {
        const QDir dir(QStringLiteral(ORBLINE_FIXTURES_DIR "/captures"));
        for (const QString& name : dir.entryList({u"*.bin"_s}, QDir::Files)) {
            QFile file(dir.filePath(name));
            if (file.open(QIODevice::ReadOnly)) captures_.append(file.readAll());
        }
    }

    // The next input cut into reads of random length.
    QStringList reads() {
        QByteArray bytes;
        switch (pick(3)) {
            case 0:
                for (int i = pick(600); i > 0; --i) bytes.append(byte());
                break;
            case 1:
                bytes = capture();
                for (int n = pick(6); n >= 0 && !bytes.isEmpty(); --n) {
                    const int at = pick(static_cast<int>(bytes.size()));
                    const int how = pick(3);
                    if (how == 0) bytes[at] = byte();
                    if (how == 1) bytes.insert(at, byte());
                    if (how == 2) bytes.remove(at, 1);
                }
                break;
            default:
                bytes = capture().left(pick(400)) + capture().mid(pick(400));
                break;
        }
        QStringList out;
        for (qsizetype at = 0, length = 0; at < bytes.size(); at += length) {
            length = 1 + pick(40);
            out.append(PortText(bytes.mid(at, length)));
        }
        return out;
    }
    int pick(int below) {
        return std::uniform_int_distribution<int>(0, std::max(0, below - 1))(random_);
    }

  private:
    QByteArray capture() { return captures_.at(pick(static_cast<int>(captures_.size()))); }
    char byte() {
        static constexpr char kControls[] = {0x02, 0x03, 0x04, 0x05, 0x06,
                                             0x0A, 0x0D, 0x15, 0x16, 0x17};
        return pick(2) == 0 ? kControls[pick(sizeof kControls)] : static_cast<char>(pick(256));
    }

    std::mt19937 random_;
    QList<QByteArray> captures_;
};

}  // namespace

TEST(ReaderFuzz, EveryByteIsGivenOrHeldAndNoneIsMadeUp) {
    Inputs inputs(20261123);
    for (int round = 0; round < Rounds(); ++round) {
        ReadWindow window{.waitMs = inputs.pick(3) * 50, .restMs = inputs.pick(2) * 100};
        JoinToEnd etx{.mark = QChar(0x03)};
        JoinToCrLf crlf;
        BlockReader blocks;
        EtbChain chain;
        SecondByteFrames frames;
        QString fed, read, joinedEtx, joinedCrLf, blocked;
        qsizetype chained = 0;
        std::int64_t now = 0;
        for (int input = 0; input < 3; ++input) {
            for (const QString& bytes : inputs.reads()) {
                fed += bytes;
                now += inputs.pick(120);
                const std::optional<QString> r = TakeRead(window, now, bytes);
                if (!r) continue;
                ASSERT_FALSE(r->isEmpty());
                read += *r;
                if (auto piece = Join(etx, *r)) joinedEtx += *piece;
                if (auto piece = Join(crlf, *r)) joinedCrLf += *piece;
                if (const BlockStep step = Join(blocks, *r); step.block)
                    blocked += step.block->text;
                if (auto report = Join(chain, *r))
                    for (const QString& frame : *report) chained += frame.size();
                ClassifyFrame(frames, *r);
            }
        }
        ASSERT_EQ(read + window.held, fed) << "round " << round;
        ASSERT_EQ(joinedEtx + etx.text, read) << "round " << round;
        ASSERT_EQ(joinedCrLf + crlf.text, read) << "round " << round;
        ASSERT_EQ(blocked + blocks.text, read) << "round " << round;
        ASSERT_LE(chained, read.size()) << "round " << round;
        ASSERT_LE(chain.frames.join(QString()).size(), read.size()) << "round " << round;
    }
}
