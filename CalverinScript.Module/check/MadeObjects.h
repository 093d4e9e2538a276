#pragma once

#include <vector>

#include <QHash>
#include <QString>
#include <QStringList>

class ScriptSource;

/// What a script gets from `QCalverin`.
enum class MadeKind { TCP, UDP, HTTP, Resource };

/// A kind as a script sees it.
struct MadeKindView {
    QString description; ///< "a TCP client"
    QStringList events;  ///< that it raises
    QStringList members;
};

const MadeKindView& ViewOf(MadeKind kind);

/// A place where a script makes an object.
struct Making {
    MadeKind kind = MadeKind::TCP;
    int call = 0;   ///< the place of `QCalverin`
    int target = 0; ///< the place of the name that takes the object; 0 for none
};

/// The places where a script makes objects, and what its names therefore stand for. A pure function of the text.
class MadeObjects {
public:
    explicit MadeObjects(const ScriptSource& source);

    const std::vector<Making>& Makings() const { return m_makings; }

    /// The kind of object that a name stands for wherever the script uses it; null when that is not sure.
    const MadeKind* KindOf(const QString& name) const;

private:
    void LookAt(const ScriptSource& source, int place);
    void Unsettle(const ScriptSource& source);

    std::vector<Making> m_makings;
    QHash<QString, MadeKind> m_kinds;
};
