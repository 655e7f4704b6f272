#pragma once
// The launch and settings fields that the result edits read, taken from RunContext once per
// call, so that the edits' parsing and result lines depend on nothing else.

#include <QString>

namespace orbline {

// IDEntry and FixedSampleId: how a fixed sample number replaces the one read from a message.
struct SampleRule {
    QString idEntry;
    QString fixedSampleId;
};

// IDEntry "2" takes the fixed number even when it is empty; otherwise a fixed number that is
// given wins; otherwise the number read stays.
QString ApplyIdEntryRule(const QString& sampleId, const SampleRule& rule);

// A sample number as a message gives it: "0" when empty; a numeric one loses its leading zeros
// as text, so that a long barcode stays exact; anything else stays as taken.
QString SampleNumberAsRead(const QString& taken);

struct EditSettings {
    QString instrumentCode;
    QString instrumentName;
    QString runMarkDefault;
    SampleRule sampleRule;
    QString outIp;  // 1190: "0" keeps the flags out of the result file
};

EditSettings EditSettingsFromContext();

}  // namespace orbline
