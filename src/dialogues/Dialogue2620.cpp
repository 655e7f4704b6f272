#include "dialogues/Dialogue2620.h"

#include "common/AwCommText.h"
#include "common/FixedReply.h"
#include "common/Form.h"
#include "common/Logging.h"
#include "common/Numbers.h"
#include "common/Paths.h"
#include "common/RunContext.h"
#include "dialogues/CommCycle.h"
#include "edits/MdlEdit026.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

constexpr QChar kEnq = QChar(0x05);
constexpr QChar kEtx = QChar(0x03);
constexpr QChar kEot = QChar(0x04);
constexpr QChar kCr = QChar(0x0D);
constexpr std::int16_t kAckCr = 12;

enum class BlockKind { Start, Data, Final, NotYet };

// Only the ends of the buffered text decide: a text ending in CR that is none of the three
// kinds is not yet a block, and the next read is added to it.
BlockKind KindOf(const QString& buffer) {
    if (buffer.front() == kEnq) return BlockKind::Start;
    if (buffer.size() < 2) return BlockKind::NotYet;
    const QChar lastButOne = buffer.at(buffer.size() - 2);
    if (lastButOne == kEtx) return BlockKind::Data;
    if (lastButOne == kEot) return BlockKind::Final;
    return BlockKind::NotYet;
}

void StoreBlock(const QString& workFolder, std::int16_t blockSeq) {
    RunContext& c = Ctx();
    BlockFileOut(workFolder, u"c2620"_s, FormatNumber(QString::number(blockSeq), u"0000"_s));
    // Past the list's bound the block is lost to the edit (not to the block file), and the
    // count stops with it, so the edit never reads past the list.
    if (c.BlockList.contains(c.BlockCount)) {
        c.BlockList.put(c.BlockCount, c.ReceiveBuffer.checked(0));
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
    QString& buffer = c.ReceiveBuffer.checked(0);
    buffer.clear();

    while (Form().Connected) {
        if (!NextCycleHasBytes()) continue;
        ErasePaneArrays();
        buffer += ReadText1(Form().comm());
        if (buffer.isEmpty() || buffer.back() != kCr) continue;

        // Every text ending in CR counts, also one that stays in the buffer; above the 16-bit
        // range the count stops and the last number is written on.
        if (blockSeq < 32767) blockSeq += 1;
        if (blockSeq == 1) {
            // The block files of an earlier session go with the first text of this one.
            workFolder = c.AppPath + u"\\c2620"_s;
            if (FolderExists(workFolder)) DeleteFolderTree(workFolder);
            MakeFolder(workFolder);
        }

        switch (KindOf(buffer)) {
            case BlockKind::Start:
            case BlockKind::Data:
                SendFixedReply(kAckCr);
                LogEvent(u"データ受信中 --  "_s, u"データ受信中 -- "_s, LogForm::Short);
                StoreBlock(workFolder, blockSeq);
                break;
            case BlockKind::Final:
                SendFixedReply(kAckCr);
                LogEvent(u"受信完了(Edit) -- "_s, u"受信完了(Edit) -- "_s, LogForm::Full);
                StoreBlock(workFolder, blockSeq);
                EditResult2620();
                c.BlockList.clear();
                c.BlockCount = 0;
                break;
            case BlockKind::NotYet:
                break;
        }
    }
}

}  // namespace orbline
