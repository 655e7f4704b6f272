#include "dialogues/PieceReaders.h"

#include "dialogues/LinkRules.h"

#include <utility>

namespace orbline {

namespace {

// The text held so far with the read behind it, or the read alone when nothing is held.
void Hold(JoinPhase phase, QString& text, const QString& read) {
    switch (phase) {
        case JoinPhase::Empty:
            text = read;
            return;
        case JoinPhase::Partial:
            text += read;
            return;
    }
}

QChar LastButOne(const QString& text) {
    return text.size() >= 2 ? text.at(text.size() - 2) : QChar();
}

}  // namespace

std::optional<QString> Join(JoinToEnd& j, const QString& read) {
    Hold(j.phase, j.text, read);
    if (j.text.isEmpty()) return std::nullopt;
    if (j.text.back() != j.mark) {
        j.phase = JoinPhase::Partial;
        return std::nullopt;
    }
    j.phase = JoinPhase::Empty;
    return std::exchange(j.text, QString());
}

std::optional<QString> Join(JoinToCrLf& j, const QString& read) {
    Hold(j.phase, j.text, read);
    if (j.text.startsWith(ctl::STX) && !j.text.endsWith(u"\r\n")) {
        j.phase = JoinPhase::Partial;
        return std::nullopt;
    }
    j.phase = JoinPhase::Empty;
    if (j.text.isEmpty()) return std::nullopt;
    return std::exchange(j.text, QString());
}

std::optional<QStringList> Join(EtbChain& c, const QString& read) {
    switch (c.phase) {
        case ChainPhase::Lost:
            return std::nullopt;
        case ChainPhase::Waiting:
            if (c.index >= kChainFrames) {
                c.phase = ChainPhase::Lost;
                return std::nullopt;
            }
            // Elements are kept between reports; each is replaced when its turn comes.
            while (c.frames.size() <= c.index) c.frames.append(QString());
            c.frames[c.index] = read;
            break;
        case ChainPhase::Partial:
            c.frames[c.index] += read;
            break;
    }
    const QString& frame = c.frames.at(c.index);
    if (!frame.startsWith(ctl::STX)) {
        c.phase = ChainPhase::Partial;
        return std::nullopt;
    }
    if (frame.back() == ctl::ETX) {
        QStringList report = c.frames.mid(0, c.index + 1);
        c.phase = ChainPhase::Waiting;
        c.index = 0;
        return report;
    }
    if (frame.back() == ctl::ETB) {
        c.index += 1;
        c.phase = ChainPhase::Waiting;
        return std::nullopt;
    }
    c.phase = ChainPhase::Partial;
    return std::nullopt;
}

BlockStep Join(BlockReader& r, const QString& read) {
    Hold(r.phase, r.text, read);
    r.phase = r.text.isEmpty() ? JoinPhase::Empty : JoinPhase::Partial;
    if (r.text.isEmpty() || r.text.back() != u'\r') return {};
    BlockStep step{.endsInCr = true, .block = std::nullopt};
    std::optional<BlockKind> kind;
    if (r.text.front() == ctl::ENQ)
        kind = BlockKind::Start;
    else if (LastButOne(r.text) == ctl::ETX)
        kind = BlockKind::Data;
    else if (LastButOne(r.text) == ctl::EOT)
        kind = BlockKind::Final;
    if (!kind) return step;
    step.block = Block{*kind, std::exchange(r.text, QString())};
    r.phase = JoinPhase::Empty;
    return step;
}

KindedFrame ClassifyFrame(SecondByteFrames& f, const QString& read) {
    if (!read.startsWith(ctl::STX)) {
        f.lastFrame = false;
        return {FrameKind::NoStx, f.lastFrame};
    }
    const QChar second = read.size() >= 2 ? read.at(1) : QChar();
    if (second == u'>') {
        f.lastFrame = false;
        return {FrameKind::Poll, f.lastFrame};
    }
    if (second == u':') {
        f.lastFrame = true;
        return {FrameKind::Data, f.lastFrame};
    }
    if (second == u';') {
        f.lastFrame = true;
        return {FrameKind::Inquiry, f.lastFrame};
    }
    return {FrameKind::Data, f.lastFrame};
}

}  // namespace orbline
