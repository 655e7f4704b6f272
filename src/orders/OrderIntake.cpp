#include "orders/OrderIntake.h"

#include "common/FindFiles.h"
#include "common/Logging.h"
#include "common/Paths.h"
#include "common/ResultFile.h"
#include "common/RunContext.h"
#include "common/Text.h"
#include "common/TextFile.h"
#include "orders/OrderStore.h"

#include <QCoreApplication>
#include <QSqlDatabase>

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

// Lets the window and the close request run while a long intake works.
void YieldToUser() {
    QCoreApplication::processEvents();
}

bool SaveLines(QSqlDatabase& db, const QStringList& lines, const ItemTable& items) {
    OrderRowWriter writer(db);
    bool ok = true;
    for (const QString& line : lines) ok = writer.save(StageOrderLine(line, items)) && ok;
    return ok;
}

// One connection and one transaction for the file. When anything in it failed, the file's
// lines are saved again one by one, each in a transaction of its own, so the rows that result
// are those of one save per line: a line that cannot be stored costs no other line.
void TakeOrderFile(const QString& path, const ItemTable& items) {
    const QStringList lines = SplitLines(ReadAllText(path).value_or(QString()), LineEnds::CrOrCrLf);
    if (lines.isEmpty()) return;
    OpenOrderDb();
    {
        QSqlDatabase db = OrderDb();
        const bool saved =
            BeginOrderWrite(db) && SaveLines(db, lines, items) && CommitOrderWrite(db);
        if (!saved) {
            RollbackOrderWrite(db);
            for (const QString& line : lines) {
                if (!BeginOrderWrite(db)) continue;
                if (!SaveLines(db, {line}, items) || !CommitOrderWrite(db)) RollbackOrderWrite(db);
            }
        }
    }
    CloseOrderDb();
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

    QString list;
    for (const QString& path : FindFilesDeep(config.folder, config.pattern)) {
        list += path + u"\r\n"_s;
        YieldToUser();
    }
    if (list.isEmpty()) return;

    const QString workPath = Ctx().AppPath + u"\\\\"_s + config.workFile;
    if (FileExists(workPath)) DeleteFile(workPath);
    WriteNewLine(workPath, list);
    YieldToUser();

    const QStringList paths = FilesToTake(workPath);
    const ItemTable items = FillItemTable(config.items);
    for (const QString& path : paths) {
        YieldToUser();
        TakeOrderFile(path, items);
        // Deleted whether or not every line was stored.
        if (FileExists(path)) DeleteFile(path);
    }

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
