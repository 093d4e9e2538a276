#pragma once

#include <QColor>

#include <cstddef>

/// Every colour of the editor and of its highlighter. All of them are made for dark text on white, so the editor also
/// fixes those two and follows neither a dark palette nor a dark style sheet of its host.

/// What a colour of the highlighter is for. The numbers are the keys of Highlighter::setColor; 9 to 11 are not used.
enum class ScriptColor : int {
    Normal = 1,
    Comment = 2,
    Number = 3,
    String = 4, ///< regular expressions too
    Operator = 5,
    Identifier = 6, ///< kept in the table, never applied: names are Normal, as blanks and brackets are
    Keyword = 7,
    BuiltIn = 8,
    Marker = 12, ///< background of marked text
};

struct ScriptColorEntry {
    ScriptColor role;
    QRgb color;
};

inline constexpr ScriptColorEntry kScriptColors[] = {
    {ScriptColor::Normal, 0xFF000000},  {ScriptColor::Comment, 0xFF008000},  {ScriptColor::Number, 0xFFFF0000},
    {ScriptColor::String, 0xFF808080},  {ScriptColor::Operator, 0xFF000000}, {ScriptColor::Identifier, 0xFF000000},
    {ScriptColor::Keyword, 0xFF000080}, {ScriptColor::BuiltIn, 0xFF008080},  {ScriptColor::Marker, 0xFF000000},
};
static_assert(sizeof(kScriptColors) / sizeof(kScriptColors[0]) == 9, "nine roles have a colour");

/// The editor's own surfaces. The current line is a light tint of blue, see CodeEditor.
inline constexpr QRgb kGutterBackground = 0xFFE1E1E1;
inline constexpr QRgb kGutterText = 0xFF002446;
inline constexpr QRgb kPaper = 0xFFFFFFFF;
inline constexpr QRgb kInk = 0xFF000000;
inline constexpr QRgb kInkWhenDisabled = 0xFF808080;
inline constexpr Qt::GlobalColor kCurrentLineBase = Qt::blue;
inline constexpr int kCurrentLineLighter = 180; ///< percent, as QColor::lighter takes it
