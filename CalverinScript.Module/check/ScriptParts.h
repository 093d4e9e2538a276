#pragma once

#include <map>
#include <optional>
#include <vector>

#include <QString>
#include <QStringList>

/// One file of a driver.
struct ScriptPart {
    QString file; ///< its path, in the driver's folder as that was named
    QString name; ///< relative to the driver's folder
    QString text; ///< lines end with "\n"
};

/// Why a driver cannot be put together.
struct PartProblem {
    QString file; ///< where it is told: the file that is bad, or the one that names it
    int line = 0; ///< of the name; 0 when the driver's file itself is bad
    QString text;
};

/// A driver with the files that go in front of it, as one script.
///
/// A file names others in comment lines at its top, "// @include NAME", in front of the first line that is neither
/// blank nor comment. Names are relative to the file's folder and stay inside the driver's. What is named goes in front
/// of what names it, in the order of the lines, and goes in once.   [any]
class ScriptParts {
public:
    /// Reads the driver and all that it names: regular files, 64 MB together at most.
    explicit ScriptParts(const QString& driver);

    const std::optional<PartProblem>& Problem() const { return m_problem; }

    /// The paths of all files that were looked for, also of those that are not there; the driver is the first.
    const QStringList& Files() const { return m_files; }

    /// The files in the order in which they go into the script; the driver is the last.
    const std::vector<ScriptPart>& Parts() const { return m_parts; }

    /// The script: the driver's text as it is when it stands alone, otherwise all texts, each behind its leading line.
    QString Script() const;

private:
    struct Include {
        int line;
        QString name;
    };

    bool Take(const ScriptPart& part);
    bool Read(ScriptPart& part, const QString& namedIn, int line);
    bool TakeNamed(const ScriptPart& from, const Include& include);
    std::vector<Include> IncludesOf(const ScriptPart& part);
    bool Fail(const QString& file, int line, const QString& text);

    QString m_folder; ///< of the driver, as it was named, with "/" at its end; empty for the working folder
    QStringList m_files;
    std::vector<ScriptPart> m_parts;
    std::optional<PartProblem> m_problem;
    std::map<QString, bool> m_isTaken; ///< by the file's own path: false while what it names is being taken
    QStringList m_open;                ///< the names on the way to the file that is being taken
    qint64 m_bytes = 0;
    bool m_isAlone = true;
    QString m_driverText; ///< as it is in the file
};
