// One thread for everything the agent sends without being told by the script. Reading goes on while an answer waits
// for its reader: the reading thread only leaves the answer here.

#include "agentSimulator/backgroundSender.h"

namespace agentSimulator
{

namespace
{

constexpr Answer answers[] = {
    {"buttonClicked stop", "sessionStatus disconnected\n"},
    {"buttonClicked start", "sessionStatus Connected\n"},
    {"buttonClicked exit", ""},
};

constexpr std::chrono::milliseconds endDelay{200};
constexpr std::chrono::hours noDeadline{24};

} // namespace

const Answer *answerTo(std::string_view line)
{
    for (const Answer &answer : answers) {
        if (answer.line == line)
            return &answer;
    }
    return nullptr;
}

void BackgroundSender::run()
{
    std::unique_lock lock(m_mutex);
    while (!m_stopped) {
        const std::string text = takeDueText();
        if (!text.empty()) {
            lock.unlock();
            m_writer.send(text);
            lock.lock();
            continue;
        }
        endWhenDue();
        m_changed.wait_until(lock, nextDue());
    }
}

void BackgroundSender::stop()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopped = true;
    }
    m_changed.notify_all();
}

void BackgroundSender::startPings(std::chrono::milliseconds period)
{
    {
        const std::lock_guard lock(m_mutex);
        m_pingPeriod = period;
        m_nextPing = Clock::now();
    }
    m_changed.notify_all();
}

void BackgroundSender::stopPings()
{
    const std::lock_guard lock(m_mutex);
    m_nextPing.reset();
}

void BackgroundSender::setAnswering(bool answering)
{
    const std::lock_guard lock(m_mutex);
    m_answering = answering;
}

bool BackgroundSender::isPinging()
{
    const std::lock_guard lock(m_mutex);
    return m_nextPing.has_value();
}

bool BackgroundSender::isAnswering()
{
    const std::lock_guard lock(m_mutex);
    return m_answering;
}

void BackgroundSender::noteReceived(std::string_view line)
{
    const Answer *const answer = answerTo(line);
    {
        const std::lock_guard lock(m_mutex);
        if (!m_answering || !answer)
            return;
        if (answer->text.empty())
            m_endAt = Clock::now() + endDelay;
        else
            m_answers.emplace_back(answer->text);
    }
    m_changed.notify_all();
}

// The three below are called with the lock held.

std::string BackgroundSender::takeDueText()
{
    if (!m_answers.empty()) {
        std::string text = std::move(m_answers.front());
        m_answers.pop_front();
        return text;
    }
    if (!m_nextPing || Clock::now() < *m_nextPing)
        return {};
    m_nextPing = Clock::now() + m_pingPeriod;
    return "PING UI\n";
}

void BackgroundSender::endWhenDue()
{
    if (!m_endAt || Clock::now() < *m_endAt)
        return;
    m_endAt.reset();
    m_ending.request(0, "buttonClicked exit");
}

BackgroundSender::Clock::time_point BackgroundSender::nextDue() const
{
    Clock::time_point due = Clock::now() + noDeadline;
    for (const auto &candidate : {m_nextPing, m_endAt}) {
        if (candidate && *candidate < due)
            due = *candidate;
    }
    return due;
}

} // namespace agentSimulator
