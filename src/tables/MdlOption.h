#pragma once
// The master tables of 2140, 2990 and 1730: small comma-separated files in AppPath, read once
// at the start of a process into RunContext. Readers use the tables directly by row and column.

#include <QString>

namespace orbline {

QString Option2140Path();
QString KensaKomoku2990Path();
QString Data1730Path();

// OptionTable2140 and OptionCount2140; the 37 built-in rows when the file is missing.
void LoadOption2140();
// KensaKomokuTable2990 and KensaKomokuCount2990; no built-in rows. Logs the count or its absence.
void LoadKensaKomoku2990();
// ItemNames, ItemCodes, ItemUnits and ItemCount; the 78 built-in rows when the file is missing.
void LoadData1730();

}  // namespace orbline
