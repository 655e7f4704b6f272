#pragma once
// The checks applied to a piece read from the port. A receive classifier runs while the
// instrument sends; a reply classifier runs in the order phase, on the instrument's answer to
// the host's last frame. Codes of 10 and above are refusals.

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

// Reply codes of the reply classifiers.
namespace reply {
inline constexpr std::int16_t kNextRecord = 0;
inline constexpr std::int16_t kSecondPart = 1;
inline constexpr std::int16_t kTerminatorTaken = 2;
inline constexpr std::int16_t kNotAck = 10;
inline constexpr std::int16_t kLeave = 99;  // no classifier returns it
}  // namespace reply

// Only the first character counts: ENQ clears eotFlag, EOT sets it, anything else is data. The
// checksum is computed and not compared, so these never refuse.
std::int16_t CheckReceive0980(const QString& piece, std::int16_t& pieceCount,
                              std::int16_t& eotFlag);
std::int16_t CheckReceive1190(const QString& piece, std::int16_t& pieceCount,
                              std::int16_t& eotFlag);
std::int16_t CheckReceive1160(const QString& piece, std::int16_t& pieceCount,
                              std::int16_t& eotFlag);
// Also takes a piece that ends with EOT as the end of the transmission.
std::int16_t CheckReceive1660(const QString& piece, std::int16_t& pieceCount,
                              std::int16_t& eotFlag);

// ACK gives the code of the stage; anything else counts one more refusal in pieceCount and
// gives kNotAck.
std::int16_t CheckReply0980(const QString& piece, std::int16_t& pieceCount, SendStage stage);
std::int16_t CheckReply1190(const QString& piece, std::int16_t& pieceCount, SendStage stage);
std::int16_t CheckReply1160(const QString& piece, std::int16_t& pieceCount, SendStage stage);
// Its dialogues use only the stages Nothing, FirstOfTwo and Terminator.
std::int16_t CheckReply1660(const QString& piece, std::int16_t& pieceCount, SendStage stage);

// The one full frame check: STX, kind, body, two checksum digits, ETX. Returns 0 for a good
// frame (eotFlag 1 for the EOT frame), 1 for a good idle frame, 2 for "RSD", and 100 to 138 for
// the first test that fails. Every frame is kept in the run's history first.
std::int16_t CheckFrame0990(const QString& frame, std::int16_t& pieceCount, std::int16_t& eotFlag);

// By the second byte: 10 without STX, 1 for ">" (poll), 0 with eotFlag 1 for ":", 2 with
// eotFlag 1 for ";", 0 and eotFlag unchanged for anything else.
std::int16_t ClassifyFrame(const QString& frame, std::int16_t& ignored, std::int16_t& eotFlag);

}  // namespace orbline
