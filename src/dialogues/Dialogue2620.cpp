#include "dialogues/Dialogue2620.h"

#include "common/AwCommText.h"
#include "common/FixedReply.h"
#include "common/Form.h"
#include "common/Logging.h"
#include "common/Numbers.h"
#include "common/Paths.h"
#include "common/RunContext.h"
#include "dialogues/CommCycle.h"
#include "dialogues/PieceReaders.h"
#include "edits/MdlEdit026.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

void StoreBlock(const QString& workFolder, std::int16_t blockSeq, const QString& block) {
    RunContext& c = Ctx();
    // The block file is written from the receive buffer, as every dialogue's pieces are.
    c.ReceiveBuffer.checked(0) = block;
    BlockFileOut(workFolder, u"c2620"_s, FormatNumber(QString::number(blockSeq), u"0000"_s));
    // Past the list's bound the block is lost to the edit (not to the block file), and the
    // count stops with it, so the edit never reads past the list.
    if (c.BlockList.contains(c.BlockCount)) {
        c.BlockList.put(c.BlockCount, block);
        c.BlockCount += 1;
    }
    c.ReceiveBuffer.checked(0).clear();
}

}  // namespace

void BeginCommLoop2620() {
    RunContext& c = Ctx();
    c.BlockList.clear();
    c.BlockCount = 0;
    std::int16_t blockSeq = 0;
    QString workFolder;
    BlockReader reader;
    c.ReceiveBuffer.checked(0).clear();

    while (Form().Connected) {
        EndSessionIfPortGone();
        if (!NextCycleHasBytes()) continue;
        ErasePaneArrays();
        const BlockStep step = Join(reader, ReadText1(Form().comm()));
        if (!step.endsInCr) continue;

        // Every text ending in CR counts, also one that stays in the reader; above the 16-bit
        // range the count stops and the last number is written on.
        CountUp(blockSeq);
        if (blockSeq == 1) {
            // The block files of an earlier session go with the first text of this one.
            workFolder = c.AppPath + u"\\c2620"_s;
            if (FolderExists(workFolder)) DeleteFolderTree(workFolder);
            MakeFolder(workFolder);
        }
        if (!step.block) continue;

        SendFixedReply(FixedReply::AckCr);
        switch (step.block->kind) {
            case BlockKind::Start:
            case BlockKind::Data:
                LogEvent(u"データ受信中 --  "_s, u"データ受信中 -- "_s, LogForm::Short);
                StoreBlock(workFolder, blockSeq, step.block->text);
                break;
            case BlockKind::Final:
                LogEvent(u"受信完了(Edit) -- "_s, u"受信完了(Edit) -- "_s, LogForm::Full);
                StoreBlock(workFolder, blockSeq, step.block->text);
                EditResult2620();
                c.BlockList.clear();
                c.BlockCount = 0;
                break;
        }
    }
}

}  // namespace orbline
