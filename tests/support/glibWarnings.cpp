// A GLib warning or critical that nobody expected fails the test in which it came. Any thread may warn.

#include "tests/support/glibWarnings.h"

#include <gtest/gtest.h>

#include <glib.h>

#include <algorithm>
#include <mutex>
#include <string>
#include <vector>

namespace
{

struct Watch {
    std::mutex mutex;
    std::vector<std::string> expected;
    std::vector<std::string> unexpected;
};

Watch &watch()
{
    static auto *const onlyOne = new Watch; // outlives every thread
    return *onlyOne;
}

bool takeExpected(Watch &watched, const std::string &text)
{
    const auto found = std::find_if(watched.expected.begin(), watched.expected.end(),
                                    [&](const std::string &part) { return text.find(part) != std::string::npos; });
    if (found == watched.expected.end())
        return false;
    watched.expected.erase(found);
    return true;
}

GLogWriterOutput noteWarning(GLogLevelFlags level, const GLogField *fields, gsize count, gpointer)
{
    constexpr int noted = G_LOG_LEVEL_WARNING | G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_ERROR;
    if ((level & noted) == 0)
        return g_log_writer_default(level, fields, count, nullptr);
    std::string text;
    for (gsize i = 0; i < count; i++)
        if (g_strcmp0(fields[i].key, "MESSAGE") == 0 || g_strcmp0(fields[i].key, "GLIB_DOMAIN") == 0)
            text += std::string(static_cast<const char *>(fields[i].value)) + " ";
    const std::scoped_lock lock(watch().mutex);
    if (!takeExpected(watch(), text)) {
        watch().unexpected.push_back(text);
        g_log_writer_standard_streams(level, fields, count, nullptr);
    }
    return G_LOG_WRITER_HANDLED;
}

class Judge : public ::testing::EmptyTestEventListener
{
    void OnTestStart(const ::testing::TestInfo &) override
    {
        const std::scoped_lock lock(watch().mutex);
        watch().expected.clear();
        watch().unexpected.clear();
    }
    void OnTestEnd(const ::testing::TestInfo &) override
    {
        const std::scoped_lock lock(watch().mutex);
        for (const std::string &text : watch().unexpected)
            ADD_FAILURE() << "unexpected GLib message: " << text;
        for (const std::string &part : watch().expected)
            ADD_FAILURE() << "this GLib message never came: " << part;
    }
};

} // namespace

void expectGlibWarning(const char *part)
{
    const std::scoped_lock lock(watch().mutex);
    watch().expected.emplace_back(part);
}

void watchGlibWarnings()
{
    g_log_set_writer_func(noteWarning, nullptr, nullptr);
    ::testing::UnitTest::GetInstance()->listeners().Append(new Judge);
}
