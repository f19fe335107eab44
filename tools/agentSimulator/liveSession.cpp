// All threads end when the end is asked for, and all are joined.

#include "agentSimulator/liveSession.h"

#include "agentSimulator/options.h"
#include "agentSimulator/wireText.h"

#include <utility>

namespace agentSimulator
{

LiveSession::LiveSession(const Options &options, Recorder &usedRecorder, const Companion &companion, Listener listener)
    : recorder(usedRecorder), writer(pipePathsIn(options.pipeDirectory).toCompanion, recorder, ending,
                                     std::chrono::milliseconds(options.sendTimeoutMs)),
      background(writer, ending), m_reader(pipePathsIn(options.pipeDirectory).fromCompanion, ending,
                                           [this, onLine = std::move(listener.onLine)](const std::string &text) {
                                               recorder.received(text);
                                               for (const std::string &line : splitLines(text)) {
                                                   background.noteReceived(line);
                                                   onLine(line);
                                               }
                                           }),
      m_watching([this, companion] { watchProcesses(companion, ending); }), m_sending([this] { background.run(); }),
      m_reading([this, onEnd = std::move(listener.onEnd)] {
          m_reader.run();
          onEnd();
      })
{
}

LiveSession::~LiveSession()
{
    ending.request(0, "the session was left");
    background.stop();
    for (std::thread *thread : {&m_reading, &m_sending, &m_watching})
        thread->join();
}

} // namespace agentSimulator
