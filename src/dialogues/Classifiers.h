#pragma once
// The checks applied to a piece read from the port. A receive classifier runs while the
// instrument sends; a reply classifier runs in the order phase, on the instrument's answer to
// the host's last frame. Their results are types here and numbers only where they are logged.

#include "common/BoundedStore.h"

#include <QString>

#include <cstdint>

namespace orbline {

// What the host sent last in the order phase; spelled "0", "H", "P", "O", "1", "9" on the
// classifiers' side of the old system.
enum class SendStage {
    Nothing,     // "0": the ENQ is out
    Header,      // "H"
    Patient,     // "P"
    Order,       // "O": the order frame, or its second part
    FirstOfTwo,  // "1": the first part of a long order record
    Terminator,  // "9"
};

// What a receive classifier of the frame dialogues makes of a piece. They never refuse one: a
// frame with a bad checksum, a wrong number or plain noise is data like a good frame.
enum class PieceKind {
    Enq,   // the first character is ENQ: a transmission begins
    Eot,   // the first character is EOT: the transmission is complete
    Data,  // anything else
};
PieceKind CheckReceive0980(const QString& piece);
PieceKind CheckReceive1190(const QString& piece);
PieceKind CheckReceive1160(const QString& piece);
// Also takes a piece that ends with EOT as the end of the transmission.
PieceKind CheckReceive1660(const QString& piece);

// The reply classes of the order phase, with the numbers of the old codes.
enum class ReplyClass : std::int16_t {
    NextRecord = 0,       // the last frame was acknowledged
    SecondPart = 1,       // the first part of a long record was acknowledged
    TerminatorTaken = 2,  // the terminator was acknowledged
    NotAck = 10,          // anything but ACK; NAK has no treatment of its own
    Leave = 99,           // no classifier gives it
};
ReplyClass CheckReply0980(const QString& piece, SendStage stage);
ReplyClass CheckReply1190(const QString& piece, SendStage stage);
ReplyClass CheckReply1160(const QString& piece, SendStage stage);
// Its dialogues use only the stages Nothing, FirstOfTwo and Terminator.
ReplyClass CheckReply1660(const QString& piece, SendStage stage);

// The results of the full frame check, with the numbers that are logged: the first test that
// fails gives its number.
enum class FrameCheck : std::int16_t {
    Good = 0,  // a frame to store; an EOT frame also ends the transmission
    Idle = 1,  // a good idle frame (SYN)
    Rsd = 2,   // "RSD" in characters 4 to 6
    NoStx = 100,
    NoEtx = 110,
    UnknownKind = 120,       // the second character is none of "D", ENQ, EOT, SYN
    NoEnqFirst = 121,        // a transmission must begin with ENQ
    NotDataInside = 122,     // inside a transmission only "D" (or SYN, or the closing EOT)
    DataTooShort = 123,      // a data or idle frame under 7 characters
    ControlTooLong = 124,    // an ENQ or EOT frame over 6 characters
    NumberNotNumeric = 130,  // character 3
    NumberBelowZero = 131,
    NumberAboveNine = 132,
    FirstSumDigit = 133,
    SecondSumDigit = 134,
    UnknownDataKind = 135,   // character 4 of a data frame
    UnknownDataClass = 136,  // characters 5 and 6 of a data frame
    IdleNotW = 137,
    IdleNotSy = 138,
};
// Every frame the full frame check saw in this run, from element 1.
struct FrameHistory {
    BoundedArray<QString> frames{1000};
    std::int32_t count = 0;
};
// The one full frame check: STX, kind, body, two checksum digits, ETX. The frame is kept in the
// history first. eotFlag becomes 1 for the EOT frame that ends a transmission, 0 otherwise.
FrameCheck CheckFrame0990(const QString& frame, std::int16_t pieceCount, std::int16_t& eotFlag,
                          FrameHistory& history);

}  // namespace orbline
