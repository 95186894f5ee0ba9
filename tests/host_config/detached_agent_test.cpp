#include "host/detached_agent.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "host/lock/lock_hold.h"
#include "platform/config/mesh_service.h"
#include "platform/lock/interprocess_lock.h"
#include "tests/host_crypto/encryption_object.h"
#include "tests/support/locker.h"
#include "tests/support/test_agent.h"

namespace {

using host::LockHold;
using host::LockMode;
using korvel_com::orb::lock::InterProcessReadLock;
using korvel_com::orb::lock::InterProcessWriteLock;
using test::ENCRYPTION_TYPE_PASSWORD;
using test::EncryptionObject;
using test::Locker;

constexpr const char* c_name = "SiteListLock";

class DetachedAgent : public testing::Test {
 protected:
  void detach() { host::setDetachedAgent(agent.settings); }

  static std::wstring encrypted(const std::wstring& clear) {
    std::wstring out;
    const EncryptionObject object(ENCRYPTION_TYPE_PASSWORD);
    EXPECT_TRUE(object && object->encrypt_string(clear, out));
    return out;
  }
  static std::wstring decrypted(const std::wstring& text) {
    std::wstring out;
    const EncryptionObject object(ENCRYPTION_TYPE_PASSWORD);
    return object && object->decrypt_string(text, out) ? out : L"nothing";
  }

  test::TestAgent agent;
};

TEST_F(DetachedAgent, LocksExcludeNobodyAndLeaveNoFile) {
  detach();
  InterProcessWriteLock first(c_name);
  InterProcessWriteLock second(c_name);
  EXPECT_TRUE(first.lock(0));
  EXPECT_TRUE(second.lock(0));
  first.unlock();
  second.unlock();
  EXPECT_FALSE(test::exists(agent.dataDirectory() + "/locks"));
}

TEST_F(DetachedAgent, LocksOfTheAgentItselfStayHeldAndCountAgainAfterwards) {
  LockHold hold(c_name, LockMode::Write);
  ASSERT_TRUE(hold.lock(0));
  Locker other(agent.dataDirectory());
  detach();
  EXPECT_TRUE(InterProcessWriteLock(c_name).lock(0));
  EXPECT_FALSE(other.lock(Locker::Mode::Read, 0));
  agent.apply();
  EXPECT_TRUE(host::isHeldByThread(c_name, LockMode::Write));
  hold.unlock();
  EXPECT_TRUE(other.lock(Locker::Mode::Write, 0));
  EXPECT_FALSE(InterProcessReadLock(c_name).lock(0)) << "it is the agent's lock again";
}

TEST_F(DetachedAgent, AHoldIsNoneOfTheAgentItself) {
  Locker other(agent.dataDirectory());
  ASSERT_TRUE(other.lock(Locker::Mode::Write));
  detach();
  LockHold hold(c_name, LockMode::Write);
  EXPECT_TRUE(hold.lock(0));
  agent.apply();
  EXPECT_FALSE(host::isHeldByThread(c_name, LockMode::Read));
  EXPECT_FALSE(InterProcessReadLock(c_name).lock(0));
}

TEST_F(DetachedAgent, HasNoMeshCopy) {
  detach();
  EXPECT_EQ(MeshServiceConfiguration::GetInstance()->GetMeshSiteListPath(), L"");
  agent.apply();
  EXPECT_NE(MeshServiceConfiguration::GetInstance()->GetMeshSiteListPath(), L"");
}

TEST_F(DetachedAgent, DecryptsWithTheKeyOfTheAgent) {
  const std::wstring text = encrypted(L"fair");
  detach();
  EXPECT_EQ(decrypted(text), L"fair");
}

TEST_F(DetachedAgent, WithoutAKeyEncryptsForItselfAloneAndMakesNoFile) {
  const std::wstring foreign = encrypted(L"fair");
  std::filesystem::remove_all(agent.dataDirectory() + "/keystore");
  agent.settings.dataDirectory += "/none";
  detach();
  const std::wstring own = encrypted(L"windy");
  EXPECT_EQ(decrypted(own), L"windy");
  EXPECT_EQ(decrypted(foreign), L"nothing");
  EXPECT_FALSE(test::exists(agent.settings.dataDirectory));
  std::filesystem::create_directory(agent.settings.dataDirectory);
  agent.apply();
  EXPECT_EQ(decrypted(own), L"nothing") << "the agent itself makes a key of its own";
  EXPECT_TRUE(test::exists(test::passwordKeyPath(agent.settings.dataDirectory)));
}

TEST_F(DetachedAgent, LogsNothingAboutAKeyThatIsMissing) {
  agent.settings.dataDirectory = "/dev/null";
  detach();
  agent.clearLog();
  EXPECT_EQ(decrypted(encrypted(L"fair")), L"fair");
  EXPECT_TRUE(agent.messages().empty());
}

TEST_F(DetachedAgent, WithoutAServerKeyHasNone) {
  detach();
  EXPECT_FALSE(EncryptionObject(test::ENCRYPTION_TYPE_SERVER_BUFFER));
}

}  // namespace
