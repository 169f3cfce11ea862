#ifndef KELCORE_KELFRAMETEXT_H
#define KELCORE_KELFRAMETEXT_H

/// \file
/// The text of a document's frames: how one is made, and how the frames of a document are found. Internal.

#include <QByteArray>

#include <string>
#include <string_view>
#include <vector>

class CSynchronizer;
struct kelDataFlowRecord;

namespace kelDataFlow {

/// A document without frames, and what stands before and behind the frames of any other one.
inline constexpr std::string_view emptyDocument = "<DataFlow/>\n";
inline constexpr std::string_view documentHead = "<DataFlow>\n";
inline constexpr std::string_view documentTail = "</DataFlow>\n";

/// Appends the lines of one frame to `text`: exactly those that the frame has in a document that is made of
/// nodes and turned into text by `toXml`.
void appendFrameText(QByteArray &text, const CSynchronizer &stamp,
                     const std::vector<kelDataFlowRecord> &objects);

/// A frame as its text shows it.
struct FrameOutline
{
    qint64 offset = 0; ///< of its first byte in the document
    qint64 length = 0; ///< bytes
    quint32 number = 0;
    qint64 time = noTime; ///< milliseconds since the epoch, the parts taken as UTC
    quint32 objects = 0; ///< data elements

    static constexpr qint64 noTime = -0x7fffffffffffffff - 1; ///< the parts are no time, or there are none
};

/// Walks the frames of a document in canonical form: what `toXml` writes, would write again after parsing it,
/// and to which a frame is added by putting its text in front of the last line. That is one tag a line,
/// indented by one blank a level, attributes in the order of the format, nothing between the tags, and the
/// elements of `documentHead` around all.
///
/// The text may come in pieces of any size; each is looked at once. Memory is that of the longest line.
class FrameWalker
{
public:
    /// \param offset of the first byte that `add` will be given. Other than 0, it is that of a frame, and the
    ///        head of the document is taken for granted.
    explicit FrameWalker(qint64 offset = 0);

    /// Takes the next bytes and calls `found(const FrameOutline &)` for each frame that ends in them.
    /// \return false when the text is not canonical: everything up to `goodEnd` is.
    template <class Found> bool add(std::string_view bytes, const Found &found)
    {
        while (m_good && !bytes.empty()) {
            const size_t end = bytes.find('\n');
            if (end == std::string_view::npos) {
                m_rest.append(bytes);
                m_offset += qint64(bytes.size());
                m_good = m_rest.size() <= longestLine;
                break;
            }
            m_offset += qint64(end) + 1;
            if (m_rest.empty()) {
                m_good = takeLine(bytes.substr(0, end));
            } else {
                m_rest.append(bytes.substr(0, end));
                m_good = takeLine(m_rest);
                m_rest.clear();
            }
            bytes.remove_prefix(end + 1);
            if (m_good && m_frameEnded) {
                m_frameEnded = false;
                found(m_frame);
            }
        }
        return m_good;
    }

    /// True when what was added is a whole document.
    bool atEnd() const { return m_good && m_closed && m_rest.empty(); }
    /// Behind the last whole frame, or behind the head where there is none.
    qint64 goodEnd() const { return m_goodEnd; }

private:
    static constexpr size_t longestLine = size_t(1) << 28; ///< bytes; no line that was recorded comes near

    bool takeLine(std::string_view line);
    void childOfFrame(std::string_view tag);

    qint64 m_offset; ///< behind the bytes that were added
    qint64 m_lineOffset; ///< of the line that is looked at
    qint64 m_goodEnd;
    std::string m_rest; ///< of a line that is not whole yet
    std::vector<std::string> m_open; ///< names of the elements that are open
    bool m_empty = false; ///< the element opened last has no child yet
    bool m_good = true;
    bool m_started;
    bool m_closed = false;
    bool m_frameEnded = false;
    int m_children = 0; ///< of the frame
    FrameOutline m_frame;
};

} // namespace kelDataFlow

#endif
