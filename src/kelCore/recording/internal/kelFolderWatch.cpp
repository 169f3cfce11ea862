#include <kelCore/recording/internal/kelFolderWatch.h>

#include <cerrno>
#include <cstring>

#include <sys/inotify.h>
#include <unistd.h>

namespace {

/// Watches are added by name; this one leads to an open file wherever it has been moved.
int addWatch(int events, int file, uint32_t mask)
{
    const std::string name = "/proc/self/fd/" + std::to_string(file);
    return ::inotify_add_watch(events, name.c_str(), mask);
}

} // namespace

kelDataFlow::FolderWatch::FolderWatch(int folder, const std::string &document, const std::string &shadow)
    : m_events(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)), m_document(document), m_shadow(shadow)
{
    if (m_events)
        m_folderWatch = addWatch(m_events.get(), folder, IN_OPEN | IN_CLOSE_WRITE);
    if (m_folderWatch < 0)
        m_events.reset();
}

void kelDataFlow::FolderWatch::addRecords(int file)
{
    if (!m_events)
        return;
    m_recordsWatch = addWatch(m_events.get(), file, IN_ATTRIB | IN_MOVE_SELF);
    if (m_recordsWatch < 0)
        m_events.reset();
}

kelDataFlow::FolderWatch::Seen kelDataFlow::FolderWatch::take()
{
    Seen seen;
    if (!m_events)
        return seen;
    seen = {false, false, false};
    alignas(inotify_event) char buffer[4096];
    for (;;) {
        const ssize_t size = ::read(m_events.get(), buffer, sizeof buffer);
        if (size < 0 && errno == EINTR)
            continue;
        if (size <= 0)
            return size < 0 && errno == EAGAIN ? seen : Seen();
        for (ssize_t at = 0; at < size;) {
            inotify_event event = {};
            std::memcpy(&event, buffer + at, sizeof event);
            const char *const name = event.len > 0 ? buffer + at + sizeof event : "";
            if (event.wd == m_recordsWatch) {
                seen.moved = true;
            } else if (event.wd != m_folderWatch || (event.mask & (IN_Q_OVERFLOW | IN_IGNORED))) {
                seen = Seen(); // who knows
            } else if (name == m_document || name == m_shadow) {
                seen.opened |= (event.mask & IN_OPEN) != 0;
                seen.written |= (event.mask & IN_CLOSE_WRITE) != 0;
            }
            at += static_cast<ssize_t>(sizeof event + event.len);
        }
    }
}
