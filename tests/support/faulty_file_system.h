#ifndef TESTS_SUPPORT_FAULTY_FILE_SYSTEM_H
#define TESTS_SUPPORT_FAULTY_FILE_SYSTEM_H

#include <cstddef>
#include <functional>
#include <mutex>
#include <vector>

#include "tests/support/forwarding_file_system.h"

namespace test {

// The real file system, in force for the life of the object, with calls that fail on demand. A
// failing call does nothing, except that a failing close closes all the same.
class FaultyFileSystem : public ForwardingFileSystem {
 public:
  FaultyFileSystem();

  // Which calls fail, the first one being number 0. A later request replaces an earlier one.
  void failCall(std::size_t number, int error);
  void failFrom(std::size_t number, int error);
  void failEvery(FileCall call, int error);
  void failNothing();

  // Reads and writes move at most this many bytes at a time.
  void limitTransfers(std::size_t bytes);
  // Called just before each call is carried out, from the thread that makes it.
  void beforeEach(std::function<void(FileCall)> action);

  // The calls so far, in order, failed ones included, and those that were made to fail.
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
