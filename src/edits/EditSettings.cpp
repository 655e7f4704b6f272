#include "edits/EditSettings.h"

#include "common/Numbers.h"
#include "common/RunContext.h"

using namespace Qt::StringLiterals;

namespace orbline {

QString ApplyIdEntryRule(const QString& sampleId, const SampleRule& rule) {
    if (rule.idEntry == u"2"_s || !rule.fixedSampleId.isEmpty()) return rule.fixedSampleId;
    return sampleId;
}

QString SampleNumberAsRead(const QString& taken) {
    if (taken.isEmpty()) return u"0"_s;
    if (IsNumeric(taken)) return PlainDecimalText(taken);
    return taken;
}

EditSettings EditSettingsFromContext() {
    const RunContext& c = Ctx();
    return {c.InstrumentCode,
            c.InstrumentName,
            c.RunMarkDefault,
            {c.IDEntry, c.FixedSampleId},
            c.OutIP};
}

}  // namespace orbline
