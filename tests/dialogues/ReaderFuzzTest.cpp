// Random and mutated bytes through every reader: no crash, no hang, and nothing made out of
// nothing: what a reader gives and holds is never more than the bytes it was fed. A fixed seed
// keeps a failure reproducible; KV_ORBLINE_FUZZ_ROUNDS runs longer.

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

QList<QByteArray> Captures() {
    QList<QByteArray> captures;
    const QDir dir(QStringLiteral(ORBLINE_FIXTURES_DIR "/captures"));
    for (const QString& name : dir.entryList({u"*.bin"_s}, QDir::Files)) {
        QFile file(dir.filePath(name));
        if (file.open(QIODevice::ReadOnly)) captures.append(file.readAll());
    }
    return captures;
}

// Inputs of three sorts: bytes with many control bytes, a capture with a few bytes changed,
// inserted or dropped, and two captures spliced.
class Inputs {
  public:
    explicit Inputs(std::uint32_t seed) : random_(seed), captures_(Captures()) {}

    QByteArray next() {
        switch (pick(3)) {
            case 0:
                return randomBytes(pick(600));
            case 1:
                return mutated(capture());
            default:
                return capture().left(pick(400)) + capture().mid(pick(400));
        }
    }
    // The input cut into reads of random length.
    QStringList reads(const QByteArray& bytes) {
        QStringList out;
        for (qsizetype at = 0; at < bytes.size();) {
            const qsizetype length = 1 + pick(40);
            out.append(PortText(bytes.mid(at, length)));
            at += length;
        }
        return out;
    }
    int pick(int below) {
        return std::uniform_int_distribution<int>(0, std::max(0, below - 1))(random_);
    }

  private:
    QByteArray capture() {
        return captures_.isEmpty() ? QByteArray()
                                   : captures_.at(pick(static_cast<int>(captures_.size())));
    }
    char byte() {
        static constexpr char kControls[] = {0x02, 0x03, 0x04, 0x05, 0x06,
                                             0x0A, 0x0D, 0x15, 0x16, 0x17};
        if (pick(2) == 0) return kControls[pick(sizeof kControls)];
        return static_cast<char>(pick(256));
    }
    QByteArray randomBytes(int length) {
        QByteArray bytes;
        for (int i = 0; i < length; ++i) bytes.append(byte());
        return bytes;
    }
    QByteArray mutated(QByteArray bytes) {
        for (int n = pick(6); n >= 0; --n) {
            const qsizetype at = bytes.isEmpty() ? 0 : pick(static_cast<int>(bytes.size()));
            switch (pick(3)) {
                case 0:
                    if (!bytes.isEmpty()) bytes[at] = byte();
                    break;
                case 1:
                    bytes.insert(at, byte());
                    break;
                default:
                    bytes.remove(at, 1);
                    break;
            }
        }
        return bytes;
    }

    std::mt19937 random_;
    QList<QByteArray> captures_;
};

// Feeds the reads of every input, counting bytes in and out (out includes what stays held).
template <typename Make, typename Size>
void Fuzz(std::uint32_t seed, Make make, Size sizeOf) {
    Inputs inputs(seed);
    for (int round = 0; round < Rounds(); ++round) {
        auto reader = make();
        qsizetype in = 0;
        qsizetype out = 0;
        for (int input = 0; input < 4; ++input) {
            for (const QString& read : inputs.reads(inputs.next())) {
                in += read.size();
                if (auto piece = Join(reader, read)) out += sizeOf(*piece);
            }
        }
        ASSERT_LE(out, in) << "seed " << seed << " round " << round;
    }
}

qsizetype Length(const QString& text) {
    return text.size();
}

}  // namespace

TEST(ReaderFuzz, JoinersGiveBackNoMoreThanTheyWereFed) {
    Fuzz(
        1, [] { return JoinToEnd{.mark = u'\x03'}; }, &Length);
    Fuzz(
        2, [] { return JoinToCrLf{}; }, &Length);
    Fuzz(
        4, [] { return EtbChain{}; },
        [](const QStringList& report) {
            qsizetype n = 0;
            for (const QString& frame : report) n += frame.size();
            return n;
        });
}

// What comes out of the joiners and the window and what they still hold is exactly what went
// in: no byte lost, none doubled.
TEST(ReaderFuzz, TheWindowAndTheJoinersKeepEveryByte) {
    Inputs inputs(5);
    for (int round = 0; round < Rounds(); ++round) {
        ReadWindow window{.waitMs = inputs.pick(3) * 50, .restMs = inputs.pick(2) * 100};
        JoinToCrLf crlf;
        BlockReader blocks;
        SecondByteFrames frames;
        QString fed;
        QString read;
        QString joined;
        QString blocked;
        std::int64_t now = 0;
        for (const QString& bytes : inputs.reads(inputs.next())) {
            fed += bytes;
            now += inputs.pick(120);
            if (auto r = TakeRead(window, now, bytes)) {
                ASSERT_FALSE(r->isEmpty());
                read += *r;
                if (auto piece = Join(crlf, *r)) joined += *piece;
                if (const BlockStep step = Join(blocks, *r); step.block)
                    blocked += step.block->text;
                ClassifyFrame(frames, *r);
            }
        }
        ASSERT_EQ(read + window.held, fed) << "round " << round;
        ASSERT_EQ(joined + crlf.text, read) << "round " << round;
        ASSERT_EQ(blocked + blocks.text, read) << "round " << round;
    }
}
