#include "orders/OrderIntake.h"

#include "common/Diagnostics.h"
#include "common/EventYield.h"
#include "common/FindFiles.h"
#include "common/Logging.h"
#include "common/Paths.h"
#include "common/ResultFile.h"
#include "common/RunContext.h"
#include "common/Text.h"
#include "common/TextFile.h"
#include "orders/OrderFileLines.h"
#include "orders/OrderStore.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSqlDatabase>

#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

// Lines stored in one transaction: a lookup of another process waits for one batch at most.
constexpr qsizetype kBatchLines = 500;

using FileStamp = std::pair<qint64, qint64>;

// Size and time of the last change, of a file that is there.
std::optional<FileStamp> StampOf(const QString& path) {
    const QFileInfo info(NativePath(path));
    if (!info.exists()) return std::nullopt;
    return FileStamp{info.size(), info.lastModified().toMSecsSinceEpoch()};
}

// The files found that the previous poll of the folder saw just as they are now. What this
// poll saw then replaces what the previous one saw.
QStringList SettledFiles(const QString& folder, const QStringList& found) {
    QHash<QString, FileStamp>& seen = Ctx().OrderFilesSeen[folder];
    QHash<QString, FileStamp> now;
    QStringList settled;
    for (const QString& path : found) {
        const auto stamp = StampOf(path);
        if (!stamp) continue;
        now.insert(path, *stamp);
        if (const auto before = seen.constFind(path); before != seen.cend() && *before == *stamp)
            settled.append(path);
    }
    seen = std::move(now);
    return settled;
}

bool SaveLines(QSqlDatabase& db, const QStringList& lines, const ItemTable& items) {
    OrderRowWriter writer(db);
    bool ok = true;
    for (const QString& line : lines) ok = writer.save(StageOrderLine(line, items)) && ok;
    return ok;
}

// One transaction for the batch. When a statement in it failed, the batch is saved again line
// by line, each line in a transaction of its own, so that a line that cannot be stored costs
// no other line. A transaction that cannot begin (the store stayed locked past the writers'
// wait) sets locked: the lines left are not tried, as each would wait as long again. Returns
// the lines not stored.
qsizetype SaveBatch(QSqlDatabase& db, const QStringList& lines, const ItemTable& items,
                    bool& locked) {
    if (!BeginOrderWrite(db)) {
        locked = true;
        return lines.size();
    }
    if (SaveLines(db, lines, items) && CommitOrderWrite(db)) return 0;
    RollbackOrderWrite(db);
    qsizetype failed = 0;
    for (const QString& line : lines) {
        locked = locked || !BeginOrderWrite(db);
        if (locked) {
            ++failed;
        } else if (!SaveLines(db, {line}, items) || !CommitOrderWrite(db)) {
            RollbackOrderWrite(db);
            ++failed;
        }
    }
    return failed;
}

struct Stored {
    qint64 lines = 0;
    qint64 failed = 0;
};

// The file's lines into the store, in batches, on one connection.
Stored StoreLines(OrderFileLines& file, const ItemTable& items) {
    Stored stored;
    if (!file.isOpen()) return stored;
    OpenOrderDb();
    {
        QSqlDatabase db = OrderDb();
        bool locked = false;
        QStringList batch;
        const auto save = [&] {
            stored.failed += locked ? batch.size() : SaveBatch(db, batch, items, locked);
            batch.clear();
        };
        while (const auto line = file.next()) {
            ++stored.lines;
            batch.append(*line);
            if (batch.size() == kBatchLines) save();
        }
        if (!batch.isEmpty()) save();
    }
    CloseOrderDb();
    return stored;
}

// Beside the file, under a name no poll takes: path + ".failed", numbered when that exists.
void KeepAsFailed(const QString& path, const Stored& stored) {
    QString kept = path + u".failed"_s;
    for (int n = 2; FileExists(kept) && n < 1000; ++n)
        kept = path + u"."_s + QString::number(n) + u".failed"_s;
    const bool moved = QFile::rename(NativePath(path), NativePath(kept));
    const QString text =
        u"オーダデータ登録失敗(Edit) -- "_s + QString::number(stored.failed) + u"件 -- "_s;
    LogEvent(text, text, LogForm::Full);
    Diagnose(u"order file "_s + path + u": "_s + QString::number(stored.failed) + u" of "_s +
             QString::number(stored.lines) + u" lines could not be stored ("_s +
             Ctx().OrderDbLastError + u"); "_s +
             (moved ? u"kept as "_s + kept : u"it cannot be renamed and stays for a later poll"_s));
}

