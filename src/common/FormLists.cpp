#include "common/FormLists.h"

#include "common/Form.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

void Fill(ListControl& list, QStringList entries) {
    list.entries = std::move(entries);
    list.position = 0;
}

QString Padded(int value, int width, int base) {
    return QString::number(value, base).toUpper().rightJustified(width, u'0');
}

}  // namespace

void FillLineLists() {
    Form_TesvaneMain& f = Form();
    QStringList ports;
    for (int n = 1; n <= 255; ++n) ports.append(QString::number(n));
    Fill(f.comboPort, ports);
    Fill(f.comboBaudRate,
         {u"75"_s, u"150"_s, u"300"_s, u"600"_s, u"1200"_s, u"1800"_s, u"2400"_s, u"4800"_s,
          u"7200"_s, u"9600"_s, u"14400"_s, u"19200"_s, u"38400"_s, u"57600"_s, u"115200"_s});
    Fill(f.comboDataBits, {u"4"_s, u"5"_s, u"6"_s, u"7"_s, u"8"_s});
    Fill(f.comboParity, {u"なし"_s, u"奇数"_s, u"偶数"_s, u"マーク"_s, u"スペース"_s});
    Fill(f.comboStopBits, {u"1"_s, u"1.5"_s, u"2"_s});
    Fill(f.comboHandShake, {u"なし"_s, u"Xon/Xoff"_s, u"RTS/CTS"_s, u"DTR/DSR"_s});
    Fill(f.comboTimeOut,
         {u"100"_s, u"200"_s, u"500"_s, u"1000"_s, u"2000"_s, u"5000"_s, u"10000"_s});
    Fill(f.comboDelimiter, {u"なし"_s, u"CR"_s, u"LF"_s, u"CRLF"_s, u"ETX"_s});
    const QStringList modes{u"バイナリ(16進)"_s, u"バイナリ(10進)"_s, u"テキスト(ASCII)"_s,
                            u"テキスト(ISO)"_s, u"テキスト(EIA)"_s};
    Fill(f.comboModeW, modes);
    Fill(f.comboModeR, modes);
}

void FillConsoleLists() {
    Form_TesvaneMain& f = Form();
    Fill(f.comboThread, {u"OFF"_s});
    QStringList values;
    for (int v = 0; v <= 255; ++v)
        values.append(u"&H"_s + Padded(v, 2, 16) + u" ("_s + Padded(v, 3, 10) + u")"_s);
    Fill(f.comboMin, values);
    Fill(f.comboMax, values);
    f.comboMax.position = values.size() - 1;
    Fill(f.comboCondition, {u"なし"_s, u"CTS-OFF"_s, u"CTS- ON"_s, u"DSR-OFF"_s, u"DSR- ON"_s});
}

void BuildCodeTables() {
    Form_TesvaneMain& f = Form();
    for (int v = 0; v <= 255; ++v) {
        const auto i = static_cast<size_t>(v);
        f.hexTable[i] = Padded(v, 2, 16);
        f.decimalTable[i] = Padded(v, 3, 10);
        f.charTable[i] = (v >= 1 && v <= 127) ? QString(QChar(v)) : f.HiddenChar;
    }
}

}  // namespace orbline
