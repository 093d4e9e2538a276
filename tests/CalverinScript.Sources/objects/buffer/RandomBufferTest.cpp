#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <random>

#include "ByteArrayClass.h"
#include "ScriptFixture.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

/// What a Buffer is to do, written for plain vectors and without a look at the real one.
struct Model {
    static constexpr const char* kEncodings[] = {"utf8", "ascii", "base64", "hex", "other"};

    static std::string Hex(const Bytes& bytes) {
        std::string text;
        for (std::uint8_t byte : bytes)
            for (int digit : {byte / 16, byte % 16})
                text += "0123456789abcdef"[digit];
        return text;
    }

    static std::string Base64(const Bytes& bytes) {
        static constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        std::string text;
        for (std::size_t i = 0; i < bytes.size(); i += 3) {
            const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
            unsigned group = 0;
            for (std::size_t k = 0; k < 3; ++k)
                group = group * 256 + (k < count ? bytes[i + k] : 0u);
            for (std::size_t k = 0; k < 4; ++k)
                text += k <= count ? kDigits[(group >> (18 - 6 * k)) & 63] : '=';
        }
        return text;
    }

    static std::string UntilZero(const Bytes& bytes, unsigned mask) {
        std::string text;
        for (std::uint8_t byte : bytes) {
            if ((byte & mask) == 0)
                break;
            text += static_cast<char>(byte & mask);
        }
        return text;
    }

    static QString Text(const Bytes& bytes, const std::string& encoding) {
        if (encoding == "hex")
            return QString::fromStdString(Hex(bytes));
        if (encoding == "base64")
            return QString::fromStdString(Base64(bytes));
        return QString::fromStdString(UntilZero(bytes, encoding == "ascii" ? 127u : 255u));
    }

    static Bytes Slice(const Bytes& bytes, long from, long to) {
        const long size = static_cast<long>(bytes.size());
        from = std::clamp(from, 0L, size);
        to = std::clamp(to, from, size);
        return Bytes(bytes.begin() + from, bytes.begin() + to);
    }
};

/// One Buffer in a script and its model, and a step of each kind that changes both and compares what they give.
class RandomBuffer : public ScriptFixture {
public:
    RandomBuffer() {
        Run("var b = new Buffer(), t = new Buffer()");
        calls = engine.evaluate(
            QStringLiteral("({get: function (i) { return b[i] }, set: function (i, v) { b[i] = v }, size: function (n) "
                           "{ b.length = n },"
                           " text: function (e, s, n) { return b.toString(e, s, n) },"
                           " left: function (n) { return b.left(n).toString('hex') },"
                           " right: function (n) { return b.right(n).toString('hex') },"
                           " middle: function (p, n) { return b.middle(p, n).toString('hex') },"
                           " fill: function (v, s, n) { b.fill(v, s, n) }, write: function (x, o, n, e) { return "
                           "b.write(x, o, n, e) },"
                           " copy: function (p, s, n) { b.copy(t, p, s, n); return t.toString('hex') },"
                           " self: function (p, s, n) { b.copy(b, p, s, n) },"
                           " make: function (x, e) { b = new Buffer(x, e) }, array: function (a) { t = new Buffer(a) },"
                           " join: function (n) { b = b.concat([b, 'no', t, b], n) }})"));
    }

    QScriptValue Call(const char* name, const QScriptValueList& arguments) {
        return calls.property(QString::fromLatin1(name)).call(calls, arguments);
    }

