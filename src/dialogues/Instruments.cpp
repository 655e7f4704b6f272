#include "dialogues/Instruments.h"

#include "dialogues/Dialogue0855.h"
#include "dialogues/Dialogue0980.h"
#include "dialogues/Dialogue0990.h"
#include "dialogues/Dialogue1160.h"
#include "dialogues/Dialogue1190.h"
#include "dialogues/Dialogue1650.h"
#include "dialogues/Dialogue1660.h"
#include "dialogues/Dialogue1671.h"
#include "dialogues/Dialogue1730.h"
#include "dialogues/Dialogue2140.h"
#include "dialogues/Dialogue2620.h"
#include "dialogues/Dialogue2990.h"
#include "tables/MdlOption.h"

#include <array>

namespace orbline {

namespace {

// In the order the codes are tested.
constexpr std::array<Instrument, 12> kInstruments{{
    {.code = u"0855", .kind = u"urine analyser", .dialogue = &BeginCommLoop0855},
    {.code = u"0980", .kind = u"glycohaemoglobin analyser", .dialogue = &BeginCommLoop0980},
    {.code = u"0990", .kind = u"blood glucose meter", .dialogue = &BeginCommLoop0990},
    {.code = u"1160", .kind = u"AIA analyser", .dialogue = &BeginCommLoop1160},
    {.code = u"1190", .kind = u"haematology analyser", .dialogue = &BeginCommLoop1190},
    {.code = u"1650", .kind = u"coagulation analyser", .dialogue = &BeginCommLoop1650},
    {.code = u"1671", .kind = u"tympanometer", .dialogue = &BeginCommLoop1671},
    {.code = u"1660", .kind = u"cobas analyser", .dialogue = &BeginCommLoop1660},
    {.code = u"1730",
     .kind = u"immunoassay analyser",
     .dialogue = &BeginCommLoop1730,
     .loadAtLaunch = &LoadData1730},
    {.code = u"2140",
     .kind = u"chemistry analyser",
     .dialogue = &BeginCommLoop2140,
     .loadAtStart = &LoadOption2140},
    {.code = u"2620",
     .kind = u"tonometer",
     .dialogue = &BeginCommLoop2620,
     .readsFT01Format = true},
    {.code = u"2990",
     .kind = u"chemistry analyser",
     .dialogue = &BeginCommLoop2990,
     .loadAtStart = &LoadKensaKomoku2990},
}};

}  // namespace

const Instrument* FindInstrument(const QString& code) {
    for (const Instrument& instrument : kInstruments)
        if (instrument.code == code) return &instrument;
    return nullptr;
}

}  // namespace orbline
