#include "app/Session.h"

#include "app/AwIni.h"
#include "app/CloseRequest.h"
#include "app/Settings.h"
#include "common/Diagnostics.h"
#include "common/FixedReply.h"
#include "common/Form.h"
#include "common/FormLists.h"
#include "common/Logging.h"
#include "common/Numbers.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "common/ServiceNotify.h"
#include "dialogues/Instruments.h"
#include "serial/AwComm.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

// The walk over positions 0 to last: the first entry equal to the value is selected. Positions
// past the list's end compare as empty entries, which never match. False when nothing matched.
template <typename Matches>
bool Walk(ListControl& list, qsizetype last, Matches matches) {
    for (qsizetype position = 0; position <= last; ++position) {
        const QString entry =
            position < list.entries.size() ? list.entries.at(position) : QString();
        if (!entry.isEmpty() && matches(entry)) {
            list.position = position;
            return true;
        }
    }
    return false;
}

bool WalkNumber(ListControl& list, qsizetype last, double value) {
    return Walk(list, last, [value](const QString& entry) { return ToDouble(entry) == value; });
}

// A letter of the settings file selects the entry at its place in the table of letters.
bool WalkLetter(ListControl& list, qsizetype last, const QString& letter, QStringView letters) {
    const qsizetype place = letter.size() == 1 ? letters.indexOf(letter.at(0)) : -1;
    if (place < 0 || place >= list.entries.size()) return false;
    const QString wanted = list.entries.at(place);
    return Walk(list, last, [&wanted](const QString& entry) { return entry == wanted; });
}

// The main log keeps its lines; the warning goes to standard error and the diagnostic log.
void WarnUnmatched(const QString& key, const QString& value, const QString& result) {
    const QString section = u" of section "_s + InstrumentSection();
    Diagnose(u"setting "_s +
             (value.isEmpty() ? key + section + u" is empty or missing and"_s
                              : key + u"="_s + value + section) +
             u" matches no entry of its list; "_s + result);
}

std::int32_t NumberOf(const ListControl& list) {
    return ToInt32(list.text()).value_or(0);
}

void EnableLineSettings(bool enabled) {
    Form_TesvaneMain& f = Form();
    for (ListControl* list : {&f.comboPort, &f.comboBaudRate, &f.comboDataBits, &f.comboParity,
                              &f.comboStopBits, &f.comboHandShake, &f.comboTimeOut, &f.comboModeR})
        list->enabled = enabled;
    f.buttonFormatREnabled = enabled;
    f.buttonWriteEnabled = !enabled;
    f.checkLoopWrite.enabled = !enabled;
}

void OpenSession() {
    Form_TesvaneMain& f = Form();
    AwComm& comm = f.comm();
    comm.SetPortNumber(static_cast<std::uint8_t>(NumberOf(f.comboPort)));
    comm.SetBaudRate(NumberOf(f.comboBaudRate));
    comm.SetDataBits(static_cast<std::int16_t>(NumberOf(f.comboDataBits)));
    comm.SetParity(static_cast<std::int16_t>(f.comboParity.position));
    comm.SetStopBits(static_cast<std::int16_t>(f.comboStopBits.position));
    comm.SetHandshake(static_cast<std::uint8_t>(f.comboHandShake.position));
    comm.SetTimeOut(NumberOf(f.comboTimeOut));
    comm.SetDevicePath(Ctx().Device.toLocal8Bit().toStdString());

    if (!comm.OpenPort1()) {
        f.Connected = false;
        f.checkConnect.value = 0;
        f.checkLoopWrite.value = 0;
        LogEvent(u"接続失敗 --   "_s, u"接続失敗 -- "_s, LogForm::Short);
        // The main log keeps its fixed text; the cause goes to the diagnostic log.
        DiagnosePort(comm, u"cannot be opened"_s, comm.LastError());
        // A failed open raises no error of its own: the text of the abnormal end is empty.
        ErrorExit(QString());
    }
    f.Connected = true;
    comm.SetRts(f.checkRts.value == 1);
    comm.SetDtr(f.checkDtr.value == 1);
    // Both lines are on at the start of every session, whatever the boxes say.
    comm.SetRts(true);
    comm.SetDtr(true);
    EnableLineSettings(false);
    f.checkAutoUpdateR.value = 1;
    comm.ClearWriteBuffer();
    comm.ClearReadBuffer();
    const QString conditions = ConditionText();
    GLogEdit(u"0"_s, conditions);
    QString line = conditions + u"\r\n"_s;
    GLogWrite(u"0"_s, line);
    LogEvent(u"受信開始(Wait) --   "_s, u"受信開始(Wait) -- "_s, LogForm::Full);
    ShowLineStates();
    NotifyService(ServiceState::Ready);
}

void CloseSession() {
    Form_TesvaneMain& f = Form();
    if (f.Connected) {
        f.Connected = false;
        f.comm().ClosePort();
        EnableLineSettings(true);
        f.checkLoopWrite.value = 0;
        f.checkAutoUpdateR.value = 0;
        LogEvent(u"接続終了 --   "_s, u"接続終了 -- "_s, LogForm::Short);
    }
    ShowLineStates();
}

}  // namespace

