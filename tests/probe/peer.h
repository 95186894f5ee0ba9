#ifndef TESTS_PROBE_PEER_H
#define TESTS_PROBE_PEER_H

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace test {

// One connection of a peer.
class Connection {
 public:
  explicit Connection(int socket) : m_socket(socket) {}
  // Returns false when the connection is closed.
  bool send(const std::string& bytes) const;
  // Returns the next line with its end, or an empty text when the connection is closed.
  std::string line();
  // Reads a request of HTTP up to its empty line.
  std::string request();
  // Returns when the other side has closed the connection.
  void awaitClose();
  void reset() const;

 private:
  int m_socket;
  std::string m_pending;
};

// A server that behaves as no real server does. It listens on a port of the loopback address that
// the kernel chooses.
class Peer {
 public:
  explicit Peer(std::function<void(Connection&)> talk);
  ~Peer();
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;

  int port() const { return m_port; }
  int connections() const { return m_connections; }

 private:
  void serve();

  std::function<void(Connection&)> m_talk;
  int m_listener;
  int m_port = 0;
  std::atomic<int> m_connections{0};
  std::mutex m_mutex;
  bool m_isOver = false;
  std::vector<int> m_open;
  std::vector<std::thread> m_talks;
  std::thread m_server;
};

}  // namespace test

#endif
