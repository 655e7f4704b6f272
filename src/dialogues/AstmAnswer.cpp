#include "dialogues/AstmAnswer.h"

#include "common/Numbers.h"

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

struct Plan {
    const AstmAnswerShape& shape;
    const RecordTexts& records;
    AstmAnswerState& s;
    PlanActions actions;

    QString Record(RecordKind kind) {
        CountUp(s.frameNo);
        return records(kind, QString::number(s.frameNo), s.answer);
    }
    void Send(const QString& text, FrameEnd end, bool hexMode, SendStage next) {
        actions.emplace_back(SendRecord{text, end, hexMode});
        s.stage = next;
    }
    void Header(bool repeated) {
        const QString text = Record(repeated ? RecordKind::RepeatedHeader : RecordKind::Header);
        Send(text, shape.recordEnd, true, SendStage::Header);
    }
    void Patient() { Send(Record(RecordKind::Patient), shape.recordEnd, true, SendStage::Patient); }
    void Order() {
        const QString text = Record(RecordKind::Order);
        if (!NeedsTwoFrames(text, shape.longRecord)) {
            Send(text, shape.recordEnd, false, SendStage::Order);
            return;
        }
        s.longRecord = text;
        Send(FirstPartOf(text, shape.longRecord), FrameEnd::Etb, false, SendStage::FirstOfTwo);
    }
    void SecondPart() {
        CountUp(s.frameNo);
        Send(SecondPartOf(s.longRecord, shape.longRecord, s.frameNo), FrameEnd::Etx, false,
             SendStage::Order);
    }
    void Terminator() {
        Send(Record(RecordKind::Terminator), FrameEnd::Etx, true, SendStage::Terminator);
    }
    void Lookup(AfterLookup then) {
        actions.emplace_back(RunLookup{});
        s.afterLookup = then;
    }
    // EOT gives the line back; the next ENQ of the instrument starts a new reception.
    void End(bool completed) {
        actions.emplace_back(EndAnswer(s));
        if (completed)
            actions.emplace_back(LogPair{u"問合情報送信完了(Edit/ETB) -- "_s,
                                         u"問合情報送信完了(Edit/ETB) -- "_s, LogForm::Full});
    }

    void Next() {
        switch (s.stage) {
            case SendStage::Nothing:
                Header(false);
                if (shape.lookupAt == LookupPoint::AfterHeader)
                    Lookup(AfterLookup::ChooseAfterHeader);
                return;
            case SendStage::Header:
                if (shape.lookupAt == LookupPoint::BeforePatient)
                    Lookup(AfterLookup::SendPatient);
                else
                    Patient();
                return;
            case SendStage::Patient:
                Order();
                return;
            case SendStage::Order:
                Terminator();
                return;
            case SendStage::FirstOfTwo:
            case SendStage::Terminator:
                // Their ACKs have classes of their own.
                return;
        }
    }

    void Repeat() {
        switch (s.stage) {
            case SendStage::Nothing:
            case SendStage::FirstOfTwo:
                // Nothing goes out; the loop waits for the next piece.
                return;
            case SendStage::Header:
                Header(true);
                return;
            case SendStage::Patient:
                Lookup(AfterLookup::SendPatient);
                return;
            case SendStage::Order:
                Order();
                return;
            case SendStage::Terminator:
                Terminator();
                return;
        }
    }

    void Refused() {
        if (!ShouldAskAgain(s)) {
            End(false);
            return;
        }
        switch (shape.retry) {
            case RetryRule::AskAgain:
                actions.emplace_back(SendControl{Control::Enq});
                return;
            case RetryRule::RepeatFrame:
                Repeat();
                return;
        }
    }
};

}  // namespace

PlanAction EndAnswer(AstmAnswerState& state) {
    state.answering = false;
    state.stage = SendStage::Nothing;
    state.refusals = 0;
    state.frameNo = 0;
    return SendControl{Control::Eot};
}

bool ShouldAskAgain(AstmAnswerState& state) {
    CountUp(state.refusals);
    return state.refusals < kMaxRefusals;
}

PlanActions BeginAnswer(AstmAnswerState& state) {
    state.answering = true;
    state.stage = SendStage::Nothing;
    state.refusals = 0;
    state.afterLookup = AfterLookup::Nothing;
    state.recordStage = SendStage::Nothing;
    return {SendControl{Control::Enq}, LogPair{u"オーダデータ要求送信中 --  "_s,
                                               u"データデータ要求送信中 -- "_s, LogForm::Short}};
}

PlanActions AnswerReply(const AstmAnswerShape& shape, const RecordTexts& records,
                        AstmAnswerState& state, ReplyClass reply) {
    Plan plan{shape, records, state, {}};
    switch (reply) {
        case ReplyClass::NextRecord:
            plan.Next();
            break;
        case ReplyClass::SecondPart:
            plan.SecondPart();
            break;
        case ReplyClass::TerminatorTaken:
            plan.End(true);
            break;
        case ReplyClass::Leave:
            plan.End(false);
            break;
        case ReplyClass::NotAck:
            plan.Refused();
            break;
    }
    return std::move(plan.actions);
}

PlanActions AnswerLookup(const AstmAnswerShape& shape, const RecordTexts& records,
                         AstmAnswerState& state, const OrderAnswer& answer) {
    Plan plan{shape, records, state, {}};
    state.answer = answer;
    const AfterLookup then = std::exchange(state.afterLookup, AfterLookup::Nothing);
    switch (then) {
        case AfterLookup::Nothing:
            break;
        case AfterLookup::SendPatient:
            plan.Patient();
            break;
        case AfterLookup::ChooseAfterHeader:
            // Without an order the answer is header and terminator alone.
            if (state.answer.test.isEmpty()) state.stage = SendStage::Order;
            break;
    }
    return std::move(plan.actions);
}

}  // namespace orbline
