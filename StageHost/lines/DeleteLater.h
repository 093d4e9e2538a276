#pragma once

#include <memory>

#include <QObject>

namespace stagehost {

/// Lets go of an object that may be inside its own signal, as a timer is whose owner goes when it fires.
struct DeleteLater {
    void operator()(QObject* object) const {
        object->blockSignals(true);
        object->deleteLater();
    }
};

template <typename Object>
using DeletedLater = std::unique_ptr<Object, DeleteLater>;

} // namespace stagehost
