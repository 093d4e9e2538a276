#include "ScriptParts.h"

#include <algorithm>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include "HostText.h"
#include "ScriptPlace.h"

namespace {

constexpr qint64 kMostBytes = qint64{64} << 20;
constexpr int kMostParts = 256;

/// A pipe or a device may never come to an end, and is not opened.
QString ReadBytes(const QString& path, QByteArray& bytes) {
    const QFileInfo info(path);
    if (info.exists() && !info.isFile())
        return QStringLiteral("is no regular file");
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return info.exists() ? QStringLiteral("cannot be read") : QStringLiteral("is not there");
    bytes = file.read(kMostBytes + 1);
    return file.error() == QFileDevice::NoError ? QString() : QStringLiteral("cannot be read");
}

QString WithPlainLines(QString text) {
    if (text.startsWith(QChar(0xFEFF)))
        text.remove(0, 1);
    return text.replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(QLatin1Char('\r'), QLatin1Char('\n'));
}

/// Passes over comments, so that the first line of code is found.
class TopOfFile {
public:
    /// @return whether the line still belongs to the top.
    bool Holds(const QString& line) {
        QString rest = line.trimmed();
        while (m_isTop && !rest.isEmpty() && !(!m_inComment && rest.startsWith(QLatin1String("//"))))
            rest = BehindComment(rest);
        return m_isTop;
    }

private:
    QString BehindComment(const QString& rest) {
        if (!m_inComment && !rest.startsWith(QLatin1String("/*"))) {
            m_isTop = false;
            return {};
        }
        const int end = rest.indexOf(QLatin1String("*/"), m_inComment ? 0 : 2);
        m_inComment = end < 0;
        return m_inComment ? QString() : rest.mid(end + 2).trimmed();
    }

    bool m_isTop = true;
    bool m_inComment = false;
};

/// Whether a line, or a text, begins as the leading line of a piece.
bool Leads(const QString& line) {
    return line.startsWith(QLatin1String(KXP_SCRIPT_PART)) ||
           line.startsWith(QLatin1Char(';') + QLatin1String(KXP_SCRIPT_PART));
}

QString Unquoted(const QString& name) {
    const bool quoted = name.size() > 1 && name.startsWith(QLatin1Char('"')) && name.endsWith(QLatin1Char('"'));
    return quoted ? name.mid(1, name.size() - 2) : name;
}

/// Why a name is refused; empty when it is not.
QString WhyNotNamed(const QString& name, const QString& inDriversFolder) {
    if (name.isEmpty())
        return QStringLiteral("@include needs the name of a file");
    if (QDir::isAbsolutePath(name) || name.contains(QLatin1Char(':')) ||
        inDriversFolder.startsWith(QLatin1String("..")))
        return QStringLiteral("\"%1\" is outside of the driver's folder").arg(name);
    return {};
}

} // namespace

ScriptParts::ScriptParts(const QString& driver)
    : m_folder(driver.left(driver.lastIndexOf(QLatin1Char('/')) + 1)) {
    ScriptPart part{driver, driver.mid(m_folder.size()), {}};
    if (Read(part, driver, 0))
        Take(part);
}

QString ScriptParts::Script() const {
    if (m_isAlone)
        return m_driverText;
    QString script;
    for (const ScriptPart& part : m_parts) {
        script += (script.isEmpty() ? QString() : QStringLiteral(";")) + QLatin1String(KXP_SCRIPT_PART) + part.name +
                  QLatin1Char('\n') + part.text;
        if (!part.text.endsWith(QLatin1Char('\n')))
            script += QLatin1Char('\n');
    }
    return script;
}

/// @return false when the driver cannot be put together.
bool ScriptParts::Take(const ScriptPart& part) {
    const QString self = QFileInfo(part.file).canonicalFilePath();
    m_isTaken[self] = false;
    m_open += part.name;
    const std::vector<Include> includes = IncludesOf(part);
    m_isAlone = m_isAlone && includes.empty();
    for (const Include& include : includes) {
        if (!m_problem && !TakeNamed(part, include))
            return false;
    }
    if (m_problem)
        return false;
    m_open.removeLast();
    m_isTaken[self] = true;
    m_parts.push_back(part);
    return true;
}

bool ScriptParts::Read(ScriptPart& part, const QString& namedIn, int line) {
    if (!m_files.contains(part.file))
        m_files += part.file;
    QByteArray bytes;
    const QString problem = ReadBytes(part.file, bytes);
    if (!problem.isEmpty())
        return Fail(namedIn, line, line > 0 ? QStringLiteral("\"%1\" %2").arg(part.name, problem) : problem);
    m_bytes += bytes.size();
    if (m_bytes > kMostBytes)
        return Fail(namedIn, line,
                    line > 0 ? QStringLiteral("the driver's files are larger than %1 MB together").arg(kMostBytes >> 20)
                             : QStringLiteral("is larger than %1 MB").arg(kMostBytes >> 20));
    const QString text = FromScriptBytes(bytes);
    if (m_parts.empty() && m_open.isEmpty())
        m_driverText = text;
    part.text = WithPlainLines(text);
    return true;
}

bool ScriptParts::TakeNamed(const ScriptPart& from, const Include& include) {
    const QString name = QDir::cleanPath(from.name.left(from.name.lastIndexOf(QLatin1Char('/')) + 1) + include.name);
    const QString refused = WhyNotNamed(include.name, name);
    if (!refused.isEmpty())
        return Fail(from.file, include.line, refused);
    ScriptPart part{m_folder + name, name, {}};
    const auto known = m_isTaken.find(QFileInfo(part.file).canonicalFilePath());
    if (known != m_isTaken.end() && known->second)
        return true;
    if (known != m_isTaken.end())
        return Fail(from.file, include.line,
                    QStringLiteral("a circle: ") +
                        (m_open.mid(std::max(0, m_open.indexOf(name))) << name).join(QStringLiteral(" names ")));
    if (static_cast<int>(m_isTaken.size()) >= kMostParts)
        return Fail(from.file, include.line, QStringLiteral("a driver has at most %1 files").arg(kMostParts));
    return Read(part, from.file, include.line) && Take(part);
}

/// A script that is put together already goes on as it is: what it names is in it.
std::vector<ScriptParts::Include> ScriptParts::IncludesOf(const ScriptPart& part) {
    static const QRegularExpression includeLine(QStringLiteral("^\\s*//\\s*@include\\b(.*)$"));
    const bool isDriver = m_open.size() == 1;
    if (isDriver && Leads(part.text))
        return {};
    std::vector<Include> includes;
    TopOfFile top;
    int number = 0;
    for (const QString& line : part.text.split(QLatin1Char('\n'))) {
        ++number;
        const bool isTop = top.Holds(line);
        const auto match = includeLine.match(line);
        if (Leads(line) && !(isDriver && includes.empty()))
            Fail(part.file, number,
                 QStringLiteral("\"// @part\" leads a piece of a script that is put together already"));
        if (!match.hasMatch())
            continue;
        if (!isTop)
            Fail(part.file, number, QStringLiteral("@include belongs in front of the first line of code"));
        includes.push_back(
            {number, Unquoted(match.captured(1).trimmed()).replace(QLatin1Char('\\'), QLatin1Char('/'))});
    }
    return includes;
}

bool ScriptParts::Fail(const QString& file, int line, const QString& text) {
    if (!m_problem)
        m_problem = PartProblem{file, line, text};
    return false;
}