    long Pick(long from, long to) { return std::uniform_int_distribution<long>(from, to)(random); }
    /// A position around the bytes, often one that scripts should not give.
    int Position() {
        static constexpr std::array<int, 6> kOdd = {-1, -2147483647 - 1, 2147483647, 0, -300, 1000000};
        return Pick(0, 3) == 0 ? kOdd[static_cast<std::size_t>(Pick(0, 5))] : static_cast<int>(Pick(-3, Size() + 5));
    }
    long Size() const { return static_cast<long>(bytes.size()); }
    std::string Encoding() { return Model::kEncodings[Pick(0, 4)]; }
    static QScriptValue Js(const std::string& text) { return QScriptValue(QString::fromStdString(text)); }
    long EndOf(int end) const { return end < 0 ? Size() : end; }
    Bytes RandomBytes(long most) {
        Bytes some(static_cast<std::size_t>(Pick(0, most)));
        for (std::uint8_t& byte : some)
            byte = static_cast<std::uint8_t>(Pick(0, 255));
        return some;
    }
    /// A text in an encoding, and the bytes that it stands for.
    std::pair<std::string, Bytes> RandomText(const std::string& encoding) {
        Bytes some = RandomBytes(40);
        if (encoding == "hex")
            return {Model::Hex(some), some};
        if (encoding == "base64")
            return {Model::Base64(some), some};
        for (std::uint8_t& byte : some)
            byte = static_cast<std::uint8_t>('a' + byte % 26);
        return {std::string(some.begin(), some.end()), some};
    }

    void Get();
    void Set();
    void Resize();
    void ToText();
    void Cut();
    void Fill();
    void Write();
    void Copy();
    void CopyWithin();
    void Make();
    void Join();
    void CopyOver(Bytes& target, const Bytes& source, int to, int from, int end);

    std::mt19937 random{20240229};
    QScriptValue calls;
    Bytes bytes;
    Bytes target;
};

void RandomBuffer::Get() {
    const int index = Position();
    const QScriptValue got = Call("get", {QScriptValue(index)});
    if (index >= 0 && index < Size())
        ASSERT_EQ(got.toInt32(), bytes[static_cast<std::size_t>(index)]);
    else
        ASSERT_TRUE(got.isUndefined());
}

void RandomBuffer::Set() {
    const auto index = static_cast<std::size_t>(Pick(0, Size() + 2));
    const long value = Pick(-1000, 1000);
    Call("set", {QScriptValue(static_cast<int>(index)), QScriptValue(static_cast<int>(value))});
    bytes.resize(std::max(bytes.size(), index + 1));
    bytes[index] = static_cast<std::uint8_t>(value & 255);
}

void RandomBuffer::Resize() {
    const int size = static_cast<int>(Pick(-5, 120));
    Call("size", {QScriptValue(size)});
    bytes.resize(static_cast<std::size_t>(std::max(size, 0)));
}

void RandomBuffer::ToText() {
    const std::string encoding = Encoding();
    const int start = Position();
    const int end = Position();
    const long from = std::max(start, 0);
    const Bytes slice = Model::Slice(bytes, from, std::max(EndOf(end), from));
    const QString got = Call("text", {Js(encoding), QScriptValue(start), QScriptValue(end)}).toString();
    ASSERT_EQ(got, Model::Text(slice, encoding)) << encoding << ' ' << start << ' ' << end;
}

void RandomBuffer::Cut() {
    const int count = Position();
    const int position = Position();
    const long many = count < 0 ? Size() : count;
    ASSERT_EQ(Call("left", {QScriptValue(count)}).toString().toStdString(), Model::Hex(Model::Slice(bytes, 0, many)));
    ASSERT_EQ(Call("right", {QScriptValue(count)}).toString().toStdString(),
              Model::Hex(Model::Slice(bytes, Size() - many, Size())));
    const long from = std::max(position, 0);
    ASSERT_EQ(Call("middle", {QScriptValue(position), QScriptValue(count)}).toString().toStdString(),
              Model::Hex(Model::Slice(bytes, from, from + many)));
}

