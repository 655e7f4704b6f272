#pragma once
// What the console's controls do to the form, without widgets: a window calls these from its
// signals and then shows the form again. Texts to show in an information box come back as
// results; an empty text means no box.

#include <QByteArray>
#include <QString>

#include <cstdint>

namespace orbline {

enum class Pane { Send, Receive };

// buttonClearW / buttonClearR.
void ClearPane(Pane pane);
// buttonFormatW / buttonFormatR: the pane's text to bytes by its mode, and back in a clean
// layout.
void FormatPane(Pane pane);
// comboModeW / comboModeR: the text converted by the old mode, then shown by the new one.
void ChangePaneMode(Pane pane, qsizetype newPosition);
// textDataW / textDataR: the text as it was on entering the box, and as it is on leaving it.
// If it changed, the pane's bytes are taken from it by the pane's mode (the receive pane only
// while checkAutoUpdateR is off) and the counts are shown.
void PaneTextEntered(Pane pane);
void PaneTextLeft(Pane pane, const QString& text);
// buttonUpdateR: textDataR from the receive builder.
void UpdateReceivePane();
// checkAutoUpdateR: while on, the update is done and buttonUpdateR disabled.
void SetAutoUpdateReceive(bool on);
// checkRts / checkDtr: the port's line from the box, then the line states.
void SetRtsFromBox(bool on);
void SetDtrFromBox(bool on);
// comboPort clicked: the connect box and the two line boxes follow the list position.
void PortChosen(qsizetype position);
// buttonWrite: the send bytes with the delimiter go to the pane's stored bytes, never to the
// port.
void WriteSendPane();
// checkLoopWrite: the refusal text when the minimum lies above the maximum (the box is then
// off again), empty otherwise.
QString SetLoopWrite(bool on);
// Cmd_Log.
void ClearLog();

// Load and save of pane data, with the path the file dialog gave. A load of a file that
// cannot be read leaves the pane empty; a save returns the text of its information box.
void LoadPane(Pane pane, const QString& path);
QString SavePane(Pane pane, const QString& path);
// The titles of the four file dialogs and the filter the dialogs share, in Qt's notation.
QString LoadPaneTitle(Pane pane);
QString SavePaneTitle(Pane pane);
QString PaneFileFilter();

// The Readme command: the file to show, or the text of the box when it is missing.
struct ReadmeTarget {
    QString path;     // empty when the file is missing
    QString missing;  // the box's text when it is missing
};
ReadmeTarget FindReadme(const QString& programFolder);

}  // namespace orbline
