#include <kelCore/recording/internal/kelFrameText.h>

#include <kelCore/data/CSynchronizer.h>
#include <kelCore/recording/internal/kelAttributeOrder.h>
#include <kelCore/recording/kelDataFlowRecord.h>

#include <QRect>

#include <algorithm>
#include <charconv>

namespace {

using kelDataFlow::FrameOutline;

/// Puts text behind a byte array. It asks for room once for many small pieces: a frame has some hundred.
class Pen
{
public:
    explicit Pen(QByteArray &text) : m_text(text), m_size(text.size()) { }
    ~Pen() { m_text.resize(m_size); }
    Pen(const Pen &) = delete;
    Pen &operator=(const Pen &) = delete;

    void put(std::string_view piece)
    {
        piece.copy(room(piece.size()), piece.size());
        m_size += static_cast<int>(piece.size());
    }

    template <class Integer> void putNumber(Integer number)
    {
        constexpr size_t digits = 24;
        char *const begin = room(digits);
        m_size += static_cast<int>(std::to_chars(begin, begin + digits, number).ptr - begin);
    }

    /// An attribute's value.
    void putValue(const QString &value)
    {
        const auto *const units = reinterpret_cast<const ushort *>(value.constData());
        for (int i = 0; i < value.size();) {
            const int begin = i;
            while (i < value.size() && isItself(units[i]))
                ++i;
            char *at = room(static_cast<size_t>(i - begin));
            for (int k = begin; k < i; ++k)
                *at++ = static_cast<char>(units[k]);
            m_size += i - begin;
            if (i < value.size())
                i += putSpecial(value, i);
        }
    }

private:
    static bool isItself(ushort c)
    {
        return c >= 0x20 && c < 0x7f && c != '<' && c != '"' && c != '&' && c != '>';
    }

    /// Room for that many bytes behind the text.
    char *room(size_t size)
    {
        const int wanted = m_size + static_cast<int>(size);
        if (wanted > m_text.size())
            m_text.resize(std::max(2 * wanted, 4096));
        return m_text.data() + m_size;
    }

    /// One character that is not simply itself. \return how many units of UTF-16 it takes.
    int putSpecial(const QString &value, int i)
    {
        const QChar c = value.at(i);
        switch (c.unicode()) {
        case '<':
            put("&lt;");
            return 1;
        case '"':
            put("&quot;");
            return 1;
        case '&':
            put("&amp;");
            return 1;
        case '>':
            put(i >= 2 && value.at(i - 1) == QLatin1Char(']') && value.at(i - 2) == QLatin1Char(']') ? "&gt;"
                                                                                                     : ">");
            return 1;
        case '\n':
            put("&#xa;");
            return 1;
        case '\r':
            put("&#xd;");
            return 1;
        case '\t':
            put("&#x9;");
            return 1;
        }
        const bool pair = c.isHighSurrogate() && i + 1 < value.size() && value.at(i + 1).isLowSurrogate();
        // XML cannot carry what is neither a pair nor a character of its own.
        const bool forbidden = !pair && (c.unicode() < 0x20 || c.isSurrogate() || c.unicode() >= 0xfffe);
        const QByteArray bytes =
            forbidden ? QByteArrayLiteral("\xef\xbf\xbd") : value.mid(i, pair ? 2 : 1).toUtf8();
        put({bytes.constData(), static_cast<size_t>(bytes.size())});
        return pair ? 2 : 1;
    }

