#include "edits/PieceFiles.h"

#include "common/Numbers.h"
#include "common/RunContext.h"

using namespace Qt::StringLiterals;

namespace orbline {

QString PieceFolder(const QString& folder) {
    return Ctx().AppPath + u"\\"_s + folder;
}

QString PieceFilePath(const QString& folder, const QString& prefix, int number) {
    return PieceFolder(folder) + u"\\"_s + prefix + u"_"_s +
           FormatNumber(QString::number(number), u"0000"_s) + u".txt"_s;
}

}  // namespace orbline
