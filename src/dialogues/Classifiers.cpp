#include "dialogues/Classifiers.h"

#include "common/Numbers.h"
#include "common/Text.h"
#include "dialogues/LinkRules.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

PieceKind KindOfPiece(const QString& piece, bool eotAtEnd) {
    if (piece.startsWith(ctl::ENQ)) return PieceKind::Enq;
    if (piece.startsWith(ctl::EOT) || (eotAtEnd && piece.endsWith(ctl::EOT))) return PieceKind::Eot;
    // The checksum of a received frame is not compared in these dialogues.
    return PieceKind::Data;
}

ReplyClass ClassOfAck(SendStage stage) {
    switch (stage) {
        case SendStage::FirstOfTwo:
            return ReplyClass::SecondPart;
        case SendStage::Terminator:
            return ReplyClass::TerminatorTaken;
        case SendStage::Nothing:
        case SendStage::Header:
        case SendStage::Patient:
        case SendStage::Order:
            return ReplyClass::NextRecord;
    }
    return ReplyClass::NextRecord;
}

ReplyClass CheckReply(const QString& piece, SendStage stage) {
    if (piece.startsWith(ctl::ACK)) return ClassOfAck(stage);
    return ReplyClass::NotAck;
}

bool IsOneOf(const QString& text, std::initializer_list<QStringView> values) {
    for (const QStringView v : values)
        if (text == v) return true;
    return false;
}

// The tests of a full frame in their order; the first that fails gives its code.
FrameCheck FrameTests(const QString& frame, std::int16_t pieceCount, std::int16_t& eotFlag) {
    const QChar kind = frame.size() >= 2 ? frame.at(1) : QChar();
    const bool data = kind == u'D';
    const bool idle = kind == ctl::SYN;
    if (!frame.startsWith(ctl::STX)) return FrameCheck::NoStx;
    if (!frame.endsWith(ctl::ETX)) return FrameCheck::NoEtx;
    if (!data && !idle && kind != ctl::ENQ && kind != ctl::EOT) return FrameCheck::UnknownKind;
    if (pieceCount == 0 && kind != ctl::ENQ && !idle) return FrameCheck::NoEnqFirst;
    if (pieceCount > 0 && !data && !idle) {
        if (kind == ctl::EOT) {
            eotFlag = 1;
            return FrameCheck::Good;
        }
        return FrameCheck::NotDataInside;
    }
    const qsizetype length = frame.size();
    if ((data || idle) && length < 7) return FrameCheck::DataTooShort;
    if (!data && !idle && length > 6) return FrameCheck::ControlTooLong;
    const QString third = Mid(frame, 3, 1);
    if (!IsNumeric(third)) return FrameCheck::NumberNotNumeric;
    const double digit = ToDouble(third).value_or(0);
    if (digit < 0) return FrameCheck::NumberBelowZero;
    if (digit > 9) return FrameCheck::NumberAboveNine;
    const QString sum = SumCheckNegated(frame);
    if (sum.front() != frame.at(length - 3)) return FrameCheck::FirstSumDigit;
    if (sum.back() != frame.at(length - 2)) return FrameCheck::SecondSumDigit;
    const QString fourth = Mid(frame, 4, 1);
    const QString fifthSixth = Trim(Mid(frame, 5, 2));
    if (data && !IsOneOf(fourth, {u"W", u"R", u"N", u"C"})) return FrameCheck::UnknownDataKind;
    if (data && !IsOneOf(fifthSixth, {u"BH", u"BR", u"BD", u"QH", u"QR", u"QD", u"SD", u"SY"}))
        return FrameCheck::UnknownDataClass;
    if (idle && fourth != u"W"_s) return FrameCheck::IdleNotW;
    if (idle && fifthSixth != u"SY"_s) return FrameCheck::IdleNotSy;
    if (Mid(frame, 4, 3) == u"RSD"_s) return FrameCheck::Rsd;
    // An idle frame is no failure: it keeps its own code through the tests.
    return idle ? FrameCheck::Idle : FrameCheck::Good;
}

}  // namespace

PieceKind CheckReceive0980(const QString& piece) {
    return KindOfPiece(piece, false);
}
PieceKind CheckReceive1190(const QString& piece) {
    return KindOfPiece(piece, false);
}
PieceKind CheckReceive1160(const QString& piece) {
    return KindOfPiece(piece, false);
}
PieceKind CheckReceive1660(const QString& piece) {
    return KindOfPiece(piece, true);
}

ReplyClass CheckReply0980(const QString& piece, SendStage stage) {
    return CheckReply(piece, stage);
}
ReplyClass CheckReply1190(const QString& piece, SendStage stage) {
    return CheckReply(piece, stage);
}
ReplyClass CheckReply1160(const QString& piece, SendStage stage) {
    return CheckReply(piece, stage);
}
ReplyClass CheckReply1660(const QString& piece, SendStage stage) {
    return CheckReply(piece, stage);
}

FrameCheck CheckFrame0990(const QString& frame, std::int16_t pieceCount, std::int16_t& eotFlag,
                          FrameHistory& history) {
    // The history only ever grows; past its bound a frame is no longer kept.
    history.count += 1;
    history.frames.put(history.count, frame);
    eotFlag = 0;
    return FrameTests(frame, pieceCount, eotFlag);
}

}  // namespace orbline
