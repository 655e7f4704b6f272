#pragma once
// The order lookups (MdlDB): the newest order of a specimen for one instrument within the
// last 20 days, turned into the notation of the instrument's order record. They only read:
// the same specimen can be looked up again.

#include <QSqlRecord>
#include <QString>

#include <cstdint>
#include <optional>

namespace orbline {

struct LatestOrder {
    std::optional<QSqlRecord> row;
    // The statement failed (a lock held past the lookups' wait, say): already logged as a
    // database failure. The caller answers as with no order, without its no-order log lines.
    bool failed = false;
};
// The shared query: KEY = key for the instrument, KENSAYMD from 20 days ago to today, newest
// date and highest RENBAN (as text) first; of that row the columns the lookup reads. Sets
// OrderSql; opens and closes the connection.
LatestOrder FindLatestOrder(const QString& keyColumn, const QString& key,
                            const QString& instrumentCode, const QStringList& columns);

// Key ORDERCD; tests "^^^0951^\^^^4207^" (codes through "0000"); "^^^" with no test.
std::int16_t LookupOrder1660(const QString& key, QString& kana, QString& tests,
                             const QString& instrumentCode);
// Key KANJYAINFO; tests "^^^4207^2\^^^951" (trimmed codes, "^" and a second code when stored).
std::int16_t LookupOrder1730(const QString& key, QString& kana, QString& tests,
                             const QString& instrumentCode);
// Key ORDERCD; each of KENSA1..KENSA20 as stored and six blanks.
std::int16_t LookupOrder1650(const QString& key, QString& kana, QString& tests,
                             const QString& instrumentCode);

// Every "-" leaves the key, the caller's too. The name of KENSA1; "HbA1c" when no row.
std::int16_t LookupOrder0980(QString& key, QString& kana, QString& test,
                             const QString& instrumentCode, QString& patientId, QString& sex);
// "^^^^WBC\^^^^RBC"; with no row empty texts and the failure log pair.
std::int16_t LookupOrder1190(const QString& key, QString& kana, QString& tests,
                             const QString& instrumentCode, QString& patientId, QString& sex);
// "^^^110^\^^^120^", the stored codes; with no row "" and the failure log pair.
std::int16_t LookupOrder1160(const QString& key, const QString& instrumentCode, QString& tests);

// Column 0 of the first row of OptionTable2140 whose column 2 is testCode, or "".
QString ItemNumberOf2140(const QString& testCode);
// Key KANJYAINFO. itemText: 88 item flags, "100000", the kana name padded to 30; countText:
// the mapped item count padded to 3. 0 when an item was mapped, 6 otherwise.
std::int16_t LookupOrder2140(const QString& sampleId, const QString& instrumentCode,
                             QString& itemText, QString& countText);

}  // namespace orbline
