#include "app/ConsolePanes.h"

#include "common/Clock.h"
#include "common/FixedReply.h"
#include "common/Form.h"
#include "common/PaneText.h"
#include "serial/AwComm.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

PaneBytes& BytesOf(Pane pane) {
    return pane == Pane::Send ? Form().sendBytes : Form().receiveBytes;
}

QString& TextOf(Pane pane) {
    return pane == Pane::Send ? Form().textDataW : Form().textDataR;
}

ListControl& ModeOf(Pane pane) {
    return pane == Pane::Send ? Form().comboModeW : Form().comboModeR;
}

void StoreBytes(Pane pane, const QByteArray& bytes) {
    PaneBytes& stored = BytesOf(pane);
    stored.bytes = bytes;
    stored.count = GetByteArrayLength(bytes);
}

// Bytes into the pane by its mode; the receive pane's text goes through its builder.
void ShowInPane(Pane pane, const QByteArray& bytes) {
    const QString text =
        FormatBinary(bytes, GetByteArrayLength(bytes), false, ModeOf(pane).position);
    if (pane == Pane::Send) {
        Form().textDataW = text;
        return;
    }
    AwStringBuilder& builder = Form().receiveText;
    builder.SetLength(0);
    builder.Append(text);
    Form().textDataR = builder.ToString();
}

QByteArray TextBytes(Pane pane) {
    return ConvertToBinary(TextOf(pane), ModeOf(pane).position);
}

bool PortIsOpen() {
    // A port that is not open has no input queue to count.
    const auto& comm = Form().Comm;
    return comm && comm->ReadBufferDataSize() >= 0;
}

QByteArray Delimiter(qsizetype position) {
    switch (position) {
        case 1:
            return "\r";
        case 2:
            return "\n";
        case 3:
            return "\r\n";
        case 4:
            return "\x03";
        default:
            return {};
    }
}

}  // namespace

void ClearPane(Pane pane) {
    Form_TesvaneMain& f = Form();
    TextOf(pane).clear();
    BytesOf(pane).erase();
    if (pane == Pane::Send) {
        // Does nothing on the port; kept as the button always called it.
        if (f.Comm) f.Comm->ClearWriteBuffer();
    } else {
        f.receiveText.SetLength(0);
    }
}

void FormatPane(Pane pane) {
    ShowInPane(pane, TextBytes(pane));
}

void ChangePaneMode(Pane pane, qsizetype newPosition) {
    const QByteArray bytes = TextBytes(pane);
    StoreBytes(pane, bytes);
    ModeOf(pane).position = newPosition;
    ShowInPane(pane, bytes);
}

void PaneTextEntered(Pane pane) {
    Form_TesvaneMain& f = Form();
    (pane == Pane::Send ? f.textDataWOnEnter : f.textDataROnEnter) = TextOf(pane);
}

void PaneTextLeft(Pane pane, const QString& text) {
    Form_TesvaneMain& f = Form();
    TextOf(pane) = text;
    if (text == (pane == Pane::Send ? f.textDataWOnEnter : f.textDataROnEnter)) return;
    // While the receive pane updates itself its bytes are the line's, not the box's.
    if (pane == Pane::Receive && f.checkAutoUpdateR.value != 0) return;
    StoreBytes(pane, TextBytes(pane));
    ShowByteCounts();
}

void UpdateReceivePane() {
    Form().textDataR = Form().receiveText.ToString();
}

void SetAutoUpdateReceive(bool on) {
    Form_TesvaneMain& f = Form();
    f.checkAutoUpdateR.value = on ? 1 : 0;
    f.buttonUpdateREnabled = !on;
    if (on) UpdateReceivePane();
}

void SetRtsFromBox(bool on) {
    Form().checkRts.value = on ? 1 : 0;
    if (PortIsOpen()) Form().Comm->SetRts(on);
    ShowLineStates();
}

void SetDtrFromBox(bool on) {
    Form().checkDtr.value = on ? 1 : 0;
    if (PortIsOpen()) Form().Comm->SetDtr(on);
    ShowLineStates();
}

void PortChosen(qsizetype position) {
    Form_TesvaneMain& f = Form();
    f.comboPort.position = position;
    // Position 0 is port 1, which so leaves the boxes disabled: kept as the console had it.
    const bool enabled = position >= 1;
    f.checkConnect.enabled = enabled;
    f.checkRts.enabled = enabled;
    f.checkDtr.enabled = enabled;
}

void WriteSendPane() {
    PaneBytes& send = Form().sendBytes;
    QByteArray copy = send.bytes.left(send.count);
    copy.append(Delimiter(Form().comboDelimiter.position));
    // Only the pane's bytes change: the button never writes to the line.
    StoreBytes(Pane::Send, copy);
}

QString SetLoopWrite(bool on) {
    Form_TesvaneMain& f = Form();
    const bool listsEnabled = !on;
    if (on) {
        if (f.comboMin.position > f.comboMax.position) {
            f.checkLoopWrite.value = 0;
            return u"最小値と最大値の関係が正しくありません。    "_s;
        }
        f.loopWriteMin = f.comboMin.position;
        f.loopWriteMax = f.comboMax.position;
        f.loopWriteSince = Now();
    }
    f.checkLoopWrite.value = on ? 1 : 0;
    f.comboMin.enabled = listsEnabled;
    f.comboMax.enabled = listsEnabled;
    f.comboCondition.enabled = listsEnabled;
    return {};
}

void ClearLog() {
    Form().Txt_Log.clear();
}

void LoadPane(Pane pane, const QString& path) {
    if (path.isEmpty()) return;
    ClearPane(pane);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return;
    const QByteArray bytes = file.readAll();
    StoreBytes(pane, bytes);
    ShowInPane(pane, bytes);
    ShowByteCounts();
}

QString SavePane(Pane pane, const QString& path) {
    if (path.isEmpty()) return {};
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return u"このファイル名で保存することはできません。    "_s;
    const PaneBytes& stored = BytesOf(pane);
    file.write(stored.bytes.left(stored.count));
    return pane == Pane::Send ? u"送信データを保存しました。    "_s
                              : u"受信データを保存しました。    "_s;
}

QString LoadPaneTitle(Pane pane) {
    return pane == Pane::Send ? u"送信データ読込"_s : u"受信データ読込"_s;
}

QString SavePaneTitle(Pane pane) {
    return pane == Pane::Send ? u"送信データ保存"_s : u"受信データ保存"_s;
}

QString PaneFileFilter() {
    return u"バイナリファイル (*.bin);;データファイル (*.dat);;テキストファイル (*.txt);;"
           u"すべてのファイル (*.*)"_s;
}

ReadmeTarget FindReadme(const QString& programFolder) {
    const QString path = QDir(programFolder).filePath(u"Readme_Ja.txt"_s);
    // A failure to look counts as missing.
    if (QFileInfo(path).isFile()) return {path, {}};
    return {{}, u"Readme ファイルが見つかりません。    "_s};
}

}  // namespace orbline
