#pragma once
// The one form, as plain state: lists, check boxes, enable flags, the panes' bytes, the console
// box and the port. It has no widgets; a console window, where shown, is a view over it.
//
// It lives here, below the dialogues, because the dialogues reach it as much as the shell does:
// they read Connected, read and write through Comm and send fixed replies through the send pane.

#include "common/AwStringBuilder.h"
#include "common/ConsoleText.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>

#include <array>
#include <cstdint>
#include <memory>

namespace orbline {

class AwComm;

// What a dialogue keeps from one session of the process to the next (a stop and a start), as
// the form's own fields kept it: each dialogue derives its memory from this.
struct DialogueMemory {
    DialogueMemory() = default;
    DialogueMemory(const DialogueMemory&) = delete;
    DialogueMemory& operator=(const DialogueMemory&) = delete;
    virtual ~DialogueMemory() = default;
};

// A drop-down list: its entries and the selected position. The position survives a session,
// because a setting that matches no entry leaves the list where it was.
struct ListControl {
    QStringList entries;
    qsizetype position = 0;
    bool enabled = true;

    // The selected entry's text; empty when the position lies outside the list.
    QString text() const;
};

struct CheckControl {
    std::int16_t value = 0;  // 0 off, 1 on
    bool enabled = true;
};

// The bytes of a pane and their count.
struct PaneBytes {
    QByteArray bytes;
    std::int32_t count = 0;

    void erase() {
        bytes.clear();
        count = 0;
    }
};

struct Form_TesvaneMain {
    Form_TesvaneMain();
    ~Form_TesvaneMain();
    Form_TesvaneMain(const Form_TesvaneMain&) = delete;
    Form_TesvaneMain& operator=(const Form_TesvaneMain&) = delete;

    bool Connected = false;
    // Character used for non-printing bytes in the panes: the character of code 128.
    QString HiddenChar;
    ConsoleText Txt_Log;
    // Folder made by DataSave_XXXX with kind 1, used by the calls after it.
    QString AppOutFolder;

    QString Caption;
    QString lblSysDate;
    bool Visible = false;
    std::int32_t HeightTwips = 0;
    std::int32_t WidthTwips = 0;

    // Line settings.
    ListControl comboPort;
    ListControl comboBaudRate;
    ListControl comboDataBits;
    ListControl comboParity;
    ListControl comboStopBits;
    ListControl comboHandShake;
    ListControl comboTimeOut;
    ListControl comboThread;
    CheckControl checkConnect;
    // Line states.
    CheckControl checkRts;
    CheckControl checkDtr;
    QString labelCts;
    QString labelDsr;
    // Send pane.
    ListControl comboModeW;
    ListControl comboDelimiter;
    QString textDataW;
    // The pane's text as it was on entering the box; leaving it compares against this.
    QString textDataWOnEnter;
    PaneBytes sendBytes;
    bool buttonWriteEnabled = true;
    QString labelBytesW;
    // Receive pane.
    ListControl comboModeR;
    QString textDataR;
    QString textDataROnEnter;
    PaneBytes receiveBytes;
    AwStringBuilder receiveText;
    bool buttonFormatREnabled = true;
    bool buttonUpdateREnabled = true;
    CheckControl checkAutoUpdateR;
    QString labelBytesR;
    // Automatic data, a display only.
    ListControl comboMin;
    ListControl comboMax;
    ListControl comboCondition;
    CheckControl checkLoopWrite;
    // What checkLoopWrite noted when turned on: the byte range and the time. Nothing sends.
    qsizetype loopWriteMin = 0;
    qsizetype loopWriteMax = 0;
    QDateTime loopWriteSince;
    // Session.
    bool Cmd_OpenEnabled = true;
    bool Cmd_KaijyoEnabled = true;
    bool Timer1Enabled = false;
    bool Timer2Enabled = false;
    std::int32_t byteCounter = 0;

    // The running dialogue's memory; see MemoryOf.
    std::unique_ptr<DialogueMemory> dialogueMemory;

    // Code tables of the panes, built by the start command: two hexadecimal digits, three
    // decimal digits, and the character (HiddenChar for 0 and 128 to 255).
    std::array<QString, 256> hexTable;
    std::array<QString, 256> decimalTable;
    std::array<QString, 256> charTable;

    // The port: made on first use, released when the form unloads.
    std::unique_ptr<AwComm> Comm;
    AwComm& comm();
};

Form_TesvaneMain& Form();

// The form's memory of the dialogue of type T, made on first use. A process runs one dialogue,
// so the slot never changes type but in tests.
template <typename T>
T& MemoryOf() {
    std::unique_ptr<DialogueMemory>& slot = Form().dialogueMemory;
    if (dynamic_cast<T*>(slot.get()) == nullptr) slot = std::make_unique<T>();
    return static_cast<T&>(*slot);
}
void ResetForm();

// The two pane arrays, erased by a dialogue at each receive.
void ErasePaneArrays();

// Unloading the form runs the close request of the shell, which ends the process. The shell
// names it once at start; below the shell nothing else may end a session.
using UnloadHandler = void (*)();
void SetUnloadHandler(UnloadHandler handler);
// Runs the handler if one is set. Without one (tools and tests of the lower modules) the port
// is released and nothing else happens.
void UnloadForm();
// Ends the process at once: status 1 when AbendFlag is set, 0 otherwise.
[[noreturn]] void EndProcess();

}  // namespace orbline
