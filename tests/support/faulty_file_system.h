#ifndef TESTS_SUPPORT_FAULTY_FILE_SYSTEM_H
#define TESTS_SUPPORT_FAULTY_FILE_SYSTEM_H

#include <cstddef>
#include <functional>
#include <mutex>
#include <vector>

#include "tests/support/forwarding_file_system.h"

namespace test {

// The real file system with calls that fail on demand. It is in force for the life of the object. A
// failing call does nothing, but a failing close still closes the descriptor.
class FaultyFileSystem : public ForwardingFileSystem {
 public:
  FaultyFileSystem();

  // Select the calls that fail. The first call has the number 0. A later selection replaces an
  // earlier one.
  void failCall(std::size_t number, int error);
  void failFrom(std::size_t number, int error);
  void failEvery(FileCall call, int error);
  void failNothing();

  // Limits each read and write to this many bytes.
  void limitTransfers(std::size_t bytes);
  // Sets a function that the calling thread runs before each call.
  void beforeEach(std::function<void(FileCall)> action);

  // All calls so far, including those that failed, and the calls that were made to fail. Both are
  // in order.
  std::vector<FileCall> calls() const;
  std::vector<FileCall> failed() const;

  ssize_t read(int fd, void* data, std::size_t size) override;
  ssize_t write(int fd, const void* data, std::size_t size) override;

 private:
  using Choice = std::function<bool(std::size_t number, FileCall call)>;

  void fail(Choice choice, int error);
  int before(const FileArguments& call) override;

  mutable std::mutex m_mutex;
  Choice m_choice;
  int m_error = 0;
  std::size_t m_limit;
  std::function<void(FileCall)> m_action;
  std::vector<FileCall> m_calls;
  std::vector<FileCall> m_failed;
};

}  // namespace test

#endif
