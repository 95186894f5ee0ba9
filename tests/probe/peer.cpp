#include "tests/probe/peer.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>

#include "tests/probe/loopback.h"

namespace test {
bool Connection::send(const std::string& bytes) const {
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t n = ::write(m_socket, bytes.data() + done, bytes.size() - done);
    if (n <= 0) return false;
    done += static_cast<std::size_t>(n);
  }
  return true;
}

std::string Connection::line() {
  for (;;) {
    const std::size_t end = m_pending.find('\n');
    if (end != std::string::npos) {
      const std::string line = m_pending.substr(0, end + 1);
      m_pending.erase(0, end + 1);
      return line;
    }
    char buffer[4096];
    const ssize_t n = ::recv(m_socket, buffer, sizeof buffer, 0);
    if (n <= 0) return "";
    m_pending.append(buffer, static_cast<std::size_t>(n));
  }
}

std::string Connection::request() {
  std::string all;
  for (std::string next = line(); !next.empty(); next = line()) {
    all += next;
    if (next == "\r\n") break;
  }
  return all;
}

void Connection::awaitClose() {
  while (!line().empty()) continue;
}

void Connection::reset() const {
  const linger now = {1, 0};
  ::setsockopt(m_socket, SOL_SOCKET, SO_LINGER, &now, sizeof now);
}

Peer::Peer(std::function<void(Connection&)> talk)
    : m_talk(std::move(talk)), m_listener(::socket(AF_INET, SOCK_STREAM, 0)) {
  ::signal(SIGPIPE, SIG_IGN);
  sockaddr_in address = loopback(0);
  socklen_t size = sizeof address;
  if (::bind(m_listener, reinterpret_cast<sockaddr*>(&address), size) != 0 ||
      ::listen(m_listener, 16) != 0 ||
      ::getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
    throw std::runtime_error("no listening socket");
  }
  ::fcntl(m_listener, F_SETFD, FD_CLOEXEC);
  m_port = ntohs(address.sin_port);
  m_server = std::thread([this] { serve(); });
}

Peer::~Peer() {
  {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_isOver = true;
    for (const int socket : m_open) ::shutdown(socket, SHUT_RDWR);
  }
  // Wakes the thread that accepts connections.
  const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
  const sockaddr_in address = loopback(m_port);
  ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address);
  m_server.join();
  ::close(socket);
  for (std::thread& talk : m_talks) talk.join();
  ::close(m_listener);
}

void Peer::serve() {
  for (;;) {
    const int socket = ::accept(m_listener, nullptr, nullptr);
    if (socket < 0) return;
    ::fcntl(socket, F_SETFD, FD_CLOEXEC);
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_isOver) {
      ::close(socket);
      return;
    }
    ++m_connections;
    m_open.push_back(socket);
    m_talks.emplace_back([this, socket] {
      Connection connection(socket);
      m_talk(connection);
      const std::lock_guard<std::mutex> inner(m_mutex);
      m_open.erase(std::find(m_open.begin(), m_open.end(), socket));
      ::close(socket);
    });
  }
}

}  // namespace test
