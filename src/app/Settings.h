#pragma once
// Reading the settings file into RunContext, in the order the start command reads it. A key
// that is absent or empty takes its default; a number that does not convert leaves its field
// as it was.

#include <QString>
#include <QStringList>

namespace orbline {

class AwIni;

QString InstrumentSection();
// Section "User": DbPath (AppPath when empty), DbConnect, JyusinDataPath, JyusinDataPath2,
// JyusinWKPath.
void ReadUserSettings(const AwIni& ini);
// Name, CrpName and Name2 (both following Name when empty).
void ReadNames(const AwIni& ini);
// "(" + code + ") " + Name2.
QString FormCaption();
// Port, BaudRate, DataBits, Parity, StopBits, Handshake, TimeOut. Returns the keys whose value
// is no number; their fields stay as they were.
QStringList ReadLineSettings(const AwIni& ini);
void ReadDelimiter(const AwIni& ini);
// The other keys of the instrument's section, in their order, with their defaults, and Device.
void ReadOtherSettings(const AwIni& ini);
// FT01Format, for the tonometer only (default "0").
void ReadInstrumentOnlySettings(const AwIni& ini);
// All of the above, in the start command's order.
void ReadSettings(const AwIni& ini);

}  // namespace orbline
