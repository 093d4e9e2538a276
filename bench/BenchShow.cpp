#include "BenchShow.h"

#include "FaceAnswer.h"

BenchShow::BenchShow() {
    BenchHost().offerRemoteManager2 = true;
    BenchHost().remote2 = this;
    BenchHost().variableManager = this;
}

KXPCode BenchShow::Perform(const char* /*object*/, const char* /*action*/, const char* parameters,
                           IExecContext* context, void* /*reserved*/) {
    m_answer.request = QueryFace<IExecContext2>(context, "IExecContext2");
    m_answer.params = plain::Params::ForFunction("F", {parameters});
    context->Begin();
    target->Device().ExecuteCommand(3, m_answer.params.get(), &m_answer);
    return KXP_PENDING;
}

KXPCode BenchShow::Answer::End() {
    request->SetResultText(params->At(1).Text().c_str());
    return request->End();
}