QList<KeptEntry> SelectLineLists(const QStringList& notNumbers) {
    const RunContext& c = Ctx();
    Form_TesvaneMain& f = Form();
    QList<KeptEntry> kept;
    const auto select = [&](const QString& key, const ListControl& list, bool matched) {
        if (!matched || notNumbers.contains(key)) kept.append({key, list.text()});
    };
    select(u"Port"_s, f.comboPort, WalkNumber(f.comboPort, 256, c.PortNo));
    select(u"BaudRate"_s, f.comboBaudRate, WalkNumber(f.comboBaudRate, 14, c.BaudRateNo));
    select(u"DataBits"_s, f.comboDataBits, WalkNumber(f.comboDataBits, 4, c.DataBitsNo));
    select(u"Parity"_s, f.comboParity, WalkLetter(f.comboParity, 4, c.ParityCode, u"noems"));
    select(u"StopBits"_s, f.comboStopBits,
           WalkNumber(f.comboStopBits, 2, static_cast<double>(c.StopBitsNo)));
    select(u"Handshake"_s, f.comboHandShake,
           WalkLetter(f.comboHandShake, 3, c.HandshakeCode, u"NXRD"));
    select(u"TimeOut"_s, f.comboTimeOut, WalkNumber(f.comboTimeOut, 6, c.TimeOutMs));
    return kept;
}

QString ConditionText() {
    const Form_TesvaneMain& f = Form();
    return u"通信条件(Condition) "_s + f.comboPort.text() + u":baud="_s + f.comboBaudRate.text() +
           u" parity="_s + f.comboParity.text() + u" data="_s + f.comboDataBits.text() +
           u" stop="_s + f.comboStopBits.text() + u":"_s + f.comboHandShake.text() + u":"_s +
           f.comboTimeOut.text();
}

void Cmd_Open() {
    RunContext& c = Ctx();
    Form_TesvaneMain& f = Form();
    const AwIni ini;
    c.StopRequested = 0;
    f.Cmd_KaijyoEnabled = true;
    f.Cmd_OpenEnabled = false;

    ReadUserSettings(ini);
    ReadNames(ini);
    f.Caption = FormCaption();
    SetCloseRequestCaption(f.Caption.toStdU16String());
    const QStringList notNumbers = ReadLineSettings(ini);
    for (const KeptEntry& kept : SelectLineLists(notNumbers))
        WarnUnmatched(kept.key, ini.GetValue(InstrumentSection(), kept.key, QString()),
                      u"the line uses "_s + kept.entry);
    ReadDelimiter(ini);
    // A list position as text; one that is no position of the list is passed over. Without
    // the key the console keeps its delimiter, and the line is the same: no warning.
    if (const auto position = ToInt32(c.DelimiterNo);
        position && *position >= -1 && *position < f.comboDelimiter.entries.size())
        f.comboDelimiter.position = *position;
    else if (!c.DelimiterNo.isEmpty())
        WarnUnmatched(u"Delimiter"_s, c.DelimiterNo,
                      u"the console uses "_s + f.comboDelimiter.text());
    ReadOtherSettings(ini);
    ReadInstrumentOnlySettings(ini);
    const Instrument* instrument = FindInstrument(c.InstrumentCode);
    if (instrument != nullptr && instrument->loadAtStart != nullptr) instrument->loadAtStart();

    ShowLineStates();
    BuildCodeTables();
    SetConnected(true);

    if (instrument != nullptr && instrument->dialogue != nullptr) {
        c.LoopCount = u"0"_s;
        c.LoopMode = 2;
        instrument->dialogue();
        return;
    }
    // The port is already open when the code turns out to be unknown.
    LogEvent(u"システムエラー：未対応機器 --   "_s, u"システムエラー：未対応機器 -- "_s,
             LogForm::Full);
    c.AbendFlag = 1;
    Cmd_End();
}

void SetConnected(bool connect) {
    try {
        if (connect)
            OpenSession();
        else
            CloseSession();
    } catch (const RuntimeError& error) {
        ErrorExit(error.description());
    }
}

void Cmd_Kaijyo() {
    Form_TesvaneMain& f = Form();
    LogFileOnly(u"プログラム終了(kaijyo) -- "_s, LogForm::Short);
    f.Cmd_KaijyoEnabled = false;
    f.Cmd_OpenEnabled = true;
    SetConnected(false);
    f.Timer1Enabled = false;
    Ctx().StopRequested = 1;
}

void Cmd_End() {
    if (Ctx().AbendFlag != 0)
        LogEvent(u"プログラム異常終了 --   "_s, u"プログラム異常終了 -- "_s, LogForm::Full);
    else
        LogEvent(u"プログラム終了 --   "_s, u"プログラム終了 -- "_s, LogForm::Full);
    // Closed here and again by the stop command; the second close fails quietly.
    Form().comm().ClosePort();
    Cmd_Kaijyo();
    UnloadForm();
    Ctx().StopRequested = 1;
    EndProcess();
}

void Form_QueryUnload(std::int16_t& cancel) {
    Form_TesvaneMain& f = Form();
    LogFileOnly(u"プログラム終了(Query) -- "_s, LogForm::Short);
    // The message of a refused close; kept, never shown: an unattended process must end.
    [[maybe_unused]] const QString refusal =
        u"接続中は終了できません。接続を解除してください。    "_s;
    if (f.Connected) {
        Cmd_Kaijyo();
        cancel = 1;
    }
    if (f.Comm) f.Comm->ClosePort();
    f.Connected = false;
    f.Comm.reset();
    EndProcess();
}

}  // namespace orbline