// Stores a file and deletes it; true when it was stored whole. A file of which a line could
// not be stored is kept as ".failed". One that changed while it was read, or could not be read
// to its end, stays for a later poll, which stores its lines again under the same keys.
bool TakeOrderFile(const QString& folder, const QString& path, const ItemTable& items) {
    OrderFileLines file(path);
    const Stored stored = StoreLines(file, items);
    if (!file.readToEnd() || StampOf(path) != Ctx().OrderFilesSeen[folder].value(path)) {
        if (FileExists(path))
            Diagnose(u"order file "_s + path +
                     u" changed while it was taken, or could not be read to its end; it stays "
                     u"for a later poll"_s);
        return false;
    }
    if (stored.failed > 0) {
        KeepAsFailed(path, stored);
        return false;
    }
    DeleteFile(path);
    return true;
}

// The files to take, from the work file: an empty file is deleted here and not taken.
QStringList FilesToTake(const QString& workPath) {
    QStringList paths;
    const QString text = ReadAllText(workPath).value_or(QString());
    for (const QString& line : SplitLines(text, LineEnds::CrOrCrLf)) {
        if (line.isEmpty()) continue;
        const auto length = FileLength(line);
        if (!length || *length < 1) {
            if (FileExists(line)) DeleteFile(line);
            continue;
        }
        paths.append(Trim(line));
    }
    return paths;
}

}  // namespace

std::int32_t StagingRowOf(std::int32_t lineNumber) {
    const std::int32_t rows = static_cast<std::int32_t>(Ctx().OrderTable.rowBound());
    return (lineNumber - 1) % rows + 1;
}

std::int32_t StageOrderLine(const QString& line, const ItemTable& items) {
    RunContext& ctx = Ctx();
    ++ctx.OrderRowCount;
    const std::int32_t row = StagingRowOf(ctx.OrderRowCount);
    BoundedTable& table = ctx.OrderTable;
    for (qsizetype c = 0; c <= table.columnBound(); ++c) table.put(row, c, QString());

    qsizetype nextTest = kFirstTestStagingColumn;
    const QStringList fields = Split(line, u","_s);
    for (qsizetype i = 0; i < fields.size(); ++i) {
        if (i <= 20) {
            table.put(row, i, Trim(fields[i]));
        } else if (i >= 40) {
            // A test past column 100 is lost, and still counted.
            if (const auto code = FindItemCode(items, Trim(fields[i]))) {
                table.put(row, nextTest, *code);
                ++nextTest;
            }
        }
    }
    table.put(row, 21, QString::number(nextTest - kFirstTestStagingColumn));
    return row;
}

void TakeOrders(const IntakeConfig& config) {
    if (HasFiles(1, config.folder) != 1) return;

    // Only files as the previous poll saw them: one still being written waits, empty or not.
    QString list;
    for (const QString& path :
         SettledFiles(config.folder, FindFilesDeep(config.folder, config.pattern))) {
        list += path + u"\r\n"_s;
        YieldToEvents();
    }
    if (list.isEmpty()) return;

    const QString workPath = Ctx().AppPath + u"\\\\"_s + config.workFile;
    if (FileExists(workPath)) DeleteFile(workPath);
    WriteNewLine(workPath, list);
    YieldToEvents();

    const QStringList paths = FilesToTake(workPath);
    const ItemTable items = FillItemTable(config.items);
    qsizetype whole = 0;
    for (const QString& path : paths) {
        YieldToEvents();
        if (TakeOrderFile(config.folder, path, items)) ++whole;
    }

    // Not when every file of the run failed: each has its own line then.
    if (whole == 0 && !paths.isEmpty()) return;
    const QString done = u"オーダデータ取得完了(Edit) -- "_s;
    LogEvent(done, done, LogForm::Full);
}

void TakeOrders1650() {
    TakeOrders({Ctx().OrderPath, u"1650*.csv"_s, u"WkOrder1650.txt"_s, OrderItems::Items1650});
}

void TakeOrders1190() {
    TakeOrders({Ctx().OrderPath, u"1190*.csv"_s, u"WkOrder1190.txt"_s, OrderItems::Items1190});
}

void TakeOrders0980() {
    TakeOrders({Ctx().OrderPath, u"0980*.csv"_s, u"WkOrder0980.txt"_s, OrderItems::Items0980});
}

void TakeOrders1660() {
    TakeOrders({Ctx().OrderPath, u"1660*.csv"_s, u"WkOrder1660.txt"_s, OrderItems::Items1660});
}

void TakeOrders1660_2() {
    TakeOrders({Ctx().OrderPath2, u"1660*.csv"_s, u"WkOrder1660_2.txt"_s, OrderItems::Items1660});
}

void TakeOrders1730() {
    TakeOrders({Ctx().OrderPath, u"1730*.csv"_s, u"WkOrder1730.txt"_s, OrderItems::Items1730});
}

}  // namespace orbline
