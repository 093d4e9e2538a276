#pragma once

#include <cstdarg>
#include <cstdint>
#include <memory>
#include <string_view>

/// The 8-bit string of the host's side: a heap buffer with a length and a capacity. It knows of no encoding; upper and
/// lower case concern the ASCII letters alone, and texts are compared byte by byte.
///
/// A string either has a buffer, which then ends in a NUL at the length, or none; without one it reads as the empty
/// text. A new string and a cleared one have none, a string made from "" has one.
///
/// Positions count from 0. A null text counts as an empty one, unless something else is said. Texts passed in may be
/// parts of the string itself. Nothing throws or logs: bad positions give false, -1 or an empty result. Numbers are
/// written and read with a decimal point, whatever the locale of the process. A string belongs to one thread at a time.
class MString {
public:
    /// Significant digits of a double that is appended.
    static constexpr std::int32_t kDoubleDigits = 15;

    MString() = default;
    MString(const char* text);
    /// At most maxChars of text; none for a maximum below 1.
    MString(const char* text, std::int32_t maxChars);
    MString(const MString& other);
    MString(MString&& other) noexcept;
    explicit MString(std::int32_t value);
    /// In the shorter of plain and exponent notation.
    explicit MString(double value, std::int32_t significantDigits = kDoubleDigits);
    /// With `fixed` in plain notation with that many decimals, after a nudge of 1e-15 away from zero that makes up for
    /// decimal fractions a double cannot hold. Without, as the constructor above.
    MString(double value, std::int32_t decimals, bool fixed);

    /// Frees the buffer.
    virtual void Clear();

    // Appending: what does not fit moves to a buffer of twice the new size. An empty text changes nothing.
    virtual void Append(const char* text);
    virtual void Append(const char* text, std::int32_t maxChars);
    virtual void Append(char character); ///< a NUL is no character of a text and is left out
    virtual void Append(const MString& other);

    /// An upper estimate, by fixed sizes, of what Format would need with terminator; 0 for a null format. Texts among
    /// the arguments must be terminated. The arguments may be used again.
    virtual std::int32_t GetFormatLength(const char* format, va_list arguments) const;

    /// Moves to a buffer of exactly the needed size.
    virtual void Compact();
    virtual ~MString();

    /// A copy on the heap, for the caller to delete.
    virtual MString* Clone() const;

    /// Never null. Valid until the string changes.
    virtual const char* c_str() const;
    virtual std::int32_t GetLength() const;

    // Assigning takes a new buffer of exactly the needed size. A null text clears.
    virtual MString& operator=(const MString& other);
    virtual MString& operator=(const char* text);
    virtual MString& operator+=(const MString& other);
    virtual MString& operator+=(double value);
    virtual MString& operator+=(std::int32_t value);
    virtual MString& operator+=(char character);
    virtual MString& operator+=(const char* text);
    virtual MString operator+(const MString& other) const;
    virtual MString operator+(double value) const;
    virtual MString operator+(std::int32_t value) const;
    virtual MString operator+(const char* text) const;

    virtual bool operator==(const char* text) const;
    virtual bool operator==(const MString& other) const;
    virtual bool operator!=(const char* text) const;
    virtual bool operator!=(const MString& other) const;

    // Both are false when either string has no buffer.
    virtual bool operator<(const MString& other) const;
    virtual bool operator>=(const MString& other) const;

    // The negations of the two above, and so both true when either string has no buffer.
    virtual bool IsNotLess(const MString& other) const;
    virtual bool IsNotGreaterOrEqual(const MString& other) const;

    /// Into the buffer, or to an empty text for an index outside.
    virtual const char* CharPointerAt(std::int32_t index) const;

    /// The buffer, null without one. Whoever writes to it keeps the length.
    virtual char* GetBuffer() const;
    virtual bool IsNotEmpty() const;

    /// The same to write to. What is written to the empty text that stands for an index outside is lost.
    virtual char* CharPointerAt(std::int32_t index);

    /// The first place of text at or after a position, -1 when there is none. A null text is never found; an empty one
    /// is found at `from` itself, in a string with a buffer.
    virtual std::int32_t Find(const char* text, std::int32_t from) const;
    virtual std::int32_t Find(const char* text) const;

    /// The nearest place of a character at or after `from`, or, backward, at or before it. A backward search never
    /// looks at position 0. -1 when there is none.
    virtual std::int32_t FindChar(char character, std::int32_t from, bool backward) const;

    /// The same from the beginning, or, backward, from the end.
    virtual std::int32_t FindChar(char character, bool backward) const;

    /// Clears, and takes a buffer of that many bytes with an empty text; none for a number below 1.
    virtual void Reserve(std::int32_t bytes);

    /// @return false when the position is not within the text or at its end.
    virtual bool Insert(const char* text, std::int32_t position);

