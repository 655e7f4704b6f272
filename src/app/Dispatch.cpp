#include "app/Dispatch.h"

#include "dialogues/Dialogue0980.h"
#include "dialogues/Dialogue1160.h"
#include "dialogues/Dialogue1190.h"
#include "dialogues/Dialogue2620.h"

#include <array>

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

struct Instrument {
    QStringView code;
    Dialogue dialogue;
};

// In the order the codes are tested. Dialogues not yet built are empty.
constexpr std::array<Instrument, 12> kInstruments{{
    {u"0855", nullptr},
    {u"0980", &BeginCommLoop0980},
    {u"0990", nullptr},
    {u"1160", &BeginCommLoop1160},
    {u"1190", &BeginCommLoop1190},
    {u"1650", nullptr},
    {u"1671", nullptr},
    {u"1660", nullptr},
    {u"1730", nullptr},
    {u"2140", nullptr},
    {u"2620", &BeginCommLoop2620},
    {u"2990", nullptr},
}};

}  // namespace

Dialogue DialogueOf(const QString& instrumentCode) {
    for (const Instrument& instrument : kInstruments)
        if (instrument.code == instrumentCode) return instrument.dialogue;
    return nullptr;
}

}  // namespace orbline
