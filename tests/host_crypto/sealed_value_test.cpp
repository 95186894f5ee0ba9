#include "host/crypto/sealed_value.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace {

using host::c_keySize;
using host::SecretBytes;
using Bytes = std::vector<unsigned char>;

constexpr std::size_t c_overhead = 1 + 12 + 16;

SecretBytes keyOf(unsigned char first) {
  SecretBytes key(c_keySize);
  for (std::size_t i = 0; i < key.size(); ++i) key[i] = static_cast<unsigned char>(first + i);
  return key;
}

Bytes bytesOf(const std::string& text) { return Bytes(text.begin(), text.end()); }

class SealedValue : public testing::Test {
 protected:
  Bytes seal(const Bytes& clear) {
    Bytes sealed;
    EXPECT_TRUE(m_sealer.seal(clear.data(), clear.size(), sealed));
    return sealed;
  }
  bool opens(const Bytes& sealed) {
    SecretBytes clear = {'o', 'l', 'd'};
    const bool opened = m_sealer.open(sealed.data(), sealed.size(), clear);
    if (!opened) {
      EXPECT_EQ(clear, (SecretBytes{'o', 'l', 'd'})) << "a failure wrote to its output";
    }
    return opened;
  }

  host::Sealer m_sealer{keyOf(7)};
};

// Shows: password-ciphertext
TEST_F(SealedValue, OpensToWhatWasSealed) {
  for (const std::size_t length : {0, 1, 15, 16, 17, 31, 32, 33, 1000, 1000000}) {
    Bytes clear(length);
    for (std::size_t i = 0; i < length; ++i) clear[i] = static_cast<unsigned char>(i * 31);
    const Bytes sealed = seal(clear);
    ASSERT_EQ(sealed.size(), length + c_overhead);
    SecretBytes opened;
    ASSERT_TRUE(m_sealer.open(sealed.data(), sealed.size(), opened)) << length;
    EXPECT_EQ(Bytes(opened.begin(), opened.end()), clear) << length;
  }
}

// Shows: password-version, password-nonce, password-ciphertext, password-tag, password-cipher
TEST_F(SealedValue, IsVersionNonceCiphertextAndTagUnderAes256GcmWithTheVersionAuthenticated) {
  const Bytes clear = bytesOf("a password");
  const Bytes sealed = seal(clear);
  const SecretBytes key = keyOf(7);
  ASSERT_EQ(sealed[0], 1);

  EVP_CIPHER_CTX* context = EVP_CIPHER_CTX_new();
  Bytes opened(clear.size());
  Bytes tag(sealed.end() - 16, sealed.end());
  int length = 0;
  EXPECT_EQ(1, EVP_DecryptInit_ex(context, EVP_aes_256_gcm(), nullptr, key.data(), &sealed[1]));
  EXPECT_EQ(1, EVP_DecryptUpdate(context, nullptr, &length, &sealed[0], 1));
  EXPECT_EQ(1, EVP_DecryptUpdate(context, opened.data(), &length, &sealed[13],
                                 static_cast<int>(clear.size())));
  EXPECT_EQ(1, EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_GCM_SET_TAG, 16, tag.data()));
  EXPECT_EQ(1, EVP_DecryptFinal_ex(context, opened.data() + length, &length));
  EVP_CIPHER_CTX_free(context);
  EXPECT_EQ(opened, clear);
}

// A value with another version byte that is encrypted correctly with the same key.
// Shows: password-version
TEST_F(SealedValue, OfAnotherVersionDoesNotOpen) {
  const SecretBytes key = keyOf(7);
  for (const int version : {0, 1, 2, 255}) {
    Bytes sealed(1 + 12 + 4 + 16);
    sealed[0] = static_cast<unsigned char>(version);
    EVP_CIPHER_CTX* context = EVP_CIPHER_CTX_new();
    int length = 0;
    EXPECT_EQ(1, EVP_EncryptInit_ex(context, EVP_aes_256_gcm(), nullptr, key.data(), &sealed[1]));
    EXPECT_EQ(1, EVP_EncryptUpdate(context, nullptr, &length, &sealed[0], 1));
    EXPECT_EQ(1, EVP_EncryptUpdate(context, &sealed[13], &length, key.data(), 4));
    EXPECT_EQ(1, EVP_EncryptFinal_ex(context, &sealed[17], &length));
    EXPECT_EQ(1, EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_GCM_GET_TAG, 16, &sealed[17]));
    EVP_CIPHER_CTX_free(context);
    EXPECT_EQ(opens(sealed), version == 1) << version;
  }
}

TEST_F(SealedValue, DoesNotOpenWithAnyBitFlipped) {
  for (const std::string text : {"", "x", "seventeen letters"}) {
    const Bytes sealed = seal(bytesOf(text));
    ASSERT_TRUE(opens(sealed));
    for (std::size_t bit = 0; bit < 8 * sealed.size(); ++bit) {
      Bytes flipped = sealed;
      flipped[bit / 8] ^= static_cast<unsigned char>(1 << (bit % 8));
      EXPECT_FALSE(opens(flipped)) << "bit " << bit << " of \"" << text << "\"";
    }
  }
}

TEST_F(SealedValue, DoesNotOpenWhenCutOrLengthened) {
  const Bytes sealed = seal(bytesOf("seventeen letters"));
  for (std::size_t length = 0; length < sealed.size(); ++length) {
    EXPECT_FALSE(opens(Bytes(sealed.begin(), sealed.begin() + length))) << "first " << length;
    EXPECT_FALSE(opens(Bytes(sealed.end() - length, sealed.end()))) << "last " << length;
  }
  Bytes longer = sealed;
  longer.push_back(0);
  EXPECT_FALSE(opens(longer));
  longer = sealed;
  longer.insert(longer.begin(), 1);
  EXPECT_FALSE(opens(longer));
}

// Shows: password-machine
TEST_F(SealedValue, DoesNotOpenUnderAnotherKey) {
  const Bytes sealed = seal(bytesOf("a password"));
  SecretBytes clear;
  for (std::size_t bit = 0; bit < 8 * c_keySize; ++bit) {
    SecretBytes key = keyOf(7);
    key[bit / 8] ^= static_cast<unsigned char>(1 << (bit % 8));
    EXPECT_FALSE(host::Sealer(key).open(sealed.data(), sealed.size(), clear)) << bit;
  }
}

TEST_F(SealedValue, StillOpensAfterARefusalAndAfterSealing) {
  const Bytes clear = bytesOf("a password");
  const Bytes sealed = seal(clear);
  Bytes broken = sealed;
  broken.back() ^= 1;
  for (int i = 0; i < 3; ++i) {
    EXPECT_FALSE(opens(broken));
    EXPECT_TRUE(opens(sealed));
    EXPECT_TRUE(opens(seal(bytesOf("another"))));
  }
}

// Shows: password-nonce
TEST_F(SealedValue, NeverUsesANonceTwice) {
  std::set<Bytes> nonces;
  const int count = 10000;
  for (int i = 0; i < count; ++i) {
    const Bytes sealed = seal(bytesOf("same"));
    nonces.insert(Bytes(sealed.begin() + 1, sealed.begin() + 13));
  }
  EXPECT_EQ(nonces.size(), static_cast<std::size_t>(count));
}

}  // namespace
