#include "tests/support/locker.h"

#include <signal.h>
#include <unistd.h>

#include "host/agent.h"
#include "platform/lock/interprocess_lock.h"

namespace test {
namespace {

constexpr const char* c_name = "SiteListLock";

std::string letter(Locker::Mode mode) { return mode == Locker::Mode::Read ? "r" : "w"; }

template <typename Lock>
std::string obey(Lock& lock, const std::string& order) {
  if (order[0] == 'u') {
    lock.unlock();
    return "done";
  }
  return lock.lock(static_cast<unsigned int>(std::stoul(order.substr(3)))) ? "yes" : "no";
}

}  // namespace

void Locker::beginLock(Mode mode, unsigned int waitMilliseconds) {
  m_process.send("l" + letter(mode) + " " + std::to_string(waitMilliseconds));
}

void Locker::unlock(Mode mode) {
  m_process.send("u" + letter(mode));
  m_process.receive();
}

void Locker::fork() {
  m_process.send("f");
  m_process.receive();
}

CHILD_PROCESS(locker) {
  // Interrupts system calls and has no other effect.
  struct sigaction interrupt {};
  interrupt.sa_handler = [](int) {};
  ::sigaction(SIGUSR1, &interrupt, nullptr);

  host::AgentSettings settings;
  settings.dataDirectory = args[0];
  host::setAgent(settings);
  korvel_com::orb::lock::InterProcessReadLock reader(c_name);
  korvel_com::orb::lock::InterProcessWriteLock writer(c_name);
  for (;;) {
    const std::string order = channel.receive();
    if (order.empty()) return 0;
    if (order == "f") {
      if (::fork() != 0) {
        for (;;) ::pause();
      }
      channel.send("done");
    } else {
      channel.send(order[1] == 'r' ? obey(reader, order) : obey(writer, order));
    }
  }
}

}  // namespace test
