#include "host/process/lasting.h"

#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

std::atomic<int> g_made{0};
std::atomic<int> g_destroyed{0};
std::atomic<bool> g_fails{false};

struct Counted {
  Counted() {
    if (g_fails) throw std::runtime_error("not now");
    ++g_made;
  }
  ~Counted() { ++g_destroyed; }
  int value = 7;
};

TEST(Lasting, MakesItsObjectAtTheFirstUse) {
  static host::Lasting<Counted> lasting;
  const int before = g_made;
  EXPECT_EQ(lasting.find(), nullptr);
  EXPECT_EQ(g_made, before);
  Counted& object = lasting.get();
  EXPECT_EQ(object.value, 7);
  EXPECT_EQ(&lasting.get(), &object);
  EXPECT_EQ(lasting.find(), &object);
  EXPECT_EQ(g_made, before + 1);
}

TEST(Lasting, NeverDestroysIt) {
  const int before = g_destroyed;
  Counted* object = nullptr;
  {
    host::Lasting<Counted> lasting;
    object = &lasting.get();
  }
  EXPECT_EQ(g_destroyed, before);
  delete object;
}

TEST(Lasting, TriesAgainAfterAFailure) {
  static host::Lasting<Counted> lasting;
  g_fails = true;
  EXPECT_THROW(lasting.get(), std::runtime_error);
  g_fails = false;
  EXPECT_EQ(lasting.find(), nullptr);
  EXPECT_EQ(lasting.get().value, 7);
}

TEST(Lasting, IsOneForThreadsThatComeFirstTogether) {
  for (int round = 0; round < 100; ++round) {
    host::Lasting<Counted> lasting;
    const int alive = g_made - g_destroyed;
    std::atomic<bool> go{false};
    std::vector<Counted*> objects(4);
    std::vector<std::thread> threads;
    for (Counted*& object : objects) {
      threads.emplace_back([&] {
        while (!go) std::this_thread::yield();
        object = &lasting.get();
      });
    }
    go = true;
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(std::set<Counted*>(objects.begin(), objects.end()).size(), 1U);
    EXPECT_EQ(g_made - g_destroyed, alive + 1);
    delete lasting.find();
  }
}

}  // namespace
