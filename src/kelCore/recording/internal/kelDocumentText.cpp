#include <kelCore/recording/internal/kelDocumentText.h>

#include <kelCore/recording/internal/kelAttributeOrder.h>
#include <kelCore/recording/internal/kelDebugLine.h>

#include <QDomDocument>
#include <QFile>

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

struct Attribute
{
    std::string_view text; ///< name="value"
    std::pair<size_t, std::string_view> rank;

    Attribute(std::string_view name, std::string_view nameAndValue)
        : text(nameAndValue), rank(kelDataFlow::attributeRank(name))
    { }

    bool operator<(const Attribute &other) const { return rank < other.rank; }
};

/// Walks a serialised document and puts the attributes of every start tag in order, in place. The toolkit
/// wrote the text, so it is well-formed and attribute values stand between double quotes.
class AttributeSorter
{
public:
    explicit AttributeSorter(QByteArray &text)
        : m_data(text.data()), m_text(m_data, static_cast<size_t>(text.size()))
    { }

    void run()
    {
        while (m_at < m_text.size()) {
            skipTo(m_text.find('<', m_at));
            if (m_at == m_text.size())
                break;
            if (startsWith("<!--"))
                skipBehind("-->");
            else if (startsWith("<![CDATA["))
                skipBehind("]]>");
            else if (startsWith("<?"))
                skipBehind("?>");
            else if (startsWith("<!"))
                skipDocumentType();
            else if (startsWith("</"))
                skipBehind(">");
            else
                sortStartTag();
        }
    }

private:
    bool startsWith(std::string_view prefix) const
    {
        return m_text.compare(m_at, prefix.size(), prefix) == 0;
    }

    void skipTo(size_t end) { m_at = std::min(end, m_text.size()); }

    void skipBehind(std::string_view mark)
    {
        const size_t found = m_text.find(mark, m_at);
        skipTo(found == std::string_view::npos ? found : found + mark.size());
    }

    void skipDocumentType()
    {
        size_t end = m_at;
        int open = 0;
        for (; end < m_text.size(); ++end) {
            const char c = m_text[end];
            if (c == '"' || c == '\'')
                end = m_text.find(c, end + 1);
            else if (c == '<')
                ++open;
            else if (c == '>' && --open == 0)
                break;
            if (end == std::string_view::npos)
                break;
        }
        skipTo(end == std::string_view::npos ? end : end + 1);
    }

    void sortStartTag()
    {
        skipTo(m_text.find_first_of(" />", m_at));
        const size_t begin = m_at;
        m_attributes.clear();
        while (m_at < m_text.size() && m_text[m_at] == ' ') {
            const size_t name = m_at + 1;
            const size_t equals = m_text.find('=', name);
            const size_t end = m_text.find('"', equals + 2) + 1; // behind name="value"
            m_attributes.emplace_back(m_text.substr(name, equals - name), m_text.substr(name, end - name));
            m_at = end;
        }
        if (!std::is_sorted(m_attributes.begin(), m_attributes.end())) {
            std::sort(m_attributes.begin(), m_attributes.end());
            m_sorted.clear();
            for (const Attribute &attribute : m_attributes)
                m_sorted.append(1, ' ').append(attribute.text);
            m_sorted.copy(m_data + begin, m_sorted.size());
        }
        skipBehind(">");
    }

    char *m_data;
    std::string_view m_text; ///< The same.
    size_t m_at = 0;
    std::vector<Attribute> m_attributes;
    std::string m_sorted;
};

/// What no XML document may contain below the blank.
bool isForbiddenControl(ushort c) { return c < 0x20 && c != '\t' && c != '\n' && c != '\r'; }

/// Replaces what no XML document may contain.
void replaceForbiddenCharacters(QString &text)
{
    const auto forbidden = [&text](int i) {
        const QChar c = text.at(i);
        const ushort u = c.unicode();
        if (u < 0xd800)
            return isForbiddenControl(u);
        if (c.isHighSurrogate())
            return i + 1 == text.size() || !text.at(i + 1).isLowSurrogate();
        if (c.isLowSurrogate())
            return i == 0 || !text.at(i - 1).isHighSurrogate();
        return u >= 0xfffe;
    };
    for (int i = 0; i < text.size(); ++i)
        if (forbidden(i))
            text[i] = QChar(QChar::ReplacementCharacter);
}

