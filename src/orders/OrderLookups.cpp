#include "orders/OrderLookups.h"

#include "common/Clock.h"
#include "common/Diagnostics.h"
#include "common/Logging.h"
#include "common/Numbers.h"
#include "common/RunContext.h"
#include "common/Text.h"
#include "orders/OrderItems.h"
#include "orders/OrderStore.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

// Null (or a column the row does not have) is absent; everything else is its text.
std::optional<QString> Field(const QSqlRecord& row, const QString& name) {
    if (row.indexOf(name) < 0 || row.isNull(name)) return std::nullopt;
    return row.value(name).toString();
}

QString Text(const QSqlRecord& row, const QString& name) {
    return Field(row, name).value_or(QString());
}

QString TestField(const QSqlRecord& row, int i, const QString& suffix = QString()) {
    return Text(row, u"KENSA"_s + QString::number(i) + suffix);
}

// How many rounds the test loop runs: KENSACNT as a number. Null, empty or not a number: the
// loop does not run and the test text stays as it was before it.
std::optional<int> TestRounds(const QSqlRecord& row) {
    const auto count = Field(row, u"KENSACNT"_s);
    if (!count || count->isEmpty()) return std::nullopt;
    return ToInt32(*count);
}

// Rounds past the columns a lookup reads add nothing.
int ReadRounds(const QSqlRecord& row, int columns) {
    return std::clamp(TestRounds(row).value_or(0), 0, columns);
}

// The test text of a row: round 1's entry behind `first`, each later one behind `between`.
template <typename Entry>
QString JoinTests(const QSqlRecord& row, int columns, const QString& first, const QString& between,
                  Entry entry) {
    QString text;
    const int rounds = ReadRounds(row, columns);
    for (int i = 1; i <= rounds; ++i) text += (i == 1 ? first : between) + entry(i);
    return text;
}

// KENSA1..KENSAn, and with suffix "_2" the second codes.
QStringList TestColumns(int count, const QString& suffix = QString()) {
    QStringList names;
    for (int i = 1; i <= count; ++i) names.append(u"KENSA"_s + QString::number(i) + suffix);
    return names;
}

QString KeyTail(const QString& key, const QString& instrumentCode) {
    return u"Key: "_s + key + u":"_s + FormatNumber(instrumentCode, u"0000"_s) + u":"_s;
}

void LogLookupFailure(const QString& key, const QString& instrumentCode) {
    const QString tail = KeyTail(key, instrumentCode);
    GLogEdit(u"0"_s, u"オーダデータ取得失敗 -- "_s + tail + NowText(u"YYYY-MM-DD HH:MM:SS"_s));
    QString line = u"データデータ取得失敗 -- "_s + tail + NowText(u"YYYY-MM-DD HH:MM:SS"_s);
    GLogWrite(u"0"_s, line);
}

void LogLookupDbFailure(const QString& key, const QString& instrumentCode) {
    const QString text = u"オーダデータ検索失敗(DB) -- "_s + KeyTail(key, instrumentCode);
    GLogEdit(u"0"_s, text + NowText(u"YYYY-MM-DD HH:MM:SS"_s));
    QString line = text + NowText(u"YYYY-MM-DD HH:MM:SS"_s);
    GLogWrite(u"0"_s, line);
    Diagnose(u"order lookup of key "_s + key + u" for "_s + instrumentCode +
             u" failed and was answered as no order: "_s + Ctx().OrderDbLastError);
}

}  // namespace

