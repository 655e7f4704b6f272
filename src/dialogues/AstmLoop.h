#pragma once
// The loop that the ASTM-like dialogues share. It polls the port, saves and acknowledges each
// piece of the instrument's message, runs the edit at the EOT piece, and when the edit found an
// order query it takes the line and answers with header, patient, order and terminator
// records. An instrument fills in an AstmDialogue; the loop itself is not copied.

#include "common/RunContext.h"
#include "dialogues/Classifiers.h"
#include "dialogues/LinkRules.h"

#include <QString>
#include <QStringView>

#include <cstdint>

namespace orbline {

// What the lookup found for the order query, kept for the records that carry it.
struct OrderAnswer {
    QString test;  // the tests in the instrument's notation
    QString kana;
    QString patientId;
    QString sex;       // the stored code: "1", "2" or other
    QString dateTime;  // "YYYYMMDDHHMMSS" when the lookup ran
};

// The variables of one run of the loop, at their start values.
struct AstmLoopState {
    std::int16_t PieceCount = 0;  // pieces of the message; in the order phase, refusals
    std::int16_t EotFlag = 0;
    std::int16_t FrameNo = 0;
    SendStage Stage = SendStage::Nothing;
    std::int16_t PollCount = 0;
    QString StampText;
    QString QueryKey;  // filled by an edit that hands the key over directly
    OrderAnswer answer;
};

// Where an instrument's order lookup runs.
enum class LookupPoint {
    BeforePatient,  // on the ACK to the header; the patient record follows
    AfterHeader,    // right after the header; without an order the terminator follows
};
// What a refused frame leads to.
enum class RetryRule {
    RepeatFrame,  // the frame of the stage goes out again, with the next frame number
    AskAgain,     // ENQ again: its ACK counts for the refused frame, which is lost
};

using RecordText = QString (*)(const AstmLoopState&);

struct AstmDialogue {
    QStringView folder;  // work folder in AppPath, "c980"
    QStringView prefix;  // piece file prefix, "c980"
    QString RunContext::*queryMark;
    bool clearsMarkOnEntry = false;
    // Idle rounds between two looks into the order folder; 0 when the instrument has none.
    std::int16_t pollEvery = 0;
    void (*takeOrders)() = nullptr;
    std::int16_t (*checkReceive)(const QString&, std::int16_t&, std::int16_t&) = nullptr;
    std::int16_t (*checkReply)(const QString&, std::int16_t&, SendStage) = nullptr;
    // Runs the edit for the saved message (PieceCount pieces, the last the EOT piece).
    void (*edit)(AstmLoopState&) = nullptr;
    // The EOT piece is acknowledged too, after the ENQ of an order phase.
    bool ackEotPiece = false;

    // The records of the answer. The first header goes out with repeated false.
    QString (*header)(const AstmLoopState&, bool repeated) = nullptr;
    RecordText patient = nullptr;
    RecordText order = nullptr;
    RecordText terminator = nullptr;
    // How header, patient and a one-frame order record end; the terminator ends with ETX.
    FrameEnd recordEnd = FrameEnd::Etx;
    void (*lookup)(AstmLoopState&) = nullptr;
    LookupPoint lookupAt = LookupPoint::BeforePatient;
    RetryRule retry = RetryRule::AskAgain;
};

// Runs until the session ends (Connected false).
void RunAstmLoop(const AstmDialogue& dialogue);

// Sends one record as a frame through the send pane, sets the stage and traces the record.
void BuildFrame(AstmLoopState& state, const QString& recordText, FrameEnd end, SendStage next);

// The sex code of an order as the records write it: "M", "F" or "U".
QString SexLetter(const QString& code);

}  // namespace orbline
