#include "orders/OrderItems.h"

#include "common/RunContext.h"
#include "tables/ItemTables.h"

#include <span>

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

const std::vector<OrderItem>& Rows1650() {
    static const std::vector<OrderItem> rows = {
        {u"PT"_s, u"040"_s},   {u"APTT"_s, u"050"_s}, {u"Fbg"_s, u"060"_s},  {u"TTO"_s, u"080"_s},
        {u"HpT"_s, u"090"_s},  {u"Ⅱ"_s, u"120"_s},    {u"Ⅴ"_s, u"150"_s},    {u"Ⅶ"_s, u"170"_s},
        {u"Ⅷ"_s, u"180"_s},    {u"Ⅸ"_s, u"190"_s},    {u"Ⅹ"_s, u"200"_s},    {u"ⅩⅠ"_s, u"210"_s},
        {u"ⅩⅡ"_s, u"220"_s},   {u"AT3"_s, u"300"_s},  {u"APL"_s, u"310"_s},  {u"Plg"_s, u"320"_s},
        {u"BCPC"_s, u"330"_s}, {u"+Fbg"_s, u"500"_s}, {u"-Fbg"_s, u"520"_s}, {u"SFDP"_s, u"600"_s},
        {u"DD"_s, u"610"_s},   {u"PFDP"_s, u"620"_s}, {u"+DD"_s, u"700"_s},  {u"+SFD"_s, u"710"_s},
        {u"+PFD"_s, u"720"_s},
    };
    return rows;
}

// The rows of a built-in table of names and codes.
template <typename Item>
std::vector<OrderItem> RowsOf(std::span<const Item> items) {
    std::vector<OrderItem> rows;
    for (const Item& item : items) rows.push_back({item.name.toString(), item.code.toString()});
    return rows;
}

const std::vector<OrderItem>& Rows1190() {
    static const std::vector<OrderItem> rows = RowsOf(MeasuredItems1190());
    return rows;
}

// HbA1c, the one test of 0980 an order asks for, with the code InstrumentCode + its suffix.
OrderItem HbA1c(const QString& instrumentCode) {
    const Item0980& item = Items0980().front();
    return {item.name.toString(), instrumentCode + item.suffix.toString()};
}

// 1660 and 1730.
const std::vector<OrderItem>& Rows1660() {
    static const std::vector<OrderItem> rows = RowsOf(Items1660());
    return rows;
}

// The names the lookups of 1190 and 0980 give for a stored code: the 1190 table and HbA1c.
const std::vector<OrderItem>& ItemNames() {
    static const std::vector<OrderItem> rows = [] {
        std::vector<OrderItem> all = Rows1190();
        all.push_back(HbA1c(u"0980"_s));
        return all;
    }();
    return rows;
}

// Keeps the codes in ItemCodes from entry 1, as the lookups read them there too.
void PutItemCodes(const std::vector<OrderItem>& rows) {
    qsizetype entry = 0;
    for (const OrderItem& row : rows) Ctx().ItemCodes.put(++entry, row.code);
}

}  // namespace

ItemTable FillItemTable(OrderItems which) {
    ItemTable table;
    switch (which) {
        case OrderItems::Items1650:
            table.rows = Rows1650();
            break;
        case OrderItems::Items1190:
            table.rows = Rows1190();
            PutItemCodes(table.rows);
            break;
        case OrderItems::Items0980:
            table.rows = {HbA1c(Ctx().InstrumentCode)};
            PutItemCodes(table.rows);
            break;
        case OrderItems::Items1660:
            table.rows = Rows1660();
            break;
        case OrderItems::Items1730:
            table.rows = Rows1660();
            table.rows.push_back({u"AMH"_s, u"113"_s});
            // The search keeps the count of the shared rows, so AMH is never found.
            table.searchedRows = Rows1660().size();
            return table;
    }
    table.searchedRows = table.rows.size();
    return table;
}

std::optional<QString> FindItemCode(const ItemTable& table, const QString& name) {
    const std::size_t count = std::min(table.searchedRows, table.rows.size());
    for (std::size_t i = 0; i < count; ++i)
        if (table.rows[i].name == name) return table.rows[i].code;
    return std::nullopt;
}

QString OrderItemName(const QString& code) {
    for (const OrderItem& item : ItemNames())
        if (item.code == code) return item.name;
    return QString();
}

}  // namespace orbline
