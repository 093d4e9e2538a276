#pragma once

#include <memory>

#include "IExecContext.h"
#include "Reply.h"

namespace stagehost {

/// Begins a context and makes the answer that ends it: code, result text, End. The host keeps a reference of its own
/// until then, since the module may give the request up before.
/// @param context not null.   [script]
Answer BeginContext(IExecContext* context);

} // namespace stagehost
