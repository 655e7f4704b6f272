#include "dialogues/Classifiers.h"

#include "common/Numbers.h"
#include "common/RunContext.h"
#include "common/Text.h"
#include "dialogues/LinkRules.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

using SumCheck = QString (*)(const QString&);

std::int16_t CheckReceive(const QString& piece, std::int16_t& eotFlag, SumCheck sum,
                          bool eotAtEnd) {
    if (piece.startsWith(ctl::ENQ)) {
        eotFlag = 0;
    } else if (piece.startsWith(ctl::EOT) || (eotAtEnd && piece.endsWith(ctl::EOT))) {
        eotFlag = 1;
    } else {
        // Computed and never compared: a corrupted frame is taken like a good one.
        static_cast<void>(sum(piece));
    }
    return 0;
}

std::int16_t CodeOfAck(SendStage stage) {
    switch (stage) {
        case SendStage::FirstOfTwo:
            return reply::kSecondPart;
        case SendStage::Terminator:
            return reply::kTerminatorTaken;
        case SendStage::Nothing:
        case SendStage::Header:
        case SendStage::Patient:
        case SendStage::Order:
            return reply::kNextRecord;
    }
    return reply::kNextRecord;
}

std::int16_t CheckReply(const QString& piece, std::int16_t& pieceCount, SendStage stage) {
    if (piece.startsWith(ctl::ACK)) return CodeOfAck(stage);
    // NAK has no treatment of its own: everything that is not ACK counts alike.
    pieceCount = static_cast<std::int16_t>(pieceCount + 1);
    return reply::kNotAck;
}

bool IsOneOf(const QString& text, std::initializer_list<QStringView> values) {
    for (const QStringView v : values)
        if (text == v) return true;
    return false;
}

// The tests of a full frame in their order; the first that fails gives its code.
std::int16_t FrameTests(const QString& frame, std::int16_t pieceCount, std::int16_t& eotFlag) {
    const QChar kind = frame.size() >= 2 ? frame.at(1) : QChar();
    const bool data = kind == u'D';
    const bool idle = kind == ctl::SYN;
    std::int16_t result = idle ? 1 : 0;
    if (!frame.startsWith(ctl::STX)) return 100;
    if (!frame.endsWith(ctl::ETX)) return 110;
    if (!data && !idle && kind != ctl::ENQ && kind != ctl::EOT) return 120;
    if (pieceCount == 0 && kind != ctl::ENQ && !idle) return 121;
    if (pieceCount > 0 && !data && !idle) {
        if (kind == ctl::EOT) {
            eotFlag = 1;
            return 0;
        }
        return 122;
    }
    const qsizetype length = frame.size();
    if ((data || idle) && length < 7) return 123;
    if (!data && !idle && length > 6) return 124;
    const QString third = Mid(frame, 3, 1);
    if (!IsNumeric(third)) return 130;
    const double digit = ToDouble(third).value_or(0);
    if (digit < 0) return 131;
    if (digit > 9) return 132;
    const QString sum = SumCheckNegated(frame);
    if (sum.front() != frame.at(length - 3)) return 133;
    if (sum.back() != frame.at(length - 2)) return 134;
    const QString fourth = Mid(frame, 4, 1);
    const QString fifthSixth = Trim(Mid(frame, 5, 2));
    if (data && !IsOneOf(fourth, {u"W", u"R", u"N", u"C"})) return 135;
    if (data && !IsOneOf(fifthSixth, {u"BH", u"BR", u"BD", u"QH", u"QR", u"QD", u"SD", u"SY"}))
        return 136;
    if (idle && fourth != u"W"_s) return 137;
    if (idle && fifthSixth != u"SY"_s) return 138;
    if (Mid(frame, 4, 3) == u"RSD"_s) return 2;
    return result;
}

}  // namespace

std::int16_t CheckReceive0980(const QString& piece, std::int16_t&, std::int16_t& eotFlag) {
    return CheckReceive(piece, eotFlag, &SumCheckNegated, false);
}
std::int16_t CheckReceive1190(const QString& piece, std::int16_t&, std::int16_t& eotFlag) {
    return CheckReceive(piece, eotFlag, &SumCheckNegated, false);
}
std::int16_t CheckReceive1160(const QString& piece, std::int16_t&, std::int16_t& eotFlag) {
    return CheckReceive(piece, eotFlag, &SumCheckPlain, false);
}
std::int16_t CheckReceive1660(const QString& piece, std::int16_t&, std::int16_t& eotFlag) {
    return CheckReceive(piece, eotFlag, &SumCheckNegated, true);
}

std::int16_t CheckReply0980(const QString& piece, std::int16_t& pieceCount, SendStage stage) {
    return CheckReply(piece, pieceCount, stage);
}
std::int16_t CheckReply1190(const QString& piece, std::int16_t& pieceCount, SendStage stage) {
    return CheckReply(piece, pieceCount, stage);
}
std::int16_t CheckReply1160(const QString& piece, std::int16_t& pieceCount, SendStage stage) {
    return CheckReply(piece, pieceCount, stage);
}
std::int16_t CheckReply1660(const QString& piece, std::int16_t& pieceCount, SendStage stage) {
    return CheckReply(piece, pieceCount, stage);
}

std::int16_t CheckFrame0990(const QString& frame, std::int16_t& pieceCount, std::int16_t& eotFlag) {
    RunContext& c = Ctx();
    // The history only ever grows; past its bound a frame is no longer kept.
    c.FrameHistoryCount0990 += 1;
    c.FrameHistory0990.put(c.FrameHistoryCount0990, frame);
    eotFlag = 0;
    return FrameTests(frame, pieceCount, eotFlag);
}

std::int16_t ClassifyFrame(const QString& frame, std::int16_t&, std::int16_t& eotFlag) {
    if (!frame.startsWith(ctl::STX)) {
        eotFlag = 0;
        return 10;
    }
    const QChar kind = frame.size() >= 2 ? frame.at(1) : QChar();
    if (kind == u'>') {
        eotFlag = 0;
        return 1;
    }
    if (kind == u':') {
        eotFlag = 1;
        return 0;
    }
    if (kind == u';') {
        eotFlag = 1;
        return 2;
    }
    return 0;
}

}  // namespace orbline
