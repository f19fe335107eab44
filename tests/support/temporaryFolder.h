#pragma once
// A folder of its own for one test.

#include <string>

/// A temporary folder that goes with its test. Names are relative to it.
class TemporaryFolder
{
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;

    const std::string &path() const { return m_path; }
    std::string file(const std::string &name) const { return m_path + "/" + name; }

    /// Makes a folder and its parents. @return its full path.
    std::string makeFolder(const std::string &name) const;
    /// Writes a file, its folder included. @return its full path.
    std::string write(const std::string &name, const std::string &content) const;
    /// Content of a file, empty when there is none.
    std::string read(const std::string &name) const;
    bool has(const std::string &name) const;

private:
    std::string m_path;
};

/// Content of a file, empty when there is none.
std::string readWholeFile(const std::string &path);
