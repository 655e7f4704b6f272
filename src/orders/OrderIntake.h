#pragma once
// The order intake (MdlOrder): order files dropped by the laboratory system become rows of
// T_ORDER and are deleted, or kept as ".failed" when a line could not be stored. A file is
// taken only once a poll finds it as the previous poll saw it. One procedure serves every
// instrument; they differ only in the folder, the file pattern, the work file and the item
// table.

#include "orders/OrderItems.h"

#include <QString>

#include <cstdint>

namespace orbline {

struct IntakeConfig {
    QString folder;
    QString pattern;   // "1650*.csv"
    QString workFile;  // "WkOrder1650.txt", in AppPath
    OrderItems items;
};

void TakeOrders(const IntakeConfig& config);

void TakeOrders1650();
void TakeOrders1190();
void TakeOrders0980();
void TakeOrders1660();
// 1660 alone takes orders from a second folder, OrderPath2.
void TakeOrders1660_2();
void TakeOrders1730();

// Stages one order line in OrderTable: a new OrderRowCount, its row, fields 0..20 trimmed,
// 21..39 skipped, from 40 on the code of each known test name, and the count in column 21.
// Returns the row used.
std::int32_t StageOrderLine(const QString& line, const ItemTable& items);
// The staging row of the n-th line of the process: each line is staged and saved before the
// next is staged, so the rows are used in turn and no line waits for a free one.
std::int32_t StagingRowOf(std::int32_t lineNumber);

}  // namespace orbline
