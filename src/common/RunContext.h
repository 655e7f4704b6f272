#pragma once
// The program-wide fields that every module reads and writes. One instance lives as long as
// the process; everything runs on the one logic thread, so there is no locking.
//
// It lives below every other module (not in app/) because the dialogues and the edits, which
// app/ depends on, read and write it as much as the shell does.

#include "common/BoundedStore.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <utility>

namespace orbline {

struct RunContext {
    // Launch fields, filled by the load event from the command line.
    QString InstrumentCode;
    QString IniPrefix;
    QString ShowMode;
    QString AppPath;
    QString FixedSampleId;
    QString Spare5;
    QString RunMarkDefault;

    // Settings fields, filled by the start command from the settings file.
    std::int32_t PortNo = 0;
    std::int32_t BaudRateNo = 0;
    std::int32_t DataBitsNo = 0;
    float StopBitsNo = 0;
    QString ParityCode;
    QString HandshakeCode;
    std::int32_t TimeOutMs = 0;
    QString InstrumentName;
    QString InstrumentName2;
    QString CrpName;
    QString DelimiterNo;
    QString IDEntry;
    QString InData;
    QString LaboOut;
    QString Log;
    QString Tani;
    QString LogMeisai;
    QString Interval;
    QString Tusin;
    QString HbA1c;
    QString OutPath;
    QString OutFile;
    QString OutIP;
    QString OrderPT;
    QString OrderKey;
    QString OrderPath;
    QString OrderPath2;
    QString FT01Format;
    QString DbPath;
    // Optional ODBC connection string of a server order database, used instead of DbPath.
    QString DbConnect;
    QString JyusinDataPath;
    QString JyusinDataPath2;
    QString JyusinWKPath;
    // POSIX only: a device path that replaces /dev/ttyS(n-1) for port number n.
    QString Device;

    // Session fields.
    std::int32_t StopRequested = 0;  // written only
    std::int32_t LoopMode = 0;       // written only
    QString LoopCount;               // written only
    std::int16_t AbendFlag = 0;
    QString AbendText;
    QString OutFolder;
    std::int32_t OutSerial = 0;

    // Working fields of a dialogue and of a result edit.
    BoundedArray<QString> ReceiveBuffer{10};
    BoundedArray<QString> BlockList{5000};
    std::int16_t BlockCount = 0;
    QByteArray SendBytes;

    // What the log lines read of the message an edit took (SampleId and RunMark, in the full
    // form), and the examination time some edits keep for the message after it. The records
    // themselves are values of the edits (ResultFields), not fields of the context.
    QString KensaDate;
    QString KensaTime;
    QString RunMark;
    QString SampleId;

    BoundedArray<QString> ItemNames{500};
    BoundedArray<QString> ItemCodes{500};
    BoundedArray<QString> ItemUnits{500};
    std::int16_t ItemCount = 0;
    BoundedTable OptionTable2140{1000, 10};
    std::int16_t OptionCount2140 = 0;
    BoundedTable KensaKomokuTable2990{1000, 10};
    std::int16_t KensaKomokuCount2990 = 0;

    // Order store. The connection is a Qt Sql connection made per operation by the order
    // store; DbConnection is its name while it is open, empty otherwise. OrderSql is the
    // statement with its values written in, for logs and inspection; what runs is the same
    // statement with bound parameters.
    QString DbConnection;
    QString OrderSql;
    BoundedTable OrderTable{1000, 100};
    std::int32_t OrderRowCount = 0;
    // Statements that failed and were passed over, and the last database error: the order
    // procedures report nothing, so this is where a test or a diagnosis looks.
    std::int32_t OrderDbFailures = 0;
    QString OrderDbLastError;
    // The order files the last poll of each folder saw, by folder and then by path: size and
    // time of the last change (ms since the epoch). The intake takes a file only when both are
    // as that poll saw them, so that a file still being written waits.
    QHash<QString, QHash<QString, std::pair<qint64, qint64>>> OrderFilesSeen;
};

// The one instance.
RunContext& Ctx();
// Tests start each case from a fresh context.
void ResetRunContext();

// ShowMode as a number is exactly 1: the console is shown. Lower modules ask it too (an order
// store failure shows a box only then).
bool ShowsConsole(const QString& showMode);

}  // namespace orbline
