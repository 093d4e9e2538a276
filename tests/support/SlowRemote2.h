#pragma once

#include "FakeRemotes.h"

/// A newer link that takes questions about objects on and answers the last one when it is told to, any number of times.
/// All else it does at once.
class SlowRemote2 : public FakeRemote2 {
public:
    ~SlowRemote2() override { Drop(); }

    IExecContext2* held = nullptr; ///< the last question, with a reference
    /// Called when it is asked, instead of Hold.
    std::function<void(IExecContext2*)> onQuestion;

    KXPCode GetObject(const char*, std::uint16_t, IExecContext* context, void*) override {
        auto* question = QueryFace<IExecContext2>(context, "IExecContext2");
        if (onQuestion)
            onQuestion(question);
        else
            Hold(question);
        return KXP_PENDING;
    }
    /// Keeps a question in the place of the one before.
    void Hold(IExecContext2* question) {
        Drop();
        held = question;
        held->AddRef();
        held->Begin();
    }
    /// [any]
    void Answer(const char* objectText, KXPCode answerCode = KXP_OK) const {
        held->SetErrorCode(answerCode);
        held->SetResultText(objectText);
        held->End();
    }
    void Drop() {
        if (held != nullptr)
            held->Release();
        held = nullptr;
    }
};
