#pragma once
// Result records and their delivery: a file is built in the work folder and moved into the
// delivery folder only when complete, under a name that no file there has.

#include <QString>

#include <cstdint>
#include <optional>

namespace orbline {

// The 19 fields of a result record, named as the RunContext fields they stand for. The start
// values are those of the reset at each message and line: "000000" for SampleSeq, "MIN" for
// ResultKind, "0" for RunMark and SampleId, the empty text for the rest. Every field has its
// initializer, so that a designated initializer may leave any out.
struct ResultFields {
    QString KensaDate{};
    QString KensaTime{};
    QString RunMark = QStringLiteral("0");
    QString SampleId = QStringLiteral("0");
    QString InstrumentCode{};
    QString InstrumentName{};
    QString SampleSeq = QStringLiteral("000000");
    QString ItemCode{};
    QString ItemName{};
    QString JudgeFlag{};
    QString Judge1{};
    QString Judge2{};
    QString Extra1{};
    QString ResultValue{};
    QString ResultUnit{};
    QString ResultKind = QStringLiteral("MIN");
    QString Extra2{};
    QString Extra3{};
    QString ResultComment{};
};

// The 19 fields joined by ",", with ResultValue cleaned first: trimmed, "<" and ">" replaced by
// their full-width forms. No other field is cleaned, so a comma in one shifts the fields.
QString ResultRecordLine(const ResultFields& fields);

// folder\code-prefix-stampserial~KVB.csv, stamp "YYYYMMDDHHMMDD", serial OutSerial in "00000"
// after adding 1. Makes the folder (one level) when missing and deletes a file of that name:
// for work files only. In the work folder such a file was left by an earlier process of the same
// code and prefix (and so of the same port, which one process at a time holds), and nothing
// picks it up.
void MakeOutFile(const QString& folder, QString& path);
void MakeOutFileEx(const QString& folder, QString& path, const QString& prefix);
// MakeOutFile for the delivery folder, where no file is ever deleted: the name and the serial
// only. The move into it takes the name, or the next free one.
void MakeDeliveryName(const QString& folder, QString& path);

// 1 when the first match of the kind's pattern in the folder (kind 1 "*.csv", 2 "*.txt",
// 3 "*uke.txt") has a name of more than one character, else 0.
std::int16_t HasFiles(std::int16_t kind, const QString& folder);

// A file that a result record points to (a chart), closed in the work folder, moved into folder
// under the name MakeOutFileEx gives for the prefix or, where that is taken, the next free one:
// a file there is never replaced. False when the move fails; the work file then stays.
bool MoveToOutNameEx(const QString& workPath, const QString& folder, const QString& prefix,
                     QString* movedPath);

enum class Delivery { Delivered, Empty };
// What a move into the delivery folder that fails does: an edit with an error exit ends there;
// an edit that passes its errors over goes on to the log pair as if the move had been made.
enum class FailedMove { Throws, PassedOver };
// A new name in JyusinDataPath for a closed work file and the move there, with no log. A name
// that is taken, by a file of an earlier process or by another process at this moment, moves
// the serial on. False when the move fails; the work file then stays where it is.
bool MoveToDeliveryName(const QString& workPath, QString* deliveredPath = nullptr);
// The common end of a result edit, for a closed work file: when it holds bytes, a new name in
// JyusinDataPath and the move ("出力完了(Write) -- "); when empty, its deletion
// ("Size=0のため出力なし -- "). A name that a file of the delivery folder has moves the serial
// on to the next free one. A work file that is not there throws RuntimeError. A failed move
// leaves the work file where it is.
Delivery DeliverWorkFile(const QString& workPath, FailedMove failedMove,
                         QString* deliveredPath = nullptr);
// The same move and log with no test of the size, for an edit that delivers its work file even
// when it is empty (1160). A failed move throws RuntimeError and leaves the work file.
void DeliverWorkFileAsIs(const QString& workPath, QString* deliveredPath = nullptr);
// Logs "出力データなし -- " for an edit that had no rows at all.
void LogNoOutput();

}  // namespace orbline
