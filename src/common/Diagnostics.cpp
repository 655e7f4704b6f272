#include "common/Diagnostics.h"

#include "common/Clock.h"
#include "common/Logging.h"
#include "common/Paths.h"
#include "common/RunContext.h"
#include "common/StandardError.h"
#include "common/TextFile.h"
#include "serial/AwComm.h"
#include "serial/PortError.h"

#include <QByteArray>

#include <filesystem>
#include <system_error>

using namespace Qt::StringLiterals;

namespace orbline {

QString DiagnosticLogPath() {
    return Ctx().AppPath + u"\\KV_Orbline"_s + Code4() + u".diag"_s;
}

QString OldDiagnosticLogPath() {
    return Ctx().AppPath + u"\\KV_Orbline"_s + Code4() + u".old.diag"_s;
}

void Diagnose(const QString& text) {
    QString oneLine = text;
    oneLine.replace(u'\r', u' ').replace(u'\n', u' ');
    const QString line = NowText(u"YYYY-MM-DD HH:MM:SS"_s) + u" "_s + Code4() + u" "_s + oneLine;

    const QByteArray forTerminal = (line + u"\n"_s).toLocal8Bit();
    WriteStandardError(forTerminal.constData(), static_cast<std::size_t>(forTerminal.size()));

    const QString path = DiagnosticLogPath();
    if (const auto size = FileLength(path); size && *size >= kMainLogRotateBytes) {
        std::error_code ec;
        std::filesystem::rename(FsPath(path), FsPath(OldDiagnosticLogPath()), ec);
    }
    AppendLine(path, line);
}

void DiagnosePort(const AwComm& comm, const QString& what, const PortFailure& failure) {
    Diagnose(u"port "_s + QString::number(comm.PortNumber()) + u" ("_s +
             QString::fromLocal8Bit(comm.DeviceName()) + u") "_s + what + u": "_s +
             QString::fromUtf8(DescribePortFailure(failure)));
}

}  // namespace orbline
