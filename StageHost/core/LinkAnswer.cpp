#include "LinkAnswer.h"

namespace stagehost {

Answer BeginContext(IExecContext* context) {
    auto* counted = QueryFace<IExecContext2>(context, "IExecContext2");
    if (counted != nullptr)
        counted->AddRef();
    context->Begin();
    return [context, counted](const Reply& reply) {
        context->SetErrorCode(reply.code);
        if (counted != nullptr && reply.code == KXP_OK && reply.text)
            counted->SetResultText(reply.text->c_str());
        context->End();
        if (counted != nullptr)
            counted->Release();
    };
}

} // namespace stagehost
