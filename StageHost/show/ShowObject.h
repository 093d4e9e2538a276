#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ObjectKinds.h"
#include "ParameterText.h"
#include "Reply.h"
#include "ShowSpec.h"

namespace stagehost {

/// A property of an object, as it is now.
struct ObjectProperty {
    std::string name;
    std::string value;
};

/// One object of the show as scripts and people see it: a name, a kind, properties, actions, objects below it.
/// All operations may come on any host thread.
class ShowObject {
public:
    ShowObject(ObjectKind kind, std::string name, Conduct conduct);
    virtual ~ShowObject() = default;
    ShowObject(const ShowObject&) = delete;
    ShowObject& operator=(const ShowObject&) = delete;

    ObjectKind Kind() const { return m_kind; }
    const std::string& Name() const { return m_name; }
    Conduct HowItTakesRequests() const { return m_conduct; }

    /// The properties in their order.
    virtual std::vector<ObjectProperty> Properties() const = 0;

    /// One property, or nothing when the object has none of that name.
    virtual std::optional<std::string> Property(const std::string& property) const;

    /// The same as a whole number: 0 for text that is none.
    virtual std::optional<std::int32_t> PropertyAsInt(const std::string& property) const;

    /// @return 0, 66 no such property, 67 it cannot be set, 68 the value is not taken.
    virtual KXPCode SetProperty(const std::string& property, const std::string& value);
    virtual KXPCode SetPropertyAsInt(const std::string& property, std::int32_t value);

    /// Runs an action; the answer is given once, at once or later, on any host thread.
    virtual void Perform(const std::string& action, const Parameters& parameters, const Answer& answer);

    /// What lists tell as the object's value: the type of a variable, otherwise nothing.
    virtual std::string ValueText() const { return {}; }

    /// The object's text when it has one of its own.
    virtual std::optional<std::string> OwnText() const { return std::nullopt; }

private:
    const ObjectKind m_kind;
    const std::string m_name;
    const Conduct m_conduct;
};

using ShowObjectPtr = std::shared_ptr<ShowObject>;

} // namespace stagehost
