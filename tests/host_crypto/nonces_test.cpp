#include "host/crypto/nonces.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "host/process/fork_generation.h"
#include "tests/host_crypto/encryption_object.h"
#include "tests/support/child_process.h"
#include "tests/support/test_agent.h"

// Nonces that are drawn in advance, in a process that forks.
namespace {

std::vector<std::string> drawn(host::Nonces& nonces, int count) {
  std::vector<std::string> result;
  for (int i = 0; i < count; ++i) {
    unsigned char nonce[host::c_nonceSize] = {};
    if (!nonces.next(nonce)) break;
    result.emplace_back(nonce, nonce + sizeof nonce);
  }
  return result;
}

// Runs the work in a child process. The child ends without any cleanup of the test program. The
// returned texts must have no line feeds.
template <typename Work>
std::vector<std::string> inChild(Work work) {
  int ends[2] = {-1, -1};
  EXPECT_EQ(::pipe(ends), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    std::string lines;
    for (const std::string& text : work()) lines += text + '\n';
    const bool sent =
        ::write(ends[1], lines.data(), lines.size()) == static_cast<ssize_t>(lines.size());
    ::_exit(sent ? 0 : 1);
  }
  ::close(ends[1]);
  std::vector<std::string> texts(1);
  char c = 0;
  while (::read(ends[0], &c, 1) == 1) {
    if (c == '\n') {
      texts.emplace_back();
    } else {
      texts.back() += c;
    }
  }
  ::close(ends[0]);
  int status = -1;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  texts.pop_back();
  return texts;
}

std::string hex(const std::string& bytes) {
  std::string text;
  for (const char c : bytes) {
    text += "0123456789abcdef"[static_cast<unsigned char>(c) >> 4];
    text += "0123456789abcdef"[static_cast<unsigned char>(c) & 15];
  }
  return text;
}

std::vector<std::string> drawnInHex(host::Nonces& nonces, int count) {
  std::vector<std::string> result = drawn(nonces, count);
  for (std::string& nonce : result) nonce = hex(nonce);
  return result;
}

void add(std::multiset<std::string>& all, const std::vector<std::string>& more) {
  all.insert(more.begin(), more.end());
}

std::size_t distinct(const std::multiset<std::string>& all) {
  return std::set<std::string>(all.begin(), all.end()).size();
}

TEST(Nonces, AreAllDifferent) {
  host::Nonces nonces;
  host::Nonces others;
  std::multiset<std::string> all;
  add(all, drawn(nonces, 1000));
  add(all, drawn(others, 1000));
  EXPECT_EQ(all.size(), 2000U);
  EXPECT_EQ(distinct(all), 2000U);
}

TEST(Nonces, OfAChildAreNotThoseOfItsParent) {
  host::Nonces nonces;
  std::multiset<std::string> all;
  add(all, drawnInHex(nonces, 1));  // now the object has unused nonces
  add(all, inChild([&] { return drawnInHex(nonces, 100); }));
  add(all, inChild([&] { return drawnInHex(nonces, 100); }));
  add(all, drawnInHex(nonces, 100));
  EXPECT_EQ(all.size(), 301U);
  EXPECT_EQ(distinct(all), 301U);
}

TEST(Nonces, OfAGrandchildAreNotThoseOfItsForebears) {
  host::Nonces nonces;
  std::multiset<std::string> all;
  add(all, drawnInHex(nonces, 1));
  // One child draws before it forks, the other never does.
  for (const int first : {1, 0}) {
    add(all, inChild([&] {
          std::vector<std::string> texts = drawnInHex(nonces, first);
          for (const std::string& text : inChild([&] { return drawnInHex(nonces, 100); })) {
            texts.push_back(text);
          }
          for (const std::string& text : drawnInHex(nonces, 100)) texts.push_back(text);
          return texts;
        }));
  }
  add(all, drawnInHex(nonces, 100));
  EXPECT_EQ(all.size(), 502U);
  EXPECT_EQ(distinct(all), 502U);
}

// A fork also copies the encryption objects that the service keeps.
TEST(Nonces, OfPasswordsInAChildAreNotThoseOfItsParent) {
  const test::TestAgent agent;
  const auto protectSome = [](int count) {
    std::vector<std::string> nonces;
    for (int i = 0; i < count; ++i) {
      const test::EncryptionObject object(test::ENCRYPTION_TYPE_PASSWORD);
      std::wstring text;
      if (!object || !object->encrypt_string(L"same", text)) break;
      // The part of the base64 text that encodes only the nonce: bytes 3 to 11 of the value.
      const std::wstring nonce = text.substr(4, 12);
      nonces.emplace_back(nonce.begin(), nonce.end());
    }
    return nonces;
  };
  std::multiset<std::string> all;
  add(all, protectSome(1));
  add(all, inChild([&] { return protectSome(50); }));
  add(all, inChild([&] { return protectSome(50); }));
  add(all, protectSome(50));
  EXPECT_EQ(all.size(), 151U);
  EXPECT_EQ(distinct(all), 151U);
}

TEST(ForkGeneration, IsOneForAProcessAndAllItsThreads) {
  const std::uint64_t here = host::forkGeneration();
  EXPECT_NE(here, 0U);
  EXPECT_EQ(host::forkGeneration(), here);
  std::uint64_t there = 0;
  std::thread([&] { there = host::forkGeneration(); }).join();
  EXPECT_EQ(there, here);
}

TEST(ForkGeneration, IsAnotherInEveryProcessOfALine) {
  std::multiset<std::string> all{std::to_string(host::forkGeneration())};
  add(all, inChild([] {
        std::vector<std::string> texts =
            inChild([] { return std::vector{std::to_string(host::forkGeneration())}; });
        return texts;
      }));
  EXPECT_EQ(all.size(), 2U);
  EXPECT_EQ(distinct(all), 2U);
}

// The process cannot get memory that a fork clears. It therefore has no generation number and draws
// each nonce separately.
CHILD_PROCESS(drawWithoutGeneration) {
  {
    // The allocator of a sanitizer ends the process if it gets no memory. It must therefore have
    // free memory before.
    std::vector<std::unique_ptr<std::uint64_t>> stock(1000);
    for (auto& each : stock) each = std::make_unique<std::uint64_t>(0);
  }
  rlimit usual{};
  if (::getrlimit(RLIMIT_AS, &usual) != 0) return 2;
  rlimit none = usual;
  none.rlim_cur = 1;
  if (::setrlimit(RLIMIT_AS, &none) != 0) return 2;
  const std::uint64_t generation = host::forkGeneration();
  if (::setrlimit(RLIMIT_AS, &usual) != 0) return 2;
  channel.send(std::to_string(generation));
  channel.send(std::to_string(host::forkGeneration()));
  host::Nonces nonces;
  std::multiset<std::string> all;
  add(all, drawnInHex(nonces, 100));
  add(all, inChild([&] { return drawnInHex(nonces, 100); }));
  add(all, drawnInHex(nonces, 100));
  channel.send(std::to_string(all.size()));
  channel.send(std::to_string(distinct(all)));
  return 0;
}

TEST(Nonces, AreAllDifferentInAProcessThatCannotTellItsChildrenFromItself) {
  test::ChildProcess child("drawWithoutGeneration", {});
  EXPECT_EQ(child.receive(), "0");
  EXPECT_EQ(child.receive(), "0") << "the failure must be permanent";
  EXPECT_EQ(child.receive(), "300");
  EXPECT_EQ(child.receive(), "300");
  EXPECT_EQ(child.wait(), 0);
}

}  // namespace
