#include "app/Settings.h"

#include "app/AwIni.h"
#include "common/Numbers.h"
#include "common/RunContext.h"
#include "dialogues/Instruments.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

QString Read(const AwIni& ini, const QString& key, const QString& whenEmpty = QString()) {
    const QString value = ini.GetValue(InstrumentSection(), key, QString());
    return value.isEmpty() ? whenEmpty : value;
}

// A value that is no number leaves the field as it was; its key is added to `notNumbers`.
template <typename T, typename Convert>
void ReadNumber(const AwIni& ini, const QString& key, T& field, Convert convert,
                QStringList& notNumbers) {
    const QString value = Read(ini, key, u"0"_s);
    if (const auto number = convert(value))
        field = *number;
    else
        notNumbers.append(key);
}

}  // namespace

QString InstrumentSection() {
    return Ctx().IniPrefix + u"MC"_s;
}

void ReadUserSettings(const AwIni& ini) {
    RunContext& c = Ctx();
    const QString user = u"User"_s;
    c.DbPath = ini.GetValue(user, u"DbPath"_s, QString());
    if (c.DbPath.isEmpty()) c.DbPath = c.AppPath;
    c.DbConnect = ini.GetValue(user, u"DbConnect"_s, QString());
    c.JyusinDataPath = ini.GetValue(user, u"JyusinDataPath"_s, QString());
    c.JyusinDataPath2 = ini.GetValue(user, u"JyusinDataPath2"_s, QString());
    c.JyusinWKPath = ini.GetValue(user, u"JyusinWKPath"_s, QString());
}

void ReadNames(const AwIni& ini) {
    RunContext& c = Ctx();
    c.InstrumentName = Read(ini, u"Name"_s);
    c.CrpName = Read(ini, u"CrpName"_s, c.InstrumentName);
    c.InstrumentName2 = Read(ini, u"Name2"_s, c.InstrumentName);
}

QString FormCaption() {
    return u"("_s + Ctx().InstrumentCode + u") "_s + Ctx().InstrumentName2;
}

QStringList ReadLineSettings(const AwIni& ini) {
    RunContext& c = Ctx();
    QStringList notNumbers;
    ReadNumber(ini, u"Port"_s, c.PortNo, ToInt32, notNumbers);
    ReadNumber(ini, u"BaudRate"_s, c.BaudRateNo, ToInt32, notNumbers);
    ReadNumber(ini, u"DataBits"_s, c.DataBitsNo, ToInt32, notNumbers);
    c.ParityCode = Read(ini, u"Parity"_s);
    ReadNumber(ini, u"StopBits"_s, c.StopBitsNo, ToSingle, notNumbers);
    c.HandshakeCode = Read(ini, u"Handshake"_s);
    ReadNumber(ini, u"TimeOut"_s, c.TimeOutMs, ToInt32, notNumbers);
    return notNumbers;
}

void ReadDelimiter(const AwIni& ini) {
    Ctx().DelimiterNo = Read(ini, u"Delimiter"_s);
}

void ReadOtherSettings(const AwIni& ini) {
    RunContext& c = Ctx();
    c.IDEntry = Read(ini, u"IDEntry"_s);
    c.InData = Read(ini, u"InData"_s);
    c.LaboOut = Read(ini, u"LaboOut"_s);
    c.Log = Read(ini, u"Log"_s);
    c.Tani = Read(ini, u"Tani"_s);
    c.Interval = Read(ini, u"Interval"_s);
    c.Tusin = Read(ini, u"Tusin"_s, u"1"_s);
    c.HbA1c = Read(ini, u"HbA1c"_s, u"0"_s);
    c.LogMeisai = Read(ini, u"LogMeisai"_s, u"0"_s);
    c.OutPath = Read(ini, u"OutPath"_s);
    c.OutFile = Read(ini, u"OutFile"_s);
    c.OrderPT = Read(ini, u"OrderPT"_s, u"0"_s);
    c.OrderKey = Read(ini, u"OrderKey"_s);
    c.OrderPath = Read(ini, u"OrderPath"_s);
    c.OrderPath2 = Read(ini, u"OrderPath2"_s);
    c.OutIP = Read(ini, u"OutIP"_s, u"0"_s);
    c.Device = Read(ini, u"Device"_s);
}

void ReadInstrumentOnlySettings(const AwIni& ini) {
    const Instrument* instrument = FindInstrument(Ctx().InstrumentCode);
    if (instrument != nullptr && instrument->readsFT01Format)
        Ctx().FT01Format = Read(ini, u"FT01Format"_s, u"0"_s);
}

void ReadSettings(const AwIni& ini) {
    ReadUserSettings(ini);
    ReadNames(ini);
    ReadLineSettings(ini);
    ReadDelimiter(ini);
    ReadOtherSettings(ini);
    ReadInstrumentOnlySettings(ini);
}

}  // namespace orbline
