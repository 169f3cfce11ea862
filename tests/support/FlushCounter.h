#ifndef TESTS_SUPPORT_FLUSHCOUNTER_H
#define TESTS_SUPPORT_FLUSHCOUNTER_H

/// \file
/// What leaves standard output at once.

#include <iostream>
#include <sstream>
#include <string>
#include <vector>

/// Takes the place of standard output's buffer while it lives, and notes what each flush sends off. A flush of
/// nothing is not noted: standard error makes one before each of its messages.
class FlushCounter : private std::stringbuf
{
public:
    FlushCounter() : m_previous(std::cout.rdbuf(this)) { }
    ~FlushCounter() override { std::cout.rdbuf(m_previous); }

    const std::vector<std::string> &flushed() const { return m_flushed; }

private:
    int sync() override
    {
        if (!str().empty())
            m_flushed.push_back(str());
        str("");
        return 0;
    }

    std::streambuf *m_previous;
    std::vector<std::string> m_flushed;
};

#endif
