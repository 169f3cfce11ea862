#ifndef APPS_COMMON_ENDSIGNALS_H
#define APPS_COMMON_ENDSIGNALS_H

/// \file
/// Ctrl-C and SIGTERM in a loop.

/// While it lives, the first SIGINT or SIGTERM is noted for a loop that then ends by itself; a second one
/// ends the program at once, as each does while there is no such object. One lives at a time.
class EndSignals
{
public:
    EndSignals();
    ~EndSignals();

    EndSignals(const EndSignals &) = delete;
    EndSignals &operator=(const EndSignals &) = delete;

    /// True from the first signal on.
    bool caught() const;
};

#endif
