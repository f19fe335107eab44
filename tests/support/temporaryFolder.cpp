// A folder of its own for one test.

#include "tests/support/temporaryFolder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder()
{
    std::string pattern = (fs::temp_directory_path() / "brindleTestXXXXXX").string();
    if (!mkdtemp(pattern.data()))
        throw std::runtime_error("no temporary folder like " + pattern);
    m_path = pattern;
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
}

std::string TemporaryFolder::makeFolder(const std::string &name) const
{
    fs::create_directories(file(name));
    return file(name);
}

std::string TemporaryFolder::write(const std::string &name, const std::string &content) const
{
    const fs::path path = file(name);
    fs::create_directories(path.parent_path());
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream.write(content.data(), static_cast<std::streamsize>(content.size()));
    if (!stream.flush())
        throw std::runtime_error("can't write " + path.string());
    return path.string();
}

std::string TemporaryFolder::read(const std::string &name) const
{
    return readWholeFile(file(name));
}

bool TemporaryFolder::has(const std::string &name) const
{
    return fs::exists(fs::symlink_status(file(name)));
}

std::string readWholeFile(const std::string &path)
{
    std::ifstream stream(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
}
