#include "edits/PieceFiles.h"

#include "common/EventYield.h"
#include "common/Logging.h"
#include "common/Numbers.h"
#include "common/Paths.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "common/TextFile.h"

#include <optional>

using namespace Qt::StringLiterals;

namespace orbline {

QString PieceFolder(const QString& folder) {
    return Ctx().AppPath + u"\\"_s + folder;
}

QString PieceFilePath(const QString& folder, const QString& prefix, int number) {
    return PieceFolder(folder) + u"\\"_s + prefix + u"_"_s +
           FormatNumber(QString::number(number), u"0000"_s) + u".txt"_s;
}

QStringList ReadPieceTexts(const QString& folder, const QString& prefix, std::int16_t pieceCount,
                           const QString& stamp, const PieceRules& rules) {
    QStringList texts;
    for (int number = 1; number < pieceCount; ++number) {
        const QString path = PieceFilePath(folder, prefix, number);
        if (!FileExists(path)) continue;
        std::optional<QString> text = ReadAllText(path);
        RunStep(rules.onError, [&] {
            if (!text) throw RuntimeError(errors::FileNotFound());
            if (rules.strip) text = rules.strip(number, *text);
        });
        if (rules.yieldAfterEach) YieldToEvents();
        if (text) texts.append(*text);
        // A code that is no 16-bit number fails the copy.
        RunStep(rules.onError, [&] {
            SlogCopy(path, InstrumentCodeNumber(), stamp,
                     FormatNumber(QString::number(number), u"0000"_s), u"txt"_s);
        });
    }
    return texts;
}

}  // namespace orbline
