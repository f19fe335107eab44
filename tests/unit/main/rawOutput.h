#pragma once
// Standard output as another process sees it: without what still waits in a buffer.

#include "tests/support/temporaryFolder.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <string>

/// Leads standard output into a file for its own lifetime.
class RawOutput
{
public:
    explicit RawOutput(std::string path) : m_path(std::move(path))
    {
        std::fflush(stdout);
        m_before = dup(STDOUT_FILENO);
        const int file = open(m_path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        dup2(file, STDOUT_FILENO);
        close(file);
    }
    ~RawOutput()
    {
        std::fflush(stdout);
        dup2(m_before, STDOUT_FILENO);
        close(m_before);
    }
    RawOutput(const RawOutput &) = delete;
    RawOutput &operator=(const RawOutput &) = delete;

    /// What has really been written so far.
    std::string written() const { return readWholeFile(m_path); }

private:
    std::string m_path;
    int m_before;
};
