// Throughput of the pieces every message goes through: the code page conversion of an order
// file, the mask formatter on result values, and one main-log line (opened, written, closed).

#include "common/AnsiCodec.h"
#include "common/Logging.h"
#include "common/Numbers.h"
#include "common/RunContext.h"

#include <QTemporaryDir>

#include <benchmark/benchmark.h>

using namespace Qt::StringLiterals;
using namespace orbline;

namespace {

QByteArray OrderFileBytes() {
    // One order line of 41+ fields with kanji and kana, repeated to about 1 MB.
    const QString line =
        u"20250416,0001,0930,000123456789,1650,山田　太郎,ﾔﾏﾀﾞ ﾀﾛｳ,P0001,1,45,内科,0900,0,"
        u"info,,血清,,0,0,0,0,3,0951,4207,0101"_s +
        u","_s.repeated(20) + u"\r\n"_s;
    return EncodeAnsi(line.repeated(1024 * 1024 / static_cast<int>(line.size() * 2) + 1));
}

void BM_DecodeOrderFile(benchmark::State& state) {
    const QByteArray bytes = OrderFileBytes();
    for (auto _ : state) benchmark::DoNotOptimize(DecodeAnsi(bytes));
    state.SetBytesProcessed(state.iterations() * bytes.size());
}
BENCHMARK(BM_DecodeOrderFile);

void BM_EncodeResultText(benchmark::State& state) {
    const QString text = DecodeAnsi(OrderFileBytes());
    for (auto _ : state) benchmark::DoNotOptimize(EncodeAnsi(text));
    state.SetBytesProcessed(state.iterations() * text.size() * 2);
}
BENCHMARK(BM_EncodeResultText);

void BM_FormatResultValue(benchmark::State& state) {
    const QString values[] = {u"12.30"_s, u"00125"_s, u"<3.0"_s, u"0.05"_s, u"1234567.891"_s};
    for (auto _ : state)
        for (const QString& v : values)
            benchmark::DoNotOptimize(FormatNumber(
                v, MakeNumberMask(static_cast<std::int16_t>(v.size()), DecimalPointPos(v))));
    state.SetItemsProcessed(state.iterations() * 5);
}
BENCHMARK(BM_FormatResultValue);

void BM_MainLogLine(benchmark::State& state) {
    QTemporaryDir dir;
    ResetRunContext();
    Ctx().AppPath = dir.path().replace(u'/', u'\\');
    Ctx().InstrumentCode = u"2620"_s;
    for (auto _ : state) {
        QString line = FullForm(u"データ受信中 -- "_s);
        GLogWrite(u"0"_s, line);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_MainLogLine);

}  // namespace

BENCHMARK_MAIN();
