#pragma once

#include <mutex>

#include "ChangeFeed.h"
#include "ShowObject.h"

namespace stagehost {

/// An object that the show file describes in full: properties, and objects below it. Its name begins with that of the
/// object that holds it and a point.
class PlainObject final : public ShowObject {
public:
    /// @param holder the full name of the object above, empty for none. @param feed must outlive the object.
    PlainObject(ObjectSpec spec, const std::string& holder, ChangeFeed& feed);

    const std::vector<std::shared_ptr<PlainObject>>& Objects() const { return m_objects; }

    /// Those of the show file; all can be set.
    std::vector<ObjectProperty> Properties() const override;
    KXPCode SetProperty(const std::string& property, const std::string& value) override;

private:
    ChangeFeed& m_feed;
    std::vector<std::shared_ptr<PlainObject>> m_objects;
    mutable std::mutex m_lock; ///< guards m_properties
    std::vector<ObjectProperty> m_properties;
};

} // namespace stagehost