    QByteArray &m_text;
    int m_size; ///< of the text; the array is larger while the pen lives
};

/// Distance between inclusive corner coordinates, plus one. Coordinates at the ends of the range wrap around.
int extent(int first, int last)
{
    return static_cast<int>(static_cast<unsigned>(last) - static_cast<unsigned>(first) + 1u);
}

void putObject(Pen &pen, const kelDataFlowRecord &object)
{
    pen.put("  <Data dataType=\"");
    pen.putValue(object.dataType);
    const QVariantMap &map = object.properties;
    if (map.isEmpty())
        return pen.put("\"/>\n");
    pen.put("\">\n");
    const QRect box = map.cbegin().value().toRect(); // of the first entry, whichever is written
    for (auto it = map.cbegin(); it != map.cend(); ++it) {
        const char *const type = it.value().typeName();
        pen.put("   <entry key=\"");
        pen.putValue(it.key());
        pen.put("\" type=\"");
        if (qstrcmp(type, "QRect") != 0) {
            pen.putValue(QString::fromLatin1(type));
            pen.put("\" value=\"\"/>\n");
            continue;
        }
        pen.put("QRect\" value=\"");
        pen.putNumber(box.left());
        pen.put(" ");
        pen.putNumber(box.top());
        pen.put(" ");
        pen.putNumber(extent(box.left(), box.right()));
        pen.put(" ");
        pen.putNumber(extent(box.top(), box.bottom()));
        pen.put("\"/>\n");
    }
    pen.put("  </Data>\n");
}

bool isNameStart(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_'; }

bool isNamePart(char c) { return isNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.'; }

/// Takes a name off the front of `text`; empty where there is none.
std::string_view takeName(std::string_view &text)
{
    size_t length = 0;
    if (!text.empty() && isNameStart(text[0]))
        while (length < text.size() && isNamePart(text[length]))
            ++length;
    const std::string_view name = text.substr(0, length);
    text.remove_prefix(length);
    // What begins with "xml" means something to parsers.
    if (name.size() >= 3 && (name[0] | 32) == 'x' && (name[1] | 32) == 'm' && (name[2] | 32) == 'l')
        return {};
    return name;
}

/// The length of the UTF-8 sequence at the front of `text` if it is one that XML can carry; 0 otherwise.
size_t sequenceLength(std::string_view text)
{
    const auto byte = [&text](size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned first = byte(0);
    const size_t length = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
    if (first < 0xc2 || first > 0xf4 || text.size() < length)
        return 0;
    unsigned code = first & (0xffu >> (length + 1));
    for (size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xc0u) != 0x80)
            return 0;
        code = code << 6 | (byte(i) & 0x3fu);
    }
    const bool shortest = length == 2 || code >= (length == 3 ? 0x800u : 0x10000u);
    const bool allowed =
        code <= 0x10ffff && (code < 0xd800 || code > 0xdfff) && code != 0xfffe && code != 0xffff;
    return shortest && allowed ? length : 0;
}

/// The length of the attribute value at the front of `text`, up to its closing quote; -1 where it is not
/// written as `Pen::putValue` writes it.
qint64 valueLength(std::string_view text)
{
    static constexpr std::string_view references[] = {"&lt;", "&quot;", "&amp;", "&#xa;", "&#xd;", "&#x9;"};
    size_t i = 0;
    while (i < text.size()) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (c == '"')
            return qint64(i);
        const bool endsSection = i >= 2 && text[i - 1] == ']' && text[i - 2] == ']';
        if (c == '<' || c < 0x20 || (c == '>' && endsSection))
            return -1;
        size_t length = 1;
        if (c == '&') {
            const std::string_view rest = text.substr(i);
            length = endsSection && rest.substr(0, 4) == "&gt;" ? 4 : 0;
            for (const std::string_view reference : references)
                if (rest.substr(0, reference.size()) == reference)
                    length = reference.size();
        } else if (c >= 0x80) {
            length = sequenceLength(text.substr(i));
        }
        if (length == 0)
            return -1;
        i += length;
    }
    return -1;
}

/// The value of an attribute of a tag that is known to be well-formed, as it is written; empty where there is
/// none.
std::string_view attribute(std::string_view tag, std::string_view name)
{
    size_t at = tag.find(' ');
    while (at != std::string_view::npos && tag[at] == ' ') {
        const size_t equals = tag.find('=', at);
        const size_t end = tag.find('"', equals + 2);
        if (tag.substr(at + 1, equals - at - 1) == name)
            return tag.substr(equals + 2, end - equals - 2);
        at = end + 1;
    }
    return {};
}

/// A number as the recording writes it, an unsigned 32-bit one; 0 for anything else.
quint32 numberOf(std::string_view tag, std::string_view name)
{
    const std::string_view text = attribute(tag, name);
    quint32 number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? number : 0;
}

/// The parts of a time stamp as milliseconds since the epoch, UTC.
qint64 timeOf(std::string_view tag)
{
    const auto part = [tag](std::string_view name) { return static_cast<int>(numberOf(tag, name)); };
    const int year = part("timeYear");
    const int month = part("timeMonth");
    const int hour = part("timeHour"), minute = part("timeMin"), second = part("timeSec"),
              ms = part("timeMs");
    if (!QDate::isValid(year, month, part("timeDay")) || !QTime::isValid(hour, minute, second, ms))
        return FrameOutline::noTime;
    const qint64 day = QDate(year, month, part("timeDay")).toJulianDay() - 2440588; // of 1970-01-01
    return (((day * 24 + hour) * 60 + minute) * 60 + second) * 1000 + ms;
}

} // namespace

