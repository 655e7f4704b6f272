// The order file read in pieces (1 to 64 bytes, from the first byte) gives the lines of the
// whole file decoded at once; each line is then staged as the intake stages it.

#include "FuzzInput.h"
#include "common/RunContext.h"
#include "common/Text.h"
#include "orders/OrderFileLines.h"
#include "orders/OrderIntake.h"
#include "orders/OrderItems.h"

#include <QFile>
#include <QTemporaryDir>

using namespace orbline;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const QTemporaryDir dir;
    static const ItemTable items = FillItemTable(OrderItems::Items1660);
    if (size == 0) return 0;
    const QByteArray bytes(reinterpret_cast<const char*>(data) + 1, qsizetype(size - 1));
    const QString path = dir.filePath(QStringLiteral("orders.csv"));
    {
        QFile file(path);
        fuzz::Require(file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
                          file.write(bytes) == bytes.size(),
                      "the order file is written");
    }
    OrderFileLines reader(path, 1 + data[0] % 64);
    QStringList lines;
    while (const std::optional<QString> line = reader.next()) lines.append(*line);
    fuzz::Require(reader.readToEnd(), "the file is read to its end");
    fuzz::Require(lines == SplitLines(DecodeAnsi(bytes), LineEnds::CrLfOrCrOrLf),
                  "the lines of the pieces are those of the whole file");
    for (const QString& line : lines) {
        const std::int32_t row = StageOrderLine(line, items);
        fuzz::Require(row >= 1 && row <= Ctx().OrderTable.rowBound(), "a staging row in bounds");
    }
    return 0;
}