void RandomBuffer::Fill() {
    const int start = Position();
    const int end = Position();
    const int value = static_cast<int>(Pick(-300, 300));
    Call("fill", {QScriptValue(value), QScriptValue(start), QScriptValue(end)});
    for (long i = std::max(start, 0); i < std::min(EndOf(end), Size()); ++i)
        bytes[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(value & 255);
}

void RandomBuffer::Write() {
    const std::string encoding = Encoding();
    const auto [text, encoded] = RandomText(encoding);
    const int offset = Position();
    const int length = Position();
    const long from = std::clamp<long>(offset, 0, Size());
    const long whole = static_cast<long>(encoded.size());
    const long count = std::min({length < 0 ? whole : std::min<long>(length, whole), Size() - from});
    const QScriptValue got = Call("write", {Js(text), QScriptValue(offset), QScriptValue(length), Js(encoding)});
    ASSERT_EQ(got.toInt32(), count) << encoding << ' ' << offset << ' ' << length;
    std::copy_n(encoded.begin(), count, bytes.begin() + from);
}

void RandomBuffer::CopyOver(Bytes& to, const Bytes& source, int targetStart, int sourceStart, int sourceEnd) {
    const long size = static_cast<long>(source.size());
    const Bytes slice = Model::Slice(source, sourceStart, sourceEnd < 0 ? size : sourceEnd);
    const std::size_t start = static_cast<std::size_t>(std::max(targetStart, 0));
    for (std::size_t i = 0; i < slice.size() && start + i < to.size(); ++i)
        to[start + i] = slice[i];
}

void RandomBuffer::Copy() {
    const int to = Position();
    const int from = Position();
    const int end = Position();
    CopyOver(target, bytes, to, from, end);
    ASSERT_EQ(Call("copy", {QScriptValue(to), QScriptValue(from), QScriptValue(end)}).toString().toStdString(),
              Model::Hex(target));
}

void RandomBuffer::CopyWithin() {
    const int to = Position();
    const int from = Position();
    const int end = Position();
    const Bytes before = bytes;
    CopyOver(bytes, before, to, from, end);
    Call("self", {QScriptValue(to), QScriptValue(from), QScriptValue(end)});
}

void RandomBuffer::Make() {
    const std::string encoding = Encoding();
    const auto [text, encoded] = RandomText(encoding);
    Call("make", {Js(text), Js(encoding)});
    bytes = encoded;
    target = RandomBytes(30);
    QScriptValue array = engine.newArray();
    for (std::size_t i = 0; i < target.size(); ++i)
        array.setProperty(static_cast<quint32>(i), QScriptValue(target[i] + 256 * static_cast<int>(Pick(-2, 2))));
    Call("array", {array});
}

void RandomBuffer::Join() {
    const int total = Size() > 100 ? static_cast<int>(Pick(0, 100)) : Position();
    Bytes joined = bytes;
    joined.insert(joined.end(), target.begin(), target.end());
    joined.insert(joined.end(), bytes.begin(), bytes.end());
    bytes = Model::Slice(joined, 0, total < 0 ? static_cast<long>(joined.size()) : total);
    Call("join", {QScriptValue(total)});
}

TEST_F(RandomBuffer, DoesWhatAnIndependentModelDoes) {
    using Step = void (RandomBuffer::*)();
    static constexpr Step kSteps[] = {&RandomBuffer::Get,    &RandomBuffer::Set,  &RandomBuffer::Resize,
                                      &RandomBuffer::ToText, &RandomBuffer::Cut,  &RandomBuffer::Fill,
                                      &RandomBuffer::Write,  &RandomBuffer::Copy, &RandomBuffer::CopyWithin,
                                      &RandomBuffer::Make,   &RandomBuffer::Join};
    constexpr int kCases = 100000;
    for (int i = 0; i < kCases; ++i) {
        const auto step = static_cast<std::size_t>(Pick(0, std::size(kSteps) - 1));
        (this->*kSteps[step])();
        const QByteArray* real = ByteArrayClass::BytesOf(engine.globalObject().property(QStringLiteral("b")));
        ASSERT_FALSE(HasFatalFailure()) << "case " << i << ", step " << step;
        ASSERT_EQ(Bytes(real->begin(), real->end()), bytes) << "case " << i << ", step " << step;
        ASSERT_FALSE(engine.hasUncaughtException()) << "case " << i << ", step " << step;
    }
}

} // namespace
