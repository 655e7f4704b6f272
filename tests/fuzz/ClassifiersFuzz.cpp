// The receive and reply classifiers of the frame dialogues (0980, 1160, 1190, 1660), on every
// piece, in every stage of an answer.

#include "FuzzInput.h"
#include "dialogues/Classifiers.h"

using namespace orbline;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static constexpr SendStage kStages[] = {SendStage::Nothing,    SendStage::Header,
                                            SendStage::Patient,    SendStage::Order,
                                            SendStage::FirstOfTwo, SendStage::Terminator};
    for (const QString& piece : fuzz::Pieces(fuzz::Text(data, size))) {
        (void)CheckReceive0980(piece);
        (void)CheckReceive1160(piece);
        (void)CheckReceive1190(piece);
        (void)CheckReceive1660(piece);
        for (const SendStage stage : kStages) {
            (void)CheckReply0980(piece, stage);
            (void)CheckReply1160(piece, stage);
            (void)CheckReply1190(piece, stage);
            (void)CheckReply1660(piece, stage);
        }
    }
    return 0;
}
