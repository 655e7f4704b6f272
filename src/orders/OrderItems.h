#pragma once
// The item tables of the order intake: the test name an order file gives, and the code the
// instrument understands, which goes into T_ORDER. Rows count from 1; names compare exactly,
// case counting, and the first matching row wins.

#include <QString>

#include <optional>
#include <vector>

namespace orbline {

struct OrderItem {
    QString name;
    QString code;
};

struct ItemTable {
    std::vector<OrderItem> rows;  // rows[0] is row 1
    // How many rows the search looks at: 1730 holds a 207th row (AMH) that is never found.
    std::size_t searchedRows = 0;
};

enum class OrderItems { Items1650, Items1190, Items0980, Items1660, Items1730 };

// The table of an intake. 0980 and 1190 also put their codes into ItemCodes from entry 1, where
// the lookups' item names come from; the code of 0980 is InstrumentCode + "010".
ItemTable FillItemTable(OrderItems which);
std::optional<QString> FindItemCode(const ItemTable& table, const QString& name);

// The name of a seven-digit item code of 1190 or 0980, or "".
QString OrderItemName(const QString& code);

}  // namespace orbline
