#include "edits/ResultDelivery.h"

#include "common/ResultFile.h"
#include "common/RunContext.h"
#include "common/RuntimeError.h"
#include "common/TextFile.h"

namespace orbline {

void WriteAndDeliver(const QString& lines, DeliveryNames names) {
    QString workPath;
    PassOver([&] { MakeOutFile(Ctx().JyusinWKPath, workPath); });
    PassOver([&] {
        // The file exists even with no line in it: delivery then deletes it.
        if (!WriteNewText(workPath, lines)) throw RuntimeError(errors::PathNotFound());
    });
    if (names == DeliveryNames::OneBurnt) {
        QString unusedName;
        PassOver([&] { MakeDeliveryName(Ctx().JyusinDataPath, unusedName); });
    }
    PassOver([&] { DeliverWorkFile(workPath, FailedMove::PassedOver); });
}

void BuildAndDeliver(const std::function<QString(bool* lineBuilt)>& buildLines,
                     DeliveryNames names) {
    QString lines;
    bool lineBuilt = false;
    const bool complete = PassOver([&] { lines = buildLines(&lineBuilt); });
    if (lineBuilt) Ctx().RunMark = Ctx().RunMarkDefault;
    if (complete) WriteAndDeliver(lines, names);
}

void WriteAndDeliverOrThrow(const QString& lines) {
    WriteAndDeliverOrThrow([&](const QString&) { return lines; });
}

void WriteAndDeliverOrThrow(const std::function<QString(const QString& workPath)>& buildLines) {
    QString workPath;
    MakeOutFile(Ctx().JyusinWKPath, workPath);
    const QString lines = buildLines(workPath);
    if (!WriteNewText(workPath, lines)) throw RuntimeError(errors::PathNotFound());
    DeliverWorkFile(workPath, FailedMove::Throws);
}

}  // namespace orbline