void kelDataFlow::appendFrameText(QByteArray &text, const CSynchronizer &stamp,
                                  const std::vector<kelDataFlowRecord> &objects)
{
    const QDateTime dateTime = stamp.getDateTime();
    const QDate date = dateTime.date();
    const QTime time = dateTime.time();
    const std::pair<std::string_view, int> parts[] = {
        {"\" timeYear=\"", date.year()}, {"\" timeMonth=\"", date.month()}, {"\" timeDay=\"", date.day()},
        {"\" timeHour=\"", time.hour()}, {"\" timeMin=\"", time.minute()},  {"\" timeSec=\"", time.second()},
        {"\" timeMs=\"", time.msec()},
    };
    Pen pen(text);
    pen.put(" <Frame frameNumber=\"");
    pen.putNumber(stamp.getFrameNumber());
    pen.put("\">\n  <Parameters file=\"/myfile/param.txt\"/>\n  <Synchronization frameID=\"");
    pen.putNumber(stamp.getFrameNumber());
    for (const auto &[before, number] : parts) {
        pen.put(before);
        pen.putNumber(static_cast<quint32>(number)); // -1 as 4294967295: numbers are unsigned
    }
    pen.put("\"/>\n");
    for (const kelDataFlowRecord &object : objects)
        putObject(pen, object);
    pen.put(" </Frame>\n");
}

kelDataFlow::FrameWalker::FrameWalker(qint64 offset)
    : m_offset(offset), m_lineOffset(offset), m_goodEnd(offset), m_started(offset > 0)
{
    if (m_started)
        m_open.emplace_back("DataFlow");
}

bool kelDataFlow::FrameWalker::takeLine(std::string_view line)
{
    const qint64 lineOffset = std::exchange(m_lineOffset, m_offset);
    if (m_closed)
        return false;
    size_t depth = 0;
    while (depth < line.size() && line[depth] == ' ')
        ++depth;
    std::string_view tag = line.substr(depth);
    if (tag.size() < 3 || tag.front() != '<' || tag.back() != '>')
        return false;

    if (tag[1] == '/') {
        if (m_open.empty() || m_empty || depth != m_open.size() - 1
            || tag.substr(2, tag.size() - 3) != m_open.back())
            return false;
        m_open.pop_back();
        m_closed = depth == 0;
    } else {
        if (depth != m_open.size())
            return false;
        std::string_view rest = tag.substr(1, tag.size() - 2);
        const bool leaf = rest.back() == '/';
        rest.remove_suffix(leaf ? 1 : 0);
        const std::string_view name = takeName(rest);
        if (name.empty())
            return false;
        std::pair<size_t, std::string_view> previous;
        for (bool first = true; !rest.empty(); first = false) {
            if (rest.front() != ' ')
                return false;
            rest.remove_prefix(1);
            const std::string_view attributeName = takeName(rest);
            if (attributeName.empty() || rest.size() < 3 || rest.substr(0, 2) != "=\"")
                return false;
            rest.remove_prefix(2);
            const qint64 length = valueLength(rest);
            const auto rank = attributeRank(attributeName);
            if (length < 0 || (!first && !(previous < rank)))
                return false;
            previous = rank;
            rest.remove_prefix(static_cast<size_t>(length) + 1);
        }
        if (depth == 0) {
            if (m_started || tag != (leaf ? "<DataFlow/>" : "<DataFlow>"))
                return false;
            m_started = true;
            m_closed = leaf;
            m_goodEnd = m_offset;
        } else if (depth == 1) {
            m_frame = FrameOutline();
            m_frame.offset = lineOffset;
            m_frame.number = numberOf(tag, "frameNumber");
            m_children = 0;
        } else if (depth == 2) {
            childOfFrame(tag);
        }
        m_empty = !leaf;
        if (!leaf)
            m_open.emplace_back(name);
    }
    if (depth == 1 && (tag[1] == '/' || tag[tag.size() - 2] == '/')) {
        m_frame.length = m_offset - m_frame.offset;
        m_goodEnd = m_offset;
        m_frameEnded = true;
    }
    if (tag[1] == '/')
        m_empty = false;
    return true;
}

/// The first two are the parameters and the time stamp, whatever their names; the rest are data.
void kelDataFlow::FrameWalker::childOfFrame(std::string_view tag)
{
    if (m_children == 1)
        m_frame.time = timeOf(tag);
    else if (m_children > 1)
        ++m_frame.objects;
    ++m_children;
}
