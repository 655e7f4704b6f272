#include "app/Launch.h"

#include "app/Session.h"
#include "common/AnsiCodec.h"
#include "common/Clock.h"
#include "common/Form.h"
#include "common/FormLists.h"
#include "common/Logging.h"
#include "common/Numbers.h"
#include "common/RunContext.h"
#include "common/Text.h"
#include "dialogues/Instruments.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {
FormShower& Shower() {
    static FormShower shower = nullptr;
    return shower;
}
}  // namespace

void SetFormShower(FormShower shower) {
    Shower() = shower;
}

LaunchFields ParseCommandLine(const QString& commandLine) {
    QString text = commandLine;
    text.remove(u'/');
    const QStringList fields = Split(text, u"="_s);
    auto field = [&](qsizetype i) { return Trim(FieldAt(fields, i).value_or(QString())); };
    LaunchFields launch;
    launch.InstrumentCode = field(0);
    launch.ShowMode = field(1);
    launch.IniPrefix = field(2);
    launch.AppPath = field(3);
    launch.FixedSampleId = field(4);
    launch.Spare5 = field(5);
    launch.RunMarkDefault = field(6);
    if (launch.ShowMode.isEmpty()) launch.ShowMode = u"0"_s;
    if (launch.Spare5.isEmpty()) launch.Spare5 = u"0"_s;
    return launch;
}

QString JoinArguments(int argc, const char* const* argv) {
    QStringList parts;
    for (int i = 1; i < argc; ++i) parts.append(QString::fromLocal8Bit(argv[i]));
    return parts.join(u' ');
}

void RunLoadEventStart(const QString& commandLine) {
    Form_TesvaneMain& f = Form();
    // The build date of the first release; it stays as it is on every day the system runs.
    f.lblSysDate = NowText(u"YYYY-MM-DD"_s) + u" Ver "_s + u"20200416"_s;

    const LaunchFields launch = ParseCommandLine(commandLine);
    RunContext& ctx = Ctx();
    ctx.InstrumentCode = launch.InstrumentCode;
    ctx.ShowMode = launch.ShowMode;
    ctx.IniPrefix = launch.IniPrefix;
    ctx.AppPath = launch.AppPath;
    ctx.FixedSampleId = launch.FixedSampleId;
    ctx.OutSerial = 0;
    ctx.Spare5 = launch.Spare5;
    ctx.RunMarkDefault = launch.RunMarkDefault;

    ctx.OrderTable.clear();
    ctx.OrderRowCount = 0;

    // The tables of some instruments are read here, others' in the start command.
    if (const Instrument* instrument = FindInstrument(ctx.InstrumentCode);
        instrument != nullptr && instrument->loadAtLaunch != nullptr)
        instrument->loadAtLaunch();

    f.Timer1Enabled = false;
    f.Timer2Enabled = false;
    // The character of code 128 in the ANSI code page.
    f.HiddenChar = DecodeAnsi(QByteArray(1, '\x80'));
    f.byteCounter = 0;
    FillLineLists();
    FillConsoleLists();

    LogEvent(u"プログラム開始 --   "_s, u"プログラム開始 -- "_s, LogForm::Full);
}

void Form_Load(const QString& commandLine) {
    RunLoadEventStart(commandLine);
    Form_TesvaneMain& f = Form();
    if (ShowsConsole(Ctx().ShowMode)) {
        // The compact console, shown without waiting.
        f.HeightTwips = 4095;
        f.WidthTwips = 8265;
        f.Visible = true;
        f.Cmd_KaijyoEnabled = false;
        if (Shower() != nullptr) Shower()();
    }
    // Unattended, the form is never shown: the start command blocks here for the session.
    Cmd_Open();
}

}  // namespace orbline
