#pragma once

#include <QString>

#include "ValueSpec.h"

namespace stagehost {

struct XmlElement;

/// What one setting of a driver takes, as its `Setting` element in a setup text says: type, limits, items, field.
/// Values are given in the text form of the type, those of an enumeration by the item, those of a check box also by
/// "true" and "false".   [any]
class SettingRule {
public:
    explicit SettingRule(const XmlElement& setting);

    /// Why somebody may not enter a text: "takes 0 to 100, not 500". Empty when it may be entered.
    QString ComplaintAbout(const QString& text) const;

    /// A text that is taken, as the setup keeps it: an enumeration by its index, a number without blanks around it.
    QString Stored(const QString& text) const;
    /// What the setup keeps, as people write it.
    QString Shown(const QString& stored) const;

    /// The setting with what it takes, for lists: "channel (1 to 512)".
    QString Words() const;

private:
    QString Taken() const;
    QString Plain(const QString& text) const;

    ValueSpec m_spec;
    bool m_isCheckBox;
};

} // namespace stagehost