LatestOrder FindLatestOrder(const QString& keyColumn, const QString& key,
                            const QString& instrumentCode, const QStringList& columns) {
    const QString to = OrderWindowTo();
    const QString from = OrderWindowFrom();
    OpenOrderDb();
    Ctx().OrderSql = u"SELECT * FROM T_ORDER "_s + u" WHERE "_s + keyColumn + u" = '"_s + key +
                     u"'"_s + u" AND   KENSAKIKICD = '"_s + instrumentCode + u"'"_s +
                     u" AND   KENSAYMD >= '"_s + from + u"'"_s + u" AND   KENSAYMD <= '"_s + to +
                     u"'"_s + u" ORDER BY KENSAYMD DESC,RENBAN DESC "_s;
    LatestOrder found;
    {
        QSqlQuery query(OrderDb());
        query.setForwardOnly(true);
        // Only the columns read: a row of T_ORDER has over a hundred, and each one fetched
        // costs more than finding the row.
        const bool prepared = query.prepare(
            u"SELECT "_s + columns.join(u", "_s) + u" FROM T_ORDER WHERE "_s + keyColumn +
            u" = ? AND KENSAKIKICD = ? AND KENSAYMD >= ? AND KENSAYMD <= ?"_s
            u" ORDER BY KENSAYMD DESC, RENBAN DESC"_s);
        query.addBindValue(key);
        query.addBindValue(instrumentCode);
        query.addBindValue(from);
        query.addBindValue(to);
        // Under a lock, reading the table's layout fails already.
        if (!prepared) NoteOrderDbFailure(u"SELECT: "_s + query.lastError().text());
        found.failed = !prepared || !ExecOrderQuery(query);
        if (!found.failed && query.next()) {
            found.row = query.record();
        } else if (!found.failed && query.lastError().isValid()) {
            NoteOrderDbFailure(u"fetch: "_s + query.lastError().text());
            found.failed = true;
        }
        query.finish();
    }
    CloseOrderDb();
    if (found.failed) LogLookupDbFailure(key, instrumentCode);
    return found;
}

std::int16_t LookupOrder1660(const QString& key, QString& kana, QString& tests,
                             const QString& instrumentCode) {
    const auto row = FindLatestOrder(u"ORDERCD"_s, key, instrumentCode,
                                     QStringList{u"KANJYAKANA"_s, u"KENSACNT"_s} +
                                         TestColumns(kOrderTestColumns))
                         .row;
    if (!row) {
        kana.clear();
        tests.clear();
        return 0;
    }
    kana = Text(*row, u"KANJYAKANA"_s);
    tests = u"^^^"_s + JoinTests(*row, kOrderTestColumns, QString(), u"\\^^^"_s, [&](int i) {
                return FormatNumber(TestField(*row, i), u"0000"_s) + u"^"_s;
            });
    return 0;
}

std::int16_t LookupOrder1730(const QString& key, QString& kana, QString& tests,
                             const QString& instrumentCode) {
    const auto row = FindLatestOrder(u"KANJYAINFO"_s, key, instrumentCode,
                                     QStringList{u"KANJYAKANA"_s, u"KENSACNT"_s} +
                                         TestColumns(kOrderTestColumns) +
                                         TestColumns(kOrderTestColumns, u"_2"_s))
                         .row;
    if (!row) {
        kana.clear();
        tests.clear();
        return 0;
    }
    kana = Text(*row, u"KANJYAKANA"_s);
    tests = JoinTests(*row, kOrderTestColumns, u"^^^"_s, u"\\^^^"_s, [&](int i) {
        const QString second = TestField(*row, i, u"_2"_s);
        return Trim(TestField(*row, i)) + (second.isEmpty() ? QString() : u"^"_s + Trim(second));
    });
    return 0;
}

std::int16_t LookupOrder1650(const QString& key, QString& kana, QString& tests,
                             const QString& instrumentCode) {
    const auto row = FindLatestOrder(u"ORDERCD"_s, key, instrumentCode,
                                     QStringList{u"KANJYAKANA"_s, u"KENSACNT"_s} + TestColumns(20))
                         .row;
    if (!row) {
        kana.clear();
        tests.clear();
        return 0;
    }
    kana = Text(*row, u"KANJYAKANA"_s);
    tests = JoinTests(*row, 20, QString(), QString(),
                      [&](int i) { return TestField(*row, i) + u"      "_s; });
    return 0;
}

std::int16_t LookupOrder0980(QString& key, QString& kana, QString& test,
                             const QString& instrumentCode, QString& patientId, QString& sex) {
    key.remove(u'-');
    const auto row =
        FindLatestOrder(u"ORDERCD"_s, key, instrumentCode,
                        {u"KANJYAKANA"_s, u"KANJYAID"_s, u"SEX"_s, u"KENSACNT"_s, u"KENSA1"_s})
            .row;
    if (!row) {
        kana.clear();
        test = u"HbA1c"_s;
        return 0;
    }
    kana = Text(*row, u"KANJYAKANA"_s);
    patientId = Text(*row, u"KANJYAID"_s);
    sex = Text(*row, u"SEX"_s);
    test.clear();
    if (ReadRounds(*row, 1) >= 1) test = OrderItemName(TestField(*row, 1));
    return 0;
}