/// Where the data of an instruction name an encoding.
struct EncodingName
{
    int begin = -1;
    int size = 0;

    explicit EncodingName(const QString &data)
    {
        const int key = static_cast<int>(data.indexOf(QLatin1String("encoding=")));
        const int first = key + 10; // behind the quote
        if (key < 0 || first > data.size())
            return;
        const int last = static_cast<int>(data.indexOf(data.at(first - 1), first));
        if (last < 0)
            return;
        begin = first;
        size = last - first;
    }

    bool isOther(const QString &data) const
    {
        return begin >= 0 && data.mid(begin, size).compare(QLatin1String("UTF-8"), Qt::CaseInsensitive) != 0;
    }
};

/// Lets the XML declaration, where there is one, name the encoding that is written. The toolkit goes by it:
/// what another encoding cannot express would become character references, of surrogates among them. Its
/// parser under Qt 5 goes by whatever instruction comes first: one that names another encoding is put behind
/// a declaration.
void declareUtf8(QDomDocument document)
{
    QDomProcessingInstruction first = document.firstChild().toProcessingInstruction();
    QString data = first.data();
    const EncodingName name(data);
    if (!first.target().startsWith(QLatin1String("xml")) || !name.isOther(data))
        return;
    if (first.target() == QLatin1String("xml"))
        first.setData(data.replace(name.begin, name.size, QStringLiteral("UTF-8")));
    else
        document.insertBefore(document.createProcessingInstruction(
                                  QStringLiteral("xml"), QStringLiteral("version='1.0' encoding='UTF-8'")),
                              first);
}

bool holdsForbiddenControl(const QString &text)
{
    return std::any_of(text.cbegin(), text.cend(), [](QChar c) { return isForbiddenControl(c.unicode()); });
}

/// Names with control characters are taken by the toolkit's parser under Qt 6 and by no other.
bool namesAreSound(const QDomNode &node)
{
    if (!node.isCharacterData() && holdsForbiddenControl(node.nodeName()))
        return false;
    const QDomNamedNodeMap attributes = node.attributes();
    for (int i = 0; i < attributes.count(); ++i)
        if (holdsForbiddenControl(attributes.item(i).nodeName()))
            return false;
    for (QDomNode child = node.firstChild(); !child.isNull(); child = child.nextSibling())
        if (!namesAreSound(child))
            return false;
    return true;
}

/// True for a text whose first instruction only looks like an XML declaration: its encoding is UTF-8,
/// whatever the instruction names.
bool beginsWithOtherInstruction(const QByteArray &text)
{
    const int begin = text.startsWith("\xef\xbb\xbf") ? 3 : 0;
    const int behind = begin + 5;
    return text.size() > behind && text.mid(begin, 5) == "<?xml" && !std::strchr(" \t\r\n", text.at(behind));
}

} // namespace

QByteArray kelDataFlow::toXml(const QDomDocument &document)
{
    declareUtf8(document);
    QString text = document.toString(1);
    replaceForbiddenCharacters(text);
    QByteArray utf8 = text.toUtf8();
    AttributeSorter(utf8).run();
    return utf8;
}

bool kelDataFlow::setContent(QDomDocument &document, const QByteArray &text, QString *message, int *line,
                             int *column)
{
    const bool isUtf8 = beginsWithOtherInstruction(text);
    if (isUtf8 ? !document.setContent(QString::fromUtf8(text), message, line, column)
               : !document.setContent(text, message, line, column))
        return false;
    const bool suspicious = std::any_of(text.cbegin(), text.cend(),
                                        [](char c) { return isForbiddenControl(static_cast<uchar>(c)); });
    if (!suspicious || (namesAreSound(document) && !holdsForbiddenControl(document.doctype().name())))
        return true;
    if (message)
        *message = QStringLiteral("a name holds a control character");
    return false;
}

bool kelDataFlow::parse(QFile &file, QDomDocument &document)
{
    QString message;
    int line = 0;
    int column = 0;
    const bool parsed = file.isOpen() && setContent(document, file.readAll(), &message, &line, &column);
    file.close();
    if (!parsed) {
        debugLine("\n xml file content problem...");
        debugLine(quoted(message), "  ", line, "  ", column, "  ");
    }
    return parsed;
}
