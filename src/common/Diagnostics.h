#pragma once
// The diagnostic log: why something failed, in words for the person who runs the site, where
// the main log's fixed texts cannot say it. Each line goes to standard error (a service
// manager's journal) and to AppPath\KV_Orbline<code>.diag beside the main log, which keeps its
// own lines unchanged.

#include <QString>

namespace orbline {

class AwComm;
struct PortFailure;

// AppPath + "\KV_Orbline" + four-digit code + ".diag", and its one old copy.
QString DiagnosticLogPath();
QString OldDiagnosticLogPath();

// Writes "YYYY-MM-DD HH:MM:SS <code> <text>" to standard error and appends it with CR LF to
// the diagnostic log, in the site's code page. Line ends in the text become blanks, so that
// one report is one line. A file that has reached the main log's rotation size becomes the old
// copy first. A write that fails loses the line and nothing else happens.
void Diagnose(const QString& text);
// "port <n> (<device>) <what>: <the failure described>", through Diagnose.
void DiagnosePort(const AwComm& comm, const QString& what, const PortFailure& failure);

}  // namespace orbline