std::int16_t LookupOrder1190(const QString& key, QString& kana, QString& tests,
                             const QString& instrumentCode, QString& patientId, QString& sex) {
    const auto found =
        FindLatestOrder(u"ORDERCD"_s, key, instrumentCode,
                        QStringList{u"KANJYAKANA"_s, u"KANJYAID"_s, u"SEX"_s, u"KENSACNT"_s} +
                            TestColumns(kOrderTestColumns));
    const auto& row = found.row;
    if (!row) {
        kana.clear();
        tests.clear();
        if (!found.failed) LogLookupFailure(key, instrumentCode);
        return 0;
    }
    kana = Text(*row, u"KANJYAKANA"_s);
    patientId = Text(*row, u"KANJYAID"_s);
    sex = Text(*row, u"SEX"_s);
    tests = JoinTests(*row, kOrderTestColumns, u"^^^^"_s, u"\\^^^^"_s,
                      [&](int i) { return OrderItemName(TestField(*row, i)); });
    return 0;
}

std::int16_t LookupOrder1160(const QString& key, const QString& instrumentCode, QString& tests) {
    const auto found = FindLatestOrder(u"ORDERCD"_s, key, instrumentCode,
                                       QStringList{u"KENSACNT"_s} + TestColumns(kOrderTestColumns));
    const auto& row = found.row;
    if (!row) {
        tests.clear();
        if (!found.failed) LogLookupFailure(key, instrumentCode);
        return 0;
    }
    tests = JoinTests(*row, kOrderTestColumns, u"^^^"_s, u"\\^^^"_s,
                      [&](int i) { return TestField(*row, i) + u"^"_s; });
    return 0;
}

QString ItemNumberOf2140(const QString& testCode) {
    const RunContext& ctx = Ctx();
    for (qsizetype r = 1; r <= ctx.OptionCount2140; ++r)
        if (ctx.OptionTable2140.get(r, 2) == testCode)
            return ctx.OptionTable2140.get(r, 0).value_or(QString());
    return QString();
}

std::int16_t LookupOrder2140(const QString& sampleId, const QString& instrumentCode,
                             QString& itemText, QString& countText) {
    itemText.clear();
    countText.clear();
    // Positions 0..100; only 1..88 go into the text.
    std::array<bool, 101> flags{};
    int count = 0;
    const auto mark = [&](int position) {
        if (position >= 0 && position <= 100) flags[static_cast<size_t>(position)] = true;
    };
    const auto markItem = [&](const QString& itemNumber) {
        if (!IsNumeric(itemNumber)) return false;
        ++count;
        const auto n = ToInt32(itemNumber);
        if (!n) return true;
        // Na, K, Cl share one position and L, H, I another; A/G and AI ask for TP and ALB.
        if (*n >= 87 && *n <= 89) {
            mark(87);
        } else if (*n >= 90 && *n <= 92) {
            mark(88);
        } else if (*n == 93 || *n == 94) {
            mark(1);
            mark(2);
        } else {
            mark(*n);
        }
        return true;
    };

    QString name;
    if (const auto row =
            FindLatestOrder(u"KANJYAINFO"_s, sampleId, instrumentCode,
                            QStringList{u"KANJYAKANA"_s, u"KANJYANM"_s, u"KENSACNT"_s} +
                                TestColumns(kOrderTestColumns))
                .row) {
        name = Text(*row, u"KANJYAKANA"_s);
        const int rounds = TestRounds(*row).value_or(0);
        QString itemNumber;
        for (int i = 1; i <= std::min(rounds, kOrderTestColumns); ++i) {
            itemNumber = ItemNumberOf2140(TestField(*row, i));
            markItem(itemNumber);
        }
        // Past KENSA40 no field is read and the item number of the round before stays, so
        // each further round counts it again.
        if (rounds > kOrderTestColumns && markItem(itemNumber))
            count += rounds - kOrderTestColumns - 1;
    }

    for (int p = 1; p <= 88; ++p) itemText += flags[static_cast<size_t>(p)] ? u'1' : u'0';
    countText = PadLeftFixed(QString::number(count), 3, u" "_s);
    itemText += u"100000"_s + PadRightFixed(name, 30, u" "_s);
    return count == 0 ? 6 : 0;
}

}  // namespace orbline
