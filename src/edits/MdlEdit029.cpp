// Result edit of the chemistry analyser 2990: the routine of 2140 with the item file's table,
// whose rows keep the item number in column 1 and the name in column 2.

#include "common/RunContext.h"
#include "edits/MdlEdit021.h"

using namespace Qt::StringLiterals;

namespace orbline {

void EditResult2990(const ChemistryFrames& frames, std::int16_t count) {
    const RunContext& c = Ctx();
    EditResultChemistry(frames, count,
                        {{c.KensaKomokuTable2990, c.KensaKomokuCount2990, 1, 2}, u"2990"_s});
}

}  // namespace orbline