    /// Removes up to the end when count goes past it. @return false for a position outside and a negative count.
    virtual bool Remove(std::int32_t position, std::int32_t count);

    /// Replaces every `old`, going on behind each new text. @return the number of replacements, 0 for an empty `old`.
    virtual std::int32_t ReplaceAll(const char* old, const char* replacement);

    /// Remove, then Insert. @return false, and nothing changed, where Remove fails.
    virtual bool Replace(std::int32_t position, std::int32_t count, const char* text);

    // The number of changed characters.
    virtual std::int32_t ToUpper();
    virtual std::int32_t ToLower();

    // The number at the beginning, 0 without one.
    virtual std::int32_t ToInt() const;
    virtual double ToDouble() const;

    // All return the number of characters removed. With `all` false spaces and control characters go (all bytes below
    // 33), with `all` true blanks alone. A trim at the right never removes the character at position 0.
    virtual std::int32_t Trim(bool all);
    virtual std::int32_t TrimLeft(bool all);
    virtual std::int32_t TrimRight(bool all);
    virtual std::int32_t Trim(char character);
    virtual std::int32_t TrimLeft(char character);
    virtual std::int32_t TrimRight(char character);

    /// Up to count characters from a position; a string without a buffer when there are none.
    virtual MString Mid(std::int32_t position, std::int32_t count) const;

    /// @return the number of swaps.
    virtual std::int32_t Reverse();

    /// A copy of the text, "" without a buffer, for the caller to free().
    virtual char* Duplicate() const;

    /// Prints, in the way of printf. The arguments may use the string's own text. A null format, one that writes to
    /// memory ("%n"), numbers its arguments ("%1$d") or cannot be printed, and widths beyond a million, clear the
    /// string instead.
    /// @return the printed length, 0 when the string was cleared.
    [[gnu::format(printf, 2, 3)]] virtual std::int32_t Format(const char* format, ...);

    /// At most maxChars of text; none for a maximum below 1.
    virtual void Assign(const char* text, std::int32_t maxChars);

    /// A text of a module's table, by the loader set below. @return false, and the string cleared, when there is none.
    virtual bool LoadResource(void* module, std::uint32_t id);

    /// True when all characters are digits or '-', or '.' unless
    /// integerOnly: "" is numeric, a string without a buffer is not.
    virtual bool IsNumeric(bool integerOnly) const;

    // The same as the operations without "Chain", returning the string itself, so that calls can follow one another.
    virtual MString& ChainAppend(const char* text);
    virtual MString& ChainAppend(const char* text, std::int32_t maxChars);
    virtual MString& ChainInsert(const char* text, std::int32_t position);
    virtual MString& ChainRemove(std::int32_t position, std::int32_t count);
    virtual MString& ChainReplaceAll(const char* old, const char* replacement);
    virtual MString& ChainReplace(std::int32_t position, std::int32_t count, const char* text);
    virtual MString& ChainToUpper();
    virtual MString& ChainToLower();
    virtual MString& ChainTrim(bool all);
    virtual MString& ChainTrimLeft(bool all);
    virtual MString& ChainTrimRight(bool all);
    virtual MString& ChainTrim(char character);
    virtual MString& ChainTrimLeft(char character);
    virtual MString& ChainTrimRight(char character);
    virtual MString& ChainReverse();

    MString& operator=(MString&& other) noexcept;

    /// Bytes of the buffer, 0 without one.
    std::int32_t GetCapacity() const { return m_capacity; }

    /// The text of a module's table: writes at most size - 1 characters and a NUL to buffer.
    /// @return the number of characters written, 0 or less when the module has no such text.
    using ResourceLoader = std::int32_t (*)(void* module, std::uint32_t id, char* buffer, std::int32_t size);

    /// Sets where LoadResource finds its texts; null finds none. A loaded text that fills its buffer of 1024 bytes is
    /// asked for again with 1024 more, up to 1 MB.   [thread: any]
    static void SetResourceLoader(ResourceLoader loader);

private:
    std::string_view View() const { return {c_str(), static_cast<std::size_t>(m_length)}; }
    bool Holds(const char* text) const; // within the buffer
    void TakeText(std::string_view text);
    void AppendText(std::string_view text);
    bool InsertText(std::string_view text, std::int32_t position);
    void RemoveText(std::int32_t position, std::int32_t count);
    std::int32_t FormatArguments(const char* format, va_list arguments);

    template <class Predicate>
    std::int32_t CutLeft(Predicate removable);
    template <class Predicate>
    std::int32_t CutRight(Predicate removable);
    template <class Change>
    std::int32_t ChangeCharacters(Change change);

    std::unique_ptr<char[]> m_buffer; // null or terminated at m_length
    std::int32_t m_capacity = 0;
    std::int32_t m_length = 0;
};
